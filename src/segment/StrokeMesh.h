#ifndef VKSVG_SEGMENT_STROKEMESH_H
#define VKSVG_SEGMENT_STROKEMESH_H

#include <svg/Segmentation.h>

#include <string>

namespace vk::svg::impl {

// Strokes the outline of `primitive` (already in output space, run by run)
// with the stroke properties, and stores the mesh in the primitive. The
// stroke is built in user space, the outline mapped back through the
// inverse of `transform`, so that a non-uniform scale widens it unevenly as
// in SVG; with non-scaling-stroke it is built in output space instead. A
// transform that flattens the plane leaves nothing to stroke. False, with
// the reason, only when the stroker refuses the outline.
bool AddStrokeMesh(SegmentedPrimitive& primitive, const SegmentationOptions& options,
                   const Wm4::Matrix3<float>& transform, const RenderingProperties& properties, std::string* reason);

} // namespace vk::svg::impl

#endif
