// The shape segmenters under SegmentationOptions: outlines built in output
// space run by run (so that a stroker knows which runs are closed), curves
// flattened by tolerance, fills by the tessellator under the shape's rule.
#include <svg/PathPrimitives.h>
#include <svg/Segmentation.h>
#include <svg/Tessellation.h>

#include "segment/AffineMap.h"
#include "segment/StrokeMesh.h"
#include "tessellate/Flatten.h"

#include <cmath>

namespace vk::svg {

namespace {

using V2 = Wm4::Vector2<float>;

constexpr float kDegreesToRadians = 0.017453292f;
constexpr double kTwoPi = 6.283185307179586;
// Without a tolerance every curve, arc and circle gets this many steps.
constexpr unsigned kFixedSteps = 32;

// Collects an outline as runs of points joined by index pairs.
class Outline {
public:
    explicit Outline(SegmentedPrimitive& primitive)
        : mPoints(primitive.editPoints()), mIndices(primitive.editIndices()), mSubpaths(primitive.editSubpaths())
    {
    }

    bool open() const { return mOpen; }

    void start(const V2& point)
    {
        end(false);
        mRunIndex = static_cast<uint32_t>(mIndices.size());
        mRunPoint = static_cast<uint32_t>(mPoints.size());
        mPoints.push_back(point);
        mOpen = true;
    }

    void lineTo(const V2& point)
    {
        if (!mOpen)
            start(mPoints.empty() ? point : mPoints.back());
        mPoints.push_back(point);
        const auto last = static_cast<uint32_t>(mPoints.size() - 1);
        mIndices.push_back(last - 1);
        mIndices.push_back(last);
    }

