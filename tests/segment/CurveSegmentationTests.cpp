// Bezier subdivision and arc stepping: exact scores, halves, point and index
// layouts, and the guards against runaway budgets.
#include "SegmentTestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>

using namespace vk::svg;
using namespace vk::svg::SegmentationUtils;
using segtest::V;

namespace {

Wm4::BezierCurve2<float> Cubic(V p0, V p1, V p2, V p3) { return Wm4::BezierCurve2<float>(3, new V[4]{p0, p1, p2, p3}); }

// A lone job over the given control points, as the first of a curve.
SegmentationJob Job(BezierSegmentationWorkspace& ws, V p0, V p1, V p2, V p3)
{
    ws.initWorkspace(1, 4);
    const V points[4] = {p0, p1, p2, p3};
    return SegmentationJob(ws, ws.createVector(points, points + 4), 0.5f, 0.25f);
}

std::vector<float> Params(const std::vector<SegmentationJob>& jobs)
{
    std::vector<float> ts;
    for (const SegmentationJob& job : jobs) {
        ts.push_back(job.t);
    }
    return ts;
}

// The plain worst-first loop, to check the heap that large budgets use.
std::vector<float> ScanReference(const Wm4::BezierCurve2<float>& curve, unsigned int maxJobs, float tolerance)
{
    BezierSegmentationWorkspace ws;
    ws.initWorkspace(maxJobs, 4);
    std::vector<SegmentationJob> jobs;
    jobs.reserve(maxJobs);
    const V* c = curve.GetControlPoints();
    jobs.emplace_back(ws, ws.createVector(c, c + 4), 0.5f, 0.25f);
    while (jobs.size() < maxJobs) {
        std::size_t worst = 0;
        for (std::size_t i = 1; i < jobs.size(); ++i)
            if (jobs[i].error > jobs[worst].error)
                worst = i;
        if (tolerance >= jobs[worst].error)
            break;
        const SegmentationJob parent = jobs[worst];
        jobs[worst] = SegmentationJob(ws, parent.left, parent.t - parent.step, parent.step / 2);
        jobs.emplace_back(ws, parent.right, parent.t + parent.step, parent.step / 2);
    }
    std::vector<float> ts = Params(jobs);
    std::stable_sort(ts.begin(), ts.end());
    return ts;
}

} // namespace

TEST(BezierWorkspace, HandsOutFourVectorsPerPowerOfTwoJobs)
{
    BezierSegmentationWorkspace ws;
    for (auto [maxJobs, vectors] : {std::pair<std::size_t, std::size_t>{0, 4}, {1, 4}, {3, 16}, {5, 32}}) {
        ws.initWorkspace(maxJobs, 4);
        V* first = ws.createVector();
        for (std::size_t i = 1; i < vectors; ++i)
            EXPECT_EQ(ws.createVector(), first + 4 * i);
        ws.initWorkspace(maxJobs, 4); // the free slot starts over
        EXPECT_EQ(ws.createVector(), first) << maxJobs;
    }
    const V source[3] = {V(1, 2), V(3, 4), V(5, 6)};
    ws.initWorkspace(2, 3);
    EXPECT_EQ(ws.createVector(source, source + 3)[2], V(5, 6));
}

TEST(BezierJob, ScoresSignedFlatnessAndSplitsAtTheMidpoint)
{
    BezierSegmentationWorkspace ws;
    EXPECT_FLOAT_EQ(Job(ws, V(0, 0), V(1, 0), V(2, 0), V(3, 0)).error, -1.0f); // flat
    EXPECT_FLOAT_EQ(Job(ws, V(2, 2), V(2, 2), V(2, 2), V(2, 2)).error, -1.0f); // no polygon
    // Inner points on opposite sides: 1 - 3 / (2 sqrt 2 + sqrt 5), ahead of every convex piece.
    EXPECT_NEAR(Job(ws, V(0, 0), V(1, 1), V(2, -1), V(3, 0)).error, 1.0 - 3.0 / (2 * std::sqrt(2.0) + std::sqrt(5.0)),
                1e-6);

    const SegmentationJob job = Job(ws, V(0, 0), V(0, 1), V(1, 1), V(1, 0));
    EXPECT_FLOAT_EQ(job.error, -1.0f / 3.0f);
    EXPECT_EQ(job.getResult(), V(0.5f, 0.75f));
    EXPECT_EQ(std::vector<V>(job.left, job.left + 4),
              (std::vector<V>{V(0, 0), V(0, 0.5f), V(0.25f, 0.75f), V(0.5f, 0.75f)}));
    EXPECT_EQ(std::vector<V>(job.right, job.right + 4),
              (std::vector<V>{V(0.5f, 0.75f), V(0.75f, 0.75f), V(1, 0.5f), V(1, 0)}));
}

