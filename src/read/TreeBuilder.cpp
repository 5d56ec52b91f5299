#include "read/TreeBuilder.h"

#include <vkXml/ParseXmlStream.h>
#include <vkXml/XmlSaxParserHandler.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace vk::svg::impl {

namespace {

constexpr std::string_view kSvgNamespace = "http://www.w3.org/2000/svg";
constexpr std::string_view kXLinkNamespace = "http://www.w3.org/1999/xlink";
constexpr std::string_view kXmlNamespace = "http://www.w3.org/XML/1998/namespace";

struct TagName {
    std::string_view name;
    ElementTag tag;
};

// Sorted by name for a binary search.
constexpr TagName kTags[] = {
    {"a", ElementTag::A},
    {"circle", ElementTag::Circle},
    {"clipPath", ElementTag::ClipPath},
    {"defs", ElementTag::Defs},
    {"desc", ElementTag::Desc},
    {"ellipse", ElementTag::Ellipse},
    {"filter", ElementTag::Filter},
    {"g", ElementTag::G},
    {"image", ElementTag::Image},
    {"line", ElementTag::Line},
    {"linearGradient", ElementTag::LinearGradient},
    {"marker", ElementTag::Marker},
    {"mask", ElementTag::Mask},
    {"metadata", ElementTag::Metadata},
    {"path", ElementTag::Path},
    {"pattern", ElementTag::Pattern},
    {"polygon", ElementTag::Polygon},
    {"polyline", ElementTag::Polyline},
    {"radialGradient", ElementTag::RadialGradient},
    {"rect", ElementTag::Rect},
    {"stop", ElementTag::Stop},
    {"style", ElementTag::Style},
    {"svg", ElementTag::Svg},
    {"switch", ElementTag::Switch},
    {"symbol", ElementTag::Symbol},
    {"text", ElementTag::Text},
    {"textPath", ElementTag::TextPath},
    {"title", ElementTag::Title},
    {"tspan", ElementTag::Tspan},
    {"use", ElementTag::Use},
};

bool KeepsText(ElementTag tag)
{
    return tag == ElementTag::Text || tag == ElementTag::Tspan || tag == ElementTag::TextPath ||
           tag == ElementTag::Style || tag == ElementTag::A;
}

std::pair<std::string_view, std::string_view> SplitQualified(std::string_view name)
{
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos)
        return {std::string_view(), name};
    return {name.substr(0, colon), name.substr(colon + 1)};
}

class Builder : public vk::xml::XmlSaxParserHandler {
public:
    Builder(ElementTree& tree, const MessageSink& error, const MessageSink& warning,
            const vk::xml::XmlTextPosition* position)
        : mTree(tree), mError(error), mWarning(warning), mPosition(position)
    {
    }

    void finish()
    {
        if (mForeignElements > 0)
            warn("Ignore " + std::to_string(mForeignElements) + " element" + (mForeignElements > 1 ? "s" : "") +
                 " in foreign namespaces" + prefixList(mForeignElementPrefixes));
        if (mForeignAttributes > 0)
            warn("Ignore " + std::to_string(mForeignAttributes) + " attribute" + (mForeignAttributes > 1 ? "s" : "") +
                 " in foreign namespaces" + prefixList(mForeignAttributePrefixes));
        // Views into attribute values are taken only now: until the vector
        // stops growing, moving short strings would move their bytes.
        for (ElementIndex i = 0; i < mTree.nodes.size(); ++i) {
            if (mTree.nodes[i].tag == ElementTag::CharacterData)
                continue;
            if (const TreeAttribute* id = mTree.findAttribute(i, "id"); id != nullptr && !id->value.empty())
                mTree.ids.emplace(std::string_view(id->value), i);
        }
    }

private:
    struct Scope {
        std::size_t bindings; // size of mBindings before this element's declarations
        ElementIndex element; // kNoElement for an element that is not kept
    };

    bool startDocument() override { return true; }
    bool endDocument() override { return true; }

    int startElement(const char* qualifiedName, const vk::xml::XmlAttributeList& attributes) override
    {
        const std::size_t bindingMark = mBindings.size();
        for (const vk::xml::XmlAttribute& attribute : attributes) {
            if (attribute.prefix.empty() && attribute.localName == "xmlns")
                mBindings.emplace_back(std::string(), attribute.value);
            else if (attribute.prefix == "xmlns")
                mBindings.emplace_back(attribute.localName, attribute.value);
        }
        const auto [prefix, localName] = SplitQualified(qualifiedName);
        const std::string_view space = resolve(prefix);
        const bool svg =
            space == kSvgNamespace || (space.empty() && prefix.empty()) || (prefix == "svg" && !bound(prefix));
        if (!svg) {
            ++mForeignElements;
            if (!prefix.empty())
                mForeignElementPrefixes.insert(std::string(prefix));
            mBindings.resize(bindingMark);
            return SkipElement;
        }
        const ElementTag tag = TagOfName(localName);
        if (tag == ElementTag::Metadata || tag == ElementTag::Title || tag == ElementTag::Desc) {
            mBindings.resize(bindingMark);
            return SkipElement;
        }
        const ElementIndex parent = mScopes.empty() ? kNoElement : mScopes.back().element;
        if (!mScopes.empty() && parent == kNoElement) {
            mBindings.resize(bindingMark);
            return SkipElement;
        }
        if (parent == kNoElement && mTree.root != kNoElement) {
            // libxml2 does not deliver a second root; this keeps it that way.
            mBindings.resize(bindingMark);
            return SkipElement;
        }

        const ElementIndex index = append(parent, tag);
        TreeNode& node = mTree.nodes[index];
        node.name.assign(localName.data(), localName.size());
        node.firstAttribute = static_cast<uint32_t>(mTree.attributes.size());
        for (const vk::xml::XmlAttribute& attribute : attributes) {
            AttributeSpace attributeSpace = AttributeSpace::None;
            if (!attribute.prefix.empty()) {
                if (attribute.prefix == "xmlns")
                    continue;
                const std::string_view uri = resolve(attribute.prefix);
                if (uri == kXLinkNamespace || (uri.empty() && attribute.prefix == "xlink"))
                    attributeSpace = AttributeSpace::XLink;
                else if (attribute.prefix == "xml" || uri == kXmlNamespace)
                    attributeSpace = AttributeSpace::Xml;
                else if (uri != kSvgNamespace) {
                    ++mForeignAttributes;
                    mForeignAttributePrefixes.insert(attribute.prefix);
                    continue;
                }
            } else if (attribute.localName == "xmlns") {
                continue;
            }
            mTree.attributes.push_back(TreeAttribute{attribute.localName, attribute.value, attributeSpace});
        }
        node.attributeCount = static_cast<uint32_t>(mTree.attributes.size() - node.firstAttribute);
        if (parent == kNoElement)
            mTree.root = index;
        mScopes.push_back(Scope{bindingMark, index});
        return Enter;
    }

