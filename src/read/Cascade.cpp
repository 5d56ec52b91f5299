#include "read/Cascade.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace vk::svg::impl {

namespace {

struct PropertyName {
    std::string_view name;
    Property property;
};

// Sorted by name for a binary search.
constexpr PropertyName kProperties[] = {
    {"clip-path", Property::ClipPath},
    {"clip-rule", Property::ClipRule},
    {"color", Property::Color},
    {"display", Property::Display},
    {"fill", Property::Fill},
    {"fill-opacity", Property::FillOpacity},
    {"fill-rule", Property::FillRule},
    {"filter", Property::Filter},
    {"font-family", Property::FontFamily},
    {"font-size", Property::FontSize},
    {"font-style", Property::FontStyle},
    {"font-weight", Property::FontWeight},
    {"marker-end", Property::MarkerEnd},
    {"marker-mid", Property::MarkerMid},
    {"marker-start", Property::MarkerStart},
    {"mask", Property::Mask},
    {"opacity", Property::Opacity},
    {"stop-color", Property::StopColor},
    {"stop-opacity", Property::StopOpacity},
    {"stroke", Property::Stroke},
    {"stroke-dasharray", Property::StrokeDasharray},
    {"stroke-dashoffset", Property::StrokeDashoffset},
    {"stroke-linecap", Property::StrokeLinecap},
    {"stroke-linejoin", Property::StrokeLinejoin},
    {"stroke-miterlimit", Property::StrokeMiterlimit},
    {"stroke-opacity", Property::StrokeOpacity},
    {"stroke-width", Property::StrokeWidth},
    {"text-decoration", Property::TextDecoration},
    {"vector-effect", Property::VectorEffect},
    {"visibility", Property::Visibility},
};

// Precedence of the places a declaration comes from, lowest first.
enum Rank : uint32_t {
    PresentationAttribute = 1,
    SheetNormal = 2,
    StyleNormal = 3,
    SheetImportant = 4,
    StyleImportant = 5,
};

constexpr std::size_t kMaxRemembered = 256;

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

std::string_view Trim(std::string_view text)
{
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

bool EqualsNoCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char x = a[i];
        if (x >= 'A' && x <= 'Z')
            x = static_cast<char>(x - 'A' + 'a');
        if (x != b[i])
            return false;
    }
    return true;
}

constexpr uint64_t Bit(Property p) { return uint64_t(1) << static_cast<unsigned>(p); }

double Clamp01(double v) { return v < 0.0 ? 0.0 : (v > 1.0 ? 1.0 : v); }

bool FontSizeKeyword(std::string_view text, double parent, double& size)
{
    static const std::pair<std::string_view, double> kSizes[] = {
        {"xx-small", 9.0}, {"x-small", 10.0}, {"small", 13.0},    {"medium", 16.0},
        {"large", 18.0},   {"x-large", 24.0}, {"xx-large", 32.0}, {"xxx-large", 48.0},
    };
    for (const auto& [name, value] : kSizes)
        if (text == name) {
            size = value;
            return true;
        }
    if (text == "larger") {
        size = parent * 1.2;
        return true;
    }
    if (text == "smaller") {
        size = parent / 1.2;
        return true;
    }
    return false;
}

// "none" or a list of effect keywords, as SVG 2 allows.
bool VectorEffects(std::string_view text, uint32_t& bits)
{
    static const std::pair<std::string_view, VectorEffect> kEffects[] = {
        {"non-scaling-stroke", VectorEffect::NonScalingStroke},
        {"non-scaling-size", VectorEffect::NonScalingSize},
        {"non-rotation", VectorEffect::NonRotation},
        {"fixed-position", VectorEffect::FixedPosition},
    };
    if (text == "none") {
        bits = 0;
        return true;
    }
    uint32_t result = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        while (start < text.size() && IsSpace(text[start]))
            ++start;
        std::size_t end = start;
        while (end < text.size() && !IsSpace(text[end]))
            ++end;
        if (end == start)
            break;
        const std::string_view word = text.substr(start, end - start);
        const auto* found = std::find_if(std::begin(kEffects), std::end(kEffects),
                                         [&](const auto& effect) { return effect.first == word; });
        if (found == std::end(kEffects))
            return false;
        result |= static_cast<uint32_t>(found->second);
        start = end;
    }
    if (result == 0)
        return false;
    bits = result;
    return true;
}

} // namespace

