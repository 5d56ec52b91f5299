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

SegmenterVisitor::SegmenterVisitor(const Node& root, const SegmentationOptions& options)
    : mOptions(options), mLegacy(options.tolerance <= 0.0f && !options.tessellateFill)
{
    walk(root, Wm4::Matrix3<float>::IDENTITY);
}

bool SegmenterVisitor::visitItem(const ItemInterface& item, const Wm4::Matrix3<float>& transform,
                                 const RenderingProperties& properties)
{
    // After the first failure nothing more is segmented, unless the options
    // say to go on; what came before stays in the list.
    if (mError && !mOptions.continueAfterFailure)
        return false;
    const bool ok = segmentObject(item, transform, properties);
    mError = mError || !ok;
    return ok || mOptions.continueAfterFailure;
}

bool SegmenterVisitor::segmentObject(const ItemInterface& item, const Wm4::Matrix3<float>& transform,
                                     const RenderingProperties& properties)
{
    const ItemType type = item.getType();
    const bool shape =
        type == ItemType::Line || type == ItemType::Rect || type == ItemType::Circle || type == ItemType::Path;
    if (!shape)
        return true; // groups, documents, text and images have no outline of their own
    const std::size_t index = mShapeIndex++;
    std::string reason;
    bool failed = false;
    std::shared_ptr<SegmentedPrimitive> primitive;
    if (!mLegacy) {
        switch (type) {
        case ItemType::Line:
            primitive = SegmentLine(static_cast<const Line&>(item), mOptions, &transform, &properties);
            break;
        case ItemType::Rect:
            primitive = SegmentRect(static_cast<const Rect&>(item), mOptions, &transform, &properties, &reason);
            break;
        case ItemType::Circle:
            primitive = SegmentCircle(static_cast<const Circle&>(item), mOptions, &transform, &properties, &reason);
            break;
        default:
            primitive =
                SegmentPath(static_cast<const Path&>(item), mOptions, &transform, &properties, &mWorkspace, &reason);
            break;
        }
        failed = !reason.empty();
    } else {
        switch (type) {
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
        default:
            primitive = SegmentPath(static_cast<const Path&>(item), kPathSegments, kPathTolerance, &transform,
                                    &properties, &mWorkspace, &failed);
            break;
        }
    }
    mPrimitives.push_back(primitive);
    ++mPrimitiveCount;
    if (!failed)
        return true;
    mFailures.push_back(
        SegmentationFailure{item.getId(), index, reason.empty() ? "the outline could not be triangulated" : reason});
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
