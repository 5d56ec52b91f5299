#include <svg/Writer.h>

#include <gtest/gtest.h>

#include <cmath>

using vk::svg::floatToSvgNumber;
using vk::svg::SaveOptions;

// Plain fixed formatting is the string utilities' own; here only what the
// SVG number adds to it.
TEST(FloatToSvgNumber, FixedTrimmedAndNoNegativeZero)
{
    const struct {
        float value;
        int precision;
        const char* expected;
    } cases[] = {
        {-0.0f, -1, "0"},      {-1e-7f, -1, "0"}, {-0.004f, 2, "0"},        {-0.25f, -1, "-0.25"},
        {3.14159f, 2, "3.14"}, {12.0f, 0, "12"},  {0.1f, 9, "0.100000001"}, {-7.0f, -5, "-7"},
    };
    for (const auto& c : cases) {
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
            const bool point = text.find('.') != std::string::npos;
            EXPECT_TRUE(!text.empty() && text.find_first_not_of("-0123456789.") == std::string::npos &&
                        text.find('-', 1) == std::string::npos && !(point && text.back() == '0') &&
                        text.back() != '.' && text != "-0")
                << text;
        }
}
