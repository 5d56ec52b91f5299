#ifndef VKSVG_IO_DOCUMENTREQUESTS_H
#define VKSVG_IO_DOCUMENTREQUESTS_H

#include "io/RequestMessages.h"

#include <svg/Items.h>
#include <svg/Options.h>

#include <functional>
#include <string>

namespace vk {
class vkIoDevice;
}

// The work of one load or save, shared by the built-in driver and the
// reentrant entry points. Everything a request needs lives in its arguments,
// so that requests on different threads share nothing.
namespace vk::svg::impl {

using DeviceRequest = std::function<bool(vk::vkIoDevice& device, const std::string& extension)>;

// The extension that names a file's format, without its dot.
std::string FileExtension(const std::string& fileName);

// Reads the document of `device` under options.profile; `root` is set only
// on success.
bool LoadFromDevice(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const LoadOptions& options,
                    RequestMessages& messages);

// Writes the declaration, the header comments when asked for, and the tree.
bool SaveToDevice(const ItemInterface& root, vk::vkIoDevice& device, const SaveOptions& options,
                  RequestMessages& messages);

// Open `fileName` for reading or writing and run `request` on the stream
// with the file's extension; "Fail to open file" when it cannot be opened.
// A save also fails when closing the stream shows the text was not stored.
bool LoadFromFile(const std::string& fileName, RequestMessages& messages, const DeviceRequest& request);
bool SaveToFile(const std::string& fileName, RequestMessages& messages, const DeviceRequest& request);

} // namespace vk::svg::impl

#endif
