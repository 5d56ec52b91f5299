// Segmentation of a generated drawing: 10,000 filled paths of lines, cubic
// curves and arcs (every fourth with a hole) in three levels of transformed
// groups. Reports primitives and triangles per second for the segmenter
// visitor, and how the time splits between flattening the paths, cleaning
// the contours and triangulating them.

#include <svg/Items.h>
#include <svg/PathData.h>
#include <svg/Segmentation.h>
#include <svg/Triangulation.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace vk::svg;

constexpr int kFanOut = 10; // groups per level and paths per innermost group

Wm4::Matrix3<float> Placement(std::mt19937& rng, float spread)
{
    std::uniform_real_distribution<float> offset(-spread, spread);
    std::uniform_real_distribution<float> angle(-0.5f, 0.5f);
    std::uniform_real_distribution<float> scale(0.8f, 1.2f);
    const float a = angle(rng);
    const float s = scale(rng);
    return Wm4::Matrix3<float>(s * std::cos(a), -s * std::sin(a), offset(rng), s * std::sin(a), s * std::cos(a),
                               offset(rng), 0, 0, 1);
}

// A box whose right side bulges as a cubic curve and whose top is an arc,
// sometimes with a rectangular hole; never self-intersecting.
std::string Blob(std::mt19937& rng, bool hole)
{
    std::uniform_real_distribution<float> size(4.0f, 20.0f);
    const float w = size(rng);
    const float h = size(rng);
    const float bulge = w * 0.4f;
    std::string d = "M0 0 L" + std::to_string(w) + " 0 C" + std::to_string(w + bulge) + ' ' + std::to_string(h / 3) +
                    ' ' + std::to_string(w + bulge) + ' ' + std::to_string(2 * h / 3) + ' ' + std::to_string(w) + ' ' +
                    std::to_string(h) + " A" + std::to_string(w / 2) + ' ' + std::to_string(h / 4) + " 0 0 1 0 " +
                    std::to_string(h) + " Z";
    if (hole)
        d += " M" + std::to_string(w / 4) + ' ' + std::to_string(h / 4) + " h" + std::to_string(w / 2) + " v" +
             std::to_string(h / 2) + " h" + std::to_string(-w / 2) + " Z";
    return d;
}

const Document& Drawing()
{
    static const std::unique_ptr<Document> document = [] {
        auto root = std::make_unique<Document>();
        std::mt19937 rng(7);
        const char* fills[] = {"#4c72b0", "#dd8452", "rgb(85, 168, 104)", "crimson"};
        int count = 0;
        for (int i = 0; i < kFanOut; ++i) {
            auto outer = std::make_shared<Node>();
            outer->editTransform() = Placement(rng, 400.0f);
            outer->editRenderingProperties().editFill() = fills[i % 4];
            for (int j = 0; j < kFanOut; ++j) {
                auto middle = std::make_shared<Node>();
                middle->editTransform() = Placement(rng, 100.0f);
                middle->editRenderingProperties().editStroke() = "black";
                for (int k = 0; k < kFanOut; ++k) {
                    auto inner = std::make_shared<Node>();
                    inner->editTransform() = Placement(rng, 30.0f);
                    for (int m = 0; m < kFanOut; ++m) {
                        auto path = std::make_shared<Path>();
                        ConvertPathStringToCommands(Blob(rng, count++ % 4 == 0), path->editCommands(), nullptr);
                        path->editTransform() = Placement(rng, 10.0f);
                        inner->addChild(path, true);
                    }
                    middle->addChild(inner, true);
                }
                outer->addChild(middle, true);
            }
            root->addChild(outer, true);
        }
        return root;
    }();
    return *document;
}

std::vector<const Path*> Paths()
{
    std::vector<const Path*> paths;
    for (const auto& outer : Drawing().getChildren())
        for (const auto& middle : static_cast<const Node&>(*outer).getChildren())
            for (const auto& inner : static_cast<const Node&>(*middle).getChildren())
                for (const auto& path : static_cast<const Node&>(*inner).getChildren())
                    paths.push_back(static_cast<const Path*>(path.get()));
    return paths;
}

