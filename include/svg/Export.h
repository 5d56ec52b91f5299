#ifndef VKSVG_EXPORT_H
#define VKSVG_EXPORT_H

// libvkSvg hides every symbol that is not marked with VKSVG_API.
#if defined(VKSVG_BUILDING)
#define VKSVG_API __attribute__((visibility("default")))
#else
#define VKSVG_API
#endif

#endif
