#include "read/Values.h"

#include "model/NamedColors.h"

#include <svg/Color.h>
#include <wm4/Wm4Vector2.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace vk::svg::impl;
using namespace std::string_literals;
using Point = Wm4::Vector2<float>;
using Matrix = Wm4::Matrix3<float>;

namespace {

Point Apply(const Matrix& m, float x, float y)
{
    return {m[0][0] * x + m[0][1] * y + m[0][2], m[1][0] * x + m[1][1] * y + m[1][2]};
}

bool AllFinite(const Matrix& m)
{
    for (int i = 0; i < 9; ++i) {
        if (!std::isfinite(m[i / 3][i % 3])) {
            return false;
        }
    }
    return true;
}

} // namespace

TEST(ValuesNumber, NumbersPercentagesAndLengths)
{
    // clang-format off
    const std::pair<std::string, double> numbers[] = {
        {"0", 0}, {" -12.5\t", -12.5}, {"+3", 3}, {".5", 0.5}, {"5.", 5}, {"1e-3", 0.001}, {"1E+2", 100},
        {"-.5e1", -5}, {"\f\r\n7", 7}, {"1e-400", 0}, {"0e999999", 0}};
    // clang-format on
    for (const auto& [text, want] : numbers) {
        double value = -99;
        EXPECT_TRUE(ParseNumber(text, value)) << text;
        EXPECT_EQ(value, want) << text;
    }
    const std::string badNumbers[] = {"1e999", "",    " ",   ".",   "+",     "-e1", "1e",   "1e+", "0x10",        "inf",
                                      "nan",   "1,5", "1 2", "--1", "1.2.3", "1%",  "5\0"s, "1\v", "\xef\xbc\x91"};
    for (const std::string& text : badNumbers) {
        double value = -99;
        EXPECT_FALSE(ParseNumber(text, value)) << text;
        EXPECT_EQ(value, -99) << text;
    }
    double value = 0;
    EXPECT_TRUE(ParseNumberOrPercentage(" -25% ", value) && value == -0.25);
    EXPECT_TRUE(ParseNumberOrPercentage("0.3", value) && value == 0.3);
    EXPECT_FALSE(ParseNumberOrPercentage("50 %", value) || ParseNumberOrPercentage("50%%", value));

    // clang-format off
    const struct { std::string text; double value; LengthUnit unit; } lengths[] = {
        {"10", 10, LengthUnit::None}, {" 10px ", 10, LengthUnit::Px}, {"1.5PT", 1.5, LengthUnit::Pt},
        {"2pc", 2, LengthUnit::Pc}, {"3mM", 3, LengthUnit::Mm}, {"4Cm", 4, LengthUnit::Cm},
        {"1in", 1, LengthUnit::In}, {"2EM", 2, LengthUnit::Em}, {"3ex", 3, LengthUnit::Ex},
        {"1em", 1, LengthUnit::Em}, {"1e2px", 100, LengthUnit::Px}, {"50%", 50, LengthUnit::Percent}};
    // clang-format on
    for (const auto& c : lengths) {
        Length length;
        EXPECT_TRUE(ParseLength(c.text, length)) << c.text;
        EXPECT_TRUE(length.value == c.value && length.unit == c.unit) << c.text;
    }
    for (const char* text : {"10 px", "10p", "10pxx", "px", "10q", "1e+px", "10px,", "5%px"}) {
        Length length{-99, LengthUnit::Ex};
        EXPECT_FALSE(ParseLength(text, length)) << text;
        EXPECT_EQ(length.value, -99) << text;
    }
}

TEST(ValuesLength, ConvertsToUserUnits)
{
    const LengthContext context{20, 300, 400};
    // clang-format off
    const struct { double value; LengthUnit unit; PercentOf of; double want; } cases[] = {
        {7, LengthUnit::None, PercentOf::Width, 7}, {7, LengthUnit::Px, PercentOf::Width, 7},
        {3, LengthUnit::Pt, PercentOf::Width, 4}, {2, LengthUnit::Pc, PercentOf::Width, 32},
        {25.4, LengthUnit::Mm, PercentOf::Width, 96}, {2.54, LengthUnit::Cm, PercentOf::Width, 96},
        {1.5, LengthUnit::In, PercentOf::Width, 144}, {2, LengthUnit::Em, PercentOf::Width, 40},
        {3, LengthUnit::Ex, PercentOf::Width, 30}, {50, LengthUnit::Percent, PercentOf::Width, 150},
        {50, LengthUnit::Percent, PercentOf::Height, 200},
        {10, LengthUnit::Percent, PercentOf::Diagonal, std::sqrt(125000.0) / 10}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_DOUBLE_EQ(ToUserUnits({c.value, c.unit}, context, c.of), c.want) << static_cast<int>(c.unit);
    }
}

