// The fill tessellator against an independent oracle: the winding number of
// sample points, counted straight from the input contours, must say covered
// exactly where one triangle of the mesh contains the point.
#include <svg/Tessellation.h>

#include "tessellate/Crossings.h"
#include "tessellate/MonotoneTriangulation.h"
#include "tessellate/RadixSort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using vk::svg::FillMesh;
using vk::svg::TessellateFill;
using vk::svg::WindingRule;
using V2 = Wm4::Vector2<float>;
using Contour = std::vector<V2>;
using Contours = std::vector<Contour>;

constexpr double kPi = 3.14159265358979323846;
const WindingRule kRules[] = {WindingRule::NonZero, WindingRule::EvenOdd, WindingRule::Positive, WindingRule::Negative};

double Cross(V2 a, V2 b, V2 c)
{
    return (double(b.X()) - a.X()) * (double(c.Y()) - a.Y()) - (double(b.Y()) - a.Y()) * (double(c.X()) - a.X());
}

bool Covers(WindingRule rule, int w)
{
    switch (rule) {
    case WindingRule::NonZero:
        return w != 0;
    case WindingRule::EvenOdd:
        return (w & 1) != 0;
    case WindingRule::Positive:
        return w > 0;
    case WindingRule::Negative:
        return w < 0;
    }
    return false;
}

double ShoelaceArea(const Contour& c)
{
    double area = 0.0;
    for (size_t i = 0; i < c.size(); ++i) {
        const V2 a = c[i];
        const V2 b = c[(i + 1) % c.size()];
        area += double(a.X()) * b.Y() - double(b.X()) * a.Y();
    }
    return area / 2.0;
}

double MeshArea(const FillMesh& mesh)
{
    double area = 0.0;
    for (size_t t = 0; t + 2 < mesh.indices.size(); t += 3) {
        area += Cross(mesh.vertices[mesh.indices[t]], mesh.vertices[mesh.indices[t + 1]],
                      mesh.vertices[mesh.indices[t + 2]]) /
                2.0;
    }
    return area;
}

// Index range, distinct and used vertices, positive triangles.
void ExpectValidMesh(const FillMesh& mesh)
{
    ASSERT_EQ(mesh.indices.size() % 3, 0u);
    std::vector<char> used(mesh.vertices.size(), 0);
    for (uint32_t index : mesh.indices) {
        ASSERT_LT(index, mesh.vertices.size());
        used[index] = 1;
    }
    EXPECT_EQ(std::count(used.begin(), used.end(), 0), 0) << "unused vertices";
    std::set<std::pair<float, float>> distinct;
    for (const V2& v : mesh.vertices) {
        ASSERT_TRUE(std::isfinite(v.X()) && std::isfinite(v.Y()));
        distinct.emplace(v.X(), v.Y());
    }
    EXPECT_EQ(distinct.size(), mesh.vertices.size()) << "repeated vertices";
    for (size_t t = 0; t < mesh.indices.size(); t += 3) {
        ASSERT_GT(Cross(mesh.vertices[mesh.indices[t]], mesh.vertices[mesh.indices[t + 1]],
                        mesh.vertices[mesh.indices[t + 2]]),
                  0.0)
            << "triangle " << t / 3;
    }
}

// Winding number of p and whether p is within `margin` of an edge.
std::pair<int, bool> Winding(const Contours& contours, double px, double py, double margin)
{
    int w = 0;
    bool near = false;
    for (const Contour& c : contours) {
        for (size_t i = 0; i < c.size(); ++i) {
            const double ax = c[i].X(), ay = c[i].Y();
            const double bx = c[(i + 1) % c.size()].X(), by = c[(i + 1) % c.size()].Y();
            const double dx = bx - ax, dy = by - ay;
            const double len2 = dx * dx + dy * dy;
            const double t = len2 > 0 ? std::clamp(((px - ax) * dx + (py - ay) * dy) / len2, 0.0, 1.0) : 0.0;
            if (std::hypot(ax + t * dx - px, ay + t * dy - py) < margin) {
                near = true;
            }
            const double side = dx * (py - ay) - dy * (px - ax);
            if (ay <= py && by > py && side > 0) {
                ++w;
            } else if (by <= py && ay > py && side < 0) {
                --w;
            }
        }
    }
    return {w, near};
}

