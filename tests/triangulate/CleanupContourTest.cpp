#include <svg/Triangulation.h>

#include "Shapes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

using shapes::V2;
using Edges = std::vector<unsigned int>;

namespace {

std::vector<V2> Grid(std::initializer_list<float> xy) // x0, y0, x1, y1, ...
{
    std::vector<V2> points;
    for (auto p = xy.begin(); p + 1 < xy.end(); p += 2) {
        points.emplace_back(p[0], p[1]);
    }
    return points;
}

Edges Ring(std::initializer_list<unsigned int> order)
{
    const std::vector<unsigned int> v(order);
    Edges edges;
    for (std::size_t i = 0; i < v.size(); ++i) {
        edges.push_back(v[i]);
        edges.push_back(v[(i + 1) % v.size()]);
    }
    return edges;
}

bool SameBits(const std::vector<V2>& a, const std::vector<V2>& b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(V2)) == 0);
}

// The walk exactly as it reads: whole-list rewrites and erasures in place.
Edges ReferenceCleanup(const std::vector<V2>& points, Edges edges)
{
    const auto [lo, hi] = points.size() > 1 ? shapes::Bounds(points) : std::pair(V2(0, 0), V2(1, 1));
    const float inv[2] = {1.0f / (hi[0] - lo[0]), 1.0f / (hi[1] - lo[1])};
    std::vector<V2> u;
    for (const V2& p : points) {
        u.emplace_back((p.X() - lo[0]) * inv[0], (p.Y() - lo[1]) * inv[1]);
    }
    const auto isShort = [&](unsigned int a, unsigned int b) {
        return std::fabs(u[b].X() - u[a].X()) < 0.001f && std::fabs(u[b].Y() - u[a].Y()) < 0.001f;
    };
    const auto replaceAll = [&](unsigned int from, unsigned int to) {
        std::replace(edges.begin(), edges.end(), from, to);
    };
    std::size_t cursor = 0;
    long previous = -1;
    while (cursor < edges.size()) {
        const unsigned int a = edges[cursor];
        const unsigned int b = edges[cursor + 1];
        if (isShort(a, b)) {
            replaceAll(b, a);
            edges.erase(edges.begin() + long(cursor), edges.begin() + long(cursor) + 2);
            continue;
        }
        if (previous >= 0 && edges[std::size_t(previous) + 1] == a) {
            const V2& p0 = u[edges[std::size_t(previous)]];
            const float k = (u[a].X() - p0.X()) * (u[b].Y() - u[a].Y()) - (u[a].Y() - p0.Y()) * (u[b].X() - u[a].X());
            if (std::fabs(k) < 1.0000001e-6f) {
                replaceAll(a, b);
                edges.erase(edges.begin() + long(cursor), edges.begin() + long(cursor) + 2);
                continue;
            }
        }
        previous = long(cursor);
        cursor += 2;
    }
    if (!edges.empty() && isShort(edges.back(), edges.front())) {
        edges.back() = edges.front();
    }
    return edges;
}

} // namespace

