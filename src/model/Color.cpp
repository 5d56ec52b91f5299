#include <svg/Color.h>

#include "model/NamedColors.h"
#include "model/TextUtils.h"

#include <vkSystem/vkStringUtils.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace vk::svg {

namespace {

// Two characters read by strtol in base 16. The digits are deliberately not
// validated: "zz" gives 0 and "1g" gives 1, and whatever else strtol makes of
// the pair (a sign, a blank) is kept too.
unsigned char HexPair(char high, char low)
{
    const char pair[3] = {high, low, '\0'};
    return static_cast<unsigned char>(strtol_l(pair, nullptr, 16, vk::vkStringUtils::msCLocale));
}

bool ParseHex(std::string_view text, Wm4::Vector4<unsigned char>& rgba)
{
    switch (text.size()) {
    case 7: // #rrggbb
    case 9: // #rrggbbaa
        for (std::size_t i = 0; 1 + 2 * i < text.size(); ++i) {
            rgba[static_cast<int>(i)] = HexPair(text[1 + 2 * i], text[2 + 2 * i]);
        }
        return true;
    case 4: // #rgb
    case 5: // #rgba
        for (std::size_t i = 0; 1 + i < text.size(); ++i) {
            rgba[static_cast<int>(i)] = HexPair(text[1 + i], text[1 + i]);
        }
        return true;
    default:
        return false;
    }
}

// Truncates toward zero to 32 bits. Values that do not fit, and NaN, give
// INT32_MIN, which is what the x86 conversion instruction produces; the
// conversion itself would be undefined in C++.
int32_t TruncateToInt32(double value)
{
    if (std::isnan(value) || value >= 2147483648.0 || value <= -2147483649.0) {
        return INT32_MIN;
    }
    return static_cast<int32_t>(value);
}

// One rgb()/rgba() component: "NN%" or an integer in any base strtoll
// accepts (0x1f, 010).
bool ParseComponent(std::string_view piece, unsigned char& component)
{
    if (piece.back() == '%') {
        const std::string_view number = piece.substr(0, piece.size() - 1);
        float percent = 0.0f;
        const bool consumedAll = impl::WithCString(number, [&](const char* start) {
            char* end = nullptr;
            percent = strtof_l(start, &end, vk::vkStringUtils::msCLocale);
            return end == start + number.size();
        });
        if (!consumedAll) {
            return false;
        }
        // Deliberately not range-checked: the low byte of the truncated
        // product is kept, so 100% gives 254 and 200% gives 253.
        const int32_t scaled = TruncateToInt32(static_cast<double>(percent) * 2.55);
        component = static_cast<unsigned char>(static_cast<uint32_t>(scaled) & 0xFFu);
        return true;
    }

    long long integer = 0;
    const bool consumedAll = impl::WithCString(piece, [&](const char* start) {
        char* end = nullptr;
        integer = strtoll_l(start, &end, 0, vk::vkStringUtils::msCLocale);
        return end == start + piece.size();
    });
    // Taken as unsigned, so negative numbers fail along with those above 255.
    if (!consumedAll || static_cast<unsigned long long>(integer) > 255u) {
        return false;
    }
    component = static_cast<unsigned char>(integer);
    return true;
}

// `arguments` is the text between "rgb(" or "rgba(" and the closing ")".
bool ParseFunctional(std::string_view arguments, std::size_t expected, Wm4::Vector4<unsigned char>& rgba)
{
    // Commas count as blanks, and runs of either are one separator. Only the
    // space character separates; other white space stays in the piece.
    std::string_view pieces[4];
    std::size_t count = 0;
    std::size_t pos = 0;
    while (pos < arguments.size()) {
        if (arguments[pos] == ',' || arguments[pos] == ' ') {
            ++pos;
            continue;
        }
        std::size_t end = pos;
        while (end < arguments.size() && arguments[end] != ',' && arguments[end] != ' ') {
            ++end;
        }
        if (count == expected) {
            return false; // one piece too many
        }
        pieces[count++] = arguments.substr(pos, end - pos);
        pos = end;
    }
    if (count != expected) {
        return false;
    }
    // Components are stored as they convert; a later failure leaves the
    // earlier ones in place.
    for (std::size_t i = 0; i < count; ++i) {
        if (!ParseComponent(pieces[i], rgba[static_cast<int>(i)])) {
            return false;
        }
    }
    return true;
}

bool StartsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

} // namespace

bool ParseSvgColor(const std::string& text, Wm4::Vector4<unsigned char>& rgba)
{
    rgba = Wm4::Vector4<unsigned char>(255, 0, 0, 255);
    const std::string_view view(text);

    // No trimming and no case folding anywhere: " red" and "Red" are no colours.
    if (StartsWith(view, "#") && ParseHex(view, rgba)) {
        return true;
    }

    if (!view.empty() && view.back() == ')') {
        if (StartsWith(view, "rgba(")) {
            return ParseFunctional(view.substr(5, view.size() - 6), 4, rgba);
        }
        if (StartsWith(view, "rgb(")) {
            return ParseFunctional(view.substr(4, view.size() - 5), 3, rgba);
        }
    }

    const impl::NamedColor* named = impl::FindNamedColor(view);
    if (named == nullptr) {
        return false;
    }
    rgba[0] = named->red;
    rgba[1] = named->green;
    rgba[2] = named->blue;
    return true;
}

} // namespace vk::svg
