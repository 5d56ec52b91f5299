#ifndef VKSVG_READ_SHAPES_H
#define VKSVG_READ_SHAPES_H

// The basic shapes that the item types do not hold directly, as paths of
// absolute commands that mean the same under the library's primitive rules.

#include <svg/Items.h>

#include <memory>
#include <vector>

namespace vk::svg::impl {

// SVG's auto rule for rx and ry: a missing radius takes the other's value.
void AutoRadii(double& rx, bool hasRx, double& ry, bool hasRy);

// A rectangle with corners of radii rx, ry (already clamped to half the
// sides), clockwise from the top edge as SVG defines it.
std::shared_ptr<Path> RoundedRectPath(double x, double y, double width, double height, double rx, double ry);

// Four quarter arcs, so that no arc starts where it ends.
std::shared_ptr<Path> EllipsePath(double cx, double cy, double rx, double ry);

// Pairs of coordinates as a polyline, closed for a polygon.
std::shared_ptr<Path> PointsPath(const std::vector<double>& coordinates, bool closed);

} // namespace vk::svg::impl

#endif
