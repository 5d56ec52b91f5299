#include "read/PathGrammar.h"

#include <svg/PathPrimitives.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <utility>
#include <vector>

using vk::svg::PathCommand;
using vk::svg::impl::ParseSvgPathData;
using vk::svg::impl::PathGrammarResult;

namespace {

// "M 1 2 L 3 4 | 9 expected a number": the commands, six significant digits
// a number, then the error if any.
std::string Read(const std::string& data)
{
    std::list<PathCommand> out;
    const PathGrammarResult result = ParseSvgPathData(data, out);
    std::string text;
    for (const PathCommand& command : out) {
        text += std::string(text.empty() ? "" : " ") + "MmLlAaHhVvCcSsZ"[static_cast<unsigned>(command.type)];
        for (const float value : command.values) {
            char number[32];
            std::snprintf(number, sizeof number, " %.6g", static_cast<double>(value));
            text += number;
        }
    }
    return result.ok ? text : text + " | " + std::to_string(result.errorOffset) + " " + result.error;
}

const std::pair<std::string, const char*> kRows[] = {
    {" \t\r\n\f", ""},
    {"M10 20 30 40L50 60", "M 10 20 L 30 40 L 50 60"},
    {"m10 20 5 5 l5 5", "M 10 20 L 15 25 L 20 30"},
    {"M1 2 H10 V20 h-5 -1 v-5", "M 1 2 L 10 2 L 10 20 L 5 20 L 4 20 L 4 15"},
    {"M10 10 c1 2 3 4 5 6 1 1 2 2 3 3", "M 10 10 C 11 12 13 14 15 16 C 16 17 17 18 18 19"},
    // S reflects only after C or S, T only after Q or T; Q becomes the equal cubic.
    {"M0 0 C0 10 10 10 10 0 s10-10 10 0", "M 0 0 C 0 10 10 10 10 0 C 10 -10 20 -10 20 0"},
    {"M0 0 S10 10 20 0 30-10 40 0", "M 0 0 C 0 0 10 10 20 0 C 30 -10 30 -10 40 0"},
    {"M0 0 L10 0 S20 10 30 0", "M 0 0 L 10 0 C 10 0 20 10 30 0"},
    {"M0 0 Q10 10 20 0 S30 10 40 0", "M 0 0 C 6.66667 6.66667 13.3333 6.66667 20 0 C 20 0 30 10 40 0"},
    {"M0 0 q10 10 20 0 T40 0 t20 0", "M 0 0 C 6.66667 6.66667 13.3333 6.66667 20 0 "
                                     "C 26.6667 -6.66667 33.3333 -6.66667 40 0 C 46.6667 6.66667 53.3333 6.66667 60 0"},
    {"M0 0 C0 10 10 10 10 0 T40 0", "M 0 0 C 0 10 10 10 10 0 C 10 0 20 0 40 0"},
    {"M10 10 a5 5 30 1 0 10 0", "M 10 10 A 5 5 30 1 0 20 10"},
    {"M0 0a7 7 0 100 14,7,7,0,0,1,0-14", "M 0 0 A 7 7 0 1 0 0 14 A 7 7 0 0 1 0 0"},
    // Radii too small grow in proportion; zero radii draw a line; no arc
    // back to its start.
    {"M0 0 A1 2 0 0 1 10 0 A-1 1 90 0 1 10 10", "M 0 0 A 5 10 0 0 1 10 0 A 5 5 90 0 1 10 10"},
    {"M0 0 A0 5 0 0 1 10 0 a5 0 0 0 0 1 1 A5 5 0 1 1 11 1", "M 0 0 L 10 0 L 11 1"},
    {"M10 10 l10 0 z l0 10 Z m5 5 zz", "M 10 10 L 20 10 Z L 10 20 Z M 15 15 Z Z"},
    {"M10-5.5.5-1e2 1E+2,.5e-1", "M 10 -5.5 L 0.5 -100 L 100 0.05"},
    {"M+1 , 2 L0.0000000000000000000000000000000000000000001 12345678901234567890123456789",
     "M 1 2 L 9.94922e-44 1.23457e+28"},
    {"L10 10", " | 0 path data must begin with a move"},
    {"  10", " | 2 path data must begin with a move"},
    {"M,1 2", " | 1 expected a number"},
    {"M10 20 L30 40 50", "M 10 20 L 30 40 | 16 expected a number"},
    {"M10 20 L30 40, Z", "M 10 20 L 30 40 | 15 expected a number"},
    {"M10 20 X5 5", "M 10 20 | 7 unknown command \"X\""},
    {"M10 20 Z 5", "M 10 20 Z | 9 expected a command"},
    {"M10 20 z,", "M 10 20 Z | 8 unexpected character \",\""},
    {"M10 20 A5 5 0 2 0 10 10", "M 10 20 | 14 expected a flag"},
    {"M1 2 L1. 5", "M 1 2 | 8 expected a digit after the point"},
    {"M1 2 L1e+ 2", "M 1 2 | 9 expected a digit in the exponent"},
    {"M1 2 L--3 4", "M 1 2 | 7 expected a number"},
    {"M1 2 L1e39 0", "M 1 2 | 6 number out of range"},
    {"M3e38 0 l3e38 0", "M 3e+38 0 | 9 coordinate out of range"},
    {std::string("M1 2\0", 5), "M 1 2 | 4 unexpected byte 0x00"},
    {"M1 2 \xff", "M 1 2 | 5 unexpected byte 0xFF"},
};

TEST(PathGrammar, ReadsTheTable)
{
    for (const auto& [data, expected] : kRows) {
        EXPECT_EQ(Read(data), expected) << data;
    }
}

// Writes a random path absolute and verbose, and relative and compact, with
// coordinates in eighths so that both read exactly.
void RandomPath(std::mt19937& random, std::string& absolute, std::string& relative)
{
    std::uniform_int_distribution<int> eighths(-1600, 1600);
    std::uniform_int_distribution<int> pick(0, 9);
    double at[2] = {0.0, 0.0};
    double start[2] = {0.0, 0.0};
    const auto number = [](std::string& out, double value) {
        if (value >= 0.0 && !out.empty() && std::isdigit(static_cast<unsigned char>(out.back()))) {
            out += ' ';
        }
        out += std::to_string(value);
    };
    const auto coordinate = [&](int axis, bool moves) {
        const double value = eighths(random) / 8.0;
        absolute += ' ';
        number(absolute, value);
        number(relative, value - at[axis]);
        at[axis] = moves ? value : at[axis];
    };
    absolute = "M0 0";
    relative = "m0 0";
    char previous = 'M';
    for (int n = 0; n < 40; ++n) {
        const char letter = "MLHVCSQTAZ"[pick(random)];
        const bool repeat = letter == previous && letter != 'M' && letter != 'Z' && pick(random) < 5;
        absolute += repeat ? std::string(",") : std::string(" ") + letter;
        relative += repeat ? "" : std::string(1, static_cast<char>(letter + 32));
        previous = letter;
        if (letter == 'A') {
            const std::string head = std::to_string(pick(random) * 7) + ' ' + std::to_string(pick(random) * 3) + ' ' +
                                     std::to_string(pick(random) * 40) + ' ' + "0110"[pick(random) % 4] +
                                     "0011"[pick(random) % 4];
            relative += std::isdigit(static_cast<unsigned char>(relative.back())) ? " " : "";
            absolute += ' ' + head;
            relative += head;
        }
        const int pairs = letter == 'C' ? 3 : letter == 'S' || letter == 'Q' ? 2 : letter == 'Z' ? 0 : 1;
        for (int i = 0; i < pairs; ++i) {
            if (letter != 'V') {
                coordinate(0, i + 1 == pairs);
            }
            if (letter != 'H') {
                coordinate(1, i + 1 == pairs);
            }
        }
        if (letter == 'M') {
            start[0] = at[0];
            start[1] = at[1];
        } else if (letter == 'Z') {
            at[0] = start[0];
            at[1] = start[1];
        }
    }
}

TEST(PathGrammar, RelativeAndAbsoluteAgree)
{
    std::mt19937 random(20240611);
    for (int i = 0; i < 300; ++i) {
        std::string absolute;
        std::string relative;
        RandomPath(random, absolute, relative);
        std::list<PathCommand> a;
        std::list<PathCommand> r;
        ASSERT_TRUE(ParseSvgPathData(absolute, a).ok) << absolute;
        ASSERT_TRUE(ParseSvgPathData(relative, r).ok) << relative;
        ASSERT_EQ(a.size(), r.size()) << absolute << '\n' << relative;
        for (auto p = a.begin(), q = r.begin(); p != a.end(); ++p, ++q) {
            ASSERT_EQ(p->type, q->type) << absolute << '\n' << relative;
            for (std::size_t k = 0; k < p->values.size(); ++k) {
                ASSERT_NEAR(p->values[k], q->values[k], 1e-4) << absolute << '\n' << relative;
            }
        }
    }
}

// By type; zero for the types never emitted.
const std::size_t kValueCounts[15] = {2, 0, 2, 0, 7, 0, 0, 0, 0, 0, 6, 0, 0, 0, 0};

TEST(PathGrammar, SurvivesGarbage)
{
    std::mt19937 random(7);
    const std::string alphabet = "MmLlHhVvCcSsQqTtAaZzXe0123456789011.-+,  \t\n";
    std::uniform_int_distribution<int> byte(0, 255);
    std::vector<std::string> inputs = {"M0 0 A3e38 3e38 45 0 1 1 1 a1e-45 1e-45 0 1 1 -3e38 3e38 3e38 3e38",
                                       "M1 1" + std::string(100000, '1'), "M0 0"};
    for (int i = 0; i < 300000; ++i) {
        inputs.back() += "l1-1";
    }
    for (int i = 0; i < 4000; ++i) {
        std::string& data = inputs.emplace_back(i % 2 ? "M" : "");
        for (int k = byte(random) / 2; k > 0; --k) {
            const int b = byte(random);
            data += b < 240 ? alphabet[static_cast<std::size_t>(b) % alphabet.size()] : static_cast<char>(byte(random));
        }
    }
    for (const std::string& data : inputs) {
        std::list<PathCommand> out;
        const PathGrammarResult result = ParseSvgPathData(data, out);
        ASSERT_LE(result.errorOffset, data.size());
        ASSERT_EQ(result.ok, result.error.empty());
        for (const PathCommand& command : out) {
            ASSERT_EQ(command.values.size(), kValueCounts[static_cast<std::size_t>(command.type)]) << data;
            for (const float value : command.values) {
                ASSERT_TRUE(std::isfinite(value)) << data;
            }
        }
    }
}

// The primitives centre an enlarged arc on its chord's midpoint and sweep
// half the ellipse.
TEST(PathGrammar, EnlargedArcsAreCentredOnTheChord)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<float> coordinate(-500.0f, 500.0f);
    for (int i = 0; i < 2000; ++i) {
        const float x[4] = {coordinate(random), coordinate(random), coordinate(random), coordinate(random)};
        char data[200];
        std::snprintf(data, sizeof data, "M%.9g %.9g A%.9g %.9g %.9g %d %d %.9g %.9g", x[0], x[1],
                      std::fabs(x[2]) * 0.001 + 0.001, std::fabs(x[3]) * 0.001 + 0.001, coordinate(random), i % 2,
                      i / 2 % 2, x[2], x[3]);
        std::list<PathCommand> commands;
        ASSERT_TRUE(ParseSvgPathData(data, commands).ok);
        int arcs = 0;
        vk::svg::PathVisitorCommandsToPrimitives(commands, [&](std::unique_ptr<vk::svg::PathPrimitive>& primitive,
                                                               bool) {
            ASSERT_EQ(primitive->type, vk::svg::PathPrimitive::EllipticalArc) << data;
            const auto& arc = static_cast<const vk::svg::PathEllipticalArc&>(*primitive);
            const float tolerance = 1e-5f * std::max(arc.radii.X(), arc.radii.Y()) + 1e-4f;
            EXPECT_NEAR(arc.center.X(), (x[0] + x[2]) / 2.0f, tolerance) << data;
            EXPECT_NEAR(arc.center.Y(), (x[1] + x[3]) / 2.0f, tolerance) << data;
            EXPECT_NEAR(std::fabs(arc.deltaAngle), 3.14159265f, 2e-3f) << data;
            ++arcs;
        }).visit();
        EXPECT_EQ(arcs, 1) << data;
    }
}

} // namespace
