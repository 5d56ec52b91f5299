#include <svg/PathPrimitives.h>
#include <svg/Segmentation.h>

#include "segment/AffineMap.h"
#include "segment/SegmentationLimits.h"

#include <cmath>
#include <new>
#include <stdexcept>

namespace vk::svg {

namespace {

using V2 = Wm4::Vector2<float>;

constexpr float kDegreesToRadians = 0.017453292f;
constexpr float kPi = 3.1415927f;

std::shared_ptr<SegmentedPrimitive> Share(SegmentedPrimitive&& primitive)
{
    return std::make_shared<SegmentedPrimitive>(std::move(primitive));
}

// The walk over a path's primitives, appending each to one contour.
class PathContour {
public:
    PathContour(unsigned int segments, float tolerance, SegmentationUtils::BezierSegmentationWorkspace& workspace,
                bool closeRunsOnStart)
        : mSegments(segments), mTolerance(tolerance), mWorkspace(workspace), mCloseRunsOnStart(closeRunsOnStart)
    {
    }

    void add(const PathPrimitive& primitive, bool newContour)
    {
        std::vector<V2>& points = mContour.editPoints();
        const std::size_t before = points.size();
        // A primitive that added nothing cannot have started its contour;
        // the next one does, rather than joining the previous subpath.
        newContour = newContour || mPendingNewContour || points.empty();
        mPendingNewContour = false;
        if (newContour && before > 0)
            closeRun();
        switch (primitive.type) {
        case PathPrimitive::Line:
            addLine(static_cast<const PathLine&>(primitive), newContour);
            break;
        case PathPrimitive::EllipticalArc:
            addArc(static_cast<const PathEllipticalArc&>(primitive), newContour);
            break;
        case PathPrimitive::BezierCubic:
            SegmentationUtils::DeCasteljauSegmentBezier(mWorkspace,
                                                        static_cast<const PathBezierCubic&>(primitive).curve, mContour,
                                                        newContour, mSegments, mTolerance);
            break;
        default:
            break;
        }
        mPendingNewContour = newContour && points.size() == before;
        if (newContour && points.size() > before)
            mRunStart = before;
    }

    SegmentedPrimitive& contour()
    {
        closeRun();
        return mContour;
    }

    // Room for the most that `commands` can add, so that the contour is not
    // copied over and over while it grows. A step count too large to be
    // meant gets no head start.
    void reserveFor(const std::list<PathCommand>& commands)
    {
        constexpr uint64_t kMostReserved = 1u << 16;
        uint64_t points = 0;
        uint64_t pairs = 0;
        for (const PathCommand& command : commands) {
            switch (command.type) {
            case PathCommandType::MoveTo:
            case PathCommandType::MoveToRel:
                break;
            case PathCommandType::EllipticalArc:
            case PathCommandType::EllipticalArcRel:
                points += uint64_t{mSegments} + 1;
                pairs += mSegments;
                break;
            case PathCommandType::BezierCubic:
            case PathCommandType::BezierCubicRel:
            case PathCommandType::SmoothBezierCubic:
            case PathCommandType::SmoothBezierCubicRel:
                points += uint64_t{mSegments} + 2;
                pairs += uint64_t{mSegments} + 1;
                break;
            default: // lines and close-path
                points += 2;
                pairs += 1;
                break;
            }
        }
        if (points > kMostReserved)
            return;
        mContour.editPoints().reserve(static_cast<std::size_t>(points));
        mContour.editIndices().reserve(static_cast<std::size_t>(2 * pairs));
    }

private:
    // Every line keeps its own end point, zero-length ones included, so
    // that the contour follows the path command by command; cleanup drops
    // the repeats before a fill is triangulated.
    void addLine(const PathLine& line, bool newContour)
    {
        std::vector<V2>& points = mContour.editPoints();
        std::vector<uint32_t>& indices = mContour.editIndices();
        if (newContour)
            points.push_back(line.start);
        points.push_back(line.end);
        indices.push_back(static_cast<uint32_t>(points.size() - 2));
        indices.push_back(static_cast<uint32_t>(points.size() - 1));
    }

    void addArc(const PathEllipticalArc& arc, bool newContour)
    {
        std::vector<V2>& points = mContour.editPoints();
        if (arc.isClosed()) {
            if (!newContour)
                points.back() = arc.end;
            return;
        }
        if (arc.hasDegenerateRadii())
            return;
        const std::size_t k = points.size();
        SegmentationUtils::SegmentEllipticalArc(arc.center, arc.radii, arc.rotation * kDegreesToRadians, arc.startAngle,
                                                arc.deltaAngle, points, mContour.editIndices(), newContour, mSegments,
                                                mTolerance);
        // The angle formula rounds; the first point the arc added is pinned
        // to the exact start so that the contour cannot open there. Its last
        // point is pinned to the exact end for the same reason: a close path
        // after the arc returns to a point a rounding error away, and a
        // contour left open by that much cannot be triangulated.
        if (points.size() > k) {
            points[k] = arc.start;
            points.back() = arc.end;
        }
    }

