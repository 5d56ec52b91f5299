#include "read/Emitter.h"

#include "read/Cascade.h"
#include "read/PathGrammar.h"
#include "read/Shapes.h"
#include "read/Values.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vk::svg::impl {

namespace {

using Matrix = Wm4::Matrix3<float>;
using Vec = Wm4::Vector2<float>;

constexpr std::size_t kMaxRemembered = 256;
constexpr std::size_t kMaxHrefChain = 16;

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

bool IsIdentity(const Matrix& m)
{
    return m(0, 0) == 1.0f && m(0, 1) == 0.0f && m(0, 2) == 0.0f && m(1, 0) == 0.0f && m(1, 1) == 1.0f &&
           m(1, 2) == 0.0f;
}

Matrix Translation(double x, double y)
{
    return Matrix(1.0f, 0.0f, static_cast<float>(x), 0.0f, 1.0f, static_cast<float>(y), 0.0f, 0.0f, 1.0f);
}

void SetTransform(ItemInterface& item, const Matrix& m)
{
    if (IsIdentity(m))
        item.editTransform().reset();
    else
        item.editTransform() = m;
}

// What an element is drawn in: its parent's computed style, the product of
// the opacities above it, and the viewport that percentages refer to.
struct Frame {
    ComputedStyle style;
    double opacity = 1.0;
    double viewportWidth = 100.0;
    double viewportHeight = 100.0;
};

class Emitter {
public:
    Emitter(const ElementTree& tree, const StyleSheet& sheet, const WarningSink& error, const WarningSink& warning,
            const EmitLimits& limits, vk::xml::XmlTextPosition* position)
        : mTree(tree), mCascade(tree, sheet, warning), mError(error), mWarning(warning), mLimits(limits),
          mPosition(position)
    {
    }

    bool emit(ItemInterfacePointer<ItemInterface>& root)
    {
        if (mTree.root == kNoElement) {
            error("The document has no svg element");
            return false;
        }
        const TreeNode& rootNode = mTree.node(mTree.root);
        if (rootNode.tag != ElementTag::Svg) {
            error("The root element \"" + rootNode.name + "\" is not an svg element");
            return false;
        }
        auto document = std::make_shared<Document>();
        Frame frame;
        emitRoot(*document, frame);
        if (mFailed) {
            // Reported once the walk is over, at the element that failed.
            if (mPosition != nullptr)
                *mPosition = mFailurePosition;
            error(mFailure);
            return false;
        }
        root = document;
        return true;
    }

private:
    // --- messages ---------------------------------------------------------

    void error(const std::string& text) const
    {
        if (mError)
            mError(text);
    }

    void warnOnce(const std::string& text)
    {
        if (mWarned.size() < kMaxRemembered && mWarned.insert(text).second && mWarning)
            mWarning(text);
    }

    void fail(const std::string& text)
    {
        if (!mFailed) {
            mFailed = true;
            mFailure = text;
            if (mPosition != nullptr)
                mFailurePosition = *mPosition;
        }
    }

    // --- lengths ----------------------------------------------------------

    double length(ElementIndex element, std::string_view name, const Frame& frame, const ComputedStyle& style,
                  PercentOf percentOf, double fallback, bool* present = nullptr)
    {
        const std::string_view text = mTree.attribute(element, name);
        if (present != nullptr)
            *present = false;
        if (text.empty())
            return fallback;
        Length value;
        if (!ParseLength(text, value)) {
            warnOnce("Ignore invalid value \"" + std::string(text.substr(0, 64)) + "\" of attribute \"" +
                     std::string(name) + "\"");
            return fallback;
        }
        if (present != nullptr)
            *present = true;
        const LengthContext context{style.fontSize, frame.viewportWidth, frame.viewportHeight};
        return ToUserUnits(value, context, percentOf);
    }

    // The first length of a list attribute (text x, y, dx, dy).
    double firstOfList(ElementIndex element, std::string_view name, const Frame& frame, const ComputedStyle& style,
                       PercentOf percentOf, bool& present)
    {
        present = false;
        const std::string_view text = mTree.attribute(element, name);
        if (text.empty())
            return 0.0;
        std::vector<Length> values;
        ParseLengthList(text, values);
        if (values.empty())
            return 0.0;
        present = true;
        const LengthContext context{style.fontSize, frame.viewportWidth, frame.viewportHeight};
        return ToUserUnits(values.front(), context, percentOf);
    }

    Matrix ownTransform(ElementIndex element)
    {
        Matrix m = Matrix::IDENTITY;
        const TreeAttribute* attribute = mTree.findAttribute(element, "transform");
        if (attribute != nullptr && !ParseTransformList(attribute->value, m)) {
            warnOnce("Ignore invalid transform \"" + attribute->value.substr(0, 64) + "\"");
            m = Matrix::IDENTITY;
        }
        return m;
    }

