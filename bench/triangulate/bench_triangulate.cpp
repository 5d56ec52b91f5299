// Triangulation of large outlines, reported as time per input vertex so that
// sizes compare directly (flat per-vertex time means n log n or better). Each
// input runs through TriangulatePoly and, as the *Fill variant, through
// TessellateFill, both counting the vertices and triangles they make.

#include <svg/Tessellation.h>
#include <svg/Triangulation.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

namespace {

using V2 = Wm4::Vector2<float>;
constexpr double kPi = 3.14159265358979323846;

struct Outline {
    std::vector<V2> points;
    std::vector<unsigned int> edges;
};

void AddRing(Outline& outline, const std::vector<V2>& ring)
{
    const auto base = static_cast<unsigned int>(outline.points.size());
    const auto n = static_cast<unsigned int>(ring.size());
    outline.points.insert(outline.points.end(), ring.begin(), ring.end());
    for (unsigned int i = 0; i < n; ++i) {
        outline.edges.push_back(base + i);
        outline.edges.push_back(base + (i + 1) % n);
    }
}

std::vector<V2> Star(std::mt19937& rng, std::size_t n, V2 center, float rMin, float rMax)
{
    std::uniform_real_distribution<float> radius(rMin, rMax);
    std::vector<V2> ring;
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = 2.0 * kPi * double(i) / double(n);
        const float r = radius(rng);
        ring.emplace_back(center.X() + r * float(std::cos(angle)), center.Y() + r * float(std::sin(angle)));
    }
    return ring;
}

// A band whose top and bottom are random walks over increasing x: horizontal
// lines cross the outline many times.
std::vector<V2> RandomWalk(std::mt19937& rng, std::size_t n)
{
    const std::size_t half = n / 2;
    std::uniform_real_distribution<float> step(-0.08f, 0.08f);
    std::vector<V2> top;
    std::vector<V2> bottom;
    float up = 1.0f;
    float down = 1.0f;
    for (std::size_t i = 0; i < half; ++i) {
        const float x = 100.0f * float(i) / float(half - 1);
        up = std::clamp(up + step(rng), 0.1f, 2.0f);
        down = std::clamp(down + step(rng), 0.1f, 2.0f);
        top.emplace_back(x, up);
        bottom.emplace_back(x, -down);
    }
    std::vector<V2> ring(bottom.begin(), bottom.end());
    ring.insert(ring.end(), top.rbegin(), top.rend());
    return ring;
}

