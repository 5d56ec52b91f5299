#ifndef VKSVG_PATHCOMMAND_H
#define VKSVG_PATHCOMMAND_H

#include <svg/Export.h>

#include <cstdint>
#include <vector>

namespace vk::svg {

/// The kinds of path-data command, one per letter (Z and z share ClosePath).
/// The comment gives the floats one command carries, in order.
enum class PathCommandType : uint8_t {
    MoveTo = 0,                ///< M: x, y
    MoveToRel = 1,             ///< m: dx, dy
    LineTo = 2,                ///< L: x, y
    LineToRel = 3,             ///< l: dx, dy
    EllipticalArc = 4,         ///< A: rx, ry, x-axis rotation (degrees), large-arc, sweep, x, y
    EllipticalArcRel = 5,      ///< a: as A, end point relative
    HLineTo = 6,               ///< H: x
    HLineToRel = 7,            ///< h: dx
    VLineTo = 8,               ///< V: y
    VLineToRel = 9,            ///< v: dy
    BezierCubic = 10,          ///< C: x1, y1, x2, y2, x, y
    BezierCubicRel = 11,       ///< c: the same, relative
    SmoothBezierCubic = 12,    ///< S: x2, y2, x, y
    SmoothBezierCubicRel = 13, ///< s: the same, relative
    ClosePath = 14,            ///< Z or z: nothing
};

/// One command of a path as written in its data, after implicit repetitions
/// have been split apart. Relative commands stay relative. Arc flags are
/// stored as 1.0 (set) and 0.0 (clear).
///
/// Threads: a plain value with no shared state.
struct VKSVG_API PathCommand {
    /// Which command this is.
    PathCommandType type;
    /// Its numbers, in the order PathCommandType lists them.
    std::vector<float> values;

    /// Takes the values over and leaves `values` empty, although it is a
    /// plain reference: callers hand over their scratch vectors this way.
    PathCommand(PathCommandType type, std::vector<float>& values);
    /// Copies the values and leaves the argument as it was. This reverses the
    /// usual pairing with the overload above on purpose; callers rely on it.
    PathCommand(PathCommandType type, std::vector<float>&& values);
    /// Copies; lets const vectors be passed at all.
    PathCommand(PathCommandType type, const std::vector<float>& values);

    ///@{
    /// Copies and moves both fields.
    PathCommand(const PathCommand&) = default;
    PathCommand(PathCommand&&) noexcept = default;
    PathCommand& operator=(const PathCommand&) = default;
    PathCommand& operator=(PathCommand&&) noexcept = default;
    ///@}
    ~PathCommand() = default;
};

} // namespace vk::svg

#endif
