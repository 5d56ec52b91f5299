#include "read/Values.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>

namespace vk::svg::impl {

namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f'; }

// The next white-space separated word, or an empty view at the end.
std::string_view NextWord(std::string_view text, std::size_t& position)
{
    while (position < text.size() && IsSpace(text[position])) {
        ++position;
    }
    const std::size_t start = position;
    while (position < text.size() && !IsSpace(text[position])) {
        ++position;
    }
    return text.substr(start, position - start);
}

bool FitsFloat(double value) { return std::isfinite(value) && std::fabs(value) <= FLT_MAX; }

// Scale 0 for a box that cannot be mapped; its element is not rendered.
Wm4::Matrix3<float> Collapsed() { return Wm4::Matrix3<float>(0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f); }

} // namespace

bool ParseViewBox(std::string_view text, ViewBox& box)
{
    std::vector<double> values;
    if (!ParseNumberList(text, values) || values.size() != 4 || values[2] < 0.0 || values[3] < 0.0) {
        return false;
    }
    box = ViewBox{values[0], values[1], values[2], values[3]};
    return true;
}

bool ParseAspectRatio(std::string_view text, AspectRatio& ratio)
{
    static constexpr struct {
        std::string_view name;
        Align align;
    } kAligns[] = {{"none", Align::None},         {"xMinYMin", Align::XMinYMin}, {"xMidYMin", Align::XMidYMin},
                   {"xMaxYMin", Align::XMaxYMin}, {"xMinYMid", Align::XMinYMid}, {"xMidYMid", Align::XMidYMid},
                   {"xMaxYMid", Align::XMaxYMid}, {"xMinYMax", Align::XMinYMax}, {"xMidYMax", Align::XMidYMax},
                   {"xMaxYMax", Align::XMaxYMax}};
    std::size_t position = 0;
    std::string_view word = NextWord(text, position);
    // "defer" only ever concerned an <image> of another SVG file and SVG 2
    // dropped it: read and ignored.
    if (word == "defer") {
        word = NextWord(text, position);
    }
    const auto* found =
        std::find_if(std::begin(kAligns), std::end(kAligns), [&](const auto& entry) { return entry.name == word; });
    if (found == std::end(kAligns)) {
        return false;
    }
    AspectRatio result;
    result.align = found->align;
    word = NextWord(text, position);
    if (word == "slice") {
        result.slice = true;
        word = NextWord(text, position);
    } else if (word == "meet") {
        word = NextWord(text, position);
    }
    if (!word.empty()) {
        return false;
    }
    ratio = result;
    return true;
}

Wm4::Matrix3<float> ViewBoxTransform(const ViewBox& box, const AspectRatio& ratio, double width, double height)
{
    if (!(box.width > 0.0) || !(box.height > 0.0) || !(width >= 0.0) || !(height >= 0.0) || !std::isfinite(box.x) ||
        !std::isfinite(box.y) || !std::isfinite(box.width) || !std::isfinite(box.height) || !std::isfinite(width) ||
        !std::isfinite(height)) {
        return Collapsed();
    }
    double scaleX = width / box.width;
    double scaleY = height / box.height;
    double translateX = 0.0;
    double translateY = 0.0;
    if (ratio.align == Align::None) {
        translateX = -box.x * scaleX;
        translateY = -box.y * scaleY;
    } else {
        const double scale = ratio.slice ? std::max(scaleX, scaleY) : std::min(scaleX, scaleY);
        scaleX = scale;
        scaleY = scale;
        translateX = -box.x * scale;
        translateY = -box.y * scale;
        const double spareX = width - box.width * scale;
        const double spareY = height - box.height * scale;
        switch (ratio.align) {
        case Align::XMidYMin:
        case Align::XMidYMid:
        case Align::XMidYMax:
            translateX += spareX / 2.0;
            break;
        case Align::XMaxYMin:
        case Align::XMaxYMid:
        case Align::XMaxYMax:
            translateX += spareX;
            break;
        default:
            break;
        }
        switch (ratio.align) {
        case Align::XMinYMid:
        case Align::XMidYMid:
        case Align::XMaxYMid:
            translateY += spareY / 2.0;
            break;
        case Align::XMinYMax:
        case Align::XMidYMax:
        case Align::XMaxYMax:
            translateY += spareY;
            break;
        default:
            break;
        }
    }
    if (!FitsFloat(scaleX) || !FitsFloat(scaleY) || !FitsFloat(translateX) || !FitsFloat(translateY)) {
        return Collapsed();
    }
    return Wm4::Matrix3<float>(static_cast<float>(scaleX), 0.0f, static_cast<float>(translateX), 0.0f,
                               static_cast<float>(scaleY), static_cast<float>(translateY), 0.0f, 0.0f, 1.0f);
}

} // namespace vk::svg::impl