// Argument 0: the default options (32 steps, trapezoidal fill); 1: the
// faithful ones (flattening to 0.25 units, the fill tessellator). Reports the
// whole drawing's outline vertices, fill vertices and triangles.
void BM_SegmenterVisitor(benchmark::State& state)
{
    const Document& drawing = Drawing();
    const bool faithful = state.range(0) == 1;
    std::size_t primitives = 0;
    std::size_t triangles = 0;
    std::size_t outlineVertices = 0;
    std::size_t fillVertices = 0;
    std::size_t drawingTriangles = 0;
    bool failed = false;
    for (auto _ : state) {
        SegmenterVisitor visitor =
            faithful ? SegmenterVisitor(drawing, SegmentationOptions::Faithful()) : SegmenterVisitor(drawing);
        primitives += visitor.getSegmentedPrimitives().size();
        outlineVertices = fillVertices = drawingTriangles = 0;
        for (const auto& primitive : visitor.getSegmentedPrimitives()) {
            drawingTriangles += primitive->getTriangleIndices().size() / 3;
            outlineVertices += primitive->getPoints().size();
            fillVertices += primitive->getTriangleVertices().size();
        }
        triangles += drawingTriangles;
        failed = failed || visitor.hasError();
        benchmark::DoNotOptimize(visitor.getSegmentedPrimitives().size());
    }
    if (failed)
        state.SkipWithError("a path could not be triangulated");
    state.counters["primitives/s"] = benchmark::Counter(double(primitives), benchmark::Counter::kIsRate);
    state.counters["triangles/s"] = benchmark::Counter(double(triangles), benchmark::Counter::kIsRate);
    state.counters["outline_vertices"] = double(outlineVertices);
    state.counters["fill_vertices"] = double(fillVertices);
    state.counters["triangles"] = double(drawingTriangles);
}
BENCHMARK(BM_SegmenterVisitor)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// The visitor's three stages run one after the other over every path, each
// timed on its own: flattening (walking the commands, subdividing curves
// and arcs, with the workspace shared as the visitor shares it), cleanup
// and triangulation.
void BM_StageSplit(benchmark::State& state)
{
    const std::vector<const Path*> paths = Paths();
    SegmentationUtils::BezierSegmentationWorkspace workspace;
    using Clock = std::chrono::steady_clock;
    Clock::duration flatten{};
    Clock::duration cleanup{};
    Clock::duration triangulate{};
    std::vector<std::shared_ptr<SegmentedPrimitive>> contours(paths.size());
    for (auto _ : state) {
        const auto t0 = Clock::now();
        for (std::size_t i = 0; i < paths.size(); ++i)
            contours[i] = SegmentPath(*paths[i], 32, -0.999f, nullptr, nullptr, &workspace, nullptr);
        const auto t1 = Clock::now();
        for (const auto& contour : contours)
            vk::CleanupContour(contour->editPoints(), contour->editIndices());
        const auto t2 = Clock::now();
        for (const auto& contour : contours)
            vk::TriangulatePoly(contour->getPoints(), contour->getIndices(), contour->editTriangleVertices(),
                                contour->editTriangleIndices(), vk::TriangulationFillRule::NonZero, true);
        const auto t3 = Clock::now();
        flatten += t1 - t0;
        cleanup += t2 - t1;
        triangulate += t3 - t2;
    }
    const double total = double((flatten + cleanup + triangulate).count());
    state.counters["flatten%"] = 100.0 * double(flatten.count()) / total;
    state.counters["cleanup%"] = 100.0 * double(cleanup.count()) / total;
    state.counters["triangulate%"] = 100.0 * double(triangulate.count()) / total;
}
BENCHMARK(BM_StageSplit)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
