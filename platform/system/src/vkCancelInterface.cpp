#include <vkSystem/vkCancelInterface.h>

namespace vk {

vkCancelInterface::~vkCancelInterface() = default;

} // namespace vk
