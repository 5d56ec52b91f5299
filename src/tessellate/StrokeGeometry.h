#ifndef VKSVG_TESSELLATE_STROKEGEOMETRY_H
#define VKSVG_TESSELLATE_STROKEGEOMETRY_H

#include <cmath>

// The double-precision plane in which strokes are built: float input is
// exact in it, and offsets, miters and dash positions keep their precision
// until the final mapping rounds them to float once.
namespace vk::svg::impl {

struct Point {
    double x = 0.0;
    double y = 0.0;
};

inline Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
inline Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
inline Point operator*(Point a, double s) { return {a.x * s, a.y * s}; }
inline bool operator==(Point a, Point b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(Point a, Point b) { return !(a == b); }
inline double Dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
inline double Cross(Point a, Point b) { return a.x * b.y - a.y * b.x; }
// Squares of float-sized values stay well inside double's range, so the
// square root is exact enough and far cheaper than hypot, kept for the rest.
inline double Length(Point a)
{
    const double squared = a.x * a.x + a.y * a.y;
    return squared > 1e-290 && squared < 1e290 ? std::sqrt(squared) : std::hypot(a.x, a.y);
}
// The left normal in x-right, y-up terms.
inline Point Normal(Point a) { return {-a.y, a.x}; }
inline Point Lerp(Point a, Point b, double t) { return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}; }

} // namespace vk::svg::impl

#endif
