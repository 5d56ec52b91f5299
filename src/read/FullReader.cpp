#include "read/FullReader.h"

#include "read/ElementTree.h"
#include "read/Emitter.h"
#include "read/StyleSheet.h"
#include "read/TreeBuilder.h"

namespace vk::svg::impl {

namespace {

bool IsCssType(std::string_view type) { return type.empty() || type == "text/css"; }

// Every style element counts, wherever it is, in document order.
void GatherStyleSheets(const ElementTree& tree, StyleSheet& sheet, const WarningSink& warning)
{
    for (ElementIndex i = 0; i < tree.nodes.size(); ++i) {
        const TreeNode& node = tree.nodes[i];
        if (node.tag != ElementTag::Style || !IsCssType(tree.attribute(i, "type")))
            continue;
        for (ElementIndex c = node.firstChild; c != kNoElement; c = tree.nodes[c].nextSibling)
            if (tree.nodes[c].tag == ElementTag::CharacterData)
                sheet.addSheet(tree.nodes[c].name, warning);
    }
}

} // namespace

bool ReadFullProfile(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device,
                     const std::function<void(const std::string&)>& error,
                     const std::function<void(const std::string&)>& warning, vk::xml::XmlTextPosition* position)
{
    ElementTree tree;
    if (!BuildElementTree(device, tree, error, warning, position))
        return false;
    // Style sheets belong to no one element; the emitter points at each
    // element it works on.
    if (position != nullptr)
        *position = {};
    StyleSheet sheet;
    GatherStyleSheets(tree, sheet, warning);
    return EmitItems(tree, sheet, error, warning, root, EmitLimits(), position);
}

} // namespace vk::svg::impl