// Samples a jittered grid over the contours' bounds; each point away from the
// edges must lie in exactly as many triangles as the rule says (0 or 1).
void ExpectCoverage(const Contours& contours, WindingRule rule, const FillMesh& mesh, int samples = 48)
{
    double x0 = 1e300, y0 = 1e300, x1 = -1e300, y1 = -1e300;
    for (const Contour& c : contours) {
        for (const V2& p : c) {
            x0 = std::min(x0, double(p.X()));
            x1 = std::max(x1, double(p.X()));
            y0 = std::min(y0, double(p.Y()));
            y1 = std::max(y1, double(p.Y()));
        }
    }
    const double size = std::max(x1 - x0, y1 - y0);
    const double margin = size * 1e-5;
    std::mt19937 rng(99);
    std::uniform_real_distribution<double> jitter(0.0, 1.0);
    int checked = 0;
    for (int i = 0; i < samples; ++i) {
        for (int j = 0; j < samples; ++j) {
            const double px = x0 + (x1 - x0) * (i + jitter(rng)) / samples;
            const double py = y0 + (y1 - y0) * (j + jitter(rng)) / samples;
            const auto [w, near] = Winding(contours, px, py, margin);
            if (near) {
                continue;
            }
            int inside = 0;
            const V2 p{static_cast<float>(px), static_cast<float>(py)};
            for (size_t t = 0; t < mesh.indices.size(); t += 3) {
                const V2 a = mesh.vertices[mesh.indices[t]];
                const V2 b = mesh.vertices[mesh.indices[t + 1]];
                const V2 c = mesh.vertices[mesh.indices[t + 2]];
                if (Cross(a, b, p) > 0 && Cross(b, c, p) > 0 && Cross(c, a, p) > 0) {
                    ++inside;
                }
            }
            ++checked;
            ASSERT_EQ(inside, Covers(rule, w) ? 1 : 0) << "at (" << px << ", " << py << "), winding " << w;
        }
    }
    EXPECT_GT(checked, samples * samples / 2);
}

void ExpectFill(const Contours& contours, int samples = 40)
{
    for (WindingRule rule : kRules) {
        SCOPED_TRACE("rule " + std::to_string(int(rule)));
        FillMesh mesh;
        std::string error;
        ASSERT_TRUE(TessellateFill(contours, rule, mesh, &error)) << error;
        ExpectValidMesh(mesh);
        ExpectCoverage(contours, rule, mesh, samples);
    }
}

Contour Circle(double cx, double cy, double r, int n, bool clockwise = false)
{
    Contour c;
    for (int i = 0; i < n; ++i) {
        const double a = 2.0 * kPi * i / n * (clockwise ? -1.0 : 1.0);
        c.emplace_back(float(cx + r * std::cos(a)), float(cy + r * std::sin(a)));
    }
    return c;
}

Contour Star(std::mt19937& rng, size_t n, double cx, double cy, double rMin, double rMax, double angleJitter = 0.0)
{
    std::uniform_real_distribution<double> radius(rMin, rMax);
    std::uniform_real_distribution<double> jitter(-angleJitter, angleJitter);
    Contour c;
    for (size_t i = 0; i < n; ++i) {
        const double a = 2.0 * kPi * (double(i) + jitter(rng)) / double(n);
        const double r = radius(rng);
        c.emplace_back(float(cx + r * std::cos(a)), float(cy + r * std::sin(a)));
    }
    return c;
}

