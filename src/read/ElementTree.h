#ifndef VKSVG_READ_ELEMENTTREE_H
#define VKSVG_READ_ELEMENTTREE_H

// The document as the full reader sees it before anything is resolved: SVG
// elements with their attributes, and the character data of the elements
// that have text (text, tspan, style). Foreign-namespace elements and
// attributes never get in. Nodes live in one vector and link by index, so a
// large drawing costs one allocation per attribute value, not per node.

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vk::svg::impl {

using ElementIndex = uint32_t;
constexpr ElementIndex kNoElement = UINT32_MAX;

// The SVG elements the reader has a rule for; every other SVG element is
// Unknown and keeps its local name.
enum class ElementTag : uint8_t {
    Unknown,
    CharacterData, // a run of text inside a text-bearing element
    Svg,
    G,
    Defs,
    Symbol,
    Use,
    Switch,
    A,
    Rect,
    Circle,
    Ellipse,
    Line,
    Polyline,
    Polygon,
    Path,
    Text,
    Tspan,
    TextPath,
    Image,
    Style,
    LinearGradient,
    RadialGradient,
    Stop,
    Pattern,
    ClipPath,
    Mask,
    Filter,
    Marker,
    Metadata,
    Title,
    Desc,
};

// Where an attribute's name lives: no namespace (plain SVG attributes),
// xlink (href) or xml (space, lang).
enum class AttributeSpace : uint8_t { None, XLink, Xml };

struct TreeAttribute {
    std::string name; // local name
    std::string value;
    AttributeSpace space = AttributeSpace::None;
};

struct TreeNode {
    ElementTag tag = ElementTag::Unknown;
    ElementIndex parent = kNoElement;
    ElementIndex firstChild = kNoElement;
    ElementIndex lastChild = kNoElement;
    ElementIndex nextSibling = kNoElement;
    // Attributes are [firstAttribute, firstAttribute + attributeCount) of
    // ElementTree::attributes.
    uint32_t firstAttribute = 0;
    uint32_t attributeCount = 0;
    // The local name of an element; the text of a CharacterData node.
    std::string name;
    // Where the element's start tag begins (1-based), 0 when not tracked:
    // so that what the later stages say about it can point there.
    int line = 0;
    int column = 0;
};

class ElementTree {
public:
    std::vector<TreeNode> nodes;
    std::vector<TreeAttribute> attributes;
    // First element with each id, in document order.
    std::unordered_map<std::string_view, ElementIndex> ids;
    ElementIndex root = kNoElement;

    const TreeNode& node(ElementIndex index) const { return nodes[index]; }
    const TreeAttribute* attributesOf(ElementIndex index) const
    {
        return attributes.data() + nodes[index].firstAttribute;
    }
    // The attribute `name` in `space`, or null.
    const TreeAttribute* findAttribute(ElementIndex index, std::string_view name,
                                       AttributeSpace space = AttributeSpace::None) const
    {
        const TreeNode& n = nodes[index];
        for (uint32_t i = 0; i < n.attributeCount; ++i) {
            const TreeAttribute& a = attributes[n.firstAttribute + i];
            if (a.space == space && a.name == name)
                return &a;
        }
        return nullptr;
    }
    // The value of `name` (no namespace), or an empty view.
    std::string_view attribute(ElementIndex index, std::string_view name) const
    {
        const TreeAttribute* a = findAttribute(index, name);
        return a != nullptr ? std::string_view(a->value) : std::string_view();
    }
    // The element's href: plain href wins over xlink:href, as in SVG 2.
    std::string_view href(ElementIndex index) const
    {
        if (const TreeAttribute* a = findAttribute(index, "href"))
            return a->value;
        if (const TreeAttribute* a = findAttribute(index, "href", AttributeSpace::XLink))
            return a->value;
        return {};
    }
    // The element an id refers to, or kNoElement.
    ElementIndex findId(std::string_view id) const
    {
        const auto it = ids.find(id);
        return it != ids.end() ? it->second : kNoElement;
    }
};

} // namespace vk::svg::impl

#endif
