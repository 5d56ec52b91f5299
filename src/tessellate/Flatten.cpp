#include "tessellate/Flatten.h"

#include <algorithm>
#include <cmath>

namespace vk::svg::impl {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kQuarterTurn = kPi / 2;

struct Point {
    double x;
    double y;
};

Point ToDouble(const Wm4::Vector2<float>& p) { return {p.X(), p.Y()}; }

Wm4::Vector2<float> ToFloat(const Point& p)
{
    return Wm4::Vector2<float>(static_cast<float>(p.x), static_cast<float>(p.y));
}

bool ValidTolerance(double tolerance) { return tolerance > 0 && std::isfinite(tolerance); }

// ceil(q) clamped to [1, kMaxFlattenSteps]. A count within a millionth above a
// whole number rounds down: a float sweep of 2 pi is a hair over the double
// one, and an extra step for that would be waste. The step widens by at most
// a millionth, so the error grows by about two millionths of the tolerance,
// below the float rounding of the output.
std::size_t StepCount(double q)
{
    if (!(q > 1)) // also NaN
        return 1;
    q *= 1 - 1e-6;
    if (!(q < static_cast<double>(kMaxFlattenSteps)))
        return kMaxFlattenSteps;
    return std::max<std::size_t>(1, static_cast<std::size_t>(std::ceil(q)));
}

double DistanceToSegment(const Point& p, const Point& a, const Point& b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double len2 = dx * dx + dy * dy;
    double t = 0;
    if (len2 > 0)
        t = std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / len2, 0.0, 1.0);
    return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

// The widest step angle of an ellipse whose largest semi-axis is `radius`
// that keeps every chord within `tolerance`: the sagitta R (1 - cos(step / 2))
// written as 2 R sin^2(step / 4), which stays accurate for tiny ratios where
// 1 - tol / R would round to 1. A quarter turn at most, so tiny or invalid
// input still keeps the shape's extent.
double StepAngle(double radius, double tolerance)
{
    if (!ValidTolerance(tolerance) || !(radius > 0) || !std::isfinite(radius))
        return kQuarterTurn;
    const double ratio = tolerance / radius;
    if (ratio >= 2)
        return kQuarterTurn;
    return std::min(kQuarterTurn, 4 * std::asin(std::sqrt(ratio / 2)));
}

// The arc's ellipse after the map: origin + L (cos t, sin t).
struct MappedEllipse {
    Point origin;
    double l00, l01, l10, l11;

    MappedEllipse(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, double rotation,
                  const Wm4::Matrix3<float>& m)
    {
        const double a00 = m(0, 0), a01 = m(0, 1), a10 = m(1, 0), a11 = m(1, 1);
        origin = {a00 * center.X() + a01 * center.Y() + m(0, 2), a10 * center.X() + a11 * center.Y() + m(1, 2)};
        const double c = std::cos(rotation);
        const double s = std::sin(rotation);
        const double rx = radii.X();
        const double ry = radii.Y();
        // A * Rot(rotation) * diag(rx, ry)
        l00 = (a00 * c + a01 * s) * rx;
        l01 = (a01 * c - a00 * s) * ry;
        l10 = (a10 * c + a11 * s) * rx;
        l11 = (a11 * c - a10 * s) * ry;
    }

    Point at(double angle) const
    {
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        return {origin.x + l00 * c + l01 * s, origin.y + l10 * c + l11 * s};
    }

    // The largest singular value of L: the mapped ellipse's major semi-axis.
    double majorRadius() const { return (std::hypot(l00 + l11, l10 - l01) + std::hypot(l00 - l11, l10 + l01)) / 2; }
};

} // namespace

