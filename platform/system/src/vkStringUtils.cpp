#include <vkSystem/vkStringUtils.h>

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <vector>

namespace vk {

namespace {

locale_t makeCLocale() { return newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr)); }

// Fixed notation of a double needs at most 309 integer digits, a sign and a
// point; the stack buffer covers every precision the writers use, and larger
// precisions fall back to the heap.
constexpr std::size_t kStackBuffer = 384;

constexpr uint64_t kPowersOfTen[] = {1ULL,           10ULL,           100ULL,          1000ULL,      10000ULL,
                                     100000ULL,      1000000ULL,      10000000ULL,     100000000ULL, 1000000000ULL,
                                     10000000000ULL, 100000000000ULL, 1000000000000ULL};
constexpr int kFastMaxPrecision = 12;

// GCC and clang's 128-bit integer; __extension__ keeps -Wpedantic quiet.
__extension__ typedef unsigned __int128 u128;

// units / 10^precision and its remainder, with the divisor a constant so
// that the compiler turns the division into a multiplication.
template <uint64_t Divisor> void splitUnits(uint64_t units, uint64_t& quotient, uint64_t& remainder)
{
    quotient = units / Divisor;
    remainder = units - quotient * Divisor;
}

void splitAtPrecision(uint64_t units, int precision, uint64_t& integerPart, uint64_t& fraction)
{
    switch (precision) {
    case 0:
        integerPart = units;
        fraction = 0;
        return;
    case 1:
        return splitUnits<10ULL>(units, integerPart, fraction);
    case 2:
        return splitUnits<100ULL>(units, integerPart, fraction);
    case 3:
        return splitUnits<1000ULL>(units, integerPart, fraction);
    case 4:
        return splitUnits<10000ULL>(units, integerPart, fraction);
    case 5:
        return splitUnits<100000ULL>(units, integerPart, fraction);
    case 6:
        return splitUnits<1000000ULL>(units, integerPart, fraction);
    case 7:
        return splitUnits<10000000ULL>(units, integerPart, fraction);
    case 8:
        return splitUnits<100000000ULL>(units, integerPart, fraction);
    case 9:
        return splitUnits<1000000000ULL>(units, integerPart, fraction);
    case 10:
        return splitUnits<10000000000ULL>(units, integerPart, fraction);
    case 11:
        return splitUnits<100000000000ULL>(units, integerPart, fraction);
    default:
        return splitUnits<1000000000000ULL>(units, integerPart, fraction);
    }
}

constexpr char kDigitPairs[] = "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
                               "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
                               "8081828384858687888990919293949596979899";

int countDigits(uint64_t value)
{
    int digits = 1;
    for (uint64_t bound = 10; digits < 20 && value >= bound; bound *= 10)
        ++digits;
    return digits;
}

// Writes exactly `digits` decimal digits of value, with leading zeros.
// 32-bit arithmetic where it suffices: its divisions are cheaper.
template <class Unsigned> void writeDigitsOf(char* out, Unsigned value, int digits)
{
    while (digits >= 2) {
        const std::size_t pair = static_cast<std::size_t>(value % 100) * 2;
        value /= 100;
        digits -= 2;
        out[digits] = kDigitPairs[pair];
        out[digits + 1] = kDigitPairs[pair + 1];
    }
    if (digits == 1)
        out[0] = static_cast<char>('0' + value % 10);
}

void writeDigits(char* out, uint64_t value, int digits)
{
    if (value <= UINT32_MAX)
        writeDigitsOf(out, static_cast<uint32_t>(value), digits);
    else
        writeDigitsOf(out, value, digits);
}

