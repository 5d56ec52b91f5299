#ifndef VKSVG_BOUNDINGBOXESTIMATION_H
#define VKSVG_BOUNDINGBOXESTIMATION_H

#include <svg/BoundingBox.h>
#include <svg/Export.h>

#include <wm4/Wm4Matrix3.h>

namespace vk::svg {

class ItemInterface;

/// Estimates the extent of `item` and everything under it in the coordinates
/// that `matrix` maps to (identity when null): each item's own geometry under
/// its accumulated transform, without stroke widths, with curves bounded by
/// their primitives. `box` is reset first. Items for which `skip` answers true
/// are left out together with their subtrees.
///
/// Threads: keeps no state of its own. Calls may run at once on any threads,
/// also over the same tree, as long as no thread changes that tree or `box`
/// is shared.
VKSVG_API void ComputeEstimatedBoundingBox(const ItemInterface& item, BoundingBox& box,
                                           bool (*skip)(const ItemInterface&), const Wm4::Matrix3<float>* matrix);

} // namespace vk::svg

#endif
