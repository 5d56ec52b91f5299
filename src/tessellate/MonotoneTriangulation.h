#ifndef VKSVG_TESSELLATE_MONOTONETRIANGULATION_H
#define VKSVG_TESSELLATE_MONOTONETRIANGULATION_H

// Fill tessellation in three stages.
//
// 1. TessellateFill snaps the float contours to a power-of-two integer grid
//    no finer than the float spacing at the largest coordinate, so that every
//    grid point is itself a float: the mesh comes back without rounding and
//    the exact integer orientation tests below stay true for the floats.
// 2. TriangulateRings sweeps the edges once from bottom to top (y, then x,
//    which shears horizontal edges consistently), counts the winding number
//    of every region from the left and cuts what the rule covers into
//    y-monotone pieces, triangulating each piece as the sweep reaches its
//    vertices (the textbook monotone decomposition with the reflex-chain
//    triangulation run alongside it). Points at one position are one event
//    with any number of edges, and a vertex on another edge cuts it, so
//    touching contours need no special case. Edges with cover on both sides
//    are dropped and the rest swept again, so that a polygon of n vertices
//    and h holes gets n - 2 + 2h triangles.
// 3. Only if two edges cross (found as neighbours in the sweep, as in Shamos
//    and Hoey) are the crossings resolved first (Crossings.h): every
//    crossing, rounded to the grid, goes into both rings, and the sweep then
//    counts the windings itself. Rounding can bend an edge across a vertex
//    near the crossing, so the sweep checks again; after three rounds, or
//    past a budget of pair tests, Clipper unites the contours under the rule
//    instead and its strictly simple rings are swept by parity. Its rounded
//    crossings can leave a vertex a fraction of a unit beside an edge it
//    touched; the sweep cuts the edge there too.
//
// The sweep's status (SweepStatus.h) is a red-black tree threaded by
// neighbour links whose nodes hold what the sweep reads of an active edge
// (end points, winding number, the area right of it), one cache line each;
// an edge that continues another takes over its node, new edges go where
// the sweep already knows they belong, and only a vertex that starts edges
// without ending any searches the tree.
//
// O(n log n) without crossings. Limits: detail finer than the float spacing
// at the largest coordinate is snapped away; with crossings, finding them
// costs about the edges times those a scan line meets in one strip of the
// plane, and Clipper's fallback grows with the square of the edges that a
// horizontal line meets at once; should the rings still cross,
// TessellateFill retries on coarser grids and otherwise keeps the first
// result, whose triangles are all positive but may miss or double a little
// area near the crossing.

#include <svg/Tessellation.h>

#include <cstdint>
#include <vector>

namespace vk::svg::impl {

struct GridPoint {
    int64_t x = 0;
    int64_t y = 0;
};

inline bool operator==(const GridPoint& a, const GridPoint& b) { return a.x == b.x && a.y == b.y; }

// Closed rings back to back: ring i runs over points[ends[i - 1]] up to
// points[ends[i]] (from 0 for the first), its last point joining its first.
struct RingSet {
    std::vector<GridPoint> points;
    std::vector<uint32_t> ends;
};

struct RingTriangulation {
    // Distinct positions, each used by at least one triangle.
    std::vector<GridPoint> vertices;
    // Counter-clockwise triples (x right, y up), none of zero area.
    std::vector<uint32_t> indices;
    // False when the sweep met crossing edges or lost its bookkeeping.
    bool consistent = true;
    // Two edges cross or overlap; with stopAtCrossing the result is empty.
    bool crossed = false;
};

// Triangulates what the closed rings cover under `rule`, as long as no two
// edges cross (touching is fine). Coordinates must lie within +-2^29 so that
// the orientation products fit 64 bits.
void TriangulateRings(const RingSet& rings, WindingRule rule, bool stopAtCrossing, RingTriangulation& out);

} // namespace vk::svg::impl

#endif
