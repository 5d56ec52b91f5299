#include <vkSystem/vkStringUtils.h>

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

std::string formatChars(double value, std::chars_format format, int precision)
{
    char stackBuffer[kStackBuffer];
    std::to_chars_result result =
        std::to_chars(stackBuffer, stackBuffer + sizeof(stackBuffer), value, format, precision);
    if (result.ec == std::errc())
        return std::string(stackBuffer, result.ptr);
    std::vector<char> heapBuffer(kStackBuffer + static_cast<std::size_t>(precision));
    result = std::to_chars(heapBuffer.data(), heapBuffer.data() + heapBuffer.size(), value, format, precision);
    return std::string(heapBuffer.data(), result.ptr);
}

void trimFractionZeros(std::string& text)
{
    if (text.find('.') == std::string::npos)
        return;
    std::size_t end = text.size();
    while (end > 0 && text[end - 1] == '0')
        --end;
    if (end > 0 && text[end - 1] == '.')
        --end;
    text.resize(end);
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
    if (precision < 0)
        precision = 6;
    // to_chars spells these "nan", "-nan", "inf", "-inf"; a sign on NaN means
    // nothing to a reader.
    if (std::isnan(value))
        return "nan";
    switch (format) {
    case FloatFormat::Scientific:
        return formatChars(value, std::chars_format::scientific, precision);
    case FloatFormat::FixedTrimZeros: {
        std::string text = formatChars(value, std::chars_format::fixed, precision);
        trimFractionZeros(text);
        return text;
    }
    case FloatFormat::Fixed:
    default:
        return formatChars(value, std::chars_format::fixed, precision);
    }
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
