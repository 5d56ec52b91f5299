#include <vkSystem/vkDirUtils.h>

namespace vk {

std::string vkDirUtils::ExtractFileExtension(const std::string& path, bool withoutDot, int parts)
{
    if (parts < 1)
        return {};
    const std::size_t slash = path.find_last_of('/');
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    // A leading dot names a hidden file, it does not start an extension.
    const std::size_t searchFloor = nameStart + 1;
    if (path.size() <= searchFloor)
        return {};

    std::size_t dot = std::string::npos;
    std::size_t searchEnd = path.size();
    for (int found = 0; found < parts; ++found) {
        const std::size_t candidate = path.rfind('.', searchEnd - 1);
        if (candidate == std::string::npos || candidate < searchFloor)
            break;
        dot = candidate;
        if (candidate == searchFloor)
            break;
        searchEnd = candidate;
    }
    if (dot == std::string::npos)
        return {};
    return path.substr(withoutDot ? dot + 1 : dot);
}

} // namespace vk
