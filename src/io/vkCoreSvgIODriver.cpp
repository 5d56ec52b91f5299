#include <svg/vkCoreDriver.h>

namespace vk::svg {

// Defined here so that the interface's type information and virtual table
// live in the library, where hosts' own drivers find them.
vkCoreSvgIODriver::vkCoreSvgIODriver() = default;

vkCoreSvgIODriver::~vkCoreSvgIODriver() = default;

} // namespace vk::svg