// value * 10^precision rounded half to even, where value = mantissa * 2^exponent.
// False when the result does not fit 64 bits.
bool scaleExactly(uint64_t mantissa, int exponent, int precision, uint64_t& units)
{
    // Most numbers are floats widened to double: after dropping the
    // mantissa's trailing zero bits everything fits 64-bit arithmetic.
    if (mantissa != 0) {
        const int zeros = __builtin_ctzll(mantissa);
        mantissa >>= zeros;
        exponent += zeros;
    }
    const uint64_t power = kPowersOfTen[precision];
    if (mantissa < (1ULL << 24) && precision <= 9 && exponent > -64) {
        const uint64_t scaled = mantissa * power; // below 2^54
        if (exponent >= 0) {
            if (exponent >= 64 || scaled > (UINT64_MAX >> exponent))
                return false;
            units = scaled << exponent;
            return true;
        }
        const int shift = -exponent;
        units = scaled >> shift;
        const uint64_t remainder = scaled - (units << shift);
        const uint64_t half = 1ULL << (shift - 1);
        if (remainder > half || (remainder == half && (units & 1) != 0))
            ++units;
        return true;
    }
    const u128 scaled = static_cast<u128>(mantissa) * power; // below 2^93
    u128 rounded;
    if (exponent >= 0) {
        if (exponent > 30)
            return false;
        rounded = scaled << exponent;
    } else if (exponent <= -128) {
        rounded = 0; // less than half a unit of the last digit
    } else {
        const int shift = -exponent;
        rounded = scaled >> shift;
        const u128 remainder = scaled - (rounded << shift);
        const u128 half = static_cast<u128>(1) << (shift - 1);
        if (remainder > half || (remainder == half && (rounded & 1) != 0))
            ++rounded;
    }
    if (rounded > static_cast<u128>(UINT64_MAX))
        return false;
    units = static_cast<uint64_t>(rounded);
    return true;
}

void copyPair(char* out, uint32_t value) { std::memcpy(out, &kDigitPairs[value * 2], 2); }

// The integer part, below 10^9, without leading zeros.
__attribute__((always_inline)) inline char* writeSmallInteger(char* out, uint32_t value)
{
    if (value < 10) {
        *out = static_cast<char>('0' + value);
        return out + 1;
    }
    if (value < 100) {
        copyPair(out, value);
        return out + 2;
    }
    if (value < 10000) {
        const uint32_t high = value / 100;
        if (high < 10) {
            *out = static_cast<char>('0' + high);
            copyPair(out + 1, value % 100);
            return out + 3;
        }
        copyPair(out, high);
        copyPair(out + 2, value % 100);
        return out + 4;
    }
    const int digits = countDigits(value);
    writeDigitsOf(out, value, digits);
    return out + digits;
}

// The default precision, by far the most common: units are millionths.
// The six decimals are made side by side in one 64-bit word, a byte each
// (three pairs split into tens and ones at once: x / 10 is x * 103 >> 10
// below 100), so trailing zeros are found by counting zero bytes.
__attribute__((always_inline)) inline char* writeSixDecimals(char* out, uint64_t units, bool trimZeros)
{
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the decimals are laid out for a little-endian store");
    const auto integerPart = static_cast<uint32_t>(units / 1000000);
    const auto fraction = static_cast<uint32_t>(units - static_cast<uint64_t>(integerPart) * 1000000);
    out = writeSmallInteger(out, integerPart);
    if (trimZeros && fraction == 0)
        return out;
    const uint32_t low = fraction % 10000;
    const uint64_t pairs = static_cast<uint64_t>(fraction / 10000) | (static_cast<uint64_t>(low / 100) << 16) |
                           (static_cast<uint64_t>(low % 100) << 32);
    const uint64_t tens = ((pairs * 103) >> 10) & 0x0000000F000F000FULL;
    const uint64_t digits = tens | ((pairs - tens * 10) << 8); // first decimal in the lowest byte
    const uint64_t text = digits + 0x0000303030303030ULL;
    out[0] = '.';
    std::memcpy(out + 1, &text, sizeof(text)); // two bytes past the decimals, inside the caller's room
    if (!trimZeros)
        return out + 7;
    // The highest non-zero byte is the last significant decimal.
    return out + 1 + (63 - __builtin_clzll(digits)) / 8 + 1;
}

// The digits of units / 10^precision for any precision; kept out of line
// so that the common case below stays small.
__attribute__((noinline)) char* writeUnitsAnyPrecision(char* out, uint64_t units, int precision, bool trimZeros)
{
    uint64_t integerPart;
    uint64_t fraction;
    splitAtPrecision(units, precision, integerPart, fraction);
    const int integerDigits = countDigits(integerPart);
    writeDigits(out, integerPart, integerDigits);
    out += integerDigits;
    if (precision > 0) {
        *out = '.';
        writeDigits(out + 1, fraction, precision);
        char* end = out + 1 + precision;
        if (trimZeros) {
            while (end > out + 1 && end[-1] == '0')
                --end;
            if (end == out + 1)
                end = out; // no fraction left: no point either
        }
        out = end;
    }
    return out;
}

