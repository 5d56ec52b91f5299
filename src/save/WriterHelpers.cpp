#include <svg/Writer.h>

#include "save/SvgNumber.h"
#include "save/WriterFailure.h"

#include <vkSystem/vkStringUtils.h>
#include <vkXml/XmlSaveContext.h>

#include <cstring>

namespace vk::svg::Helpers {

namespace {

bool isIdentity(const Wm4::Matrix3<float>& matrix)
{
    // Bit for bit: a matrix that merely compares equal (-0 for 0) is written.
    const Wm4::Matrix3<float>& identity = Wm4::Matrix3<float>::IDENTITY;
    for (int row = 0; row < 3; ++row)
        for (int col = 0; col < 3; ++col) {
            const float a = matrix(row, col);
            const float b = identity(row, col);
            if (std::memcmp(&a, &b, sizeof(float)) != 0)
                return false;
        }
    return true;
}

} // namespace

bool writeAttributeString(vk::xml::XmlSaveContext& context, const SaveOptions&, const char* name, const char* value)
{
    if (xmlTextWriterWriteAttribute(context.getWriter(), BAD_CAST name, BAD_CAST value) < 0)
        return impl::Fail(context, WriteErrorAttribute, "Failed to write attribute");
    return true;
}

bool writeAttributeString(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                          const std::string& value)
{
    return writeAttributeString(context, options, name, value.c_str());
}

bool writeAttributeUnsignedInt(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                               unsigned long value)
{
    return writeAttributeString(context, options, name,
                                vk::vkStringUtils::fromInt64(static_cast<int64_t>(value), 1, '0'));
}

bool writeAttributeSignedInt(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name, long value)
{
    return writeAttributeString(context, options, name,
                                vk::vkStringUtils::fromUInt64(static_cast<uint64_t>(value), 1, '0'));
}

bool writeAttributeFloatValue(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                              float value)
{
    return writeAttributeString(context, options, name, impl::SvgNumberText(value, options).c_str());
}

bool writeAttributeUnitValue(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                             const UnitValue& value)
{
    std::string text;
    impl::AppendSvgNumber(text, value.value, options);
    UnitToString(value.unit, text, true);
    return writeAttributeString(context, options, name, text);
}

bool writeAttributeUnitValues(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                              const std::vector<UnitValue>& values)
{
    std::string text;
    for (const UnitValue& value : values) {
        if (!text.empty())
            text += ' ';
        impl::AppendSvgNumber(text, value.value, options);
        UnitToString(value.unit, text, true);
    }
    return writeAttributeString(context, options, name, text);
}

bool writeAttributeBox(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name, float a, float b,
                       float c, float d)
{
    std::string text;
    for (float value : {a, b, c, d}) {
        if (!text.empty())
            text += ' ';
        impl::AppendSvgNumber(text, value, options);
    }
    return writeAttributeString(context, options, name, text);
}

bool writeAttributeTransform(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                             const Wm4::Matrix3<float>& matrix)
{
    if (isIdentity(matrix))
        return true;
    // Column by column, first row then second: the SVG order a b c d e f.
    std::string text = "matrix(";
    for (int col = 0; col < 3; ++col)
        for (int row = 0; row < 2; ++row) {
            if (col + row > 0)
                text += ' ';
            impl::AppendSvgNumber(text, matrix(row, col), options);
        }
    text += ')';
    return writeAttributeString(context, options, name, text);
}

} // namespace vk::svg::Helpers
