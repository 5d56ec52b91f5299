#ifndef VKSVG_LOAD_ATTRIBUTEREADERS_H
#define VKSVG_LOAD_ATTRIBUTEREADERS_H

#include <svg/Items.h>

#include <vkXml/XmlSaxParserHandler.h>

#include <wm4/Wm4Matrix3.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace vk::svg::impl {

// What a reader makes of one attribute.
enum ReadResult : int {
    Handled = 0, // taken (or deliberately ignored)
    NotMine = 1, // not an attribute this reader knows
    Invalid = 2, // known, but its value (or its repetition) is rejected
};

using MessageCallback = std::function<void(const std::string&)>;

// One flag per attribute that an element reader accepts. They live for one
// start tag and catch an attribute that reaches the same field twice (an
// alias such as href next to xlink:href).
enum ScratchFlag : uint32_t {
    FlagX = 1u << 0,
    FlagY = 1u << 1,
    FlagWidth = 1u << 2,
    FlagHeight = 1u << 3,
    FlagRx = 1u << 4,
    FlagRy = 1u << 5,
    FlagCx = 1u << 6,
    FlagCy = 1u << 7,
    FlagR = 1u << 8,
    FlagX1 = 1u << 9,
    FlagY1 = 1u << 10,
    FlagX2 = 1u << 11,
    FlagY2 = 1u << 12,
    FlagXmlns = 1u << 13,
    FlagDx = 1u << 14,
    FlagDy = 1u << 15,
    FlagFontSize = 1u << 16,
    FlagTextLength = 1u << 17,
    FlagFontFamily = 1u << 18,
    FlagFontWeight = 1u << 19,
    FlagFontStyle = 1u << 20,
    FlagTextDecoration = 1u << 21,
    FlagHref = 1u << 22,
    FlagPreserveAspectRatio = 1u << 23,
    FlagD = 1u << 24,
};

// What the readers share with the loader while one start tag is read: where
// messages go and the scratch flags of the element.
struct ReaderContext {
    const MessageCallback* error = nullptr;
    const MessageCallback* warning = nullptr;
    uint32_t flags = 0;

    bool hasError() const { return error != nullptr && *error; }
    bool hasWarning() const { return warning != nullptr && *warning; }
    void reportError(const std::string& text) const
    {
        if (hasError())
            (*error)(text);
    }
    void reportWarning(const std::string& text) const
    {
        if (hasWarning())
            (*warning)(text);
    }
};

// The reader of an element's own attributes. `item` is the element's item,
// null for elements that create none.
using AttributeReader = int (*)(ItemInterface* item, const vk::xml::XmlAttribute& attribute, ReaderContext& context);

// The presentation attributes, "id" and "transform", shared by every element.
int ReadPresentationAttribute(ItemInterface& item, const vk::xml::XmlAttribute& attribute, ReaderContext& context);

int ReadDocumentAttribute(ItemInterface* item, const vk::xml::XmlAttribute& attribute, ReaderContext& context);
int ReadRectAttribute(ItemInterface* item, const vk::xml::XmlAttribute& attribute, ReaderContext& context);
int ReadLineAttribute(ItemInterface* item, const vk::xml::XmlAttribute& attribute, ReaderContext& context);
int ReadCircleAttribute(ItemInterface* item, const vk::xml::XmlAttribute& attribute, ReaderContext& context);
int ReadPathAttribute(ItemInterface* item, const vk::xml::XmlAttribute& attribute, ReaderContext& context);
int ReadTextAttribute(ItemInterface* item, const vk::xml::XmlAttribute& attribute, ReaderContext& context);
int ReadImageAttribute(ItemInterface* item, const vk::xml::XmlAttribute& attribute, ReaderContext& context);

// The whole of `text` as one float in the "C" locale, by strtof's rules;
// false when anything is left over.
bool ReadNumber(std::string_view text, float& value);

// Numbers separated by blanks, commas, tabs and line breaks, between
// `minCount` and `maxCount` of them, into `values` (room for maxCount).
// Reports its failures under `attributeName`; on failure nothing is stored.
bool ReadNumberList(std::string_view text, std::size_t minCount, std::size_t maxCount, std::string_view attributeName,
                    float* values, std::size_t& count, const ReaderContext& context);

// A transform list as the product of its commands, in the order written.
// Reports its failures; `matrix` is only written on success.
bool ReadTransformList(const std::string& value, Wm4::Matrix3<float>& matrix, const ReaderContext& context);

} // namespace vk::svg::impl

#endif
