#include <svg/BoundingBoxEstimation.h>
#include <svg/Items.h>
#include <svg/Segmentation.h>

namespace vk::svg {

namespace {

// The same walk as segmentation, so that a box and a mesh of one tree
// always agree on every item's transform.
class BoxEstimator : private VisitorBase<BoxEstimator> {
public:
    BoxEstimator(BoundingBox& box, bool (*skip)(const ItemInterface&)) : mBox(box), mSkip(skip) {}

    void run(const ItemInterface& item, const Wm4::Matrix3<float>& matrix) { walk(item, matrix); }

private:
    friend class VisitorBase<BoxEstimator>;

    bool visitItem(const ItemInterface& item, const Wm4::Matrix3<float>& transform, const RenderingProperties&)
    {
        if (mSkip != nullptr && mSkip(item))
            return false;
        BoundingBox own;
        if (item.computeEstimatedBoundingVolume(own, transform))
            mBox.expandToContain(own);
        return true;
    }

    BoundingBox& mBox;
    bool (*mSkip)(const ItemInterface&);
};

} // namespace

void ComputeEstimatedBoundingBox(const ItemInterface& item, BoundingBox& box, bool (*skip)(const ItemInterface&),
                                 const Wm4::Matrix3<float>* matrix)
{
    box = BoundingBox();
    BoxEstimator(box, skip).run(item, matrix != nullptr ? *matrix : Wm4::Matrix3<float>::IDENTITY);
}

void Document::computeEstimatedViewboxFromContent()
{
    BoundingBox box;
    ComputeEstimatedBoundingBox(*this, box, nullptr, nullptr);
    mViewbox = box;
}

} // namespace vk::svg