TEST(BezierPoints, SplitsWorstFirstWithinBudgetAndTolerance)
{
    BezierSegmentationWorkspace ws;
    std::vector<SegmentationJob> jobs;
    const auto arch = Cubic(V(0, 0), V(0, 1), V(1, 1), V(1, 0));

    // A budget of 0 or 1 keeps the single midpoint, and so does a tolerance
    // at or above the score.
    for (auto [budget, tolerance] : {std::pair<unsigned int, float>{0, -2}, {1, -2}, {32, -1.0f / 3.0f}}) {
        DeCasteljauGetBezierPoints(ws, arch, jobs, budget, tolerance);
        ASSERT_EQ(jobs.size(), 1u);
        EXPECT_EQ(jobs[0].getResult(), V(0.5f, 0.75f));
    }

    // Three pieces: after the first split the halves score alike, so which
    // one goes next is the worse by rounding; both layouts lie on the curve
    // at dyadic parameters and come back ordered by t.
    DeCasteljauGetBezierPoints(ws, arch, jobs, 3, -2.0f);
    ASSERT_EQ(jobs.size(), 3u);
    for (const SegmentationJob& job : jobs) {
        const float t = job.t;
        EXPECT_EQ(job.getResult(), V(3 * t * t - 2 * t * t * t, 3 * t * (1 - t)));
    }
    EXPECT_TRUE(jobs[0].t < jobs[1].t && jobs[1].t < jobs[2].t);

    // A symmetric S is split at once, even above any convex tolerance.
    const auto s = Cubic(V(0, 0), V(1, 1), V(2, -1), V(3, 0));
    DeCasteljauGetBezierPoints(ws, s, jobs, 2, -0.0001f);
    EXPECT_EQ(jobs.size(), 2u);
    DeCasteljauGetBezierPoints(ws, s, jobs, 2, 0.5f);
    EXPECT_EQ(jobs.size(), 1u);

    // Splitting stops once every chord is within the tolerance of its
    // polygon, or when the budget is spent.
    DeCasteljauGetBezierPoints(ws, arch, jobs, 32, -0.99f);
    EXPECT_EQ(jobs.size(), 14u);
    DeCasteljauGetBezierPoints(ws, arch, jobs, 32, -0.999f);
    EXPECT_EQ(jobs.size(), 32u);
}

TEST(BezierPoints, LargeBudgetsPickTheSamePiecesAsTheScan)
{
    BezierSegmentationWorkspace ws;
    std::vector<SegmentationJob> jobs;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Wm4::BezierCurve2<float> curves[] = {
        Cubic(V(0, 0), V(0, 1), V(1, 1), V(1, 0)), Cubic(V(0, 0), V(5, 9), V(-3, 2), V(7, 1)),
        Cubic(V(0, 0), V(nan, 1), V(1, 1), V(1, 0)), Cubic(V(1, 1), V(1, 1), V(1, 1), V(1, 1))};
    for (const auto& curve : curves) {
        for (auto [budget, tolerance] : {std::pair<unsigned int, float>{65, -2.0f}, {300, -2.0f}, {300, -0.99999f}}) {
            DeCasteljauGetBezierPoints(ws, curve, jobs, budget, tolerance);
            EXPECT_EQ(Params(jobs), ScanReference(curve, budget, tolerance)) << budget;
        }
    }
}

