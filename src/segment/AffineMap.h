#ifndef VKSVG_SEGMENT_AFFINEMAP_H
#define VKSVG_SEGMENT_AFFINEMAP_H

#include <wm4/Wm4Matrix3.h>
#include <wm4/Wm4Vector2.h>

namespace vk::svg::impl {

// The matrix as an affine map of points: its third row is ignored.
inline Wm4::Vector2<float> MapPoint(const Wm4::Matrix3<float>& m, const Wm4::Vector2<float>& p)
{
    return Wm4::Vector2<float>(m(0, 0) * p.X() + m(0, 1) * p.Y() + m(0, 2),
                               m(1, 0) * p.X() + m(1, 1) * p.Y() + m(1, 2));
}

// parent * own: the own transform acts first on a point.
inline Wm4::Matrix3<float> Compose(const Wm4::Matrix3<float>& parent, const Wm4::Matrix3<float>& own)
{
    return parent * own;
}

} // namespace vk::svg::impl

#endif
