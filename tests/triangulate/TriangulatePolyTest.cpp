#include <svg/Triangulation.h>

#include "Shapes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using shapes::AddRing;
using shapes::MeshArea;
using shapes::Outline;
using shapes::Ring;
using shapes::Square;
using shapes::V2;
using vk::TriangulationFillRule;

namespace {

const TriangulationFillRule kAllBounded = static_cast<TriangulationFillRule>(7);

struct Mesh {
    bool ok = false;
    std::vector<V2> points;
    std::vector<unsigned int> triangles;
};

Mesh Triangulate(const Outline& outline, TriangulationFillRule rule, bool merge = true)
{
    Mesh mesh;
    mesh.ok = vk::TriangulatePoly(outline.points, outline.edges, mesh.points, mesh.triangles, rule, merge);
    return mesh;
}

// The mesh is well formed and stays within the outline's bounding box.
void ExpectWellFormed(const Outline& outline, const Mesh& mesh)
{
    ASSERT_EQ(mesh.points.size() * 6, mesh.triangles.size() * 4); // two triangles per four points
    for (unsigned int index : mesh.triangles) {
        ASSERT_LT(index, mesh.points.size());
    }
    const auto [lo, hi] = shapes::Bounds(outline.points);
    for (const V2& p : mesh.points) {
        for (int c = 0; c < 2; ++c) {
            const float slack = 1e-5f * (hi[c] - lo[c]);
            ASSERT_GE(p[c], lo[c] - slack);
            ASSERT_LE(p[c], hi[c] + slack);
        }
    }
}

} // namespace

TEST(TriangulatePoly, RectangleLayoutAndCallerVectors)
{
    Outline rectangle;
    AddRing(rectangle, Square(0, 0, 4, 2));
    for (bool merge : {true, false}) {
        const Mesh mesh = Triangulate(rectangle, TriangulationFillRule::NonZero, merge);
        ASSERT_TRUE(mesh.ok);
        EXPECT_EQ(mesh.points, rectangle.points); // one trapezoid: the corners as given
        EXPECT_EQ(mesh.triangles, (std::vector<unsigned int>{0, 1, 3, 1, 3, 2}));
    }

    std::vector<V2> points{V2(9, 9)};
    std::vector<unsigned int> triangles{7, 7, 7};
    const auto run = [&](const std::vector<unsigned int>& edges) {
        return vk::TriangulatePoly(rectangle.points, edges, points, triangles, TriangulationFillRule::NonZero, true);
    };
    EXPECT_FALSE(run(std::vector<unsigned int>(rectangle.edges.begin(), rectangle.edges.end() - 1))); // odd length
    EXPECT_TRUE(run({}));
    EXPECT_EQ(points.size(), 1u); // neither call touched the caller's vectors
    EXPECT_EQ(triangles.size(), 3u);

    // Appended after what is there, with absolute indices.
    EXPECT_TRUE(run(rectangle.edges));
    EXPECT_EQ(points.size(), 5u);
    EXPECT_EQ(triangles, (std::vector<unsigned int>{7, 7, 7, 1, 2, 4, 2, 4, 3}));

    // A triangle list that was not whole to begin with fails the call.
    triangles = {1, 2};
    EXPECT_FALSE(run(rectangle.edges));
    triangles = {1, 2};
    EXPECT_FALSE(run({}));
}

TEST(TriangulatePoly, TriangleSplitsAtTheMiddleVertex)
{
    Outline outline;
    AddRing(outline, {V2(0, 0), V2(4, 1), V2(1, 3)});
    const Mesh mesh = Triangulate(outline, TriangulationFillRule::EvenOdd);
    ASSERT_TRUE(mesh.ok);
    ASSERT_EQ(mesh.points.size(), 8u);
    EXPECT_EQ(mesh.triangles, (std::vector<unsigned int>{0, 1, 3, 1, 3, 2, 4, 5, 7, 5, 7, 6}));
    // Upper part first (it was created first), from y = 1 up to the apex.
    const float expected[8][2] = {{1.0f / 3, 1}, {4, 1}, {1, 3}, {1, 3}, {0, 0}, {0, 0}, {4, 1}, {1.0f / 3, 1}};
    for (int i = 0; i < 8; ++i) {
        EXPECT_NEAR(mesh.points[i].X(), expected[i][0], 1e-6f) << i;
        EXPECT_EQ(mesh.points[i].Y(), expected[i][1]) << i;
    }
    // Each narrows to a point: one of its two triangles has no area.
    EXPECT_EQ(mesh.points[4].X(), mesh.points[5].X());
    EXPECT_NEAR(MeshArea(mesh.points, mesh.triangles), 5.5, 1e-5);
}

