#ifndef VKSVG_READ_FULLREADER_H
#define VKSVG_READ_FULLREADER_H

// The full reading profile: SVG as a user agent reads it, normalised into
// the library's own item types so that nothing downstream needs to know
// which profile read a file.
//
// Stages, each with one input and one output:
//   1. TreeBuilder  XML (libxml2 through the platform layer, with its safety
//                   limits) -> ElementTree: SVG elements and attributes,
//                   text runs; foreign namespaces dropped.
//   2. StyleSheet   every <style> element -> indexed CSS rules.
//   3. Cascade      per element: presentation attributes, matching rules and
//                   the style attribute -> the winning declarations -> the
//                   computed style (inherit, currentColor, em, %).
//   4. Emitter      the walk from the root: viewports and viewBox mappings,
//                   use/symbol/switch expansion within fixed budgets, shapes
//                   to Line/Rect/Circle/Path, path data by SVG's grammar
//                   (PathGrammar), colours to text the library's colour
//                   parser reads, paint servers to one colour.
//
// What an item keeps: each item carries the properties declared on its own
// element, resolved to plain values (user units, colour text), so the
// library's property cascade reproduces SVG inheritance. Opacity, which SVG
// applies to a group as a whole, is multiplied into the shapes below it.
//
// Limits: clip paths, masks, filters, markers and text on paths are skipped
// with one warning per kind and id; gradients and patterns become one
// representative colour; nested viewports do not clip; CSS matches type,
// class, id, universal and attribute-presence selectors with descendant and
// child combinators only.

#include <svg/Items.h>

#include <vkXml/ParseXmlStream.h>

#include <functional>
#include <string>

namespace vk {
class vkIoDevice;
}

namespace vk::svg::impl {

// Reads the document of `device` under the full profile. Errors (a document
// that is not well-formed XML, a root that is not svg, a reference loop or
// an expansion beyond the budget) fail the load and leave `root` as it was;
// everything else is a warning. With `position`, messages of the parse
// find it at their place in the text, and those of the later stages at the
// element they concern (none for style sheets).
bool ReadFullProfile(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device,
                     const std::function<void(const std::string&)>& error,
                     const std::function<void(const std::string&)>& warning,
                     vk::xml::XmlTextPosition* position = nullptr);

} // namespace vk::svg::impl

#endif
