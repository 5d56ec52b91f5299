#include <svg/Items.h>
#include <svg/Writer.h>

#include "WriteTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

using vk::svg::floatToSvgNumber;
using vk::svg::SaveOptions;

namespace {

SaveOptions shortest()
{
    SaveOptions options;
    options.shortestNumbers = true;
    return options;
}

uint32_t bitsOf(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

// Digits after the point of `text` (0 without a point).
std::size_t decimalsOf(const std::string& text)
{
    const std::size_t point = text.find('.');
    return point == std::string::npos ? 0 : text.size() - point - 1;
}

// The oracle: the fewest decimals with which printf's fixed notation reads
// back (through strtof) to `value`. printf rounds correctly in glibc, so no
// shorter fixed text of `value` can exist.
std::size_t fewestDecimals(float value)
{
    char buffer[128];
    for (int decimals = 0; decimals < 60; ++decimals) {
        std::snprintf(buffer, sizeof(buffer), "%.*f", decimals, static_cast<double>(value));
        if (bitsOf(std::strtof(buffer, nullptr)) == bitsOf(value))
            return static_cast<std::size_t>(decimals);
    }
    return 60;
}

void expectShortestRoundTrip(float value)
{
    const std::string text = floatToSvgNumber(value, shortest());
    SCOPED_TRACE(text);
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.find_first_not_of("-0123456789."), std::string::npos);
    if (decimalsOf(text) > 0) {
        EXPECT_NE(text.back(), '0');
    }
    const float back = std::strtof(text.c_str(), nullptr);
    if (value == 0.0f) {
        EXPECT_EQ(text, "0"); // "-0" is written "0", as everywhere
    } else {
        EXPECT_EQ(bitsOf(back), bitsOf(value));
    }
    EXPECT_EQ(decimalsOf(text), fewestDecimals(value));
}

} // namespace

TEST(ShortestNumbers, KnownValues)
{
    const struct {
        float value;
        const char* expected;
    } cases[] = {
        {133.02f, "133.02"},
        {0.1f, "0.1"},
        {-0.25f, "-0.25"},
        {2.0f, "2"},
        {-0.0f, "0"},
        {1e-7f, "0.0000001"},
        {1234.5678f, "1234.5677"},
        {-3.0f, "-3"},
        {16777216.0f, "16777216"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(floatToSvgNumber(c.value, shortest()), c.expected) << c.value;
}

TEST(ShortestNumbers, RoundTripsGeneratedFloatsWithTheFewestDecimals)
{
    std::mt19937 random(20240611u);
    std::uniform_int_distribution<uint32_t> anyBits;
    std::uniform_int_distribution<int> small(-100000, 100000);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    for (int i = 0; i < 4000; ++i) {
        // Every bit pattern that is a finite float: tiny, denormal, huge.
        uint32_t bits = anyBits(random);
        float value;
        std::memcpy(&value, &bits, sizeof(value));
        if (std::isfinite(value))
            expectShortestRoundTrip(value);
        expectShortestRoundTrip(static_cast<float>(small(random)));
        expectShortestRoundTrip(unit(random) * 1000.0f);
        expectShortestRoundTrip(static_cast<float>(small(random)) / 100.0f);
    }
    for (float edge :
         {std::numeric_limits<float>::max(), std::numeric_limits<float>::lowest(), std::numeric_limits<float>::min(),
          std::numeric_limits<float>::denorm_min(), -std::numeric_limits<float>::denorm_min()})
        expectShortestRoundTrip(edge);
}

TEST(ShortestNumbers, PrecisionWinsAndNonFiniteKeepTheirSpelling)
{
    SaveOptions options = shortest();
    options.precision = 2;
    EXPECT_EQ(floatToSvgNumber(3.14159f, options), "3.14");
    options.precision = 0;
    EXPECT_EQ(floatToSvgNumber(2.5f, options), floatToSvgNumber(2.5f, SaveOptions{0, false, true}));
    for (float odd : {std::nanf(""), INFINITY, -INFINITY})
        EXPECT_EQ(floatToSvgNumber(odd, shortest()), floatToSvgNumber(odd, SaveOptions()));
}

TEST(ShortestNumbers, EveryWriterUsesThem)
{
    using namespace vk::svg;
    auto node = std::make_shared<Node>();
    auto rect = std::make_shared<Rect>(Wm4::Vector2<float>(133.02f, 0.1f), Wm4::Vector2<float>(10.0f, 1e-7f));
    rect->editTransform() = Wm4::Matrix3<float>(1, 0, 0.3f, 0, 1, 20, 0, 0, 1);
    node->addChild(rect, true);
    auto path = std::make_shared<Path>();
    path->editCommands().emplace_back(PathCommandType::MoveTo, std::vector<float>{133.02f, -0.1f});
    path->editCommands().emplace_back(PathCommandType::LineTo, std::vector<float>{1234.5678f, 2.0f});
    node->addChild(path, true);

    const std::string text = vksvgtest::WriteToText(*node, shortest());
    EXPECT_NE(text.find("x=\"133.02\" y=\"0.1\""), std::string::npos) << text;
    EXPECT_NE(text.find("height=\"0.0000001\""), std::string::npos) << text;
    EXPECT_NE(text.find("matrix(1 0 0 1 0.3 20)"), std::string::npos) << text;
    EXPECT_NE(text.find("d=\"M133.02-0.1 1234.5677 2\""), std::string::npos) << text;

    // Off, the same tree is written exactly as before.
    SaveOptions off;
    off.shortestNumbers = false;
    EXPECT_EQ(vksvgtest::WriteToText(*node, off), vksvgtest::WriteToText(*node, SaveOptions()));
    EXPECT_NE(vksvgtest::WriteToText(*node, SaveOptions()).find("x=\"133.020004\""), std::string::npos);
}
