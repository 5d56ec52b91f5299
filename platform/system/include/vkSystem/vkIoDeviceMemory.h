#ifndef VKSYSTEM_VKIODEVICEMEMORY_H
#define VKSYSTEM_VKIODEVICEMEMORY_H

#include <vkSystem/vkIoDevice.h>

#include <cstddef>
#include <limits>
#include <string>

namespace vk {

// A device over a byte string in memory: reads consume the string given to
// the constructor from the front; writes append to it. A default-constructed
// device starts empty and so collects what is written.
class VKSYSTEM_API vkIoDeviceMemory : public vkIoDevice {
public:
    vkIoDeviceMemory() = default;
    explicit vkIoDeviceMemory(std::string data);

    int64_t read(char* data, int64_t maxSize) override;
    int64_t write(const char* data, int64_t size) override;
    bool isOpen() const override { return true; }

    const std::string& getData() const { return mData; }
    std::size_t getReadPosition() const { return mReadPosition; }

    // Test hooks: cap the bytes one read returns (short reads), and the total
    // the device accepts before writes fail (a full disk).
    void setMaxReadChunk(std::size_t bytes) { mMaxReadChunk = bytes; }
    void setWriteCapacity(std::size_t bytes) { mWriteCapacity = bytes; }

private:
    std::string mData;
    std::size_t mReadPosition = 0;
    std::size_t mMaxReadChunk = std::numeric_limits<std::size_t>::max();
    std::size_t mWriteCapacity = std::numeric_limits<std::size_t>::max();
};

} // namespace vk

#endif