TEST(TessellateFill, EmptyInputGivesEmptyMesh)
{
    FillMesh mesh;
    mesh.indices = {1, 2, 3};
    EXPECT_TRUE(TessellateFill(Contours{}, WindingRule::NonZero, mesh));
    EXPECT_TRUE(mesh.vertices.empty());
    EXPECT_TRUE(mesh.indices.empty());
    EXPECT_TRUE(TessellateFill(Contours{{}, {V2(1, 1)}, {V2(0, 0), V2(1, 1), V2(2, 2)}}, WindingRule::NonZero, mesh));
    EXPECT_TRUE(mesh.indices.empty());
}

TEST(TessellateFill, NonFiniteCoordinateIsRejected)
{
    FillMesh mesh;
    std::string error;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(
        TessellateFill(Contours{{V2(0, 0), V2(1, 0), V2(1, 1), V2(0, nan)}}, WindingRule::NonZero, mesh, &error));
    EXPECT_EQ(error, "Contour 0 point 3 is not finite");
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_FALSE(
        TessellateFill({V2(0, 0), V2(inf, 0), V2(1, 1)}, {0, 1, 1, 2, 2, 0}, WindingRule::EvenOdd, mesh, &error));
    EXPECT_EQ(error, "Point 1 is not finite");
}

TEST(TessellateFill, BadEdgeListsAreRejected)
{
    FillMesh mesh;
    std::string error;
    const std::vector<V2> points{V2(0, 0), V2(1, 0), V2(1, 1)};
    EXPECT_FALSE(TessellateFill(points, {0, 1, 1}, WindingRule::NonZero, mesh, &error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(TessellateFill(points, {0, 1, 1, 3}, WindingRule::NonZero, mesh, &error));
    EXPECT_NE(error.find("point 3"), std::string::npos) << error;
}

TEST(TessellateFill, EdgesChainIntoLoopsInAnyOrder)
{
    // Two squares, the outer one's edges shuffled, the inner one left open.
    const std::vector<V2> points{V2(0, 0), V2(10, 0), V2(10, 10), V2(0, 10), V2(2, 2), V2(2, 8), V2(8, 8), V2(8, 2)};
    const std::vector<uint32_t> edges{2, 3, 0, 1, 3, 0, 1, 2, 4, 5, 5, 6, 6, 7};
    FillMesh mesh;
    ASSERT_TRUE(TessellateFill(points, edges, WindingRule::NonZero, mesh));
    ExpectValidMesh(mesh);
    EXPECT_NEAR(MeshArea(mesh), 100.0 - 36.0, 1e-9);
    EXPECT_EQ(mesh.indices.size() / 3, 8u);
}

TEST(TessellateFill, PositiveAndNegativeFollowTheDirection)
{
    const Contour ccw{V2(0, 0), V2(4, 0), V2(4, 3), V2(0, 3)};
    const Contour cw(ccw.rbegin(), ccw.rend());
    FillMesh mesh;
    ASSERT_TRUE(TessellateFill(Contours{ccw}, WindingRule::Positive, mesh));
    EXPECT_NEAR(MeshArea(mesh), 12.0, 1e-9);
    ASSERT_TRUE(TessellateFill(Contours{ccw}, WindingRule::Negative, mesh));
    EXPECT_TRUE(mesh.indices.empty());
    ASSERT_TRUE(TessellateFill(Contours{cw}, WindingRule::Negative, mesh));
    EXPECT_NEAR(MeshArea(mesh), 12.0, 1e-9);
    ExpectValidMesh(mesh);
}

TEST(TessellateFill, RingInTheSameDirection)
{
    const Contour outer = Circle(0, 0, 10, 96);
    const Contour inner = Circle(0, 0, 5, 64);
    FillMesh mesh;
    ASSERT_TRUE(TessellateFill(Contours{outer, inner}, WindingRule::NonZero, mesh));
    ExpectValidMesh(mesh);
    EXPECT_NEAR(MeshArea(mesh), ShoelaceArea(outer), 1e-4 * ShoelaceArea(outer));
    EXPECT_EQ(mesh.indices.size() / 3, 94u);
    ASSERT_TRUE(TessellateFill(Contours{outer, inner}, WindingRule::EvenOdd, mesh));
    ExpectValidMesh(mesh);
    const double ring = ShoelaceArea(outer) - ShoelaceArea(inner);
    EXPECT_NEAR(MeshArea(mesh), ring, 1e-4 * ring);
    EXPECT_EQ(mesh.indices.size() / 3, 96u + 64u);
}

TEST(TessellateFill, RingInOppositeDirections)
{
    const Contour outer = Circle(0, 0, 10, 96);
    const Contour inner = Circle(0, 0, 5, 64, true);
    const double ring = ShoelaceArea(outer) + ShoelaceArea(inner);
    for (WindingRule rule : {WindingRule::NonZero, WindingRule::EvenOdd}) {
        FillMesh mesh;
        ASSERT_TRUE(TessellateFill(Contours{outer, inner}, rule, mesh));
        ExpectValidMesh(mesh);
        EXPECT_NEAR(MeshArea(mesh), ring, 1e-4 * ring);
        EXPECT_EQ(mesh.indices.size() / 3, 96u + 64u - 2u + 2u);
    }
}

TEST(TessellateFill, StarWithHolesHasTheExpectedTriangleCount)
{
    std::mt19937 rng(7);
    Contours contours{Star(rng, 400, 0, 0, 95, 100)};
    size_t vertices = 400;
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 5; ++j) {
            Contour hole = Star(rng, 12, -50 + 20 * i + 10, -50 + 20 * j + 10, 3, 8);
            std::reverse(hole.begin(), hole.end());
            contours.push_back(hole);
            vertices += hole.size();
        }
    }
    FillMesh mesh;
    ASSERT_TRUE(TessellateFill(contours, WindingRule::NonZero, mesh));
    ExpectValidMesh(mesh);
    EXPECT_EQ(mesh.vertices.size(), vertices);
    EXPECT_EQ(mesh.indices.size() / 3, vertices - 2 + 2 * 25);
    double area = 0.0;
    for (const Contour& c : contours) {
        area += ShoelaceArea(c);
    }
    EXPECT_NEAR(MeshArea(mesh), area, 1e-4 * area);
    ExpectCoverage(contours, WindingRule::NonZero, mesh);
}

