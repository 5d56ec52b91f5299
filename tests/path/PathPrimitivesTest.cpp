#include <svg/PathData.h>
#include <svg/PathPrimitives.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using vk::svg::BoundingBox;
using vk::svg::PathBezierCubic;
using vk::svg::PathCommand;
using vk::svg::PathEllipticalArc;
using vk::svg::PathLine;
using vk::svg::PathPrimitive;
using vk::svg::PathVisitorCommandsToPrimitives;
using T = vk::svg::PathCommandType;
using V2 = Wm4::Vector2<float>;
using M3 = Wm4::Matrix3<float>;

namespace {

const float kPi = 3.14159265f;

std::string Str(const V2& p)
{
    std::ostringstream out;
    out << '(' << p.X() << ',' << p.Y() << ')';
    return out.str();
}

// "L(0,0)(1,1)+": each primitive with its points, + when it starts a contour.
std::string Walk(const std::list<PathCommand>& commands)
{
    std::ostringstream out;
    PathVisitorCommandsToPrimitives walker(commands, [&](std::unique_ptr<PathPrimitive>& p, bool newContour) {
        if (p->type == PathPrimitive::Line) {
            const auto& line = static_cast<const PathLine&>(*p);
            out << 'L' << Str(line.start) << Str(line.end);
        } else if (p->type == PathPrimitive::EllipticalArc) {
            const auto& arc = static_cast<const PathEllipticalArc&>(*p);
            out << 'A' << Str(arc.start) << Str(arc.end) << 'c' << Str(arc.center);
        } else {
            const V2* points = static_cast<const PathBezierCubic&>(*p).curve.GetControlPoints();
            out << 'C' << Str(points[0]) << Str(points[1]) << Str(points[2]) << Str(points[3]);
        }
        out << (newContour ? "+ " : "- ");
    });
    walker.visit();
    return out.str();
}

std::string Walk(const std::string& text)
{
    std::list<PathCommand> commands;
    EXPECT_TRUE(vk::svg::ConvertPathStringToCommands(text, commands, nullptr)) << text;
    return Walk(commands);
}

std::array<float, 4> Corners(const BoundingBox& b)
{
    return {b.getMinPoint().X(), b.getMinPoint().Y(), b.getMaxPoint().X(), b.getMaxPoint().Y()};
}

} // namespace

TEST(PathPrimitives, WalkResolvesRelativeSmoothAndClose)
{
    const struct {
        std::string text;
        std::string primitives;
    } cases[] = {
        {"", ""},
        {"M10 10 L20 10 Z L30 30", "L(10,10)(20,10)+ L(20,10)(10,10)- L(10,10)(30,30)+ "},
        {"m1 1 m1 1 l1 0", "L(2,2)(3,2)+ "},
        {"M1 1 H5 h1 V3 v-1 L2 2 2 2",
         "L(1,1)(5,1)+ L(5,1)(6,1)- L(6,1)(6,3)- L(6,3)(6,2)- L(6,2)(2,2)- L(2,2)(2,2)- "},
        {"M5 5 z z", "L(5,5)(5,5)+ L(5,5)(5,5)+ "},
        {"M1 1 L2 2 M3 3 l1 1", "L(1,1)(2,2)+ L(3,3)(4,4)+ "},
        {"M0 0 C0 0 1 1 2 0 S3 -1 4 0", "C(0,0)(0,0)(1,1)(2,0)+ C(2,0)(3,-1)(3,-1)(4,0)- "},
        // Relative curves: the reflection uses the previous raw numbers.
        {"M1 1 c1 1 2 2 3 3 s1 1 2 2", "C(1,1)(2,2)(3,3)(4,4)+ C(4,4)(8,8)(5,5)(6,6)- "},
        {"M0 0 C1 1 2 2 3 3 s1 1 2 2", "C(0,0)(1,1)(2,2)(3,3)+ C(3,3)(7,7)(4,4)(5,5)- "},
        {"M0 0 S1 1 2 2 S3 3 4 4", "C(0,0)(0,0)(1,1)(2,2)+ C(2,2)(3,3)(3,3)(4,4)- "},
        {"M0 0 L1 1 s1 1 2 2", "L(0,0)(1,1)+ C(1,1)(1,1)(2,2)(3,3)- "},
        {"M0 0 A5 5 0 0 1 10 0 a5 5 0 0 1 10 0", "A(0,0)(10,0)c(5,0)+ A(10,0)(20,0)c(15,0)- "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Walk(c.text), c.primitives) << c.text;
    }

    // Lists no path text can give: a curve first, a short command, an
    // unknown type, and a NaN flag, which counts as set.
    std::list<PathCommand> commands;
    commands.emplace_back(T::SmoothBezierCubic, std::vector<float>{1, 1, 2, 2});
    commands.emplace_back(T::LineTo, std::vector<float>{5});
    commands.emplace_back(static_cast<T>(99), std::vector<float>{1, 2});
    commands.emplace_back(T::HLineToRel, std::vector<float>{1});
    commands.emplace_back(T::EllipticalArc,
                          std::vector<float>{1, 1, 0, std::numeric_limits<float>::quiet_NaN(), 0, 5, 2});
    EXPECT_EQ(Walk(commands), "C(0,0)(0,0)(1,1)(2,2)+ L(2,2)(3,2)- A(3,2)(5,2)c(4,2)- ");
    // The callback may keep a primitive by moving it out.
    std::unique_ptr<PathPrimitive> kept;
    PathVisitorCommandsToPrimitives(commands, [&](std::unique_ptr<PathPrimitive>& p, bool) {
        kept = std::move(p);
    }).visit();
    ASSERT_EQ(kept->type, PathPrimitive::EllipticalArc);
    EXPECT_TRUE(static_cast<PathEllipticalArc&>(*kept).largeArc);
}

