#include <vkSystem/vkIoDevice.h>

#include <utility>

namespace vk {

vkIoDevice::~vkIoDevice() = default;

std::string vkIoDevice::errorString() const { return mErrorString; }

void vkIoDevice::setErrorString(std::string text) { mErrorString = std::move(text); }

} // namespace vk
