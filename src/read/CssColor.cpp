#include "read/Values.h"

#include "model/NamedColors.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vk::svg::impl {

namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f'; }

char ToLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

std::string_view Trim(std::string_view text)
{
    while (!text.empty() && IsSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool EqualsIgnoreCase(std::string_view text, std::string_view lowerCase)
{
    if (text.size() != lowerCase.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (ToLower(text[i]) != lowerCase[i]) {
            return false;
        }
    }
    return true;
}

bool EndsWithIgnoreCase(std::string_view text, std::string_view lowerCase)
{
    return text.size() >= lowerCase.size() && EqualsIgnoreCase(text.substr(text.size() - lowerCase.size()), lowerCase);
}

int HexDigit(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    c = ToLower(c);
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return -1;
}

uint8_t ToByte(double value)
{
    // The comparisons are written so that NaN lands on 0.
    if (!(value > 0.0)) {
        return 0;
    }
    if (value >= 255.0) {
        return 255;
    }
    return static_cast<uint8_t>(std::lround(value));
}

float ToAlpha(double value)
{
    if (!(value > 0.0)) {
        return 0.0f;
    }
    return value >= 1.0 ? 1.0f : static_cast<float>(value);
}

bool ParseHex(std::string_view digits, CssColor& color)
{
    if (digits.size() != 3 && digits.size() != 4 && digits.size() != 6 && digits.size() != 8) {
        return false;
    }
    int values[8] = {};
    for (std::size_t i = 0; i < digits.size(); ++i) {
        values[i] = HexDigit(digits[i]);
        if (values[i] < 0) {
            return false;
        }
    }
    uint8_t bytes[4] = {0, 0, 0, 255};
    switch (digits.size()) {
    case 3:
    case 4:
        for (std::size_t i = 0; i < digits.size(); ++i) {
            bytes[i] = static_cast<uint8_t>(values[i] * 17);
        }
        break;
    default:
        for (std::size_t i = 0; i < digits.size() / 2; ++i) {
            bytes[i] = static_cast<uint8_t>(values[2 * i] * 16 + values[2 * i + 1]);
        }
        break;
    }
    color.red = bytes[0];
    color.green = bytes[1];
    color.blue = bytes[2];
    color.alpha = bytes[3] == 255 ? 1.0f : static_cast<float>(bytes[3] / 255.0);
    return true;
}

// One argument of a colour function, split into its number and what
// follows it.
struct Component {
    enum class Type : uint8_t { Number, Percentage, Angle, None };
    Type type = Type::Number;
    // Angles are held in degrees.
    double value = 0.0;
};

bool ParseComponent(std::string_view token, Component& component)
{
    if (EqualsIgnoreCase(token, "none")) {
        component.type = Component::Type::None;
        component.value = 0.0;
        return true;
    }
    if (!token.empty() && token.back() == '%') {
        component.type = Component::Type::Percentage;
        return ParseNumber(token.substr(0, token.size() - 1), component.value);
    }
    static constexpr struct {
        std::string_view unit;
        double degrees;
    } kAngles[] = {{"deg", 1.0}, {"grad", 0.9}, {"rad", 57.295779513082320877}, {"turn", 360.0}};
    // "grad" before "rad", which it ends with.
    for (const auto& angle : kAngles) {
        if (EndsWithIgnoreCase(token, angle.unit)) {
            double number = 0.0;
            if (!ParseNumber(token.substr(0, token.size() - angle.unit.size()), number)) {
                return false;
            }
            component.type = Component::Type::Angle;
            component.value = number * angle.degrees;
            return std::isfinite(component.value);
        }
    }
    component.type = Component::Type::Number;
    return ParseNumber(token, component.value);
}

// Splits the text between the parentheses into at most four components,
// either all separated by commas (the legacy syntax) or by white space with
// an optional "/ alpha". `legacy` tells which.
bool SplitArguments(std::string_view text, Component (&components)[4], std::size_t& count, bool& legacy)
{
    std::string_view tokens[7];
    char separators[7] = {};
    std::size_t tokenCount = 0;
    std::size_t position = 0;
    while (true) {
        while (position < text.size() && IsSpace(text[position])) {
            ++position;
        }
        if (position == text.size()) {
            break;
        }
        if (tokenCount == 7) {
            return false;
        }
        const char c = text[position];
        if (c == ',' || c == '/') {
            separators[tokenCount] = c;
            tokens[tokenCount++] = text.substr(position, 1);
            ++position;
            continue;
        }
        const std::size_t start = position;
        while (position < text.size() && !IsSpace(text[position]) && text[position] != ',' && text[position] != '/') {
            ++position;
        }
        tokens[tokenCount++] = text.substr(start, position - start);
    }

    legacy = std::find(std::begin(separators), std::end(separators), ',') != std::end(separators);
    count = 0;
    bool slashSeen = false;
    bool afterValue = false;
    for (std::size_t i = 0; i < tokenCount; ++i) {
        const char separator = separators[i];
        if (separator != 0) {
            if (!afterValue) {
                return false;
            }
            if (separator == '/') {
                if (legacy || slashSeen || count != 3) {
                    return false;
                }
                slashSeen = true;
            }
            afterValue = false;
            continue;
        }
        // Legacy arguments need a comma between them; modern ones take none.
        if (afterValue && legacy) {
            return false;
        }
        if (count == 4 || (!legacy && count == 3 && !slashSeen)) {
            return false;
        }
        if (!ParseComponent(tokens[i], components[count])) {
            return false;
        }
        ++count;
        afterValue = true;
    }
    if (!afterValue) {
        return false;
    }
    return count == 3 || count == 4;
}

bool AlphaOf(const Component& component, float& alpha)
{
    switch (component.type) {
    case Component::Type::Number:
        alpha = ToAlpha(component.value);
        return true;
    case Component::Type::Percentage:
        alpha = ToAlpha(component.value / 100.0);
        return true;
    case Component::Type::None:
        alpha = 0.0f;
        return true;
    case Component::Type::Angle:
        break;
    }
    return false;
}

bool ParseRgb(std::string_view arguments, CssColor& color)
{
    Component components[4];
    std::size_t count = 0;
    bool legacy = false;
    if (!SplitArguments(arguments, components, count, legacy)) {
        return false;
    }
    uint8_t bytes[3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        const Component& component = components[i];
        switch (component.type) {
        case Component::Type::Number:
            bytes[i] = ToByte(component.value);
            break;
        case Component::Type::Percentage:
            bytes[i] = ToByte(component.value * 255.0 / 100.0);
            break;
        case Component::Type::None:
            if (legacy) {
                return false;
            }
            bytes[i] = 0;
            break;
        case Component::Type::Angle:
            return false;
        }
    }
    float alpha = 1.0f;
    if (count == 4 && (!AlphaOf(components[3], alpha) || (legacy && components[3].type == Component::Type::None))) {
        return false;
    }
    color.red = bytes[0];
    color.green = bytes[1];
    color.blue = bytes[2];
    color.alpha = alpha;
    return true;
}

bool ParseHsl(std::string_view arguments, CssColor& color)
{
    Component components[4];
    std::size_t count = 0;
    bool legacy = false;
    if (!SplitArguments(arguments, components, count, legacy)) {
        return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (legacy && components[i].type == Component::Type::None) {
            return false;
        }
    }
    const Component& hueComponent = components[0];
    if (hueComponent.type == Component::Type::Percentage) {
        return false;
    }
    double fraction[2] = {};
    for (std::size_t i = 1; i < 3; ++i) {
        const Component& component = components[i];
        // Bare numbers for saturation and lightness came with the space syntax.
        if (component.type == Component::Type::Angle || (legacy && component.type == Component::Type::Number)) {
            return false;
        }
        fraction[i - 1] = std::clamp(component.value, 0.0, 100.0) / 100.0;
    }
    float alpha = 1.0f;
    if (count == 4 && !AlphaOf(components[3], alpha)) {
        return false;
    }

    double hue = std::fmod(hueComponent.value, 360.0);
    if (hue < 0.0) {
        hue += 360.0;
    }
    const double saturation = fraction[0];
    const double lightness = fraction[1];
    const double a = saturation * std::min(lightness, 1.0 - lightness);
    auto channel = [&](double n) {
        const double k = std::fmod(n + hue / 30.0, 12.0);
        return lightness - a * std::max(-1.0, std::min({k - 3.0, 9.0 - k, 1.0}));
    };
    color.red = ToByte(channel(0.0) * 255.0);
    color.green = ToByte(channel(8.0) * 255.0);
    color.blue = ToByte(channel(4.0) * 255.0);
    color.alpha = alpha;
    return true;
}

} // namespace

ColorKind ParseCssColor(std::string_view text, CssColor& color)
{
    text = Trim(text);
    if (text.empty()) {
        return ColorKind::Invalid;
    }
    if (text.front() == '#') {
        return ParseHex(text.substr(1), color) ? ColorKind::Color : ColorKind::Invalid;
    }

    const std::size_t open = text.find('(');
    if (open != std::string_view::npos) {
        if (text.back() != ')') {
            return ColorKind::Invalid;
        }
        const std::string_view name = text.substr(0, open);
        const std::string_view arguments = text.substr(open + 1, text.size() - open - 2);
        if (arguments.find_first_of("()") != std::string_view::npos) {
            return ColorKind::Invalid;
        }
        bool ok = false;
        if (EqualsIgnoreCase(name, "rgb") || EqualsIgnoreCase(name, "rgba")) {
            ok = ParseRgb(arguments, color);
        } else if (EqualsIgnoreCase(name, "hsl") || EqualsIgnoreCase(name, "hsla")) {
            ok = ParseHsl(arguments, color);
        }
        return ok ? ColorKind::Color : ColorKind::Invalid;
    }

    if (EqualsIgnoreCase(text, "currentcolor")) {
        return ColorKind::CurrentColor;
    }
    if (EqualsIgnoreCase(text, "transparent")) {
        color = CssColor{0, 0, 0, 0.0f};
        return ColorKind::Color;
    }
    // The longest keyword has 20 letters.
    char lowered[24];
    if (text.size() > sizeof(lowered)) {
        return ColorKind::Invalid;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        lowered[i] = ToLower(text[i]);
    }
    const NamedColor* named = FindNamedColor(std::string_view(lowered, text.size()));
    if (named == nullptr) {
        return ColorKind::Invalid;
    }
    color = CssColor{named->red, named->green, named->blue, 1.0f};
    return ColorKind::Color;
}

std::string ColorToSvgText(const CssColor& color)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    long alpha = 0;
    if (color.alpha > 0.0f) {
        alpha = color.alpha >= 1.0f ? 255 : std::lround(static_cast<double>(color.alpha) * 255.0);
    }
    const uint8_t bytes[4] = {color.red, color.green, color.blue, static_cast<uint8_t>(alpha)};
    const std::size_t count = alpha >= 255 ? 3 : 4;
    std::string text(1 + 2 * count, '#');
    for (std::size_t i = 0; i < count; ++i) {
        text[1 + 2 * i] = kDigits[bytes[i] >> 4];
        text[2 + 2 * i] = kDigits[bytes[i] & 15];
    }
    return text;
}

} // namespace vk::svg::impl
