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
// handler operation asked to stop and endDocument accepted it.
//
// Stopping: a handler operation that returns false (or Stop, or any result
// other than Enter and SkipElement, from startElement) ends the parse at
// once; no further event reaches the handler, and the result is false.
// endDocument is offered only to a document that got that far unharmed.
//
// Parser messages go to parserMessage, with " (line L, column C)" appended
// where known:
// - a warning (Warning, 4) lets the parse go on unless the handler answers
//   false;
// - an error that libxml2 can recover from (Error, 2), such as an undeclared
//   namespace prefix, fails the parse unless the handler answers true;
// - a fatal error (Fatal, 1), which includes every well-formedness error,
//   ends the parse with failure whatever the handler answers.
// A device read failure is reported as an Error naming the device's error
// text, and input that is empty or blank as the Fatal "Document is empty".
//
// Safety: only entities declared with their text in the document itself are
// expanded. External entities, external DTDs and the network are never
// touched: a reference to an external entity is an undefined-entity error.
// Nesting deeper than libxml2's depth limit (256) and entity expansion
// beyond 1,000,000 bytes and five times the input read so far are Fatal.
//
// Cancelling: `cancel` may be null. It is polled before every chunk read and
// at every element boundary; once it asks to stop, the handler receives
// nothing but the Error "XML parsing cancelled", and the result is false.
//
// An exception thrown by the handler or the device ends the parse and is
// rethrown to the caller once libxml2 has been cleaned up.
VKXML_API bool ParseXmlStream(vk::vkIoDevice& device, XmlSaxParserHandler& handler,
                              const vk::vkCancelInterface* cancel);

/// A place in the parsed text: 1-based line and column (in characters), 0
/// where unknown.
struct XmlTextPosition {
    int line = 0;
    int column = 0;
};

/// The same parse, with `*position` (when not null) kept up to date for the
/// handler: during startElement and endElement it holds where that tag
/// begins, during characters where the parser stands, and during
/// parserMessage the place libxml2 gave the message (0, 0 when it gave none,
/// as for a device failure). Inside the text of an entity the position is
/// that of the entity reference.
VKXML_API bool ParseXmlStream(vk::vkIoDevice& device, XmlSaxParserHandler& handler, const vk::vkCancelInterface* cancel,
                              XmlTextPosition* position);

} // namespace vk::xml

#endif
