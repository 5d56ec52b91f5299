#ifndef VKXML_XMLSAXPARSERHANDLER_H
#define VKXML_XMLSAXPARSERHANDLER_H

#include <vkXml/Export.h>

#include <string>
#include <vector>

namespace vk::xml {

// One attribute of a start tag. Namespace declarations are delivered as
// attributes too: xmlns="..." as local name "xmlns" without prefix, and
// xmlns:p="..." as local name "p" with prefix "xmlns".
struct XmlAttribute {
    std::string localName;
    std::string prefix; // empty when the name has none
    std::string value;  // with character and entity references resolved
};

using XmlAttributeList = std::vector<XmlAttribute>;

// Receives the events of ParseXmlStream. Every operation may stop the parse
// through its result; the defaults accept everything.
class VKXML_API XmlSaxParserHandler {
public:
    // Results of startElement.
    enum StartElementResult : int { Enter = 0, SkipElement = 1, Stop = 2 };
    // Severities of parserMessage.
    enum Severity : int { Fatal = 1, Error = 2, Warning = 4 };

    XmlSaxParserHandler() = default;
    XmlSaxParserHandler(const XmlSaxParserHandler&) = default;
    XmlSaxParserHandler& operator=(const XmlSaxParserHandler&) = default;
    virtual ~XmlSaxParserHandler();

    virtual bool startDocument();
    // False rejects the document.
    virtual bool endDocument();
    // name is the qualified name (prefix:local when prefixed), NUL-terminated.
    // Enter (0) goes on into the element, SkipElement (1) skips it with all
    // it contains (no events for any of it, nor its end tag), Stop (2) ends
    // the parse with failure.
    virtual int startElement(const char* name, const XmlAttributeList& attributes);
    virtual bool endElement(const char* name);
    // Character data, in one or more pieces; not NUL-terminated.
    virtual bool characters(const char* data, int length);
    // A message of the XML parser, with a Severity. True lets the parse go
    // on where it can (see ParseXmlStream); the default accepts warnings
    // only.
    virtual bool parserMessage(const std::string& text, int severity);
};

} // namespace vk::xml

#endif
