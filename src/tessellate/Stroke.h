#ifndef VKSVG_TESSELLATE_STROKE_H
#define VKSVG_TESSELLATE_STROKE_H

// Stroking polylines, as SVG user agents stroke paths, into triangle meshes.
//
// Stages, all in double in the polylines' own units, so that dash lengths,
// widths and miter limits mean what SVG says under any transform:
//
// 1. Checks: a non-finite coordinate or transform fails; a width that is not
//    a positive number strokes nothing. Repeated points are dropped, and a
//    closed polyline loses a last point equal to its first.
// 2. Dashes (Dash.h): the pattern cuts every polyline into open dashes,
//    restarting on every subpath and running across the closing segment;
//    a dash over the start of a closed polyline is joined there.
// 3. Pieces: every segment is a quad of its two offset lines; every turn
//    gets a join piece on its outer side (bevel triangle, miter, clipped
//    miter, or a fan of the round arc); open ends get caps; zero-length
//    subpaths and dashes get round or square dots. Pieces are convex rings
//    that share the vertices where they meet, each vertex mapped through the
//    transform and rounded to float once.
// 4. Output: Fast mode fans the pieces into triangles as they are, turning
//    each positive and dropping any that rounding flattened (two per
//    straight segment, one or two per bevel or miter, one per arc step).
//    NonOverlapping mode unites the positively oriented pieces under
//    NonZero (StrokeUnion.h): runs of neighbouring pieces one fill each,
//    then their outlines a few at a time, so that the final mesh covers
//    every point once.
//
// Why not Clipper's ClipperOffset: it offsets on an integer grid, has no
// bevel (its miter falls back to a square cut) and no miter-clip, and would
// still need a triangulation afterwards; the pieces here are exact SVG
// geometry and cost a single pass, and only the non-overlapping mode pays
// for a union.
//
// Limits, so that no input makes time or memory run away: at most
// kMaxDashEntries pattern entries (kMaxUnionDashEntries in the
// non-overlapping mode) are walked per call (beyond that the
// pattern is finer than anything drawable and the stroke goes solid, as
// Skia does); a full circle has at most kMaxCircleSteps steps, and all the
// round joins, caps and dots of a call share kRoundStepBudget steps (past
// either, circles coarsen and the tolerance is no longer met, down to
// kMinCircleSteps). Polylines are straight: Arcs joins meet as MiterClip.
// The non-overlapping mode costs about n log n for n pieces plus the
// crossings of the stroke's outline with itself: local overlaps (fine
// dashes, short segments at sharp turns) vanish in the small first fills,
// and only the outlines go on. Crossings are not bounded beyond that, as
// the mesh itself needs a vertex for each of them: a path of n long
// segments that all cross each other costs n squared, as filling it would.

#include <cstddef>

namespace vk::svg::impl {

constexpr std::size_t kMaxDashEntries = std::size_t{1} << 21;
constexpr std::size_t kMaxUnionDashEntries = std::size_t{1} << 14;
constexpr unsigned kMaxCircleSteps = 1024;
constexpr unsigned kMinCircleSteps = 8;
constexpr double kRoundStepBudget = double(std::size_t{1} << 23);

} // namespace vk::svg::impl

#endif
