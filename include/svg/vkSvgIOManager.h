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

/// The single entry point for loading and saving: it asks the registered
/// drivers which fits a request best and hands the request to that driver.
/// One instance exists between initializeVkSvg and terminateVkSvg.
///
/// Threads: the manager has no lock. Its loads and saves run the registered
/// driver, whose message list every request rewrites, so only one load or
/// save through the manager may run at a time in the whole process, and
/// registration must not overlap with any of them. For loads and saves on
/// several threads use LoadSvgDocument and SaveSvgDocument (svg/DocumentIO.h),
/// which may also run alongside the manager's one request.
class VKSVG_API vkSvgIOManager {
public:
    vkSvgIOManager();
    ~vkSvgIOManager();
    vkSvgIOManager(const vkSvgIOManager&) = delete;
    vkSvgIOManager& operator=(const vkSvgIOManager&) = delete;

    /// The instance; null outside the library's initialised lifetime.
    static vkSvgIOManager* sThis;
    ///@{
    /// The instance, read-only or mutable. Neither checks for a missing instance.
    static const vkSvgIOManager& get() { return *sThis; }
    static vkSvgIOManager& edit() { return *sThis; }
    ///@}

    /// Drivers are not owned: whoever registers one unregisters and deletes
    /// it. `append` false puts the driver before all others, so that it wins
    /// ties. Registering a driver twice or unregistering an unknown one
    /// changes nothing and is logged.
    ///@{
    void registerDriver(vkCoreSvgIODriver* driver, bool append);
    void unregisterDriver(vkCoreSvgIODriver* driver);
    ///@}
    /// The registered drivers, in the order they are asked.
    const std::vector<vkCoreSvgIODriver*>& getDrivers() const { return mDrivers; }

    /// The key of a file request is the file's extension; of a device request
    /// the caller's `name` as given. progress, options and messages may be
    /// null.
    ///
    /// Messages: when a driver was chosen, *messages is cleared and then
    /// receives a copy of the driver's messages for this request, whether it
    /// succeeded or not, so what the list held before is gone. When no
    /// driver matches the key, a load returns false and leaves *messages as
    /// it was, and a save returns false and appends (without clearing)
    /// "No driver available to save '<key>'". Key matching is the drivers'
    /// own: the built-in driver takes exactly "svg", so "icon.SVG" or a name
    /// without extension finds none; LoadSvgDocument reads any name.
    ///@{
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
    ///@}

private:
    vkCoreSvgIODriver* findLoadDriver(const std::string& key) const;
    vkCoreSvgIODriver* findSaveDriver(const std::string& key) const;

    std::vector<vkCoreSvgIODriver*> mDrivers;
    // Kept for layout compatibility; nothing fills it.
    std::vector<vkCoreSvgIODriver*> mReserved;
};

} // namespace vk::svg

#endif
