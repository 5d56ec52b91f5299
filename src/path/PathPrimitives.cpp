#include <svg/PathPrimitives.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vk::svg {

namespace {

using V2 = Wm4::Vector2<float>;

// Degrees to radians and a full turn, in single precision as the arc
// segmentation uses them, so that both agree on the angles.
constexpr float kDegreesToRadians = 0.017453292f;
constexpr float kTwoPi = 6.2831855f;
constexpr double kPi = 3.14159265358979323846;

V2 MapPoint(const Wm4::Matrix3<float>& m, const V2& p)
{
    return V2(m(0, 0) * p.X() + m(0, 1) * p.Y() + m(0, 2), m(1, 0) * p.X() + m(1, 1) * p.Y() + m(1, 2));
}

float Min(float a, float b) { return a < b ? a : b; }
float Max(float a, float b) { return a > b ? a : b; }

BoundingBox BoxOfTwo(const V2& a, const V2& b)
{
    return BoundingBox(V2(Min(a.X(), b.X()), Min(a.Y(), b.Y())), V2(Max(a.X(), b.X()), Max(a.Y(), b.Y())));
}

// Whether `angle` is reached when sweeping `delta` radians from `start`
// (in either direction, by the sign of `delta`), modulo full turns.
bool WithinSweep(double angle, double start, double delta)
{
    constexpr double kFullTurn = 2.0 * kPi;
    if (std::fabs(delta) >= kFullTurn) {
        return true;
    }
    double travelled = std::fmod(delta >= 0.0 ? angle - start : start - angle, kFullTurn);
    if (travelled < 0.0) {
        travelled += kFullTurn;
    }
    return travelled <= std::fabs(delta); // false for anything NaN
}

} // namespace

PathPrimitive::~PathPrimitive() = default;

PathLine::PathLine(const V2& lineStart, const V2& lineEnd) : PathPrimitive(Line), start(lineStart), end(lineEnd) {}

void PathLine::computeBoundingBox(BoundingBox& box, const Wm4::Matrix3<float>& transform) const
{
    box = BoxOfTwo(MapPoint(transform, start), MapPoint(transform, end));
}

PathEllipticalArc::PathEllipticalArc(const V2& arcRadii, bool arcLargeArc, bool arcSweep, const V2& arcStart,
                                     const V2& arcEnd, float rotationDegrees)
    : PathPrimitive(EllipticalArc), center(0.0f, 0.0f), start(arcStart), end(arcEnd),
      radii(std::fabs(arcRadii.X()), std::fabs(arcRadii.Y())), rotation(rotationDegrees), largeArc(arcLargeArc),
      sweep(arcSweep), startAngle(0.0f), deltaAngle(0.0f)
{
    if (isClosed() || hasDegenerateRadii()) {
        return;
    }
    // Endpoint to centre conversion as in the SVG implementation notes, but
    // without enlarging radii that are too small for the chord: those keep
    // k = 0, putting the centre on the chord's midpoint.
    const float phi = rotation * kDegreesToRadians;
    const float cosPhi = std::cos(phi);
    const float sinPhi = std::sin(phi);
    const float dx = (start.X() - end.X()) / 2.0f;
    const float dy = (start.Y() - end.Y()) / 2.0f;
    const float x1 = cosPhi * dx + sinPhi * dy;
    const float y1 = -sinPhi * dx + cosPhi * dy;

    const float rx = radii.X();
    const float ry = radii.Y();
    const float rx2 = rx * rx;
    const float ry2 = ry * ry;
    const float q = (rx2 * ry2 - rx2 * y1 * y1 - ry2 * x1 * x1) / (rx2 * y1 * y1 + ry2 * x1 * x1);
    float k = q >= 0.0f ? std::sqrt(q) : 0.0f;
    if (largeArc == sweep) {
        k = -k;
    }
    const float cx = k * rx * y1 / ry;
    const float cy = -k * ry * x1 / rx;
    center = V2((start.X() + end.X()) / 2.0f + cosPhi * cx - sinPhi * cy,
                (start.Y() + end.Y()) / 2.0f + sinPhi * cx + cosPhi * cy);

    const float ux = (x1 - cx) / rx;
    const float uy = (y1 - cy) / ry;
    const float vx = (-x1 - cx) / rx;
    const float vy = (-y1 - cy) / ry;
    const float uLength = std::sqrt(ux * ux + uy * uy);
    const float vLength = std::sqrt(vx * vx + vy * vy);

    // Not clamped: rounding may push the ratio a hair past 1 and give NaN,
    // which arc segmentation then treats like any other angle.
    startAngle = std::acos(ux / uLength);
    if (uy < 0.0f) {
        startAngle = -startAngle;
    }
    deltaAngle = std::acos(std::clamp((ux * vx + uy * vy) / (uLength * vLength), -1.0f, 1.0f));
    if (ux * vy - uy * vx < 0.0f) {
        deltaAngle = -deltaAngle;
    }
    if (!sweep && deltaAngle > 0.0f) {
        deltaAngle -= kTwoPi;
    } else if (sweep && deltaAngle < 0.0f) {
        deltaAngle += kTwoPi;
    }
}

