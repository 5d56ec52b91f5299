#ifndef VKSVG_LOAD_LOADER_H
#define VKSVG_LOAD_LOADER_H

#include "load/AttributeReaders.h"

#include <svg/Items.h>
#include <svg/Options.h>

#include <vkXml/ParseXmlStream.h>
#include <vkXml/XmlSaxParserHandler.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vk {
class vkIoDevice;
}

namespace vk::svg::impl {

// What the loader knows about a supported element.
enum class ElementKind { Svg, Style, G, Rect, Line, Path, Circle, Text, Image };

struct ElementEntry {
    const char* name;
    ElementKind kind;
    // Null for an element that creates no item ("style").
    ItemInterfacePointer<ItemInterface> (*create)();
    // Null for an element that has no attributes of its own ("g").
    AttributeReader reader;
};

// The table entry of a supported element name (compared byte for byte), or
// null.
const ElementEntry* FindElement(const char* name);

// An open element and the item made for it (null for "style").
struct Frame {
    const ElementEntry* element;
    ItemInterfacePointer<ItemInterface> item;
};

// The state of one parse: one slot (a stack of open elements) per element
// that started at top level, and whether the current slot's root is closed.
// The scratch flags of the element being read live in the readers' context,
// which each start tag creates afresh.
struct ParseState {
    std::vector<std::vector<Frame>> slots;
    bool rootClosed = false;
};

// Turns the SAX events of one XML document into an item tree. The
// constructor runs the whole parse; the root reaches the caller only when
// the document was accepted.
class Loader : private vk::xml::XmlSaxParserHandler {
public:
    using Callback = std::function<void(const std::string&)>;

    // With `position`, the parser keeps it at the place of the event being
    // handled, so that the callbacks can tell where a message arose.
    Loader(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const LoadOptions& options,
           Callback errorCallback, Callback warningCallback, vk::xml::XmlTextPosition* position = nullptr);
    // A loader that parses nothing by itself: its handler is driven by the
    // caller, event by event.
    Loader(ItemInterfacePointer<ItemInterface>& root, const LoadOptions& options, Callback errorCallback,
           Callback warningCallback);
    ~Loader() override;

    Loader(const Loader&) = delete;
    Loader& operator=(const Loader&) = delete;

    bool getParseResult() const { return mParseResult; }

    vk::xml::XmlSaxParserHandler& handler() { return *this; }
    // Null outside startDocument .. endDocument.
    ParseState* state() { return mState.get(); }

private:
    bool startDocument() override;
    bool endDocument() override;
    int startElement(const char* name, const vk::xml::XmlAttributeList& attributes) override;
    bool endElement(const char* name) override;
    bool characters(const char* data, int length) override;
    bool parserMessage(const std::string& text, int severity) override;

    bool readAttributes(const ElementEntry& element, ItemInterface& item, const vk::xml::XmlAttributeList& attributes);
    void error(const std::string& text) const;
    void warning(const std::string& text) const;

    ItemInterfacePointer<ItemInterface>& mRoot;
    Callback mErrorCallback;
    Callback mWarningCallback;
    std::unique_ptr<ParseState> mState;
    bool mIgnoreUnsupported = false;
    bool mParseResult = false;
};

} // namespace vk::svg::impl

#endif
