#include <svg/PathBuilder.h>
#include <svg/PathData.h>
#include <svg/PathPrimitives.h>

#include <vkSystem/vkIoDeviceMemory.h>
#include <vkXml/XmlSaveContext.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using vk::svg::PathBuilder;
using vk::svg::PathCommand;
using V2 = Wm4::Vector2<float>;

namespace {

// "M100,100 m1,1 Z": each command's letter and its exact values.
std::string Show(const std::list<PathCommand>& commands)
{
    std::ostringstream out;
    out.precision(9);
    for (const PathCommand& command : commands) {
        out << (out.tellp() > 0 ? " " : "") << "MmLlAaHhVvCcSsZ"[static_cast<unsigned>(command.type)];
        for (std::size_t i = 0; i < command.values.size(); ++i)
            out << (i ? "," : "") << command.values[i];
    }
    return out.str();
}

// Runs a script of builder calls: M x y, L x y, H x, V y, A rx ry rotation
// large sweep x y, line ax ay bx by, rect x y w h, poly n x1 y1 ...,
// ellipse cx cy rx ry from to, [ (start), ] (end reordered), ]0 (end as is),
// ~ (cancel), clear.
std::string RunScript(const std::string& script)
{
    PathBuilder b;
    std::istringstream in(script);
    std::vector<float> v;   // the numbers of the current call
    std::vector<V2> points; // the same taken in pairs
    auto p = [&](std::size_t i) { return V2(v[i], v[i + 1]); };
    // Each word with the count of numbers it takes; -1: a count, then as many points.
    const std::map<std::string, std::pair<int, std::function<void()>>> calls = {
        {"M", {2, [&] { b.writeMove(p(0)); }}},
        {"L", {2, [&] { b.writeLineTo(p(0)); }}},
        {"H", {1, [&] { b.writeHLineTo(v[0]); }}},
        {"V", {1, [&] { b.writeVLineTo(v[0]); }}},
        {"A", {7, [&] { b.writeEllipticalArc(p(0), v[2], v[3] != 0, v[4] != 0, p(5)); }}},
        {"line", {4, [&] { b.appendLine(p(0), p(2)); }}},
        {"rect", {4, [&] { b.appendRect(p(0), p(2)); }}},
        {"poly", {-1, [&] { b.appendSegmentListMove(points); }}},
        {"ellipse", {6, [&] { b.appendEllipse(p(0), p(2), v[4], v[5]); }}},
        {"[", {0, [&] { b.startContour(); }}},
        {"]", {0, [&] { b.endContour(true); }}},
        {"]0", {0, [&] { b.endContour(false); }}},
        {"~", {0, [&] { b.cancelContour(); }}},
        {"clear", {0, [&] { b.clearBuilder(); }}},
    };
    for (std::string word; in >> word;) {
        const auto call = calls.find(word);
        if (call == calls.end())
            return "bad script word " + word;
        float count = 0;
        v.assign(static_cast<std::size_t>(call->second.first < 0 && in >> count ? 2 * count : call->second.first), 0);
        for (float& value : v)
            in >> value;
        points.clear();
        for (std::size_t i = 0; i + 1 < v.size(); i += 2)
            points.emplace_back(v[i], v[i + 1]);
        call->second.second();
    }
    return Show(b.getContent());
}

struct Case {
    const char* script;
    const char* commands;
};

// clang-format off
const Case kCases[] = {
    {"M 100 100 M 101 101", "M100,100 m1,1"},         // relative when cheaper
    {"M 5 5 M 0 0", "M5,5 M0,0"},                     // a tie goes to the absolute form
    {"M 11 11 M 10 10", "M11,11 m-1,-1"},             // a minus sign is its own separator
    {"M 10 10 M -1 -1", "M10,10 M-1,-1"},
    {"M 0.5 0.5 M 1.5 1.5", "M0.5,0.5 m1,1"},
    {"M 100 100 L 100 105 L 100 5", "M100,100 v5 V5"}, // same x: vertical
    {"M 100 100 L 103 100 L 7 100", "M100,100 h3 H7"}, // same y: horizontal
    {"M 3 3 L 3 3", "M3,3 V3"},
    {"M 100 100 L 110 120 L 1 2", "M100,100 l10,20 L1,2"},
    {"L 4 4", "L4,4"},                                // no current point: absolute
    {"H 300 M 301 1", "H300 m1,1"},                   // ... and (0, 0) for the other coordinate
    {"V 300 M 1 301", "V300 m1,1"},
    {"M 0 0 A 5 6 30 1 0 7 8", "M0,0 A5,6,30,1,0,7,8"},
    {"line 0 0 10 0 line 10 0 10 10", "M0,0 H10 V10"}, // no move where the last one ended
    {"line 0 0 10 0 line 100 100 110 110", "M0,0 H10 m90,100 l10,10"},
    {"rect 100 100 5 5", "M100,100 h5 v5 h-5 v-5"},
    {"[ rect 100 100 5 5 ] line 100 100 0 0", "M100,100 h5 v5 h-5 v-5 Z L0,0"},
    {"[ line 0 0 1 0 line 1 1 1 0 ]", "M0,0 H1 V1 Z"}, // the second line reversed
    {"[ line 0 0 1 0 line 1 1 1 0 ]0", "M0,0 H1 V1 V0 Z"},
    {"[ line 0 0 10 0 poly 3 0 10 10 10 10 0 ]", "M0,0 H10 V10 H0 Z"},
    {"[ line 0 0 10 0 line 0 10 0 0 line 10 10 10 0 line 10 10 0 10 ]", "M0,0 H10 V10 H0 V0 Z"},
    {"[ line 0 0 1 0 line 1 1 1 0 [ line 5 5 6 6 ]0", "M0,0 H1 V1 Z M5,5 L6,6 Z"},
    // A contour that starts where the pen rests writes no move of its own.
    {"line 0 0 10 0 [ line 10 0 10 10 line 10 10 0 10 ]0 M 100 100", "M0,0 H10 V10 H0 Z m90,100"},
    {"[ ]", ""},
    {"line 0 0 1 1 ]", "M0,0 L1,1"},
    {"line 0 0 1 1 [ line 5 5 9 9 ~ line 1 1 2 2", "M0,0 L1,1 L2,2"},
    {"poly 0 poly 1 1 1", ""},
    {"poly 3 0 0 0 10 20 10", "M0,0 V10 H20"},
    {"line 0 0 1 1 clear line 1 1 2 2", "M1,1 L2,2"},
    {"ellipse 50 50 10 20 0 6.2831855", "M60,50 A10,20,0,0,1,50,70 A10,20,0,1,1,60,50"},
    {"ellipse 50 50 10 20 1 7.28", "M60,50 A10,20,0,0,1,50,70 A10,20,0,1,1,60,50"},
    {"ellipse 100 100 10 5 0 1.5707964", "M110,100 A10,5,0,0,1,100,105"},
    {"ellipse 100 100 10 5 0 4.712389", "M110,100 A10,5,0,1,1,100,95"},
    {"ellipse 100 100 10 5 1.5707964 0", "M100,105 A10,5,0,0,1,110,100"},
    {"[ line 90 100 80 100 ellipse 100 100 10 5 0 1.5707964 ]", "M90,100 H80 l20,5 A10,5,0,0,0,110,100 Z"},
};
// clang-format on

void PrintTo(const Case& c, std::ostream* out) { *out << '"' << c.script << '"'; }

class PathBuilderScript : public testing::TestWithParam<Case> {};

} // namespace

