#include <svg/BoundingBoxEstimation.h>
#include <svg/Items.h>

#include "segment/AffineMap.h"

#include <algorithm>
#include <initializer_list>

namespace vk::svg {

namespace {

BoundingBox boxOfPoints(std::initializer_list<Wm4::Vector2<float>> points, const Wm4::Matrix3<float>& matrix)
{
    BoundingBox box;
    for (const Wm4::Vector2<float>& point : points)
        box.expandToContain(impl::MapPoint(matrix, point));
    return box;
}

BoundingBox boxOfRectangle(const Wm4::Vector2<float>& position, const Wm4::Vector2<float>& size,
                           const Wm4::Matrix3<float>& matrix)
{
    const float x = position.X();
    const float y = position.Y();
    const float w = size.X();
    const float h = size.Y();
    return boxOfPoints({{x, y}, {x + w, y}, {x, y + h}, {x + w, y + h}}, matrix);
}

} // namespace

bool Node::computeEstimatedBoundingVolume(BoundingBox&, const Wm4::Matrix3<float>&) const
{
    return false; // a group has no geometry of its own
}

bool Text::computeEstimatedBoundingVolume(BoundingBox&, const Wm4::Matrix3<float>&) const { return false; }

bool Line::computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const
{
    box = boxOfPoints({mStart, mEnd}, matrix);
    return true;
}

bool Rect::computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const
{
    // Rounded corners are ignored: the box of the square corners holds them.
    box = boxOfRectangle(mPosition, mSize, matrix);
    return true;
}

bool Image::computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const
{
    box = boxOfRectangle(mPosition, mSize, matrix);
    return true;
}

bool Circle::computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const
{
    // Only the centre is mapped; the radius stays as stored, not scaled,
    // rotated or skewed. Cheap, and what callers have always been given.
    const Wm4::Vector2<float> m = impl::MapPoint(matrix, mCenter);
    box = BoundingBox(Wm4::Vector2<float>(m.X() - mRadius, m.Y() - mRadius),
                      Wm4::Vector2<float>(m.X() + mRadius, m.Y() + mRadius));
    return true;
}

} // namespace vk::svg
