// Properties over generated polylines with fixed seeds, for every join, cap
// and mode: a well-formed mesh, the non-overlapping mesh covering exactly
// the union of the fast one (by Clipper, which the stroker's own union does
// not share a grid with), and every centre-line point inside both.
#include "StrokeTestSupport.h"

#include "tessellate/StrokeUnion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace stroke_test;

struct Shape {
    const char* name;
    std::vector<StrokePolyline> polylines;
};

std::vector<Shape> Shapes(unsigned seed)
{
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    std::vector<Shape> shapes;

    StrokePolyline walk;
    V2 p(0, 0);
    for (int i = 0; i < 40; ++i) {
        walk.points.push_back(p);
        p = V2(p.X() + 6.0f * unit(rng), p.Y() + 6.0f * unit(rng));
    }
    walk.closed = seed % 2 == 1;
    shapes.push_back({"random walk", {walk}});

    StrokePolyline spiral;
    for (int i = 0; i < 120; ++i) {
        const double a = 0.3 * i;
        const double r = 2.0 + 0.25 * i;
        spiral.points.emplace_back(float(r * std::cos(a)), float(r * std::sin(a)));
    }
    shapes.push_back({"spiral", {spiral}});

    StrokePolyline hairpin;
    for (int i = 0; i < 12; ++i) {
        hairpin.points.emplace_back(float(i % 2 == 0 ? 0 : 30), 0.7f * float(i) + 0.01f * unit(rng));
    }
    shapes.push_back({"hairpins", {hairpin}});

    // Turns within a hair of a full reversal, both ways round.
    StrokePolyline reversal;
    for (int i = 0; i < 10; ++i) {
        const float e = std::ldexp(1.0f, -4 - 2 * i) * (i % 2 == 0 ? 1.0f : -1.0f);
        reversal.points.emplace_back(i % 2 == 0 ? 0.0f : 20.0f, e + float(i) * 1e-3f);
    }
    shapes.push_back({"near reversals", {reversal}});

    StrokePolyline repeats;
    for (int i = 0; i < 30; ++i) {
        const V2 q(float(i / 3) * 3.0f, float((i / 3) % 2) * 4.0f);
        repeats.points.push_back(q);
    }
    StrokePolyline back{{V2(0, 20), V2(10, 20), V2(0, 20)}, false};
    StrokePolyline dot{{V2(-5, -5), V2(-5, -5)}, false};
    StrokePolyline closedPair{{V2(20, 20), V2(25, 22)}, true};
    shapes.push_back({"repeats, reversals and dots", {repeats, back, dot, closedPair}});
    return shapes;
}

std::vector<V2> CentreLine(const StrokePolyline& polyline)
{
    std::vector<V2> samples;
    const std::size_t n = polyline.points.size();
    bool moves = false;
    for (const V2& p : polyline.points) {
        moves = moves || !(p == polyline.points[0]);
    }
    if (!moves) {
        return samples; // a dot, drawn only with some caps
    }
    const std::size_t segments = polyline.closed ? n : (n > 0 ? n - 1 : 0);
    for (std::size_t i = 0; i < segments; ++i) {
        const V2 a = polyline.points[i];
        const V2 b = polyline.points[(i + 1) % n];
        for (int k = 0; k <= 4; ++k) {
            const float t = float(k) / 4.0f;
            samples.emplace_back(a.X() + (b.X() - a.X()) * t, a.Y() + (b.Y() - a.Y()) * t);
        }
    }
    return samples;
}

