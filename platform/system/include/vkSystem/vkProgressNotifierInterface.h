#ifndef VKSYSTEM_VKPROGRESSNOTIFIERINTERFACE_H
#define VKSYSTEM_VKPROGRESSNOTIFIERINTERFACE_H

#include <vkSystem/vkCancelInterface.h>

namespace vk {

// Receives the progress of a long operation and may ask it to stop.
class VKSYSTEM_API vkProgressNotifierInterface : public vkCancelInterface {
public:
    // ratio runs from 0 to 1.
    virtual void notifyProgress(double ratio) = 0;
    bool isCancelRequested() const override { return false; }
};

} // namespace vk

#endif
