// Strokes with areas and extents known in closed form, the dash pattern
// read back from coverage along the centre line, and hostile input.
#include "StrokeTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace stroke_test;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

StrokePolyline Line(std::vector<V2> points, bool closed = false) { return StrokePolyline{std::move(points), closed}; }

FillMesh Stroke(const std::vector<StrokePolyline>& polylines, const StrokeStyle& style)
{
    FillMesh mesh;
    std::string error;
    EXPECT_TRUE(TessellateStroke(polylines, style, mesh, &error)) << error;
    EXPECT_TRUE(WellFormed(mesh));
    return mesh;
}

// The area both ways: the non-overlapping mesh itself, and Clipper's union
// of the fast mesh.
void ExpectArea(const std::vector<StrokePolyline>& polylines, StrokeStyle style, double expected, double tolerance)
{
    style.mode = StrokeMode::Fast;
    const FillMesh fast = Stroke(polylines, style);
    EXPECT_NEAR(UnionArea(fast), expected, tolerance);
    style.mode = StrokeMode::NonOverlapping;
    const FillMesh exact = Stroke(polylines, style);
    EXPECT_NEAR(MeshArea(exact), expected, tolerance);
}

struct AreaCase {
    const char* name;
    StrokeJoin join;
    StrokeCap cap;
    float miterLimit;
    double expected; // for the segment of length 10, or the right angle of legs 10, width 2
};

TEST(StrokeArea, StraightSegmentByCap)
{
    const float w = 2.0f;
    const double l = 10.0;
    const AreaCase cases[] = {
        {"butt", StrokeJoin::Miter, StrokeCap::Butt, 4, l * w},
        {"square", StrokeJoin::Miter, StrokeCap::Square, 4, l * w + w * w},
        {"round", StrokeJoin::Miter, StrokeCap::Round, 4, l * w + kPi * w * w / 4},
    };
    for (const AreaCase& c : cases) {
        SCOPED_TRACE(c.name);
        StrokeStyle style;
        style.width = w;
        style.cap = c.cap;
        style.tolerance = 0.001f;
        // The round caps are polygons inside the circle, at most the
        // tolerance away along their perimeter.
        ExpectArea({Line({{0, 0}, {float(l), 0}})}, style, c.expected, kPi * w * 0.001 + 1e-3);
    }
}

TEST(StrokeArea, RightAngleByJoin)
{
    // Legs (0,0)-(10,0)-(10,10), width 2: the two rectangles overlap in a
    // unit square, so the butt-jointed area is 39.
    const double base = 39.0;
    // Clipping the 90 degree miter at 1.2 from the corner cuts a right
    // isosceles corner of height sqrt(2) - 1.2 off the unit square.
    const double cut = (std::sqrt(2.0) - 1.2) * (std::sqrt(2.0) - 1.2);
    const AreaCase cases[] = {
        {"miter", StrokeJoin::Miter, StrokeCap::Butt, 4, base + 1.0},
        {"miter at its limit", StrokeJoin::Miter, StrokeCap::Butt, 1.415f, base + 1.0},
        {"miter over its limit", StrokeJoin::Miter, StrokeCap::Butt, 1.41f, base + 0.5},
        {"bevel", StrokeJoin::Bevel, StrokeCap::Butt, 4, base + 0.5},
        {"round", StrokeJoin::Round, StrokeCap::Butt, 4, base + kPi / 4},
        {"miter-clip within", StrokeJoin::MiterClip, StrokeCap::Butt, 4, base + 1.0},
        {"miter-clip cut", StrokeJoin::MiterClip, StrokeCap::Butt, 1.2f, base + 1.0 - cut},
        {"arcs cut", StrokeJoin::Arcs, StrokeCap::Butt, 1.2f, base + 1.0 - cut},
        {"limit below 1 means 4", StrokeJoin::Miter, StrokeCap::Butt, 0.5f, base + 1.0},
        {"NaN limit means 4", StrokeJoin::Miter, StrokeCap::Butt, kNaN, base + 1.0},
    };
    for (const AreaCase& c : cases) {
        SCOPED_TRACE(c.name);
        StrokeStyle style;
        style.width = 2.0f;
        style.join = c.join;
        style.cap = c.cap;
        style.miterLimit = c.miterLimit;
        style.tolerance = 0.001f;
        ExpectArea({Line({{0, 0}, {10, 0}, {10, 10}})}, style, c.expected, 2e-3);
    }
}