Property PropertyOfName(std::string_view name)
{
    const auto* end = std::end(kProperties);
    const auto* it = std::lower_bound(std::begin(kProperties), end, name,
                                      [](const PropertyName& p, std::string_view n) { return p.name < n; });
    return it != end && it->name == name ? it->property : Property::Count;
}

Cascade::Cascade(const ElementTree& tree, const StyleSheet& sheet, const WarningSink& warn)
    : mTree(tree), mSheet(sheet), mWarn(warn)
{
}

std::string_view Cascade::UrlId(std::string_view value)
{
    value = Trim(value);
    if (value.size() < 5 || !EqualsNoCase(value.substr(0, 4), "url("))
        return {};
    const std::size_t close = value.find(')');
    if (close == std::string_view::npos)
        return {};
    std::string_view inside = Trim(value.substr(4, close - 4));
    if (inside.size() >= 2 && (inside.front() == '"' || inside.front() == '\'') && inside.back() == inside.front())
        inside = Trim(inside.substr(1, inside.size() - 2));
    if (inside.size() < 2 || inside.front() != '#')
        return {};
    return inside.substr(1);
}

void Cascade::declare(Declared& declared, std::string_view name, std::string_view value, uint32_t rank,
                      uint32_t specificity, uint32_t order, bool css)
{
    Property property;
    if (css) {
        char lower[32];
        if (name.size() >= sizeof lower) {
            property = Property::Count;
        } else {
            for (std::size_t i = 0; i < name.size(); ++i)
                lower[i] = (name[i] >= 'A' && name[i] <= 'Z') ? static_cast<char>(name[i] - 'A' + 'a') : name[i];
            property = PropertyOfName(std::string_view(lower, name.size()));
        }
        if (property == Property::Count) {
            if (mUnknownProperties.size() < kMaxRemembered && mUnknownProperties.emplace(name).second && mWarn)
                mWarn("Ignore unsupported style property \"" + std::string(name) + "\"");
            return;
        }
    } else {
        property = PropertyOfName(name);
        if (property == Property::Count)
            return;
    }
    Declared::Entry& entry = declared.entries[static_cast<std::size_t>(property)];
    if (rank < entry.rank || (rank == entry.rank && (specificity < entry.specificity ||
                                                     (specificity == entry.specificity && order < entry.order))))
        return;
    entry = Declared::Entry{Trim(value), rank, specificity, order};
}

void Cascade::collect(ElementIndex element, Declared& declared)
{
    declared = Declared{};
    const TreeNode& node = mTree.node(element);
    const TreeAttribute* attributes = mTree.attributesOf(element);
    const TreeAttribute* style = nullptr;
    for (uint32_t i = 0; i < node.attributeCount; ++i) {
        const TreeAttribute& attribute = attributes[i];
        if (attribute.space != AttributeSpace::None)
            continue;
        if (attribute.name == "style")
            style = &attribute;
        else
            declare(declared, attribute.name, attribute.value, PresentationAttribute, 0, 0, false);
    }
    if (!mSheet.empty())
        mSheet.match(mTree, element, [&](const CssDeclaration& d, Specificity specificity, uint32_t order) {
            declare(declared, d.property, d.value, d.important ? SheetImportant : SheetNormal, specificity, order,
                    true);
        });
    if (style != nullptr) {
        mScratch.clear();
        ParseCssDeclarations(style->value, mScratch, mWarn);
        uint32_t order = 0;
        for (const CssDeclaration& d : mScratch)
            declare(declared, d.property, d.value, d.important ? StyleImportant : StyleNormal, 0, order++, true);
    }
}

void Cascade::reject(Property property, std::string_view value)
{
    std::string name;
    for (const PropertyName& p : kProperties)
        if (p.property == property)
            name = p.name;
    std::string key = name + ':' + std::string(value.substr(0, 64));
    if (mRejected.size() < kMaxRemembered && mRejected.insert(key).second && mWarn)
        mWarn("Ignore invalid value \"" + std::string(value.substr(0, 64)) + (value.size() > 64 ? "..." : "") +
              "\" of \"" + name + "\"");
}

