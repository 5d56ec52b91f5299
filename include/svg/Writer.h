#ifndef VKSVG_WRITER_H
#define VKSVG_WRITER_H

#include <svg/Export.h>
#include <svg/Options.h>
#include <svg/UnitValue.h>

#include <wm4/Wm4Matrix3.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vk::xml {
class XmlSaveContext;
}

namespace vk::svg {

/// The error codes that the writers leave in the save context.
enum WriteErrorCode : int32_t {
    WriteErrorNone = 0,
    WriteErrorDocumentStart = 2, ///< the XML declaration or a header comment
    WriteErrorDocumentEnd = 3,
    WriteErrorElementStart = 4,
    WriteErrorElementEnd = 5, ///< also text content
    WriteErrorAttribute = 6,
};

/// The one number format of the writer: fixed notation with
/// options.precision decimals (6 when negative), trailing zeros and a bare
/// point removed, and "-0" written as "0". Never uses the process locale.
/// With options.shortestNumbers (and no precision) the fixed decimals give
/// way to the fewest digits that read back to the same float.
///
/// Threads: the number format and the attribute writers keep no state of
/// their own; calls may run at once on any threads as long as each save
/// context is used by one thread at a time. Failures are logged through the
/// process log, which serialises its entries.
VKSVG_API std::string floatToSvgNumber(float value, const SaveOptions& options);

/// Attribute writers. Each returns false on failure, after setting the
/// context's error code to WriteErrorAttribute and logging the failure as an
/// error under "svg". libxml2 escapes the values.
namespace Helpers {

///@{
/// The text as it is.
VKSVG_API bool writeAttributeString(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                                    const char* value);
VKSVG_API bool writeAttributeString(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                                    const std::string& value);
///@}
/// The two integer writers are crossed on purpose: the unsigned one prints
/// through the signed 64-bit conversion (2^63 and above print negative), the
/// signed one through the unsigned conversion (-1 prints 18446744073709551615).
///@{
VKSVG_API bool writeAttributeUnsignedInt(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                                         unsigned long value);
VKSVG_API bool writeAttributeSignedInt(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                                       long value);
///@}
/// The number in the format of floatToSvgNumber.
VKSVG_API bool writeAttributeFloatValue(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                                        float value);
/// The number followed by the unit's suffix.
VKSVG_API bool writeAttributeUnitValue(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                                       const UnitValue& value);
/// The values separated by single blanks; an empty list writes an empty value.
VKSVG_API bool writeAttributeUnitValues(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                                        const std::vector<UnitValue>& values);
/// Four numbers separated by single blanks, as for a viewBox.
VKSVG_API bool writeAttributeBox(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                                 float a, float b, float c, float d);
/// "matrix(a b c d e f)" from the first two rows, column by column; nothing
/// at all, and success, for a matrix that is bit for bit the identity.
VKSVG_API bool writeAttributeTransform(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name,
                                       const Wm4::Matrix3<float>& matrix);

} // namespace Helpers

} // namespace vk::svg

#endif
