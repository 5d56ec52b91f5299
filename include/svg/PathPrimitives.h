#ifndef VKSVG_PATHPRIMITIVES_H
#define VKSVG_PATHPRIMITIVES_H

#include <svg/BoundingBox.h>
#include <svg/Export.h>
#include <svg/PathCommand.h>

#include <wm4/Wm4BezierCurve2.h>
#include <wm4/Wm4Matrix3.h>
#include <wm4/Wm4Vector2.h>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>

namespace vk::svg {

/// An absolute piece of geometry taken from a path: a line, an elliptical arc
/// in centre form or a cubic Bezier curve. Consumers switch on `type` and
/// downcast.
///
/// Threads: primitives are plain values, and a PathVisitorCommandsToPrimitives
/// is one thread's object at a time; different visitors may run at once on
/// any threads, also over the same (unchanging) command list.
class VKSVG_API PathPrimitive {
public:
    /// The concrete class of a primitive, as stored in `type`.
    enum Type : uint32_t {
        Line = 0,          ///< PathLine
        EllipticalArc = 1, ///< PathEllipticalArc
        BezierCubic = 2,   ///< PathBezierCubic
    };

    /// A Type value.
    uint32_t type;

    virtual ~PathPrimitive();

    /// The primitive's box under the affine part of `transform`
    /// (x' = m00 x + m01 y + m02, y' = m10 x + m11 y + m12).
    virtual void computeBoundingBox(BoundingBox& box, const Wm4::Matrix3<float>& transform) const = 0;

protected:
    /// A primitive of the given Type.
    explicit PathPrimitive(uint32_t primitiveType) : type(primitiveType) {}
    ///@{
    /// Copies the type.
    PathPrimitive(const PathPrimitive&) = default;
    PathPrimitive& operator=(const PathPrimitive&) = default;
    ///@}
};

/// A straight line between two absolute points.
class VKSVG_API PathLine : public PathPrimitive {
public:
    Wm4::Vector2<float> start; ///< absolute start point
    Wm4::Vector2<float> end;   ///< absolute end point

    /// A line from `lineStart` to `lineEnd`.
    PathLine(const Wm4::Vector2<float>& lineStart, const Wm4::Vector2<float>& lineEnd);

    /// Overwrites `box` with the box of the two mapped end points.
    void computeBoundingBox(BoundingBox& box, const Wm4::Matrix3<float>& transform) const override;
};

/// An arc from `start` to `end` on an ellipse, in the centre form that
/// segmentation needs. The radii are kept as given (made positive) and never
/// enlarged: when they are too small for the chord the centre sits on the
/// chord's midpoint and the ellipse does not reach the end points.
class VKSVG_API PathEllipticalArc : public PathPrimitive {
public:
    /// The centre of the ellipse.
    Wm4::Vector2<float> center;
    /// The absolute start point.
    Wm4::Vector2<float> start;
    /// The absolute end point.
    Wm4::Vector2<float> end;
    /// The radii along the rotated axes, made positive.
    Wm4::Vector2<float> radii;
    float rotation; ///< x-axis rotation in degrees, as given
    /// The large-arc flag.
    bool largeArc;
    /// The sweep flag.
    bool sweep;
    float startAngle; ///< radians
    float deltaAngle; ///< radians, positive when `sweep` is set

    /// Closed arcs and arcs with a radius below 0.01 keep a zero centre and
    /// zero angles.
    PathEllipticalArc(const Wm4::Vector2<float>& arcRadii, bool arcLargeArc, bool arcSweep,
                      const Wm4::Vector2<float>& arcStart, const Wm4::Vector2<float>& arcEnd, float rotationDegrees);

    /// Start and end exactly equal (a NaN coordinate makes them differ).
    bool isClosed() const;
    /// Either radius below 0.01.
    bool hasDegenerateRadii() const;

    /// Overwrites `box` with the exact box of the mapped arc: its end points
    /// and every extreme of the mapped ellipse within the swept angles. A
    /// closed arc or one with degenerate radii gives the box of its end points.
    void computeBoundingBox(BoundingBox& box, const Wm4::Matrix3<float>& transform) const override;
};

/// A cubic Bezier curve: start, first control, second control, end.
class VKSVG_API PathBezierCubic : public PathPrimitive {
public:
    Wm4::BezierCurve2<float> curve; ///< the four control points, owned

    /// Takes over `controlPoints`, an array of four points allocated with
    /// new[].
    explicit PathBezierCubic(Wm4::Vector2<float>* controlPoints);
    /// A curve from `p0` to `p3` with the control points `p1` and `p2`.
    PathBezierCubic(const Wm4::Vector2<float>& p0, const Wm4::Vector2<float>& p1, const Wm4::Vector2<float>& p2,
                    const Wm4::Vector2<float>& p3);
    /// The curve owns its points; copies would free them twice.
    PathBezierCubic(const PathBezierCubic&) = delete;
    PathBezierCubic& operator=(const PathBezierCubic&) = delete;

    /// Leaves `box` untouched: curves add nothing to an estimated box.
    void computeBoundingBox(BoundingBox& box, const Wm4::Matrix3<float>& transform) const override;
};

/// Turns a command list into absolute primitives: relative coordinates,
/// horizontal and vertical lines, smooth-curve reflection and close-path are
/// resolved here.
class VKSVG_API PathVisitorCommandsToPrimitives {
public:
    /// Gets each primitive and whether it starts a new contour (the first
    /// primitive, and the first after a move or a close path). The callback
    /// may move the primitive out to keep it; whatever it leaves is destroyed
    /// when it returns.
    using Callback = std::function<void(std::unique_ptr<PathPrimitive>&, bool)>;

    /// A visitor over `commands`, which must outlive it.
    PathVisitorCommandsToPrimitives(const std::list<PathCommand>& commands, const Callback& callback);

    /// Walks the commands once, in order, from the point (0, 0). Commands with
    /// fewer numbers than their type needs, and unknown types, are skipped.
    void visit();

private:
    const std::list<PathCommand>& mCommands;
    Callback mCallback;
    Wm4::Vector2<float> mCurrentPoint;
    Wm4::Vector2<float> mSubpathStart;
};

} // namespace vk::svg

#endif
