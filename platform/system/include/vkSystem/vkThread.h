#ifndef VKSYSTEM_VKTHREAD_H
#define VKSYSTEM_VKTHREAD_H

#include <vkSystem/Export.h>

#include <cstdint>

namespace vk {

class VKSYSTEM_API vkThread {
public:
    // The kernel's id of the calling thread, as tools like top and gdb show it.
    static uint64_t CurrentThreadId();
};

} // namespace vk

#endif