// Crossing depth, not winding: the direction of either contour never matters.
TEST(TriangulatePoly, NestedSquaresUnderBothRulesInEveryDirection)
{
    for (int variant = 0; variant < 8; ++variant) {
        Outline outline; // bit 0 reverses the outer square, bit 1 the inner, bit 2 puts the inner first
        for (bool inner : {bool(variant & 4), !(variant & 4)}) {
            AddRing(outline, inner ? Square(3, 3, 7, 7) : Square(0, 0, 10, 10), variant & (inner ? 2 : 1));
        }
        const Mesh evenOdd = Triangulate(outline, TriangulationFillRule::EvenOdd);
        const Mesh nonZero = Triangulate(outline, TriangulationFillRule::NonZero);
        ASSERT_TRUE(evenOdd.ok && nonZero.ok) << variant;
        EXPECT_DOUBLE_EQ(MeshArea(evenOdd.points, evenOdd.triangles), 84.0) << variant;
        EXPECT_DOUBLE_EQ(MeshArea(nonZero.points, nonZero.triangles), 100.0) << variant;
        for (const V2& p : evenOdd.points) { // nothing strictly inside the hole
            EXPECT_FALSE(p.X() > 3 && p.X() < 7 && p.Y() > 3 && p.Y() < 7);
        }
    }
}

// Success or failure, and the area filled, for small outlines.
TEST(TriangulatePoly, SmallOutlines)
{
    Outline disjoint; // two squares, one clockwise, with a bounded gap between them
    AddRing(disjoint, Square(0, 0, 2, 2));
    AddRing(disjoint, Square(5, 0, 7, 2), true);
    Outline repeated; // the same corner twice under different indices
    AddRing(repeated, {V2(0, 0), V2(4, 0), V2(4, 0), V2(4, 4), V2(0, 4)});
    const Ring square = Square(0, 0, 4, 4);
    const Ring tip = {V2(4, 2), V2(6, 1), V2(6, 3)};
    Outline loop; // an edge from a point to itself
    AddRing(loop, square);
    loop.edges.insert(loop.edges.end(), {2, 2});
    Outline touching[2]; // a corner on another contour's edge, either contour first
    for (int i = 0; i < 2; ++i) {
        AddRing(touching[i], i == 0 ? square : tip);
        AddRing(touching[i], i == 0 ? tip : square);
    }
    Outline outOfRange;
    AddRing(outOfRange, Square(0, 0, 4, 2));
    outOfRange.edges.back() = 4; // refused rather than read
    struct Case {
        const char* name;
        const Outline& outline;
        TriangulationFillRule rule;
        bool merge;
        double area; // negative: the call fails
    };
    const Case cases[] = {
        {"disjoint, non-zero", disjoint, TriangulationFillRule::NonZero, true, 8.0},
        {"disjoint, even-odd", disjoint, TriangulationFillRule::EvenOdd, true, 8.0},
        {"disjoint, other rule", disjoint, kAllBounded, true, 14.0},         // any other rule fills the gap too
        {"repeated", repeated, TriangulationFillRule::NonZero, true, 16.0},  // merged, the zero-length edge goes
        {"loop, merged", loop, TriangulationFillRule::NonZero, true, 16.0},  // dropped when merging...
        {"loop, unmerged", loop, TriangulationFillRule::NonZero, false, -1}, // ...and fatal otherwise
        {"touching, square first", touching[0], TriangulationFillRule::NonZero, true, -1},
        {"touching, tip first", touching[1], TriangulationFillRule::NonZero, true, -1},
        {"out of range", outOfRange, TriangulationFillRule::NonZero, true, -1},
    };
    for (const Case& c : cases) {
        const Mesh mesh = Triangulate(c.outline, c.rule, c.merge);
        ASSERT_EQ(mesh.ok, c.area >= 0) << c.name;
        if (c.area >= 0) {
            EXPECT_DOUBLE_EQ(MeshArea(mesh.points, mesh.triangles), c.area) << c.name;
        }
    }
}