TEST(TessellateFill, RandomSelfIntersectingPolygons)
{
    std::mt19937 rng(11);
    for (size_t n : {10u, 30u, 100u}) {
        std::uniform_real_distribution<float> coord(-100.0f, 100.0f);
        Contour c;
        for (size_t i = 0; i < n; ++i) {
            c.emplace_back(coord(rng), coord(rng));
        }
        SCOPED_TRACE(n);
        ExpectFill(Contours{c});
    }
    // Large ones with local crossings only, so that they stay quick.
    for (size_t n : {1000u, 5000u}) {
        SCOPED_TRACE(n);
        ExpectFill(Contours{Star(rng, n, 0, 0, 20, 100, 3.0)}, 24);
    }
}

TEST(TessellateFill, OverlappingStarsAndRings)
{
    std::mt19937 rng(5);
    Contours contours;
    for (int i = 0; i < 6; ++i) {
        std::uniform_real_distribution<double> centre(-30, 30);
        Contour star = Star(rng, 40, centre(rng), centre(rng), 10, 40);
        if (i % 2) {
            std::reverse(star.begin(), star.end());
        }
        contours.push_back(star);
        contours.push_back(Circle(centre(rng), centre(rng), 25, 50, i % 3 == 0));
    }
    ExpectFill(contours);
}

