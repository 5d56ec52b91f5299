#ifndef VKSVG_BENCH_ALLOCATIONCOUNTER_H
#define VKSVG_BENCH_ALLOCATIONCOUNTER_H

#include <cstddef>

// Number of operator new calls so far in this program.
std::size_t AllocationCount();

#endif