// On an error the numbers before it are kept.
TEST(ValuesNumber, ListsWithGluedNumbersAndErrorPositions)
{
    // clang-format off
    const struct { std::string text; bool ok; std::vector<double> values; } cases[] = {
        {"", true, {}}, {" \n ", true, {}}, {" 1 ,2 3\t", true, {1, 2, 3}}, {"10-5", true, {10, -5}},
        {"0.5.5", true, {0.5, 0.5}}, {"1e2.5", true, {100, 0.5}}, {"1+2", true, {1, 2}}, {"5..5", true, {5, 0.5}},
        {"1,2,", false, {1, 2}}, {"1,,2", false, {1}}, {",1", false, {}}, {"1 2px 3", false, {1, 2}},
        {"1e999 2", false, {}}, {"3 , ", false, {3}}};
    // clang-format on
    for (const auto& c : cases) {
        std::vector<double> values{42};
        EXPECT_EQ(ParseNumberList(c.text, values), c.ok) << c.text;
        EXPECT_EQ(values, c.values) << c.text;
    }

    std::vector<Length> lengths;
    ASSERT_TRUE(ParseLengthList("10px 5%,2 5px-3Em", lengths));
    ASSERT_EQ(lengths.size(), 5u);
    const LengthUnit units[] = {LengthUnit::Px, LengthUnit::Percent, LengthUnit::None, LengthUnit::Px, LengthUnit::Em};
    const double values[] = {10, 5, 2, 5, -3};
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_TRUE(lengths[i].unit == units[i] && lengths[i].value == values[i]) << i;
    }
    EXPECT_FALSE(ParseLengthList("1 2qq 3", lengths));
    EXPECT_EQ(lengths.size(), 1u);
}

TEST(ValuesColor, EveryNotation)
{
    // Expected as SVG text, which holds the alpha as a byte.
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {"  Red\n", "#ff0000"}, {"LightGoldenRodYellow", "#fafad2"}, {"TransParent", "#00000000"},
        {"#f80", "#ff8800"}, {"#F80A", "#ff8800aa"}, {" #fF800080 ", "#ff800080"},
        {"rgb(255, 128, 0)", "#ff8000"}, {"RGBA(1 2 3)", "#010203"}, {"rgb(1,2,3,0.25)", "#01020340"},
        {"rgb( 1 2 3 / 50% )", "#01020380"}, {"rgb(300, -20, 127.5)", "#ff0080"}, {"rgb(0.4, 0.6, 254.5)", "#0001ff"},
        {"rgb(100%, 50%, 0%)", "#ff8000"}, {"rgb(10%, 20, 1e2%)", "#1a14ff"}, {"rgb(0,0,0,2)", "#000000"},
        {"rgb(0,0,0,-1)", "#00000000"}, {"rgb(none 10 20 / 150%)", "#000a14"}, {"hsl(120, 100%, 50%)", "#00ff00"},
        {"hsl(60 100% 50%)", "#ffff00"}, {"hsl(30, 100%, 50%)", "#ff8000"}, {"hsl(240deg 100% 50%)", "#0000ff"},
        {"hsl(0.5TURN, 100%, 25%)", "#008080"}, {"hsl(200grad 100% 50%)", "#00ffff"},
        {"hsl(3.14159265358979rad 100% 50%)", "#00ffff"}, {"hsl(-120, 100%, 50%)", "#0000ff"},
        {"hsl(480, 100%, 50%)", "#00ff00"}, {"hsl(0, 0%, 50%)", "#808080"}, {"hsl(0, 150%, -10%)", "#000000"},
        {"hsl(120 100 50)", "#00ff00"}, {"HSLA(0 100% 50% / 0.4)", "#ff000066"}};
    // clang-format on
    for (const auto& [text, want] : cases) {
        CssColor color{7, 7, 7, 0.7f};
        ASSERT_EQ(ParseCssColor(text, color), ColorKind::Color) << text;
        EXPECT_EQ(ColorToSvgText(color), want) << text;
    }
    CssColor color;
    EXPECT_EQ(ParseCssColor(" CURRENTcolor ", color), ColorKind::CurrentColor);
    // clang-format off
    const std::string invalid[] = {
        "hsl(120, 100, 50)", "hsl(10%, 50%, 50%)", "hsl(0, 50deg, 50%)", "hsl(0, 50%)", "", "redd", "red blue",
        "#ff800", "#ff8000f", "#gg0000", "#-f0000", "#", "rgb(1,2,3,4,5)", "rgb(1 2, 3)", "rgb(1,2,3/0.5)",
        "rgb(1 2 3 0.5)", "rgb(1 2 / 3 4)", "rgb(1 2 3 /)", "rgb (1,2,3)", "rgb(1,2,3", "rgb(1,2,3))", "rgb(1,,2,3)",
        "rgb(,1,2,3)", "rgb(1,2,3,)", "rgb(1deg 2 3)", "rgb(none, 1, 2)", "rgb(1e999, 0, 0)", "rgb(nan,0,0)",
        "rgb()", "rgb(1,2,3)x", "rgb(calc(1),2,3)", "foo(1,2,3)", "r\0ed"s};
    // clang-format on
    for (const std::string& text : invalid) {
        EXPECT_EQ(ParseCssColor(text, color), ColorKind::Invalid) << text;
    }
    size_t count = 0;
    for (const NamedColor* named = NamedColorsBegin(); named != NamedColorsEnd(); ++named, ++count) {
        std::string upper(named->name);
        for (char& ch : upper) {
            ch = static_cast<char>(ch - 'a' + 'A');
        }
        ASSERT_EQ(ParseCssColor(upper, color), ColorKind::Color) << upper;
        EXPECT_TRUE(color.red == named->red && color.green == named->green && color.blue == named->blue) << upper;
    }
    EXPECT_EQ(count, 148u);
}

