#ifndef VKSVG_SEGMENTATION_H
#define VKSVG_SEGMENTATION_H

#include <svg/Export.h>
#include <svg/Items.h>
#include <svg/RenderingProperties.h>
#include <svg/Tessellation.h>

#include <wm4/Wm4BezierCurve2.h>
#include <wm4/Wm4Matrix3.h>
#include <wm4/Wm4Vector2.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vk::svg {

class SegmentedPrimitive;

/// How shapes are segmented. The defaults give the library's long-standing
/// results exactly; Faithful() turns on what SVG renderers do.
struct VKSVG_API SegmentationOptions {
    /// Above 0: curves, arcs and circles are flattened so that no point of
    /// them is farther than this from their polylines, in output units
    /// (after the transform), so that a small curve gets few points and a
    /// large one many. 0 or less: 32 pieces per curve, arc and circle.
    float tolerance = 0.0f;
    /// Fills with TessellateFill under the shape's fill-rule (non-zero when
    /// unset), which fills any finite outline and shares vertices, instead of
    /// the trapezoidal triangulator's non-zero rule by crossing depth.
    bool tessellateFill = false;
    /// Segments every shape; one whose fill fails is kept with its outline
    /// and reported in SegmenterVisitor::getFailures(), instead of the walk
    /// stopping at the first stroked one.
    bool continueAfterFailure = false;
    /// Gives every stroked shape a stroke mesh (SegmentedPrimitive::
    /// getStrokeVertices) built from its width, joins, caps, miter limit and
    /// dashes, in user space and then mapped, as SVG strokes; with
    /// vector-effect non-scaling-stroke in output space. Round joins and caps
    /// are flattened to `tolerance` (0.25 when it is 0 or less).
    bool tessellateStroke = false;
    /// Fast strokes may cover a point twice (fine for opaque paint);
    /// NonOverlapping ones cover each point once, for translucent paint.
    StrokeMode strokeMode = StrokeMode::Fast;

    /// All of the above (fast strokes), at `tolerance` output units.
    static SegmentationOptions Faithful(float tolerance = 0.25f)
    {
        SegmentationOptions options;
        options.tolerance = tolerance;
        options.tessellateFill = true;
        options.continueAfterFailure = true;
        options.tessellateStroke = true;
        return options;
    }
};

/// A shape whose fill could not be made.
struct VKSVG_API SegmentationFailure {
    /// The shape's id, when it has one.
    std::optional<std::string> id;
    /// The shape's position among all shapes of the walk, in document order,
    /// from 0.
    std::size_t index = 0;
    /// Why the fill could not be made.
    std::string reason;
};

namespace SegmentationUtils {

class BezierSegmentationWorkspace;

/// One pending piece of a cubic curve during subdivision.
struct VKSVG_API SegmentationJob {
    Wm4::Vector2<float>* points; ///< the piece's control points, in the workspace
    Wm4::Vector2<float>* left;   ///< control points of its first half
    Wm4::Vector2<float>* right;  ///< control points of its second half
    float t;                     ///< curve parameter of the piece's midpoint
    float step;                  ///< a quarter of the piece's parameter width
    float error;                 ///< which piece is split next: the largest score

    /// A piece around `midpoint` whose control points are `controlPoints`, with
    /// its halves' storage taken from `ws`.
    SegmentationJob(BezierSegmentationWorkspace& ws, Wm4::Vector2<float>* controlPoints, float midpoint,
                    float quarterWidth) noexcept;

    /// Splits the piece at its midpoint into `left` and `right` (leaving the
    /// curve point at `t` in points[0]) and scores it: s - chord / polygon,
    /// where s is 1 when the inner control points lie strictly on opposite
    /// sides of the chord. A convex piece scores in [-1, 0] (-1 is flat), an
    /// S-shaped one at least 0, so S-shapes are always split first.
    void computeError(BezierSegmentationWorkspace& ws) noexcept;

