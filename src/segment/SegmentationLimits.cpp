#include "segment/SegmentationLimits.h"

#include <vkSystem/vkLog.h>

#include <string>

namespace vk::svg::impl {

bool WithinSegmentLimit(uint64_t segments)
{
    if (segments <= kMaxSegments)
        return true;
    vk::vkLog::Log("svg", vk::vkLog::Error,
                   "Segment count " + std::to_string(segments) + " too large for segmentation (at most " +
                       std::to_string(kMaxSegments) + ")");
    return false;
}

void LogOutOfMemory() { vk::vkLog::Log("svg", vk::vkLog::Error, "Out of memory during segmentation"); }

} // namespace vk::svg::impl
