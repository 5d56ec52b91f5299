#include <svg/Segmentation.h>

namespace vk::svg {

namespace {

// The budgets the visitor gives every shape: 32 pieces per cubic curve and
// 32 steps per arc or circle. A curve piece is split while its chord is
// shorter than 0.999 of its control polygon, and an S-shaped one always.
constexpr unsigned int kCircleSegments = 32;
constexpr float kCircleTolerance = 0.1f;
constexpr unsigned int kPathSegments = 32;
constexpr float kPathTolerance = -0.999f;

} // namespace

SegmenterVisitor::SegmenterVisitor(const Node& root) { walk(root, Wm4::Matrix3<float>::IDENTITY); }

bool SegmenterVisitor::visitItem(const ItemInterface& item, const Wm4::Matrix3<float>& transform,
                                 const RenderingProperties& properties)
{
    // After the first failure nothing more is segmented; what came before
    // stays in the list.
    if (mError)
        return false;
    mError = !segmentObject(item, transform, properties);
    return !mError;
}

bool SegmenterVisitor::segmentObject(const ItemInterface& item, const Wm4::Matrix3<float>& transform,
                                     const RenderingProperties& properties)
{
    bool failed = false;
    std::shared_ptr<SegmentedPrimitive> primitive;
    switch (item.getType()) {
    case ItemType::Line:
        primitive = SegmentLine(static_cast<const Line&>(item), &transform, &properties);
        break;
    case ItemType::Rect:
        primitive = SegmentRect(static_cast<const Rect&>(item), &transform, &properties, &failed);
        break;
    case ItemType::Circle:
        primitive = SegmentCircle(static_cast<const Circle&>(item), kCircleSegments, kCircleTolerance, &transform,
                                  &properties, &failed);
        break;
    case ItemType::Path:
        primitive = SegmentPath(static_cast<const Path&>(item), kPathSegments, kPathTolerance, &transform, &properties,
                                &mWorkspace, &failed);
        break;
    default:
        return true; // groups, documents, text and images have no outline of their own
    }
    mPrimitives.push_back(primitive);
    ++mPrimitiveCount;
    if (!failed)
        return true;
    RenderingProperties& own = primitive->editProperties();
    if (own.hasStroke())
        return false;
    // The fill cannot be drawn, so the outline is drawn in its place, in the
    // fill's paint and at the fill's opacity (an unset fill is black).
    own.editStroke() = own.getFill().value_or("black");
    own.editStrokeOpacity() = own.getFillOpacity();
    return true;
}

} // namespace vk::svg
