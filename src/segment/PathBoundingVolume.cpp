#include <svg/Items.h>
#include <svg/PathPrimitives.h>

namespace vk::svg {

bool Path::computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const
{
    // The union of the primitives' own boxes; cubic curves add nothing.
    PathVisitorCommandsToPrimitives visitor(mCommands, [&](std::unique_ptr<PathPrimitive>& primitive, bool) {
        BoundingBox own;
        primitive->computeBoundingBox(own, matrix);
        box.expandToContain(own);
    });
    visitor.visit();
    return true;
}

} // namespace vk::svg