// The digits of units / 10^precision: the integer part without leading
// zeros, then the point and `precision` decimals.
__attribute__((always_inline)) inline char* writeUnits(char* out, uint64_t units, int precision, bool trimZeros)
{
    if (precision == 6 && units < 1000000000ULL * 1000000ULL)
        return writeSixDecimals(out, units, trimZeros);
    return writeUnitsAnyPrecision(out, units, precision, trimZeros);
}

// Fixed notation by exact integer arithmetic: the value is m * 2^e, so
// value * 10^p rounded half to even is (m * 10^p) >> -e with the remainder
// deciding the rounding, exactly as printf rounds the exact binary value.
// Several times faster than to_chars for the writer's typical numbers.
// Returns null, writing nothing, when the value is out of its range.
char* formatFixedExact(char* first, char* last, double value, int precision, bool trimZeros)
{
    if (precision > kFastMaxPrecision || last - first < 40)
        return nullptr;
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    const bool negative = (bits >> 63) != 0;
    const int biased = static_cast<int>((bits >> 52) & 0x7FF);
    if (biased == 0x7FF)
        return nullptr; // infinities
    uint64_t mantissa = bits & ((1ULL << 52) - 1);
    int exponent = -1074;
    if (biased != 0) {
        mantissa |= 1ULL << 52;
        exponent = biased - 1075;
    }
    uint64_t units;
    if (!scaleExactly(mantissa, exponent, precision, units))
        return nullptr;
    char* out = first;
    if (negative)
        *out++ = '-';
    return writeUnits(out, units, precision, trimZeros);
}

// Writes into [first, last) and returns the end, or null when it did not fit.
char* formatInto(char* first, char* last, double value, int precision, vkStringUtils::FloatFormat format)
{
    if (precision < 0)
        precision = 6;
    // to_chars spells NaN "nan" or "-nan"; a sign on NaN means nothing.
    if (std::isnan(value)) {
        if (last - first < 3)
            return nullptr;
        std::memcpy(first, "nan", 3);
        return first + 3;
    }
    char* end = nullptr;
    if (format == vkStringUtils::FloatFormat::Scientific) {
        const std::to_chars_result result = std::to_chars(first, last, value, std::chars_format::scientific, precision);
        end = result.ec == std::errc() ? result.ptr : nullptr;
    } else {
        const bool trimZeros = format == vkStringUtils::FloatFormat::FixedTrimZeros;
        end = formatFixedExact(first, last, value, precision, trimZeros);
        if (end != nullptr)
            return end;
        const std::to_chars_result result = std::to_chars(first, last, value, std::chars_format::fixed, precision);
        end = result.ec == std::errc() ? result.ptr : nullptr;
    }
    if (end == nullptr)
        return nullptr;
    if (format == vkStringUtils::FloatFormat::FixedTrimZeros && std::memchr(first, '.', end - first) != nullptr) {
        while (end > first && end[-1] == '0')
            --end;
        if (end > first && end[-1] == '.')
            --end;
    }
    return end;
}

// Powers of ten that a double holds exactly.
constexpr double kExactDoublePowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                         1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The same digits for a float by floating-point arithmetic alone. A float
// is m * 2^e with m below 2^24, so |value| * 10^p is m * 5^p * 2^(e + p)
// with m * 5^p below 2^46 for p up to 9: the product is exact in a double.
// Below 2^52, adding and removing 2^52 then rounds it to an integer, half
// to even, as the exact formatter does. Returns null for anything else.
char* formatSingleFixed(char* out, float value, int precision, bool trimZeros)
{
#if defined(FLT_EVAL_METHOD) && FLT_EVAL_METHOD == 0
    if (precision < 0 || precision > 9)
        return nullptr;
    const double scaled = std::fabs(static_cast<double>(value)) * kExactDoublePowers[precision];
    if (!(scaled < 0x1p52))
        return nullptr; // too large, infinite or NaN
    const auto units = static_cast<uint64_t>((scaled + 0x1p52) - 0x1p52);
    if (std::signbit(value))
        *out++ = '-';
    return writeUnits(out, units, precision, trimZeros);
#else
    // Wider intermediate precision would round twice.
    (void)out, (void)value, (void)precision, (void)trimZeros;
    return nullptr;
#endif
}