    bool endElement(const char*) override
    {
        if (!mScopes.empty()) {
            mBindings.resize(mScopes.back().bindings);
            mScopes.pop_back();
        }
        return true;
    }

    bool characters(const char* data, int length) override
    {
        if (length <= 0 || mScopes.empty() || mScopes.back().element == kNoElement)
            return true;
        const ElementIndex parent = mScopes.back().element;
        if (!KeepsText(mTree.nodes[parent].tag))
            return true;
        const ElementIndex last = mTree.nodes[parent].lastChild;
        if (last != kNoElement && mTree.nodes[last].tag == ElementTag::CharacterData) {
            mTree.nodes[last].name.append(data, static_cast<std::size_t>(length));
            return true;
        }
        const ElementIndex index = append(parent, ElementTag::CharacterData);
        mTree.nodes[index].name.assign(data, static_cast<std::size_t>(length));
        return true;
    }

    bool parserMessage(const std::string& text, int severity) override
    {
        // Recoverable errors (an undeclared prefix, mostly) do not stop a
        // user agent; well-formedness errors stop libxml2 whatever we say.
        if (severity == Fatal) {
            if (mError)
                mError(text);
            return false;
        }
        warn(text);
        return true;
    }

    ElementIndex append(ElementIndex parent, ElementTag tag)
    {
        const auto index = static_cast<ElementIndex>(mTree.nodes.size());
        mTree.nodes.emplace_back();
        TreeNode& node = mTree.nodes.back();
        node.tag = tag;
        node.parent = parent;
        if (mPosition != nullptr) {
            node.line = mPosition->line;
            node.column = mPosition->column;
        }
        if (parent != kNoElement) {
            TreeNode& p = mTree.nodes[parent];
            if (p.lastChild == kNoElement)
                p.firstChild = index;
            else
                mTree.nodes[p.lastChild].nextSibling = index;
            p.lastChild = index;
        }
        return index;
    }

    bool bound(std::string_view prefix) const
    {
        return std::any_of(mBindings.begin(), mBindings.end(), [&](const auto& b) { return b.first == prefix; });
    }

    // The namespace a prefix stands for here; empty when undeclared.
    std::string_view resolve(std::string_view prefix) const
    {
        if (prefix == "xml")
            return kXmlNamespace;
        for (auto it = mBindings.rbegin(); it != mBindings.rend(); ++it)
            if (it->first == prefix)
                return it->second;
        return {};
    }

    static std::string prefixList(const std::set<std::string>& prefixes)
    {
        if (prefixes.empty())
            return std::string();
        std::string text = " (";
        std::size_t count = 0;
        for (const std::string& prefix : prefixes) {
            if (count == 8) {
                text += ", ...";
                break;
            }
            if (count++ > 0)
                text += ", ";
            text += '"' + prefix + '"';
        }
        return text + ")";
    }

    void warn(const std::string& text) const
    {
        if (mWarning)
            mWarning(text);
    }

    ElementTree& mTree;
    const MessageSink& mError;
    const MessageSink& mWarning;
    const vk::xml::XmlTextPosition* mPosition;
    std::vector<std::pair<std::string, std::string>> mBindings;
    std::vector<Scope> mScopes;
    std::size_t mForeignElements = 0;
    std::size_t mForeignAttributes = 0;
    std::set<std::string> mForeignElementPrefixes;
    std::set<std::string> mForeignAttributePrefixes;
};

} // namespace

ElementTag TagOfName(std::string_view localName)
{
    const auto* end = std::end(kTags);
    const auto* it = std::lower_bound(std::begin(kTags), end, localName,
                                      [](const TagName& t, std::string_view n) { return t.name < n; });
    return it != end && it->name == localName ? it->tag : ElementTag::Unknown;
}

bool BuildElementTree(vk::vkIoDevice& device, ElementTree& tree, const MessageSink& error, const MessageSink& warning,
                      vk::xml::XmlTextPosition* position)
{
    Builder builder(tree, error, warning, position);
    const bool parsed = vk::xml::ParseXmlStream(device, builder, nullptr, position);
    if (!parsed)
        return false;
    // The summaries of what was dropped belong to no one place.
    if (position != nullptr)
        *position = {};
    builder.finish();
    return true;
}

} // namespace vk::svg::impl
