#include <svg/Segmentation.h>

#include "segment/SegmentationLimits.h"

#include <vkSystem/vkLog.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <stdexcept>

namespace vk::svg::SegmentationUtils {

void SegmentEllipticalArc(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float rotation,
                          float startAngle, float deltaAngle, std::vector<Wm4::Vector2<float>>& points,
                          std::vector<uint32_t>& indices, bool newContour, unsigned int segments, float /*tolerance*/)
{
    // No steps would put the only point at the angle 0 / 0; one step keeps
    // the contour going from the arc's start to its end.
    const uint64_t steps = segments == 0 ? 1 : segments;
    if (static_cast<uint64_t>(points.size()) + steps > impl::kMaxIndex) {
        vk::vkLog::Log("svg", vk::vkLog::Error, "Index overflow during segmentation");
        return;
    }
    if (!impl::WithinSegmentLimit(steps))
        return;
    // There is no previous point to join when the contour is empty.
    if (points.empty())
        newContour = true;

    const float cosPhi = std::cos(rotation);
    const float sinPhi = std::sin(rotation);
    const std::size_t k = points.size();
    const uint64_t first = newContour ? 0 : 1;
    try {
        const std::size_t added = static_cast<std::size_t>(steps + 1 - first);
        // Geometric growth: an exact reserve per arc would copy the contour
        // every time.
        if (points.capacity() < k + added)
            points.reserve(std::max(k + added, points.capacity() * 2));
        if (indices.capacity() < indices.size() + 2 * steps)
            indices.reserve(std::max(indices.size() + 2 * static_cast<std::size_t>(steps), indices.capacity() * 2));
    } catch (const std::bad_alloc&) {
        impl::LogOutOfMemory();
        return;
    } catch (const std::length_error&) {
        impl::LogOutOfMemory();
        return;
    }

    const float rx = radii.X();
    const float ry = radii.Y();
    const float count = static_cast<float>(steps);
    for (uint64_t i = first; i <= steps; ++i) {
        const float theta = (static_cast<float>(i) / count) * deltaAngle + startAngle;
        const float cosTheta = std::cos(theta);
        const float sinTheta = std::sin(theta);
        points.emplace_back(center.X() + rx * cosTheta * cosPhi - ry * sinTheta * sinPhi,
                            center.Y() + rx * cosTheta * sinPhi + ry * sinTheta * cosPhi);
    }
    const std::size_t last = points.size() - 1;
    for (std::size_t j = newContour ? k : k - 1; j < last; ++j) {
        indices.push_back(static_cast<uint32_t>(j));
        indices.push_back(static_cast<uint32_t>(j + 1));
    }
}

} // namespace vk::svg::SegmentationUtils
