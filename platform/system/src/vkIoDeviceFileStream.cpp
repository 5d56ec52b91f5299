#include <vkSystem/vkIoDeviceFileStream.h>

#include <cerrno>
#include <cstring>

namespace vk {

namespace {

std::string describeErrno(const char* what, const std::string& fileName, int error)
{
    return std::string(what) + " '" + fileName + "': " + std::strerror(error);
}

} // namespace

vkIoDeviceFileStream::vkIoDeviceFileStream(const std::string& fileName, Direction direction, bool buffered)
    : mFileName(fileName), mDirection(direction)
{
    const char* mode = nullptr;
    if (direction == Direction::Read)
        mode = "rb";
    else if (direction == Direction::Write)
        mode = "wb";
    if (mode == nullptr) {
        setErrorString("Cannot open '" + fileName + "': unknown direction");
        return;
    }
    errno = 0;
    mFile = std::fopen(fileName.c_str(), mode);
    if (mFile == nullptr) {
        setErrorString(describeErrno(
            direction == Direction::Read ? "Cannot open for reading" : "Cannot open for writing", fileName, errno));
        return;
    }
    if (!buffered)
        std::setvbuf(mFile, nullptr, _IONBF, 0);
}

vkIoDeviceFileStream::~vkIoDeviceFileStream() { close(); }

bool vkIoDeviceFileStream::close()
{
    if (mFile == nullptr)
        return true;
    const bool ok = std::fclose(mFile) == 0;
    if (!ok)
        setErrorString(describeErrno("Cannot close", mFileName, errno));
    mFile = nullptr;
    return ok;
}

bool vkIoDeviceFileStream::isOpen() const { return mFile != nullptr; }

int64_t vkIoDeviceFileStream::read(char* data, int64_t maxSize)
{
    if (mFile == nullptr || mDirection != Direction::Read) {
        setErrorString("Cannot read '" + mFileName + "': not open for reading");
        return -1;
    }
    if (maxSize <= 0)
        return 0;
    const std::size_t got = std::fread(data, 1, static_cast<std::size_t>(maxSize), mFile);
    if (got == 0 && std::ferror(mFile)) {
        setErrorString(describeErrno("Cannot read", mFileName, errno));
        std::clearerr(mFile);
        return -1;
    }
    return static_cast<int64_t>(got);
}

int64_t vkIoDeviceFileStream::write(const char* data, int64_t size)
{
    if (mFile == nullptr || mDirection != Direction::Write) {
        setErrorString("Cannot write '" + mFileName + "': not open for writing");
        return -1;
    }
    if (size <= 0)
        return 0;
    const std::size_t put = std::fwrite(data, 1, static_cast<std::size_t>(size), mFile);
    if (put != static_cast<std::size_t>(size)) {
        setErrorString(describeErrno("Cannot write", mFileName, errno));
        std::clearerr(mFile);
        return put == 0 ? -1 : static_cast<int64_t>(put);
    }
    return size;
}

} // namespace vk