TEST_P(PathBuilderScript, WritesExactCommands) { EXPECT_EQ(RunScript(GetParam().script), GetParam().commands); }

INSTANTIATE_TEST_SUITE_P(Cases, PathBuilderScript, testing::ValuesIn(kCases));

TEST(PathBuilder, ReorderTakesTheFirstOfEquallyNearPiecesAndSurvivesNaN)
{
    PathBuilder::Contour contour;
    contour.push_back(std::make_unique<PathBuilder::Line>(V2(5, 5), V2(0, 0)));
    contour.push_back(std::make_unique<PathBuilder::Line>(V2(0, 2), V2(0, 1))); // its end as near as
    contour.push_back(std::make_unique<PathBuilder::Line>(V2(1, 0), V2(2, 0))); // this start
    const float nan = std::numeric_limits<float>::quiet_NaN();
    contour.push_back(std::make_unique<PathBuilder::Line>(V2(nan, 0), V2(3e38f, -3e38f)));
    contour.push_back(std::make_unique<PathBuilder::SegmentList>(std::vector<V2>{}));
    PathBuilder::ReorderContourPath(contour);
    std::vector<std::string> order;
    for (const auto& primitive : contour)
        order.push_back(Show({PathCommand(vk::svg::PathCommandType::MoveTo,
                                          {primitive->getStartPoint().X(), primitive->getStartPoint().Y()})}) +
                        (primitive->getReversed() ? "r" : ""));
    EXPECT_EQ(order, (std::vector<std::string>{"M5,5", "M0,0", "M0,1r", "M1,0", "Mnan,0"}));
}

