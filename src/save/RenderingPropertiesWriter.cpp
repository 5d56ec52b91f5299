#include <svg/RenderingProperties.h>
#include <svg/Writer.h>

namespace vk::svg {

namespace {

const char* lineCapKeyword(LineCap cap)
{
    switch (cap) {
    case LineCap::Round:
        return "round";
    case LineCap::Square:
        return "square";
    default:
        return "butt";
    }
}

const char* lineJoinKeyword(LineJoin join)
{
    switch (join) {
    case LineJoin::Arcs:
        return "arcs";
    case LineJoin::Bevel:
        return "bevel";
    case LineJoin::MiterClip:
        return "miter-clip";
    case LineJoin::Round:
        return "round";
    default:
        return "miter";
    }
}

const char* fillRuleKeyword(FillRule rule) { return rule == FillRule::EvenOdd ? "evenodd" : "nonzero"; }

std::string vectorEffectKeywords(uint32_t bits)
{
    static const std::pair<VectorEffect, const char*> effects[] = {
        {VectorEffect::NonScalingStroke, "non-scaling-stroke"},
        {VectorEffect::NonScalingSize, "non-scaling-size"},
        {VectorEffect::NonRotation, "non-rotation"},
        {VectorEffect::FixedPosition, "fixed-position"},
    };
    std::string text;
    for (const auto& [bit, keyword] : effects)
        if ((bits & static_cast<uint32_t>(bit)) != 0) {
            if (!text.empty())
                text += ' ';
            text += keyword;
        }
    return text.empty() ? "none" : text;
}

using Context = vk::xml::XmlSaveContext;

bool writeFloat(Context& context, const SaveOptions& options, const char* name, const std::optional<float>& value)
{
    return !value || Helpers::writeAttributeFloatValue(context, options, name, *value);
}

bool writeText(Context& context, const SaveOptions& options, const char* name, const std::optional<std::string>& text)
{
    return !text || text->empty() || Helpers::writeAttributeString(context, options, name, *text);
}

} // namespace

bool RenderingProperties::writeAttributes(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    if (!(writeFloat(context, options, "stroke-width", mStrokeWidth) &&
          writeFloat(context, options, "stroke-opacity", mStrokeOpacity) &&
          writeText(context, options, "stroke", mStroke) && writeText(context, options, "fill", mFill) &&
          writeFloat(context, options, "fill-opacity", mFillOpacity) &&
          writeText(context, options, "class", mClassName) && writeFloat(context, options, "opacity", mOpacity)))
        return false;
    if (mStrokeLinecap &&
        !Helpers::writeAttributeString(context, options, "stroke-linecap", lineCapKeyword(*mStrokeLinecap)))
        return false;
    if (mStrokeLinejoin &&
        !Helpers::writeAttributeString(context, options, "stroke-linejoin", lineJoinKeyword(*mStrokeLinejoin)))
        return false;
    if (mStrokeDasharray && !Helpers::writeAttributeUnitValues(context, options, "stroke-dasharray", *mStrokeDasharray))
        return false;
    if (mVectorEffect &&
        !Helpers::writeAttributeString(context, options, "vector-effect", vectorEffectKeywords(*mVectorEffect)))
        return false;
    // Written after everything older, so that documents without them keep
    // their bytes.
    if (mFillRule && !Helpers::writeAttributeString(context, options, "fill-rule", fillRuleKeyword(*mFillRule)))
        return false;
    if (mClipRule && !Helpers::writeAttributeString(context, options, "clip-rule", fillRuleKeyword(*mClipRule)))
        return false;
    return writeFloat(context, options, "stroke-miterlimit", mStrokeMiterlimit) &&
           writeFloat(context, options, "stroke-dashoffset", mStrokeDashoffset);
}

} // namespace vk::svg
