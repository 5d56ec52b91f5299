// The shape segmenters: point and index layouts, fills measured against the
// shapes' exact areas, transforms, and degenerate input.
#include "SegmentTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vk::svg;
using segtest::V;

namespace {

RenderingProperties Paint(const char* fill)
{
    RenderingProperties p;
    p.editFill() = fill;
    return p;
}
const RenderingProperties kFilled = Paint("#336699");
const RenderingProperties kUnfilled = Paint("none");

// Path data segmented as SegmentPath does it, filled unless a paint is given.
std::shared_ptr<SegmentedPrimitive> Segment(const std::string& data, bool* error = nullptr, unsigned int segments = 32,
                                            const RenderingProperties* paint = &kFilled, float tolerance = -0.999f)
{
    return SegmentPath(*segtest::MakePath(data), segments, tolerance, nullptr, paint, nullptr, error);
}

const double kPi = 3.14159265358979;

} // namespace

TEST(ShapeSegmenters, LineAndRectangleLayouts)
{
    const Wm4::Matrix3<float> m(2, 0, 10, 0, 3, 20, 0, 0, 1);
    auto line = SegmentLine(Line(V(1, 2), V(3, 4)), &m, &kFilled);
    EXPECT_EQ(line->getPoints(), (std::vector<V>{V(12, 26), V(16, 32)}));
    EXPECT_EQ(line->getIndices(), (std::vector<uint32_t>{0, 1}));
    EXPECT_TRUE(line->getTriangleIndices().empty()); // lines are never filled
    EXPECT_EQ(line->getProperties(), kFilled);

    bool error = true;
    auto rect = SegmentRect(Rect(V(1, 2), V(4, 5)), nullptr, &kFilled, &error);
    EXPECT_FALSE(error);
    EXPECT_EQ(rect->getPoints(), (std::vector<V>{V(1, 2), V(5, 2), V(5, 7), V(1, 7)}));
    EXPECT_EQ(rect->getIndices(), (std::vector<uint32_t>{0, 1, 1, 2, 2, 3, 3, 0}));
    EXPECT_EQ(rect->getTriangleIndices().size(), 6u);
    EXPECT_DOUBLE_EQ(segtest::MeshArea(*rect), 20.0);

    // Contour and triangles both go through the transform.
    auto mapped = SegmentRect(Rect(V(1, 2), V(4, 5)), &m, &kFilled, &error);
    EXPECT_EQ(mapped->getPoints()[2], V(20, 41));
    EXPECT_DOUBLE_EQ(segtest::MeshArea(*mapped), 120.0);

    error = true;
    auto outline = SegmentRect(Rect(V(1, 2), V(4, 5)), nullptr, &kUnfilled, &error);
    EXPECT_FALSE(error);
    EXPECT_TRUE(outline->getIndices().size() == 8 && outline->getTriangleVertices().empty());
}

TEST(ShapeSegmenters, CircleLayoutAndArea)
{
    auto square = SegmentCircle(Circle(V(10, 20), 2), 4, 0.1f, nullptr, nullptr, nullptr);
    const float expected[] = {12, 20, 10, 22, 8, 20, 10, 18};
    ASSERT_EQ(square->getPoints().size(), 4u);
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(segtest::Near(square->getPoints()[i], expected[2 * i], expected[2 * i + 1], 1e-5)) << i;
    }
    EXPECT_EQ(square->getIndices(), (std::vector<uint32_t>{0, 1, 1, 2, 2, 3, 3, 0}));

    // The fill covers the inscribed polygon: below the disc by at most the
    // polygon error.
    bool error = true;
    auto disc = SegmentCircle(Circle(V(0, 0), 10), 32, 0.1f, nullptr, &kFilled, &error);
    EXPECT_FALSE(error);
    EXPECT_EQ(disc->getPoints().size(), 32u);
    const double polygon = 16 * 100 * std::sin(2 * kPi / 32);
    EXPECT_NEAR(segtest::MeshArea(*disc), polygon, polygon * 1e-5);

    auto single = SegmentCircle(Circle(V(1, 1), 3), 1, 0.1f, nullptr, nullptr, nullptr);
    EXPECT_EQ(single->getPoints(), std::vector<V>{V(4, 1)});
    EXPECT_EQ(single->getIndices(), (std::vector<uint32_t>{0, 0}));
    SegmentCircle(Circle(V(1, 1), 3), 1, 0.1f, nullptr, &kFilled, &error);
    EXPECT_FALSE(error);
    auto none = SegmentCircle(Circle(V(1, 1), 3), 0, 0.1f, nullptr, &kFilled, &error);
    EXPECT_TRUE(none->getPoints().empty() && none->getIndices().empty());
    EXPECT_FALSE(error);
}

