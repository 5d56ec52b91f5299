#include <vkXml/XmlSaxParserHandler.h>

namespace vk::xml {

XmlSaxParserHandler::~XmlSaxParserHandler() = default;

bool XmlSaxParserHandler::startDocument() { return true; }

bool XmlSaxParserHandler::endDocument() { return true; }

int XmlSaxParserHandler::startElement(const char* /*name*/, const XmlAttributeList& /*attributes*/) { return Enter; }

bool XmlSaxParserHandler::endElement(const char* /*name*/) { return true; }

bool XmlSaxParserHandler::characters(const char* /*data*/, int /*length*/) { return true; }

bool XmlSaxParserHandler::parserMessage(const std::string& /*text*/, int severity)
{
    // Warnings are harmless; anything worse ends the parse unless a handler
    // decides otherwise.
    return severity == Warning;
}

} // namespace vk::xml
