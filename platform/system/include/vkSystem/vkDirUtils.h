#ifndef VKSYSTEM_VKDIRUTILS_H
#define VKSYSTEM_VKDIRUTILS_H

#include <vkSystem/Export.h>

#include <string>

namespace vk {

class VKSYSTEM_API vkDirUtils {
public:
    // The extension of the last component of `path`: its last `parts`
    // dot-separated pieces (1 gives "gz" for a.tar.gz, 2 gives "tar.gz"),
    // with the leading dot unless `withoutDot`. Case is kept. A name without
    // a dot, or whose only dot starts it (".profile"), has no extension and
    // gives "". With fewer dots than `parts`, every piece after the first
    // dot is taken.
    static std::string ExtractFileExtension(const std::string& path, bool withoutDot, int parts);
};

} // namespace vk

#endif
