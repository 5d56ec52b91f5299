#include <svg/Segmentation.h>
#include <svg/Triangulation.h>

#include "segment/AffineMap.h"

#include <vkSystem/vkLog.h>

#include <algorithm>

namespace vk::svg {

namespace {

void MapAll(const Wm4::Matrix3<float>& m, std::vector<Wm4::Vector2<float>>& points)
{
    for (Wm4::Vector2<float>& point : points)
        point = impl::MapPoint(m, point);
}

// The triangulator trusts its edge list; an index past the points would
// send it reading outside them.
bool IndicesInRange(const std::vector<uint32_t>& indices, std::size_t pointCount)
{
    return std::all_of(indices.begin(), indices.end(), [pointCount](uint32_t i) { return i < pointCount; });
}

} // namespace

SegmentedPrimitive SegmentedPrimitive::FromContour(std::vector<Wm4::Vector2<float>>&& contourPoints,
                                                   std::vector<uint32_t>&& contourIndices,
                                                   const Wm4::Matrix3<float>* transform,
                                                   const RenderingProperties* shapeProperties, bool* error)
{
    if (error != nullptr)
        *error = false;
    SegmentedPrimitive result;
    if (shapeProperties != nullptr && shapeProperties->hasFill()) {
        bool triangulated = false;
        if (contourIndices.size() % 2 == 0 && IndicesInRange(contourIndices, contourPoints.size())) {
            // Triangulated in the shape's own coordinates: cleanup measures
            // its tolerances against the outline's box, whatever the
            // transform does to it afterwards.
            vk::CleanupContour(contourPoints, contourIndices);
            triangulated = vk::TriangulatePoly(contourPoints, contourIndices, result.triangleVertices,
                                               result.triangleIndices, vk::TriangulationFillRule::NonZero, true);
        }
        if (!triangulated) {
            // A failed triangulation may leave part of a mesh behind.
            result.triangleVertices.clear();
            result.triangleIndices.clear();
            vk::vkLog::Log("svg", vk::vkLog::Error, "Shape cannot be rendered. Only its contour will be visible.");
            if (error != nullptr)
                *error = true;
        }
    }
    result.points = std::move(contourPoints);
    result.indices = std::move(contourIndices);
    if (transform != nullptr) {
        MapAll(*transform, result.points);
        MapAll(*transform, result.triangleVertices);
    }
    if (shapeProperties != nullptr)
        result.properties = *shapeProperties;
    return result;
}

} // namespace vk::svg