TEST(TessellateFill, GridOfTouchingSquares)
{
    Contours contours;
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < 6; ++j) {
            if ((i + j) % 2 == 0) { // a checkerboard: squares touch at corners only
                contours.push_back({V2(float(i), float(j)), V2(float(i + 1), float(j)), V2(float(i + 1), float(j + 1)),
                                    V2(float(i), float(j + 1))});
            }
        }
    }
    ExpectFill(contours);
    // All squares: shared edges cancel or merge depending on the rule.
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < 6; ++j) {
            if ((i + j) % 2 == 1) {
                contours.push_back({V2(float(i), float(j)), V2(float(i), float(j + 1)), V2(float(i + 1), float(j + 1)),
                                    V2(float(i + 1), float(j))});
            }
        }
    }
    ExpectFill(contours);
    FillMesh mesh;
    ASSERT_TRUE(TessellateFill(contours, WindingRule::NonZero, mesh));
    EXPECT_NEAR(MeshArea(mesh), 36.0, 1e-9);
}

TEST(TessellateFill, NearDegenerateInput)
{
    // Collinear runs, repeated points, a vertex on another edge, a spike and
    // a hole that touches the outline at a vertex.
    const Contours contours{
        {V2(0, 0), V2(1, 0), V2(2, 0), V2(2, 0), V2(4, 0), V2(4, 4), V2(4, 4), V2(2, 4), V2(0, 4), V2(0, 2)},
        {V2(2, 0), V2(3, 2), V2(1, 2)},
        {V2(4, 2), V2(6, 2), V2(4, 2.5f)},
        {V2(0, 4), V2(-1, 6), V2(0, 4), V2(1, 6)},
        {V2(0, 0), V2(0, 0), V2(0, 0)},
        {V2(1, 1), V2(2, 1), V2(3, 1)},
    };
    ExpectFill(contours, 60);
}

TEST(TessellateFill, TinyAndHugeCoordinates)
{
    for (float scale : {1e-30f, 1e-3f, 1e6f, 1e30f}) {
        SCOPED_TRACE(scale);
        Contours contours{{V2(0, 0), V2(3 * scale, 0), V2(0, 3 * scale)},
                          {V2(scale, scale), V2(-scale, scale), V2(scale, -scale)}};
        ExpectFill(contours, 20);
    }
}

// Proper crossings between edges of the closed rings, counted pair by pair
// in exact integer arithmetic.
size_t CountCrossings(const std::vector<std::vector<vk::svg::impl::GridPoint>>& rings)
{
    using vk::svg::impl::GridPoint;
    struct Seg {
        GridPoint a, b;
    };
    std::vector<Seg> segs;
    for (const auto& ring : rings) {
        for (size_t i = 0; i < ring.size(); ++i) {
            segs.push_back({ring[i], ring[(i + 1) % ring.size()]});
        }
    }
    const auto cross = [](GridPoint a, GridPoint b, GridPoint c) {
        const int64_t v = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
        return (v > 0) - (v < 0);
    };
    size_t count = 0;
    for (size_t i = 0; i < segs.size(); ++i) {
        for (size_t j = i + 1; j < segs.size(); ++j) {
            const Seg& s = segs[i];
            const Seg& t = segs[j];
            if (cross(s.a, s.b, t.a) * cross(s.a, s.b, t.b) < 0 && cross(t.a, t.b, s.a) * cross(t.a, t.b, s.b) < 0) {
                ++count;
            }
        }
    }
    return count;
}

vk::svg::impl::RingSet Flatten(const std::vector<std::vector<vk::svg::impl::GridPoint>>& rings)
{
    vk::svg::impl::RingSet set;
    for (const auto& ring : rings) {
        set.points.insert(set.points.end(), ring.begin(), ring.end());
        set.ends.push_back(static_cast<uint32_t>(set.points.size()));
    }
    return set;
}

size_t Distinct(const std::vector<vk::svg::impl::GridPoint>& points)
{
    std::set<std::pair<int64_t, int64_t>> distinct;
    for (const auto& p : points) {
        distinct.emplace(p.x, p.y);
    }
    return distinct.size();
}

