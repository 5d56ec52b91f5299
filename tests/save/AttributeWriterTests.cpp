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

TEST(AttributeWriters, ExactTextOfEachHelper)
{
    using C = vk::xml::XmlSaveContext;
    using O = SaveOptions;
    struct Case {
        Writer write;
        const char* expected;
    };
    const Case cases[] = {
        {[](C& c, const O& o) { return H::writeAttributeString(c, o, "a", "x < \"y\" & z"); },
         "<e a=\"x &lt; &quot;y&quot; &amp; z\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeString(c, o, "a", std::string("text")); }, "<e a=\"text\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeSignedInt(c, o, "a", -1L); },
         "<e a=\"18446744073709551615\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeSignedInt(c, o, "a", 42L); }, "<e a=\"42\"/>"},
        {[](C& c, const O& o) {
             return H::writeAttributeUnsignedInt(c, o, "a", std::numeric_limits<unsigned long>::max());
         },
         "<e a=\"-1\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeUnsignedInt(c, o, "a", 1UL << 63); },
         "<e a=\"-9223372036854775808\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeUnsignedInt(c, o, "a", 7UL); }, "<e a=\"7\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeFloatValue(c, o, "a", -0.5f); }, "<e a=\"-0.5\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeUnitValue(c, o, "a", UnitValue(12.5f, Unit::Mm)); },
         "<e a=\"12.5mm\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeUnitValue(c, o, "a", UnitValue(3.0f, Unit::Unspecified)); },
         "<e a=\"3\"/>"},
        {[](C& c, const O& o) {
             return H::writeAttributeUnitValues(c, o, "a", {UnitValue(5, Unit::None), UnitValue(50, Unit::Percent)});
         },
         "<e a=\"5 50%\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeUnitValues(c, o, "a", {}); }, "<e a=\"\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeBox(c, o, "viewBox", 0.0f, -1.5f, 100.0f, 50.25f); },
         "<e viewBox=\"0 -1.5 100 50.25\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeTransform(c, o, "t", matrix(1, 0, 0, 1, 10, 20)); },
         "<e t=\"matrix(1 0 0 1 10 20)\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeTransform(c, o, "t", matrix(1, 2, 3, 4, 5, 6)); },
         "<e t=\"matrix(1 2 3 4 5 6)\"/>"},
        {[](C& c, const O& o) { return H::writeAttributeTransform(c, o, "t", Wm4::Matrix3<float>::IDENTITY); }, "<e/>"},
        // Equal to the identity but not bit for bit: written.
        {[](C& c, const O& o) { return H::writeAttributeTransform(c, o, "t", matrix(1, -0.0f, 0, 1, 0, 0)); },
         "<e t=\"matrix(1 0 0 1 0 0)\"/>"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(inElement(c.write), c.expected);
}

TEST(AttributeWriters, PrecisionAppliesToEveryNumber)
{
    SaveOptions options;
    options.precision = 2;
    EXPECT_EQ(inElement([](auto& c, const SaveOptions& o) { return H::writeAttributeFloatValue(c, o, "a", 3.14159f); },
                        options),
              "<e a=\"3.14\"/>");
    EXPECT_EQ(inElement(
                  [](auto& c, const SaveOptions& o) {
                      return H::writeAttributeTransform(c, o, "t", matrix(0.333333f, 0, 0, 1, 2.005f, -0.001f));
                  },
                  options),
              "<e t=\"matrix(0.33 0 0 1 2.01 0)\"/>");
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
