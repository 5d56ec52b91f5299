#include "read/Shapes.h"

#include <initializer_list>

namespace vk::svg::impl {

namespace {

using T = PathCommandType;

void Add(std::list<PathCommand>& commands, PathCommandType type, std::initializer_list<double> values)
{
    std::vector<float> floats;
    floats.reserve(values.size());
    for (double v : values)
        floats.push_back(static_cast<float>(v));
    commands.emplace_back(type, floats);
}

void Close(std::list<PathCommand>& commands) { commands.emplace_back(T::ClosePath, std::vector<float>()); }

} // namespace

void AutoRadii(double& rx, bool hasRx, double& ry, bool hasRy)
{
    if (hasRx && !hasRy)
        ry = rx;
    else if (hasRy && !hasRx)
        rx = ry;
}

std::shared_ptr<Path> RoundedRectPath(double x, double y, double width, double height, double rx, double ry)
{
    auto path = std::make_shared<Path>();
    auto& c = path->editCommands();
    const double right = x + width;
    const double bottom = y + height;
    Add(c, T::MoveTo, {x + rx, y});
    Add(c, T::LineTo, {right - rx, y});
    Add(c, T::EllipticalArc, {rx, ry, 0, 0, 1, right, y + ry});
    Add(c, T::LineTo, {right, bottom - ry});
    Add(c, T::EllipticalArc, {rx, ry, 0, 0, 1, right - rx, bottom});
    Add(c, T::LineTo, {x + rx, bottom});
    Add(c, T::EllipticalArc, {rx, ry, 0, 0, 1, x, bottom - ry});
    Add(c, T::LineTo, {x, y + ry});
    Add(c, T::EllipticalArc, {rx, ry, 0, 0, 1, x + rx, y});
    Close(c);
    return path;
}

std::shared_ptr<Path> EllipsePath(double cx, double cy, double rx, double ry)
{
    auto path = std::make_shared<Path>();
    auto& c = path->editCommands();
    Add(c, T::MoveTo, {cx + rx, cy});
    Add(c, T::EllipticalArc, {rx, ry, 0, 0, 1, cx, cy + ry});
    Add(c, T::EllipticalArc, {rx, ry, 0, 0, 1, cx - rx, cy});
    Add(c, T::EllipticalArc, {rx, ry, 0, 0, 1, cx, cy - ry});
    Add(c, T::EllipticalArc, {rx, ry, 0, 0, 1, cx + rx, cy});
    Close(c);
    return path;
}

std::shared_ptr<Path> PointsPath(const std::vector<double>& coordinates, bool closed)
{
    auto path = std::make_shared<Path>();
    auto& c = path->editCommands();
    for (std::size_t i = 0; i + 1 < coordinates.size(); i += 2)
        Add(c, i == 0 ? T::MoveTo : T::LineTo, {coordinates[i], coordinates[i + 1]});
    if (closed)
        Close(c);
    return path;
}

} // namespace vk::svg::impl
