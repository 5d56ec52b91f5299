// Segmentation under SegmentationOptions: fill rules from the item, fills
// that never fail, outlines by tolerance, runs that know whether they close,
// and a walk that reports failures and goes on.
#include "SegmentTestSupport.h"

#include <svg/Items.h>
#include <svg/PathData.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace vk::svg;
using segtest::MeshArea;
using segtest::V;

constexpr double kPi = 3.14159265358979323846;

Path MakePath(const char* data)
{
    Path path;
    EXPECT_TRUE(ConvertPathStringToCommands(data, path.editCommands(), nullptr)) << data;
    return path;
}

RenderingProperties Filled(std::optional<FillRule> rule = std::nullopt)
{
    RenderingProperties properties;
    properties.editFill() = "#000000";
    properties.editFillRule() = rule;
    return properties;
}

// The two icons of a real icon set that the trapezoidal fill gets wrong: a
// ring whose subpaths end a millionth away from their starts, and a house
// whose door runs against its walls.
const char* const kRing =
    "m 8.492188 0.0546875 c -4.128907 0 -7.488282 3.3554685 -7.488282 7.4882815 c 0 4.128906 3.359375 7.484375 "
    "7.488282 7.484375 c 4.128906 0 7.488281 -3.355469 7.488281 -7.484375 c 0 -4.132813 -3.359375 -7.4882815 "
    "-7.488281 -7.4882815 z m 0 1.9726565 c 3.050781 0 5.511718 2.464844 5.511718 5.515625 c 0 3.046875 "
    "-2.460937 5.511719 -5.511718 5.511719 c -3.050782 0 -5.511719 -2.464844 -5.511719 -5.511719 c 0 -3.050781 "
    "2.460937 -5.515625 5.511719 -5.515625 z";
const char* const kHouse =
    "m 8 1 c -0.207031 0 -0.410156 0.066406 -0.582031 0.183594 l -7 5 c -0.449219 0.324218 -0.554688 0.945312 "
    "-0.234375 1.394531 c 0.191406 0.265625 0.492187 0.421875 0.816406 0.417969 v 4.003906 c 0 1.644531 1.355469 "
    "3 3 3 h 8 c 1.644531 0 3 -1.320312 3 -3 v -4.003906 c 0.324219 0.003906 0.625 -0.152344 0.816406 -0.417969 "
    "c 0.320313 -0.449219 0.214844 -1.070313 -0.234375 -1.394531 l -7 -5 c -0.171875 -0.117188 -0.375 -0.183594 "
    "-0.582031 -0.183594 z m 0 2.226562 l 5 3.570313 v 5.203125 c 0 0.5625 -0.4375 1 -1 1 h -3 v -4 c 0 "
    "-0.554688 -0.445312 -1 -1 -1 h -1 c -0.554688 0 -1 0.445312 -1 1 v 4 h -2 c -0.5625 0 -1 -0.4375 -1 -1 v "
    "-5.203125 z m 0 0";

TEST(OptionSegmenters, FillsWhatTheTrapezoidsCannot)
{
    struct Case {
        const char* data;
        std::optional<FillRule> rule;
        double area;
        double tolerance;
    };
    const double ringArea = kPi * (7.4866 * 7.4866 - 5.5137 * 5.5137);
    const Case cases[] = {
        {kRing, std::nullopt, ringArea, 0.3},
        {kRing, FillRule::EvenOdd, ringArea, 0.3},
        {kHouse, std::nullopt, 98.61, 0.3},
        {kHouse, FillRule::EvenOdd, 98.61, 0.3},
        // Same direction: the inner square is covered twice.
        {"M0 0 H10 V10 H0 Z M2 2 H8 V8 H2 Z", std::nullopt, 100.0, 1e-3},
        {"M0 0 H10 V10 H0 Z M2 2 H8 V8 H2 Z", FillRule::EvenOdd, 64.0, 1e-3},
        // A bow tie crosses itself.
        {"M0 0 L10 10 L10 0 L0 10 Z", std::nullopt, 50.0, 1e-3},
        // A corner on another edge, which the trapezoids refuse; the inner
        // triangle runs the same way as the square.
        {segtest::kUnfillable, std::nullopt, 100.0, 1e-3},
        {segtest::kUnfillable, FillRule::EvenOdd, 90.0, 1e-3},
    };
    const SegmentationOptions options = SegmentationOptions::Faithful(0.01f);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.data);
        const RenderingProperties properties = Filled(c.rule);
        std::string failure = "not cleared";
        const auto primitive = SegmentPath(MakePath(c.data), options, nullptr, &properties, nullptr, &failure);
        EXPECT_EQ(failure, "");
        EXPECT_NEAR(MeshArea(*primitive), c.area, c.tolerance);
        // Shared vertices: no position appears twice.
        auto vertices = primitive->getTriangleVertices();
        std::sort(vertices.begin(), vertices.end(),
                  [](const V& a, const V& b) { return a.X() < b.X() || (a.X() == b.X() && a.Y() < b.Y()); });
        EXPECT_EQ(std::adjacent_find(vertices.begin(), vertices.end()), vertices.end());
    }
}