TEST(ShapeSegmenters, FromContourReportsWhatItCannotFill)
{
    segtest::CapturedLog log;
    bool error = false;
    auto odd = SegmentedPrimitive::FromContour({V(0, 0), V(1, 0), V(0, 1)}, {0, 1, 1}, nullptr, &kFilled, &error);
    EXPECT_TRUE(error);
    EXPECT_EQ(odd.getPoints().size(), 3u); // the contour survives
    EXPECT_TRUE(odd.getTriangleIndices().empty());
    EXPECT_EQ(log.texts, std::vector<std::string>{segtest::kContourOnly});

    // A corner lying on another contour's edge defeats the triangulator.
    error = false;
    Segment(segtest::kUnfillable, &error);
    EXPECT_TRUE(error);
    EXPECT_EQ(log.texts.size(), 2u);

    // Without a fill nothing is attempted, so nothing can fail.
    auto plain = SegmentedPrimitive::FromContour({V(0, 0)}, {0, 1, 1}, nullptr, &kUnfilled, &error);
    EXPECT_FALSE(error);
    EXPECT_EQ(log.texts.size(), 2u);
    EXPECT_EQ(plain.getIndices().size(), 3u);
}

TEST(ShapeSegmenters, PathLinesArcsAndCurves)
{
    // Lines: a new run repeats its start, then one point per command.
    auto lines = Segment("M0 0 L4 0 L4 3 Z M10 10 l1 0", nullptr, 32, nullptr);
    EXPECT_EQ(lines->getPoints(), (std::vector<V>{V(0, 0), V(4, 0), V(4, 3), V(0, 0), V(10, 10), V(11, 10)}));
    EXPECT_EQ(lines->getIndices(), (std::vector<uint32_t>{0, 1, 1, 2, 2, 3, 4, 5}));

    // An arc after a move starts with its exact start; one that continues a
    // contour has its first added point pinned to its start.
    auto arcs = Segment("M10 0 A10 10 0 0 1 -10 0 A10 10 0 0 1 10 0", nullptr, 4, nullptr, 0.0f);
    ASSERT_EQ(arcs->getPoints().size(), 9u);
    EXPECT_EQ(arcs->getPoints()[0], V(10, 0));
    EXPECT_NEAR(arcs->getPoints()[2].Y(), 10, 1e-4);
    EXPECT_EQ(arcs->getPoints()[5], V(-10, 0));
    EXPECT_EQ(arcs->getPoints()[8], V(10, 0)) << "the last point is the arc's exact end";
    EXPECT_EQ(arcs->getIndices(), segtest::Chain(0, 8));

    // A closed arc moves the last point onto its end; a degenerate one adds
    // nothing, and a skipped first primitive does not glue the next run to
    // the previous one.
    auto skipped = Segment("M0 0 L5 0 A3 3 0 0 1 5 0 M20 20 A0 4 0 0 1 30 20 L30 30", nullptr, 32, nullptr);
    EXPECT_EQ(skipped->getPoints(), (std::vector<V>{V(0, 0), V(5, 0), V(30, 20), V(30, 30)}));
    EXPECT_EQ(skipped->getIndices(), (std::vector<uint32_t>{0, 1, 2, 3}));

    // Curves go through the shared workspace; lending one changes nothing.
    SegmentationUtils::BezierSegmentationWorkspace ws;
    const auto curve = segtest::MakePath("M0 0 C0 10 10 10 10 0");
    auto own = SegmentPath(*curve, 32, -0.999f, nullptr, nullptr, nullptr, nullptr);
    auto lent = SegmentPath(*curve, 32, -0.999f, nullptr, nullptr, &ws, nullptr);
    EXPECT_EQ(own->getPoints(), lent->getPoints());
    EXPECT_GT(own->getPoints().size(), 6u);
    EXPECT_EQ(own->getPoints().front(), V(0, 0));
    EXPECT_EQ(own->getPoints().back(), V(10, 0));
}