TEST(ValuesColor, SvgTextRoundTripsThroughTheColourParser)
{
    // clang-format off
    const std::pair<CssColor, std::string> cases[] = {
        {{1, 2, 3, 0.5f}, "#01020380"}, {{255, 255, 255, 0.999f}, "#ffffff"},
        {{255, 255, 255, 0.998f}, "#fffffffe"}, {{10, 171, 205, 2}, "#0aabcd"}, {{10, 171, 205, -1}, "#0aabcd00"}};
    // clang-format on
    for (const auto& [color, text] : cases) {
        EXPECT_EQ(ColorToSvgText(color), text);
        Wm4::Vector4<unsigned char> rgba;
        ASSERT_TRUE(vk::svg::ParseSvgColor(text, rgba)) << text;
        EXPECT_TRUE(rgba[0] == color.red && rgba[1] == color.green && rgba[2] == color.blue) << text;
    }
}

TEST(ValuesTransform, FunctionsSeparatorsAndComposition)
{
    const float t45 = static_cast<float>(std::tan(std::atan(1.0)));
    // Row-major: a c e / b d f / 0 0 1.
    // clang-format off
    const std::pair<std::string, Matrix> cases[] = {
        {" \n ", Matrix(1, 0, 0, 0, 1, 0, 0, 0, 1)},
        {"translate(10)", Matrix(1, 0, 10, 0, 1, 0, 0, 0, 1)},
        {"translate( 10-20 )", Matrix(1, 0, 10, 0, 1, -20, 0, 0, 1)},
        {"scale(2,3)", Matrix(2, 0, 0, 0, 3, 0, 0, 0, 1)},
        {"scale(2) , ,translate(1)", Matrix(2, 0, 2, 0, 2, 0, 0, 0, 1)},
        {"rotate(-270)", Matrix(0, -1, 0, 1, 0, 0, 0, 0, 1)},
        {"rotate(90, 10, 20)", Matrix(0, -1, 30, 1, 0, 10, 0, 0, 1)},
        {"skewX(45)", Matrix(1, t45, 0, 0, 1, 0, 0, 0, 1)},
        {"skewY(45)", Matrix(1, 0, 0, t45, 1, 0, 0, 0, 1)},
        {"matrix(1 2 3 4 5 6) , matrix(1,0,0,1,1,1)", Matrix(1, 3, 9, 2, 4, 12, 0, 0, 1)},
        {"translate(10,0) scale(2)", Matrix(2, 0, 10, 0, 2, 0, 0, 0, 1)},
        {"scale(2) translate(10,0)", Matrix(2, 0, 20, 0, 2, 0, 0, 0, 1)},
        {"rotate (90)translate(5,0)", Matrix(0, -1, 0, 1, 0, 5, 0, 0, 1)}};
    // clang-format on
    for (const auto& [text, want] : cases) {
        Matrix m(9, 9, 9, 9, 9, 9, 9, 9, 9);
        ASSERT_TRUE(ParseTransformList(text, m)) << text;
        for (int i = 0; i < 9; ++i) {
            EXPECT_NEAR(m[i / 3][i % 3], want[i / 3][i % 3], 1e-5) << text << " entry " << i;
        }
    }

    Matrix m;
    ASSERT_TRUE(ParseTransformList("rotate(30 50 50)", m));
    const Point p = Apply(m, 60, 50);
    EXPECT_NEAR(p[0], 50 + 10 * std::sqrt(3.0) / 2, 1e-4);
    EXPECT_NEAR(p[1], 55, 1e-4);
    ASSERT_TRUE(ParseTransformList("skewY(-45)", m));
    EXPECT_NEAR(Apply(m, 10, 0)[1], -10, 1e-5);
}

