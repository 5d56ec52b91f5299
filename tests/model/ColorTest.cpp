#include <svg/Color.h>

#include "model/NamedColors.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using vk::svg::ParseSvgColor;
using vk::svg::impl::FindNamedColor;
using vk::svg::impl::NamedColorsBegin;
using vk::svg::impl::NamedColorsEnd;
using Bytes = std::array<int, 4>;

namespace {

Bytes Parse(const std::string& text, bool& ok)
{
    Wm4::Vector4<unsigned char> rgba(7, 7, 7, 7); // something the parser must overwrite
    ok = ParseSvgColor(text, rgba);
    return {rgba[0], rgba[1], rgba[2], rgba[3]};
}

} // namespace

// What rgba holds afterwards is checked on failure too: opaque red, or the
// components a functional text delivered before a later one failed.
TEST(ParseSvgColor, ColorTextTable)
{
    const struct {
        std::string text;
        bool ok;
        Bytes rgba;
    } cases[] = {
        {"#ff8000", true, {255, 128, 0, 255}},
        {"#f80", true, {255, 136, 0, 255}},
        {"#ff800080", true, {255, 128, 0, 128}},
        {"#f808", true, {255, 136, 0, 136}},
        {"#ff80", true, {255, 255, 136, 0}},
        // Hex digits are not validated: strtol reads what it can of each pair.
        {"#zzzzzz", true, {0, 0, 0, 255}},
        {"#1g0000", true, {1, 0, 0, 255}},
        {"#-f0000", true, {241, 0, 0, 255}},
        {"#ff8000f", false, {255, 0, 0, 255}},
        {"rgb( 255 , 0 , 0 )", true, {255, 0, 0, 255}},
        {"rgb(,, 1,,2 3 ,,)", true, {1, 2, 3, 255}},
        {"rgb(\t1,2,3)", true, {1, 2, 3, 255}},
        {"rgb(100%,50%,0%)", true, {254, 127, 0, 255}},
        {"rgb(-10%,200%,1.5%)", true, {231, 253, 3, 255}},
        {"rgb(1e40%,0,%)", true, {0, 0, 0, 255}},
        {"rgba(255,0,0,128)", true, {255, 0, 0, 128}},
        {"rgba(1,2,3,50%)", true, {1, 2, 3, 127}},
        {"rgba(255,0,0,0.5)", false, {255, 0, 0, 255}},
        {"rgb(255,0)", false, {255, 0, 0, 255}},
        {"rgb(255,0,0,0)", false, {255, 0, 0, 255}},
        {"rgb(256,0,0)", false, {255, 0, 0, 255}},
        {"rgb(-1,0,0)", false, {255, 0, 0, 255}},
        {"rgb(1,x,3)", false, {1, 0, 0, 255}},
        {"rgb(1\t,2,3)", false, {255, 0, 0, 255}},
        {"rgb(08,0,0)", false, {255, 0, 0, 255}},
        {"rgb(1,2,3) ", false, {255, 0, 0, 255}},
        {"RGB(1,2,3)", false, {255, 0, 0, 255}},
        {"rgb(" + std::string(70, '0') + "1,2,3)", true, {1, 2, 3, 255}},
        {"rebeccapurple", true, {102, 51, 153, 255}},
        {"grey", true, {128, 128, 128, 255}},
        {"green", true, {0, 128, 0, 255}},
        {"crimson", true, {220, 20, 60, 255}},
        {"Red", false, {255, 0, 0, 255}},
        {" red", false, {255, 0, 0, 255}},
        {std::string("red\0", 4), false, {255, 0, 0, 255}},
        {"transparent", false, {255, 0, 0, 255}},
        {"none", false, {255, 0, 0, 255}},
        {"", false, {255, 0, 0, 255}},
    };
    for (const auto& c : cases) {
        bool ok = false;
        EXPECT_EQ(Parse(c.text, ok), c.rgba) << "\"" << c.text << "\"";
        EXPECT_EQ(ok, c.ok) << "\"" << c.text << "\"";
    }
}

