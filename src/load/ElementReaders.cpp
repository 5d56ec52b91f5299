// The readers of the attributes that belong to one element: geometry, the
// root's viewBox, text styling and image references.
#include "load/AttributeReaders.h"
#include "load/ReaderSupport.h"

#include <svg/PathData.h>
#include <svg/UnitValue.h>

#include <utf8.h>

#include <list>
#include <string>

namespace vk::svg::impl {

namespace {

using vk::xml::XmlAttribute;

// A plain number attribute guarded by its scratch flag.
struct NumberAttribute {
    std::string_view name;
    uint32_t flag;
};

int ReadFlaggedNumber(const XmlAttribute& attribute, uint32_t flag, float& target, ReaderContext& context)
{
    if (!ClaimFlag(context, flag, attribute.localName))
        return Invalid;
    return ReadNumberInto(attribute, target, context);
}

// Looks the name up in `names` and, when found, reads the number into the
// float that `targets` holds at the same index.
template <std::size_t N>
int ReadGeometry(const XmlAttribute& attribute, const NumberAttribute (&names)[N], float* const (&targets)[N],
                 ReaderContext& context)
{
    if (!attribute.prefix.empty())
        return NotMine;
    for (std::size_t i = 0; i < N; ++i)
        if (NameIs(attribute.localName, names[i].name))
            return ReadFlaggedNumber(attribute, names[i].flag, *targets[i], context);
    return NotMine;
}

template <class T> T* As(ItemInterface* item, ItemType type)
{
    return item != nullptr && item->getType() == type ? static_cast<T*>(item) : nullptr;
}

constexpr NumberAttribute kRectNumbers[] = {{"x", FlagX},           {"y", FlagY},   {"width", FlagWidth},
                                            {"height", FlagHeight}, {"rx", FlagRx}, {"ry", FlagRy}};
constexpr NumberAttribute kCircleNumbers[] = {{"cx", FlagCx}, {"cy", FlagCy}, {"r", FlagR}};
constexpr NumberAttribute kLineNumbers[] = {{"x1", FlagX1}, {"y1", FlagY1}, {"x2", FlagX2}, {"y2", FlagY2}};
constexpr NumberAttribute kTextNumbers[] = {{"x", FlagX}, {"y", FlagY}, {"dx", FlagDx}, {"dy", FlagDy}};
constexpr NumberAttribute kImageNumbers[] = {{"x", FlagX}, {"y", FlagY}, {"width", FlagWidth}, {"height", FlagHeight}};

// "Ignore unsupported attribute "name" with value "value""
std::string IgnoredValueText(const XmlAttribute& attribute)
{
    std::string text("Ignore unsupported attribute ");
    AppendQuoted(text, attribute.localName);
    text += " with value ";
    AppendQuoted(text, attribute.value);
    return text;
}

// font-weight, font-style and text-decoration: one keyword turns the flag on;
// any other value is not stored and is only worth a warning.
int ReadTextStyle(const XmlAttribute& attribute, uint32_t flag, std::string_view keyword, std::optional<bool>& target,
                  ReaderContext& context)
{
    if (!ClaimFlag(context, flag, attribute.localName))
        return Invalid;
    if (NameIs(attribute.value, keyword)) {
        target = true;
        return Handled;
    }
    if (context.hasWarning()) {
        context.reportWarning(IgnoredValueText(attribute));
        return Handled;
    }
    context.reportError(IgnoredValueText(attribute));
    return Invalid;
}

constexpr std::string_view kAspectRatios[] = {"none",     "xMinYMin", "xMidYMin", "xMaxYMin", "xMinYMid",
                                              "xMidYMid", "xMaxYMid", "xMinYMax", "xMidYMax", "xMaxYMax"};

} // namespace

int ReadDocumentAttribute(ItemInterface* item, const XmlAttribute& attribute, ReaderContext& context)
{
    auto* document = As<Document>(item, ItemType::Document);
    if (document == nullptr)
        return Invalid;
    if (!attribute.prefix.empty())
        return NotMine;
    if (NameIs(attribute.localName, "xmlns"))
        return ClaimFlag(context, FlagXmlns, attribute.localName) ? Handled : Invalid;
    if (NameIs(attribute.localName, "viewBox")) {
        // Caught by the field itself rather than by a flag.
        if (document->getViewbox()) {
            context.reportError(SpecifiedTwiceText(attribute.localName));
            return Invalid;
        }
        float v[4];
        std::size_t count = 0;
        if (!ReadNumberList(attribute.value, 4, 4, attribute.localName, v, count, context))
            return Invalid;
        document->editViewbox() =
            BoundingBox(Wm4::Vector2<float>(v[0], v[1]), Wm4::Vector2<float>(v[0] + v[2], v[1] + v[3]));
        return Handled;
    }
    // width, height, version and the rest are outside what the library reads.
    return NotMine;
}

int ReadRectAttribute(ItemInterface* item, const XmlAttribute& attribute, ReaderContext& context)
{
    auto* rect = As<Rect>(item, ItemType::Rect);
    if (rect == nullptr)
        return Invalid;
    Wm4::Vector2<float>& position = rect->editPosition();
    Wm4::Vector2<float>& size = rect->editSize();
    Wm4::Vector2<float>& radius = rect->editRadius();
    float* const targets[] = {&position.X(), &position.Y(), &size.X(), &size.Y(), &radius.X(), &radius.Y()};
    return ReadGeometry(attribute, kRectNumbers, targets, context);
}

int ReadLineAttribute(ItemInterface* item, const XmlAttribute& attribute, ReaderContext& context)
{
    auto* line = As<Line>(item, ItemType::Line);
    if (line == nullptr)
        return Invalid;
    Wm4::Vector2<float>& start = line->editStart();
    Wm4::Vector2<float>& end = line->editEnd();
    float* const targets[] = {&start.X(), &start.Y(), &end.X(), &end.Y()};
    return ReadGeometry(attribute, kLineNumbers, targets, context);
}

int ReadCircleAttribute(ItemInterface* item, const XmlAttribute& attribute, ReaderContext& context)
{
    auto* circle = As<Circle>(item, ItemType::Circle);
    if (circle == nullptr)
        return Invalid;
    Wm4::Vector2<float>& center = circle->editCenter();
    float* const targets[] = {&center.X(), &center.Y(), &circle->editRadius()};
    return ReadGeometry(attribute, kCircleNumbers, targets, context);
}

int ReadPathAttribute(ItemInterface* item, const XmlAttribute& attribute, ReaderContext& context)
{
    auto* path = As<Path>(item, ItemType::Path);
    if (path == nullptr)
        return Invalid;
    if (!attribute.prefix.empty() || !NameIs(attribute.localName, "d"))
        return NotMine;
    if ((context.flags & FlagD) != 0) {
        context.reportError(SpecifiedTwiceText(attribute.localName));
        return Invalid;
    }
    // Parsed aside and moved in whole, so that a rejected value leaves no
    // commands behind.
    std::list<PathCommand> commands;
    std::string error;
    bool ok = false;
    try {
        ok = ConvertPathStringToCommands(attribute.value, commands, &error);
    } catch (const utf8::exception& exception) {
        error = exception.what();
    }
    if (!ok) {
        if (context.hasError())
            context.reportError("Malformed path attribute, " + error + " : " + attribute.value);
        return Invalid;
    }
    std::list<PathCommand>& target = path->editCommands();
    target.splice(target.end(), commands);
    context.flags |= FlagD;
    return Handled;
}

int ReadTextAttribute(ItemInterface* item, const XmlAttribute& attribute, ReaderContext& context)
{
    auto* text = As<Text>(item, ItemType::Text);
    if (text == nullptr)
        return Invalid;
    const std::string& name = attribute.localName;
    if (!attribute.prefix.empty()) {
        // xml:space is the one prefixed attribute of a text, and is simply
        // overwritten when it comes again.
        if (!NameIs(attribute.prefix, "xml") || !NameIs(name, "space"))
            return NotMine;
        text->editXmlSpacePreserve() = NameIs(attribute.value, "preserve");
        return Handled;
    }
    // dx and dy write the same fields as x and y; they are not offsets.
    Wm4::Vector2<float>& position = text->editPosition();
    float* const targets[] = {&position.X(), &position.Y(), &position.X(), &position.Y()};
    const int geometry = ReadGeometry(attribute, kTextNumbers, targets, context);
    if (geometry != NotMine)
        return geometry;

    if (NameIs(name, "font-size")) {
        if (!ClaimFlag(context, FlagFontSize, name))
            return Invalid;
        float size = 0.0f;
        if (ReadNumberInto(attribute, size, context) != Handled)
            return Invalid;
        text->editFontSize() = size;
        return Handled;
    }
    if (NameIs(name, "textLength")) {
        if (!ClaimFlag(context, FlagTextLength, name))
            return Invalid;
        UnitValue length;
        if (!UnitValue::parseVal(attribute.value, length)) {
            context.reportError(FailedValueText(attribute.value, name));
            return Invalid;
        }
        text->editTextLength() = length;
        return Handled;
    }
    if (NameIs(name, "font-family")) {
        if (!ClaimFlag(context, FlagFontFamily, name))
            return Invalid;
        text->editFontFamily() = attribute.value;
        return Handled;
    }
    if (NameIs(name, "font-weight"))
        return ReadTextStyle(attribute, FlagFontWeight, "bold", text->editBold(), context);
    if (NameIs(name, "font-style"))
        return ReadTextStyle(attribute, FlagFontStyle, "italic", text->editItalic(), context);
    if (NameIs(name, "text-decoration"))
        return ReadTextStyle(attribute, FlagTextDecoration, "underline", text->editUnderline(), context);
    return NotMine;
}

int ReadImageAttribute(ItemInterface* item, const XmlAttribute& attribute, ReaderContext& context)
{
    auto* image = As<Image>(item, ItemType::Image);
    if (image == nullptr)
        return Invalid;
    // href counts whatever its prefix, so that xlink:href lands here too.
    if (NameIs(attribute.localName, "href")) {
        if (!ClaimFlag(context, FlagHref, QualifiedName(attribute)))
            return Invalid;
        image->editHref() = attribute.value;
        return Handled;
    }
    if (!attribute.prefix.empty())
        return NotMine;
    if (NameIs(attribute.localName, "preserveAspectRatio")) {
        if (!ClaimFlag(context, FlagPreserveAspectRatio, attribute.localName))
            return Invalid;
        for (std::size_t i = 0; i < sizeof(kAspectRatios) / sizeof(kAspectRatios[0]); ++i) {
            if (NameIs(attribute.value, kAspectRatios[i])) {
                image->editPreserveAspectRatio() = static_cast<PreserveAspectRatio>(i);
                return Handled;
            }
        }
        // Only the alignment is kept, so a meet or slice suffix cannot be
        // honoured and is refused rather than dropped.
        if (context.hasError()) {
            std::string message("Attribute ");
            AppendQuoted(message, attribute.localName);
            message += " has an unsupported value ";
            AppendQuoted(message, attribute.value);
            context.reportError(message);
        }
        return Invalid;
    }
    Wm4::Vector2<float>& position = image->editPosition();
    Wm4::Vector2<float>& size = image->editSize();
    float* const targets[] = {&position.X(), &position.Y(), &size.X(), &size.Y()};
    return ReadGeometry(attribute, kImageNumbers, targets, context);
}

} // namespace vk::svg::impl
