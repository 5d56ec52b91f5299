#ifndef VKXML_PARSEXMLSTREAM_H
#define VKXML_PARSEXMLSTREAM_H

#include <vkXml/Export.h>

namespace vk {
class vkIoDevice;
class vkCancelInterface;
} // namespace vk

namespace vk::xml {

class XmlSaxParserHandler;

// Parses the XML document read from `device`, chunk by chunk, reporting its
// events to `handler`. Returns true when the document is well-formed, no
// handler operation asked to stop and endDocument accepted it. External
// entities, external DTDs and the network are never touched. `cancel` may
// be null; a cancel request stops the parse with failure.
VKXML_API bool ParseXmlStream(vk::vkIoDevice& device, XmlSaxParserHandler& handler, const vk::vkCancelInterface* cancel);

} // namespace vk::xml

#endif
