#ifndef VKSVG_LIBRARY_H
#define VKSVG_LIBRARY_H

#include <svg/Export.h>

namespace vk::svg {

/// Brings the library up: the XML support, the I/O manager
/// (vkSvgIOManager::sThis) and the built-in SVG driver. Calls nest; only the
/// first does the work.
///
/// Threads: start-up and shut-down are counted under a lock, but they create
/// and destroy the manager and the built-in driver that every other I/O call
/// uses, so no load or save (nor driver registration) may run on another
/// thread while either is called. Call initializeVkSvg before any thread
/// starts loading: it also brings up libxml2, which needs that once per
/// process before concurrent parses.
VKSVG_API void initializeVkSvg();

/// Takes down what initializeVkSvg set up, on the call that matches the
/// first initialisation. Drivers that the host registered are not removed:
/// unregister them before the last termination.
VKSVG_API void terminateVkSvg();

} // namespace vk::svg

#endif
