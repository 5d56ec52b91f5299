#ifndef VKSVG_SAVE_SVGNUMBER_H
#define VKSVG_SAVE_SVGNUMBER_H

#include <cstddef>
#include <string>

namespace vk::svg::impl {

// The text of floatToSvgNumber, appended to `out` without any allocation
// beyond `out` growing.
void AppendSvgNumber(std::string& out, float value, int precision);

// A NUL-terminated number text in a small buffer of its own, for the
// attribute writers' hot path; falls back to the heap only for precisions
// too large for the buffer.
class SvgNumberText {
public:
    SvgNumberText(float value, int precision);
    const char* c_str() const { return mHeap.empty() ? mBuffer : mHeap.c_str(); }

private:
    char mBuffer[64];
    std::string mHeap;
};

} // namespace vk::svg::impl

#endif