TEST(TessellateFillInternals, RadixSortAgreesWithStdSort)
{
    using vk::svg::impl::KeyedIndex;
    std::mt19937_64 rng(21);
    for (int bits : {0, 1, 8, 9, 17, 33, 52, 60, 64}) {
        for (size_t n : {0u, 1u, 63u, 64u, 65u, 1000u}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(n) + " keys");
            const uint64_t mask = bits == 64 ? ~uint64_t(0) : (uint64_t(1) << bits) - 1;
            std::vector<KeyedIndex> items(n);
            for (size_t i = 0; i < n; ++i) {
                // Few distinct high bytes, so that some passes are skipped.
                items[i] = {(rng() & mask) & (i % 3 == 0 ? mask : (mask >> (bits / 2))), uint32_t(i)};
            }
            const std::vector<KeyedIndex> original = items;
            std::vector<KeyedIndex> scratch;
            vk::svg::impl::RadixSortByKey(items, scratch);
            std::vector<uint64_t> expected;
            for (const KeyedIndex& item : original) {
                expected.push_back(item.key);
            }
            std::sort(expected.begin(), expected.end());
            std::vector<char> seen(n, 0);
            for (size_t i = 0; i < n; ++i) {
                ASSERT_EQ(items[i].key, expected[i]);
                ASSERT_LT(items[i].index, n);
                ASSERT_EQ(original[items[i].index].key, items[i].key);
                ASSERT_FALSE(seen[items[i].index]);
                seen[items[i].index] = 1;
            }
        }
    }
}

// Rings on a coarse grid cross each other often and exactly through grid
// points, on a fine grid only at rounded points; either way the rings must
// end up touching only, after at most a few rounds, with at most one new
// point per crossing.
TEST(TessellateFillInternals, SplittingRemovesEveryCrossing)
{
    using vk::svg::impl::GridPoint;
    std::mt19937 rng(31);
    for (int64_t range : {int64_t(8), int64_t(1000), int64_t(1) << 24}) {
        for (int trial = 0; trial < 20; ++trial) {
            SCOPED_TRACE("range " + std::to_string(range) + ", trial " + std::to_string(trial));
            std::uniform_int_distribution<int64_t> coord(-range, range);
            std::vector<std::vector<GridPoint>> rings(1 + trial % 3);
            for (auto& ring : rings) {
                ring.resize(3 + size_t(rng() % 30));
                for (GridPoint& p : ring) {
                    p = {coord(rng), coord(rng)};
                }
            }
            const size_t crossings = CountCrossings(rings);
            vk::svg::impl::RingSet set = Flatten(rings);
            const size_t before = Distinct(set.points);
            vk::svg::impl::RingTriangulation result;
            vk::svg::impl::TriangulateRings(set, WindingRule::NonZero, true, result);
            if (range > 8) {
                EXPECT_EQ(result.crossed, crossings > 0);
            }
            size_t rounds = 0;
            while (result.crossed && rounds < 3 && vk::svg::impl::SplitAtCrossings(set, size_t(1) << 24)) {
                ++rounds;
                vk::svg::impl::TriangulateRings(set, WindingRule::NonZero, true, result);
            }
            EXPECT_FALSE(result.crossed);
            EXPECT_TRUE(result.consistent);
            std::vector<std::vector<GridPoint>> split;
            for (size_t r = 0, begin = 0; r < set.ends.size(); begin = set.ends[r++]) {
                split.emplace_back(set.points.begin() + std::ptrdiff_t(begin),
                                   set.points.begin() + std::ptrdiff_t(set.ends[r]));
            }
            EXPECT_EQ(CountCrossings(split), 0u);
            if (range > 8) {
                // Collinear overlaps are unlikely this far apart, so every new
                // position is a crossing (put into both edges).
                EXPECT_LE(Distinct(set.points), before + crossings);
            }
        }
    }
}

