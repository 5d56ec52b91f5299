#include <svg/BoundingBox.h>

namespace vk::svg {

namespace {

// Written as "a < b ? a : b" on purpose: with a NaN on either side the value
// of `b` (the other box or the point) is taken.
float PickMin(float a, float b) { return a < b ? a : b; }
float PickMax(float a, float b) { return a > b ? a : b; }

} // namespace

BoundingBox::BoundingBox() : mMinPoint(1.0f, 1.0f), mMaxPoint(-1.0f, -1.0f) {}

BoundingBox::BoundingBox(const Wm4::Vector2<float>& minPoint, const Wm4::Vector2<float>& maxPoint)
    : mMinPoint(minPoint), mMaxPoint(maxPoint)
{
}

bool BoundingBox::isValid() const { return mMaxPoint.X() >= mMinPoint.X() && mMaxPoint.Y() >= mMinPoint.Y(); }

void BoundingBox::expandToContain(const BoundingBox& other)
{
    if (!isValid()) {
        *this = other;
        return;
    }
    // The other box's validity is deliberately not consulted.
    mMinPoint =
        Wm4::Vector2<float>(PickMin(mMinPoint.X(), other.mMinPoint.X()), PickMin(mMinPoint.Y(), other.mMinPoint.Y()));
    mMaxPoint =
        Wm4::Vector2<float>(PickMax(mMaxPoint.X(), other.mMaxPoint.X()), PickMax(mMaxPoint.Y(), other.mMaxPoint.Y()));
}

void BoundingBox::expandToContain(const Wm4::Vector2<float>& point)
{
    if (!isValid()) {
        mMinPoint = point;
        mMaxPoint = point;
        return;
    }
    mMinPoint = Wm4::Vector2<float>(PickMin(mMinPoint.X(), point.X()), PickMin(mMinPoint.Y(), point.Y()));
    mMaxPoint = Wm4::Vector2<float>(PickMax(mMaxPoint.X(), point.X()), PickMax(mMaxPoint.Y(), point.Y()));
}

void BoundingBox::addMargin(const Wm4::Vector2<float>& margin)
{
    mMinPoint = Wm4::Vector2<float>(mMinPoint.X() - margin.X(), mMinPoint.Y() - margin.Y());
    mMaxPoint = Wm4::Vector2<float>(mMaxPoint.X() + margin.X(), mMaxPoint.Y() + margin.Y());
}

void BoundingBox::translate(const Wm4::Vector2<float>& offset)
{
    mMinPoint = Wm4::Vector2<float>(mMinPoint.X() + offset.X(), mMinPoint.Y() + offset.Y());
    mMaxPoint = Wm4::Vector2<float>(mMaxPoint.X() + offset.X(), mMaxPoint.Y() + offset.Y());
}

Wm4::Vector2<float> BoundingBox::getMinPoint() const { return mMinPoint; }

Wm4::Vector2<float> BoundingBox::getMaxPoint() const { return mMaxPoint; }

Wm4::Vector2<float> BoundingBox::getSize() const { return Wm4::Vector2<float>(getWidth(), getHeight()); }

Wm4::Vector2<float> BoundingBox::getCenterPoint() const
{
    const Wm4::Vector2<float> size = getSize();
    return Wm4::Vector2<float>(mMinPoint.X() + size.X() * 0.5f, mMinPoint.Y() + size.Y() * 0.5f);
}

float BoundingBox::getWidth() const { return mMaxPoint.X() - mMinPoint.X(); }

float BoundingBox::getHeight() const { return mMaxPoint.Y() - mMinPoint.Y(); }

bool operator==(const BoundingBox& a, const BoundingBox& b)
{
    const Wm4::Vector2<float> aMin = a.getMinPoint();
    const Wm4::Vector2<float> aMax = a.getMaxPoint();
    const Wm4::Vector2<float> bMin = b.getMinPoint();
    const Wm4::Vector2<float> bMax = b.getMaxPoint();
    return aMin.X() == bMin.X() && aMin.Y() == bMin.Y() && aMax.X() == bMax.X() && aMax.Y() == bMax.Y();
}

bool operator!=(const BoundingBox& a, const BoundingBox& b) { return !(a == b); }

} // namespace vk::svg
