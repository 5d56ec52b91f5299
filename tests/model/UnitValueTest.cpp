#include <svg/UnitValue.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>

using vk::svg::Unit;
using vk::svg::UnitToString;
using vk::svg::UnitValue;

// A failed parse must leave the sentinel untouched.
TEST(UnitValue, ParsesLengthTable)
{
    const struct {
        std::string text;
        bool ok;
        float value;
        Unit unit;
    } cases[] = {
        {"12.5mm", true, 12.5f, Unit::Mm},
        {"12.5 mm ", true, 12.5f, Unit::Mm},
        {"50%", true, 50.0f, Unit::Percent},
        {"3", true, 3.0f, Unit::None},
        {"1e2px", true, 100.0f, Unit::Px},
        {" -.5pt\r\n", true, -0.5f, Unit::Pt},
        {"7\tem\v\f", true, 7.0f, Unit::Em},
        {"0x1.8p1cm", true, 3.0f, Unit::Cm},
        // The suffix is cut off before converting, so its hex-digit "e" is not
        // read into the number.
        {"0x1em", true, 1.0f, Unit::Em},
        {"", true, 0.0f, Unit::None},
        {" \t\n", true, 0.0f, Unit::None},
        {"%", true, 0.0f, Unit::Percent},
        {"1 %", true, 1.0f, Unit::Percent},
        {std::string(80, ' ') + "7px", true, 7.0f, Unit::Px},
        {"12PX", false, 0, Unit::None},
        {"12 p x", false, 0, Unit::None},
        {"12px5", false, 0, Unit::None},
        {"abc", false, 0, Unit::None},
        {"1,5", false, 0, Unit::None},
        {std::string("1\0px", 4), false, 0, Unit::None},
        {"0." + std::string(80, '0') + "1x", false, 0, Unit::None},
    };
    for (const auto& c : cases) {
        UnitValue result(-42.0f, Unit::Unspecified);
        EXPECT_EQ(UnitValue::parseVal(c.text, result), c.ok) << "\"" << c.text << "\"";
        EXPECT_EQ(result, c.ok ? UnitValue(c.value, c.unit) : UnitValue(-42.0f, Unit::Unspecified))
            << "\"" << c.text << "\"";
    }
    UnitValue result;
    EXPECT_TRUE(UnitValue::parseVal("infin", result) && std::isinf(result.value) && result.unit == Unit::In);
    EXPECT_TRUE(UnitValue::parseVal("nan", result) && std::isnan(result.value) && result.unit == Unit::None);
}

TEST(UnitValue, UnitToStringAppendsOrReplaces)
{
    const char* const suffixes[] = {"", "%", "em", "px", "pt", "cm", "mm", "in", ""};
    for (uint32_t u = 0; u < 9; ++u) {
        std::string s = "12";
        EXPECT_TRUE(UnitToString(static_cast<Unit>(u), s, true));
        EXPECT_EQ(s, std::string("12") + suffixes[u]);
        // Only the low byte names the unit.
        EXPECT_TRUE(UnitToString(static_cast<Unit>(u | 0x500u), s, false));
        EXPECT_EQ(s, suffixes[u]);
    }
    std::string s = "12";
    EXPECT_FALSE(UnitToString(static_cast<Unit>(9), s, true));
    EXPECT_EQ(s, "12");
    EXPECT_FALSE(UnitToString(static_cast<Unit>(0xFFu), s, false));
    EXPECT_EQ(s, "");
}

// Whatever the printer writes after a number, the parser reads back.
TEST(UnitValue, PrintedSuffixesParseBack)
{
    std::mt19937 rng(1234);
    std::uniform_real_distribution<float> dist(-1e6f, 1e6f);
    for (int i = 0; i < 400; ++i) {
        const UnitValue original(dist(rng), static_cast<Unit>(i % 8));
        char number[48];
        std::snprintf(number, sizeof(number), "%.9g", static_cast<double>(original.value));
        std::string text = number;
        ASSERT_TRUE(UnitToString(original.unit, text, true));
        UnitValue parsed;
        EXPECT_TRUE(UnitValue::parseVal(text, parsed)) << text;
        EXPECT_EQ(parsed, original) << text;
    }
}

// Random texts over the characters that matter never crash; a failure never
// touches the result and a success never yields Unspecified.
TEST(UnitValue, RandomTextsKeepTheContract)
{
    const std::string alphabet = "0123456789.eE+-xX pPtcmin%\t,\nafy";
    std::mt19937 rng(99);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (auto n = rng() % 13; n > 0; --n) {
            text += alphabet[rng() % alphabet.size()];
        }
        UnitValue result(-42.0f, Unit::Unspecified);
        const bool ok = UnitValue::parseVal(text, result);
        EXPECT_TRUE(ok ? result.unit != Unit::Unspecified : result == UnitValue(-42.0f, Unit::Unspecified)) << text;
    }
}
