#ifndef VKSVG_LIBRARY_H
#define VKSVG_LIBRARY_H

#include <svg/Export.h>

namespace vk::svg {

// Brings the library up: the XML support, the I/O manager
// (vkSvgIOManager::sThis) and the built-in SVG driver. Calls nest; only the
// first does the work.
VKSVG_API void initializeVkSvg();

// Takes down what initializeVkSvg set up, on the call that matches the
// first initialisation. Drivers that the host registered are not removed:
// unregister them before the last termination.
VKSVG_API void terminateVkSvg();

} // namespace vk::svg

#endif