// Centres, angles and boxes worked out by hand from the endpoint
// parametrisation.
TEST(PathPrimitives, ArcCentreFormAndBox)
{
    using Box = std::array<float, 4>;
    const float pi = kPi;
    const struct {
        float rx, ry;
        bool large, sweep;
        V2 start, end;
        float rotation;
        V2 center;
        float startAngle, deltaAngle;
        std::optional<Box> box;
    } cases[] = {
        // Half circle over the chord (0,0)-(10,0): q = 0, centre on the midpoint.
        {5, 5, false, true, V2(0, 0), V2(10, 0), 0, V2(5, 0), pi, pi, Box{0, -5, 10, 0}},
        {5, 5, false, false, V2(0, 0), V2(10, 0), 0, V2(5, 0), pi, -pi, Box{0, 0, 10, 5}},
        // Quarter circles from (10,0) to (0,10): q = 1, k = +-1.
        {10, 10, false, true, V2(10, 0), V2(0, 10), 0, V2(0, 0), 0, pi / 2, Box{0, 0, 10, 10}},
        {10, 10, true, true, V2(10, 0), V2(0, 10), 0, V2(10, 10), -pi / 2, 3 * pi / 2, Box{0, 0, 20, 20}},
        {10, 10, false, false, V2(10, 0), V2(0, 10), 0, V2(10, 10), -pi / 2, -pi / 2, Box{0, 0, 10, 10}},
        {-10, -10, true, false, V2(110, 50), V2(100, 60), 0, V2(100, 50), 0, -3 * pi / 2, Box{90, 40, 110, 60}},
        // Ellipse 2 x 1 from (2,0) to (0,1): x1' = 1, y1' = -0.5, q = 1.
        {2, 1, false, true, V2(2, 0), V2(0, 1), 0, V2(0, 0), 0, pi / 2, Box{0, 0, 2, 1}},
        // The same ellipse turned by 90 degrees: the same local numbers.
        {2, 1, false, true, V2(0, 2), V2(-1, 0), 90, V2(0, 0), 0, pi / 2, Box{-1, 0, 0, 2}},
        // Radii too small for the chord: centre on the midpoint, radii kept.
        {3, 3, false, true, V2(0, 0), V2(10, 0), 0, V2(5, 0), pi, pi, {}},
    };
    for (const auto& c : cases) {
        const PathEllipticalArc arc(V2(c.rx, c.ry), c.large, c.sweep, c.start, c.end, c.rotation);
        SCOPED_TRACE(testing::Message() << Str(c.start) << Str(c.end) << " r " << c.rx << "," << c.ry << " rot "
                                        << c.rotation);
        EXPECT_NEAR(arc.center.X(), c.center.X(), 1e-5);
        EXPECT_NEAR(arc.center.Y(), c.center.Y(), 1e-5);
        EXPECT_NEAR(arc.startAngle, c.startAngle, 1e-5);
        EXPECT_NEAR(arc.deltaAngle, c.deltaAngle, 1e-5);
        EXPECT_EQ(arc.radii.X(), std::fabs(c.rx));
        EXPECT_EQ(arc.radii.Y(), std::fabs(c.ry));
        if (c.box) {
            BoundingBox box;
            arc.computeBoundingBox(box, M3::IDENTITY);
            for (int i = 0; i < 4; ++i)
                EXPECT_NEAR(Corners(box)[i], (*c.box)[i], 1e-4) << "corner " << i;
        }
    }

    // Degenerate arcs keep a zero centre and zero angles.
    for (const PathEllipticalArc& arc : {PathEllipticalArc(V2(5, 5), true, true, V2(3, 4), V2(3, 4), 0),
                                         PathEllipticalArc(V2(0.005f, 5), true, true, V2(3, 4), V2(9, 4), 0),
                                         PathEllipticalArc(V2(5, -0.009f), true, true, V2(3, 4), V2(9, 4), 0)}) {
        EXPECT_TRUE(arc.isClosed() || arc.hasDegenerateRadii());
        EXPECT_EQ(arc.center.X(), 0.0f);
        EXPECT_EQ(arc.center.Y(), 0.0f);
        EXPECT_EQ(arc.startAngle, 0.0f);
        EXPECT_EQ(arc.deltaAngle, 0.0f);
    }
    EXPECT_TRUE(PathEllipticalArc(V2(5, 5), false, false, V2(-0.0f, 1), V2(0, 1), 0).isClosed());
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(PathEllipticalArc(V2(5, 5), false, false, V2(nan, 1), V2(nan, 1), 0).isClosed());
    EXPECT_FALSE(PathEllipticalArc(V2(0.01f, 0.01f), false, false, V2(0, 0), V2(1, 1), 0).hasDegenerateRadii());
}

