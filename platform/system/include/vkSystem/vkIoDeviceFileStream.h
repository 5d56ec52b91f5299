#ifndef VKSYSTEM_VKIODEVICEFILESTREAM_H
#define VKSYSTEM_VKIODEVICEFILESTREAM_H

#include <vkSystem/vkIoDevice.h>

#include <cstdio>
#include <string>

namespace vk {

// A file opened for reading or for writing (created or truncated). A failed
// open leaves the device closed, with the reason in errorString().
class VKSYSTEM_API vkIoDeviceFileStream : public vkIoDevice {
public:
    // buffered false turns off the C library's stream buffer, so every read
    // and write goes straight to the system.
    vkIoDeviceFileStream(const std::string& fileName, Direction direction, bool buffered = true);
    ~vkIoDeviceFileStream() override;

    int64_t read(char* data, int64_t maxSize) override;
    int64_t write(const char* data, int64_t size) override;
    bool isOpen() const override;

    // Flushes and closes; returns false when buffered data could not be
    // written. Further reads and writes fail.
    bool close();

    const std::string& getFileName() const { return mFileName; }
    Direction getDirection() const { return mDirection; }

private:
    std::string mFileName;
    Direction mDirection;
    std::FILE* mFile = nullptr;
};

} // namespace vk

#endif