TEST(StrokeProperties, EveryStyleOverGeneratedPolylines)
{
    const StrokeJoin joins[] = {StrokeJoin::Miter, StrokeJoin::MiterClip, StrokeJoin::Round, StrokeJoin::Bevel,
                                StrokeJoin::Arcs};
    const StrokeCap caps[] = {StrokeCap::Butt, StrokeCap::Round, StrokeCap::Square};
    for (unsigned seed : {1u, 2u, 3u}) {
        for (const Shape& shape : Shapes(seed)) {
            for (std::size_t j = 0; j < 5; ++j) {
                for (std::size_t c = 0; c < 3; ++c) {
                    for (bool dashed : {false, true}) {
                        SCOPED_TRACE(std::string(shape.name) + " seed " + std::to_string(seed) + " join " +
                                     std::to_string(j) + " cap " + std::to_string(c) + (dashed ? " dashed" : ""));
                        StrokeStyle style;
                        style.width = seed == 3 ? 0.05f : 1.5f;
                        style.join = joins[j];
                        style.cap = caps[c];
                        style.miterLimit = 2.5f;
                        if (dashed) {
                            style.dashArray = {7.0f, 2.0f, 0.0f, 3.0f};
                            style.dashOffset = -1.5f;
                        }
                        FillMesh fast;
                        FillMesh exact;
                        std::string error;
                        ASSERT_TRUE(TessellateStroke(shape.polylines, style, fast, &error)) << error;
                        style.mode = StrokeMode::NonOverlapping;
                        ASSERT_TRUE(TessellateStroke(shape.polylines, style, exact, &error)) << error;
                        ASSERT_TRUE(WellFormed(fast));
                        ASSERT_TRUE(WellFormed(exact));
                        const double area = UnionArea(fast);
                        // The union snaps to float spacing at the largest
                        // coordinate, about 1e-5 here, along every edge.
                        EXPECT_NEAR(MeshArea(exact), area, 1e-3 + 1e-4 * area);
                        EXPECT_NEAR(UnionArea(exact), MeshArea(exact), 1e-3 + 1e-4 * area);
                        if (!dashed) {
                            for (const StrokePolyline& polyline : shape.polylines) {
                                for (const V2& q : CentreLine(polyline)) {
                                    ASSERT_TRUE(Covers(fast, q, 1e-4)) << q.X() << " " << q.Y();
                                    ASSERT_TRUE(Covers(exact, q, 1e-4)) << q.X() << " " << q.Y();
                                }
                            }
                        }
                    }
                }
            }
        }
    }
}

// The fast mode's budget: two triangles per straight segment, then the
// joins' and caps' own (here at most two for a miter or bevel).
TEST(StrokeProperties, FastModeTriangleBudget)
{
    std::mt19937 rng(7);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    StrokePolyline walk;
    for (int i = 0; i < 500; ++i) {
        walk.points.emplace_back(10.0f * unit(rng), 10.0f * unit(rng));
    }
    for (StrokeJoin join : {StrokeJoin::Miter, StrokeJoin::Bevel, StrokeJoin::MiterClip}) {
        StrokeStyle style;
        style.width = 0.5f;
        style.join = join;
        style.cap = StrokeCap::Square;
        FillMesh mesh;
        ASSERT_TRUE(TessellateStroke({walk}, style, mesh));
        const std::size_t segments = walk.points.size() - 1;
        EXPECT_LE(mesh.indices.size() / 3, 2 * segments + 3 * (segments - 1) + 4);
    }
}

// A walk that crosses itself everywhere, cut into thousands of dashes
// shorter than the width, whose round caps overlap many times over: the
// non-overlapping union once spent minutes here in Clipper. Every sample
// must be covered at most once, and where the fast mesh covers it.
TEST(StrokeProperties, DenseDashesCoverOnce)
{
    std::mt19937 rng(12345);
    std::uniform_real_distribution<double> turn(-2.1, 2.1);
    std::uniform_real_distribution<double> step(0.5, 2.0);
    StrokePolyline walk;
    double x = 0.0, y = 0.0, heading = 0.0;
    walk.points.emplace_back(0.0f, 0.0f);
    for (int i = 0; i < 280; ++i) {
        heading += turn(rng);
        const double s = step(rng);
        x += s * std::cos(heading) - 1e-3 * x;
        y += s * std::sin(heading) - 1e-3 * y;
        walk.points.emplace_back(float(x), float(y));
    }
    StrokeStyle style;
    style.width = 0.4f;
    style.join = StrokeJoin::Round;
    style.cap = StrokeCap::Round;
    style.tolerance = 0.01f;
    style.dashArray = {0.05f, 0.05f};
    FillMesh fast;
    FillMesh exact;
    std::string error;
    ASSERT_TRUE(TessellateStroke({walk}, style, fast, &error)) << error;
    style.mode = StrokeMode::NonOverlapping;
    ASSERT_TRUE(TessellateStroke({walk}, style, exact, &error)) << error;
    ASSERT_TRUE(WellFormed(exact));
    ASSERT_GT(exact.indices.size(), 0u);

    std::vector<V2> positions = exact.vertices;
    std::sort(positions.begin(), positions.end(),
              [](const V2& a, const V2& b) { return a.X() < b.X() || (a.X() == b.X() && a.Y() < b.Y()); });
    EXPECT_TRUE(std::adjacent_find(positions.begin(), positions.end()) == positions.end());

    float lx = walk.points[0].X(), hx = lx, ly = walk.points[0].Y(), hy = ly;
    for (const V2& p : walk.points) {
        lx = std::min(lx, p.X());
        hx = std::max(hx, p.X());
        ly = std::min(ly, p.Y());
        hy = std::max(hy, p.Y());
    }
    std::uniform_real_distribution<float> sx(lx - 1.0f, hx + 1.0f), sy(ly - 1.0f, hy + 1.0f);
    std::vector<V2> samples;
    for (int i = 0; i < 40000; ++i) {
        samples.emplace_back(sx(rng), sy(rng));
    }
    const std::vector<int> once = CoverCounts(exact, samples);
    const std::vector<int> any = CoverCounts(fast, samples);
    std::size_t covered = 0, differ = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        ASSERT_LE(once[i], 1) << samples[i].X() << " " << samples[i].Y();
        covered += std::size_t(once[i]);
        // Only within snapping distance of the outline may the two differ.
        differ += std::size_t(once[i] != (any[i] > 0 ? 1 : 0));
    }
    EXPECT_GT(covered, samples.size() / 20);
    EXPECT_LE(differ, samples.size() / 2000);
}

