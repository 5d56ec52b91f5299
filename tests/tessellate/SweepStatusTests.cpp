// The sweep status against a plain vector: random positional inserts and
// erases, then order (both ways along the threads) and searches compared.

#include "tessellate/SweepStatus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using vk::svg::impl::SweepStatus;
using Status = SweepStatus<int>;

void ExpectSame(const Status& status, const std::vector<uint32_t>& model)
{
    std::vector<uint32_t> forward;
    for (uint32_t h = status.First(); h != Status::kNil && forward.size() <= model.size(); h = status.Next(h)) {
        forward.push_back(h);
    }
    ASSERT_EQ(forward, model);
    std::vector<uint32_t> backward;
    for (uint32_t h = status.Last(); h != Status::kNil && backward.size() <= model.size(); h = status.Prev(h)) {
        backward.push_back(h);
    }
    std::reverse(backward.begin(), backward.end());
    ASSERT_EQ(backward, model);
    EXPECT_EQ(status.Empty(), model.empty());
}

TEST(SweepStatus, MatchesAListUnderRandomEdits)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        Status status;
        std::vector<uint32_t> model; // handles in order
        // Values stay increasing along the list, so that searching works;
        // gaps leave room for inserts between neighbours.
        const auto valueAt = [&](size_t i) { return i < model.size() ? status[model[i]] : 1 << 30; };
        for (int op = 0; op < 3000; ++op) {
            const bool grow = model.empty() || rng() % (seed % 2 ? 3 : 5) != 0;
            if (grow) {
                const size_t at = std::uniform_int_distribution<size_t>(0, model.size())(rng);
                const int below = at == 0 ? 0 : status[model[at - 1]];
                const int above = valueAt(at);
                if (above - below < 2) {
                    continue;
                }
                const uint32_t h = status.InsertBefore(at < model.size() ? model[at] : Status::kNil);
                status[h] = below + (above - below) / 2;
                model.insert(model.begin() + std::ptrdiff_t(at), h);
            } else {
                const size_t at = std::uniform_int_distribution<size_t>(0, model.size() - 1)(rng);
                status.Erase(model[at]);
                model.erase(model.begin() + std::ptrdiff_t(at));
            }
            if (op % 97 == 0) {
                ExpectSame(status, model);
                for (int probe = 0; probe < 20; ++probe) {
                    const int x = std::uniform_int_distribution<int>(-1, 1 << 30)(rng);
                    const auto it =
                        std::find_if(model.begin(), model.end(), [&](uint32_t h) { return status[h] >= x; });
                    const uint32_t expected = it == model.end() ? Status::kNil : *it;
                    ASSERT_EQ(status.LowerBound([&](int value) { return value < x; }), expected) << x;
                }
            }
        }
        ExpectSame(status, model);
    }
}

} // namespace
