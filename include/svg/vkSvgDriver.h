#ifndef VKSVG_VKSVGDRIVER_H
#define VKSVG_VKSVGDRIVER_H

#include <svg/Export.h>
#include <svg/Items.h>
#include <svg/Options.h>
#include <svg/vkCoreDriver.h>

#include <string>
#include <utility>

namespace vk {
class vkIoDevice;
class vkProgressNotifierInterface;
} // namespace vk

namespace vk::svg {

/// The driver that initializeVkSvg registers: it loads and saves SVG
/// documents for the key "svg" (exactly; neither "SVG" nor "svgz"). Each
/// request clears the message list first, so that afterwards it holds that
/// request's warnings and errors, at most 1024 of them (the oldest go first)
/// and each cut to 1024 characters. Progress is neither reported nor
/// cancellable.
///
/// Threads: one request at a time per driver object (its message list is
/// unlocked). Separate vkSvgDriver objects share nothing and may serve
/// requests at once on different threads.
class VKSVG_API vkSvgDriver : public vkCoreSvgIODriver {
public:
    vkSvgDriver();
    ~vkSvgDriver() override;

    int canLoad(const std::pair<vk::vkIoDevice*, std::string>& key, const LoadOptions& options) const override;
    int canSave(const std::string& key, const SaveOptions& options) const override;

    /// A file that cannot be opened fails with "Fail to open file".
    bool loadSvg(ItemInterfacePointer<ItemInterface>& root, const std::string& fileName,
                 vk::vkProgressNotifierInterface* progress, const LoadOptions& options) override;
    /// `root` receives the tree only when the document was accepted.
    bool loadSvg(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const std::string& name,
                 vk::vkProgressNotifierInterface* progress, const LoadOptions& options) override;
    bool saveSvg(const ItemInterface& root, const std::string& fileName, vk::vkProgressNotifierInterface* progress,
                 const SaveOptions& options) override;
    /// Writes the XML declaration, the Exporter and Datetime comments (unless
    /// options.writeHeaderComments is false) and the tree, moving the text to
    /// the device whenever more than 8192 bytes are waiting.
    bool saveSvg(const ItemInterface& root, vk::vkIoDevice& device, const std::string& name,
                 vk::vkProgressNotifierInterface* progress, const SaveOptions& options) override;

    /// Appends to the message list within its limits: beyond 1024 entries
    /// the oldest is dropped, and a text longer than 1024 characters keeps
    /// its first 1020 followed by " ...".
    void addMessage(const std::string& text);
};

} // namespace vk::svg

#endif
