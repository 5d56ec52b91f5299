#ifndef VKSVG_TRIANGULATION_H
#define VKSVG_TRIANGULATION_H

#include <svg/Export.h>

#include <wm4/Wm4Vector2.h>

#include <cstdint>
#include <vector>

namespace vk {

/// How the area enclosed by an outline is decided. Both rules count how many
/// edges separate a place from the unbounded outside, ignoring the direction
/// in which the edges run: a hole drawn inside an outer contour stays empty
/// under EvenOdd and is filled under NonZero, whichever way either contour
/// runs. Any other value fills every bounded part of the plane.
enum class TriangulationFillRule : std::int32_t {
    NonZero = 0, ///< filled where at least one edge has to be crossed
    EvenOdd = 1, ///< filled where an odd number of edges has to be crossed
};

/// Simplifies an outline before it is triangulated. `edges` holds index pairs
/// into `points` (entries 2k and 2k+1 are the start and end of edge k). Edges
/// shorter than a thousandth of the outline's bounding box (in x and in y) are
/// dropped, runs of collinear edges merge into one, and an outline whose last
/// point lies that close to its first one is closed on the first point. Only
/// `edges` changes: surviving edges keep their order, and `points` comes back
/// with exactly the values it went in with. An empty point or edge list, or an
/// odd number of edge entries, leaves both untouched.
///
/// Every edge index must be less than points.size(); anything else is the
/// caller's error (the lists are then left untouched, but do not rely on it).
///
/// Threads: CleanupContour and TriangulatePoly keep no state between calls;
/// calls on different vectors may run at once on any threads.
VKSVG_API void CleanupContour(std::vector<Wm4::Vector2<float>>& points, std::vector<unsigned int>& edges);

/// Fills the area that `edges` (index pairs into `points`, one or more closed
/// contours in any order and direction) enclose under `fillRule`, by
/// trapezoidal decomposition after Seidel (1991). Edges are inserted in the
/// order given. Each filled trapezoid appends four new points to `outPoints`
/// and two triangles (six indices, absolute positions in `outPoints`) to
/// `outTriangles`; nothing is cleared and no point is shared between
/// trapezoids. With `mergeCoincidentPoints`, points with equal coordinates
/// count as one vertex and edges that collapse onto one vertex are dropped.
///
/// Returns true on success, also when nothing is filled, and false when the
/// outline cannot be decomposed: an odd number of edge entries, a point lying
/// exactly on another edge, overlapping or crossing edges, an edge from a
/// point to itself (without merging), or a triangle list passed in whose size
/// is not a multiple of 3. After a failure the output vectors may hold part of
/// the result. Never throws for bad geometry (NaN, infinities, degenerate
/// edges all end in true or false).
///
/// Every edge index must be less than points.size(); anything else is the
/// caller's error (the call then returns false, but do not rely on it).
VKSVG_API bool TriangulatePoly(const std::vector<Wm4::Vector2<float>>& points, const std::vector<unsigned int>& edges,
                               std::vector<Wm4::Vector2<float>>& outPoints, std::vector<unsigned int>& outTriangles,
                               TriangulationFillRule fillRule, bool mergeCoincidentPoints);

} // namespace vk

#endif
