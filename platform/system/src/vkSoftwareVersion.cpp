#include <vkSystem/vkSoftwareVersion.h>

#include <mutex>
#include <utility>

namespace vk {

namespace {

struct VersionRegistry {
    std::mutex mutex;
    vkSoftwareVersion host;
    vkSoftwareVersion fallback{"vkSystem", ""};
};

VersionRegistry& registry()
{
    static VersionRegistry instance;
    return instance;
}

} // namespace

vkSoftwareVersion::vkSoftwareVersion(std::string name, std::string version)
    : mName(std::move(name)), mVersion(std::move(version))
{
}

std::string vkSoftwareVersion::toString() const
{
    if (mName.empty())
        return mVersion;
    if (mVersion.empty())
        return mName;
    return mName + " " + mVersion;
}

vkSoftwareVersion GetSoftwareVersionForStream()
{
    VersionRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    return r.host.getName().empty() ? r.fallback : r.host;
}

void SetSoftwareVersionForStream(const std::string& name, const std::string& version)
{
    VersionRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.host = vkSoftwareVersion(name, version);
}

void SetDefaultSoftwareVersionForStream(const std::string& name, const std::string& version)
{
    VersionRegistry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.fallback = vkSoftwareVersion(name, version);
}

} // namespace vk