bool Cascade::parsePaint(std::string_view text, Paint& paint)
{
    text = Trim(text);
    if (text == "none") {
        paint = Paint{};
        paint.kind = Paint::Kind::None;
        return true;
    }
    if (text.size() >= 4 && EqualsNoCase(text.substr(0, 4), "url(")) {
        const std::size_t close = text.find(')');
        if (close == std::string_view::npos)
            return false;
        Paint result;
        result.kind = Paint::Kind::Url;
        result.url = UrlId(text.substr(0, close + 1));
        const std::string_view rest = Trim(text.substr(close + 1));
        if (!rest.empty()) {
            Paint fallback;
            if (!parsePaint(rest, fallback) || fallback.kind == Paint::Kind::Url)
                return false;
            result.hasFallback = true;
            result.fallbackKind = fallback.kind;
            result.fallback = fallback.color;
        }
        paint = result;
        return true;
    }
    CssColor color;
    switch (ParseCssColor(text, color)) {
    case ColorKind::Color:
        paint = Paint{};
        paint.kind = Paint::Kind::Color;
        paint.color = color;
        return true;
    case ColorKind::CurrentColor:
        paint = Paint{};
        paint.kind = Paint::Kind::CurrentColor;
        return true;
    default:
        return false;
    }
}

uint64_t Cascade::compute(const Declared& declared, const ComputedStyle& parent, double viewportWidth,
                          double viewportHeight, ComputedStyle& style)
{
    uint64_t accepted = 0;
    style = parent;
    style.display = true;
    style.opacity = 1.0;
    style.vectorEffect = 0;
    style.stopColor = CssColor{};
    style.stopOpacity = 1.0;

    LengthContext lengths{parent.fontSize, viewportWidth, viewportHeight};
    const auto value = [&](Property p) { return declared.value(p); };
    const auto inherits = [&](Property p) { return declared.has(p) && value(p) == "inherit"; };

    // Font size and colour first: lengths in em and currentColor depend on them.
    if (declared.has(Property::FontSize) && !inherits(Property::FontSize)) {
        const std::string_view text = value(Property::FontSize);
        Length length;
        double size = 0.0;
        if (FontSizeKeyword(text, parent.fontSize, size)) {
            style.fontSize = size;
        } else if (ParseLength(text, length) && length.value >= 0.0) {
            LengthContext relative = lengths;
            // A percentage of a font size is of the parent's, not the viewport's.
            if (length.unit == LengthUnit::Percent)
                style.fontSize = parent.fontSize * length.value / 100.0;
            else
                style.fontSize = ToUserUnits(length, relative, PercentOf::Diagonal);
        } else {
            reject(Property::FontSize, text);
        }
    }
    if (declared.has(Property::FontSize) && style.fontSize != parent.fontSize)
        accepted |= Bit(Property::FontSize);
    lengths.fontSize = style.fontSize;
    if (declared.has(Property::Color) && !inherits(Property::Color)) {
        CssColor color;
        const ColorKind kind = ParseCssColor(value(Property::Color), color);
        if (kind == ColorKind::Color)
            style.color = color;
        else if (kind == ColorKind::Invalid)
            reject(Property::Color, value(Property::Color));
    }
    if (inherits(Property::Color))
        style.color = parent.color;

    for (std::size_t i = 0; i < kPropertyCount; ++i) {
        const auto property = static_cast<Property>(i);
        if (!declared.has(property) || property == Property::FontSize || property == Property::Color)
            continue;
        const std::string_view text = value(property);
        const bool inherit = text == "inherit";
        bool ok = true;
        double number = 0.0;
        Length length;
        switch (property) {
        case Property::Fill:
        case Property::Stroke: {
            Paint& target = property == Property::Fill ? style.fill : style.stroke;
            if (inherit) {
                target = property == Property::Fill ? parent.fill : parent.stroke;
            } else if ((ok = parsePaint(text, target)) && target.kind == Paint::Kind::CurrentColor) {
                target.kind = Paint::Kind::Color;
                target.color = style.color;
            }
            break;
        }
        case Property::FillOpacity:
        case Property::StrokeOpacity:
        case Property::Opacity:
        case Property::StopOpacity: {
            double& target = property == Property::FillOpacity     ? style.fillOpacity
                             : property == Property::StrokeOpacity ? style.strokeOpacity
                             : property == Property::Opacity       ? style.opacity
                                                                   : style.stopOpacity;
            const double& from = property == Property::FillOpacity     ? parent.fillOpacity
                                 : property == Property::StrokeOpacity ? parent.strokeOpacity
                                 : property == Property::Opacity       ? parent.opacity
                                                                       : parent.stopOpacity;
            if (inherit)
                target = from;
            else if ((ok = ParseNumberOrPercentage(text, number)))
                target = Clamp01(number);
            break;
        }
        case Property::FillRule:
        case Property::ClipRule: {
            FillRule& target = property == Property::FillRule ? style.fillRule : style.clipRule;
            if (inherit)
                target = property == Property::FillRule ? parent.fillRule : parent.clipRule;
            else if (text == "nonzero")
                target = FillRule::NonZero;
            else if (text == "evenodd")
                target = FillRule::EvenOdd;
            else
                ok = false;
            break;
        }
        case Property::StrokeWidth:
            if (inherit)
                style.strokeWidth = parent.strokeWidth;
            else if ((ok = ParseLength(text, length) && length.value >= 0.0))
                style.strokeWidth = ToUserUnits(length, lengths, PercentOf::Diagonal);
            break;
        case Property::StrokeLinecap:
            if (inherit)
                style.linecap = parent.linecap;
            else if (text == "butt")
                style.linecap = LineCap::Butt;
            else if (text == "round")
                style.linecap = LineCap::Round;
            else if (text == "square")
                style.linecap = LineCap::Square;
            else
                ok = false;
            break;
        case Property::StrokeLinejoin:
            if (inherit)
                style.linejoin = parent.linejoin;
            else if (text == "miter")
                style.linejoin = LineJoin::Miter;
            else if (text == "miter-clip")
                style.linejoin = LineJoin::MiterClip;
            else if (text == "round")
                style.linejoin = LineJoin::Round;
            else if (text == "bevel")
                style.linejoin = LineJoin::Bevel;
            else if (text == "arcs")
                style.linejoin = LineJoin::Arcs;
            else
                ok = false;
            break;
        case Property::StrokeMiterlimit:
            if (inherit)
                style.miterlimit = parent.miterlimit;
            else if ((ok = ParseNumber(text, number) && number >= 1.0))
                style.miterlimit = number;
            break;
        case Property::StrokeDasharray: {
            if (inherit) {
                style.dasharray = parent.dasharray;
            } else if (text == "none") {
                style.dasharray.clear();
            } else {
                std::vector<Length> dashes;
                ok = ParseLengthList(text, dashes) && !dashes.empty();
                double sum = 0.0;
                for (const Length& dash : dashes)
                    ok = ok && dash.value >= 0.0;
                if (ok) {
                    style.dasharray.clear();
                    for (const Length& dash : dashes) {
                        style.dasharray.push_back(ToUserUnits(dash, lengths, PercentOf::Diagonal));
                        sum += style.dasharray.back();
                    }
                    // All zero draws a solid line.
                    if (!(sum > 0.0))
                        style.dasharray.clear();
                }
            }
            break;
        }
        case Property::StrokeDashoffset:
            if (inherit)
                style.dashoffset = parent.dashoffset;
            else if ((ok = ParseLength(text, length)))
                style.dashoffset = ToUserUnits(length, lengths, PercentOf::Diagonal);
            break;
        case Property::Display:
            style.display = inherit ? parent.display : text != "none";
            break;
        case Property::Visibility:
            if (inherit)
                style.visible = parent.visible;
            else if (text == "visible")
                style.visible = true;
            else if (text == "hidden" || text == "collapse")
                style.visible = false;
            else
                ok = false;
            break;
        case Property::FontFamily:
            style.fontFamily = inherit ? parent.fontFamily : text;
            break;
        case Property::FontWeight:
            if (inherit) {
                style.bold = parent.bold;
            } else if (text == "bold" || text == "bolder") {
                style.bold = true;
            } else if (text == "normal" || text == "lighter") {
                style.bold = false;
            } else if ((ok = ParseNumber(text, number) && number >= 1.0 && number <= 1000.0)) {
                style.bold = number >= 600.0;
            }
            break;
        case Property::FontStyle:
            if (inherit)
                style.italic = parent.italic;
            else if (text == "italic" || text == "oblique")
                style.italic = true;
            else if (text == "normal")
                style.italic = false;
            else
                ok = false;
            break;
        case Property::TextDecoration:
            style.underline = inherit ? parent.underline : text.find("underline") != std::string_view::npos;
            break;
        case Property::VectorEffect:
            if (inherit)
                style.vectorEffect = parent.vectorEffect;
            else
                ok = VectorEffects(text, style.vectorEffect);
            break;
        case Property::StopColor: {
            CssColor color;
            if (inherit) {
                style.stopColor = parent.stopColor;
            } else {
                const ColorKind kind = ParseCssColor(text, color);
                ok = kind != ColorKind::Invalid;
                if (ok)
                    style.stopColor = kind == ColorKind::CurrentColor ? style.color : color;
            }
            break;
        }
        default:
            // Clip paths, masks, filters and markers are the emitter's to
            // report; colour and font size were computed above.
            break;
        }
        if (ok)
            accepted |= Bit(property);
        else
            reject(property, text);
    }
    return accepted;
}

} // namespace vk::svg::impl