    AspectRatio aspectRatio(ElementIndex element)
    {
        AspectRatio ratio;
        const std::string_view text = mTree.attribute(element, "preserveAspectRatio");
        if (!text.empty() && !ParseAspectRatio(text, ratio)) {
            warnOnce("Ignore invalid preserveAspectRatio \"" + std::string(text.substr(0, 64)) + "\"");
            ratio = AspectRatio();
        }
        return ratio;
    }

    bool viewBox(ElementIndex element, ViewBox& box)
    {
        const std::string_view text = mTree.attribute(element, "viewBox");
        if (text.empty())
            return false;
        if (!ParseViewBox(text, box)) {
            warnOnce("Ignore invalid viewBox \"" + std::string(text.substr(0, 64)) + "\"");
            return false;
        }
        return true;
    }

    // --- styles -----------------------------------------------------------

    // Computes the element's style into `child`; false when it is not
    // displayed at all.
    bool enter(ElementIndex element, const Frame& frame, Frame& child, uint64_t& accepted)
    {
        mCascade.collect(element, mDeclared);
        child.viewportWidth = frame.viewportWidth;
        child.viewportHeight = frame.viewportHeight;
        accepted = mCascade.compute(mDeclared, frame.style, frame.viewportWidth, frame.viewportHeight, child.style);
        if (!child.style.display)
            return false;
        child.opacity = frame.opacity * child.style.opacity;
        reportSkipped(Property::ClipPath, "clip path");
        reportSkipped(Property::Mask, "mask");
        reportSkipped(Property::Filter, "filter");
        reportSkipped(Property::MarkerStart, "marker");
        reportSkipped(Property::MarkerMid, "marker");
        reportSkipped(Property::MarkerEnd, "marker");
        return true;
    }

    void reportSkipped(Property property, const char* kind)
    {
        if (!mDeclared.has(property))
            return;
        const std::string_view value = mDeclared.value(property);
        if (value == "none" || value.empty())
            return;
        const std::string_view id = Cascade::UrlId(value);
        warnOnce(std::string("Ignore ") + kind + " \"" + std::string(id.empty() ? value.substr(0, 64) : id) + "\"");
    }

    std::string colorText(const CssColor& color) { return ColorToSvgText(color); }

    std::optional<std::string> paintText(const Paint& paint)
    {
        switch (paint.kind) {
        case Paint::Kind::None:
            return std::string("none");
        case Paint::Kind::Color:
        case Paint::Kind::CurrentColor:
            return colorText(paint.color);
        case Paint::Kind::Url:
            return paintServer(paint);
        }
        return std::nullopt;
    }

    std::string paintServer(const Paint& paint)
    {
        const std::string key(paint.url);
        const auto cached = mPaintServers.find(key);
        if (cached != mPaintServers.end())
            return cached->second;
        std::string text;
        const ElementIndex server = mTree.findId(paint.url);
        const ElementTag tag = server == kNoElement ? ElementTag::Unknown : mTree.node(server).tag;
        if (tag == ElementTag::LinearGradient || tag == ElementTag::RadialGradient) {
            text = gradientColor(server);
            warnOnce("Approximate gradient \"" + key + "\" by one colour " + text);
        } else if (tag == ElementTag::Pattern) {
            text = patternColor(server);
            warnOnce("Approximate pattern \"" + key + "\" by one colour " + text);
        } else if (paint.hasFallback) {
            Paint fallback;
            fallback.kind = paint.fallbackKind;
            fallback.color = paint.fallback;
            return paintText(fallback).value_or("none");
        } else {
            warnOnce("Ignore paint of unknown reference \"" + key + "\"");
            return "none";
        }
        // Only what the server gives is remembered: a fallback belongs to
        // the reference, not to the id.
        if (mPaintServers.size() < kMaxRemembered)
            mPaintServers.emplace(key, text);
        return text;
    }

    // Follows href to the first element of the chain with children.
    ElementIndex withChildren(ElementIndex element)
    {
        for (std::size_t i = 0; i < kMaxHrefChain && element != kNoElement; ++i) {
            for (ElementIndex c = mTree.node(element).firstChild; c != kNoElement; c = mTree.node(c).nextSibling)
                if (mTree.node(c).tag != ElementTag::CharacterData)
                    return element;
            std::string_view href = mTree.href(element);
            if (href.size() < 2 || href.front() != '#')
                return kNoElement;
            element = mTree.findId(href.substr(1));
        }
        return kNoElement;
    }