TEST(PathBuilder, CreatesPathItems)
{
    PathBuilder builder;
    EXPECT_EQ(builder.createPathItem(true), nullptr);
    builder.startContour();
    builder.appendLine({0, 0}, {1, 1});
    EXPECT_FALSE(builder.isEmpty()); // a waiting primitive counts
    builder.endContour(true);
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> kept = builder.createPathItem(false);
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(Show(static_cast<vk::svg::Path&>(*kept).getCommands()), "M0,0 L1,1 Z");
    EXPECT_EQ(Show(builder.createPathItem(true)->getCommands()), "M0,0 L1,1 Z");
    EXPECT_TRUE(builder.isEmpty());
}

TEST(PathBuilder, AcceptsAnyNumbers)
{
    const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    PathBuilder builder;
    for (bool contour : {false, true}) {
        if (contour)
            builder.startContour();
        builder.appendLine({nan, 0}, {inf, -3e38f});
        builder.appendEllipse({nan, 1}, {inf, nan}, nan, inf);
        builder.appendRect({nan, 1}, {-inf, 2});
        builder.appendSegmentListConst({{nan, nan}, {nan, nan}, {-inf, 0}});
        builder.endContour(true);
    }
    EXPECT_FALSE(builder.isEmpty());
    const std::size_t before = builder.getContent().size();
    std::vector<V2> many(100000, V2(1, 2));
    builder.appendSegmentListMove(many);
    EXPECT_EQ(builder.getContent().size(), before + 100000u);
}