// Enough edges for the pair search to work in strips, long ones among them.
TEST(TessellateFillInternals, SplittingInStripsFindsEveryCrossing)
{
    using vk::svg::impl::GridPoint;
    std::mt19937 rng(37);
    std::uniform_real_distribution<double> jitter(-4.0, 4.0);
    std::uniform_real_distribution<double> radius(1e5, 1e6);
    const size_t n = 3000;
    std::vector<GridPoint> ring;
    for (size_t i = 0; i < n; ++i) {
        const double a = 2.0 * kPi * (double(i) + jitter(rng)) / double(n);
        const double r = radius(rng);
        ring.push_back({std::llround(r * std::cos(a)), std::llround(r * std::sin(a))});
    }
    const size_t crossings = CountCrossings({ring});
    ASSERT_GT(crossings, n / 4);
    vk::svg::impl::RingSet set = Flatten({ring});
    ASSERT_TRUE(vk::svg::impl::SplitAtCrossings(set, size_t(1) << 24));
    // Every crossing went in, at one new position each; what rounding bent
    // is left for a later round.
    EXPECT_EQ(set.points.size(), n + 2 * crossings);
    EXPECT_LE(Distinct(set.points), n + crossings);
    EXPECT_LT(CountCrossings({set.points}), crossings / 100 + 1);
}

TEST(TessellateFillInternals, SplittingGivesUpPastItsBudget)
{
    using vk::svg::impl::GridPoint;
    // Two crossing squares: 8 edges, 2 crossings.
    vk::svg::impl::RingSet set = Flatten({{{0, 0}, {4, 0}, {4, 4}, {0, 4}}, {{2, 2}, {6, 2}, {6, 6}, {2, 6}}});
    const std::vector<GridPoint> points = set.points;
    EXPECT_FALSE(vk::svg::impl::SplitAtCrossings(set, 1));
    EXPECT_EQ(set.points.size(), points.size());
    EXPECT_TRUE(vk::svg::impl::SplitAtCrossings(set, 1000));
    // Each crossing goes into both squares.
    EXPECT_EQ(set.points.size(), points.size() + 4);
}

TEST(TessellateFill, PartlyOverlappingEdges)
{
    // Edges along one line that overlap in part, in the same direction and
    // in opposite ones, together with crossings.
    const Contours contours{
        {V2(0, 0), V2(4, 0), V2(4, 2), V2(0, 2)},
        {V2(6, 0), V2(6, -2), V2(2, -2), V2(2, 0)},
        {V2(1, 0), V2(3, 0), V2(3, 3), V2(1, 3)},
        {V2(3, 1), V2(7, 1), V2(7, 0), V2(-1, 0), V2(-1, 1)},
    };
    ExpectFill(contours, 60);
}

// On whole-number coordinates the grid keeps every crossing exact enough
// to count: the mesh has at most one vertex per input point and crossing.
TEST(TessellateFill, OneNewVertexPerCrossing)
{
    std::mt19937 rng(41);
    for (size_t n : {50u, 400u, 2000u}) {
        SCOPED_TRACE(n);
        std::uniform_real_distribution<double> jitter(-3.0, 3.0);
        std::uniform_int_distribution<int> radius(200, 1000);
        std::vector<vk::svg::impl::GridPoint> ring;
        Contour contour;
        for (size_t i = 0; i < n; ++i) {
            const double a = 2.0 * kPi * (double(i) + jitter(rng)) / double(n);
            const int r = radius(rng);
            const int64_t x = std::lround(r * std::cos(a));
            const int64_t y = std::lround(r * std::sin(a));
            ring.push_back({x, y});
            contour.emplace_back(float(x), float(y));
        }
        const size_t crossings = CountCrossings({ring});
        EXPECT_GT(crossings, n / 10);
        for (WindingRule rule : kRules) {
            FillMesh mesh;
            ASSERT_TRUE(TessellateFill(Contours{contour}, rule, mesh));
            ExpectValidMesh(mesh);
            EXPECT_LE(mesh.vertices.size(), n + crossings);
        }
        if (n <= 400) {
            ExpectFill(Contours{contour}, 30);
        }
    }
}

} // namespace
