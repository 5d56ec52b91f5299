// The reader that every element shares: presentation attributes, "id" and
// "transform", and the number, number-list and transform grammars.
#include "load/AttributeReaders.h"
#include "load/ReaderSupport.h"

#include <svg/Color.h>
#include <svg/RenderingProperties.h>
#include <svg/UnitValue.h>

#include <vkSystem/vkStringUtils.h>

#include <wm4/Wm4Vector4.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace vk::svg::impl {

namespace {

// The attributes of this reader, in the order they are tested.
enum class Presentation {
    StrokeWidth,
    Stroke,
    StrokeOpacity,
    Fill,
    FillOpacity,
    Class,
    StrokeLinecap,
    StrokeLinejoin,
    StrokeDasharray,
    VectorEffect,
    Id,
    Transform,
    Opacity,
    Unknown,
};

struct PresentationName {
    std::string_view name;
    Presentation attribute;
};

constexpr PresentationName kPresentationNames[] = {
    {"stroke-width", Presentation::StrokeWidth},
    {"stroke", Presentation::Stroke},
    {"stroke-opacity", Presentation::StrokeOpacity},
    {"fill", Presentation::Fill},
    {"fill-opacity", Presentation::FillOpacity},
    {"class", Presentation::Class},
    {"stroke-linecap", Presentation::StrokeLinecap},
    {"stroke-linejoin", Presentation::StrokeLinejoin},
    {"stroke-dasharray", Presentation::StrokeDasharray},
    {"vector-effect", Presentation::VectorEffect},
    {"id", Presentation::Id},
    {"transform", Presentation::Transform},
    {"opacity", Presentation::Opacity},
};

Presentation Identify(const std::string& name)
{
    for (const PresentationName& entry : kPresentationNames)
        if (NameIs(name, entry.name))
            return entry.attribute;
    return Presentation::Unknown;
}

constexpr bool IsListSeparator(char c) { return c == ' ' || c == ',' || c == '\t' || c == '\n' || c == '\r'; }
constexpr bool IsBlankOrBreak(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Calls fn(piece) for each non-empty piece of `text` between characters
// for which `separator` holds; stops early when fn returns false.
template <class Separator, class Fn> bool ForEachPiece(std::string_view text, Separator separator, Fn&& fn)
{
    std::size_t pos = 0;
    while (pos < text.size()) {
        while (pos < text.size() && separator(text[pos]))
            ++pos;
        if (pos == text.size())
            break;
        std::size_t end = pos;
        while (end < text.size() && !separator(text[end]))
            ++end;
        if (!fn(text.substr(pos, end - pos)))
            return false;
        pos = end;
    }
    return true;
}

int Repeated(const ReaderContext& context, const std::string& name)
{
    if (context.hasError())
        context.reportError(SpecifiedTwiceText(name));
    return Invalid;
}

int FailedValue(const ReaderContext& context, const vk::xml::XmlAttribute& attribute)
{
    if (context.hasError())
        context.reportError(FailedValueText(attribute.value, attribute.localName));
    return Invalid;
}

int ReadOptionalNumber(std::optional<float>& target, const vk::xml::XmlAttribute& attribute,
                       const ReaderContext& context)
{
    if (target)
        return Repeated(context, attribute.localName);
    float value = 0.0f;
    if (!ReadNumber(attribute.value, value))
        return FailedValue(context, attribute);
    target = value;
    return Handled;
}

int ReadText(std::optional<std::string>& target, const vk::xml::XmlAttribute& attribute, const ReaderContext& context)
{
    if (target)
        return Repeated(context, attribute.localName);
    target = attribute.value;
    return Handled;
}

// Paints stay text; the colour parser only vets them.
int ReadPaint(std::optional<std::string>& target, const vk::xml::XmlAttribute& attribute, const ReaderContext& context)
{
    if (target)
        return Repeated(context, attribute.localName);
    if (!NameIs(attribute.value, "none")) {
        Wm4::Vector4<unsigned char> rgba;
        if (!ParseSvgColor(attribute.value, rgba)) {
            if (context.hasError())
                context.reportError(
                    ValueInAttributeText("Failed to parse color ", attribute.value, attribute.localName));
            return Invalid;
        }
    }
    target = attribute.value;
    return Handled;
}

template <class Enum, std::size_t N>
int ReadKeyword(std::optional<Enum>& target, const std::string_view (&keywords)[N],
                const vk::xml::XmlAttribute& attribute, const ReaderContext& context)
{
    if (target)
        return Repeated(context, attribute.localName);
    for (std::size_t i = 0; i < N; ++i) {
        if (NameIs(attribute.value, keywords[i])) {
            target = static_cast<Enum>(i);
            return Handled;
        }
    }
    return FailedValue(context, attribute);
}

constexpr std::string_view kLineCaps[] = {"butt", "round", "square"};
constexpr std::string_view kLineJoins[] = {"arcs", "bevel", "miter", "miter-clip", "round"};

// The field is engaged before the value is read, so a failing piece leaves
// the pieces before it in place.
int ReadDasharray(std::optional<std::vector<UnitValue>>& target, const vk::xml::XmlAttribute& attribute,
                  const ReaderContext& context)
{
    if (target)
        return Repeated(context, attribute.localName);
    if (attribute.value.empty())
        return Invalid;
    target.emplace();
    std::vector<UnitValue>& dashes = *target;
    std::string piece;
    const bool ok = ForEachPiece(attribute.value, IsListSeparator, [&](std::string_view text) {
        piece.assign(text);
        UnitValue dash;
        if (!UnitValue::parseVal(piece, dash))
            return false;
        dashes.push_back(dash);
        return true;
    });
    return ok ? Handled : FailedValue(context, attribute);
}

struct VectorEffectKeyword {
    std::string_view keyword;
    VectorEffect bit;
};

constexpr VectorEffectKeyword kVectorEffects[] = {
    {"non-scaling-stroke", VectorEffect::NonScalingStroke},
    {"non-scaling-size", VectorEffect::NonScalingSize},
    {"non-rotation", VectorEffect::NonRotation},
    {"fixed-position", VectorEffect::FixedPosition},
};

// Engaged with 0 before the keywords are read, like the dash array: the bits
// of the keywords before an unknown one stay set.
int ReadVectorEffect(std::optional<uint32_t>& target, const vk::xml::XmlAttribute& attribute,
                     const ReaderContext& context)
{
    if (target)
        return Repeated(context, attribute.localName);
    target = 0u;
    uint32_t& bits = *target;
    std::size_t keywords = 0;
    ForEachPiece(attribute.value, IsBlankOrBreak, [&](std::string_view) { return ++keywords < 2; });
    const bool ok = ForEachPiece(attribute.value, IsBlankOrBreak, [&](std::string_view keyword) {
        if (keywords == 1 && keyword == "none")
            return true;
        for (const VectorEffectKeyword& entry : kVectorEffects) {
            if (keyword == entry.keyword) {
                bits |= static_cast<uint32_t>(entry.bit);
                return true;
            }
        }
        return false;
    });
    return ok ? Handled : FailedValue(context, attribute);
}

int ReadTransform(ItemInterface& item, const vk::xml::XmlAttribute& attribute, const ReaderContext& context)
{
    if (item.getTransform())
        return Repeated(context, attribute.localName);
    Wm4::Matrix3<float> matrix;
    if (!ReadTransformList(attribute.value, matrix, context))
        return Invalid;
    // An identity leaves the transform unset, so a later transform is still
    // welcome on the same element.
    if (!(matrix == Wm4::Matrix3<float>::IDENTITY))
        item.editTransform() = matrix;
    return Handled;
}

enum class TransformCommand { Matrix, Translate, Scale, Rotate, SkewX, SkewY };

struct TransformCommandEntry {
    std::string_view name;
    TransformCommand command;
    std::size_t minCount;
    std::size_t maxCount;
};

constexpr TransformCommandEntry kTransformCommands[] = {
    {"matrix", TransformCommand::Matrix, 6, 6}, {"translate", TransformCommand::Translate, 1, 2},
    {"scale", TransformCommand::Scale, 1, 2},   {"rotate", TransformCommand::Rotate, 1, 3},
    {"skewX", TransformCommand::SkewX, 1, 1},   {"skewY", TransformCommand::SkewY, 1, 1},
};

// Degrees to radians with the single-precision factor the format has always
// used; the trigonometry itself runs in double precision.
double Radians(float degrees) { return static_cast<double>(degrees * 0.017453292f); }

Wm4::Matrix3<float> CommandMatrix(TransformCommand command, const float* v, std::size_t count)
{
    switch (command) {
    case TransformCommand::Matrix:
        return Wm4::Matrix3<float>(v[0], v[2], v[4], v[1], v[3], v[5], 0.0f, 0.0f, 1.0f);
    case TransformCommand::Translate:
        return Wm4::Matrix3<float>(1.0f, 0.0f, v[0], 0.0f, 1.0f, count > 1 ? v[1] : 0.0f, 0.0f, 0.0f, 1.0f);
    case TransformCommand::Scale:
        return Wm4::Matrix3<float>(v[0], 0.0f, 0.0f, 0.0f, count > 1 ? v[1] : v[0], 0.0f, 0.0f, 0.0f, 1.0f);
    case TransformCommand::Rotate: {
        const auto c = static_cast<float>(std::cos(Radians(v[0])));
        const auto s = static_cast<float>(std::sin(Radians(v[0])));
        // With a centre, the rotation is followed by a translation to it
        // rather than performed about it; drawings made for this library
        // depend on that.
        const float tx = count == 3 ? v[1] : 0.0f;
        const float ty = count == 3 ? v[2] : 0.0f;
        return Wm4::Matrix3<float>(c, -s, tx, s, c, ty, 0.0f, 0.0f, 1.0f);
    }
    case TransformCommand::SkewX:
        return Wm4::Matrix3<float>(1.0f, static_cast<float>(std::tan(Radians(v[0]))), 0.0f, 0.0f, 1.0f, 0.0f, 0.0f,
                                   0.0f, 1.0f);
    case TransformCommand::SkewY:
        return Wm4::Matrix3<float>(1.0f, 0.0f, 0.0f, static_cast<float>(std::tan(Radians(v[0]))), 1.0f, 0.0f, 0.0f,
                                   0.0f, 1.0f);
    }
    return Wm4::Matrix3<float>::IDENTITY;
}

std::string TransformFailureText(const std::string& value)
{
    std::string text("Failed to parse transform attribute ");
    AppendQuoted(text, value);
    return text;
}

} // namespace

bool ReadNumber(std::string_view text, float& value)
{
    return vk::vkStringUtils::toFloat(text.data(), text.data() + text.size(), value);
}

bool ReadNumberList(std::string_view text, std::size_t minCount, std::size_t maxCount, std::string_view attributeName,
                    float* values, std::size_t& count, const ReaderContext& context)
{
    std::size_t pieces = 0;
    ForEachPiece(text, IsListSeparator, [&](std::string_view) { return ++pieces <= maxCount; });
    if (pieces < minCount || pieces > maxCount) {
        if (context.hasError()) {
            std::string message("Wrong number of values for ");
            AppendQuoted(message, attributeName);
            context.reportError(message);
        }
        return false;
    }
    // Converted into a scratch array first: a failing piece discards the
    // values before it.
    float converted[16];
    if (maxCount > sizeof(converted) / sizeof(converted[0]))
        return false;
    std::size_t index = 0;
    const bool ok = ForEachPiece(text, IsListSeparator, [&](std::string_view piece) {
        if (ReadNumber(piece, converted[index])) {
            ++index;
            return true;
        }
        if (context.hasError())
            context.reportError(ValueInAttributeText("Failed to parse value ", piece, attributeName));
        return false;
    });
    if (!ok)
        return false;
    std::memcpy(values, converted, index * sizeof(float));
    count = index;
    return true;
}

bool ReadTransformList(const std::string& value, Wm4::Matrix3<float>& matrix, const ReaderContext& context)
{
    Wm4::Matrix3<float> accumulated = Wm4::Matrix3<float>::IDENTITY;
    const std::size_t size = value.size();
    std::size_t pos = 0;
    for (;;) {
        while (pos < size && IsListSeparator(value[pos]))
            ++pos;
        if (pos == size)
            break;

        const std::size_t open = value.find('(', pos);
        const std::size_t close = value.find(')', pos);
        if (open == std::string::npos || close == std::string::npos || close < open) {
            if (context.hasError())
                context.reportError(TransformFailureText(value) + ", fail to locate '(' / ')'");
            return false;
        }

        std::string_view name(value.data() + pos, open - pos);
        while (!name.empty() && IsBlankOrBreak(name.back()))
            name.remove_suffix(1);
        const TransformCommandEntry* entry = nullptr;
        for (const TransformCommandEntry& candidate : kTransformCommands)
            if (name == candidate.name)
                entry = &candidate;
        if (entry == nullptr) {
            if (context.hasError()) {
                std::string text = TransformFailureText(value);
                text += ", unsupported command '";
                text.append(name);
                text += '\'';
                context.reportError(text);
            }
            return false;
        }

        float numbers[6];
        std::size_t count = 0;
        const std::string_view content(value.data() + open + 1, close - open - 1);
        if (!ReadNumberList(content, entry->minCount, entry->maxCount, "transform", numbers, count, context)) {
            if (context.hasError()) {
                std::string text = TransformFailureText(value);
                text += ", fail to parse '";
                text.append(entry->name);
                text += "' content";
                context.reportError(text);
            }
            return false;
        }
        // Commands apply in the order written: each one multiplies on the
        // right.
        accumulated = accumulated * CommandMatrix(entry->command, numbers, count);
        pos = close + 1;
    }
    matrix = accumulated;
    return true;
}

int ReadPresentationAttribute(ItemInterface& item, const vk::xml::XmlAttribute& attribute, ReaderContext& context)
{
    if (!attribute.prefix.empty())
        return NotMine;
    RenderingProperties& properties = item.editRenderingProperties();
    switch (Identify(attribute.localName)) {
    case Presentation::StrokeWidth:
        return ReadOptionalNumber(properties.editStrokeWidth(), attribute, context);
    case Presentation::Stroke:
        return ReadPaint(properties.editStroke(), attribute, context);
    case Presentation::StrokeOpacity:
        return ReadOptionalNumber(properties.editStrokeOpacity(), attribute, context);
    case Presentation::Fill:
        return ReadPaint(properties.editFill(), attribute, context);
    case Presentation::FillOpacity:
        return ReadOptionalNumber(properties.editFillOpacity(), attribute, context);
    case Presentation::Class:
        return ReadText(properties.editClassName(), attribute, context);
    case Presentation::StrokeLinecap:
        return ReadKeyword(properties.editStrokeLinecap(), kLineCaps, attribute, context);
    case Presentation::StrokeLinejoin:
        return ReadKeyword(properties.editStrokeLinejoin(), kLineJoins, attribute, context);
    case Presentation::StrokeDasharray:
        return ReadDasharray(properties.editStrokeDasharray(), attribute, context);
    case Presentation::VectorEffect:
        return ReadVectorEffect(properties.editVectorEffect(), attribute, context);
    case Presentation::Id:
        return ReadText(item.editId(), attribute, context);
    case Presentation::Transform:
        return ReadTransform(item, attribute, context);
    case Presentation::Opacity:
        return ReadOptionalNumber(properties.editOpacity(), attribute, context);
    case Presentation::Unknown:
        break;
    }
    return NotMine;
}

} // namespace vk::svg::impl
