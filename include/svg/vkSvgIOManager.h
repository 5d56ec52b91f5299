#ifndef VKSVG_VKSVGIOMANAGER_H
#define VKSVG_VKSVGIOMANAGER_H

#include <svg/Export.h>
#include <svg/Items.h>
#include <svg/Options.h>
#include <svg/vkCoreDriver.h>

#include <list>
#include <string>
#include <vector>

namespace vk {
class vkIoDevice;
class vkProgressNotifierInterface;
} // namespace vk

namespace vk::svg {

// The single entry point for loading and saving: it asks the registered
// drivers which fits a request best and hands the request to that driver.
// One instance exists between initializeVkSvg and terminateVkSvg.
class VKSVG_API vkSvgIOManager {
public:
    vkSvgIOManager();
    ~vkSvgIOManager();
    vkSvgIOManager(const vkSvgIOManager&) = delete;
    vkSvgIOManager& operator=(const vkSvgIOManager&) = delete;

    // The instance; null outside the library's initialised lifetime.
    static vkSvgIOManager* sThis;
    // Neither checks for a missing instance.
    static const vkSvgIOManager& get() { return *sThis; }
    static vkSvgIOManager& edit() { return *sThis; }

    // Drivers are not owned: whoever registers one unregisters and deletes
    // it. `append` false puts the driver before all others, so that it wins
    // ties. Registering a driver twice or unregistering an unknown one
    // changes nothing and is logged.
    void registerDriver(vkCoreSvgIODriver* driver, bool append);
    void unregisterDriver(vkCoreSvgIODriver* driver);
    const std::vector<vkCoreSvgIODriver*>& getDrivers() const { return mDrivers; }

    // The key of a file request is the file's extension; of a device request
    // the caller's `name` as given. progress, options and messages may be
    // null. When a driver runs, *messages is replaced by its messages.
    // Without a driver a load fails silently and a save fails with a
    // message appended.
    bool loadSvg(ItemInterfacePointer<ItemInterface>& root, const std::string& fileName,
                 vk::vkProgressNotifierInterface* progress, const LoadOptions* options,
                 std::list<std::string>* messages) const;
    bool loadSvg(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const std::string& name,
                 vk::vkProgressNotifierInterface* progress, const LoadOptions* options,
                 std::list<std::string>* messages) const;
    bool saveSvg(const ItemInterface& root, const std::string& fileName, vk::vkProgressNotifierInterface* progress,
                 const SaveOptions* options, std::list<std::string>* messages) const;
    bool saveSvg(const ItemInterface& root, vk::vkIoDevice& device, const std::string& name,
                 vk::vkProgressNotifierInterface* progress, const SaveOptions* options,
                 std::list<std::string>* messages) const;

private:
    vkCoreSvgIODriver* findLoadDriver(const std::string& key) const;
    vkCoreSvgIODriver* findSaveDriver(const std::string& key) const;

    std::vector<vkCoreSvgIODriver*> mDrivers;
    // Kept for layout compatibility; nothing fills it.
    std::vector<vkCoreSvgIODriver*> mReserved;
};

} // namespace vk::svg

#endif