TEST(ValuesTransform, ErrorsLeaveTheMatrixUntouched)
{
    // clang-format off
    const std::string cases[] = {
        "translate()", "translate(1,2,3)", "rotate(1,2)", "scale(1,2,3)", "matrix(1,2,3,4,5)", "skewX(1,2)",
        "Translate(1)", "translate(1", "translate 1", "translate(1),", ",translate(1)", "translate(1) x",
        "translate(1,)", "translate(1)(2)", "foo(1)", "(1)", "translate((1))", "rotate(90deg)", "translate(1e999)",
        "scale(1e30) scale(1e30)", "scale(1e300) scale(1e300) scale(0)", "skewX(90)", "skewY(-90)",
        "translate(1)\0"s};
    // clang-format on
    for (const std::string& text : cases) {
        Matrix m(1, 2, 3, 4, 5, 6, 7, 8, 9);
        EXPECT_FALSE(ParseTransformList(text, m)) << text;
        EXPECT_EQ(m, Matrix(1, 2, 3, 4, 5, 6, 7, 8, 9)) << text;
    }
}

TEST(ValuesViewBox, ViewBoxAndAspectRatioParsing)
{
    ViewBox box;
    ASSERT_TRUE(ParseViewBox(" -10 -20, 30 40 ", box));
    EXPECT_TRUE(box.x == -10 && box.y == -20 && box.width == 30 && box.height == 40);
    EXPECT_TRUE(ParseViewBox("0,0,0,0", box));
    for (const char* text : {"0 0 -1 5", "0 0 5 -1", "0 0 1", "0 0 1 2 3", "0 0 1 2,", "", "0 0 1e999 1"}) {
        box.width = 9;
        EXPECT_FALSE(ParseViewBox(text, box)) << text;
        EXPECT_EQ(box.width, 9) << text;
    }

    // clang-format off
    const struct { std::string text; Align align; bool slice; } ratios[] = {
        {"none", Align::None, false}, {"xMidYMin meet", Align::XMidYMin, false},
        {"  xMaxYMid\tslice  ", Align::XMaxYMid, true}, {"defer xMinYMax", Align::XMinYMax, false},
        {"none slice", Align::None, true}};
    // clang-format on
    for (const auto& c : ratios) {
        AspectRatio ratio{Align::XMaxYMax, !c.slice};
        ASSERT_TRUE(ParseAspectRatio(c.text, ratio)) << c.text;
        EXPECT_TRUE(ratio.align == c.align && ratio.slice == c.slice) << c.text;
    }
    for (const char* text : {"", "xminymin", "defer", "slice", "xMidYMid slice meet", "xMidYMid foo",
                             "defer defer xMidYMid", "xMidYMid,slice", "xMidYMid Slice"}) {
        AspectRatio ratio{Align::XMaxYMax, true};
        EXPECT_FALSE(ParseAspectRatio(text, ratio)) << text;
        EXPECT_TRUE(ratio.align == Align::XMaxYMax && ratio.slice) << text;
    }
}

