#ifndef VKSVG_IO_LIBRARYSTATE_H
#define VKSVG_IO_LIBRARYSTATE_H

#include <svg/vkCoreDriver.h>

#include <cstdint>

// The start-up state of the library, readable from inside it (and from the
// tests, which link the objects directly).
namespace vk::svg::impl {

// The driver that initializeVkSvg created; null outside the initialised
// lifetime.
vkCoreSvgIODriver* GetBuiltInDriver();

// How many times a start-up registered the built-in driver.
int32_t GetBuiltInDriverRegistrationCount();

} // namespace vk::svg::impl

#endif
