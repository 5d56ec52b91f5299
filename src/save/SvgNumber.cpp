#include "save/SvgNumber.h"

#include <svg/Writer.h>

#include <vkSystem/vkStringUtils.h>

#include <cstring>

namespace vk::svg {

namespace {

constexpr auto kFormat = vk::vkStringUtils::FloatFormat::FixedTrimZeros;

bool isNegativeZero(const char* text, std::size_t length) { return length == 2 && text[0] == '-' && text[1] == '0'; }

} // namespace

namespace impl {

void AppendSvgNumber(std::string& out, float value, int precision)
{
    char buffer[64];
    std::size_t length = vk::vkStringUtils::formatFloat(buffer, sizeof(buffer), value, precision, kFormat);
    if (length == 0) {
        // Only a very large precision does not fit; rare enough for the heap.
        out += floatToSvgNumber(value, SaveOptions{precision, false, true});
        return;
    }
    if (isNegativeZero(buffer, length))
        out += '0';
    else
        out.append(buffer, length);
}

SvgNumberText::SvgNumberText(float value, int precision)
{
    const std::size_t length = vk::vkStringUtils::formatFloat(mBuffer, sizeof(mBuffer), value, precision, kFormat);
    if (length == 0)
        mHeap = floatToSvgNumber(value, SaveOptions{precision, false, true});
    else if (isNegativeZero(mBuffer, length))
        std::memcpy(mBuffer, "0", 2);
}

} // namespace impl

std::string floatToSvgNumber(float value, const SaveOptions& options)
{
    std::string text = vk::vkStringUtils::fromFloatImpl<float>(value, options.precision, kFormat);
    if (isNegativeZero(text.data(), text.size()))
        return "0";
    return text;
}

} // namespace vk::svg