    // The mean colour and opacity along the gradient's stops.
    std::string gradientColor(ElementIndex gradient)
    {
        struct Stop {
            double offset;
            double rgba[4];
        };
        std::vector<Stop> stops;
        const ElementIndex source = withChildren(gradient);
        if (source != kNoElement) {
            Frame frame;
            double last = 0.0;
            for (ElementIndex c = mTree.node(source).firstChild; c != kNoElement; c = mTree.node(c).nextSibling) {
                if (mTree.node(c).tag != ElementTag::Stop)
                    continue;
                Frame child;
                uint64_t accepted = 0;
                enter(c, frame, child, accepted);
                double offset = 0.0;
                if (!ParseNumberOrPercentage(mTree.attribute(c, "offset"), offset))
                    offset = 0.0;
                offset = std::clamp(offset, 0.0, 1.0);
                last = std::max(last, offset);
                const CssColor& color = child.style.stopColor;
                stops.push_back(Stop{last,
                                     {color.red / 255.0, color.green / 255.0, color.blue / 255.0,
                                      color.alpha * child.style.stopOpacity}});
            }
        }
        if (stops.empty())
            return "none";
        double mean[4] = {0, 0, 0, 0};
        // The colour is flat before the first stop and after the last.
        for (int k = 0; k < 4; ++k) {
            double sum = stops.front().rgba[k] * stops.front().offset;
            for (std::size_t i = 1; i < stops.size(); ++i)
                sum += (stops[i].offset - stops[i - 1].offset) * (stops[i].rgba[k] + stops[i - 1].rgba[k]) / 2.0;
            sum += stops.back().rgba[k] * (1.0 - stops.back().offset);
            mean[k] = sum;
        }
        CssColor color;
        color.red = static_cast<uint8_t>(std::lround(std::clamp(mean[0], 0.0, 1.0) * 255.0));
        color.green = static_cast<uint8_t>(std::lround(std::clamp(mean[1], 0.0, 1.0) * 255.0));
        color.blue = static_cast<uint8_t>(std::lround(std::clamp(mean[2], 0.0, 1.0) * 255.0));
        color.alpha = static_cast<float>(std::clamp(mean[3], 0.0, 1.0));
        return colorText(color);
    }

    // The fill of the pattern's first shape.
    std::string patternColor(ElementIndex pattern)
    {
        const ElementIndex source = withChildren(pattern);
        if (source == kNoElement)
            return "none";
        Frame frame;
        std::string color = "none";
        firstShapeFill(source, frame, 0, color);
        return color;
    }

    bool firstShapeFill(ElementIndex element, const Frame& frame, int depth, std::string& color)
    {
        for (ElementIndex c = mTree.node(element).firstChild; c != kNoElement; c = mTree.node(c).nextSibling) {
            const ElementTag tag = mTree.node(c).tag;
            if (tag == ElementTag::G && depth < 16) {
                if (firstShapeFill(c, frame, depth + 1, color))
                    return true;
            } else if (tag == ElementTag::Rect || tag == ElementTag::Circle || tag == ElementTag::Ellipse ||
                       tag == ElementTag::Path || tag == ElementTag::Polygon) {
                Frame child;
                uint64_t accepted = 0;
                enter(c, frame, child, accepted);
                if (child.style.fill.kind == Paint::Kind::Color) {
                    color = colorText(child.style.fill.color);
                    return true;
                }
            }
        }
        return false;
    }

