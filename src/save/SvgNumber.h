#ifndef VKSVG_SAVE_SVGNUMBER_H
#define VKSVG_SAVE_SVGNUMBER_H

#include <svg/Options.h>

#include <cstddef>
#include <string>

namespace vk::svg::impl {

// Whether `options` ask for the shortest round-trip form: only when no
// precision was given, since a precision the caller set always wins.
inline bool WritesShortestNumbers(const SaveOptions& options)
{
    return options.shortestNumbers && options.precision < 0;
}

// The number text of the writer for `value` under `options`, NUL-terminated
// in `buffer`, before the "-0" rule (callers apply it, some of them with
// their own separators). Returns the length, or 0 when it does not fit.
std::size_t FormatSvgNumber(char* buffer, std::size_t size, float value, const SaveOptions& options);

// The text of floatToSvgNumber, appended to `out` without any allocation
// beyond `out` growing.
void AppendSvgNumber(std::string& out, float value, const SaveOptions& options);

// A NUL-terminated number text in a small buffer of its own, for the
// attribute writers' hot path; falls back to the heap only for precisions
// too large for the buffer.
class SvgNumberText {
public:
    SvgNumberText(float value, const SaveOptions& options);
    const char* c_str() const { return mHeap.empty() ? mBuffer : mHeap.c_str(); }

private:
    char mBuffer[64];
    std::string mHeap;
};

} // namespace vk::svg::impl

#endif
