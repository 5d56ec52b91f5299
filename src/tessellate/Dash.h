#ifndef VKSVG_TESSELLATE_DASH_H
#define VKSVG_TESSELLATE_DASH_H

#include "tessellate/StrokeGeometry.h"

#include <cstddef>
#include <vector>

// Cutting a polyline into dashes by an SVG dash pattern, in double.
namespace vk::svg::impl {

// A pattern that SVG accepts: an even number of lengths (odd arrays
// repeated), none negative, not all zero, with the offset reduced into one
// period.
struct DashPattern {
    // ends[k] is where entry k ends within the period; even entries are dashes.
    std::vector<double> ends;
    double period = 0.0;
    double phase = 0.0;
};

// False when SVG strokes solid: an empty array, a negative or non-finite
// entry, or all zeros (also when the period overflows).
bool MakeDashPattern(const std::vector<float>& array, float offset, DashPattern& pattern);

struct Dash {
    std::vector<Point> points; // at least one; one point is a zero-length dash
    Point direction;           // the path's direction at a zero-length dash
    bool closed = false;       // the dash is the whole closed polyline
};

// Appends the dashes of the polyline `points` (no two consecutive points
// equal; for a closed one the last point is not the first again). On a
// closed polyline the pattern runs across the closing segment, and a dash
// over the start is one dash joined there. Every pattern entry walked
// counts against `budget`; false, with the dashes incomplete, once it is
// spent.
bool CutDashes(const std::vector<Point>& points, bool closed, const DashPattern& pattern, std::size_t& budget,
               std::vector<Dash>& dashes);

} // namespace vk::svg::impl

#endif
