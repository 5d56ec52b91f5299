#ifndef VKSVG_VKCOREDRIVER_H
#define VKSVG_VKCOREDRIVER_H

#include <svg/Export.h>
#include <svg/Items.h>
#include <svg/Options.h>

#include <list>
#include <string>
#include <utility>

namespace vk {
class vkIoDevice;
class vkProgressNotifierInterface;
} // namespace vk

namespace vk::svg {

/// How well a driver fits a load or save key.
enum class DriverMatch : int {
    None = 0,     ///< cannot handle the key
    Possible = 1, ///< can handle it, but another driver may be better
    Exact = 2,    ///< made for this key
};

/// The base of every load/save driver: it keeps the warnings and errors of the
/// driver's last request, in the order they were produced.
///
/// Threads: the message list is the driver's own unlocked state, rewritten by
/// every request, so one driver object serves one request at a time. Use a
/// driver object per thread, or LoadSvgDocument and SaveSvgDocument
/// (svg/DocumentIO.h), to work on several threads.
template <class LoadKey, class SaveKey, class LoadOptionsT, class SaveOptionsT> class VKSVG_API vkCoreDriver {
public:
    using LoadKeyType = LoadKey;          ///< what a load is matched by
    using SaveKeyType = SaveKey;          ///< what a save is matched by
    using LoadOptionsType = LoadOptionsT; ///< the options of a load
    using SaveOptionsType = SaveOptionsT; ///< the options of a save

    /// A driver with no messages.
    vkCoreDriver() = default;
    vkCoreDriver(const vkCoreDriver&) = delete;
    vkCoreDriver& operator=(const vkCoreDriver&) = delete;
    virtual ~vkCoreDriver() = default;

    ///@{
    /// The warnings and errors of the driver's last request, in order.
    const std::list<std::string>& getMessages() const { return mMessages; }
    /// Mutable access to getMessages().
    std::list<std::string>& editMessages() { return mMessages; }
    ///@}

private:
    std::list<std::string> mMessages;
};

/// The interface of every SVG driver. A load key is a device (always null when
/// the manager asks) and a name: a file's extension or the caller's format
/// name. A save key is that name alone.
class VKSVG_API vkCoreSvgIODriver
    : public vkCoreDriver<std::pair<vk::vkIoDevice*, std::string>, std::string, LoadOptions, SaveOptions> {
public:
    vkCoreSvgIODriver();
    ~vkCoreSvgIODriver() override;

    /// How well the driver fits a load key, as a DriverMatch value.
    virtual int canLoad(const std::pair<vk::vkIoDevice*, std::string>& key, const LoadOptions& options) const = 0;
    /// How well the driver fits a save key, as a DriverMatch value.
    virtual int canSave(const std::string& key, const SaveOptions& options) const = 0;

    /// Loads the file `fileName` into `root`; `progress` may be null. The
    /// messages of the request are left in getMessages().
    virtual bool loadSvg(ItemInterfacePointer<ItemInterface>& root, const std::string& fileName,
                         vk::vkProgressNotifierInterface* progress, const LoadOptions& options) = 0;
    /// Loads from `device`, open for reading; `name` is the load key's name.
    virtual bool loadSvg(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const std::string& name,
                         vk::vkProgressNotifierInterface* progress, const LoadOptions& options) = 0;
    /// Writes `root` to the file `fileName`; `progress` may be null. The
    /// messages of the request are left in getMessages().
    virtual bool saveSvg(const ItemInterface& root, const std::string& fileName,
                         vk::vkProgressNotifierInterface* progress, const SaveOptions& options) = 0;
    /// Writes `root` to `device`, open for writing; `name` is the save key.
    virtual bool saveSvg(const ItemInterface& root, vk::vkIoDevice& device, const std::string& name,
                         vk::vkProgressNotifierInterface* progress, const SaveOptions& options) = 0;
};

} // namespace vk::svg

#endif
