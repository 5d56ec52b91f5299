#include "save/SvgNumber.h"

#include <svg/Writer.h>

#include <vkSystem/vkStringUtils.h>

#include <charconv>
#include <cmath>
#include <cstring>

namespace vk::svg {

namespace {

constexpr auto kFormat = vk::vkStringUtils::FloatFormat::FixedTrimZeros;

bool isNegativeZero(const char* text, std::size_t length) { return length == 2 && text[0] == '-' && text[1] == '0'; }

// The fewest digits that read back to the same float, in fixed notation as
// the rest of the writer. to_chars never looks at the locale, and without a
// precision it picks the shortest round-trip text of the float itself, not
// of its widening to double (so 0.1f stays 0.1).
std::size_t formatShortest(char* buffer, std::size_t size, float value)
{
    if (size < 2)
        return 0;
    const std::to_chars_result result = std::to_chars(buffer, buffer + size - 1, value, std::chars_format::fixed);
    if (result.ec != std::errc())
        return 0;
    *result.ptr = '\0';
    return static_cast<std::size_t>(result.ptr - buffer);
}

} // namespace

namespace impl {

std::size_t FormatSvgNumber(char* buffer, std::size_t size, float value, const SaveOptions& options)
{
    // Not-a-number and infinities keep the spelling of the fixed writer.
    if (WritesShortestNumbers(options) && std::isfinite(value))
        return formatShortest(buffer, size, value);
    return vk::vkStringUtils::formatFloat(buffer, size, value, options.precision, kFormat);
}

void AppendSvgNumber(std::string& out, float value, const SaveOptions& options)
{
    char buffer[64];
    std::size_t length = FormatSvgNumber(buffer, sizeof(buffer), value, options);
    if (length == 0) {
        // Only a very large precision does not fit; rare enough for the heap.
        out += floatToSvgNumber(value, options);
        return;
    }
    if (isNegativeZero(buffer, length))
        out += '0';
    else
        out.append(buffer, length);
}

SvgNumberText::SvgNumberText(float value, const SaveOptions& options)
{
    const std::size_t length = FormatSvgNumber(mBuffer, sizeof(mBuffer), value, options);
    if (length == 0)
        mHeap = floatToSvgNumber(value, options);
    else if (isNegativeZero(mBuffer, length))
        std::memcpy(mBuffer, "0", 2);
}

} // namespace impl

std::string floatToSvgNumber(float value, const SaveOptions& options)
{
    if (impl::WritesShortestNumbers(options) && std::isfinite(value)) {
        char buffer[64];
        const std::size_t length = formatShortest(buffer, sizeof(buffer), value);
        if (length != 0)
            return isNegativeZero(buffer, length) ? std::string("0") : std::string(buffer, length);
    }
    std::string text = vk::vkStringUtils::fromFloatImpl<float>(value, options.precision, kFormat);
    if (isNegativeZero(text.data(), text.size()))
        return "0";
    return text;
}

} // namespace vk::svg