    /// The curve point at `t`.
    const Wm4::Vector2<float>& getResult() const { return points[0]; }
};

/// Scratch control points for Bezier subdivision: a bump allocator over one
/// vector that is sized once per curve and reused from curve to curve, so
/// that segmenting a whole drawing allocates only when a curve needs more
/// room than any before it.
class VKSVG_API BezierSegmentationWorkspace {
public:
    BezierSegmentationWorkspace() = default;
    /// The free slot points into the storage, so a copy would hand out the
    /// original's memory.
    BezierSegmentationWorkspace(const BezierSegmentationWorkspace&) = delete;
    BezierSegmentationWorkspace& operator=(const BezierSegmentationWorkspace&) = delete;

    /// Room for 4 * p vectors of `pointsPerVector` points, p being the
    /// smallest power of two not below `maxJobs` (1 for 0 and 1): enough for
    /// every split that a budget of `maxJobs` pieces can make. Existing
    /// capacity is reused; the free slot goes back to the start.
    void initWorkspace(std::size_t maxJobs, std::size_t pointsPerVector);

    /// The next vector of getNumPoints() points. Not bounds-checked: the
    /// sizing rule above is what keeps callers in range.
    Wm4::Vector2<float>* createVector();
    /// As createVector(), filled with the points of [begin, end).
    Wm4::Vector2<float>* createVector(const Wm4::Vector2<float>* begin, const Wm4::Vector2<float>* end);

    /// How many points each vector of createVector() holds.
    std::size_t getNumPoints() const { return static_cast<std::size_t>(numPoints); }

    /// The piece list that DeCasteljauSegmentBezier fills for each curve,
    /// kept here so that its storage, too, is reused from curve to curve.
    std::vector<SegmentationJob>& editJobs() { return jobs; }

private:
    uint64_t numPoints = 0;
    Wm4::Vector2<float>* freeSlot = nullptr;
    std::vector<Wm4::Vector2<float>> storage;
    std::vector<SegmentationJob> jobs;
};

/// Subdivides a cubic curve worst piece first until `maxJobs` pieces exist
/// or no piece scores above `tolerance`, and leaves the final pieces in
/// `jobs`, ordered along the curve. Curves of any other degree give no job.
VKSVG_API void DeCasteljauGetBezierPoints(BezierSegmentationWorkspace& ws, const Wm4::BezierCurve2<float>& curve,
                                          std::vector<SegmentationJob>& jobs, unsigned int maxJobs, float tolerance);

/// Appends the curve's polyline to the primitive's contour: its start (when
/// `newContour`; otherwise the contour's last point is the start), the
/// midpoint of every piece and its end, joined by index pairs. A budget that
/// could overflow 32-bit indices is logged and the curve left out.
VKSVG_API void DeCasteljauSegmentBezier(BezierSegmentationWorkspace& ws, const Wm4::BezierCurve2<float>& curve,
                                        SegmentedPrimitive& primitive, bool newContour, unsigned int maxJobs,
                                        float tolerance);

/// Appends `segments` equal parameter steps of an arc in centre form
/// (`rotation` in radians) to a contour, starting with the arc's start when
/// `newContour`. The point count depends on `segments` only; `tolerance` is
/// unused. Zero steps are taken as one: the arc becomes its chord.
VKSVG_API void SegmentEllipticalArc(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float rotation,
                                    float startAngle, float deltaAngle, std::vector<Wm4::Vector2<float>>& points,
                                    std::vector<uint32_t>& indices, bool newContour, unsigned int segments,
                                    float tolerance);

} // namespace SegmentationUtils

/// One shape in flat form: its outline as points joined by index pairs, the
/// triangles that fill it (when it is filled and could be triangulated), and
/// the rendering properties that apply to it. All coordinates are in the
/// space of the transform it was made with.
class VKSVG_API SegmentedPrimitive {
public:
    /// An empty primitive with default properties.
    SegmentedPrimitive() = default;
    ~SegmentedPrimitive() = default;
    ///@{
    /// Moves every array and the properties.
    SegmentedPrimitive(SegmentedPrimitive&&) noexcept = default;
    SegmentedPrimitive& operator=(SegmentedPrimitive&&) noexcept = default;
    ///@}
    /// Meshes are large; copying one is never what a caller meant.
    SegmentedPrimitive(const SegmentedPrimitive&) = delete;
    SegmentedPrimitive& operator=(const SegmentedPrimitive&) = delete;

