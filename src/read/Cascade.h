#ifndef VKSVG_READ_CASCADE_H
#define VKSVG_READ_CASCADE_H

// The style of one element: which properties its presentation attributes,
// the style sheets and its style attribute declare, who wins by SVG's
// precedence, and the computed values that its children inherit.

#include "read/ElementTree.h"
#include "read/StyleSheet.h"
#include "read/Values.h"

#include <svg/RenderingProperties.h>

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vk::svg::impl {

enum class Property : uint8_t {
    Fill,
    FillOpacity,
    FillRule,
    Stroke,
    StrokeWidth,
    StrokeOpacity,
    StrokeLinecap,
    StrokeLinejoin,
    StrokeMiterlimit,
    StrokeDasharray,
    StrokeDashoffset,
    Opacity,
    Color,
    Display,
    Visibility,
    FontSize,
    FontFamily,
    FontWeight,
    FontStyle,
    TextDecoration,
    ClipRule,
    VectorEffect,
    ClipPath,
    Mask,
    Filter,
    MarkerStart,
    MarkerMid,
    MarkerEnd,
    StopColor,
    StopOpacity,
    Count
};

constexpr std::size_t kPropertyCount = static_cast<std::size_t>(Property::Count);

constexpr uint64_t PropertyBit(Property p) { return uint64_t(1) << static_cast<unsigned>(p); }

// The property a name stands for (case-sensitive for attributes,
// lower-cased by the caller for CSS), or Count.
Property PropertyOfName(std::string_view name);

// The winning declaration of each property on one element.
struct Declared {
    struct Entry {
        std::string_view value;
        uint32_t rank = 0; // 0: not declared
        uint32_t specificity = 0;
        uint32_t order = 0;
    };
    std::array<Entry, kPropertyCount> entries{};

    bool has(Property p) const { return entries[static_cast<std::size_t>(p)].rank != 0; }
    std::string_view value(Property p) const { return entries[static_cast<std::size_t>(p)].value; }
};

struct Paint {
    enum class Kind : uint8_t { None, Color, CurrentColor, Url };
    Kind kind = Kind::None;
    CssColor color;
    std::string_view url; // the id, without "#"
    bool hasFallback = false;
    Paint::Kind fallbackKind = Kind::None;
    CssColor fallback;
};

// Computed values. Every field inherits except those marked.
struct ComputedStyle {
    Paint fill{Paint::Kind::Color, CssColor{}, {}, false, Paint::Kind::None, CssColor{}};
    double fillOpacity = 1.0;
    FillRule fillRule = FillRule::NonZero;
    Paint stroke;
    double strokeWidth = 1.0;
    double strokeOpacity = 1.0;
    LineCap linecap = LineCap::Butt;
    LineJoin linejoin = LineJoin::Miter;
    double miterlimit = 4.0;
    std::vector<double> dasharray;
    double dashoffset = 0.0;
    CssColor color;
    bool visible = true;
    double fontSize = 16.0;
    std::string_view fontFamily;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    FillRule clipRule = FillRule::NonZero;
    // Not inherited:
    bool display = true;
    double opacity = 1.0;
    uint32_t vectorEffect = 0;
    CssColor stopColor;
    double stopOpacity = 1.0;
};

// Collects an element's declarations and computes its style, warning once
// per unknown property name and per rejected value.
class Cascade {
public:
    Cascade(const ElementTree& tree, const StyleSheet& sheet, const WarningSink& warn);

    // The declarations of `element`. Views point into the tree, the sheet
    // or the style attribute, all of which outlive the result.
    void collect(ElementIndex element, Declared& declared);

    // The computed style of an element with these declarations under a
    // parent of style `parent`, in a viewport of `viewport` user units.
    // Returns the set of declared properties whose values were accepted,
    // one bit per Property.
    uint64_t compute(const Declared& declared, const ComputedStyle& parent, double viewportWidth, double viewportHeight,
                     ComputedStyle& style);

    // "url(#id)" as the id, or empty.
    static std::string_view UrlId(std::string_view value);

private:
    void declare(Declared& declared, std::string_view name, std::string_view value, uint32_t rank, uint32_t specificity,
                 uint32_t order, bool css);
    bool parsePaint(std::string_view text, Paint& paint);
    void reject(Property property, std::string_view value);

    const ElementTree& mTree;
    const StyleSheet& mSheet;
    const WarningSink& mWarn;
    std::vector<CssDeclaration> mScratch;
    std::set<std::string, std::less<>> mUnknownProperties;
    std::set<std::string, std::less<>> mRejected;
};

} // namespace vk::svg::impl

#endif
