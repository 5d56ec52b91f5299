#include <svg/RenderingProperties.h>

#include <svg/Color.h>

namespace vk::svg {

namespace {

// NaN passes through untouched; only real excursions are pulled back.
float ClampUnit(float value)
{
    if (value < 0.0f) {
        return 0.0f;
    }
    if (value > 1.0f) {
        return 1.0f;
    }
    return value;
}

template <class T> void InheritUnset(std::optional<T>& own, const std::optional<T>& parent)
{
    if (!own.has_value() && parent.has_value()) {
        own = parent;
    }
}

} // namespace

void RenderingProperties::cascadeParent(const RenderingProperties& parent)
{
    InheritUnset(mOpacity, parent.mOpacity);
    InheritUnset(mStrokeWidth, parent.mStrokeWidth);
    InheritUnset(mStrokeOpacity, parent.mStrokeOpacity);
    InheritUnset(mStroke, parent.mStroke);
    InheritUnset(mStrokeLinecap, parent.mStrokeLinecap);
    InheritUnset(mStrokeLinejoin, parent.mStrokeLinejoin);
    InheritUnset(mStrokeDasharray, parent.mStrokeDasharray);
    InheritUnset(mClassName, parent.mClassName);
    InheritUnset(mFill, parent.mFill);
    InheritUnset(mFillOpacity, parent.mFillOpacity);
    InheritUnset(mFillRule, parent.mFillRule);
    InheritUnset(mClipRule, parent.mClipRule);
    InheritUnset(mStrokeMiterlimit, parent.mStrokeMiterlimit);
    InheritUnset(mStrokeDashoffset, parent.mStrokeDashoffset);
    // mVectorEffect is never inherited: it belongs to the element that names it.
}

// The factors are deliberately not clamped before they are multiplied.
float RenderingProperties::effectiveFillOpacity() const
{
    return mFillOpacity.value_or(1.0f) * mOpacity.value_or(1.0f);
}

float RenderingProperties::effectiveStrokeOpacity() const
{
    return mStrokeOpacity.value_or(1.0f) * mOpacity.value_or(1.0f);
}

bool RenderingProperties::hasFill() const
{
    // Only the exact lower-case keyword switches filling off; an unset fill
    // is the default black fill.
    if (mFill.has_value() && *mFill == "none") {
        return false;
    }
    return effectiveFillOpacity() > 0.0f;
}

bool RenderingProperties::hasStroke() const
{
    if (!mStroke.has_value() || *mStroke == "none") {
        return false;
    }
    return effectiveStrokeOpacity() > 0.0f;
}

Wm4::ColorRGBA RenderingProperties::ParseColor(const std::optional<std::string>& paint, float opacity)
{
    if (!paint.has_value()) {
        return Wm4::ColorRGBA(0.0f, 0.0f, 0.0f, ClampUnit(opacity));
    }
    if (*paint == "none") {
        return Wm4::ColorRGBA(0.0f, 0.0f, 0.0f, 0.0f);
    }
    Wm4::Vector4<unsigned char> rgba(0, 0, 0, 0);
    if (!ParseSvgColor(*paint, rgba)) {
        // An unreadable paint silently becomes transparent; the loader is the
        // place that reports bad colours.
        return Wm4::ColorRGBA(0.0f, 0.0f, 0.0f, 0.0f);
    }
    return Wm4::ColorRGBA(static_cast<float>(rgba[0]) / 255.0f, static_cast<float>(rgba[1]) / 255.0f,
                          static_cast<float>(rgba[2]) / 255.0f,
                          ClampUnit((static_cast<float>(rgba[3]) / 255.0f) * opacity));
}

Wm4::ColorRGBA RenderingProperties::parseFillColor() const { return ParseColor(mFill, effectiveFillOpacity()); }

Wm4::ColorRGBA RenderingProperties::parseStrokeColor() const { return ParseColor(mStroke, effectiveStrokeOpacity()); }

} // namespace vk::svg