    /// Takes a contour over. When `properties` say the shape is filled, the
    /// contour is cleaned and triangulated (non-zero rule, coincident points
    /// merged); if that is impossible the failure is logged and `*error` set,
    /// and the shape keeps its contour only. Contour and triangles are then
    /// mapped through `transform`. Null `transform` is the identity, null
    /// `properties` default properties without a fill, null `error` allowed.
    static SegmentedPrimitive FromContour(std::vector<Wm4::Vector2<float>>&& contourPoints,
                                          std::vector<uint32_t>&& contourIndices, const Wm4::Matrix3<float>* transform,
                                          const RenderingProperties* shapeProperties, bool* error);

    ///@{
    /// The outline's points.
    const std::vector<Wm4::Vector2<float>>& getPoints() const { return points; }
    std::vector<Wm4::Vector2<float>>& editPoints() { return points; }
    ///@}
    ///@{
    /// Pairs of indices into getPoints(), each pair one straight segment.
    const std::vector<uint32_t>& getIndices() const { return indices; }
    std::vector<uint32_t>& editIndices() { return indices; }
    ///@}
    ///@{
    /// The fill triangles' vertices; empty when the shape is not filled or
    /// could not be triangulated.
    const std::vector<Wm4::Vector2<float>>& getTriangleVertices() const { return triangleVertices; }
    std::vector<Wm4::Vector2<float>>& editTriangleVertices() { return triangleVertices; }
    ///@}
    ///@{
    /// Triples of indices into getTriangleVertices().
    const std::vector<uint32_t>& getTriangleIndices() const { return triangleIndices; }
    std::vector<uint32_t>& editTriangleIndices() { return triangleIndices; }
    ///@}
    ///@{
    /// The cascaded rendering properties of the shape.
    const RenderingProperties& getProperties() const { return properties; }
    RenderingProperties& editProperties() { return properties; }
    ///@}

    /// One run of the outline: getIndices() entries [firstIndex, firstIndex +
    /// indexCount) (whole pairs), and whether the run is closed (joined at
    /// its start, as by a close-path) or open (capped at both ends when
    /// stroked). Filled in by the segmenters that take SegmentationOptions.
    struct Subpath {
        uint32_t firstIndex = 0; ///< first entry of getIndices()
        uint32_t indexCount = 0; ///< number of entries, even
        bool closed = false;     ///< joined at its start rather than capped
    };
    ///@{
    /// The runs of the outline, in order.
    const std::vector<Subpath>& getSubpaths() const { return subpaths; }
    std::vector<Subpath>& editSubpaths() { return subpaths; }
    ///@}

    ///@{
    /// The stroke as an indexed triangle mesh in output space, beside the
    /// fill: made by the segmenters that take SegmentationOptions with
    /// tessellateStroke, empty otherwise.
    const std::vector<Wm4::Vector2<float>>& getStrokeVertices() const { return strokeVertices; }
    std::vector<Wm4::Vector2<float>>& editStrokeVertices() { return strokeVertices; }
    ///@}
    ///@{
    /// Triples of indices into getStrokeVertices().
    const std::vector<uint32_t>& getStrokeIndices() const { return strokeIndices; }
    std::vector<uint32_t>& editStrokeIndices() { return strokeIndices; }
    ///@}

private:
    std::vector<Wm4::Vector2<float>> points;
    std::vector<uint32_t> indices;
    std::vector<Wm4::Vector2<float>> triangleVertices;
    std::vector<uint32_t> triangleIndices;
    RenderingProperties properties;
    std::vector<Subpath> subpaths;
    std::vector<Wm4::Vector2<float>> strokeVertices;
    std::vector<uint32_t> strokeIndices;
};

/// @name Shape segmenters
/// A null `transform` is the identity, null
/// `properties` mean default properties and no fill; `error` may be null and
/// reports a fill that could not be triangulated.
///@{