    // In a contour to be filled, a run that comes back exactly to where it
    // started (a close path, or a last line or curve ending on the first
    // point) ends on the first point's index. Ending on a copy of it leaves
    // the loop closed only by coordinates: when the edge before that copy
    // is short, cleanup merges the copy into a point next to the start, the
    // loop opens by that hair's breadth and the shape fills nothing. The
    // copy stays in the point list, and outlines that are not filled keep
    // the copy's index, so that only fills see a difference.
    void closeRun()
    {
        if (!mCloseRunsOnStart)
            return;
        const std::vector<V2>& points = mContour.getPoints();
        std::vector<uint32_t>& indices = mContour.editIndices();
        if (indices.empty() || points.size() < mRunStart + 3)
            return;
        const std::size_t last = points.size() - 1;
        if (indices.back() == last && points[last] == points[mRunStart])
            indices.back() = static_cast<uint32_t>(mRunStart);
    }

    unsigned int mSegments;
    float mTolerance;
    SegmentationUtils::BezierSegmentationWorkspace& mWorkspace;
    SegmentedPrimitive mContour;
    bool mPendingNewContour = false;
    std::size_t mRunStart = 0;
    bool mCloseRunsOnStart;
};

} // namespace

std::shared_ptr<SegmentedPrimitive> SegmentLine(const Line& line, const Wm4::Matrix3<float>* transform,
                                                const RenderingProperties* properties)
{
    auto result = std::make_shared<SegmentedPrimitive>();
    std::vector<V2>& points = result->editPoints();
    points.reserve(2);
    if (transform != nullptr) {
        points.push_back(impl::MapPoint(*transform, line.getStart()));
        points.push_back(impl::MapPoint(*transform, line.getEnd()));
    } else {
        points.push_back(line.getStart());
        points.push_back(line.getEnd());
    }
    result->editIndices() = {0, 1};
    if (properties != nullptr)
        result->editProperties() = *properties;
    return result;
}

std::shared_ptr<SegmentedPrimitive> SegmentRect(const Rect& rect, const Wm4::Matrix3<float>* transform,
                                                const RenderingProperties* properties, bool* error)
{
    const float x = rect.getPosition().X();
    const float y = rect.getPosition().Y();
    const float w = rect.getSize().X();
    const float h = rect.getSize().Y();
    std::vector<V2> points{V2(x, y), V2(x + w, y), V2(x + w, y + h), V2(x, y + h)};
    std::vector<uint32_t> indices{0, 1, 1, 2, 2, 3, 3, 0};
    return Share(SegmentedPrimitive::FromContour(std::move(points), std::move(indices), transform, properties, error));
}

std::shared_ptr<SegmentedPrimitive> SegmentCircle(const Circle& circle, unsigned int segments, float /*tolerance*/,
                                                  const Wm4::Matrix3<float>* transform,
                                                  const RenderingProperties* properties, bool* error)
{
    std::vector<V2> points;
    std::vector<uint32_t> indices;
    if (segments > 0 && impl::WithinSegmentLimit(segments)) {
        try {
            points.reserve(segments);
            indices.reserve(2 * static_cast<std::size_t>(segments));
        } catch (const std::bad_alloc&) {
            impl::LogOutOfMemory();
            segments = 0;
        }
        const float cx = circle.getCenter().X();
        const float cy = circle.getCenter().Y();
        const float r = circle.getRadius();
        const float n = static_cast<float>(segments);
        for (unsigned int i = 0; i < segments; ++i) {
            const float theta = (static_cast<float>(i) / n) * 2.0f * kPi;
            points.emplace_back(cx + r * std::cos(theta), cy + r * std::sin(theta));
            indices.push_back(i);
            indices.push_back(i + 1 < segments ? i + 1 : 0);
        }
    }
    return Share(SegmentedPrimitive::FromContour(std::move(points), std::move(indices), transform, properties, error));
}

std::shared_ptr<SegmentedPrimitive> SegmentPath(const Path& path, unsigned int segments, float tolerance,
                                                const Wm4::Matrix3<float>* transform,
                                                const RenderingProperties* properties,
                                                SegmentationUtils::BezierSegmentationWorkspace* workspace, bool* error)
{
    SegmentationUtils::BezierSegmentationWorkspace ownWorkspace;
    PathContour contour(segments, tolerance, workspace != nullptr ? *workspace : ownWorkspace,
                        properties != nullptr && properties->hasFill());
    contour.reserveFor(path.getCommands());
    PathVisitorCommandsToPrimitives visitor(path.getCommands(),
                                            [&contour](std::unique_ptr<PathPrimitive>& primitive, bool newContour) {
                                                if (primitive != nullptr)
                                                    contour.add(*primitive, newContour);
                                            });
    visitor.visit();
    SegmentedPrimitive& collected = contour.contour();
    return Share(SegmentedPrimitive::FromContour(std::move(collected.editPoints()), std::move(collected.editIndices()),
                                                 transform, properties, error));
}

} // namespace vk::svg