// A plain decimal by Clinger's fast path: with at most 19 digits and a
// decimal exponent within 22, one multiplication or division of two exact
// doubles gives the correctly rounded double. Rounding that double to float
// again is exact unless it sits exactly half-way between two floats, or in
// the subnormal or overflow range: those are left to strtof. Reads the
// longest plain decimal at p ([sign]digits[.digits][e[sign]digits]; an
// exponent letter without digits is not part of it) and returns its end, or
// null when there is none or it needs strtof.
const char* scanPlainDecimal(const char* p, const char* last, float& value)
{
    bool negative = false;
    if (p != last && (*p == '-' || *p == '+')) {
        negative = *p == '-';
        ++p;
    }
    uint64_t mantissa = 0;
    int digits = 0;
    int exponent = 0;
    bool any = false;
    for (; p != last && *p >= '0' && *p <= '9'; ++p) {
        any = true;
        if (mantissa == 0 && *p == '0')
            continue; // leading zeros are not significant
        if (++digits > 19)
            return nullptr;
        mantissa = mantissa * 10 + static_cast<uint64_t>(*p - '0');
    }
    if (p != last && *p == '.') {
        for (++p; p != last && *p >= '0' && *p <= '9'; ++p) {
            any = true;
            --exponent;
            if (mantissa == 0 && *p == '0')
                continue;
            if (++digits > 19)
                return nullptr;
            mantissa = mantissa * 10 + static_cast<uint64_t>(*p - '0');
        }
    }
    if (!any)
        return nullptr;
    if (p != last && (*p == 'e' || *p == 'E')) {
        const char* q = p + 1;
        bool negativeExponent = false;
        if (q != last && (*q == '-' || *q == '+')) {
            negativeExponent = *q == '-';
            ++q;
        }
        if (q != last && *q >= '0' && *q <= '9') {
            int written = 0;
            for (; q != last && *q >= '0' && *q <= '9'; ++q) {
                if (written > 1000)
                    return nullptr;
                written = written * 10 + (*q - '0');
            }
            exponent += negativeExponent ? -written : written;
            p = q;
        }
    }
    if (mantissa > (1ULL << 53) || exponent < -22 || exponent > 22)
        return nullptr;
    double result = static_cast<double>(mantissa);
    if (exponent < 0)
        result /= kExactDoublePowers[-exponent];
    else
        result *= kExactDoublePowers[exponent];
    if (result != 0.0 && (result < 1.1754943508222875e-38 || result > 3.4028234663852886e38))
        return nullptr;
    uint64_t bits;
    std::memcpy(&bits, &result, sizeof(bits));
    if ((bits & ((1ULL << 29) - 1)) == (1ULL << 28))
        return nullptr; // exactly half-way between two floats
    const auto single = static_cast<float>(result);
    value = negative ? -single : single;
    return p;
}

std::string pad(std::string digits, bool negative, int minWidth, char fill)
{
    const std::size_t width = minWidth > 0 ? static_cast<std::size_t>(minWidth) : 0;
    const std::size_t length = digits.size() + (negative ? 1 : 0);
    if (length >= width)
        return negative ? "-" + digits : digits;
    const std::string padding(width - length, fill);
    if (fill == '0')
        return (negative ? "-" : "") + padding + digits;
    return padding + (negative ? "-" : "") + digits;
}

std::string unsignedDigits(uint64_t value)
{
    char buffer[24];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return std::string(buffer, result.ptr);
}

} // namespace

const locale_t vkStringUtils::msCLocale = makeCLocale();
const std::locale vkStringUtils::msCplusLocale = std::locale::classic();

std::string vkStringUtils::fromDouble(double value, int precision, FloatFormat format)
{
    std::string text;
    appendFloat(text, value, precision, format);
    return text;
}