/// The two end points and the pair (0, 1); a line is never filled.
VKSVG_API std::shared_ptr<SegmentedPrimitive> SegmentLine(const Line& line, const Wm4::Matrix3<float>* transform,
                                                          const RenderingProperties* properties);
/// The four corners from the position, clockwise in y-down coordinates;
/// corner radii are not drawn.
VKSVG_API std::shared_ptr<SegmentedPrimitive> SegmentRect(const Rect& rect, const Wm4::Matrix3<float>* transform,
                                                          const RenderingProperties* properties, bool* error);
/// `segments` points at equal angles from angle 0, as one closed loop.
VKSVG_API std::shared_ptr<SegmentedPrimitive> SegmentCircle(const Circle& circle, unsigned int segments,
                                                            float tolerance, const Wm4::Matrix3<float>* transform,
                                                            const RenderingProperties* properties, bool* error);
/// Every line, arc and cubic curve of the path; `segments` is both the piece
/// budget of each curve and the step count of each arc, `tolerance` the
/// curves' flatness score. Without a workspace the call makes its own.
VKSVG_API std::shared_ptr<SegmentedPrimitive> SegmentPath(const Path& path, unsigned int segments, float tolerance,
                                                          const Wm4::Matrix3<float>* transform,
                                                          const RenderingProperties* properties,
                                                          SegmentationUtils::BezierSegmentationWorkspace* workspace,
                                                          bool* error);
///@}

///@{
/// The same shapes under `options`. With a tolerance the outline is built in
/// output space; with tessellateFill the fill is an indexed mesh with one
/// vertex per position. Subpaths are always filled in. A fill that cannot
/// be made leaves the outline and the reason in `*failure` (may be null).
VKSVG_API std::shared_ptr<SegmentedPrimitive> SegmentLine(const Line& line, const SegmentationOptions& options,
                                                          const Wm4::Matrix3<float>* transform,
                                                          const RenderingProperties* properties);
VKSVG_API std::shared_ptr<SegmentedPrimitive> SegmentRect(const Rect& rect, const SegmentationOptions& options,
                                                          const Wm4::Matrix3<float>* transform,
                                                          const RenderingProperties* properties, std::string* failure);
VKSVG_API std::shared_ptr<SegmentedPrimitive> SegmentCircle(const Circle& circle, const SegmentationOptions& options,
                                                            const Wm4::Matrix3<float>* transform,
                                                            const RenderingProperties* properties,
                                                            std::string* failure);
VKSVG_API std::shared_ptr<SegmentedPrimitive> SegmentPath(const Path& path, const SegmentationOptions& options,
                                                          const Wm4::Matrix3<float>* transform,
                                                          const RenderingProperties* properties,
                                                          SegmentationUtils::BezierSegmentationWorkspace* workspace,
                                                          std::string* failure);
///@}

