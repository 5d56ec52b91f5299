#include "DocumentIO.h"

#include <vkSystem/vkIoDevice.h>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vksvg::io {

namespace {

// Reads a file descriptor as it comes, so that a document is never held
// in memory whole: a huge file only costs what the parser keeps of it.
class DescriptorDevice : public vk::vkIoDevice {
public:
    explicit DescriptorDevice(int fd) : mFd(fd) {}

    int64_t read(char* data, int64_t maxSize) override
    {
        for (;;) {
            const ssize_t count = ::read(mFd, data, static_cast<std::size_t>(maxSize));
            if (count >= 0)
                return count;
            if (errno == EINTR)
                continue;
            mReadError = std::strerror(errno);
            setErrorString(mReadError);
            return -1;
        }
    }
    int64_t write(const char*, int64_t) override { return -1; }
    bool isOpen() const override { return mFd >= 0; }

    const std::string& readError() const { return mReadError; }

private:
    int mFd;
    std::string mReadError;
};

// Closes a descriptor this file opened, never standard input.
class Descriptor {
public:
    explicit Descriptor(int fd, bool owned) : mFd(fd), mOwned(owned) {}
    ~Descriptor()
    {
        if (mOwned && mFd >= 0)
            ::close(mFd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return mFd; }

private:
    int mFd;
    bool mOwned;
};

} // namespace

std::string DisplayName(const std::string& path) { return path == "-" ? "<stdin>" : path; }

LoadResult LoadInput(const std::string& path, const vk::svg::LoadOptions& options)
{
    LoadResult result;
    const bool standardInput = path == "-";
    const Descriptor fd(standardInput ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC), !standardInput);
    if (fd.get() < 0) {
        result.readError = std::strerror(errno);
        return result;
    }
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0) {
        result.readError = std::strerror(errno);
        return result;
    }
    if (S_ISDIR(info.st_mode)) {
        result.readError = std::strerror(EISDIR);
        return result;
    }
    if (S_ISREG(info.st_mode) && info.st_size == 0 && !standardInput) {
        result.readError = "the file is empty";
        return result;
    }

    // Through a device, so that the file's own name, whatever its
    // extension, plays no part.
    DescriptorDevice device(fd.get());
    result.ok = vk::svg::LoadSvgDocument(result.root, device, options, &result.messages, &result.diagnostics);
    if (!device.readError().empty())
        result.readError = device.readError();
    return result;
}

SaveResult SaveDocument(const vk::svg::ItemInterface& root, vk::vkIoDevice& device, const vk::svg::SaveOptions& options)
{
    SaveResult result;
    result.ok = vk::svg::SaveSvgDocument(root, device, options, &result.messages, &result.diagnostics);
    return result;
}

} // namespace vksvg::io