TEST(BezierSegment, AppendsStartMidpointsAndEndAsAChain)
{
    BezierSegmentationWorkspace ws;
    const auto flat = Cubic(V(0, 0), V(1, 0), V(2, 0), V(3, 0));
    SegmentedPrimitive primitive;
    DeCasteljauSegmentBezier(ws, flat, primitive, true, 32, -0.999f);
    ASSERT_EQ(primitive.getPoints().size(), 3u);
    EXPECT_EQ(primitive.getPoints()[1], V(1.5f, 0));
    EXPECT_EQ(primitive.getIndices(), segtest::Chain(0, 2));

    // Continuing: no start point, and the first pair joins the previous end.
    DeCasteljauSegmentBezier(ws, Cubic(V(3, 0), V(3, 1), V(3, 2), V(3, 3)), primitive, false, 0, -0.999f);
    ASSERT_EQ(primitive.getPoints().size(), 5u);
    EXPECT_EQ(primitive.getPoints()[3], V(3, 1.5f));
    EXPECT_EQ(primitive.getPoints()[4], V(3, 3));
    EXPECT_EQ(primitive.getIndices(), segtest::Chain(0, 4));

    // Nothing to continue from: the start is added anyway.
    SegmentedPrimitive empty;
    DeCasteljauSegmentBezier(ws, flat, empty, false, 1, 0.0f);
    EXPECT_EQ(empty.getPoints().size(), 3u);
    EXPECT_EQ(empty.getIndices(), segtest::Chain(0, 2));
}

TEST(ArcSegment, StepsEvenlyFromTheStartAngle)
{
    const float pi = 3.1415927f;
    std::vector<V> points;
    std::vector<uint32_t> indices;
    SegmentEllipticalArc(V(0, 0), V(1, 1), 0, 0, pi, points, indices, true, 4, 0.1f);
    ASSERT_EQ(points.size(), 5u);
    for (int i = 0; i <= 4; ++i) {
        EXPECT_TRUE(segtest::Near(points[i], std::cos(i * pi / 4), std::sin(i * pi / 4), 1e-6)) << i;
    }
    EXPECT_EQ(indices, segtest::Chain(0, 4));

    // Continuing clockwise: four points, the first pair from the last point.
    SegmentEllipticalArc(V(0, 0), V(1, 1), 0, pi, -pi, points, indices, false, 4, 0.1f);
    ASSERT_EQ(points.size(), 9u);
    EXPECT_TRUE(segtest::Near(points[5], std::cos(3 * pi / 4), std::sin(3 * pi / 4), 1e-6));
    EXPECT_NEAR(points[8].X(), 1, 1e-6);
    EXPECT_EQ(indices, segtest::Chain(0, 8));

    // A quarter turn of the axes puts the x radius along y.
    std::vector<V> turned;
    SegmentEllipticalArc(V(10, 20), V(2, 1), pi / 2, 0, pi / 2, turned, indices, true, 1, 0.1f);
    ASSERT_EQ(turned.size(), 2u);
    EXPECT_TRUE(segtest::Near(turned[0], 10, 22, 1e-6));
    EXPECT_TRUE(segtest::Near(turned[1], 9, 20, 1e-6));

    // No steps: the chord, never the angle 0 / 0.
    std::vector<V> chord;
    SegmentEllipticalArc(V(0, 0), V(1, 1), 0, 0, pi, chord, indices, true, 0, 0.1f);
    ASSERT_EQ(chord.size(), 2u);
    EXPECT_NEAR(chord[1].X(), -1, 1e-6); // NaN fails this too
}

TEST(Segmentation, RunawayCountsAreRefusedWithAMessage)
{
    BezierSegmentationWorkspace ws;
    const auto flat = Cubic(V(0, 0), V(1, 0), V(2, 0), V(3, 0));
    SegmentedPrimitive primitive;
    primitive.editPoints().push_back(V(0, 0));
    segtest::CapturedLog log;
    DeCasteljauSegmentBezier(ws, flat, primitive, false, UINT_MAX, -0.999f);
    SegmentEllipticalArc(V(0, 0), V(1, 1), 0, 0, 1, primitive.editPoints(), primitive.editIndices(), false, UINT_MAX,
                         0.1f);
    EXPECT_EQ(log.texts, std::vector<std::string>(2, segtest::kIndexOverflow));
    EXPECT_EQ(primitive.getPoints().size(), 1u);
    EXPECT_TRUE(primitive.getIndices().empty());

    // Within the index range but far beyond any drawing: refused, not allocated.
    SegmentedPrimitive empty;
    DeCasteljauSegmentBezier(ws, flat, empty, true, UINT_MAX, -0.999f);
    SegmentEllipticalArc(V(0, 0), V(1, 1), 0, 0, 1, empty.editPoints(), empty.editIndices(), true, UINT_MAX - 1, 0);
    EXPECT_TRUE(empty.getPoints().empty());
    EXPECT_EQ(log.texts.size(), 4u);
}
