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
    const std::chars_format chars =
        format == vkStringUtils::FloatFormat::Scientific ? std::chars_format::scientific : std::chars_format::fixed;
    const std::to_chars_result result = std::to_chars(first, last, value, chars, precision);
    if (result.ec != std::errc())
        return nullptr;
    char* end = result.ptr;
    if (format == vkStringUtils::FloatFormat::FixedTrimZeros && std::memchr(first, '.', end - first) != nullptr) {
        while (end > first && end[-1] == '0')
            --end;
        if (end > first && end[-1] == '.')
            --end;
    }
    return end;
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

std::size_t vkStringUtils::formatFloat(char* buffer, std::size_t size, double value, int precision,
                                       FloatFormat format)
{
    if (size == 0)
        return 0;
    char* end = formatInto(buffer, buffer + size - 1, value, precision, format);
    if (end == nullptr) {
        buffer[0] = '\0';
        return 0;
    }
    *end = '\0';
    return static_cast<std::size_t>(end - buffer);
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