void vkStringUtils::appendFloat(std::string& out, double value, int precision, FloatFormat format)
{
    char stackBuffer[kStackBuffer];
    if (char* end = formatInto(stackBuffer, stackBuffer + sizeof(stackBuffer), value, precision, format)) {
        out.append(stackBuffer, end);
        return;
    }
    std::vector<char> heapBuffer(kStackBuffer + static_cast<std::size_t>(precision > 0 ? precision : 0));
    char* end = formatInto(heapBuffer.data(), heapBuffer.data() + heapBuffer.size(), value, precision, format);
    out.append(heapBuffer.data(), end != nullptr ? end : heapBuffer.data());
}

std::size_t vkStringUtils::formatFloat(char* buffer, std::size_t size, float value, int precision, FloatFormat format)
{
    // Every output of the float path fits 40 characters.
    if (size > 40 && format != FloatFormat::Scientific) {
        if (char* end = formatSingleFixed(buffer, value, precision < 0 ? 6 : precision,
                                          format == FloatFormat::FixedTrimZeros)) {
            *end = '\0';
            return static_cast<std::size_t>(end - buffer);
        }
    }
    return formatFloat(buffer, size, static_cast<double>(value), precision, format);
}

std::size_t vkStringUtils::formatFloat(char* buffer, std::size_t size, double value, int precision, FloatFormat format)
{
    if (size == 0)
        return 0;
    // The writers' hot path goes straight to the exact fixed formatter.
    if (format != FloatFormat::Scientific) {
        if (char* end = formatFixedExact(buffer, buffer + size - 1, value, precision < 0 ? 6 : precision,
                                         format == FloatFormat::FixedTrimZeros)) {
            *end = '\0';
            return static_cast<std::size_t>(end - buffer);
        }
    }
    char* end = formatInto(buffer, buffer + size - 1, value, precision, format);
    if (end == nullptr) {
        buffer[0] = '\0';
        return 0;
    }
    *end = '\0';
    return static_cast<std::size_t>(end - buffer);
}

const char* vkStringUtils::toFloatPrefix(const char* first, const char* last, float& value)
{
    return scanPlainDecimal(first, last, value);
}

bool vkStringUtils::toFloat(const char* first, const char* last, float& value)
{
    float fast;
    if (scanPlainDecimal(first, last, fast) == last) {
        value = fast;
        return true;
    }
    const auto length = static_cast<std::size_t>(last - first);
    char stackBuffer[128];
    std::string heapBuffer;
    const char* text = stackBuffer;
    if (length < sizeof(stackBuffer)) {
        std::memcpy(stackBuffer, first, length);
        stackBuffer[length] = '\0';
    } else {
        heapBuffer.assign(first, length);
        text = heapBuffer.c_str();
    }
    char* end = nullptr;
    const float number = strtof_l(text, &end, msCLocale);
    if (end != text + length)
        return false;
    value = number;
    return true;
}

std::string vkStringUtils::fromInt64(int64_t value, int minWidth, char fill)
{
    const bool negative = value < 0;
    // Negate in unsigned arithmetic so that INT64_MIN survives.
    const uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    return pad(unsignedDigits(magnitude), negative, minWidth, fill);
}

std::string vkStringUtils::fromUInt64(uint64_t value, int minWidth, char fill)
{
    return pad(unsignedDigits(value), false, minWidth, fill);
}

bool vkStringUtils::IsUtf8String(const char* data, std::size_t size)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    std::size_t i = 0;
    while (i < size) {
        const unsigned char lead = bytes[i];
        if (lead < 0x80) {
            ++i;
            continue;
        }
        std::size_t length;
        uint32_t codePoint;
        uint32_t minimum;
        if ((lead & 0xE0) == 0xC0) {
            length = 2;
            codePoint = lead & 0x1F;
            minimum = 0x80;
        } else if ((lead & 0xF0) == 0xE0) {
            length = 3;
            codePoint = lead & 0x0F;
            minimum = 0x800;
        } else if ((lead & 0xF8) == 0xF0) {
            length = 4;
            codePoint = lead & 0x07;
            minimum = 0x10000;
        } else {
            return false; // a continuation byte or 0xF8..0xFF as lead
        }
        if (size - i < length)
            return false;
        for (std::size_t k = 1; k < length; ++k) {
            const unsigned char next = bytes[i + k];
            if ((next & 0xC0) != 0x80)
                return false;
            codePoint = (codePoint << 6) | (next & 0x3F);
        }
        if (codePoint < minimum || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
            return false;
        i += length;
    }
    return true;
}

} // namespace vk
