// Path data throughput: the full scan and conversion of a generated 1 MB
// path against the floor of converting the same numbers with strtof_l
// alone. Allocations are counted so that the list nodes and value vectors
// the API requires can be told apart from any per-number cost.
#include <svg/PathData.h>

#include <vkSystem/vkStringUtils.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <list>
#include <random>
#include <string>
#include <vector>

#include "AllocationCounter.h"

namespace {

struct Workload {
    std::string path;
    // The same numbers (arc flags excepted), each NUL-terminated, for the
    // floor loop.
    std::string numbers;
    std::vector<std::size_t> offsets;
};

const Workload& GetWorkload()
{
    static const Workload workload = [] {
        Workload w;
        std::mt19937 random(1234u);
        const auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
        // 0: no separator (after a letter), 1: inside a group, 2: between
        // groups, where a comma is not allowed.
        const auto number = [&](int separate) {
            char text[32];
            const int shape = pick(0, 9);
            if (shape < 5) {
                std::snprintf(text, sizeof(text), "%d.%d", pick(-500, 500), pick(0, 99));
            } else if (shape < 8) {
                std::snprintf(text, sizeof(text), "%d", pick(-2000, 2000));
            } else {
                std::snprintf(text, sizeof(text), "%d.%03de%d", pick(0, 9), pick(0, 999), pick(-3, 3));
            }
            if (separate == 1) {
                w.path += pick(0, 3) == 0 ? "," : " ";
            } else if (separate == 2) {
                w.path += ' ';
            }
            w.path += text;
            w.offsets.push_back(w.numbers.size());
            w.numbers += text;
            w.numbers += '\0';
        };
        const std::string letters = "LlHhVvCcSsAaZ";
        const int counts[] = {2, 2, 1, 1, 1, 1, 6, 6, 4, 4, 7, 7, 0};
        while (w.path.size() < (1u << 20)) {
            w.path += "M";
            number(0);
            number(1);
            const int runs = pick(3, 12);
            for (int r = 0; r < runs; ++r) {
                const std::size_t index = static_cast<std::size_t>(pick(0, static_cast<int>(letters.size()) - 1));
                w.path += ' ';
                w.path += letters[index];
                const int groups = counts[index] == 0 ? 0 : pick(1, 3);
                for (int g = 0; g < groups; ++g) {
                    for (int i = 0; i < counts[index]; ++i) {
                        if (counts[index] == 7 && (i == 3 || i == 4)) {
                            w.path += pick(0, 1) ? " 1" : " 0";
                        } else {
                            number(i > 0 ? 1 : g > 0 ? 2 : 0);
                        }
                    }
                }
            }
            w.path += '\n';
        }
        return w;
    }();
    return workload;
}

void BM_ConvertPathStringToCommands(benchmark::State& state)
{
    const Workload& w = GetWorkload();
    std::size_t commandCount = 0;
    std::size_t allocations = 0;
    for (auto _ : state) {
        std::list<vk::svg::PathCommand> commands;
        const std::size_t before = AllocationCount();
        const bool ok = vk::svg::ConvertPathStringToCommands(w.path, commands, nullptr);
        allocations = AllocationCount() - before;
        commandCount = commands.size();
        if (!ok) {
            state.SkipWithError("the generated path does not parse");
            break;
        }
        benchmark::DoNotOptimize(commands);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * w.path.size()));
    state.counters["numbers"] = static_cast<double>(w.offsets.size());
    state.counters["commands"] = static_cast<double>(commandCount);
    // Two per command (list node and value vector) is what the API needs.
    state.counters["allocs_per_command"] = static_cast<double>(allocations) / static_cast<double>(commandCount);
}
BENCHMARK(BM_ConvertPathStringToCommands)->Unit(benchmark::kMillisecond);

void BM_TokensOnly(benchmark::State& state)
{
    const Workload& w = GetWorkload();
    for (auto _ : state) {
        std::size_t values = 0;
        vk::svg::PathVisitorStrToTokens scanner(w.path,
                                                [&](char, std::vector<float>&& numbers) { values += numbers.size(); });
        benchmark::DoNotOptimize(scanner.visit());
        benchmark::DoNotOptimize(values);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * w.path.size()));
}
BENCHMARK(BM_TokensOnly)->Unit(benchmark::kMillisecond);

void BM_StrtofFloor(benchmark::State& state)
{
    const Workload& w = GetWorkload();
    for (auto _ : state) {
        float sum = 0.0f;
        for (const std::size_t offset : w.offsets) {
            char* end = nullptr;
            sum += strtof_l(w.numbers.c_str() + offset, &end, vk::vkStringUtils::msCLocale);
            benchmark::DoNotOptimize(end);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * w.path.size()));
}
BENCHMARK(BM_StrtofFloor)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
