#ifndef VKSVG_MODEL_NAMEDCOLORS_H
#define VKSVG_MODEL_NAMEDCOLORS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vk::svg::impl {

struct NamedColor {
    std::string_view name;
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};

// The named-colour table, in byte order of the names.
const NamedColor* NamedColorsBegin();
const NamedColor* NamedColorsEnd();

// Exact, case-sensitive lookup; nullptr when `name` is no colour keyword.
const NamedColor* FindNamedColor(std::string_view name);

} // namespace vk::svg::impl

#endif
