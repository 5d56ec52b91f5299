#include <svg/Writer.h>

#include "WriteTestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace H = vk::svg::Helpers;
using vk::svg::SaveOptions;
using vk::svg::Unit;
using vk::svg::UnitValue;
using vksvgtest::BufferedText;
using vksvgtest::LogCapture;

namespace {

using Writer = std::function<bool(vk::xml::XmlSaveContext&, const SaveOptions&)>;

// The text of one element "e" holding what `write` adds.
std::string inElement(const Writer& write, const SaveOptions& options = {})
{
    vk::xml::XmlSaveContext context(false);
    xmlTextWriterStartElement(context.getWriter(), BAD_CAST "e");
    EXPECT_TRUE(write(context, options));
    EXPECT_EQ(context.getErrorCode(), 0);
    xmlTextWriterEndElement(context.getWriter());
    return BufferedText(context);
}

Wm4::Matrix3<float> matrix(float a, float b, float c, float d, float e, float f)
{
    return Wm4::Matrix3<float>(a, c, e, b, d, f, 0.0f, 0.0f, 1.0f);
}

} // namespace

// Every helper on one element: each attribute name tells which wrote it.
TEST(AttributeWriters, ExactTextOfEachHelper)
{
    EXPECT_EQ(
        inElement([](auto& c, const SaveOptions& o) {
            return H::writeAttributeString(c, o, "s", "x < \"y\" & z") &&
                   H::writeAttributeString(c, o, "s2", std::string("text")) &&
                   H::writeAttributeSignedInt(c, o, "i", -1L) && H::writeAttributeSignedInt(c, o, "i2", 42L) &&
                   H::writeAttributeUnsignedInt(c, o, "u", std::numeric_limits<unsigned long>::max()) &&
                   H::writeAttributeUnsignedInt(c, o, "u2", 1UL << 63) &&
                   H::writeAttributeUnsignedInt(c, o, "u3", 7UL) && H::writeAttributeFloatValue(c, o, "f", -0.5f) &&
                   H::writeAttributeUnitValue(c, o, "v", UnitValue(12.5f, Unit::Mm)) &&
                   H::writeAttributeUnitValue(c, o, "v2", UnitValue(3.0f, Unit::Unspecified)) &&
                   H::writeAttributeUnitValues(c, o, "l", {UnitValue(5, Unit::None), UnitValue(50, Unit::Percent)}) &&
                   H::writeAttributeUnitValues(c, o, "l2", {}) &&
                   H::writeAttributeBox(c, o, "viewBox", 0.0f, -1.5f, 100.0f, 50.25f) &&
                   H::writeAttributeTransform(c, o, "t", matrix(1, 2, 3, 4, 5, 6)) &&
                   H::writeAttributeTransform(c, o, "t2", Wm4::Matrix3<float>::IDENTITY) &&
                   // Equal to the identity but not bit for bit: written.
                   H::writeAttributeTransform(c, o, "t3", matrix(1, -0.0f, 0, 1, 0, 0));
        }),
        "<e s=\"x &lt; &quot;y&quot; &amp; z\" s2=\"text\" i=\"18446744073709551615\" i2=\"42\" u=\"-1\" "
        "u2=\"-9223372036854775808\" u3=\"7\" f=\"-0.5\" v=\"12.5mm\" v2=\"3\" l=\"5 50%\" l2=\"\" "
        "viewBox=\"0 -1.5 100 50.25\" t=\"matrix(1 2 3 4 5 6)\" t3=\"matrix(1 0 0 1 0 0)\"/>");
}

TEST(AttributeWriters, PrecisionAppliesToEveryNumber)
{
    SaveOptions options;
    options.precision = 2;
    EXPECT_EQ(inElement(
                  [](auto& c, const SaveOptions& o) {
                      return H::writeAttributeFloatValue(c, o, "a", 3.14159f) &&
                             H::writeAttributeTransform(c, o, "t", matrix(0.333333f, 0, 0, 1, 2.005f, -0.001f));
                  },
                  options),
              "<e a=\"3.14\" t=\"matrix(0.33 0 0 1 2.01 0)\"/>");
}

TEST(AttributeWriters, FailureSetsCodeSixAndLogs)
{
    LogCapture log;
    vk::xml::XmlSaveContext context(false);
    // No element is open, so libxml2 refuses the attribute.
    EXPECT_FALSE(H::writeAttributeFloatValue(context, SaveOptions(), "a", 1.0f));
    EXPECT_EQ(context.getErrorCode(), 6);
    EXPECT_EQ(log.texts(), std::vector<std::string>({"svg|1|Failed to write attribute"}));
    EXPECT_EQ(BufferedText(context), "");
}
