#ifndef VKSYSTEM_VKCANCELINTERFACE_H
#define VKSYSTEM_VKCANCELINTERFACE_H

#include <vkSystem/Export.h>

namespace vk {

// Polled by long operations; once it answers true they stop as soon as they
// can and report failure.
class VKSYSTEM_API vkCancelInterface {
public:
    virtual ~vkCancelInterface();
    virtual bool isCancelRequested() const = 0;
};

} // namespace vk

#endif
