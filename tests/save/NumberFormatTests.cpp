#include <svg/Writer.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using vk::svg::floatToSvgNumber;
using vk::svg::SaveOptions;

TEST(FloatToSvgNumber, FixedTrimmedAndNoNegativeZero)
{
    struct Case {
        float value;
        int precision;
        const char* expected;
    };
    const Case cases[] = {
        {0.5f, -1, "0.5"},
        {2.0f, -1, "2"},
        {1e-7f, -1, "0"},
        {-1e-7f, -1, "0"},
        {-0.0f, -1, "0"},
        {-0.25f, -1, "-0.25"},
        {1234.5678f, -1, "1234.567749"},
        {1e20f, -1, "100000002004087734272"},
        {0.1f, -1, "0.1"},
        {3.14159f, 2, "3.14"},
        {2.5f, 2, "2.5"},
        {-0.004f, 2, "0"},
        {12.0f, 0, "12"},
        {0.1f, 9, "0.100000001"},
        {-7.0f, -5, "-7"},
    };
    for (const Case& c : cases) {
        SaveOptions options;
        options.precision = c.precision;
        EXPECT_EQ(floatToSvgNumber(c.value, options), c.expected) << c.value << " @" << c.precision;
    }
}

TEST(FloatToSvgNumber, NeverUsesAnExponentNorLeavesTrailingZeros)
{
    // Property over many magnitudes: digits, at most one point, a sign only
    // in front, no trailing zero after a point.
    SaveOptions options;
    for (int exponent = -40; exponent <= 38; ++exponent)
        for (float mantissa : {1.0f, -3.7f, 9.99f}) {
            const float value = mantissa * std::pow(10.0f, static_cast<float>(exponent));
            if (!std::isfinite(value))
                continue;
            const std::string text = floatToSvgNumber(value, options);
            ASSERT_FALSE(text.empty());
            EXPECT_EQ(text.find_first_not_of("-0123456789."), std::string::npos) << text;
            EXPECT_EQ(text.find('-', 1), std::string::npos) << text;
            if (text.find('.') != std::string::npos) {
                EXPECT_NE(text.back(), '0') << text;
            }
            EXPECT_NE(text.back(), '.') << text;
            EXPECT_NE(text, "-0");
        }
}