TEST(NamedColors, TableHoldsTheKeywordsInByteOrder)
{
    // Written out independently of the table.
    std::istringstream names(
        "aliceblue antiquewhite aqua aquamarine azure beige bisque black blanchedalmond blue blueviolet brown "
        "burlywood cadetblue chartreuse chocolate coral cornflowerblue cornsilk crimson cyan darkblue darkcyan "
        "darkgoldenrod darkgray darkgreen darkgrey darkkhaki darkmagenta darkolivegreen darkorange darkorchid darkred "
        "darksalmon darkseagreen darkslateblue darkslategray darkslategrey darkturquoise darkviolet deeppink "
        "deepskyblue dimgray dimgrey dodgerblue firebrick floralwhite forestgreen fuchsia gainsboro ghostwhite gold "
        "goldenrod gray green greenyellow grey honeydew hotpink indianred indigo ivory khaki lavender lavenderblush "
        "lawngreen lemonchiffon lightblue lightcoral lightcyan lightgoldenrodyellow lightgray lightgreen lightgrey "
        "lightpink lightsalmon lightseagreen lightskyblue lightslategray lightslategrey lightsteelblue lightyellow "
        "lime limegreen linen magenta maroon mediumaquamarine mediumblue mediumorchid mediumpurple mediumseagreen "
        "mediumslateblue mediumspringgreen mediumturquoise mediumvioletred midnightblue mintcream mistyrose moccasin "
        "navajowhite navy oldlace olive olivedrab orange orangered orchid palegoldenrod palegreen paleturquoise "
        "palevioletred papayawhip peachpuff peru pink plum powderblue purple rebeccapurple red rosybrown royalblue "
        "saddlebrown salmon sandybrown seagreen seashell sienna silver skyblue slateblue slategray slategrey snow "
        "springgreen steelblue tan teal thistle tomato turquoise violet wheat white whitesmoke yellow yellowgreen");
    const std::vector<std::string> expected{std::istream_iterator<std::string>(names), {}};
    std::vector<std::string> actual;
    for (auto* it = NamedColorsBegin(); it != NamedColorsEnd(); ++it)
        actual.emplace_back(it->name);
    EXPECT_EQ(actual.size(), 148u);
    EXPECT_EQ(actual, expected);

    const char* const aliases[][2] = {
        {"gray", "grey"},           {"darkgray", "darkgrey"},   {"darkslategray", "darkslategrey"},
        {"dimgray", "dimgrey"},     {"lightgray", "lightgrey"}, {"lightslategray", "lightslategrey"},
        {"slategray", "slategrey"}, {"aqua", "cyan"},           {"fuchsia", "magenta"}};
    for (const auto& pair : aliases) {
        const auto *a = FindNamedColor(pair[0]), *b = FindNamedColor(pair[1]);
        ASSERT_TRUE(a != nullptr && b != nullptr) << pair[0];
        EXPECT_TRUE(a->red == b->red && a->green == b->green && a->blue == b->blue) << pair[0];
    }
}

// Every keyword parses to its entry, and the other spellings of the same bytes
// (hexadecimal in either case, eight digits, decimal, hex and octal
// components) agree. A capitalised keyword is no colour.
TEST(NamedColors, EverySpellingAgrees)
{
    for (auto* it = NamedColorsBegin(); it != NamedColorsEnd(); ++it) {
        const Bytes expected = {it->red, it->green, it->blue, 255};
        std::vector<std::string> spellings = {std::string(it->name)};
        for (const char* format : {"#%02x%02x%02x", "#%02X%02X%02XFF", "rgb(%d, %d,%d)", "rgba(%#x %#o %d 255)"}) {
            char buffer[64];
            std::snprintf(buffer, sizeof(buffer), format, it->red, it->green, it->blue);
            spellings.emplace_back(buffer);
        }
        bool ok = false;
        for (const std::string& text : spellings) {
            EXPECT_EQ(Parse(text, ok), expected) << text;
            EXPECT_TRUE(ok) << text;
        }
        spellings[0][0] = static_cast<char>(spellings[0][0] - 'a' + 'A');
        Parse(spellings[0], ok);
        EXPECT_FALSE(ok) << spellings[0];
    }
}

// Random texts over the characters that matter never crash, and a failure
// outside the functional notation always leaves opaque red.
TEST(ParseSvgColor, RandomTextsKeepTheContract)
{
    const std::string alphabet = "#0123456789abcdefxXrgb(), %.-+\tz";
    const char* const prefixes[] = {"", "#", "rgb(", "rgba("};
    std::mt19937 rng(7);
    for (int i = 0; i < 20000; ++i) {
        std::string text = prefixes[i % 4];
        for (auto n = rng() % 15; n > 0; --n) {
            text += alphabet[rng() % alphabet.size()];
        }
        text += (i % 3 == 0) ? ")" : "";
        bool ok = false;
        const Bytes rgba = Parse(text, ok);
        if (!ok && !(text.rfind("rgb", 0) == 0 && text.back() == ')')) {
            EXPECT_EQ(rgba, (Bytes{255, 0, 0, 255})) << text;
        }
    }
}
