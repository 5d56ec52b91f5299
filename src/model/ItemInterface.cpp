#include <svg/Items.h>

namespace vk::svg {

ItemInterface::ItemInterface(ItemType type) : mType(type) {}

ItemInterface::ItemInterface(const ItemInterface& other) = default;

ItemInterface& ItemInterface::operator=(const ItemInterface& other)
{
    mTransform = other.mTransform;
    mId = other.mId;
    mRenderingProperties = other.mRenderingProperties;
    return *this;
}

ItemInterface::~ItemInterface() = default;

} // namespace vk::svg