TEST(StrokeArea, SharpTurnOverTheLimitIsBeveled)
{
    const std::vector<StrokePolyline> hairpin{Line({{0, 0}, {10, 0}, {0, 1}})};
    StrokeStyle miter;
    miter.width = 2.0f;
    StrokeStyle bevel = miter;
    bevel.join = StrokeJoin::Bevel;
    miter.mode = bevel.mode = StrokeMode::NonOverlapping;
    EXPECT_NEAR(MeshArea(Stroke(hairpin, miter)), MeshArea(Stroke(hairpin, bevel)), 1e-4);
    // With a limit it does not exceed, the miter reaches far past the corner.
    miter.miterLimit = 100.0f;
    const FillMesh sharp = Stroke(hairpin, miter);
    EXPECT_TRUE(Covers(sharp, V2(25.0f, -0.8f)));
    EXPECT_FALSE(Covers(sharp, V2(25.0f, -0.3f)));
}

TEST(StrokeArea, ClosedSquareIsJoinedNotCapped)
{
    const std::vector<StrokePolyline> square{Line({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, true)};
    for (StrokeCap cap : {StrokeCap::Butt, StrokeCap::Round, StrokeCap::Square}) {
        StrokeStyle style;
        style.width = 2.0f;
        style.cap = cap;
        ExpectArea(square, style, 12.0 * 12.0 - 8.0 * 8.0, 1e-3);
    }
    // A repeated closing point changes nothing.
    StrokeStyle style;
    style.width = 2.0f;
    ExpectArea({Line({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}, true)}, style, 80.0, 1e-3);
}

TEST(StrokeArea, ZeroLengthSubpathsAreDots)
{
    struct Case {
        StrokePolyline polyline;
        StrokeCap cap;
        double expected;
    };
    const double disc = kPi * 9.0;
    const Case cases[] = {
        {Line({{5, 5}, {5, 5}}), StrokeCap::Round, disc},
        {Line({{5, 5}, {5, 5}, {5, 5}}), StrokeCap::Square, 36.0},
        {Line({{5, 5}}, true), StrokeCap::Round, disc},
        {Line({{5, 5}}, true), StrokeCap::Square, 36.0},
        {Line({{5, 5}, {5, 5}}), StrokeCap::Butt, 0.0},
        {Line({{5, 5}}), StrokeCap::Round, 0.0}, // a lone moveto draws nothing
        {Line({}), StrokeCap::Round, 0.0},
    };
    for (const Case& c : cases) {
        StrokeStyle style;
        style.width = 6.0f;
        style.cap = c.cap;
        style.tolerance = 0.001f;
        ExpectArea({c.polyline}, style, c.expected, 0.03);
    }
}

// The covered runs along y = 0, sampled every 0.01.
std::vector<std::pair<double, double>> CoveredRuns(const FillMesh& mesh, double from, double to)
{
    std::vector<std::pair<double, double>> runs;
    bool inside = false;
    for (double x = from; x <= to; x += 0.01) {
        const bool covered = Covers(mesh, V2(float(x), 0.0f), 0.0);
        if (covered && !inside) {
            runs.emplace_back(x, x);
        }
        if (covered) {
            runs.back().second = x;
        }
        inside = covered;
    }
    return runs;
}

TEST(StrokeDash, RunsFollowArrayAndOffset)
{
    using Runs = std::vector<std::pair<double, double>>;
    struct Case {
        const char* name;
        std::vector<float> array;
        float offset;
        Runs expected;
    };
    const Case cases[] = {
        {"10 5", {10, 5}, 0, {{0, 10}, {15, 25}, {30, 40}, {45, 55}, {60, 70}, {75, 85}, {90, 100}}},
        {"offset 3", {10, 5}, 3, {{0, 7}, {12, 22}, {27, 37}, {42, 52}, {57, 67}, {72, 82}, {87, 97}}},
        {"offset -3", {10, 5}, -3, {{3, 13}, {18, 28}, {33, 43}, {48, 58}, {63, 73}, {78, 88}, {93, 100}}},
        {"offset one period on", {10, 5}, 18, {{0, 7}, {12, 22}, {27, 37}, {42, 52}, {57, 67}, {72, 82}, {87, 97}}},
        {"odd count repeats", {20, 10, 5}, 0, {{0, 20}, {30, 35}, {55, 65}, {70, 90}}},
        {"all zero is solid", {0, 0}, 0, {{0, 100}}},
        {"negative is solid", {10, -5}, 0, {{0, 100}}},
        {"NaN is solid", {10, kNaN}, 0, {{0, 100}}},
        {"infinite is solid", {10, kInf}, 0, {{0, 100}}},
        {"NaN offset is 0", {10, 5}, kNaN, {{0, 10}, {15, 25}, {30, 40}, {45, 55}, {60, 70}, {75, 85}, {90, 100}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StrokeStyle style;
        style.width = 2.0f;
        style.dashArray = c.array;
        style.dashOffset = c.offset;
        const FillMesh mesh = Stroke({Line({{0, 0}, {40, 0}, {100, 0}})}, style);
        const auto runs = CoveredRuns(mesh, -1.0, 101.0);
        ASSERT_EQ(runs.size(), c.expected.size());
        for (std::size_t i = 0; i < runs.size(); ++i) {
            EXPECT_NEAR(runs[i].first, c.expected[i].first, 0.011);
            EXPECT_NEAR(runs[i].second, c.expected[i].second, 0.011);
        }
    }
}

TEST(StrokeDash, PatternRunsAroundCornersAndAcrossTheClose)
{
    // Perimeter 40 with a period of 25: on 0-15, off 15-25, on 25-50; the
    // last dash carries on over the start into the first.
    StrokeStyle style;
    style.width = 2.0f;
    style.dashArray = {15, 10};
    const std::vector<StrokePolyline> square{Line({{0, 0}, {10, 0}, {10, 10}, {0, 10}}, true)};
    for (StrokeMode mode : {StrokeMode::Fast, StrokeMode::NonOverlapping}) {
        style.mode = mode;
        const FillMesh mesh = Stroke(square, style);
        EXPECT_TRUE(Covers(mesh, V2(-0.9f, -0.9f))); // mitered where the two dashes meet
        EXPECT_TRUE(Covers(mesh, V2(10.9f, -0.9f))); // mitered inside the first dash
        EXPECT_FALSE(Covers(mesh, V2(10.0f, 7.0f))); // the gap 15-25
        EXPECT_FALSE(Covers(mesh, V2(8.0f, 10.0f)));
        EXPECT_TRUE(Covers(mesh, V2(0.0f, 5.0f)));
        // One dash (5,10)-(0,10)-(0,0)-(10,0)-(10,5), 30 long with three
        // mitered corners: each corner's overlap and miter square cancel.
        EXPECT_NEAR(UnionArea(mesh), 30.0 * 2.0, 1e-3);
    }
}

TEST(StrokeDash, ZeroLengthDashesAreDotsWithRoundCaps)
{
    StrokeStyle style;
    style.width = 2.0f;
    style.cap = StrokeCap::Round;
    style.dashArray = {0, 10};
    style.tolerance = 0.001f;
    style.mode = StrokeMode::NonOverlapping;
    const FillMesh mesh = Stroke({Line({{0, 0}, {35, 0}})}, style);
    // Dots at 0, 10, 20 and 30, each short of the disc by at most its
    // perimeter times the tolerance.
    EXPECT_NEAR(MeshArea(mesh), 4.0 * kPi, 4.0 * 2.0 * kPi * 0.001);
    style.cap = StrokeCap::Butt;
    EXPECT_TRUE(Stroke({Line({{0, 0}, {35, 0}})}, style).indices.empty());
}

TEST(StrokeTransform, NonUniformScaleVariesTheWidth)
{
    std::vector<V2> circle;
    for (int i = 0; i < 256; ++i) {
        const double a = 2.0 * kPi * i / 256.0;
        circle.emplace_back(float(10.0 * std::cos(a)), float(10.0 * std::sin(a)));
    }
    StrokeStyle style;
    style.width = 2.0f;
    const Wm4::Matrix3<float> scale(3, 0, 5, 0, 1, -2, 0, 0, 1);
    FillMesh mesh;
    ASSERT_TRUE(TessellateStroke({Line(circle, true)}, style, scale, mesh));
    ASSERT_TRUE(WellFormed(mesh));
    // Across the x axis the ring is 6 wide, across the y axis 2.
    EXPECT_TRUE(Covers(mesh, V2(5 + 32.8f, -2)));
    EXPECT_TRUE(Covers(mesh, V2(5 + 27.2f, -2)));
    EXPECT_FALSE(Covers(mesh, V2(5 + 33.3f, -2)));
    EXPECT_FALSE(Covers(mesh, V2(5 + 26.7f, -2)));
    EXPECT_TRUE(Covers(mesh, V2(5, -2 + 10.8f)));
    EXPECT_FALSE(Covers(mesh, V2(5, -2 + 11.3f)));
    EXPECT_FALSE(Covers(mesh, V2(5, -2 + 8.7f)));
}

TEST(StrokeTransform, ToleranceHoldsInOutputUnits)
{
    StrokeStyle style;
    style.width = 2.0f;
    style.cap = StrokeCap::Round;
    style.tolerance = 0.05f;
    const std::vector<StrokePolyline> dot{Line({{0, 0}, {0, 0}})};
    FillMesh small;
    FillMesh large;
    ASSERT_TRUE(TessellateStroke(dot, style, small));
    const Wm4::Matrix3<float> zoom(100, 0, 0, 0, 100, 0, 0, 0, 1);
    ASSERT_TRUE(TessellateStroke(dot, style, zoom, large));
    EXPECT_GT(large.indices.size(), 4 * small.indices.size());
    // Inscribed polygon within the tolerance: its area misses at most
    // perimeter * tolerance of the true disc's.
    EXPECT_NEAR(MeshArea(large), kPi * 100.0 * 100.0, 2.0 * kPi * 100.0 * 0.05);
}

TEST(StrokeTransform, MirroringKeepsTrianglesPositive)
{
    StrokeStyle style;
    style.width = 2.0f;
    style.join = StrokeJoin::Round;
    style.cap = StrokeCap::Square;
    const Wm4::Matrix3<float> mirror(-1, 0, 0, 0, 1, 0, 0, 0, 1);
    FillMesh mesh;
    ASSERT_TRUE(TessellateStroke({Line({{0, 0}, {10, 0}, {10, 10}})}, style, mirror, mesh));
    EXPECT_TRUE(WellFormed(mesh));
    EXPECT_TRUE(Covers(mesh, V2(-5, 0)));
}

TEST(StrokeFastMode, TwoTrianglesPerStraightSegment)
{
    std::vector<V2> line;
    for (int i = 0; i <= 100; ++i) {
        line.emplace_back(float(i), 0.0f);
    }
    StrokeStyle style;
    style.width = 2.0f;
    EXPECT_EQ(Stroke({Line(line)}, style).indices.size(), 3u * 2u * 100u);
}

// Far from the origin a float step is coarser than a thin stroke: its
// pieces round flat, and their vertices must leave the mesh with them while
// the rest keeps its shape, whichever comes first.
TEST(StrokeFastMode, PiecesRoundedFlatLeaveNoVertexBehind)
{
    const StrokePolyline nearby = Line({V2(0, 0), V2(10, 0), V2(10, 10)});
    const StrokePolyline far = Line({V2(1e7f, 0), V2(1e7f + 64, 0), V2(1e7f + 64, 64)});
    for (const StrokeJoin join : {StrokeJoin::Miter, StrokeJoin::Bevel, StrokeJoin::Round}) {
        StrokeStyle style;
        style.width = 0.01f;
        style.join = join;
        for (const auto& polylines :
             {std::vector<StrokePolyline>{far, nearby}, std::vector<StrokePolyline>{nearby, far}}) {
            const FillMesh mesh = Stroke(polylines, style);
            // The far polyline's vertical leg is flat; its horizontal one
            // lies near y = 0, where floats are fine enough.
            EXPECT_NEAR(MeshArea(mesh), (20.0 + 64.0) * 0.01, 1e-3) << int(join);
        }
    }
}

TEST(StrokeBadInput, ClearResults)
{
    struct Case {
        const char* name;
        std::vector<StrokePolyline> polylines;
        StrokeStyle style;
        bool ok;
        bool empty;
    };
    auto styled = [](auto change) {
        StrokeStyle style;
        change(style);
        return style;
    };
    const std::vector<StrokePolyline> segment{Line({{0, 0}, {10, 0}})};
    std::vector<V2> many(1000000);
    for (std::size_t i = 0; i < many.size(); ++i) {
        many[i] = V2(float(i % 1000), float(i / 1000));
    }
    const std::vector<Case> cases = {
        {"zero width", segment, styled([](StrokeStyle& s) { s.width = 0; }), true, true},
        {"negative width", segment, styled([](StrokeStyle& s) { s.width = -2; }), true, true},
        {"NaN width", segment, styled([](StrokeStyle& s) { s.width = kNaN; }), true, true},
        {"infinite width", segment, styled([](StrokeStyle& s) { s.width = kInf; }), true, true},
        {"huge width", segment, styled([](StrokeStyle& s) { s.width = 3e38f; }), true, false},
        {"overflowing width",
         {Line({{0, 0}, {3e38f, 0}})},
         styled([](StrokeStyle& s) {
             s.width = 3e38f;
             s.cap = StrokeCap::Square;
         }),
         false,
         true},
        {"NaN point", {Line({{0, 0}, {kNaN, 1}})}, StrokeStyle{}, false, true},
        {"infinite point", {Line({{0, 0}, {1, -kInf}})}, StrokeStyle{}, false, true},
        {"one point", {Line({{1, 1}})}, StrokeStyle{}, true, true},
        {"all points equal", {Line({{1, 1}, {1, 1}, {1, 1}})}, StrokeStyle{}, true, true},
        {"no polylines", {}, StrokeStyle{}, true, true},
        {"a million points", {Line(many)}, styled([](StrokeStyle& s) { s.join = StrokeJoin::Round; }), true, false},
        {"a million dash entries",
         {Line({{0, 0}, {1e6f, 0}})},
         styled([](StrokeStyle& s) { s.dashArray.assign(1000000, 0.001f); }),
         true,
         false},
        {"a million zero dash entries", segment, styled([](StrokeStyle& s) { s.dashArray.assign(1000000, 0.0f); }),
         true, false},
        {"dashes finer than drawable",
         {Line(many)},
         styled([](StrokeStyle& s) {
             s.dashArray = {1e-3f, 1e-3f};
             s.cap = StrokeCap::Round;
         }),
         true,
         false},
        {"huge round joins",
         {Line(many)},
         styled([](StrokeStyle& s) {
             s.width = 1e6f;
             s.join = StrokeJoin::Round;
             s.cap = StrokeCap::Round;
             s.tolerance = 1e-6f;
         }),
         true,
         false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FillMesh mesh;
        mesh.indices = {1, 2, 3};
        std::string error;
        const bool ok = TessellateStroke(c.polylines, c.style, mesh, &error);
        EXPECT_EQ(ok, c.ok);
        EXPECT_EQ(ok, error.empty()) << error;
        EXPECT_EQ(mesh.indices.empty(), c.empty);
        EXPECT_TRUE(WellFormed(mesh));
        // Bounded output: a million points never make more than a few
        // dozen triangles each.
        EXPECT_LT(mesh.indices.size(), 3u * 64u * 1000000u);
    }
}

TEST(StrokeBadInput, NonFiniteTransformFails)
{
    FillMesh mesh;
    std::string error;
    const Wm4::Matrix3<float> broken(1, 0, kNaN, 0, 1, 0, 0, 0, 1);
    EXPECT_FALSE(TessellateStroke({Line({{0, 0}, {1, 0}})}, StrokeStyle{}, broken, mesh, &error));
    EXPECT_FALSE(error.empty());
    const Wm4::Matrix3<float> flat(0, 0, 1, 0, 0, 1, 0, 0, 1);
    EXPECT_TRUE(TessellateStroke({Line({{0, 0}, {1, 0}})}, StrokeStyle{}, flat, mesh, &error));
    EXPECT_TRUE(mesh.indices.empty());
}

} // namespace
