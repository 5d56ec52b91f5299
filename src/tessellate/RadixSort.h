#ifndef VKSVG_TESSELLATE_RADIXSORT_H
#define VKSVG_TESSELLATE_RADIXSORT_H

// Least-significant-digit radix sort of (key, index) pairs, for ordering the
// sweep's vertices: a few linear passes instead of n log n comparisons that
// each load two points. Bytes that every key shares cost no pass.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vk::svg::impl {

struct KeyedIndex {
    uint64_t key;
    uint32_t index;
};

// Sorts `items` by key; equal keys keep no particular order. `scratch` is
// working space, left in any state.
inline void RadixSortByKey(std::vector<KeyedIndex>& items, std::vector<KeyedIndex>& scratch)
{
    const size_t n = items.size();
    // Below this the histograms cost more than comparing does.
    if (n < 64) {
        std::sort(items.begin(), items.end(), [](const KeyedIndex& a, const KeyedIndex& b) { return a.key < b.key; });
        return;
    }
    uint64_t all = 0;
    for (const KeyedIndex& item : items) {
        all |= item.key;
    }
    int bytes = 0;
    while (bytes < 8 && (all >> (8 * bytes)) != 0) {
        ++bytes;
    }
    std::vector<std::array<uint32_t, 256>> counts(static_cast<size_t>(bytes));
    for (auto& c : counts) {
        c.fill(0);
    }
    for (const KeyedIndex& item : items) {
        for (int b = 0; b < bytes; ++b) {
            ++counts[size_t(b)][(item.key >> (8 * b)) & 0xFF];
        }
    }
    scratch.resize(n);
    for (int b = 0; b < bytes; ++b) {
        auto& c = counts[size_t(b)];
        if (*std::max_element(c.begin(), c.end()) == n) {
            continue;
        }
        uint32_t sum = 0;
        for (uint32_t& slot : c) {
            const uint32_t count = slot;
            slot = sum;
            sum += count;
        }
        for (const KeyedIndex& item : items) {
            scratch[c[(item.key >> (8 * b)) & 0xFF]++] = item;
        }
        items.swap(scratch);
    }
}

} // namespace vk::svg::impl

#endif