TEST(ShapeSegmenters, PathFillsMatchExactAreas)
{
    // A square with a square hole: the non-zero rule of the triangulator
    // counts crossings, so the hole fills as well.
    EXPECT_DOUBLE_EQ(segtest::MeshArea(*Segment("M0 0 H10 V10 H0 Z M3 3 H7 V7 H3 Z")), 100.0);
    EXPECT_DOUBLE_EQ(segtest::MeshArea(*Segment("M0 0 H10 V10 H0 Z M20 0 h5 v5 h-5 Z")), 125.0);
    // A disc of two half-circle arcs and one of four cubic quarters.
    const double disc = kPi * 25;
    EXPECT_NEAR(segtest::MeshArea(*Segment("M-5 0 A5 5 0 0 1 5 0 A5 5 0 0 1 -5 0 Z")), disc, disc * 0.01);
    const char* quarters = "M5 0 C5 2.7614 2.7614 5 0 5 C-2.7614 5 -5 2.7614 -5 0 C-5 -2.7614 -2.7614 -5 0 -5 "
                           "C2.7614 -5 5 -2.7614 5 0 Z";
    EXPECT_NEAR(segtest::MeshArea(*Segment(quarters)), disc, disc * 0.01);
    // Two rings of arcs, each closed: the first one is not the last contour,
    // so only exact arc ends keep it closed for the triangulator.
    bool error = true;
    const auto rings =
        Segment("M-50 0 A50 50 0 1 1 50 0 A50 50 0 1 1 -50 0 Z M-30 0 A30 30 0 1 0 30 0 A30 30 0 1 0 -30 0 Z", &error);
    EXPECT_FALSE(error);
    EXPECT_NEAR(segtest::MeshArea(*rings), kPi * 2500, kPi * 2500 * 0.01);
}

// Icon editors write closed subpaths with relative curves whose sums land a
// millionth away from the start; the close path's short edge then goes
// in cleanup. Every subpath must still come back to its own start point.
TEST(ShapeSegmenters, SubpathsEndingAHairFromTheirStartStillFill)
{
    struct Case {
        const char* name;
        const char* data;
        double area; // crossing depth fills the hole or the door as well
    };
    const Case cases[] = {
        {"ring", segtest::kRing, kPi * 7.4863 * 7.4863},
        {"house", segtest::kHouse, 163.5},
    };
    for (const Case& c : cases) {
        bool error = true;
        const auto filled = Segment(c.data, &error);
        EXPECT_FALSE(error) << c.name;
        EXPECT_NEAR(segtest::MeshArea(*filled), c.area, c.area * 0.01) << c.name;
    }
}

TEST(ShapeSegmenters, DegenerateInputNeverCrashes)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    bool error = true;
    EXPECT_TRUE(Segment("", &error)->getPoints().empty());
    EXPECT_FALSE(error);
    EXPECT_TRUE(Segment("M1 1 M2 2", &error)->getPoints().empty());
    SegmentCircle(Circle(V(0, 0), 0), 32, 0.1f, nullptr, &kFilled, &error);
    SegmentCircle(Circle(V(nan, 0), 5), 32, 0.1f, nullptr, &kFilled, &error);
    SegmentRect(Rect(V(0, 0), V(nan, nan)), nullptr, &kFilled, &error);
    Segment("M0 0 C0 0 0 0 0 0 Z", &error);
    Segment("M0 0 A0 0 0 0 1 10 0 L10 10 Z", &error);
    segtest::CapturedLog log; // runaway counts are refused with a message
    auto huge = Segment("M0 0 C1 1 2 2 3 0 A5 5 0 0 1 9 9 Z", &error, std::numeric_limits<unsigned int>::max());
    EXPECT_FALSE(log.texts.empty());
    EXPECT_LE(huge->getPoints().size(), 4u);
    Path withNan;
    withNan.editCommands().emplace_back(PathCommandType::MoveTo, std::vector<float>{0, 0});
    withNan.editCommands().emplace_back(PathCommandType::BezierCubic, std::vector<float>{nan, 1, 2, nan, 3, 3});
    withNan.editCommands().emplace_back(PathCommandType::EllipticalArc, std::vector<float>{5, 5, 0, 0, 1, nan, 0});
    withNan.editCommands().emplace_back(PathCommandType::ClosePath, std::vector<float>{});
    auto nanPath = SegmentPath(withNan, 32, -0.999f, nullptr, &kFilled, nullptr, &error);
    EXPECT_EQ(nanPath->getIndices().size() % 2, 0u);
}
