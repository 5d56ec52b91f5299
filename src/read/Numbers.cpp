#include "read/Values.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>

namespace vk::svg::impl {

namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f'; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

char ToLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

const char* SkipSpace(const char* p, const char* end)
{
    while (p != end && IsSpace(*p)) {
        ++p;
    }
    return p;
}

// The power of ten just above a number whose conversion over- or
// underflowed, to tell the two apart. Exponent digits saturate, so any
// length of text is safe.
long long Magnitude(const char* digits, const char* digitsEnd, const char* end)
{
    long long position = 0;
    const char* p = digits;
    while (p != digitsEnd && *p == '0') {
        ++p;
    }
    if (p != digitsEnd && *p != '.') {
        for (; p != digitsEnd && IsDigit(*p); ++p) {
            ++position;
        }
    } else if (p != digitsEnd) {
        for (++p; p != digitsEnd && *p == '0'; ++p) {
            --position;
        }
    }
    if (digitsEnd != end) {
        p = digitsEnd + 1;
        bool negative = false;
        if (*p == '+' || *p == '-') {
            negative = *p == '-';
            ++p;
        }
        long long e = 0;
        for (; p != end; ++p) {
            if (e < 1000000000000000LL) {
                e = e * 10 + (*p - '0');
            }
        }
        position += negative ? -e : e;
    }
    return position;
}

// Reads the longest number at `p`; returns its end, or nullptr when there
// is none there or it does not fit a finite double. An "e" that no digits
// follow is left alone, so "1em" reads as 1 and a unit.
const char* ScanNumber(const char* p, const char* end, double& value)
{
    bool negative = false;
    if (p != end && (*p == '+' || *p == '-')) {
        negative = *p == '-';
        ++p;
    }
    const char* digits = p;
    while (p != end && IsDigit(*p)) {
        ++p;
    }
    const bool hasInteger = p != digits;
    bool hasFraction = false;
    if (p != end && *p == '.') {
        const char* q = p + 1;
        while (q != end && IsDigit(*q)) {
            ++q;
        }
        hasFraction = q != p + 1;
        if (hasInteger || hasFraction) {
            p = q;
        }
    }
    if (!hasInteger && !hasFraction) {
        return nullptr;
    }
    const char* digitsEnd = p;
    if (p != end && (*p == 'e' || *p == 'E')) {
        const char* q = p + 1;
        if (q != end && (*q == '+' || *q == '-')) {
            ++q;
        }
        if (q != end && IsDigit(*q)) {
            while (q != end && IsDigit(*q)) {
                ++q;
            }
            p = q;
        }
    }
    double result = 0.0;
    const std::from_chars_result converted = std::from_chars(digits, p, result, std::chars_format::general);
    if (converted.ec == std::errc::result_out_of_range) {
        // Underflow reads as zero, as browsers do; overflow is an error.
        if (Magnitude(digits, digitsEnd, p) > 0) {
            return nullptr;
        }
        result = 0.0;
    } else if (converted.ec != std::errc() || converted.ptr != p) {
        return nullptr;
    }
    if (!std::isfinite(result)) {
        return nullptr;
    }
    value = negative ? -result : result;
    return p;
}

// A unit right after a number; returns its end or nullptr.
const char* ScanUnit(const char* p, const char* end, LengthUnit& unit)
{
    if (p != end && *p == '%') {
        unit = LengthUnit::Percent;
        return p + 1;
    }
    const char* letters = p;
    while (p != end && ((*p >= 'a' && *p <= 'z') || (*p >= 'A' && *p <= 'Z'))) {
        ++p;
    }
    if (p == letters) {
        unit = LengthUnit::None;
        return p;
    }
    if (p - letters != 2) {
        return nullptr;
    }
    static constexpr struct {
        char name[3];
        LengthUnit unit;
    } kUnits[] = {{"px", LengthUnit::Px}, {"pt", LengthUnit::Pt}, {"pc", LengthUnit::Pc}, {"mm", LengthUnit::Mm},
                  {"cm", LengthUnit::Cm}, {"in", LengthUnit::In}, {"em", LengthUnit::Em}, {"ex", LengthUnit::Ex}};
    const char first = ToLower(letters[0]);
    const char second = ToLower(letters[1]);
    for (const auto& entry : kUnits) {
        if (entry.name[0] == first && entry.name[1] == second) {
            unit = entry.unit;
            return p;
        }
    }
    return nullptr;
}

const char* ScanLength(const char* p, const char* end, Length& length)
{
    double value = 0.0;
    p = ScanNumber(p, end, value);
    if (p == nullptr) {
        return nullptr;
    }
    LengthUnit unit = LengthUnit::None;
    p = ScanUnit(p, end, unit);
    if (p == nullptr) {
        return nullptr;
    }
    length.value = value;
    length.unit = unit;
    return p;
}

// The list grammar shared by numbers and lengths: items separated by white
// space and/or one comma, or glued where the next item's sign or point ends
// the previous one.
template <typename T, typename Scan> bool ParseList(std::string_view text, std::vector<T>& items, Scan scan)
{
    items.clear();
    const char* p = text.data();
    const char* end = p + text.size();
    p = SkipSpace(p, end);
    while (p != end) {
        T item{};
        p = scan(p, end, item);
        if (p == nullptr) {
            return false;
        }
        items.push_back(item);
        p = SkipSpace(p, end);
        if (p != end && *p == ',') {
            p = SkipSpace(p + 1, end);
            if (p == end) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

bool ParseNumber(std::string_view text, double& value)
{
    const char* end = text.data() + text.size();
    double result = 0.0;
    const char* p = ScanNumber(SkipSpace(text.data(), end), end, result);
    if (p == nullptr || SkipSpace(p, end) != end) {
        return false;
    }
    value = result;
    return true;
}

bool ParseNumberOrPercentage(std::string_view text, double& value)
{
    const char* end = text.data() + text.size();
    double result = 0.0;
    const char* p = ScanNumber(SkipSpace(text.data(), end), end, result);
    if (p == nullptr) {
        return false;
    }
    if (p != end && *p == '%') {
        result /= 100.0;
        ++p;
    }
    if (SkipSpace(p, end) != end) {
        return false;
    }
    value = result;
    return true;
}

bool ParseLength(std::string_view text, Length& length)
{
    const char* end = text.data() + text.size();
    Length result;
    const char* p = ScanLength(SkipSpace(text.data(), end), end, result);
    if (p == nullptr || SkipSpace(p, end) != end) {
        return false;
    }
    length = result;
    return true;
}

namespace {

double UnclampedUserUnits(const Length& length, const LengthContext& context, PercentOf percentOf)
{
    switch (length.unit) {
    case LengthUnit::None:
    case LengthUnit::Px:
        return length.value;
    case LengthUnit::Pt:
        return length.value * 4.0 / 3.0;
    case LengthUnit::Pc:
        return length.value * 16.0;
    case LengthUnit::Mm:
        return length.value * 96.0 / 25.4;
    case LengthUnit::Cm:
        return length.value * 96.0 / 2.54;
    case LengthUnit::In:
        return length.value * 96.0;
    case LengthUnit::Em:
        return length.value * context.fontSize;
    case LengthUnit::Ex:
        return length.value * context.fontSize / 2.0;
    case LengthUnit::Percent: {
        double reference = 0.0;
        switch (percentOf) {
        case PercentOf::Width:
            reference = context.viewportWidth;
            break;
        case PercentOf::Height:
            reference = context.viewportHeight;
            break;
        case PercentOf::Diagonal:
            reference = std::sqrt(
                (context.viewportWidth * context.viewportWidth + context.viewportHeight * context.viewportHeight) /
                2.0);
            break;
        }
        return length.value * reference / 100.0;
    }
    }
    return length.value;
}

} // namespace

double ToUserUnits(const Length& length, const LengthContext& context, PercentOf percentOf)
{
    // Items hold floats: a length beyond their range saturates rather than
    // becoming infinite, and NaN (0 times an infinite font size) becomes 0.
    constexpr double kLimit = static_cast<double>(std::numeric_limits<float>::max());
    const double value = UnclampedUserUnits(length, context, percentOf);
    if (std::isnan(value))
        return 0.0;
    return value < -kLimit ? -kLimit : (value > kLimit ? kLimit : value);
}

bool ParseNumberList(std::string_view text, std::vector<double>& values) { return ParseList(text, values, ScanNumber); }

bool ParseLengthList(std::string_view text, std::vector<Length>& lengths)
{
    return ParseList(text, lengths, ScanLength);
}

} // namespace vk::svg::impl