bool PathEllipticalArc::isClosed() const { return start.X() == end.X() && start.Y() == end.Y(); }

bool PathEllipticalArc::hasDegenerateRadii() const { return radii.X() < 0.01f || radii.Y() < 0.01f; }

void PathEllipticalArc::computeBoundingBox(BoundingBox& box, const Wm4::Matrix3<float>& transform) const
{
    BoundingBox result = BoxOfTwo(MapPoint(transform, start), MapPoint(transform, end));
    if (isClosed() || hasDegenerateRadii()) {
        box = result;
        return;
    }

    // The ellipse is c + cos t * a + sin t * b with a and b its rotated half
    // axes; mapped, each coordinate is p + cos t * A + sin t * B and has its
    // extremes where tan t = B / A. Worked in double so that the box is not
    // narrower than points sampled in single precision.
    const double phi = static_cast<double>(rotation * kDegreesToRadians);
    const double cosPhi = std::cos(phi);
    const double sinPhi = std::sin(phi);
    const double m00 = transform(0, 0);
    const double m01 = transform(0, 1);
    const double m10 = transform(1, 0);
    const double m11 = transform(1, 1);
    const double ax = radii.X() * cosPhi;
    const double ay = radii.X() * sinPhi;
    const double bx = -radii.Y() * sinPhi;
    const double by = radii.Y() * cosPhi;
    const double mappedAx = m00 * ax + m01 * ay;
    const double mappedAy = m10 * ax + m11 * ay;
    const double mappedBx = m00 * bx + m01 * by;
    const double mappedBy = m10 * bx + m11 * by;
    const double px = m00 * center.X() + m01 * center.Y() + transform(0, 2);
    const double py = m10 * center.X() + m11 * center.Y() + transform(1, 2);

    const auto addAngle = [&](double t) {
        const double c = std::cos(t);
        const double s = std::sin(t);
        result.expandToContain(V2(static_cast<float>(px + c * mappedAx + s * mappedBx),
                                  static_cast<float>(py + c * mappedAy + s * mappedBy)));
    };
    // The end points alone suffice at the ends of the sweep: with radii too
    // small for the chord the ellipse ends on the chord between them.
    const double from = startAngle;
    const double delta = deltaAngle;
    const double xExtreme = std::atan2(mappedBx, mappedAx);
    const double yExtreme = std::atan2(mappedBy, mappedAy);
    for (const double t : {xExtreme, xExtreme + kPi, yExtreme, yExtreme + kPi}) {
        if (WithinSweep(t, from, delta)) {
            addAngle(t);
        }
    }
    box = result;
}

PathBezierCubic::PathBezierCubic(V2* controlPoints) : PathPrimitive(BezierCubic), curve(3, controlPoints) {}

PathBezierCubic::PathBezierCubic(const V2& p0, const V2& p1, const V2& p2, const V2& p3)
    : PathPrimitive(BezierCubic), curve(3, new V2[4]{p0, p1, p2, p3})
{
}

void PathBezierCubic::computeBoundingBox(BoundingBox& /*box*/, const Wm4::Matrix3<float>& /*transform*/) const
{
    // Deliberately nothing: an estimated box does not bound curves.
}

PathVisitorCommandsToPrimitives::PathVisitorCommandsToPrimitives(const std::list<PathCommand>& commands,
                                                                 const Callback& callback)
    : mCommands(commands), mCallback(callback), mCurrentPoint(0.0f, 0.0f), mSubpathStart(0.0f, 0.0f)
{
}

namespace {

std::size_t RequiredValues(PathCommandType type)
{
    switch (type) {
    case PathCommandType::MoveTo:
    case PathCommandType::MoveToRel:
    case PathCommandType::LineTo:
    case PathCommandType::LineToRel:
        return 2;
    case PathCommandType::EllipticalArc:
    case PathCommandType::EllipticalArcRel:
        return 7;
    case PathCommandType::HLineTo:
    case PathCommandType::HLineToRel:
    case PathCommandType::VLineTo:
    case PathCommandType::VLineToRel:
        return 1;
    case PathCommandType::BezierCubic:
    case PathCommandType::BezierCubicRel:
        return 6;
    case PathCommandType::SmoothBezierCubic:
    case PathCommandType::SmoothBezierCubicRel:
        return 4;
    case PathCommandType::ClosePath:
        return 0;
    }
    return 0;
}

bool IsCubic(PathCommandType type)
{
    return type == PathCommandType::BezierCubic || type == PathCommandType::BezierCubicRel ||
           type == PathCommandType::SmoothBezierCubic || type == PathCommandType::SmoothBezierCubicRel;
}

} // namespace

