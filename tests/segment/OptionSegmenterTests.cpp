// Segmentation under SegmentationOptions: fill rules from the item, fills
// that never fail, outlines by tolerance, runs that know whether they close,
// strokes as meshes, and a walk that reports failures and goes on.
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
        {segtest::kRing, std::nullopt, ringArea, 0.3},
        {segtest::kRing, FillRule::EvenOdd, ringArea, 0.3},
        {segtest::kHouse, std::nullopt, 98.61, 0.3},
        {segtest::kHouse, FillRule::EvenOdd, 98.61, 0.3},
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

namespace {

RenderingProperties Stroked(float width, std::optional<LineCap> cap = std::nullopt)
{
    RenderingProperties properties;
    properties.editFill() = "none";
    properties.editStroke() = "#000000";
    properties.editStrokeWidth() = width;
    properties.editStrokeLinecap() = cap;
    return properties;
}

Wm4::Matrix3<float> Scale(float sx, float sy) { return Wm4::Matrix3<float>(sx, 0, 0, 0, sy, 0, 0, 0, 1); }

} // namespace

// Stroke meshes come with the options that ask for them, built in user
// space and then mapped, as SVG strokes.
TEST(OptionSegmenters, StrokesAreMeshesBesideTheFill)
{
    const SegmentationOptions faithful = SegmentationOptions::Faithful(0.01f);
    const Path line = MakePath("M0 0 L100 0");
    struct Case {
        const char* name;
        RenderingProperties properties;
        Wm4::Matrix3<float> transform;
        double area;
    };
    RenderingProperties dashed = Stroked(2);
    dashed.editStrokeDasharray() = std::vector<UnitValue>{UnitValue(10, Unit::None), UnitValue(5, Unit::None)};
    RenderingProperties nonScaling = Stroked(2);
    nonScaling.editVectorEffect() = static_cast<uint32_t>(VectorEffect::NonScalingStroke);
    const Case cases[] = {
        {"butt", Stroked(2), Wm4::Matrix3<float>::IDENTITY, 200.0},
        {"square", Stroked(2, LineCap::Square), Wm4::Matrix3<float>::IDENTITY, 204.0},
        {"round", Stroked(2, LineCap::Round), Wm4::Matrix3<float>::IDENTITY, 200.0 + kPi},
        // Seven dashes of 10 along the line: 0-10, 15-25, ... 90-100.
        {"dashed", dashed, Wm4::Matrix3<float>::IDENTITY, 140.0},
        // Scaled across the line the stroke widens; along it, it lengthens.
        {"scaled across", Stroked(2), Scale(1, 3), 600.0},
        {"scaled along", Stroked(2), Scale(3, 1), 600.0},
        {"non-scaling", nonScaling, Scale(1, 3), 200.0},
        {"flattened away", Stroked(2), Scale(0, 1), 0.0},
    };
    for (const Case& c : cases) {
        const auto primitive = SegmentPath(line, faithful, &c.transform, &c.properties, nullptr, nullptr);
        EXPECT_NEAR(segtest::StrokeArea(*primitive), c.area, 0.01 * std::max(1.0, c.area)) << c.name;
        EXPECT_TRUE(primitive->getTriangleIndices().empty()) << c.name << ": no fill";
        // The described options make no stroke mesh.
        const auto plain = SegmentPath(line, SegmentationOptions(), &c.transform, &c.properties, nullptr, nullptr);
        EXPECT_TRUE(plain->getStrokeIndices().empty()) << c.name;
    }
}

TEST(OptionSegmenters, ClosedShapesAreJoinedAndScaledCirclesVaryInWidth)
{
    // Each point covered once, so that areas add up.
    SegmentationOptions faithful = SegmentationOptions::Faithful(0.01f);
    faithful.strokeMode = StrokeMode::NonOverlapping;
    RenderingProperties both = Stroked(2);
    both.editFill() = "#ff0000";
    std::string failure;
    // A closed square: a ring of width 2 around it, its corners mitred.
    const auto rect =
        SegmentRect(Rect(V(0, 0), V(10, 10)), faithful, nullptr, &both, &failure);
    EXPECT_TRUE(failure.empty()) << failure;
    EXPECT_NEAR(segtest::MeshArea(*rect), 100.0, 1e-3);
    EXPECT_NEAR(segtest::StrokeArea(*rect), 12.0 * 12.0 - 8.0 * 8.0, 1e-2);
    // A circle of radius 10 under scale(3, 1): the user-space annulus of
    // width 2 mapped, three times its area; non-scaling, about the
    // ellipse's perimeter times 2.
    const Wm4::Matrix3<float> scale = Scale(3, 1);
    const auto circle = SegmentCircle(Circle(V(0, 0), 10), faithful, &scale, &both, &failure);
    EXPECT_NEAR(segtest::StrokeArea(*circle), 3.0 * kPi * (11.0 * 11.0 - 9.0 * 9.0), 1.0);
    RenderingProperties nonScaling = both;
    nonScaling.editVectorEffect() = static_cast<uint32_t>(VectorEffect::NonScalingStroke);
    const auto fixed = SegmentCircle(Circle(V(0, 0), 10), faithful, &scale, &nonScaling, &failure);
    const double perimeter = kPi * (3 * (30.0 + 10.0) - std::sqrt((3 * 30.0 + 10.0) * (30.0 + 3 * 10.0)));
    EXPECT_NEAR(segtest::StrokeArea(*fixed), 2.0 * perimeter, 0.02 * 2.0 * perimeter);
}