// Random drawings, built, saved by the writer, parsed back and walked, pass
// through the points they were built from, in order unless reordered.
TEST(PathBuilder, SavedPathsReachTheirPoints)
{
    std::mt19937 random(20240607);
    auto pick = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
    // Quarter units make shared and axis-aligned points frequent.
    auto coordinate = [&] { return static_cast<float>(pick(8001) - 4000) / 4; };
    auto point = [&] { return V2(coordinate(), coordinate()); };
    auto near = [](const V2& a, const V2& b) { return std::fabs(a.X() - b.X()) + std::fabs(a.Y() - b.Y()) < 4e-3f; };
    auto pushMerged = [&](std::vector<V2>& points, const V2& p) {
        if (points.empty() || !near(points.back(), p))
            points.push_back(p);
    };
    for (int trial = 0; trial < 300; ++trial) {
        PathBuilder builder;
        std::vector<V2> expected; // every point built from, in drawing order
        // A contour's first primitive never starts where the pen rests: such a
        // contour writes no move of its own, and its close returns to the
        // start of the subpath before it.
        auto appendRandom = [&](bool mayShare) {
            const V2 a = mayShare && pick(3) == 0 && !expected.empty() ? expected.back() : point(), b = point();
            const V2 radii(200 + b.X() / 20, 150 + b.Y() / 30), right(radii.X(), 0), top(0, radii.Y());
            const float from = a.X() / 500, to = a.Y() / 500;
            auto on = [&](float angle) { return a + V2(radii.X() * std::cos(angle), radii.Y() * std::sin(angle)); };
            std::vector<V2> points;
            switch (pick(5)) {
            case 0:
                builder.appendLine(a, b);
                points = {a, b};
                break;
            case 1:
                points = {a, b, V2(b.X(), a.Y())};
                builder.appendSegmentListConst(points);
                break;
            case 2:
                builder.appendRect(a, b);
                points = {a, a + V2(b.X(), 0), a + b, a + V2(0, b.Y()), a};
                break;
            case 3:
                builder.appendEllipse(a, radii, 0, 6.2831855f);
                points = {a + right, a + top, a + right};
                break;
            default:
                builder.appendEllipse(a, radii, from, to);
                points = {on(from), on(to)};
            }
            expected.insert(expected.end(), points.begin(), points.end());
            return points.front();
        };
        const bool reorder = trial % 2 == 1;
        for (int item = reorder ? 1 : 1 + pick(5); item > 0; --item) {
            if (!reorder && pick(2) == 0) {
                appendRandom(true);
                continue;
            }
            builder.startContour();
            const V2 start = appendRandom(false);
            for (int i = pick(reorder ? 7 : 3); i > 0; --i)
                appendRandom(true);
            builder.endContour(reorder);
            expected.push_back(start);
        }

        vk::svg::Path path;
        path.editCommands() = builder.getContent();
        vk::xml::XmlSaveContext context(false);
        path.beginWriteAsXml(context, {});
        path.endWriteAsXml(context, {});
        vk::vkIoDeviceMemory device;
        context.flushBufferToDevice(device, 0);
        const std::string text = device.getData().substr(device.getData().find("d=\"") + 3);
        std::list<PathCommand> parsed;
        ASSERT_TRUE(vk::svg::ConvertPathStringToCommands(text.substr(0, text.find('"')), parsed, nullptr)) << text;
        std::vector<V2> walked;
        int contours = 0;
        vk::svg::PathVisitorCommandsToPrimitives(parsed, [&](std::unique_ptr<vk::svg::PathPrimitive>& primitive,
                                                             bool newContour) {
            // The builder writes only lines and arcs.
            const auto ends = [](const auto& p) { return std::make_pair(p.start, p.end); };
            const auto [start, end] = primitive->type == vk::svg::PathPrimitive::Line
                                          ? ends(static_cast<const vk::svg::PathLine&>(*primitive))
                                          : ends(static_cast<const vk::svg::PathEllipticalArc&>(*primitive));
            contours += newContour ? 1 : 0;
            if (newContour)
                pushMerged(walked, start);
            pushMerged(walked, end);
        }).visit();

        if (reorder) { // one connected contour from its first point back to it, through every point
            EXPECT_EQ(contours, 1) << text;
            EXPECT_TRUE(near(walked.front(), expected.back()) && near(walked.back(), expected.back())) << text;
            for (const V2& p : expected)
                EXPECT_TRUE(std::any_of(walked.begin(), walked.end(), [&](const V2& q) { return near(p, q); })) << text;
        } else {
            std::vector<V2> merged;
            for (const V2& p : expected)
                pushMerged(merged, p);
            ASSERT_EQ(walked.size(), merged.size()) << text;
            for (std::size_t i = 0; i < merged.size(); ++i)
                EXPECT_TRUE(near(walked[i], merged[i])) << i << " in " << text;
        }
    }
}
