#ifndef VKSVG_READ_TREEBUILDER_H
#define VKSVG_READ_TREEBUILDER_H

#include "read/ElementTree.h"

#include <vkXml/ParseXmlStream.h>

#include <functional>
#include <string>

namespace vk {
class vkIoDevice;
}

namespace vk::svg::impl {

using MessageSink = std::function<void(const std::string&)>;

// Parses the XML of `device` into `tree`, keeping elements of the SVG
// namespace (and of no namespace, as hand-written files often are) with
// their attributes. Foreign elements and attributes are dropped with one
// summary warning each; metadata, title and desc quietly. Well-formedness
// errors and the parser's safety limits fail the build through `error`.
// With `position`, the parser keeps it at the place of the event being
// handled while the messages of the parse go out.
bool BuildElementTree(vk::vkIoDevice& device, ElementTree& tree, const MessageSink& error, const MessageSink& warning,
                      vk::xml::XmlTextPosition* position = nullptr);

// The tag of an SVG element's local name.
ElementTag TagOfName(std::string_view localName);

} // namespace vk::svg::impl

#endif