/// A depth-first walk over an item tree that keeps, for the item being
/// visited, the transform and the cascaded rendering properties in force:
/// an item's transform is its parent's times its own (its own acts first),
/// and its properties are its own with the unset ones taken from its parent.
/// Derived supplies
///     bool visitItem(const ItemInterface& item, const Wm4::Matrix3<float>& transform,
///                    const RenderingProperties& properties);
/// which answers whether the item's children are to be walked. Null children
/// are passed over.
template <class Derived> class VisitorBase {
protected:
    VisitorBase() = default;
    ~VisitorBase() = default;
    VisitorBase(const VisitorBase&) = delete;
    VisitorBase& operator=(const VisitorBase&) = delete;

    /// Walks the tree from `root`, starting from `matrix` and `properties` as
    /// what is in force above it.
    void walk(const ItemInterface& root, const Wm4::Matrix3<float>& matrix,
              const RenderingProperties& properties = RenderingProperties())
    {
        mTransforms.assign(1, matrix);
        mProperties.assign(1, properties);
        mDepth = 0;
        visitOne(root);
    }

private:
    // Slots are indexed by depth and kept between siblings: refilling a
    // slot reuses its strings' storage instead of allocating per item.
    void visitOne(const ItemInterface& item)
    {
        const std::size_t parent = mDepth;
        const std::size_t own = parent + 1;
        if (mTransforms.size() <= own) {
            mTransforms.resize(own + 1);
            mProperties.resize(own + 1);
        }
        if (item.getTransform())
            mTransforms[own] = mTransforms[parent] * *item.getTransform();
        else
            mTransforms[own] = mTransforms[parent];
        RenderingProperties& properties = mProperties[own];
        properties = item.getRenderingProperties();
        properties.cascadeParent(mProperties[parent]);

        const bool enter = static_cast<Derived*>(this)->visitItem(item, mTransforms[own], properties);
        const ItemType type = item.getType();
        if (!enter || (type != ItemType::Node && type != ItemType::Document))
            return;
        mDepth = own;
        for (const std::shared_ptr<ItemInterface>& child : static_cast<const Node&>(item).getChildren())
            if (child != nullptr)
                visitOne(*child);
        mDepth = parent;
    }

    // Entry d + 1 holds what is in force at depth d of the walk; entry 0 is
    // what the walk started from.
    std::vector<Wm4::Matrix3<float>> mTransforms;
    std::vector<RenderingProperties> mProperties;
    std::size_t mDepth = 0;
};

/// Tessellates a whole tree in document order: every line, rectangle, circle
/// and path becomes one primitive with its accumulated transform applied and
/// its cascaded properties. Curves get a budget of 32 pieces at a flatness
/// score of -0.999, arcs and circles 32 steps.
///
/// Threads: segmentation keeps no global state. A SegmenterVisitor, like a
/// workspace, is one thread's object at a time; any number of walks and
/// segment calls may run at once on different threads, also over the same
/// tree, as long as no thread changes that tree meanwhile.
class VKSVG_API SegmenterVisitor : private VisitorBase<SegmenterVisitor> {
public:
    /// Walks the tree from `root`; the results are ready afterwards.
    explicit SegmenterVisitor(const Node& root);
    /// The same walk under `options`.
    SegmenterVisitor(const Node& root, const SegmentationOptions& options);

    /// The primitives in document order.
    ///@{
    /// The primitives in document order.
    const std::list<std::shared_ptr<SegmentedPrimitive>>& getSegmentedPrimitives() const { return mPrimitives; }
    std::list<std::shared_ptr<SegmentedPrimitive>>& getSegmentedPrimitives() { return mPrimitives; }
    ///@}
    /// How many primitives the walk made.
    std::size_t getPrimitiveCount() const { return mPrimitiveCount; }

    /// True once a stroked shape could not be triangulated. Segmentation
    /// stopped there: the primitives before it, and that shape's outline,
    /// are in the list; nothing after it is.
    bool hasError() const { return mError; }

    /// Every shape whose fill could not be made, in document order. Only a
    /// walk with continueAfterFailure goes on past the first failure; a
    /// default walk reports its failed shapes here too.
    const std::vector<SegmentationFailure>& getFailures() const { return mFailures; }

    /// Segments one item with the transform and properties in force for it
    /// and appends the result. A fill that cannot be triangulated answers
    /// false when the shape is stroked; an unstroked one is given a stroke in
    /// its fill's paint instead so that its outline shows, and answers true.
    /// Items without geometry of their own answer true and add nothing.
    bool segmentObject(const ItemInterface& item, const Wm4::Matrix3<float>& transform,
                       const RenderingProperties& properties);

private:
    friend class VisitorBase<SegmenterVisitor>;
    bool visitItem(const ItemInterface& item, const Wm4::Matrix3<float>& transform,
                   const RenderingProperties& properties);

    SegmentationUtils::BezierSegmentationWorkspace mWorkspace;
    std::list<std::shared_ptr<SegmentedPrimitive>> mPrimitives;
    std::size_t mPrimitiveCount = 0;
    bool mError = false;
    SegmentationOptions mOptions;
    bool mLegacy = true;
    std::size_t mShapeIndex = 0;
    std::vector<SegmentationFailure> mFailures;
};

} // namespace vk::svg

#endif
