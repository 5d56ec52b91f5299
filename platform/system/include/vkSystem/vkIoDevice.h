#ifndef VKSYSTEM_VKIODEVICE_H
#define VKSYSTEM_VKIODEVICE_H

#include <vkSystem/Export.h>

#include <cstdint>
#include <string>

namespace vk {

// A sequential byte device: the library reads documents from one and writes
// documents to one, without knowing whether a file, memory or a socket is
// behind it.
class VKSYSTEM_API vkIoDevice {
public:
    enum class Direction : uint32_t { Read = 1, Write = 2 };

    vkIoDevice() = default;
    vkIoDevice(const vkIoDevice&) = delete;
    vkIoDevice& operator=(const vkIoDevice&) = delete;
    virtual ~vkIoDevice();

    // Reads at most maxSize bytes into data. Returns the number of bytes read,
    // 0 at the end of the data, or -1 on failure (see errorString()). A read
    // may return fewer bytes than asked for before the end is reached.
    virtual int64_t read(char* data, int64_t maxSize) = 0;

    // Writes size bytes from data. Returns the number of bytes written, or -1
    // on failure; a count below size is a failure too.
    virtual int64_t write(const char* data, int64_t size) = 0;

    virtual bool isOpen() const = 0;

    // Text of the last failure; empty while nothing failed.
    virtual std::string errorString() const;

protected:
    void setErrorString(std::string text);

private:
    std::string mErrorString;
};

} // namespace vk

#endif