    // Writes the properties declared on the element into the item. Leaves
    // also carry the product of the opacities above them: a group's opacity
    // is approximated by multiplying it into what the group draws.
    void applyProperties(ItemInterface& item, ElementIndex element, const Frame& parent, const Frame& self,
                         uint64_t accepted, bool leaf)
    {
        RenderingProperties& rp = item.editRenderingProperties();
        const ComputedStyle& s = self.style;
        const auto has = [&](Property p) { return (accepted & PropertyBit(p)) != 0; };
        if (has(Property::Fill))
            rp.editFill() = paintText(s.fill);
        if (has(Property::FillOpacity))
            rp.editFillOpacity() = static_cast<float>(s.fillOpacity);
        if (has(Property::FillRule))
            rp.editFillRule() = s.fillRule;
        if (has(Property::Stroke))
            rp.editStroke() = paintText(s.stroke);
        if (has(Property::StrokeWidth))
            rp.editStrokeWidth() = static_cast<float>(s.strokeWidth);
        if (has(Property::StrokeOpacity))
            rp.editStrokeOpacity() = static_cast<float>(s.strokeOpacity);
        if (has(Property::StrokeLinecap))
            rp.editStrokeLinecap() = s.linecap;
        if (has(Property::StrokeLinejoin))
            rp.editStrokeLinejoin() = s.linejoin;
        if (has(Property::StrokeMiterlimit))
            rp.editStrokeMiterlimit() = static_cast<float>(s.miterlimit);
        if (has(Property::StrokeDasharray)) {
            std::vector<UnitValue> dashes;
            for (double dash : s.dasharray)
                dashes.emplace_back(static_cast<float>(dash), Unit::None);
            // A single zero dash is a solid line, and overrides an inherited
            // pattern where "none" could not be written.
            if (dashes.empty() && !parent.style.dasharray.empty())
                dashes.emplace_back(0.0f, Unit::None);
            if (!dashes.empty())
                rp.editStrokeDasharray() = std::move(dashes);
        }
        if (has(Property::StrokeDashoffset))
            rp.editStrokeDashoffset() = static_cast<float>(s.dashoffset);
        if (has(Property::ClipRule))
            rp.editClipRule() = s.clipRule;
        if (has(Property::VectorEffect) && s.vectorEffect != 0)
            rp.editVectorEffect() = s.vectorEffect;
        if (leaf && self.opacity != 1.0)
            rp.editOpacity() = static_cast<float>(self.opacity);
        const std::string_view className = mTree.attribute(element, "class");
        if (!className.empty())
            rp.editClassName() = std::string(className);
        // Copies made by use leave their ids behind: an id names one item.
        const std::string_view id = mTree.attribute(element, "id");
        if (!id.empty() && mReferenceDepth == 0)
            item.editId() = std::string(id);
    }

    // --- structure --------------------------------------------------------

    void emitRoot(Document& document, Frame& frame)
    {
        const ElementIndex root = mTree.root;
        const PositionScope scope(mPosition, mTree.node(root));
        ComputedStyle initial;
        // Sizes on the root: lengths in absolute units; a percentage has no
        // viewport to refer to and counts as absent.
        const auto size = [&](std::string_view name, double& value) {
            const std::string_view text = mTree.attribute(root, name);
            Length length;
            if (text.empty() || !ParseLength(text, length) || length.unit == LengthUnit::Percent || length.value <= 0)
                return false;
            value = ToUserUnits(length, LengthContext{initial.fontSize, 100.0, 100.0}, PercentOf::Width);
            return true;
        };
        double width = 0.0;
        double height = 0.0;
        const bool hasWidth = size("width", width);
        const bool hasHeight = size("height", height);
        ViewBox box;
        const bool hasBox = viewBox(root, box) && box.width > 0.0 && box.height > 0.0;
        if (hasBox) {
            if (!hasWidth)
                width = hasHeight ? height * box.width / box.height : box.width;
            if (!hasHeight)
                height = hasWidth ? width * box.height / box.width : box.height;
        }
        Matrix transform = ownTransform(root);
        frame.viewportWidth = hasBox ? box.width : (hasWidth ? width : 100.0);
        frame.viewportHeight = hasBox ? box.height : (hasHeight ? height : 100.0);
        if (hasBox) {
            const Matrix map = ViewBoxTransform(box, aspectRatio(root), width, height);
            const bool translationOnly =
                map(0, 0) == 1.0f && map(1, 1) == 1.0f && map(0, 1) == 0.0f && map(1, 0) == 0.0f;
            if (translationOnly && width == box.width && height == box.height && IsIdentity(transform)) {
                // Nothing scales: keep the author's viewBox as it is.
                document.editViewbox() =
                    BoundingBox(Vec(static_cast<float>(box.x), static_cast<float>(box.y)),
                                Vec(static_cast<float>(box.x + box.width), static_cast<float>(box.y + box.height)));
            } else {
                document.editViewbox() =
                    BoundingBox(Vec(0.0f, 0.0f), Vec(static_cast<float>(width), static_cast<float>(height)));
                transform = transform * map;
            }
        } else if (hasWidth && hasHeight) {
            document.editViewbox() =
                BoundingBox(Vec(0.0f, 0.0f), Vec(static_cast<float>(width), static_cast<float>(height)));
        }
        SetTransform(document, transform);

        Frame start = frame;
        start.style = initial;
        Frame child;
        uint64_t accepted = 0;
        if (!enter(root, start, child, accepted))
            return;
        applyProperties(document, root, start, child, accepted, false);
        emitChildren(root, document, child);
    }

    void emitChildren(ElementIndex element, Node& node, const Frame& frame)
    {
        for (ElementIndex c = mTree.node(element).firstChild; c != kNoElement && !mFailed;
             c = mTree.node(c).nextSibling) {
            std::shared_ptr<ItemInterface> item = emitElement(c, frame);
            if (item != nullptr && !mFailed)
                node.editChildren().push_back(std::move(item));
        }
    }