void PathVisitorCommandsToPrimitives::visit()
{
    mCurrentPoint = V2(0.0f, 0.0f);
    mSubpathStart = V2(0.0f, 0.0f);
    bool newContour = true;
    const PathCommand* previous = nullptr;

    for (const PathCommand& command : mCommands) {
        const PathCommand* before = previous;
        previous = &command;
        const std::vector<float>& v = command.values;
        if (v.size() < RequiredValues(command.type)) {
            continue;
        }
        const V2 p = mCurrentPoint;
        std::unique_ptr<PathPrimitive> primitive;
        V2 endPoint(0.0f, 0.0f);
        switch (command.type) {
        case PathCommandType::MoveTo:
            mCurrentPoint = mSubpathStart = V2(v[0], v[1]);
            newContour = true;
            continue;
        case PathCommandType::MoveToRel:
            mCurrentPoint = mSubpathStart = V2(p.X() + v[0], p.Y() + v[1]);
            newContour = true;
            continue;
        case PathCommandType::LineTo:
            endPoint = V2(v[0], v[1]);
            break;
        case PathCommandType::LineToRel:
            endPoint = V2(p.X() + v[0], p.Y() + v[1]);
            break;
        case PathCommandType::HLineTo:
            endPoint = V2(v[0], p.Y());
            break;
        case PathCommandType::HLineToRel:
            endPoint = V2(p.X() + v[0], p.Y());
            break;
        case PathCommandType::VLineTo:
            endPoint = V2(p.X(), v[0]);
            break;
        case PathCommandType::VLineToRel:
            endPoint = V2(p.X(), p.Y() + v[0]);
            break;
        case PathCommandType::ClosePath:
            endPoint = mSubpathStart;
            break;
        case PathCommandType::EllipticalArc:
        case PathCommandType::EllipticalArcRel: {
            endPoint = command.type == PathCommandType::EllipticalArc ? V2(v[5], v[6]) : V2(p.X() + v[5], p.Y() + v[6]);
            // Any non-zero flag is set, NaN included.
            primitive =
                std::make_unique<PathEllipticalArc>(V2(v[0], v[1]), v[3] != 0.0f, v[4] != 0.0f, p, endPoint, v[2]);
            break;
        }
        case PathCommandType::BezierCubic:
        case PathCommandType::BezierCubicRel: {
            const V2 offset = command.type == PathCommandType::BezierCubicRel ? p : V2(0.0f, 0.0f);
            endPoint = V2(offset.X() + v[4], offset.Y() + v[5]);
            primitive = std::make_unique<PathBezierCubic>(p, V2(offset.X() + v[0], offset.Y() + v[1]),
                                                          V2(offset.X() + v[2], offset.Y() + v[3]), endPoint);
            break;
        }
        case PathCommandType::SmoothBezierCubic:
        case PathCommandType::SmoothBezierCubicRel: {
            const bool relative = command.type == PathCommandType::SmoothBezierCubicRel;
            const V2 offset = relative ? p : V2(0.0f, 0.0f);
            V2 firstControl = p;
            if (before != nullptr && IsCubic(before->type) && before->values.size() >= 4) {
                // Reflects the previous command's raw numbers, also when they
                // were relative: kept that way on purpose.
                const std::vector<float>& w = before->values;
                const std::size_t n = w.size();
                firstControl = V2(2.0f * w[n - 2] - w[n - 4], 2.0f * w[n - 1] - w[n - 3]);
                if (relative) {
                    firstControl = V2(firstControl.X() + p.X(), firstControl.Y() + p.Y());
                }
            }
            endPoint = V2(offset.X() + v[2], offset.Y() + v[3]);
            primitive =
                std::make_unique<PathBezierCubic>(p, firstControl, V2(offset.X() + v[0], offset.Y() + v[1]), endPoint);
            break;
        }
        default:
            continue; // unknown type
        }
        if (!primitive) {
            primitive = std::make_unique<PathLine>(p, endPoint);
        }
        mCurrentPoint = endPoint;
        if (mCallback) {
            mCallback(primitive, newContour);
        }
        primitive.reset();
        newContour = command.type == PathCommandType::ClosePath;
    }
}

} // namespace vk::svg