// Whatever the geometry, the answer is true or false: never a crash, a hang
// or an exception.
TEST(TriangulatePoly, BadInputEndsInTrueOrFalse)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const std::vector<unsigned int> quad = {0, 1, 1, 2, 2, 3, 3, 0};
    struct Case {
        std::string name;
        std::vector<V2> points;
        std::vector<unsigned int> edges;
        int expected; // 1 true, 0 false, -1 either
    };
    const std::vector<Case> cases = {
        {"bow tie", {V2(0, 0), V2(2, 2), V2(2, 0), V2(0, 2)}, quad, 0},
        {"crossing squares",
         {V2(0, 0), V2(4, 0), V2(4, 4), V2(0, 4), V2(2, 1), V2(6, 1), V2(6, 5), V2(2, 5)},
         {0, 1, 1, 2, 2, 3, 3, 0, 4, 5, 5, 6, 6, 7, 7, 4},
         0},
        {"overlapping collinear edges",
         {V2(0, 0), V2(4, 0), V2(2, 0), V2(6, 0), V2(3, 3)},
         {0, 1, 2, 3, 3, 4, 4, 0},
         0},
        {"same edge twice", {V2(0, 0), V2(4, 0), V2(2, 3)}, {0, 1, 1, 2, 2, 0, 1, 0}, 0},
        {"all on one line", {V2(0, 0), V2(1, 1), V2(2, 2), V2(3, 3)}, quad, 0},
        {"NaN point", {V2(0, 0), V2(4, 0), V2(nan, 2), V2(0, 4)}, quad, -1},
        {"all NaN", {V2(nan, nan), V2(nan, 1), V2(1, nan)}, {0, 1, 1, 2, 2, 0}, -1},
        {"infinite point", {V2(0, 0), V2(inf, 0), V2(4, 4), V2(-inf, inf)}, quad, -1},
        {"large", {V2(-1e38f, -1e38f), V2(1e38f, -1e38f), V2(1e38f, 1e38f), V2(-1e38f, 1e38f)}, quad, 1},
        // Differences overflow: the side test meets inf * 0 and gives up.
        {"huge", {V2(-3e38f, -3e38f), V2(3e38f, -3e38f), V2(3e38f, 3e38f), V2(-3e38f, 3e38f)}, quad, -1},
        {"tiny", {V2(0, 0), V2(1e-44f, 0), V2(1e-44f, 1e-44f), V2(0, 3e-45f)}, quad, -1},
        {"open chain", {V2(0, 0), V2(4, 0), V2(4, 4)}, {0, 1, 1, 2}, 1},
    };
    for (const Case& c : cases) {
        for (bool merge : {true, false}) {
            for (auto rule : {TriangulationFillRule::NonZero, TriangulationFillRule::EvenOdd, kAllBounded}) {
                std::vector<V2> points;
                std::vector<unsigned int> triangles;
                bool ok = false;
                EXPECT_NO_THROW(ok = vk::TriangulatePoly(c.points, c.edges, points, triangles, rule, merge)) << c.name;
                if (c.expected >= 0) {
                    EXPECT_EQ(ok, c.expected == 1) << c.name << " merge " << merge;
                }
                EXPECT_EQ(triangles.size() % 3, 0u) << c.name;
            }
        }
    }
}