    bool count()
    {
        if (mReferenceDepth == 0)
            return true;
        if (++mReferencedItems > mLimits.maxReferencedItems) {
            fail("References expand to more than " + std::to_string(mLimits.maxReferencedItems) + " items");
            return false;
        }
        return true;
    }

    // Points the message position at an element while it is emitted, and
    // back at the enclosing one afterwards.
    class PositionScope {
    public:
        PositionScope(vk::xml::XmlTextPosition* position, const TreeNode& node) : mPosition(position)
        {
            if (mPosition == nullptr)
                return;
            mSaved = *mPosition;
            *mPosition = {node.line, node.column};
        }
        ~PositionScope()
        {
            if (mPosition != nullptr)
                *mPosition = mSaved;
        }
        PositionScope(const PositionScope&) = delete;
        PositionScope& operator=(const PositionScope&) = delete;

    private:
        vk::xml::XmlTextPosition* mPosition;
        vk::xml::XmlTextPosition mSaved;
    };

    std::shared_ptr<ItemInterface> emitElement(ElementIndex element, const Frame& frame)
    {
        const TreeNode& node = mTree.node(element);
        const PositionScope scope(mPosition, node);
        switch (node.tag) {
        case ElementTag::CharacterData:
        case ElementTag::Defs:
        case ElementTag::Symbol:
        case ElementTag::LinearGradient:
        case ElementTag::RadialGradient:
        case ElementTag::Stop:
        case ElementTag::Pattern:
        case ElementTag::ClipPath:
        case ElementTag::Mask:
        case ElementTag::Filter:
        case ElementTag::Marker:
        case ElementTag::Style:
        case ElementTag::Metadata:
        case ElementTag::Title:
        case ElementTag::Desc:
        case ElementTag::Tspan:
            return nullptr;
        case ElementTag::TextPath:
            warnOnce("Ignore text on path \"" + std::string(hrefId(element)) + "\"");
            return nullptr;
        case ElementTag::Unknown:
            warnOnce("Ignore unsupported element \"" + node.name + "\"");
            return nullptr;
        default:
            break;
        }
        if (!count())
            return nullptr;
        Frame child;
        uint64_t accepted = 0;
        if (!enter(element, frame, child, accepted))
            return nullptr;
        switch (node.tag) {
        case ElementTag::G:
        case ElementTag::A:
        case ElementTag::Switch: {
            auto group = std::make_shared<Node>();
            SetTransform(*group, ownTransform(element));
            applyProperties(*group, element, frame, child, accepted, false);
            if (node.tag == ElementTag::Switch) {
                const ElementIndex chosen = switchChoice(element);
                if (chosen != kNoElement)
                    if (auto item = emitElement(chosen, child))
                        group->editChildren().push_back(std::move(item));
            } else {
                emitChildren(element, *group, child);
            }
            return group;
        }
        case ElementTag::Svg:
            return emitViewport(element, frame, child, accepted, ownTransform(element), nullptr);
        case ElementTag::Use:
            return emitUse(element, frame, child, accepted);
        default:
            break;
        }
        if (!child.style.visible && node.tag != ElementTag::Text)
            return nullptr;
        std::shared_ptr<ItemInterface> item = emitShape(element, frame, child);
        if (item == nullptr)
            return nullptr;
        SetTransform(*item, ownTransform(element));
        applyProperties(*item, element, frame, child, accepted, true);
        return item;
    }

    std::string_view hrefId(ElementIndex element) const
    {
        std::string_view href = mTree.href(element);
        return href.size() > 1 && href.front() == '#' ? href.substr(1) : href;
    }

    // The first child whose conditions hold, as switch renders it.
    ElementIndex switchChoice(ElementIndex element)
    {
        for (ElementIndex c = mTree.node(element).firstChild; c != kNoElement; c = mTree.node(c).nextSibling) {
            const ElementTag tag = mTree.node(c).tag;
            if (tag == ElementTag::CharacterData || tag == ElementTag::Unknown || tag == ElementTag::Style)
                continue;
            if (!mTree.attribute(c, "requiredExtensions").empty())
                continue;
            const std::string_view languages = mTree.attribute(c, "systemLanguage");
            if (!languages.empty()) {
                bool english = false;
                std::size_t start = 0;
                while (start < languages.size()) {
                    std::size_t end = languages.find(',', start);
                    if (end == std::string_view::npos)
                        end = languages.size();
                    std::string_view language = languages.substr(start, end - start);
                    while (!language.empty() && IsSpace(language.front()))
                        language.remove_prefix(1);
                    if (language.substr(0, 2) == "en" && (language.size() == 2 || language[2] == '-'))
                        english = true;
                    start = end + 1;
                }
                if (!english)
                    continue;
            }
            return c;
        }
        return kNoElement;
    }

