#ifndef VKSVG_TESSELLATION_H
#define VKSVG_TESSELLATION_H

#include <svg/Export.h>

#include <wm4/Wm4Vector2.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vk::svg {

// Which points of the plane overlapping and self-intersecting contours
// cover, by the winding number w of the point: NonZero w != 0, EvenOdd w
// odd (the two rules SVG knows), Positive w > 0, Negative w < 0. Contour
// direction counts exactly as in SVG.
enum class WindingRule : uint32_t {
    NonZero = 0,
    EvenOdd = 1,
    Positive = 2,
    Negative = 3,
};

// An indexed triangle mesh that a host can upload as it is: one vertex per
// distinct position, shared between triangles, and index triples that all
// run the same way round (positive signed area in x-right, y-up terms).
struct VKSVG_API FillMesh {
    std::vector<Wm4::Vector2<float>> vertices;
    std::vector<uint32_t> indices;
};

// Fills closed contours, each a run of points whose last point joins its
// first. Intersections, overlaps, touching contours, repeated and collinear
// points and zero-length edges are all resolved first; any finite input is
// filled. Only a NaN or infinite coordinate gives false, with the reason in
// `*error` when it is not null. `mesh` is replaced.
VKSVG_API bool TessellateFill(const std::vector<std::vector<Wm4::Vector2<float>>>& contours, WindingRule rule,
                              FillMesh& mesh, std::string* error = nullptr);

// The same for contours as segmentation makes them: points plus index
// pairs, edge k from points[edges[2k]] to points[edges[2k + 1]]. Edges are
// chained into loops where one ends at the index the next starts at; a
// chain that does not come back to its start is closed by a straight edge.
// An odd-length edge list or an index out of range gives false.
VKSVG_API bool TessellateFill(const std::vector<Wm4::Vector2<float>>& points, const std::vector<uint32_t>& edges,
                              WindingRule rule, FillMesh& mesh, std::string* error = nullptr);

} // namespace vk::svg

#endif
