#include "DocumentIO.h"

#include <svg/vkSvgIOManager.h>

#include <vkSystem/vkIoDevice.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vksvg::io {

namespace {

// The manager and its drivers serve one request at a time.
std::mutex& LibraryMutex()
{
    static std::mutex mutex;
    return mutex;
}

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

// The parser ends its messages with " (line L, column C)" when it knows
// where it stopped.
void FindPosition(const std::string& text, Diagnostic& diagnostic)
{
    const std::string open = " (line ";
    const std::size_t at = text.rfind(open);
    if (at == std::string::npos || text.empty() || text.back() != ')')
        return;
    int line = 0;
    int column = 0;
    char tail = 0;
    if (std::sscanf(text.c_str() + at, " (line %d, column %d%c", &line, &column, &tail) == 3 && tail == ')' &&
        line > 0 && column > 0) {
        diagnostic.line = line;
        diagnostic.column = column;
    }
}

std::vector<Diagnostic> Diagnose(const std::list<std::string>& messages, bool ok)
{
    std::vector<Diagnostic> diagnostics;
    for (const std::string& text : messages) {
        Diagnostic diagnostic;
        diagnostic.text = text;
        // What was skipped is a warning; a failed request's other messages
        // are why it failed.
        const bool skipped = text.rfind("Ignore ", 0) == 0;
        diagnostic.severity = ok || skipped ? Diagnostic::Severity::Warning : Diagnostic::Severity::Error;
        FindPosition(text, diagnostic);
        diagnostics.push_back(std::move(diagnostic));
    }
    return diagnostics;
}

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

    DescriptorDevice device(fd.get());
    {
        const std::lock_guard<std::mutex> lock(LibraryMutex());
        // Through a device with the format's name, so that the file's own
        // name, whatever its extension, plays no part.
        result.ok =
            vk::svg::vkSvgIOManager::get().loadSvg(result.root, device, "svg", nullptr, &options, &result.messages);
    }
    if (!device.readError().empty())
        result.readError = device.readError();
    result.diagnostics = Diagnose(result.messages, result.ok);
    return result;
}

SaveResult SaveDocument(const vk::svg::ItemInterface& root, vk::vkIoDevice& device, const vk::svg::SaveOptions& options)
{
    SaveResult result;
    {
        const std::lock_guard<std::mutex> lock(LibraryMutex());
        result.ok = vk::svg::vkSvgIOManager::get().saveSvg(root, device, "svg", nullptr, &options, &result.messages);
    }
    result.diagnostics = Diagnose(result.messages, result.ok);
    return result;
}

} // namespace vksvg::io