// The outline of a filled square with a square hole: eight edges, the hole
// clockwise, so that the edges' shoelace sum is the area.
TEST(StrokeUnion, OutlineOfAMeshWithAHole)
{
    const std::vector<std::vector<V2>> rings{{{0, 0}, {4, 0}, {4, 4}, {0, 4}}, {{1, 1}, {1, 3}, {3, 3}, {3, 1}}};
    FillMesh mesh;
    ASSERT_TRUE(vk::svg::TessellateFill(rings, vk::svg::WindingRule::NonZero, mesh));
    vk::svg::impl::Outline outline;
    vk::svg::impl::AppendOutline(mesh, outline);
    ASSERT_EQ(outline.edges.size(), 16u);
    double area = 0.0;
    for (std::size_t k = 0; k < outline.edges.size(); k += 2) {
        const V2 a = outline.points[outline.edges[k]];
        const V2 b = outline.points[outline.edges[k + 1]];
        area += (double(a.X()) * b.Y() - double(b.X()) * a.Y()) / 2.0;
    }
    EXPECT_DOUBLE_EQ(area, 12.0);
}

// The tree of small unions against one fill of everything: heaps of
// overlapping triangles and stacked copies, enough for two levels above
// the first fills.
TEST(StrokeUnion, TreeMatchesOneFill)
{
    for (unsigned seed : {1u, 2u, 3u, 4u}) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 rng(seed);
        std::uniform_real_distribution<float> centre(0.0f, seed % 2 ? 10.0f : 3.0f);
        std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
        std::vector<std::vector<V2>> pieces;
        for (int i = 0; i < 1200; ++i) {
            const V2 c(centre(rng), centre(rng));
            std::vector<V2> piece{c + V2(unit(rng), unit(rng)), c + V2(unit(rng), unit(rng)),
                                  c + V2(unit(rng), unit(rng))};
            const double area = Cross(piece[0], piece[1], piece[2]);
            if (area == 0.0) {
                continue;
            }
            if (area < 0.0) {
                std::swap(piece[1], piece[2]);
            }
            pieces.push_back(piece);
        }
        // Stacked exactly, in other groups than the originals.
        for (std::size_t i = 0, n = pieces.size(); i < n; i += 5) {
            pieces.push_back(pieces[i]);
        }
        FillMesh tree;
        FillMesh single;
        ASSERT_TRUE(vk::svg::impl::UnitePieces(pieces, tree, nullptr));
        ASSERT_TRUE(vk::svg::TessellateFill(pieces, vk::svg::WindingRule::NonZero, single));
        ASSERT_TRUE(WellFormed(tree));
        EXPECT_NEAR(MeshArea(tree), MeshArea(single), 1e-4 * MeshArea(single));
        std::uniform_real_distribution<float> sample(-1.5f, 11.5f);
        std::vector<V2> samples;
        for (int i = 0; i < 20000; ++i) {
            samples.emplace_back(sample(rng), sample(rng));
        }
        const std::vector<int> a = CoverCounts(tree, samples);
        const std::vector<int> b = CoverCounts(single, samples);
        std::size_t differ = 0;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            ASSERT_LE(a[i], 1);
            differ += std::size_t(a[i] != b[i]);
        }
        EXPECT_LE(differ, 5u);
    }
}

} // namespace
