#include "OutputFile.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vksvg::output {

namespace {

std::string SystemReason(int error) { return std::strerror(error); }

bool WriteAll(int fd, const std::string& bytes, std::string& why)
{
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (count < 0) {
            if (errno == EINTR)
                continue;
            why = SystemReason(errno);
            return false;
        }
        written += static_cast<std::size_t>(count);
    }
    return true;
}

// The process's umask, read without setting it: umask(2) would change it
// for every thread while it is being read.
mode_t CurrentUmask()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("Umask:", 0) == 0)
            return static_cast<mode_t>(std::strtoul(line.c_str() + 6, nullptr, 8));
    return 022;
}

bool WriteDirectly(const std::string& path, const std::string& bytes, std::string& why)
{
    const int fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd < 0) {
        why = SystemReason(errno);
        return false;
    }
    const bool ok = WriteAll(fd, bytes, why);
    if (::close(fd) != 0 && ok) {
        why = SystemReason(errno);
        return false;
    }
    return ok;
}

bool WriteThroughTemporary(const std::string& path, const std::string& bytes, mode_t mode, std::string& why)
{
    const std::size_t slash = path.rfind('/');
    const std::string directory = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    std::string pattern = directory + "." + name + ".vksvg-XXXXXX";
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0) {
        why = SystemReason(errno);
        return false;
    }
    bool ok = WriteAll(fd, bytes, why);
    if (ok && ::fchmod(fd, mode) != 0) {
        why = SystemReason(errno);
        ok = false;
    }
    // A full disk may only show when the data is flushed at close.
    if (::close(fd) != 0 && ok) {
        why = SystemReason(errno);
        ok = false;
    }
    if (ok && ::rename(pattern.c_str(), path.c_str()) != 0) {
        why = SystemReason(errno);
        ok = false;
    }
    if (!ok)
        ::unlink(pattern.c_str());
    return ok;
}

std::string Lower(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// The extension of the file name in `path`, without its dot, lower case.
std::string Extension(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return std::string();
    return Lower(path.substr(dot + 1));
}

} // namespace

bool WriteOutput(const std::string& path, const std::string& bytes, std::ostream& out, std::string& why)
{
    if (path == "-") {
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            why = "standard output refused the data";
            return false;
        }
        return true;
    }
    if (path.empty()) {
        why = SystemReason(ENOENT);
        return false;
    }
    struct stat info {};
    std::string target = path;
    if (::stat(path.c_str(), &info) == 0) {
        if (!S_ISREG(info.st_mode))
            return WriteDirectly(path, bytes, why);
        // Replace what a link points at, not the link.
        char resolved[PATH_MAX];
        if (::realpath(path.c_str(), resolved) != nullptr)
            target = resolved;
        return WriteThroughTemporary(target, bytes, info.st_mode & 07777, why);
    }
    return WriteThroughTemporary(target, bytes, 0666 & ~CurrentUmask(), why);
}

std::string ListFormats(const std::vector<std::string>& formats, const char* last)
{
    std::string list;
    for (std::size_t i = 0; i < formats.size(); ++i) {
        if (i > 0)
            list += i + 1 == formats.size() ? last : ", ";
        list += formats[i];
    }
    return list;
}

bool ChooseFormat(const std::string& command, const std::vector<std::string>& formats, const std::string& output,
                  const std::string& formatFlag, std::string& format, std::string& why)
{
    const auto known = [&](const std::string& name) {
        return std::find(formats.begin(), formats.end(), name) != formats.end();
    };
    if (!formatFlag.empty() && !known(Lower(formatFlag))) {
        why = "--format must be " + ListFormats(formats) + ", not \"" + formatFlag + "\"";
        return false;
    }
    const std::string flag = Lower(formatFlag);
    // A device or a pipe has no extension to go by.
    struct stat info {};
    const bool special = ::stat(output.c_str(), &info) == 0 && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode);
    if (output.empty() || output == "-" || special) {
        format = flag.empty() ? formats.front() : flag;
        return true;
    }
    const std::string extension = Extension(output);
    if (!known(extension)) {
        std::vector<std::string> dotted;
        for (const std::string& name : formats)
            dotted.push_back("." + name);
        why = "cannot tell the format of \"" + output + "\": " + command + " writes " + ListFormats(dotted);
        return false;
    }
    if (!flag.empty() && flag != extension) {
        why = "--format " + flag + " does not match \"" + output + "\"";
        return false;
    }
    format = extension;
    return true;
}

} // namespace vksvg::output
