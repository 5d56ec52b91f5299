#ifndef VKSVG_TESSELLATE_FLATTEN_H
#define VKSVG_TESSELLATE_FLATTEN_H

#include <wm4/Wm4Matrix3.h>
#include <wm4/Wm4Vector2.h>

#include <cstddef>
#include <vector>

// Flattening by tolerance: curves and arcs become polylines whose distance
// to the exact curve is at most the tolerance. Counts grow like
// sqrt(size / tolerance), so a curve ten thousand times larger costs a
// hundred times more points, not ten thousand.
//
// A tolerance that is not a positive number (zero, negative, NaN) is taken
// as unbounded and gives the coarsest polyline. Non-finite geometry gives the
// coarsest polyline too: there is nothing sensible to refine. Every curve is
// capped at kMaxFlattenSteps steps; past the cap the tolerance is no longer
// met, which only happens for curves about 10^9 tolerances across.
namespace vk::svg::impl {

constexpr std::size_t kMaxFlattenSteps = std::size_t{1} << 16;

// Appends the polyline of the cubic Bezier p0..p3 without p0, ending with p3
// itself. Steps are uniform in the parameter. Returns the number of points
// appended (at least 1).
std::size_t FlattenCubic(const Wm4::Vector2<float>& p0, const Wm4::Vector2<float>& p1, const Wm4::Vector2<float>& p2,
                         const Wm4::Vector2<float>& p3, float tolerance, std::vector<Wm4::Vector2<float>>& out);

// The point at `angle` (radians) of the ellipse with the given centre, radii
// and rotation (radians), mapped by `transform` as an affine map
// (x' = m00 x + m01 y + m02). Evaluated in double, so it is the exact
// reference for FlattenArc's end points.
Wm4::Vector2<float> MapArcPoint(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float rotation,
                                double angle, const Wm4::Matrix3<float>& transform);

// Appends the polyline of the arc from startAngle through deltaAngle (signed,
// radians) mapped by `transform`, without its start point and ending with
// MapArcPoint(..., double(startAngle) + double(deltaAngle), transform). The
// tolerance holds in the mapped space. Steps are equal in angle and never
// wider than a quarter turn. Returns the number of points appended (at least
// 1).
std::size_t FlattenArc(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float rotation,
                       float startAngle, float deltaAngle, const Wm4::Matrix3<float>& transform, float tolerance,
                       std::vector<Wm4::Vector2<float>>& out);

// The number of equal steps a full circle of `radius` needs for `tolerance`:
// at least 4, at most kMaxFlattenSteps. The same count FlattenArc gives a full
// turn of that circle under the identity.
unsigned CircleSteps(float radius, float tolerance);

} // namespace vk::svg::impl

#endif
