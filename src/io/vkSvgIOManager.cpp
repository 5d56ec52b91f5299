#include <svg/vkSvgIOManager.h>

#include <vkSystem/vkDirUtils.h>
#include <vkSystem/vkLog.h>

#include <algorithm>
#include <typeinfo>

namespace vk::svg {

vkSvgIOManager* vkSvgIOManager::sThis = nullptr;

namespace {

// The interface's type name as the compiler spells it; GCC may mark a name
// with a leading '*', which is not part of it.
std::string driverTypeName()
{
    const char* name = typeid(vkCoreSvgIODriver).name();
    if (*name == '*')
        ++name;
    return name;
}

void logDriverEvent(const char* what)
{
    vk::vkLog::Log("driver", vk::vkLog::Warning, "Weird error, driver " + driverTypeName() + what);
}

// The first Exact driver, else the first Possible one. Every driver is asked,
// always with default options, so that the answers cannot depend on the
// request's own options.
template <class Ask> vkCoreSvgIODriver* chooseDriver(const std::vector<vkCoreSvgIODriver*>& drivers, Ask ask)
{
    vkCoreSvgIODriver* exact = nullptr;
    vkCoreSvgIODriver* possible = nullptr;
    for (vkCoreSvgIODriver* driver : drivers) {
        const int match = ask(*driver);
        if (match == static_cast<int>(DriverMatch::Exact) && exact == nullptr)
            exact = driver;
        else if (match == static_cast<int>(DriverMatch::Possible) && possible == nullptr)
            possible = driver;
    }
    return exact != nullptr ? exact : possible;
}

void handOverMessages(const vkCoreSvgIODriver& driver, std::list<std::string>* messages)
{
    if (messages == nullptr)
        return;
    messages->clear();
    messages->insert(messages->end(), driver.getMessages().begin(), driver.getMessages().end());
}

std::string fileKey(const std::string& fileName) { return vk::vkDirUtils::ExtractFileExtension(fileName, true, 1); }

} // namespace

vkSvgIOManager::vkSvgIOManager() = default;

vkSvgIOManager::~vkSvgIOManager() = default;

void vkSvgIOManager::registerDriver(vkCoreSvgIODriver* driver, bool append)
{
    if (driver == nullptr)
        return;
    if (std::find(mDrivers.begin(), mDrivers.end(), driver) != mDrivers.end()) {
        logDriverEvent(" is already registered");
        return;
    }
    if (append)
        mDrivers.push_back(driver);
    else
        mDrivers.insert(mDrivers.begin(), driver);
}

void vkSvgIOManager::unregisterDriver(vkCoreSvgIODriver* driver)
{
    if (driver == nullptr)
        return;
    const auto found = std::find(mDrivers.begin(), mDrivers.end(), driver);
    if (found == mDrivers.end()) {
        logDriverEvent(" has already been unregistered");
        return;
    }
    mDrivers.erase(found);
}

vkCoreSvgIODriver* vkSvgIOManager::findLoadDriver(const std::string& key) const
{
    const std::pair<vk::vkIoDevice*, std::string> loadKey(nullptr, key);
    const LoadOptions defaults;
    return chooseDriver(mDrivers, [&](const vkCoreSvgIODriver& d) { return d.canLoad(loadKey, defaults); });
}

vkCoreSvgIODriver* vkSvgIOManager::findSaveDriver(const std::string& key) const
{
    const SaveOptions defaults;
    return chooseDriver(mDrivers, [&](const vkCoreSvgIODriver& d) { return d.canSave(key, defaults); });
}

bool vkSvgIOManager::loadSvg(ItemInterfacePointer<ItemInterface>& root, const std::string& fileName,
                             vk::vkProgressNotifierInterface* progress, const LoadOptions* options,
                             std::list<std::string>* messages) const
{
    vkCoreSvgIODriver* driver = findLoadDriver(fileKey(fileName));
    if (driver == nullptr)
        return false;
    const bool ok = driver->loadSvg(root, fileName, progress, options ? *options : LoadOptions());
    handOverMessages(*driver, messages);
    return ok;
}

bool vkSvgIOManager::loadSvg(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const std::string& name,
                             vk::vkProgressNotifierInterface* progress, const LoadOptions* options,
                             std::list<std::string>* messages) const
{
    vkCoreSvgIODriver* driver = findLoadDriver(name);
    if (driver == nullptr)
        return false;
    const bool ok = driver->loadSvg(root, device, name, progress, options ? *options : LoadOptions());
    handOverMessages(*driver, messages);
    return ok;
}

namespace {

bool noSaveDriver(const std::string& key, std::list<std::string>* messages)
{
    if (messages != nullptr)
        messages->push_back("No driver available to save '" + key + "'");
    return false;
}

} // namespace

bool vkSvgIOManager::saveSvg(const ItemInterface& root, const std::string& fileName,
                             vk::vkProgressNotifierInterface* progress, const SaveOptions* options,
                             std::list<std::string>* messages) const
{
    const std::string key = fileKey(fileName);
    vkCoreSvgIODriver* driver = findSaveDriver(key);
    if (driver == nullptr)
        return noSaveDriver(key, messages);
    const bool ok = driver->saveSvg(root, fileName, progress, options ? *options : SaveOptions());
    handOverMessages(*driver, messages);
    return ok;
}

bool vkSvgIOManager::saveSvg(const ItemInterface& root, vk::vkIoDevice& device, const std::string& name,
                             vk::vkProgressNotifierInterface* progress, const SaveOptions* options,
                             std::list<std::string>* messages) const
{
    vkCoreSvgIODriver* driver = findSaveDriver(name);
    if (driver == nullptr)
        return noSaveDriver(name, messages);
    const bool ok = driver->saveSvg(root, device, name, progress, options ? *options : SaveOptions());
    handOverMessages(*driver, messages);
    return ok;
}

} // namespace vk::svg
