#include <vkSystem/vkIoDeviceMemory.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace vk {

vkIoDeviceMemory::vkIoDeviceMemory(std::string data) : mData(std::move(data)) {}

int64_t vkIoDeviceMemory::read(char* data, int64_t maxSize)
{
    if (maxSize <= 0)
        return 0;
    const std::size_t available = mData.size() - mReadPosition;
    const std::size_t count = std::min({available, static_cast<std::size_t>(maxSize), mMaxReadChunk});
    if (count > 0)
        std::memcpy(data, mData.data() + mReadPosition, count);
    mReadPosition += count;
    return static_cast<int64_t>(count);
}

int64_t vkIoDeviceMemory::write(const char* data, int64_t size)
{
    if (size <= 0)
        return 0;
    if (static_cast<std::size_t>(size) > mWriteCapacity - std::min(mWriteCapacity, mData.size())) {
        setErrorString("Memory device is full");
        return -1;
    }
    mData.append(data, static_cast<std::size_t>(size));
    return size;
}

} // namespace vk
