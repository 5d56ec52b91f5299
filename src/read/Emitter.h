#ifndef VKSVG_READ_EMITTER_H
#define VKSVG_READ_EMITTER_H

#include "read/ElementTree.h"
#include "read/StyleSheet.h"

#include <svg/Items.h>

#include <vkXml/ParseXmlStream.h>

#include <cstddef>

namespace vk::svg::impl {

// Bounds on what references may build, so that a small file cannot make
// the reader build an unbounded tree.
struct EmitLimits {
    // Items built inside use instances, all uses together.
    std::size_t maxReferencedItems = 200000;
    // Uses inside uses.
    std::size_t maxReferenceDepth = 64;
};

// Walks the element tree from its svg root and builds the item tree:
// styles cascaded, references expanded, units resolved, every shape made an
// item of the library's own types. Returns false, with an error, for a root
// that is not svg, a reference loop or a reference expansion beyond the
// limits; `root` is then left as it was. With `position`, each message finds
// there the start tag of the element being emitted (of the element itself,
// not of a use that copies it).
bool EmitItems(const ElementTree& tree, const StyleSheet& sheet, const WarningSink& error, const WarningSink& warning,
               ItemInterfacePointer<ItemInterface>& root, const EmitLimits& limits = EmitLimits(),
               vk::xml::XmlTextPosition* position = nullptr);

} // namespace vk::svg::impl

#endif
