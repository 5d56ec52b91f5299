#ifndef VKSVG_SEGMENT_SEGMENTATIONLIMITS_H
#define VKSVG_SEGMENT_SEGMENTATIONLIMITS_H

#include <cstdint>

namespace vk::svg::impl {

// The largest contour index: indices are 32-bit.
constexpr uint64_t kMaxIndex = 4294967295u;

// The most points one curve, arc or circle may ask for. Four million points
// is far beyond anything a drawing needs, and keeps a runaway count from
// reserving gigabytes (which under a sanitiser aborts instead of throwing)
// or from feeding the triangulator a polygon it would chew on for minutes.
constexpr uint64_t kMaxSegments = uint64_t{1} << 22;

// False, after logging why, when `segments` is above kMaxSegments.
bool WithinSegmentLimit(uint64_t segments);

// Logs that a shape was left out because its points could not be allocated.
void LogOutOfMemory();

} // namespace vk::svg::impl

#endif
