#ifndef VKXML_EXPORT_H
#define VKXML_EXPORT_H

// Everything in libvkXml is hidden unless marked with VKXML_API.
#if defined(VKXML_BUILDING)
#define VKXML_API __attribute__((visibility("default")))
#else
#define VKXML_API
#endif

#endif