    // Ends the run; a closed run is joined back to its first point.
    void end(bool closed)
    {
        if (!mOpen)
            return;
        mOpen = false;
        const auto last = static_cast<uint32_t>(mPoints.size() - 1);
        if (last == mRunPoint) {
            // A lone point: kept as a zero-length edge when closed, since a
            // stroke draws it as a dot; dropped otherwise.
            if (!closed) {
                mPoints.pop_back();
                return;
            }
            mIndices.push_back(last);
            mIndices.push_back(last);
        } else if (closed) {
            if (mPoints[last] == mPoints[mRunPoint]) {
                // The close-path came back exactly: its repeat of the first
                // point goes, and the last edge ends at the first point.
                mPoints.pop_back();
                mIndices.back() = mRunPoint;
            } else {
                mIndices.push_back(last);
                mIndices.push_back(mRunPoint);
            }
        }
        mSubpaths.push_back(
            SegmentedPrimitive::Subpath{mRunIndex, static_cast<uint32_t>(mIndices.size()) - mRunIndex, closed});
    }

private:
    std::vector<V2>& mPoints;
    std::vector<uint32_t>& mIndices;
    std::vector<SegmentedPrimitive::Subpath>& mSubpaths;
    uint32_t mRunIndex = 0;
    uint32_t mRunPoint = 0;
    bool mOpen = false;
};

V2 Map(const Wm4::Matrix3<float>& m, const V2& p) { return impl::MapPoint(m, p); }

// Points of an arc in centre form (rotation in radians) after `transform`,
// without its start.
void ArcPoints(const V2& center, const V2& radii, float rotation, float startAngle, float deltaAngle,
               const Wm4::Matrix3<float>& transform, float tolerance, std::vector<V2>& out)
{
    if (tolerance > 0.0f) {
        impl::FlattenArc(center, radii, rotation, startAngle, deltaAngle, transform, tolerance, out);
        return;
    }
    const double c = std::cos(rotation);
    const double s = std::sin(rotation);
    for (unsigned i = 1; i <= kFixedSteps; ++i) {
        const double angle = startAngle + deltaAngle * double(i) / double(kFixedSteps);
        const double x = radii.X() * std::cos(angle);
        const double y = radii.Y() * std::sin(angle);
        out.push_back(Map(transform, V2(static_cast<float>(center.X() + c * x - s * y),
                                        static_cast<float>(center.Y() + s * x + c * y))));
    }
}

void CubicPoints(const V2& p0, const V2& p1, const V2& p2, const V2& p3, float tolerance, std::vector<V2>& out)
{
    if (tolerance > 0.0f) {
        impl::FlattenCubic(p0, p1, p2, p3, tolerance, out);
        return;
    }
    for (unsigned i = 1; i <= kFixedSteps; ++i) {
        const float t = float(i) / float(kFixedSteps);
        const float u = 1.0f - t;
        out.push_back(p0 * (u * u * u) + p1 * (3.0f * u * u * t) + p2 * (3.0f * u * t * t) + p3 * (t * t * t));
    }
    out.back() = p3;
}

// Whether each drawing run of the path ends in a close-path, in the order in
// which the primitive walk starts them: a run begins with the first drawing
// command (or close-path) after the start, a move or a close-path.
std::vector<bool> ClosedRuns(const std::list<PathCommand>& commands)
{
    std::vector<bool> closed;
    bool inRun = false;
    for (const PathCommand& command : commands) {
        switch (command.type) {
        case PathCommandType::MoveTo:
        case PathCommandType::MoveToRel:
            if (inRun)
                closed.push_back(false);
            inRun = false;
            break;
        case PathCommandType::ClosePath:
            closed.push_back(true);
            inRun = false;
            break;
        default:
            inRun = true;
            break;
        }
    }
    if (inRun)
        closed.push_back(false);
    return closed;
}

// Fills the outline under the options' fill.
void Fill(SegmentedPrimitive& primitive, const SegmentationOptions& options, const RenderingProperties& properties,
          std::string* failure)
{
    if (options.tessellateFill) {
        const WindingRule rule =
            properties.getFillRule() == FillRule::EvenOdd ? WindingRule::EvenOdd : WindingRule::NonZero;
        FillMesh mesh;
        std::string reason;
        if (TessellateFill(primitive.getPoints(), primitive.getIndices(), rule, mesh, &reason)) {
            primitive.editTriangleVertices() = std::move(mesh.vertices);
            primitive.editTriangleIndices() = std::move(mesh.indices);
        } else if (failure != nullptr) {
            *failure = reason.empty() ? std::string("the outline could not be filled") : reason;
        }
        return;
    }
    // The trapezoidal triangulator, on a copy: it cleans the outline it is
    // given, and the outline keeps its runs.
    std::vector<V2> points = primitive.getPoints();
    std::vector<uint32_t> indices = primitive.getIndices();
    bool failed = false;
    SegmentedPrimitive filled =
        SegmentedPrimitive::FromContour(std::move(points), std::move(indices), nullptr, &properties, &failed);
    primitive.editTriangleVertices() = std::move(filled.editTriangleVertices());
    primitive.editTriangleIndices() = std::move(filled.editTriangleIndices());
    if (failed && failure != nullptr)
        *failure = "the outline could not be triangulated";
}

// Fills and strokes the outline and copies the properties; the outline is
// already in output space, `transform` took it there.
std::shared_ptr<SegmentedPrimitive> Finish(std::shared_ptr<SegmentedPrimitive> primitive,
                                           const SegmentationOptions& options, const Wm4::Matrix3<float>& transform,
                                           const RenderingProperties* properties, std::string* failure)
{
    if (failure != nullptr)
        failure->clear();
    if (properties == nullptr)
        return primitive;
    primitive->editProperties() = *properties;
    if (properties->hasFill())
        Fill(*primitive, options, *properties, failure);
    if (options.tessellateStroke) {
        std::string reason;
        if (!impl::AddStrokeMesh(*primitive, options, transform, *properties, &reason) && failure != nullptr &&
            failure->empty())
            *failure = reason.empty() ? std::string("the stroke could not be made") : reason;
    }
    return primitive;
}

const Wm4::Matrix3<float>& Or(const Wm4::Matrix3<float>* transform)
{
    return transform != nullptr ? *transform : Wm4::Matrix3<float>::IDENTITY;
}

} // namespace

std::shared_ptr<SegmentedPrimitive> SegmentLine(const Line& line, const SegmentationOptions& options,
                                                const Wm4::Matrix3<float>* transform,
                                                const RenderingProperties* properties)
{
    auto primitive = std::make_shared<SegmentedPrimitive>();
    const Wm4::Matrix3<float>& m = Or(transform);
    Outline outline(*primitive);
    outline.start(Map(m, line.getStart()));
    outline.lineTo(Map(m, line.getEnd()));
    outline.end(false);
    // A line has no inside, but it may well be stroked.
    if (properties != nullptr) {
        primitive->editProperties() = *properties;
        if (options.tessellateStroke)
            impl::AddStrokeMesh(*primitive, options, m, *properties, nullptr);
    }
    return primitive;
}

std::shared_ptr<SegmentedPrimitive> SegmentRect(const Rect& rect, const SegmentationOptions& options,
                                                const Wm4::Matrix3<float>* transform,
                                                const RenderingProperties* properties, std::string* failure)
{
    auto primitive = std::make_shared<SegmentedPrimitive>();
    const Wm4::Matrix3<float>& m = Or(transform);
    const float x = rect.getPosition().X();
    const float y = rect.getPosition().Y();
    const float w = rect.getSize().X();
    const float h = rect.getSize().Y();
    Outline outline(*primitive);
    outline.start(Map(m, V2(x, y)));
    outline.lineTo(Map(m, V2(x + w, y)));
    outline.lineTo(Map(m, V2(x + w, y + h)));
    outline.lineTo(Map(m, V2(x, y + h)));
    outline.end(true);
    return Finish(primitive, options, m, properties, failure);
}

std::shared_ptr<SegmentedPrimitive> SegmentCircle(const Circle& circle, const SegmentationOptions& options,
                                                  const Wm4::Matrix3<float>* transform,
                                                  const RenderingProperties* properties, std::string* failure)
{
    auto primitive = std::make_shared<SegmentedPrimitive>();
    const Wm4::Matrix3<float>& m = Or(transform);
    const V2 center = circle.getCenter();
    const float r = circle.getRadius();
    Outline outline(*primitive);
    const V2 start = Map(m, V2(center.X() + r, center.Y()));
    outline.start(start);
    std::vector<V2> points;
    ArcPoints(center, V2(r, r), 0.0f, 0.0f, static_cast<float>(kTwoPi), m, options.tolerance, points);
    // A float turn is not exactly 2 pi: the loop ends on its start.
    if (!points.empty())
        points.back() = start;
    for (const V2& point : points)
        outline.lineTo(point);
    outline.end(true);
    return Finish(primitive, options, m, properties, failure);
}

std::shared_ptr<SegmentedPrimitive> SegmentPath(const Path& path, const SegmentationOptions& options,
                                                const Wm4::Matrix3<float>* transform,
                                                const RenderingProperties* properties,
                                                SegmentationUtils::BezierSegmentationWorkspace* /*workspace*/,
                                                std::string* failure)
{
    auto primitive = std::make_shared<SegmentedPrimitive>();
    const Wm4::Matrix3<float>& m = Or(transform);
    const std::vector<bool> closedRuns = ClosedRuns(path.getCommands());
    std::size_t run = 0;
    Outline outline(*primitive);
    std::vector<V2> points;
    const auto endRun = [&]() {
        if (outline.open())
            outline.end(run > 0 && run - 1 < closedRuns.size() && closedRuns[run - 1]);
    };
    PathVisitorCommandsToPrimitives visitor(
        path.getCommands(), [&](std::unique_ptr<PathPrimitive>& item, bool newContour) {
            if (item == nullptr)
                return;
            if (newContour) {
                endRun();
                ++run;
            }
            points.clear();
            switch (item->type) {
            case PathPrimitive::Line: {
                const auto& line = static_cast<const PathLine&>(*item);
                if (newContour)
                    outline.start(Map(m, line.start));
                points.push_back(Map(m, line.end));
                break;
            }
            case PathPrimitive::EllipticalArc: {
                const auto& arc = static_cast<const PathEllipticalArc&>(*item);
                if (newContour)
                    outline.start(Map(m, arc.start));
                if (arc.isClosed())
                    break; // SVG leaves out an arc that ends where it starts
                if (arc.hasDegenerateRadii()) {
                    points.push_back(Map(m, arc.end));
                    break;
                }
                ArcPoints(arc.center, arc.radii, arc.rotation * kDegreesToRadians, arc.startAngle, arc.deltaAngle, m,
                          options.tolerance, points);
                if (!points.empty())
                    points.back() = Map(m, arc.end);
                break;
            }
            case PathPrimitive::BezierCubic: {
                const Wm4::Vector2<float>* c = static_cast<const PathBezierCubic&>(*item).curve.GetControlPoints();
                if (newContour)
                    outline.start(Map(m, c[0]));
                CubicPoints(Map(m, c[0]), Map(m, c[1]), Map(m, c[2]), Map(m, c[3]), options.tolerance, points);
                break;
            }
            default:
                break;
            }
            for (const V2& point : points)
                outline.lineTo(point);
        });
    visitor.visit();
    endRun();
    return Finish(primitive, options, m, properties, failure);
}

} // namespace vk::svg
