#include "load/Loader.h"
#include "load/ReaderSupport.h"

#include <vkXml/ParseXmlStream.h>

#include <cstring>
#include <optional>
#include <utility>

namespace vk::svg::impl {

namespace {

using vk::xml::XmlAttribute;
using vk::xml::XmlAttributeList;

template <class T, class... Args> ItemInterfacePointer<ItemInterface> Make(Args&&... args)
{
    return ItemInterfacePointer<ItemInterface>(std::make_shared<T>(std::forward<Args>(args)...));
}

const Wm4::Vector2<float> kZero(0.0f, 0.0f);

ItemInterfacePointer<ItemInterface> MakeDocument() { return Make<Document>(); }
ItemInterfacePointer<ItemInterface> MakeNode() { return Make<Node>(); }
ItemInterfacePointer<ItemInterface> MakeRect() { return Make<Rect>(kZero, kZero); }
ItemInterfacePointer<ItemInterface> MakeLine() { return Make<Line>(kZero, kZero); }
ItemInterfacePointer<ItemInterface> MakePath() { return Make<Path>(); }
ItemInterfacePointer<ItemInterface> MakeCircle() { return Make<Circle>(kZero, 0.0f); }
ItemInterfacePointer<ItemInterface> MakeText() { return Make<Text>(kZero, std::string()); }
ItemInterfacePointer<ItemInterface> MakeImage() { return Make<Image>(); }

// Fixed for the life of the library; every other element name (any name
// with a prefix among them) is unsupported. FindElement relies on the order.
const ElementEntry kElements[] = {
    {"svg", ElementKind::Svg, MakeDocument, ReadDocumentAttribute},
    {"style", ElementKind::Style, nullptr, nullptr},
    {"g", ElementKind::G, MakeNode, nullptr},
    {"rect", ElementKind::Rect, MakeRect, ReadRectAttribute},
    {"line", ElementKind::Line, MakeLine, ReadLineAttribute},
    {"path", ElementKind::Path, MakePath, ReadPathAttribute},
    {"circle", ElementKind::Circle, MakeCircle, ReadCircleAttribute},
    {"text", ElementKind::Text, MakeText, ReadTextAttribute},
    {"image", ElementKind::Image, MakeImage, ReadImageAttribute},
};

std::string Quoted(const char* text)
{
    std::string quoted("\"");
    quoted += text;
    quoted += '"';
    return quoted;
}

// Groups and documents hold children; nothing else does. Every item here
// comes from the element table, so its type tells its class.
bool IsNode(const ItemInterface* item)
{
    return item != nullptr && (item->getType() == ItemType::Node || item->getType() == ItemType::Document);
}

// The common tail of the attribute messages: "name" with value "value"
std::string NameWithValue(const XmlAttribute& attribute)
{
    std::string text("\"");
    text += QualifiedName(attribute);
    text += "\" with value \"";
    text += attribute.value;
    text += '"';
    return text;
}

} // namespace

const ElementEntry* FindElement(const char* name)
{
    if (name == nullptr)
        return nullptr;
    // Runs for every start tag: the first byte narrows the table down to
    // one or two names.
    std::size_t first = 0;
    std::size_t last = 0;
    switch (name[0]) {
    case 's':
        first = 0;
        last = 2;
        break;
    case 'g':
        first = 2;
        last = 3;
        break;
    case 'r':
        first = 3;
        last = 4;
        break;
    case 'l':
        first = 4;
        last = 5;
        break;
    case 'p':
        first = 5;
        last = 6;
        break;
    case 'c':
        first = 6;
        last = 7;
        break;
    case 't':
        first = 7;
        last = 8;
        break;
    case 'i':
        first = 8;
        last = 9;
        break;
    default:
        return nullptr;
    }
    for (std::size_t i = first; i < last; ++i)
        if (std::strcmp(kElements[i].name, name) == 0)
            return &kElements[i];
    return nullptr;
}

Loader::Loader(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const LoadOptions& options,
               Callback errorCallback, Callback warningCallback, vk::xml::XmlTextPosition* position)
    : mRoot(root), mErrorCallback(std::move(errorCallback)), mWarningCallback(std::move(warningCallback)),
      mIgnoreUnsupported(options.ignoreUnsupported)
{
    mParseResult = vk::xml::ParseXmlStream(device, *this, nullptr, position);
}

Loader::Loader(ItemInterfacePointer<ItemInterface>& root, const LoadOptions& options, Callback errorCallback,
               Callback warningCallback)
    : mRoot(root), mErrorCallback(std::move(errorCallback)), mWarningCallback(std::move(warningCallback)),
      mIgnoreUnsupported(options.ignoreUnsupported)
{
}

Loader::~Loader() = default;

void Loader::error(const std::string& text) const
{
    if (mErrorCallback)
        mErrorCallback(text);
}

void Loader::warning(const std::string& text) const
{
    if (mWarningCallback)
        mWarningCallback(text);
}

bool Loader::startDocument()
{
    mState = std::make_unique<ParseState>();
    return true;
}

int Loader::startElement(const char* name, const XmlAttributeList& attributes)
{
    if (name == nullptr)
        return Stop;
    const ElementEntry* element = FindElement(name);
    if (element == nullptr) {
        if (!mIgnoreUnsupported) {
            if (mErrorCallback)
                error("Found unsupported tag in svg : " + Quoted(name));
            return Stop;
        }
        if (mWarningCallback)
            warning("Ignore unsupported tag in svg : " + Quoted(name));
        return SkipElement;
    }
    if (!mState)
        mState = std::make_unique<ParseState>();
    ParseState& state = *mState;

    if (state.slots.empty() || state.rootClosed) {
        state.slots.emplace_back();
        state.rootClosed = false;
    }
    std::vector<Frame>& stack = state.slots.back();
    if (!stack.empty() && !IsNode(stack.back().item.get())) {
        error("Object of type " + Quoted(stack.back().element->name) + " may not contain any child element.");
        return Stop;
    }

    ItemInterfacePointer<ItemInterface> item;
    if (element->create != nullptr)
        item = element->create();
    stack.push_back(Frame{element, item});
    if (!item)
        return Enter;
    return readAttributes(*element, *item, attributes) ? Enter : Stop;
}

bool Loader::readAttributes(const ElementEntry& element, ItemInterface& item, const XmlAttributeList& attributes)
{
    ReaderContext context;
    context.error = &mErrorCallback;
    context.warning = &mWarningCallback;
    context.flags = 0;
    for (const XmlAttribute& attribute : attributes) {
        int result = ReadPresentationAttribute(item, attribute, context);
        if (result == NotMine && element.reader != nullptr)
            result = element.reader(&item, attribute, context);
        if (result == Handled)
            continue;
        if (result == Invalid) {
            if (!mIgnoreUnsupported) {
                if (mErrorCallback)
                    error("Invalid attribute " + NameWithValue(attribute));
                return false;
            }
            if (mWarningCallback)
                warning("Ignore Invalid attribute " + NameWithValue(attribute));
            continue;
        }
        // Not claimed by anyone. The error repeats the word "attribute" on
        // purpose: tools match on this exact text.
        if (mIgnoreUnsupported) {
            if (mWarningCallback)
                warning("Ignore unsupported attribute " + NameWithValue(attribute));
            continue;
        }
        if (mErrorCallback)
            error("Unsupported attribute attribute " + NameWithValue(attribute));
        return false;
    }
    return true;
}

bool Loader::endElement(const char* name)
{
    const char* closing = name != nullptr ? name : "";
    if (!mState || mState->slots.empty() || mState->slots.back().empty()) {
        error("End of element " + Quoted(closing) + " unexpected");
        return false;
    }
    std::vector<Frame>& stack = mState->slots.back();
    if (std::strcmp(closing, stack.back().element->name) != 0) {
        error("End of element " + Quoted(closing) + ", expected closing of " + Quoted(stack.back().element->name));
        return false;
    }
    if (stack.size() == 1) {
        // The root stays on its stack until the end of the document.
        mState->rootClosed = true;
        return true;
    }
    Frame& parent = stack[stack.size() - 2];
    if (!IsNode(parent.item.get())) {
        error("Internal svg error, object of type " + Quoted(parent.element->name) +
              " may not contain any child element.");
        return false;
    }
    // A style frame has no item; addChild ignores the null pointer.
    static_cast<Node&>(*parent.item).addChild(stack.back().item, true);
    stack.pop_back();
    return true;
}

bool Loader::characters(const char* data, int length)
{
    if (length < 1)
        return true;
    if (!mState || mState->slots.empty() || mState->slots.back().empty())
        return false;
    std::vector<Frame>& stack = mState->slots.back();
    const Frame& top = stack.back();
    switch (top.element->kind) {
    case ElementKind::Text:
        if (!top.item || top.item->getType() != ItemType::Text)
            return false;
        // Kept exactly as delivered; the xml:space rules are the reader's.
        static_cast<Text&>(*top.item).editContent().append(data, static_cast<std::size_t>(length));
        return true;
    case ElementKind::Style: {
        ItemInterface* bottom = stack.front().item.get();
        if (bottom == nullptr || bottom->getType() != ItemType::Document) {
            error("<style> tag is only expected if root is an <svg> tag.");
            return false;
        }
        std::optional<std::string>& style = static_cast<Document*>(bottom)->editStyle();
        if (!style)
            style.emplace();
        style->append(data, static_cast<std::size_t>(length));
        return true;
    }
    default:
        // Text directly inside svg, g or a shape carries nothing.
        return true;
    }
}

bool Loader::endDocument()
{
    if (!mState || !mState->rootClosed) {
        error("Some svg tags were not closed properly.");
        return false;
    }
    for (const std::vector<Frame>& slot : mState->slots) {
        if (slot.empty()) {
            error("Some closing tags were missing.");
            return false;
        }
    }
    if (mState->slots.size() == 1) {
        mRoot = mState->slots.front().front().item;
    } else {
        auto group = std::make_shared<Node>();
        for (const std::vector<Frame>& slot : mState->slots)
            group->addChild(slot.front().item, true);
        mRoot = ItemInterfacePointer<ItemInterface>(std::move(group));
    }
    mState.reset();
    return true;
}

bool Loader::parserMessage(const std::string& text, int severity)
{
    if (severity == Warning) {
        warning(text);
        return true;
    }
    error(text);
    return false;
}

} // namespace vk::svg::impl
