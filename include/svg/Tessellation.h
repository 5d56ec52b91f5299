#ifndef VKSVG_TESSELLATION_H
#define VKSVG_TESSELLATION_H

#include <svg/Export.h>

#include <wm4/Wm4Matrix3.h>
#include <wm4/Wm4Vector2.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vk::svg {

/// Which points of the plane overlapping and self-intersecting contours
/// cover, by the winding number w of the point: NonZero w != 0, EvenOdd w
/// odd (the two rules SVG knows), Positive w > 0, Negative w < 0. Contour
/// direction counts exactly as in SVG.
enum class WindingRule : uint32_t {
    NonZero = 0,
    EvenOdd = 1,
    Positive = 2,
    Negative = 3,
};

/// An indexed triangle mesh that a host can upload as it is: one vertex per
/// distinct position, shared between triangles, and index triples that all
/// run the same way round (positive signed area in x-right, y-up terms).
struct VKSVG_API FillMesh {
    /// The distinct positions.
    std::vector<Wm4::Vector2<float>> vertices;
    /// Triples of indices into `vertices`, one per triangle.
    std::vector<uint32_t> indices;
};

/// Fills closed contours, each a run of points whose last point joins its
/// first. Intersections, overlaps, touching contours, repeated and collinear
/// points and zero-length edges are all resolved first; any finite input is
/// filled. Only a NaN or infinite coordinate gives false, with the reason in
/// `*error` when it is not null. `mesh` is replaced.
///
/// Threads: the tessellators keep no state between calls; any number of
/// calls may run at once on different threads, each with its own mesh.
VKSVG_API bool TessellateFill(const std::vector<std::vector<Wm4::Vector2<float>>>& contours, WindingRule rule,
                              FillMesh& mesh, std::string* error = nullptr);

/// The same for contours as segmentation makes them: points plus index
/// pairs, edge k from points[edges[2k]] to points[edges[2k + 1]]. Edges are
/// chained into loops where one ends at the index the next starts at; a
/// chain that does not come back to its start is closed by a straight edge.
/// An odd-length edge list or an index out of range gives false.
VKSVG_API bool TessellateFill(const std::vector<Wm4::Vector2<float>>& points, const std::vector<uint32_t>& edges,
                              WindingRule rule, FillMesh& mesh, std::string* error = nullptr);

/// How two segments of a stroke meet, as SVG's stroke-linejoin says.
/// Miter falls back to Bevel where the miter would be longer than the miter
/// limit allows; MiterClip cuts such a miter off at the limit instead. Arcs
/// joins two straight segments with "arcs" of zero curvature, which are the
/// segments' own extensions: on polylines it is exactly MiterClip.
enum class StrokeJoin : uint32_t {
    Miter = 0,
    MiterClip = 1,
    Round = 2,
    Bevel = 3,
    Arcs = 4,
};

/// The ends of open subpaths and of dashes, as SVG's stroke-linecap says.
enum class StrokeCap : uint32_t {
    Butt = 0,
    Round = 1,
    Square = 2,
};

/// Fast lets the pieces of a stroke overlap (fine for opaque paint: at most
/// two triangles per straight segment plus those of joins and caps).
/// NonOverlapping covers every point of the stroke exactly once, as
/// translucent paint needs, at the cost of uniting the pieces.
enum class StrokeMode : uint32_t {
    Fast = 0,
    NonOverlapping = 1,
};

/// The stroke properties of SVG, in the units of the polylines.
struct VKSVG_API StrokeStyle {
    /// Stroke width; zero, negative or non-finite strokes nothing.
    float width = 1.0f;
    /// How segments meet.
    StrokeJoin join = StrokeJoin::Miter;
    /// How open subpaths and dashes end.
    StrokeCap cap = StrokeCap::Butt;
    /// Longest miter, in multiples of the width; below 1 or NaN is invalid
    /// in SVG, and the default 4 is used.
    float miterLimit = 4.0f;
    /// Dash and gap lengths, alternating; an odd count is repeated once.
    /// Empty, all zero, or with a negative or non-finite entry strokes solid.
    std::vector<float> dashArray;
    /// Distance into the pattern at which every subpath starts; may be
    /// negative. A non-finite offset counts as 0.
    float dashOffset = 0.0f;
    /// Largest distance of round joins and caps from the true circle, in
    /// output units. Not positive means the coarsest circles.
    float tolerance = 0.25f;
    /// Whether pieces may overlap.
    StrokeMode mode = StrokeMode::Fast;
};

/// One subpath of a stroke. A closed one is joined at its first point
/// instead of capped; a repeated last point equal to the first is allowed.
struct VKSVG_API StrokePolyline {
    /// The points in drawing order.
    std::vector<Wm4::Vector2<float>> points;
    /// Joined at its first point rather than capped at both ends.
    bool closed = false;
};

/// Strokes polylines as SVG user agents do: width, joins, caps, dashes (the
/// pattern restarts on every subpath and runs on around corners and across
/// the closing segment), and zero-length subpaths drawn as dots with round
/// and square caps (a lone unclosed point draws nothing). `mesh` is
/// replaced; its triangles all have positive area. In Fast mode vertices
/// are shared where pieces meet, but a position may repeat where pieces
/// overlap; NonOverlapping has one vertex per distinct position. Only non-finite
/// coordinates, or a stroke too large for float coordinates or 32-bit
/// indices, give false, with the reason in `*error` when it is not null.
VKSVG_API bool TessellateStroke(const std::vector<StrokePolyline>& polylines, const StrokeStyle& style, FillMesh& mesh,
                                std::string* error = nullptr);

/// The same, with every vertex mapped by the affine `transform`
/// (x' = m00 x + m01 y + m02, y' = m10 x + m11 y + m12) after the stroke is
/// built in the polylines' units, as SVG strokes in user space: a
/// non-uniform scale makes the width vary with direction. The tolerance
/// holds in the mapped units. A non-finite transform gives false.
VKSVG_API bool TessellateStroke(const std::vector<StrokePolyline>& polylines, const StrokeStyle& style,
                                const Wm4::Matrix3<float>& transform, FillMesh& mesh, std::string* error = nullptr);

} // namespace vk::svg

#endif