    // A nested svg, or a symbol or svg instanced by use (`size` then holds
    // the use's width and height where given).
    std::shared_ptr<ItemInterface> emitViewport(ElementIndex element, const Frame& frame, Frame& child,
                                                uint64_t accepted, const Matrix& outer, const double* size)
    {
        const bool symbol = mTree.node(element).tag == ElementTag::Symbol;
        const double x = symbol ? 0.0 : length(element, "x", frame, child.style, PercentOf::Width, 0.0);
        const double y = symbol ? 0.0 : length(element, "y", frame, child.style, PercentOf::Height, 0.0);
        double width = length(element, "width", frame, child.style, PercentOf::Width, frame.viewportWidth);
        double height = length(element, "height", frame, child.style, PercentOf::Height, frame.viewportHeight);
        if (size != nullptr && size[0] >= 0.0)
            width = size[0];
        if (size != nullptr && size[1] >= 0.0)
            height = size[1];
        if (!(width > 0.0) || !(height > 0.0))
            return nullptr;
        auto group = std::make_shared<Node>();
        Matrix transform = outer * Translation(x, y);
        ViewBox box;
        child.viewportWidth = width;
        child.viewportHeight = height;
        if (viewBox(element, box)) {
            if (!(box.width > 0.0) || !(box.height > 0.0))
                return nullptr;
            transform = transform * ViewBoxTransform(box, aspectRatio(element), width, height);
            child.viewportWidth = box.width;
            child.viewportHeight = box.height;
        }
        SetTransform(*group, transform);
        applyProperties(*group, element, frame, child, accepted, false);
        emitChildren(element, *group, child);
        return group;
    }

    std::shared_ptr<ItemInterface> emitUse(ElementIndex element, const Frame& frame, Frame& child, uint64_t accepted)
    {
        const std::string_view href = mTree.href(element);
        if (href.empty())
            return nullptr;
        if (href.front() != '#') {
            warnOnce("Ignore use of external reference \"" + std::string(href.substr(0, 64)) + "\"");
            return nullptr;
        }
        const std::string_view id = href.substr(1);
        const ElementIndex target = mTree.findId(id);
        if (target == kNoElement) {
            warnOnce("Ignore use of unknown reference \"" + std::string(href.substr(0, 64)) + "\"");
            return nullptr;
        }
        for (ElementIndex a = element; a != kNoElement; a = mTree.node(a).parent)
            if (a == target) {
                fail("Reference loop through \"" + std::string(id) + "\"");
                return nullptr;
            }
        if (std::find(mUseTargets.begin(), mUseTargets.end(), target) != mUseTargets.end()) {
            fail("Reference loop through \"" + std::string(id) + "\"");
            return nullptr;
        }
        if (mUseTargets.size() >= mLimits.maxReferenceDepth) {
            fail("References nested deeper than " + std::to_string(mLimits.maxReferenceDepth) + " levels");
            return nullptr;
        }

        const double x = length(element, "x", frame, child.style, PercentOf::Width, 0.0);
        const double y = length(element, "y", frame, child.style, PercentOf::Height, 0.0);
        bool hasWidth = false;
        bool hasHeight = false;
        double size[2];
        size[0] = length(element, "width", frame, child.style, PercentOf::Width, -1.0, &hasWidth);
        size[1] = length(element, "height", frame, child.style, PercentOf::Height, -1.0, &hasHeight);
        if ((hasWidth && !(size[0] > 0.0)) || (hasHeight && !(size[1] > 0.0)))
            return nullptr;

        auto group = std::make_shared<Node>();
        SetTransform(*group, ownTransform(element) * Translation(x, y));
        applyProperties(*group, element, frame, child, accepted, false);

        mUseTargets.push_back(target);
        ++mReferenceDepth;
        std::shared_ptr<ItemInterface> instance;
        const ElementTag tag = mTree.node(target).tag;
        if (tag == ElementTag::Symbol || tag == ElementTag::Svg) {
            Frame inner;
            uint64_t innerAccepted = 0;
            if (count() && enter(target, child, inner, innerAccepted)) {
                if (tag == ElementTag::Svg)
                    instance = emitViewport(target, child, inner, innerAccepted, ownTransform(target), size);
                else
                    instance = emitViewport(target, child, inner, innerAccepted, Matrix::IDENTITY, size);
            }
        } else {
            instance = emitElement(target, child);
        }
        --mReferenceDepth;
        mUseTargets.pop_back();
        if (instance != nullptr && !mFailed)
            group->editChildren().push_back(std::move(instance));
        return group;
    }

