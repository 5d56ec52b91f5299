#ifndef VKSYSTEM_EXPORT_H
#define VKSYSTEM_EXPORT_H

// Everything in libvkSystem is hidden unless marked with VKSYSTEM_API.
#if defined(VKSYSTEM_BUILDING)
#define VKSYSTEM_API __attribute__((visibility("default")))
#else
#define VKSYSTEM_API
#endif

#endif
