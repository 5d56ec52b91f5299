#ifndef VKSVG_LOAD_READERSUPPORT_H
#define VKSVG_LOAD_READERSUPPORT_H

#include "load/AttributeReaders.h"

#include <cstring>
#include <string>
#include <string_view>

// Small pieces shared by the attribute readers: the message texts and the
// checks that every reader makes the same way.
namespace vk::svg::impl {

inline bool NameIs(const std::string& name, std::string_view expected)
{
    return name.size() == expected.size() && std::memcmp(name.data(), expected.data(), expected.size()) == 0;
}

inline void AppendQuoted(std::string& out, std::string_view text)
{
    out += '"';
    out.append(text);
    out += '"';
}

// Attribute "name" specified twice
inline std::string SpecifiedTwiceText(std::string_view name)
{
    std::string text("Attribute ");
    AppendQuoted(text, name);
    text += " specified twice";
    return text;
}

// <lead> "value" in attribute "name"
inline std::string ValueInAttributeText(const char* lead, std::string_view value, std::string_view name)
{
    std::string text(lead);
    AppendQuoted(text, value);
    text += " in attribute ";
    AppendQuoted(text, name);
    return text;
}

inline std::string FailedValueText(std::string_view value, std::string_view name)
{
    return ValueInAttributeText("Failed to parse value ", value, name);
}

// The "specified twice" check of the readers whose repetition is caught by
// a scratch flag: sets the flag, or reports and answers false.
inline bool ClaimFlag(ReaderContext& context, uint32_t flag, std::string_view name)
{
    if ((context.flags & flag) != 0) {
        if (context.hasError())
            context.reportError(SpecifiedTwiceText(name));
        return false;
    }
    context.flags |= flag;
    return true;
}

// The attribute's name as written: prefix:local or local.
inline std::string QualifiedName(const vk::xml::XmlAttribute& attribute)
{
    if (attribute.prefix.empty())
        return attribute.localName;
    std::string name(attribute.prefix);
    name += ':';
    name += attribute.localName;
    return name;
}

// A value as one number, or the value error.
inline int ReadNumberInto(const vk::xml::XmlAttribute& attribute, float& target, const ReaderContext& context)
{
    float value = 0.0f;
    if (!ReadNumber(attribute.value, value)) {
        if (context.hasError())
            context.reportError(FailedValueText(attribute.value, attribute.localName));
        return Invalid;
    }
    target = value;
    return Handled;
}

} // namespace vk::svg::impl

#endif
