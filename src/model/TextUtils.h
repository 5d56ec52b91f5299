#ifndef VKSVG_MODEL_TEXTUTILS_H
#define VKSVG_MODEL_TEXTUTILS_H

#include <cstring>
#include <string>
#include <string_view>

namespace vk::svg::impl {

// The six characters that isspace accepts in the "C" locale; spelled out so
// the process locale cannot widen the set.
constexpr bool IsCSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r'; }

inline std::string_view TrimTrailingSpace(std::string_view text)
{
    while (!text.empty() && IsCSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Calls `fn(const char*)` with a NUL-terminated copy of `text`. The C number
// parsers need the terminator, and parsing in place could let them read on
// into characters that were cut off (0x1em would take the "e"). Short texts
// stay on the stack so the hot paths do not allocate.
template <class Fn> auto WithCString(std::string_view text, Fn&& fn)
{
    char buffer[64];
    if (text.size() < sizeof(buffer)) {
        std::memcpy(buffer, text.data(), text.size());
        buffer[text.size()] = '\0';
        return fn(static_cast<const char*>(buffer));
    }
    const std::string copy(text);
    return fn(copy.c_str());
}

} // namespace vk::svg::impl

#endif