// The box (10, 20, 100, 50) into 400 x 400: meet scales by 4 and leaves 200
// spare in y, slice scales by 8 and overflows by 400 in x.
TEST(ValuesViewBox, TransformMapsTheBoxCornersForEveryAlignment)
{
    const ViewBox box{10, 20, 100, 50};
    const float spare[] = {0, 100, 200, 0, -200, -400};
    for (int align = 1; align <= 9; ++align) {
        for (int slice = 0; slice < 2; ++slice) {
            const Matrix m = ViewBoxTransform(box, AspectRatio{static_cast<Align>(align), slice == 1}, 400, 400);
            // Align enumerates x fastest: Min, Mid, Max.
            const float left = slice ? spare[3 + (align - 1) % 3] : 0;
            const float top = slice ? 0 : spare[(align - 1) / 3];
            const float scale = slice ? 8 : 4;
            EXPECT_EQ(Apply(m, 10, 20), Point(left, top)) << align << slice;
            EXPECT_EQ(Apply(m, 110, 70), Point(left + 100 * scale, top + 50 * scale)) << align << slice;
        }
    }
    const Matrix stretch = ViewBoxTransform(box, AspectRatio{Align::None, true}, 400, 400);
    EXPECT_EQ(Apply(stretch, 10, 20), Point(0, 0));
    EXPECT_EQ(Apply(stretch, 110, 70), Point(400, 400));

    for (const ViewBox& bad : {ViewBox{5, 5, 0, 10}, ViewBox{5, 5, 10, 0}, ViewBox{0, 0, 1e-300, 1e-300}}) {
        EXPECT_EQ(ViewBoxTransform(bad, AspectRatio{}, 100, 100), Matrix(0, 0, 0, 0, 0, 0, 0, 0, 1));
    }
}

// Garbage built from fragments of valid values must never crash nor yield a
// non-finite result.
TEST(ValuesRobustness, GarbageNeverCrashesOrYieldsNonFiniteValues)
{
    const std::string fragments[] = {"0",        "9",      "-",    "+",    ".",     "e",       ",",      " ",
                                     "%",        "(",      ")",    "/",    "#",     "px",      "deg",    "turn",
                                     "1e308",    "1e-308", "none", "rgb(", "hsla(", "rotate(", "skewX(", "matrix(",
                                     "xMidYMid", "slice",  "red",  "\0"s,  "\xff",  "\xc3\xa9"};
    std::mt19937 random(20240611u);
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (int i = static_cast<int>(random() % 12); i > 0; --i) {
            text += fragments[random() % std::size(fragments)];
        }
        double number = 0;
        Length length;
        std::vector<double> numbers;
        std::vector<Length> lengths;
        CssColor color;
        Matrix m;
        ViewBox box;
        AspectRatio ratio;
        ASSERT_TRUE(!ParseNumber(text, number) || std::isfinite(number)) << text;
        ASSERT_TRUE(!ParseLength(text, length) || std::isfinite(length.value)) << text;
        ParseNumberList(text, numbers);
        ParseLengthList(text, lengths);
        ASSERT_TRUE(ParseCssColor(text, color) != ColorKind::Color || (color.alpha >= 0 && color.alpha <= 1)) << text;
        ASSERT_TRUE(!ParseTransformList(text, m) || AllFinite(m)) << text;
        ASSERT_TRUE(!ParseViewBox(text, box) || AllFinite(ViewBoxTransform(box, ratio, 1e30, 1e-30))) << text;
        ParseAspectRatio(text, ratio);
    }

    double number = -1;
    EXPECT_FALSE(ParseNumber(std::string(1 << 20, '9'), number));
    EXPECT_FALSE(ParseNumber("1e" + std::string(100000, '9'), number));
    EXPECT_TRUE(ParseNumber("0." + std::string(100000, '0') + "1", number));
    EXPECT_EQ(number, 0);
    CssColor color;
    EXPECT_EQ(ParseCssColor(std::string(100000, '('), color), ColorKind::Invalid);
    std::string rotations;
    for (int i = 0; i < 10000; ++i) {
        rotations += "rotate(1) ";
    }
    Matrix m;
    ASSERT_TRUE(ParseTransformList(rotations, m));
    // 10000 degrees is 280: cosine positive, sine negative.
    EXPECT_NEAR(m[0][0], std::cos(280 * std::atan(1.0) / 45), 1e-3);
    EXPECT_NEAR(m[1][0], std::sin(280 * std::atan(1.0) / 45), 1e-3);
}
