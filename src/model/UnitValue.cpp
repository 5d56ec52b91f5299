#include <svg/UnitValue.h>

#include "model/TextUtils.h"

#include <vkSystem/vkStringUtils.h>

#include <cstdlib>
#include <string_view>

namespace vk::svg {

namespace {

struct SuffixRow {
    std::string_view suffix;
    Unit unit;
};

// Searched in this order; the first suffix that ends the text wins.
constexpr SuffixRow kSuffixes[] = {
    {"%", Unit::Percent}, {"em", Unit::Em}, {"px", Unit::Px}, {"pt", Unit::Pt},
    {"cm", Unit::Cm},     {"mm", Unit::Mm}, {"in", Unit::In},
};

bool EndsWith(std::string_view text, std::string_view suffix)
{
    return suffix.size() <= text.size() && text.substr(text.size() - suffix.size()) == suffix;
}

} // namespace

UnitValue::UnitValue(float v, Unit u) : value(v), unit(u) {}

bool UnitValue::parseVal(const std::string& text, UnitValue& result)
{
    std::string_view rest = impl::TrimTrailingSpace(text);

    Unit unit = Unit::None;
    for (const SuffixRow& row : kSuffixes) {
        if (EndsWith(rest, row.suffix)) {
            unit = row.unit;
            rest.remove_suffix(row.suffix.size());
            break;
        }
    }
    // "12 px" is accepted: blanks may separate number and unit.
    rest = impl::TrimTrailingSpace(rest);

    // Whatever strtof takes (leading blanks, signs, exponents, hex floats,
    // inf, nan) is a number here; an empty rest reads as 0.
    float number = 0.0f;
    const bool consumedAll = impl::WithCString(rest, [&](const char* start) {
        char* end = nullptr;
        number = strtof_l(start, &end, vk::vkStringUtils::msCLocale);
        return end == start + rest.size();
    });
    if (!consumedAll) {
        return false;
    }
    result.value = number;
    result.unit = unit;
    return true;
}

bool UnitToString(Unit unit, std::string& out, bool append)
{
    if (!append) {
        out.clear();
    }
    switch (static_cast<uint32_t>(unit) & 0xFFu) {
    case 0:
    case 8:
        return true;
    case 1:
        out += '%';
        return true;
    case 2:
        out += "em";
        return true;
    case 3:
        out += "px";
        return true;
    case 4:
        out += "pt";
        return true;
    case 5:
        out += "cm";
        return true;
    case 6:
        out += "mm";
        return true;
    case 7:
        out += "in";
        return true;
    default:
        return false;
    }
}

} // namespace vk::svg
