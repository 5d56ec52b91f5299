// Stroking long polylines, reported per segment so that sizes compare
// directly (flat time per segment means linear work): a random walk with
// every join and cap in fast mode, the non-overlapping mode at the smaller
// sizes (also with dense fine dashes), and a dashed stroke. Counters give
// triangles per segment.

#include <svg/Tessellation.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using V2 = Wm4::Vector2<float>;
using namespace vk::svg;

// A walk of unit-ish steps turning by up to 120 degrees either way, so that
// joins of every kind are exercised; the walk stays near the origin.
StrokePolyline Walk(std::size_t segments)
{
    std::mt19937 rng(12345);
    std::uniform_real_distribution<double> turn(-2.1, 2.1);
    std::uniform_real_distribution<double> step(0.5, 2.0);
    StrokePolyline polyline;
    polyline.points.reserve(segments + 1);
    double x = 0.0, y = 0.0, heading = 0.0;
    polyline.points.emplace_back(0.0f, 0.0f);
    for (std::size_t i = 0; i < segments; ++i) {
        heading += turn(rng);
        // Pull back towards the origin so that coordinates stay small.
        const double s = step(rng);
        x += s * std::cos(heading) - 1e-3 * x;
        y += s * std::sin(heading) - 1e-3 * y;
        polyline.points.emplace_back(float(x), float(y));
    }
    return polyline;
}

void Run(benchmark::State& state, StrokeStyle style)
{
    const auto segments = std::size_t(state.range(0));
    const std::vector<StrokePolyline> polylines{Walk(segments)};
    FillMesh mesh;
    for (auto _ : state) {
        if (!TessellateStroke(polylines, style, mesh)) {
            state.SkipWithError("stroke failed");
            break;
        }
        benchmark::DoNotOptimize(mesh.indices.data());
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(segments));
    state.counters["ns/segment"] = benchmark::Counter(double(state.iterations()) * double(segments),
                                                      benchmark::Counter::kIsRate | benchmark::Counter::kInvert,
                                                      benchmark::Counter::OneK::kIs1000);
    state.counters["triangles/segment"] = double(mesh.indices.size() / 3) / double(segments);
}

StrokeStyle Style(StrokeJoin join, StrokeCap cap, StrokeMode mode)
{
    StrokeStyle style;
    style.width = 0.4f;
    style.join = join;
    style.cap = cap;
    style.mode = mode;
    style.tolerance = 0.01f;
    return style;
}

void Register()
{
    const std::pair<const char*, StrokeJoin> joins[] = {{"Miter", StrokeJoin::Miter},
                                                        {"MiterClip", StrokeJoin::MiterClip},
                                                        {"Round", StrokeJoin::Round},
                                                        {"Bevel", StrokeJoin::Bevel},
                                                        {"Arcs", StrokeJoin::Arcs}};
    const std::pair<const char*, StrokeCap> caps[] = {
        {"Butt", StrokeCap::Butt}, {"Round", StrokeCap::Round}, {"Square", StrokeCap::Square}};
    for (const auto& [joinName, join] : joins) {
        for (const auto& [capName, cap] : caps) {
            const std::string name = std::string("Fast/") + joinName + "/" + capName;
            benchmark::RegisterBenchmark(name.c_str(), Run, Style(join, cap, StrokeMode::Fast))
                ->Arg(1000)
                ->Arg(100000)
                ->Arg(1000000)
                ->Unit(benchmark::kMillisecond);
        }
    }
    for (const auto& [joinName, join] : joins) {
        const std::string name = std::string("NonOverlapping/") + joinName + "/Round";
        benchmark::RegisterBenchmark(name.c_str(), Run, Style(join, StrokeCap::Round, StrokeMode::NonOverlapping))
            ->Arg(1000)
            ->Arg(10000)
            ->Unit(benchmark::kMillisecond);
    }
    // Dashes shorter than the width, whose round caps overlap their
    // neighbours many times over, on a walk that also crosses itself: the
    // union's worst case short of the dash budget.
    StrokeStyle dense = Style(StrokeJoin::Round, StrokeCap::Round, StrokeMode::NonOverlapping);
    dense.dashArray = {0.1f, 0.1f};
    benchmark::RegisterBenchmark("NonOverlapping/DenseDashes/Round/Round", Run, dense)
        ->Arg(100)
        ->Arg(1000)
        ->Unit(benchmark::kMillisecond);
    StrokeStyle dashed = Style(StrokeJoin::Miter, StrokeCap::Butt, StrokeMode::Fast);
    dashed.dashArray = {3.0f, 1.0f};
    benchmark::RegisterBenchmark("Fast/Dashed/Miter/Butt", Run, dashed)
        ->Arg(1000)
        ->Arg(100000)
        ->Arg(1000000)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char** argv)
{
    Register();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