TEST(CleanupContour, ExactCases)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    // A 2x2 square with the midpoint of every side.
    const auto square8 = Grid({0, 0, 1, 0, 2, 0, 2, 1, 2, 2, 1, 2, 0, 2, 0, 1});
    struct Case {
        std::string name;
        std::vector<V2> points;
        Edges edges;
        Edges expected;
    };
    const std::vector<Case> cases = {
        {"empty edge list", square8, {}, {}},
        {"empty point list", {}, {0, 1}, {0, 1}},
        {"odd edge list", square8, {0, 1, 1}, {0, 1, 1}},
        {"index out of range", square8, {0, 1, 1, 8}, {0, 1, 1, 8}},
        {"duplicated corner", Grid({0, 0, 1, 0, 1, 0, 1, 1, 0, 1}), Ring({0, 1, 2, 3, 4}), {0, 1, 1, 3, 3, 4, 4, 0}},
        {"midpoints from a corner", square8, Ring({0, 1, 2, 3, 4, 5, 6, 7}), {0, 2, 2, 4, 4, 6, 6, 0}},
        // The edges meeting at the starting midpoint are never compared.
        {"midpoints from a midpoint", square8, Ring({1, 2, 3, 4, 5, 6, 7, 0}), {1, 2, 2, 4, 4, 6, 6, 0, 0, 1}},
        {"doubling back merges too", Grid({0, 0, 4, 0, 2, 0, 2, 3}), Ring({0, 1, 2, 3}), {0, 2, 2, 3, 3, 0}},
        {"closing snap",
         Grid({0, 0, 10, 0, 10, 10, 0, 10, 0.005f, 0}),
         {0, 1, 1, 2, 2, 3, 3, 4},
         {0, 1, 1, 2, 2, 3, 3, 0}},
        {"short in a 1-wide shape", Grid({0, 0, 0.0005f, 0, 1, 1, 0, 1}), Ring({0, 1, 2, 3}), {0, 2, 2, 3, 3, 0}},
        {"not short in a 0.1-wide shape", Grid({0, 0, 0.0005f, 0, 0.1f, 0.1f, 0, 0.1f}), Ring({0, 1, 2, 3}),
         Ring({0, 1, 2, 3})},
        // No height: every normalised y is NaN, and nothing compares less.
        {"zero extent", Grid({0, 0, 0.0001f, 0, 1, 0}), Ring({0, 1, 2}), Ring({0, 1, 2})},
        {"NaN point", Grid({nan, 0, 0, 0, 1, 1}), Ring({0, 1, 2}), Ring({0, 1, 2})},
        // An unreferenced far point shrinks everything else into one spot.
        {"edge list empties", Grid({0, 0, 0.5f, 0.5f, 1000, 1000}), Ring({0, 1}), {}},
        // The dropped point is rewritten in the other contour as well.
        {"shared point",
         Grid({0, 0, 4, 0, 4, 4, 4, 0.001f, 8, 0, 8, 4}),
         {0, 1, 1, 3, 3, 2, 2, 0, 3, 4, 4, 5, 5, 3},
         {0, 1, 1, 2, 2, 0, 1, 4, 4, 5, 5, 1}},
    };
    for (const Case& c : cases) {
        std::vector<V2> points = c.points;
        Edges edges = c.edges;
        vk::CleanupContour(points, edges);
        EXPECT_EQ(edges, c.expected) << c.name;
        EXPECT_TRUE(SameBits(points, c.points)) << c.name;
    }
}

// Random outlines on a coarse grid (many duplicates, short and collinear
// edges, shared points) against the walk done literally.
TEST(CleanupContour, MatchesTheLiteralWalk)
{
    std::mt19937 rng(1234);
    for (int round = 0; round < 400; ++round) {
        std::uniform_int_distribution<int> coordinate(0, round % 2 == 0 ? 3 : 2000);
        const int pointCount = 2 + round % 40;
        std::vector<V2> points;
        for (int i = 0; i < pointCount; ++i) {
            points.emplace_back(float(coordinate(rng)), float(coordinate(rng)) * 0.5f);
        }
        std::uniform_int_distribution<unsigned int> index(0, unsigned(pointCount - 1));
        Edges edges;
        unsigned int at = index(rng);
        for (int i = 0; i < 3 * pointCount; ++i) { // mostly chained, sometimes jumping
            const unsigned int from = (i % 7 == 3) ? index(rng) : at;
            at = index(rng);
            edges.push_back(from);
            edges.push_back(at);
        }
        const Edges expected = ReferenceCleanup(points, edges);
        const std::vector<V2> before = points;
        vk::CleanupContour(points, edges);
        ASSERT_EQ(edges, expected) << round;
        ASSERT_TRUE(SameBits(points, before));
    }
}