TEST(TriangulatePoly, RandomSimplePolygonsCoverTheirArea)
{
    std::mt19937 rng(20240607);
    for (std::size_t n : {10u, 37u, 200u, 1000u, 5000u}) {
        for (int kind = 0; kind < 2; ++kind) {
            const Ring ring =
                kind == 0 ? shapes::Star(rng, n, V2(3, -2), 2.0f, 10.0f) : shapes::RandomWalk(rng, n, 50.0f);
            Outline outline;
            AddRing(outline, ring, n % 2 == 0);
            const double area = shapes::ShoelaceArea(ring);
            for (auto rule : {TriangulationFillRule::NonZero, TriangulationFillRule::EvenOdd}) {
                const Mesh mesh = Triangulate(outline, rule, rule == TriangulationFillRule::NonZero);
                ASSERT_TRUE(mesh.ok) << n << " kind " << kind;
                ExpectWellFormed(outline, mesh);
                EXPECT_NEAR(MeshArea(mesh.points, mesh.triangles), area, 1e-4 * area) << n << " kind " << kind;
            }
        }
    }
}

TEST(TriangulatePoly, PolygonsWithHoles)
{
    std::mt19937 rng(77);
    for (int holesPerSide : {1, 3, 6}) {
        const Ring outer = shapes::Star(rng, 300, V2(0, 0), 45.0f, 50.0f);
        Outline outline;
        AddRing(outline, outer);
        double holeArea = 0.0;
        const float cell = 50.0f / float(holesPerSide);
        for (int i = 0; i < holesPerSide; ++i) {
            for (int j = 0; j < holesPerSide; ++j) {
                const V2 center(-25.0f + cell * (float(i) + 0.5f), -25.0f + cell * (float(j) + 0.5f));
                const Ring hole = shapes::Star(rng, 24, center, 0.2f * cell, 0.45f * cell);
                AddRing(outline, hole, (i + j) % 2 == 0);
                holeArea += shapes::ShoelaceArea(hole);
            }
        }
        const double outerArea = shapes::ShoelaceArea(outer);
        const Mesh evenOdd = Triangulate(outline, TriangulationFillRule::EvenOdd);
        const Mesh nonZero = Triangulate(outline, TriangulationFillRule::NonZero, false);
        ASSERT_TRUE(evenOdd.ok && nonZero.ok) << holesPerSide;
        ExpectWellFormed(outline, evenOdd);
        EXPECT_NEAR(MeshArea(evenOdd.points, evenOdd.triangles), outerArea - holeArea, 1e-4 * outerArea);
        EXPECT_NEAR(MeshArea(nonZero.points, nonZero.triangles), outerArea, 1e-4 * outerArea);
    }
}

// The way shapes reach the triangulator: a finely segmented circle, cleaned first.
TEST(TriangulatePoly, CleanedCircle)
{
    Ring circle;
    for (int i = 0; i < 4000; ++i) {
        const double angle = 2.0 * shapes::kPi * i / 4000.0;
        circle.emplace_back(float(30.0 * std::cos(angle)), float(30.0 * std::sin(angle)));
    }
    Outline outline;
    AddRing(outline, circle);
    vk::CleanupContour(outline.points, outline.edges);
    EXPECT_LT(outline.edges.size(), 2 * circle.size());
    // Cleanup coarsens the outline on purpose; the mesh covers what is left.
    double twice = 0.0;
    for (std::size_t k = 0; k < outline.edges.size(); k += 2) {
        const V2& a = outline.points[outline.edges[k]];
        const V2& b = outline.points[outline.edges[k + 1]];
        twice += double(a.X()) * b.Y() - double(b.X()) * a.Y();
    }
    const Mesh mesh = Triangulate(outline, TriangulationFillRule::NonZero);
    ASSERT_TRUE(mesh.ok);
    EXPECT_NEAR(MeshArea(mesh.points, mesh.triangles), std::fabs(twice) / 2.0, 1e-4 * std::fabs(twice));
    EXPECT_NEAR(MeshArea(mesh.points, mesh.triangles), shapes::kPi * 900.0, 3.0);
}