TEST(OptionSegmenters, RunsKnowWhetherTheyClose)
{
    struct Case {
        const char* data;
        std::vector<std::pair<uint32_t, bool>> runs; // index pairs, closed
    };
    const Case cases[] = {
        {"M0 0 L10 0 L10 10 Z M20 0 L30 0", {{3, true}, {1, false}}},
        {"M0 0 L10 0 L10 10 L0 0", {{3, false}}},
        {"M0 0 H10 V10 Z L5 20", {{3, true}, {1, false}}},
        {"M5 5 Z M0 0 L1 1", {{1, true}, {1, false}}},
        {"M5 5 M0 0 L1 1 M7 7", {{1, false}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.data);
        const auto primitive =
            SegmentPath(MakePath(c.data), SegmentationOptions::Faithful(), nullptr, nullptr, nullptr, nullptr);
        const auto& subpaths = primitive->getSubpaths();
        ASSERT_EQ(subpaths.size(), c.runs.size());
        uint32_t next = 0;
        for (std::size_t i = 0; i < subpaths.size(); ++i) {
            EXPECT_EQ(subpaths[i].firstIndex, next);
            EXPECT_EQ(subpaths[i].indexCount, 2 * c.runs[i].first) << i;
            EXPECT_EQ(subpaths[i].closed, c.runs[i].second) << i;
            next += subpaths[i].indexCount;
        }
        EXPECT_EQ(next, primitive->getIndices().size());
    }
}

// Largest distance from the true circle to the outline's edges, sampled.
double WorstCircleDeviation(const SegmentedPrimitive& primitive, double cx, double cy, double r)
{
    const auto& p = primitive.getPoints();
    const auto& e = primitive.getIndices();
    double worst = 0.0;
    for (int k = 0; k < 2000; ++k) {
        const double a = 2.0 * kPi * k / 2000.0;
        const double x = cx + r * std::cos(a);
        const double y = cy + r * std::sin(a);
        double best = std::numeric_limits<double>::max();
        for (std::size_t i = 0; i + 1 < e.size(); i += 2) {
            const V& s = p[e[i]];
            const V& t = p[e[i + 1]];
            const double dx = t.X() - s.X();
            const double dy = t.Y() - s.Y();
            const double len2 = dx * dx + dy * dy;
            double u = len2 > 0 ? ((x - s.X()) * dx + (y - s.Y()) * dy) / len2 : 0.0;
            u = std::clamp(u, 0.0, 1.0);
            best = std::min(best, std::hypot(x - (s.X() + u * dx), y - (s.Y() + u * dy)));
        }
        worst = std::max(worst, best);
    }
    return worst;
}

TEST(OptionSegmenters, ToleranceIsInOutputUnits)
{
    const Circle circle(V(0, 0), 1.0f);
    std::size_t previous = 0;
    for (const float scale : {1.0f, 100.0f, 10000.0f}) {
        const Wm4::Matrix3<float> m(scale, 0, 0, 0, scale, 0, 0, 0, 1);
        const auto primitive = SegmentCircle(circle, SegmentationOptions::Faithful(0.25f), &m, nullptr, nullptr);
        EXPECT_LE(WorstCircleDeviation(*primitive, 0, 0, scale), 0.25 * 1.01) << scale;
        // One closed loop: as many edges as points, the last back to the first.
        EXPECT_EQ(primitive->getIndices().size(), 2 * primitive->getPoints().size());
        EXPECT_EQ(primitive->getIndices().back(), 0u);
        const std::size_t count = primitive->getPoints().size();
        // Points grow like the square root of the size.
        if (previous != 0) {
            EXPECT_GT(count, previous * 5);
            EXPECT_LT(count, previous * 20);
        }
        previous = count;
    }
}

TEST(OptionSegmenters, WalkReportsFailuresAndGoesOn)
{
    Document document;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    auto bad = std::make_shared<Rect>(V(0, 0), V(nan, 10));
    bad->editId() = "broken";
    bad->editRenderingProperties().editStroke() = "#ff0000";
    auto good = std::make_shared<Rect>(V(0, 0), V(10, 10));
    auto text = std::make_shared<Text>(V(0, 0), "skipped");
    document.addChild(ItemInterfacePointer<Text>(text), true);
    document.addChild(ItemInterfacePointer<Rect>(bad), true);
    document.addChild(ItemInterfacePointer<Rect>(good), true);

    const SegmenterVisitor walk(document, SegmentationOptions::Faithful());
    ASSERT_EQ(walk.getFailures().size(), 1u);
    EXPECT_EQ(walk.getFailures()[0].id, std::string("broken"));
    EXPECT_EQ(walk.getFailures()[0].index, 0u);
    EXPECT_FALSE(walk.getFailures()[0].reason.empty());
    ASSERT_EQ(walk.getSegmentedPrimitives().size(), 2u);
    EXPECT_NEAR(MeshArea(*walk.getSegmentedPrimitives().back()), 100.0, 1e-4);

    // The default walk stops at the failed stroked shape.
    segtest::CapturedLog log;
    const SegmenterVisitor legacy(document);
    EXPECT_TRUE(legacy.hasError());
    EXPECT_EQ(legacy.getSegmentedPrimitives().size(), 1u);
}

} // namespace