void Run(benchmark::State& state, const Outline& outline, vk::TriangulationFillRule rule)
{
    std::vector<V2> points;
    std::vector<unsigned int> triangles;
    for (auto _ : state) {
        points.clear();
        triangles.clear();
        if (!vk::TriangulatePoly(outline.points, outline.edges, points, triangles, rule, true)) {
            state.SkipWithError("triangulation failed");
            break;
        }
        benchmark::DoNotOptimize(triangles.data());
    }
    state.counters["per_vertex"] = benchmark::Counter(
        double(outline.points.size()), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["vertices"] = double(points.size());
    state.counters["triangles"] = double(triangles.size() / 3);
}

// Proper crossings between the outline's edges, pair by pair (inputs that
// cross are small enough): the fill may add one vertex for each.
std::size_t CountCrossings(const Outline& outline)
{
    const auto cross = [](const V2& a, const V2& b, const V2& c) {
        const double v =
            (double(b.X()) - a.X()) * (double(c.Y()) - a.Y()) - (double(b.Y()) - a.Y()) * (double(c.X()) - a.X());
        return (v > 0) - (v < 0);
    };
    const std::size_t m = outline.edges.size() / 2;
    std::size_t count = 0;
    for (std::size_t i = 0; i < m; ++i) {
        const V2& a = outline.points[outline.edges[2 * i]];
        const V2& b = outline.points[outline.edges[2 * i + 1]];
        for (std::size_t j = i + 1; j < m; ++j) {
            const V2& c = outline.points[outline.edges[2 * j]];
            const V2& d = outline.points[outline.edges[2 * j + 1]];
            if (std::max(a.X(), b.X()) < std::min(c.X(), d.X()) || std::max(c.X(), d.X()) < std::min(a.X(), b.X()) ||
                std::max(a.Y(), b.Y()) < std::min(c.Y(), d.Y()) || std::max(c.Y(), d.Y()) < std::min(a.Y(), b.Y())) {
                continue;
            }
            if (cross(a, b, c) * cross(a, b, d) < 0 && cross(c, d, a) * cross(c, d, b) < 0) {
                ++count;
            }
        }
    }
    return count;
}

void RunFill(benchmark::State& state, const Outline& outline, vk::TriangulationFillRule rule,
             bool countCrossings = false)
{
    const vk::svg::WindingRule winding =
        rule == vk::TriangulationFillRule::EvenOdd ? vk::svg::WindingRule::EvenOdd : vk::svg::WindingRule::NonZero;
    const std::vector<uint32_t> edges(outline.edges.begin(), outline.edges.end());
    vk::svg::FillMesh mesh;
    for (auto _ : state) {
        if (!vk::svg::TessellateFill(outline.points, edges, winding, mesh)) {
            state.SkipWithError("tessellation failed");
            break;
        }
        benchmark::DoNotOptimize(mesh.indices.data());
    }
    state.counters["per_vertex"] = benchmark::Counter(
        double(outline.points.size()), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["vertices"] = double(mesh.vertices.size());
    state.counters["triangles"] = double(mesh.indices.size() / 3);
    if (countCrossings) {
        state.counters["crossings"] = double(CountCrossings(outline));
    }
}

Outline StarOutline(std::size_t n)
{
    std::mt19937 rng(1);
    Outline outline;
    AddRing(outline, Star(rng, n, V2(0, 0), 50.0f, 100.0f));
    return outline;
}

Outline RandomWalkOutline(std::size_t n)
{
    std::mt19937 rng(2);
    Outline outline;
    AddRing(outline, RandomWalk(rng, n));
    return outline;
}

// A 10 x 10 grid of star-shaped holes in a star-shaped outline.
Outline HolesOutline(std::size_t holeVertices)
{
    std::mt19937 rng(3);
    Outline outline;
    AddRing(outline, Star(rng, 10 * holeVertices, V2(0, 0), 95.0f, 100.0f));
    for (int i = 0; i < 10; ++i) {
        for (int j = 0; j < 10; ++j) {
            const V2 center(-60.0f + 12.0f * float(i) + 6.0f, -60.0f + 12.0f * float(j) + 6.0f);
            AddRing(outline, Star(rng, holeVertices, center, 2.0f, 5.0f));
        }
    }
    return outline;
}

// A star whose angles jitter by up to three steps, so that the outline
// crosses itself a few times per vertex.
Outline TangledOutline(std::size_t n)
{
    std::mt19937 rng(4);
    std::uniform_real_distribution<double> jitter(-3.0, 3.0);
    std::uniform_real_distribution<float> radius(20.0f, 100.0f);
    std::vector<V2> ring;
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = 2.0 * kPi * (double(i) + jitter(rng)) / double(n);
        const float r = radius(rng);
        ring.emplace_back(r * float(std::cos(angle)), r * float(std::sin(angle)));
    }
    Outline outline;
    AddRing(outline, ring);
    return outline;
}

void BM_Star(benchmark::State& state)
{
    Run(state, StarOutline(std::size_t(state.range(0))), vk::TriangulationFillRule::NonZero);
}

void BM_StarFill(benchmark::State& state)
{
    RunFill(state, StarOutline(std::size_t(state.range(0))), vk::TriangulationFillRule::NonZero);
}

void BM_RandomWalk(benchmark::State& state)
{
    Run(state, RandomWalkOutline(std::size_t(state.range(0))), vk::TriangulationFillRule::NonZero);
}

void BM_RandomWalkFill(benchmark::State& state)
{
    RunFill(state, RandomWalkOutline(std::size_t(state.range(0))), vk::TriangulationFillRule::NonZero);
}

void BM_Holes(benchmark::State& state)
{
    Run(state, HolesOutline(std::size_t(state.range(0))), vk::TriangulationFillRule::EvenOdd);
}

void BM_HolesFill(benchmark::State& state)
{
    RunFill(state, HolesOutline(std::size_t(state.range(0))), vk::TriangulationFillRule::EvenOdd);
}

void BM_Tangled(benchmark::State& state)
{
    Run(state, TangledOutline(std::size_t(state.range(0))), vk::TriangulationFillRule::NonZero);
}

void BM_TangledFill(benchmark::State& state)
{
    RunFill(state, TangledOutline(std::size_t(state.range(0))), vk::TriangulationFillRule::NonZero, true);
}

} // namespace

BENCHMARK(BM_Star)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StarFill)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomWalk)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RandomWalkFill)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Holes)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HolesFill)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Tangled)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TangledFill)->Arg(10000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