TEST(PathPrimitives, LineAndCurveBoxes)
{
    // x' = -y + 10, y' = x + 20
    const M3 turn(0, -1, 10, 1, 0, 20, 0, 0, 1);
    BoundingBox box(V2(-100, -100), V2(100, 100));
    PathLine(V2(1, 2), V2(3, -4)).computeBoundingBox(box, turn);
    EXPECT_EQ(Corners(box), (std::array<float, 4>{8, 21, 14, 23}));

    PathBezierCubic(V2(0, 0), V2(50, 50), V2(60, 60), V2(70, 70)).computeBoundingBox(box, M3::IDENTITY);
    EXPECT_EQ(Corners(box), (std::array<float, 4>{8, 21, 14, 23}));

    // Degenerate arcs give the box of their end points.
    PathEllipticalArc(V2(0.001f, 9), false, true, V2(0, 0), V2(4, -2), 0).computeBoundingBox(box, M3::IDENTITY);
    EXPECT_EQ(Corners(box), (std::array<float, 4>{0, -2, 4, 0}));
}

TEST(PathPrimitives, ArcBoxesBoundDenseSamplesTightly)
{
    std::mt19937 random(4242u);
    std::uniform_real_distribution<float> coordinate(-50, 50);
    std::uniform_real_distribution<float> radius(0.5f, 40);
    std::uniform_real_distribution<float> entry(-2, 2);
    std::uniform_int_distribution<int> coin(0, 1);
    for (int i = 0; i < 500; ++i) {
        const PathEllipticalArc arc(V2(radius(random), radius(random)), coin(random), coin(random),
                                    V2(coordinate(random), coordinate(random)),
                                    V2(coordinate(random), coordinate(random)), coordinate(random) * 7);
        const M3 m(entry(random), entry(random), coordinate(random), entry(random), entry(random), coordinate(random),
                   0, 0, 1);
        // The box of the arc as segmentation draws it, plus its given end points.
        const float inf = std::numeric_limits<float>::infinity();
        std::array<float, 4> sampled{inf, inf, -inf, -inf};
        const auto sample = [&](float x, float y) {
            const V2 p(m(0, 0) * x + m(0, 1) * y + m(0, 2), m(1, 0) * x + m(1, 1) * y + m(1, 2));
            sampled = {std::min(sampled[0], p.X()), std::min(sampled[1], p.Y()), std::max(sampled[2], p.X()),
                       std::max(sampled[3], p.Y())};
        };
        sample(arc.start.X(), arc.start.Y());
        sample(arc.end.X(), arc.end.Y());
        const float phi = arc.rotation * 0.017453292f;
        const int steps = 4000;
        for (int k = 0; k <= steps; ++k) {
            const float t = static_cast<float>(k) / steps * arc.deltaAngle + arc.startAngle;
            sample(arc.center.X() + arc.radii.X() * std::cos(t) * std::cos(phi) -
                       arc.radii.Y() * std::sin(t) * std::sin(phi),
                   arc.center.Y() + arc.radii.X() * std::cos(t) * std::sin(phi) +
                       arc.radii.Y() * std::sin(t) * std::cos(phi));
        }

        BoundingBox box;
        arc.computeBoundingBox(box, m);
        const auto corners = Corners(box);
        // Samples are never outside the box (beyond single-precision
        // rounding), and the box is no larger than the sampling error (the
        // sagitta of one step) allows.
        for (int c = 0; c < 4; ++c) {
            ASSERT_NEAR(corners[c], sampled[c], 2e-3f) << "arc " << i << " corner " << c;
        }
        ASSERT_TRUE(corners[0] <= sampled[0] + 1e-3f && corners[1] <= sampled[1] + 1e-3f &&
                    corners[2] >= sampled[2] - 1e-3f && corners[3] >= sampled[3] - 1e-3f)
            << "arc " << i;
    }
}
