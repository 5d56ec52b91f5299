#ifndef VKSYSTEM_VKSOFTWAREVERSION_H
#define VKSYSTEM_VKSOFTWAREVERSION_H

#include <vkSystem/Export.h>

#include <string>

namespace vk {

// The name and version of the software that writes a file, as stamped into
// file headers.
class VKSYSTEM_API vkSoftwareVersion {
public:
    vkSoftwareVersion() = default;
    vkSoftwareVersion(std::string name, std::string version);

    const std::string& getName() const { return mName; }
    const std::string& getVersion() const { return mVersion; }

    // "name version", or just whichever of the two is set.
    std::string toString() const;

private:
    std::string mName;
    std::string mVersion;
};

// What files are stamped with: the host program's name and version once the
// host has set them, else the default that a library set, else "vkSystem".
VKSYSTEM_API vkSoftwareVersion GetSoftwareVersionForStream();

// For the host program. An empty name withdraws the host's stamp.
VKSYSTEM_API void SetSoftwareVersionForStream(const std::string& name, const std::string& version);

// For a library that writes files, naming itself until a host says otherwise.
VKSYSTEM_API void SetDefaultSoftwareVersionForStream(const std::string& name, const std::string& version);

} // namespace vk

#endif
