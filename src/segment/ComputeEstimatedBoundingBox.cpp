#include <svg/BoundingBoxEstimation.h>
#include <svg/Items.h>

#include "segment/AffineMap.h"

namespace vk::svg {

namespace {

void growByTree(const ItemInterface& item, BoundingBox& box, bool (*skip)(const ItemInterface&),
                const Wm4::Matrix3<float>& parentMatrix)
{
    if (skip != nullptr && skip(item))
        return;
    const Wm4::Matrix3<float> matrix =
        item.getTransform() ? impl::Compose(parentMatrix, *item.getTransform()) : parentMatrix;
    BoundingBox own;
    if (item.computeEstimatedBoundingVolume(own, matrix))
        box.expandToContain(own);
    const ItemType type = item.getType();
    if (type != ItemType::Node && type != ItemType::Document)
        return;
    for (const std::shared_ptr<ItemInterface>& child : static_cast<const Node&>(item).getChildren())
        if (child != nullptr)
            growByTree(*child, box, skip, matrix);
}

} // namespace

void ComputeEstimatedBoundingBox(const ItemInterface& item, BoundingBox& box, bool (*skip)(const ItemInterface&),
                                 const Wm4::Matrix3<float>* matrix)
{
    box = BoundingBox();
    growByTree(item, box, skip, matrix != nullptr ? *matrix : Wm4::Matrix3<float>::IDENTITY);
}

void Document::computeEstimatedViewboxFromContent()
{
    BoundingBox box;
    ComputeEstimatedBoundingBox(*this, box, nullptr, nullptr);
    mViewbox = box;
}

} // namespace vk::svg
