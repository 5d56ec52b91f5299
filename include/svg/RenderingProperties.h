#ifndef VKSVG_RENDERINGPROPERTIES_H
#define VKSVG_RENDERINGPROPERTIES_H

#include <svg/Export.h>
#include <svg/UnitValue.h>

#include <wm4/Wm4ColorRGBA.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vk::xml {
class XmlSaveContext;
}

namespace vk::svg {

struct SaveOptions;

/// The stroke-linecap keywords.
enum class LineCap : uint32_t {
    Butt = 0,
    Round = 1,
    Square = 2,
};

/// The stroke-linejoin keywords.
enum class LineJoin : uint32_t {
    Arcs = 0,
    Bevel = 1,
    Miter = 2,
    MiterClip = 3,
    Round = 4,
};

/// How the inside of a shape is decided: by the signed winding number, or by
/// the parity of crossings.
enum class FillRule : uint32_t {
    NonZero = 0,
    EvenOdd = 1,
};

/// Bits of the vector-effect set; an engaged set of 0 means "none".
enum class VectorEffect : uint32_t {
    NonScalingStroke = 1,
    NonScalingSize = 2,
    NonRotation = 4,
    FixedPosition = 8,
};

/// The presentation attributes of one item. Every field is optional: unset
/// means the attribute was absent, and cascadeParent fills it from the parent.
/// Paints stay text until a colour is asked for, so the source spelling
/// survives a load and save.
///
/// Threads: a plain value; one record may be read from several threads at
/// once, but not read while another thread changes it.
class VKSVG_API RenderingProperties {
public:
    /// Every field unset.
    RenderingProperties() = default;

    ///@{
    /// Group opacity; multiplies the alpha of both fill and stroke.
    const std::optional<float>& getOpacity() const { return mOpacity; }
    std::optional<float>& editOpacity() { return mOpacity; }
    ///@}
    ///@{
    /// Stroke width in user units.
    const std::optional<float>& getStrokeWidth() const { return mStrokeWidth; }
    std::optional<float>& editStrokeWidth() { return mStrokeWidth; }
    ///@}
    ///@{
    /// Alpha factor of the stroke.
    const std::optional<float>& getStrokeOpacity() const { return mStrokeOpacity; }
    std::optional<float>& editStrokeOpacity() { return mStrokeOpacity; }
    ///@}
    ///@{
    /// Stroke paint exactly as written: a colour text or "none".
    const std::optional<std::string>& getStroke() const { return mStroke; }
    std::optional<std::string>& editStroke() { return mStroke; }
    ///@}
    ///@{
    /// The stroke-linecap keyword.
    const std::optional<LineCap>& getStrokeLinecap() const { return mStrokeLinecap; }
    std::optional<LineCap>& editStrokeLinecap() { return mStrokeLinecap; }
    ///@}
    ///@{
    /// The stroke-linejoin keyword.
    const std::optional<LineJoin>& getStrokeLinejoin() const { return mStrokeLinejoin; }
    std::optional<LineJoin>& editStrokeLinejoin() { return mStrokeLinejoin; }
    ///@}
    ///@{
    /// Dash and gap lengths with their units, as written.
    const std::optional<std::vector<UnitValue>>& getStrokeDasharray() const { return mStrokeDasharray; }
    std::optional<std::vector<UnitValue>>& editStrokeDasharray() { return mStrokeDasharray; }
    ///@}
    ///@{
    /// The class attribute text, kept as it is.
    const std::optional<std::string>& getClassName() const { return mClassName; }
    std::optional<std::string>& editClassName() { return mClassName; }
    ///@}
    ///@{
    /// Fill paint exactly as written: a colour text or "none".
    const std::optional<std::string>& getFill() const { return mFill; }
    std::optional<std::string>& editFill() { return mFill; }
    ///@}
    ///@{
    /// Alpha factor of the fill.
    const std::optional<float>& getFillOpacity() const { return mFillOpacity; }
    std::optional<float>& editFillOpacity() { return mFillOpacity; }
    ///@}
    ///@{
    /// A set of VectorEffect bits; an engaged 0 means "none".
    const std::optional<uint32_t>& getVectorEffect() const { return mVectorEffect; }
    std::optional<uint32_t>& editVectorEffect() { return mVectorEffect; }
    ///@}
    // The fields below are set only by the full reading profile or by hosts;
    // the writer writes them only when set.
    ///@{
    /// The fill-rule; unset means non-zero. Set only by the full reading
    /// profile or by hosts, and written only when set, like the three below.
    const std::optional<FillRule>& getFillRule() const { return mFillRule; }
    std::optional<FillRule>& editFillRule() { return mFillRule; }
    ///@}
    ///@{
    /// The clip-rule; kept and written, not applied.
    const std::optional<FillRule>& getClipRule() const { return mClipRule; }
    std::optional<FillRule>& editClipRule() { return mClipRule; }
    ///@}
    ///@{
    /// The stroke-miterlimit, in multiples of the stroke width.
    const std::optional<float>& getStrokeMiterlimit() const { return mStrokeMiterlimit; }
    std::optional<float>& editStrokeMiterlimit() { return mStrokeMiterlimit; }
    ///@}
    ///@{
    /// The stroke-dashoffset, in user units.
    const std::optional<float>& getStrokeDashoffset() const { return mStrokeDashoffset; }
    std::optional<float>& editStrokeDashoffset() { return mStrokeDashoffset; }
    ///@}

