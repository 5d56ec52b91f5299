#include <svg/vkSvgDriver.h>

#include "io/DocumentRequests.h"
#include "io/RequestMessages.h"

#include <string>

namespace vk::svg {

namespace {

bool IsSvgKey(const std::string& key) { return key == "svg"; }

} // namespace

vkSvgDriver::vkSvgDriver() = default;

vkSvgDriver::~vkSvgDriver() = default;

int vkSvgDriver::canLoad(const std::pair<vk::vkIoDevice*, std::string>& key, const LoadOptions&) const
{
    return static_cast<int>(IsSvgKey(key.second) ? DriverMatch::Exact : DriverMatch::None);
}

int vkSvgDriver::canSave(const std::string& key, const SaveOptions&) const
{
    return static_cast<int>(IsSvgKey(key) ? DriverMatch::Exact : DriverMatch::None);
}

void vkSvgDriver::addMessage(const std::string& text) { impl::RequestMessages(editMessages()).error(text); }

bool vkSvgDriver::loadSvg(ItemInterfacePointer<ItemInterface>& root, const std::string& fileName,
                          vk::vkProgressNotifierInterface* progress, const LoadOptions& options)
{
    editMessages().clear();
    impl::RequestMessages messages(editMessages());
    // The stream goes through the device overload, which a derived driver
    // may have replaced.
    return impl::LoadFromFile(fileName, messages, [&](vk::vkIoDevice& stream, const std::string& extension) {
        return loadSvg(root, stream, extension, progress, options);
    });
}

bool vkSvgDriver::loadSvg(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const std::string&,
                          vk::vkProgressNotifierInterface*, const LoadOptions& options)
{
    editMessages().clear();
    // Errors and warnings share the one list, in the order they come.
    impl::RequestMessages messages(editMessages());
    return impl::LoadFromDevice(root, device, options, messages);
}

bool vkSvgDriver::saveSvg(const ItemInterface& root, const std::string& fileName,
                          vk::vkProgressNotifierInterface* progress, const SaveOptions& options)
{
    editMessages().clear();
    impl::RequestMessages messages(editMessages());
    return impl::SaveToFile(fileName, messages, [&](vk::vkIoDevice& stream, const std::string& extension) {
        return saveSvg(root, stream, extension, progress, options);
    });
}

bool vkSvgDriver::saveSvg(const ItemInterface& root, vk::vkIoDevice& device, const std::string&,
                          vk::vkProgressNotifierInterface*, const SaveOptions& options)
{
    editMessages().clear();
    impl::RequestMessages messages(editMessages());
    return impl::SaveToDevice(root, device, options, messages);
}

} // namespace vk::svg
