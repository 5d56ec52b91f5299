#ifndef VKSVG_BENCH_MEMORYCOUNTER_H
#define VKSVG_BENCH_MEMORYCOUNTER_H

#include <cstddef>

// Bytes held through operator new now, and the most held since the last
// ResetPeakBytes. libxml2's own allocations are not counted; they are the
// same whichever way a document is read.
std::size_t LiveBytes();
std::size_t PeakBytes();
void ResetPeakBytes();

#endif