    // --- shapes -----------------------------------------------------------

    std::shared_ptr<ItemInterface> emitShape(ElementIndex element, const Frame& frame, const Frame& child)
    {
        const ComputedStyle& style = child.style;
        const auto len = [&](std::string_view name, PercentOf of, double fallback = 0.0, bool* present = nullptr) {
            return length(element, name, frame, style, of, fallback, present);
        };
        switch (mTree.node(element).tag) {
        case ElementTag::Rect: {
            const double x = len("x", PercentOf::Width);
            const double y = len("y", PercentOf::Height);
            const double w = len("width", PercentOf::Width);
            const double h = len("height", PercentOf::Height);
            if (!(w > 0.0) || !(h > 0.0))
                return nullptr;
            bool hasRx = false;
            bool hasRy = false;
            double rx = len("rx", PercentOf::Width, 0.0, &hasRx);
            double ry = len("ry", PercentOf::Height, 0.0, &hasRy);
            AutoRadii(rx, hasRx, ry, hasRy);
            rx = std::min(std::max(rx, 0.0), w / 2.0);
            ry = std::min(std::max(ry, 0.0), h / 2.0);
            // The library's own rectangles have square corners when drawn.
            if (rx > 0.0 && ry > 0.0)
                return RoundedRectPath(x, y, w, h, rx, ry);
            return std::make_shared<Rect>(Vec(static_cast<float>(x), static_cast<float>(y)),
                                          Vec(static_cast<float>(w), static_cast<float>(h)));
        }
        case ElementTag::Circle: {
            const double r = len("r", PercentOf::Diagonal);
            if (!(r > 0.0))
                return nullptr;
            return std::make_shared<Circle>(
                Vec(static_cast<float>(len("cx", PercentOf::Width)), static_cast<float>(len("cy", PercentOf::Height))),
                static_cast<float>(r));
        }
        case ElementTag::Ellipse: {
            bool hasRx = false;
            bool hasRy = false;
            double rx = len("rx", PercentOf::Width, 0.0, &hasRx);
            double ry = len("ry", PercentOf::Height, 0.0, &hasRy);
            AutoRadii(rx, hasRx, ry, hasRy);
            if (!(rx > 0.0) || !(ry > 0.0))
                return nullptr;
            return EllipsePath(len("cx", PercentOf::Width), len("cy", PercentOf::Height), rx, ry);
        }
        case ElementTag::Line:
            return std::make_shared<Line>(
                Vec(static_cast<float>(len("x1", PercentOf::Width)), static_cast<float>(len("y1", PercentOf::Height))),
                Vec(static_cast<float>(len("x2", PercentOf::Width)), static_cast<float>(len("y2", PercentOf::Height))));
        case ElementTag::Polyline:
        case ElementTag::Polygon: {
            std::vector<double> numbers;
            const std::string_view points = mTree.attribute(element, "points");
            if (!ParseNumberList(points, numbers))
                warnOnce("Ignore points from the first error on in \"" + std::string(points.substr(0, 64)) + "\"");
            if (numbers.size() % 2 != 0)
                numbers.pop_back();
            if (numbers.size() < 4)
                return nullptr;
            return PointsPath(numbers, mTree.node(element).tag == ElementTag::Polygon);
        }
        case ElementTag::Path: {
            const std::string_view data = mTree.attribute(element, "d");
            auto path = std::make_shared<Path>();
            const PathGrammarResult result = ParseSvgPathData(data, path->editCommands());
            if (!result.ok) {
                const std::string_view id = mTree.attribute(element, "id");
                warnOnce("Ignore path data" + (id.empty() ? std::string() : " of \"" + std::string(id) + "\"") +
                         " from byte " + std::to_string(result.errorOffset) + " on: " + result.error);
            }
            if (path->getCommands().empty())
                return nullptr;
            return path;
        }
        case ElementTag::Text:
            return emitText(element, frame, child);
        case ElementTag::Image: {
            auto image = std::make_shared<Image>();
            image->editPosition() =
                Vec(static_cast<float>(len("x", PercentOf::Width)), static_cast<float>(len("y", PercentOf::Height)));
            image->editSize() = Vec(static_cast<float>(len("width", PercentOf::Width)),
                                    static_cast<float>(len("height", PercentOf::Height)));
            image->editHref() = std::string(mTree.href(element));
            if (!mTree.attribute(element, "preserveAspectRatio").empty())
                image->editPreserveAspectRatio() =
                    static_cast<PreserveAspectRatio>(static_cast<uint32_t>(aspectRatio(element).align));
            return image;
        }
        default:
            return nullptr;
        }
    }

