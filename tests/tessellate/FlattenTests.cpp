// Flattening by tolerance: random cubics and mapped arcs stay within the
// tolerance, end exactly, and cost points like sqrt(size / tolerance).
#include "tessellate/Flatten.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

using namespace vk::svg::impl;
using V = Wm4::Vector2<float>;
using M = Wm4::Matrix3<float>;

namespace {

constexpr double kTau = 6.283185307179586;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();
const M kIdentity(1, 0, 0, 0, 1, 0, 0, 0, 1);

double SegmentDistance(double px, double py, V a, V b)
{
    const double dx = b.X() - a.X(), dy = b.Y() - a.Y(), len2 = dx * dx + dy * dy;
    const double t = len2 > 0 ? std::clamp(((px - a.X()) * dx + (py - a.Y()) * dy) / len2, 0.0, 1.0) : 0.0;
    return std::hypot(px - a.X() - t * dx, py - a.Y() - t * dy);
}

// The largest distance from 3000 samples of curve(t), t in [0, 1], to the
// polyline, less the slack that float output coordinates cost.
double Excess(const std::function<std::pair<double, double>(double)>& curve, const std::vector<V>& line, double tol)
{
    double worst = 0, extent = 0;
    for (int i = 0; i <= 3000; ++i) {
        const auto [x, y] = curve(i / 3000.0);
        double best = std::numeric_limits<double>::max();
        for (std::size_t j = 0; j + 1 < line.size(); ++j)
            best = std::min(best, SegmentDistance(x, y, line[j], line[j + 1]));
        worst = std::max(worst, best);
        extent = std::max({extent, std::fabs(x), std::fabs(y)});
    }
    return worst - tol * (1 + 1e-5) - 4e-7 * extent;
}

struct Arc {
    V center, radii;
    float rotation, start, sweep;
    M m;
    std::size_t flatten(float tol, std::vector<V>& out) const
    {
        return FlattenArc(center, radii, rotation, start, sweep, m, tol, out);
    }
    V at(double t) const { return MapArcPoint(center, radii, rotation, start + t * double(sweep), m); }
    std::pair<double, double> exact(double t) const
    {
        const double a = start + t * double(sweep), c = std::cos(rotation), s = std::sin(rotation);
        const double x = center.X() + radii.X() * std::cos(a) * c - radii.Y() * std::sin(a) * s;
        const double y = center.Y() + radii.X() * std::cos(a) * s + radii.Y() * std::sin(a) * c;
        return {m(0, 0) * x + m(0, 1) * y + m(0, 2), m(1, 0) * x + m(1, 1) * y + m(1, 2)};
    }
};

// Eccentric up to 10000:1, under maps that may reflect or be singular.
Arc RandomArc(std::mt19937& rng, float scale)
{
    std::uniform_real_distribution<float> u(-1, 1);
    const float a = 3 * u(rng), b = 3 * u(rng), c = 3 * u(rng), d = rng() % 8 ? 3 * u(rng) : b * c / a;
    const V center{100 * u(rng), 100 * u(rng)}, radii{scale, scale * std::pow(10.0f, 3 * u(rng) - 1)};
    const float rotation = 4 * u(rng), start = 7 * u(rng), sweep = float(kTau) * u(rng);
    return {center, radii, rotation, start, sweep, M{a, b, 50 * u(rng), c, d, 50 * u(rng), 0, 0, 1}};
}

// Ceilings aside, a hundred times the size costs ten times the points.
void ExpectTenfold(std::size_t n1, std::size_t n100)
{
    if (n1 >= 20) {
        EXPECT_GE(n100, 9 * n1);
        EXPECT_LE(n100, 11 * n1);
    }
}

TEST(FlattenTests, CubicsStayWithinTolerance)
{
    std::mt19937 rng(7);
    std::uniform_real_distribution<float> u(-1, 1);
    for (int k = 0; k < 300; ++k) {
        const float scale = std::pow(10.0f, 5 * u(rng)); // 1e-5 .. 1e5
        V p[4];
        for (V& q : p)
            q = V{scale * u(rng), scale * u(rng)};
        const float tol = scale * std::pow(10.0f, 1.5f * u(rng) - 2.5f);
        if (k % 5 == 1) { // collinear, controls past the ends
            p[1] = p[0] + 1.7f * (p[3] - p[0]);
            p[2] = p[0] - 0.6f * (p[3] - p[0]);
        }
        if (k % 5 == 2) // B'(1/2) = 0: a cusp
            p[2] = p[1] + p[0] - p[3];
        if (k % 5 == 3) // coincident controls
            p[2] = p[1] = p[0];
        if (k % 5 == 4) { // nearly flat: controls a few tolerances off the chord
            p[1] = p[0] + 0.3f * (p[3] - p[0]) + V{3 * tol * u(rng), 3 * tol * u(rng)};
            p[2] = p[0] + 0.7f * (p[3] - p[0]) + V{3 * tol * u(rng), 3 * tol * u(rng)};
        }
        std::vector<V> line{p[0]};
        const std::size_t n = FlattenCubic(p[0], p[1], p[2], p[3], tol, line);
        ASSERT_EQ(n + 1, line.size());
        EXPECT_EQ(line.back(), p[3]);
        const auto bezier = [&](double t) {
            const double v = 1 - t, b[4] = {v * v * v, 3 * v * v * t, 3 * v * t * t, t * t * t};
            return std::make_pair(b[0] * p[0].X() + b[1] * p[1].X() + b[2] * p[2].X() + b[3] * p[3].X(),
                                  b[0] * p[0].Y() + b[1] * p[1].Y() + b[2] * p[2].Y() + b[3] * p[3].Y());
        };
        EXPECT_LE(Excess(bezier, line, tol), 0) << k;
    }
}

TEST(FlattenTests, MappedArcsStayWithinTolerance)
{
    std::mt19937 rng(5);
    for (int k = 0; k < 300; ++k) {
        const double scale = std::pow(10.0, rng() % 9 - 4.0);
        const Arc arc = RandomArc(rng, float(scale));
        const float tol = float(scale * std::pow(10.0, -3.0 * (rng() % 1000) / 1000 - 0.5));
        std::vector<V> line{arc.at(0)};
        const std::size_t n = arc.flatten(tol, line);
        ASSERT_EQ(n + 1, line.size());
        EXPECT_EQ(line.back(), arc.at(1));
        EXPECT_LE(Excess([&](double t) { return arc.exact(t); }, line, tol), 0) << k;
    }
}

TEST(FlattenTests, CountsGrowWithSquareRootOfSize)
{
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> u(0, 1);
    std::vector<V> out;
    for (int k = 0; k < 200; ++k) {
        const V p[4] = {V{u(rng), u(rng)}, V{u(rng), u(rng)}, V{u(rng), u(rng)}, V{u(rng), u(rng)}};
        // Second differences within a unit box stay below 2 sqrt 2.
        EXPECT_LE(FlattenCubic(p[0], p[1], p[2], p[3], 0.25f, out), 3u);
        ExpectTenfold(FlattenCubic(p[0], p[1], p[2], p[3], 1e-3f, out),
                      FlattenCubic(100.0f * p[0], 100.0f * p[1], 100.0f * p[2], 100.0f * p[3], 1e-3f, out));
        Arc arc = RandomArc(rng, 1);
        const std::size_t n1 = arc.flatten(1e-3f, out);
        arc.radii *= 100.0f;
        ExpectTenfold(n1, arc.flatten(1e-3f, out));
    }
    EXPECT_NEAR(CircleSteps(1e4f, 1e-3f) / double(CircleSteps(1, 1e-3f)), 100, 2);
}

TEST(FlattenTests, CircleStepsAreTight)
{
    std::vector<V> out;
    for (float r : {0.5f, 1.0f, 7.0f, 300.0f, 1e5f}) {
        const unsigned n = CircleSteps(r, 0.1f);
        EXPECT_EQ(FlattenArc(V(0, 0), V(r, r), 0, 0, float(kTau), kIdentity, 0.1f, out), n);
        EXPECT_LE(r * (1 - std::cos(kTau / 2 / n)), 0.1 * (1 + 1e-5));
        if (n > 4) { // one step fewer would break the tolerance
            EXPECT_GT(r * (1 - std::cos(kTau / 2 / (n - 1))), 0.1);
        }
    }
    EXPECT_EQ(CircleSteps(1, 10), 4u);
}

TEST(FlattenTests, BadInputStaysBounded)
{
    const V a(0, 0), b(0, 100), c(100, 100), d(100, 0);
    std::vector<V> out;
    for (float tol : {0.0f, -1.0f, kNaN, kInf}) {
        out.clear();
        EXPECT_EQ(FlattenCubic(a, b, c, d, tol, out), 1u);
        EXPECT_EQ(out.back(), d);
        EXPECT_EQ(FlattenArc(a, V(5, 3), 0, 0, float(kTau), kIdentity, tol, out), 4u); // quarter turns
        EXPECT_EQ(CircleSteps(5, tol), 4u);
    }
    EXPECT_EQ(FlattenCubic(a, V(kNaN, 0), c, d, 1, out), 1u);
    EXPECT_EQ(FlattenCubic(a, V(kInf, 0), c, d, 1, out), 1u);
    EXPECT_EQ(FlattenArc(a, V(5, 3), 0, kNaN, 1, kIdentity, 1, out), 1u);
    EXPECT_EQ(FlattenArc(a, V(kInf, 3), 0, 0, 1, kIdentity, 1, out), 1u);
    const V huge(3e38f, -3e38f);
    out.clear();
    EXPECT_EQ(FlattenCubic(a, huge, -1.0f * huge, d, std::numeric_limits<float>::denorm_min(), out), kMaxFlattenSteps);
    for (const V& p : out)
        EXPECT_TRUE(std::isfinite(p.X()) && std::isfinite(p.Y()));
    EXPECT_EQ(FlattenArc(a, V(1e30f, 1), 0, 0, 1e30f, kIdentity, 1e-30f, out), kMaxFlattenSteps);
    EXPECT_EQ(CircleSteps(1e30f, 1e-30f), kMaxFlattenSteps);
}

} // namespace