// Each chord spans a parameter interval of width h = 1 / n. The curve minus
// the chord's linear interpolation vanishes at both ends, so it is bounded by
// h^2 / 8 times max |B''| (the interpolation error of a C2 function, valid for
// vectors because the Green's function is non-negative). B'' is 6 times the
// linear blend of the second differences d0 = p0 - 2 p1 + p2 and
// d1 = p1 - 2 p2 + p3, so max |B''| = 6 max(|d0|, |d1|) and the distance is at
// most (3/4) max(|d0|, |d1|) / n^2. The bound is met with equality by a
// symmetric parabola, so the count is close to minimal.
std::size_t FlattenCubic(const Wm4::Vector2<float>& p0, const Wm4::Vector2<float>& p1, const Wm4::Vector2<float>& p2,
                         const Wm4::Vector2<float>& p3, float tolerance, std::vector<Wm4::Vector2<float>>& out)
{
    const Point q0 = ToDouble(p0), q1 = ToDouble(p1), q2 = ToDouble(p2), q3 = ToDouble(p3);
    const double tol = tolerance;
    std::size_t steps = 1;
    // The curve lies in the hull of its control points, and the distance to
    // the chord is convex, so control points near the chord keep the whole
    // curve near it: straight curves need no second difference bound.
    const double hullDistance = std::max(DistanceToSegment(q1, q0, q3), DistanceToSegment(q2, q0, q3));
    if (ValidTolerance(tol) && !(hullDistance <= tol)) {
        const double d0 = std::hypot(q0.x - 2 * q1.x + q2.x, q0.y - 2 * q1.y + q2.y);
        const double d1 = std::hypot(q1.x - 2 * q2.x + q3.x, q1.y - 2 * q2.y + q3.y);
        const double dd = std::max(d0, d1);
        if (std::isfinite(dd))
            steps = StepCount(std::sqrt(0.75 * dd / tol));
    }

    const double n = static_cast<double>(steps);
    for (std::size_t i = 1; i < steps; ++i) {
        const double t = static_cast<double>(i) / n;
        const double u = 1 - t;
        const double b0 = u * u * u, b1 = 3 * u * u * t, b2 = 3 * u * t * t, b3 = t * t * t;
        out.push_back(
            ToFloat({b0 * q0.x + b1 * q1.x + b2 * q2.x + b3 * q3.x, b0 * q0.y + b1 * q1.y + b2 * q2.y + b3 * q3.y}));
    }
    out.push_back(p3);
    return steps;
}

Wm4::Vector2<float> MapArcPoint(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float rotation,
                                double angle, const Wm4::Matrix3<float>& transform)
{
    return ToFloat(MappedEllipse(center, radii, rotation, transform).at(angle));
}

// An affine image of an ellipse is an ellipse, traced by L applied to the unit
// circle. A chord of the image is the image of the circle's chord, and every
// circle point u of a step of angle a lies within 1 - cos(a / 2) of some point
// w of its chord (along the radius for a below pi, from the chord's midpoint
// otherwise). |L (u - w)| <= s1 |u - w| with s1 the largest singular value, so
// the mapped distance is at most the sagitta of a circle of radius s1.
std::size_t FlattenArc(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float rotation,
                       float startAngle, float deltaAngle, const Wm4::Matrix3<float>& transform, float tolerance,
                       std::vector<Wm4::Vector2<float>>& out)
{
    const MappedEllipse ellipse(center, radii, rotation, transform);
    const double start = startAngle;
    const double sweep = deltaAngle;
    std::size_t steps = 1;
    if (std::isfinite(sweep) && std::isfinite(start))
        steps = StepCount(std::fabs(sweep) / StepAngle(ellipse.majorRadius(), tolerance));

    const double n = static_cast<double>(steps);
    for (std::size_t i = 1; i < steps; ++i)
        out.push_back(ToFloat(ellipse.at(start + sweep * (static_cast<double>(i) / n))));
    out.push_back(ToFloat(ellipse.at(start + sweep)));
    return steps;
}

unsigned CircleSteps(float radius, float tolerance)
{
    return static_cast<unsigned>(StepCount(2 * kPi / StepAngle(std::fabs(static_cast<double>(radius)), tolerance)));
}

} // namespace vk::svg::impl