    void gatherText(ElementIndex element, std::string& text)
    {
        for (ElementIndex c = mTree.node(element).firstChild; c != kNoElement; c = mTree.node(c).nextSibling) {
            const TreeNode& node = mTree.node(c);
            if (node.tag == ElementTag::CharacterData) {
                text += node.name;
            } else if (node.tag == ElementTag::Tspan || node.tag == ElementTag::A) {
                mCascade.collect(c, mDeclared);
                if (mDeclared.has(Property::Display) && mDeclared.value(Property::Display) == "none")
                    continue;
                gatherText(c, text);
            } else if (node.tag == ElementTag::TextPath) {
                warnOnce("Ignore text on path \"" + std::string(hrefId(c)) + "\"");
            }
        }
    }

    // The first positioned tspan gives the position of a text without one.
    ElementIndex positioned(ElementIndex element)
    {
        for (ElementIndex c = mTree.node(element).firstChild; c != kNoElement; c = mTree.node(c).nextSibling)
            if (mTree.node(c).tag == ElementTag::Tspan)
                return mTree.findAttribute(c, "x") != nullptr || mTree.findAttribute(c, "y") != nullptr ? c
                                                                                                        : kNoElement;
        return kNoElement;
    }

    std::shared_ptr<ItemInterface> emitText(ElementIndex element, const Frame& frame, const Frame& child)
    {
        const ComputedStyle& style = child.style;
        std::string raw;
        gatherText(element, raw);
        const TreeAttribute* space = mTree.findAttribute(element, "space", AttributeSpace::Xml);
        const bool preserve = space != nullptr && space->value == "preserve";
        std::string content;
        content.reserve(raw.size());
        if (preserve) {
            for (char c : raw)
                content += (c == '\t' || c == '\n' || c == '\r') ? ' ' : c;
        } else {
            bool pendingSpace = false;
            for (char c : raw) {
                if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
                    pendingSpace = !content.empty();
                    continue;
                }
                if (pendingSpace)
                    content += ' ';
                pendingSpace = false;
                content += c;
            }
        }
        if (content.empty() || !style.visible)
            return nullptr;

        bool hasX = false;
        bool hasY = false;
        bool unused = false;
        double x = firstOfList(element, "x", frame, style, PercentOf::Width, hasX);
        double y = firstOfList(element, "y", frame, style, PercentOf::Height, hasY);
        if (!hasX || !hasY) {
            const ElementIndex span = positioned(element);
            if (span != kNoElement) {
                if (!hasX)
                    x = firstOfList(span, "x", frame, style, PercentOf::Width, unused);
                if (!hasY)
                    y = firstOfList(span, "y", frame, style, PercentOf::Height, unused);
            }
        }
        x += firstOfList(element, "dx", frame, style, PercentOf::Width, unused);
        y += firstOfList(element, "dy", frame, style, PercentOf::Height, unused);

        auto text = std::make_shared<Text>(Vec(static_cast<float>(x), static_cast<float>(y)), content);
        if (preserve)
            text->editXmlSpacePreserve() = true;
        if (!style.fontFamily.empty())
            text->editFontFamily() = std::string(style.fontFamily);
        if (style.fontSize != 16.0)
            text->editFontSize() = static_cast<float>(style.fontSize);
        if (style.bold)
            text->editBold() = true;
        if (style.italic)
            text->editItalic() = true;
        if (style.underline)
            text->editUnderline() = true;
        return text;
    }

    const ElementTree& mTree;
    Cascade mCascade;
    const WarningSink& mError;
    const WarningSink& mWarning;
    EmitLimits mLimits;
    Declared mDeclared;
    std::set<std::string> mWarned;
    std::map<std::string, std::string> mPaintServers;
    std::vector<ElementIndex> mUseTargets;
    std::size_t mReferenceDepth = 0;
    std::size_t mReferencedItems = 0;
    bool mFailed = false;
    std::string mFailure;
    vk::xml::XmlTextPosition* mPosition;
    vk::xml::XmlTextPosition mFailurePosition;
};

} // namespace

bool EmitItems(const ElementTree& tree, const StyleSheet& sheet, const WarningSink& error, const WarningSink& warning,
               ItemInterfacePointer<ItemInterface>& root, const EmitLimits& limits, vk::xml::XmlTextPosition* position)
{
    Emitter emitter(tree, sheet, error, warning, limits, position);
    return emitter.emit(root);
}

} // namespace vk::svg::impl