    /// Fills the unset fields from `parent`. Values are copied, never
    /// combined: opacity does not multiply down the tree. Opacity and class
    /// are inherited on purpose; vector effects never are. Fill and clip
    /// rules, miter limit and dash offset inherit as in SVG.
    void cascadeParent(const RenderingProperties& parent);

    /// False only for a fill of exactly "none" or a non-positive effective fill
    /// opacity; an unset fill means the default black fill.
    bool hasFill() const;
    /// False for an unset stroke, a stroke of exactly "none" or a non-positive
    /// effective stroke opacity.
    bool hasStroke() const;

    /// Unset paint: black with `opacity` clamped to [0, 1] as alpha. "none" or
    /// text that is no colour: transparent black. Otherwise the colour with
    /// its alpha times `opacity`, clamped to [0, 1].
    static Wm4::ColorRGBA ParseColor(const std::optional<std::string>& paint, float opacity);
    /// Fill and stroke colours with fill-/stroke-opacity and opacity applied.
    /// An unset stroke yields black, so test hasStroke first.
    ///@{
    Wm4::ColorRGBA parseFillColor() const;
    Wm4::ColorRGBA parseStrokeColor() const;
    ///@}

    /// Writes the set fields as presentation attributes, stopping at the first
    /// failure.
    bool writeAttributes(vk::xml::XmlSaveContext& context, const SaveOptions& options) const;

    ///@{
    /// Field by field: set or unset alike, and set values exactly equal.
    friend bool operator==(const RenderingProperties& a, const RenderingProperties& b)
    {
        return a.mOpacity == b.mOpacity && a.mStrokeWidth == b.mStrokeWidth && a.mStrokeOpacity == b.mStrokeOpacity &&
               a.mStroke == b.mStroke && a.mStrokeLinecap == b.mStrokeLinecap &&
               a.mStrokeLinejoin == b.mStrokeLinejoin && a.mStrokeDasharray == b.mStrokeDasharray &&
               a.mClassName == b.mClassName && a.mFill == b.mFill && a.mFillOpacity == b.mFillOpacity &&
               a.mVectorEffect == b.mVectorEffect && a.mFillRule == b.mFillRule && a.mClipRule == b.mClipRule &&
               a.mStrokeMiterlimit == b.mStrokeMiterlimit && a.mStrokeDashoffset == b.mStrokeDashoffset;
    }
    friend bool operator!=(const RenderingProperties& a, const RenderingProperties& b) { return !(a == b); }
    ///@}

private:
    float effectiveFillOpacity() const;
    float effectiveStrokeOpacity() const;

    std::optional<float> mOpacity;
    std::optional<float> mStrokeWidth;
    std::optional<float> mStrokeOpacity;
    std::optional<std::string> mStroke;
    std::optional<LineCap> mStrokeLinecap;
    std::optional<LineJoin> mStrokeLinejoin;
    std::optional<std::vector<UnitValue>> mStrokeDasharray;
    std::optional<std::string> mClassName;
    std::optional<std::string> mFill;
    std::optional<float> mFillOpacity;
    std::optional<uint32_t> mVectorEffect;
    std::optional<FillRule> mFillRule;
    std::optional<FillRule> mClipRule;
    std::optional<float> mStrokeMiterlimit;
    std::optional<float> mStrokeDashoffset;
};

} // namespace vk::svg

#endif
