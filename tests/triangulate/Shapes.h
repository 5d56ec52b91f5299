#ifndef VKSVG_TESTS_TRIANGULATE_SHAPES_H
#define VKSVG_TESTS_TRIANGULATE_SHAPES_H

// Generated outlines for the triangulation tests, all simple by construction.

#include <wm4/Wm4Vector2.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace shapes {

using V2 = Wm4::Vector2<float>;
using Ring = std::vector<V2>;

inline constexpr double kPi = 3.14159265358979323846;

struct Outline {
    std::vector<V2> points;
    std::vector<unsigned int> edges;
};

// Appends a closed contour, in either direction.
inline void AddRing(Outline& outline, const Ring& ring, bool reversed = false)
{
    const auto base = static_cast<unsigned int>(outline.points.size());
    const auto n = static_cast<unsigned int>(ring.size());
    for (unsigned int i = 0; i < n; ++i) {
        outline.points.push_back(ring[reversed ? n - 1 - i : i]);
    }
    for (unsigned int i = 0; i < n; ++i) {
        outline.edges.push_back(base + i);
        outline.edges.push_back(base + (i + 1) % n);
    }
}

inline Ring Square(float x0, float y0, float x1, float y1) { return {V2(x0, y0), V2(x1, y0), V2(x1, y1), V2(x0, y1)}; }

// Star-shaped around `center`: evenly spread angles, independent radii.
inline Ring Star(std::mt19937& rng, std::size_t n, V2 center, float rMin, float rMax)
{
    std::uniform_real_distribution<float> radius(rMin, rMax);
    Ring ring;
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = 2.0 * kPi * double(i) / double(n);
        const float r = radius(rng);
        ring.emplace_back(center.X() + r * float(std::cos(angle)), center.Y() + r * float(std::sin(angle)));
    }
    return ring;
}

// A band whose top and bottom are random walks over increasing x, so that
// horizontal lines cross the outline many times.
inline Ring RandomWalk(std::mt19937& rng, std::size_t n, float width)
{
    const std::size_t half = std::max<std::size_t>(n / 2, 2);
    std::uniform_real_distribution<float> step(-0.08f, 0.08f);
    Ring top;
    Ring bottom;
    float up = 1.0f;
    float down = 1.0f;
    for (std::size_t i = 0; i < half; ++i) {
        const float x = width * float(i) / float(half - 1);
        up = std::clamp(up + step(rng), 0.1f, 2.0f);
        down = std::clamp(down + step(rng), 0.1f, 2.0f);
        top.emplace_back(x, up);
        bottom.emplace_back(x, -down);
    }
    Ring ring(bottom.begin(), bottom.end());
    ring.insert(ring.end(), top.rbegin(), top.rend());
    return ring;
}

// The least and the greatest coordinate on each axis.
inline std::pair<V2, V2> Bounds(const std::vector<V2>& points)
{
    V2 lo = points[0];
    V2 hi = points[0];
    for (const V2& p : points) {
        for (int c = 0; c < 2; ++c) {
            lo[c] = std::min(lo[c], p[c]);
            hi[c] = std::max(hi[c], p[c]);
        }
    }
    return {lo, hi};
}

inline double ShoelaceArea(const Ring& ring)
{
    double twice = 0.0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const V2& a = ring[i];
        const V2& b = ring[(i + 1) % ring.size()];
        twice += double(a.X()) * double(b.Y()) - double(b.X()) * double(a.Y());
    }
    return std::fabs(twice) / 2.0;
}

inline double MeshArea(const std::vector<V2>& points, const std::vector<unsigned int>& triangles)
{
    double sum = 0.0;
    for (std::size_t i = 0; i + 2 < triangles.size(); i += 3) {
        const V2& a = points[triangles[i]];
        const V2& b = points[triangles[i + 1]];
        const V2& c = points[triangles[i + 2]];
        sum += std::fabs((double(b.X()) - a.X()) * (double(c.Y()) - a.Y()) -
                         (double(c.X()) - a.X()) * (double(b.Y()) - a.Y())) /
               2.0;
    }
    return sum;
}

} // namespace shapes

#endif
