#include <svg/Segmentation.h>

#include "segment/SegmentationLimits.h"

#include <vkSystem/vkLog.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>

namespace vk::svg::SegmentationUtils {

namespace {

using V2 = Wm4::Vector2<float>;

float Distance(const V2& a, const V2& b)
{
    const float dx = b.X() - a.X();
    const float dy = b.Y() - a.Y();
    return std::sqrt(dx * dx + dy * dy);
}

V2 Midpoint(const V2& a, const V2& b) { return V2((a.X() + b.X()) * 0.5f, (a.Y() + b.Y()) * 0.5f); }

float Cross(const V2& origin, const V2& a, const V2& b)
{
    return (a.X() - origin.X()) * (b.Y() - origin.Y()) - (a.Y() - origin.Y()) * (b.X() - origin.X());
}

// Up to this budget the next piece is found by scanning every piece, which
// for the library's own budget of 32 is cheaper than any bookkeeping. Larger
// budgets keep a heap, so that a curve split a million times does not cost
// a million scans of a million pieces.
constexpr unsigned int kLinearScanLimit = 64;

// The piece that a left-to-right scan keeping the first strictly larger
// score would pick, as a strict order: ties go to the lower position, and a
// NaN score is never picked, except at position 0, where no score can
// displace it.
struct RanksAbove {
    const std::vector<SegmentationJob>* jobs;
    bool operator()(uint32_t a, uint32_t b) const
    {
        const float ea = (*jobs)[a].error;
        const float eb = (*jobs)[b].error;
        const bool aNan = std::isnan(ea);
        const bool bNan = std::isnan(eb);
        if (aNan && a == 0)
            return true;
        if (bNan && b == 0)
            return false;
        if (aNan || bNan)
            return aNan == bNan ? a < b : bNan;
        return ea > eb || (ea == eb && a < b);
    }
};

std::size_t FindWorstByScan(const std::vector<SegmentationJob>& jobs)
{
    std::size_t worst = 0;
    for (std::size_t i = 1; i < jobs.size(); ++i)
        if (jobs[i].error > jobs[worst].error)
            worst = i;
    return worst;
}

// Replaces the piece at `index` by its first half and appends its second.
void Split(BezierSegmentationWorkspace& ws, std::vector<SegmentationJob>& jobs, std::size_t index)
{
    const SegmentationJob parent = jobs[index];
    const float childStep = parent.step / 2.0f;
    jobs[index] = SegmentationJob(ws, parent.left, parent.t - parent.step, childStep);
    jobs.emplace_back(ws, parent.right, parent.t + parent.step, childStep);
}

void SplitByScan(BezierSegmentationWorkspace& ws, std::vector<SegmentationJob>& jobs, unsigned int maxJobs,
                 float tolerance)
{
    while (jobs.size() < maxJobs) {
        const std::size_t worst = FindWorstByScan(jobs);
        if (tolerance >= jobs[worst].error)
            return;
        Split(ws, jobs, worst);
    }
}

void SplitByHeap(BezierSegmentationWorkspace& ws, std::vector<SegmentationJob>& jobs, unsigned int maxJobs,
                 float tolerance)
{
    std::vector<uint32_t> heap;
    heap.reserve(maxJobs);
    heap.push_back(0);
    // std::*_heap keep the largest element under `less` on top.
    const auto less = [ranks = RanksAbove{&jobs}](uint32_t a, uint32_t b) { return ranks(b, a); };
    while (jobs.size() < maxJobs) {
        const uint32_t worst = heap.front();
        if (tolerance >= jobs[worst].error)
            return;
        std::pop_heap(heap.begin(), heap.end(), less);
        heap.pop_back();
        Split(ws, jobs, worst);
        heap.push_back(worst);
        std::push_heap(heap.begin(), heap.end(), less);
        heap.push_back(static_cast<uint32_t>(jobs.size() - 1));
        std::push_heap(heap.begin(), heap.end(), less);
    }
}

void SortByParameter(std::vector<SegmentationJob>& jobs)
{
    // Deep splits can round two midpoints to the same float; a stable sort
    // keeps such pieces in the order they were made.
    const auto byT = [](const SegmentationJob& a, const SegmentationJob& b) { return a.t < b.t; };
    if (jobs.size() > kLinearScanLimit) {
        std::stable_sort(jobs.begin(), jobs.end(), byT);
        return;
    }
    for (std::size_t i = 1; i < jobs.size(); ++i) {
        const SegmentationJob job = jobs[i];
        std::size_t j = i;
        for (; j > 0 && byT(job, jobs[j - 1]); --j)
            jobs[j] = jobs[j - 1];
        jobs[j] = job;
    }
}

// Grows to at least `needed` without giving up geometric growth: reserving
// the exact size curve after curve would copy the contour every time.
template <class T> void ReserveAtLeast(std::vector<T>& vector, std::size_t needed)
{
    if (vector.capacity() < needed)
        vector.reserve(std::max(needed, vector.capacity() * 2));
}

} // namespace

void BezierSegmentationWorkspace::initWorkspace(std::size_t maxJobs, std::size_t pointsPerVector)
{
    std::size_t p = 1;
    while (p < maxJobs) {
        if (p > std::numeric_limits<std::size_t>::max() / 2)
            throw std::length_error("Bezier workspace too large");
        p *= 2;
    }
    if (pointsPerVector != 0 && p > std::numeric_limits<std::size_t>::max() / 4 / pointsPerVector)
        throw std::length_error("Bezier workspace too large");
    storage.clear();
    storage.resize(4 * p * pointsPerVector);
    numPoints = pointsPerVector;
    freeSlot = storage.data();
}

Wm4::Vector2<float>* BezierSegmentationWorkspace::createVector()
{
    Wm4::Vector2<float>* vector = freeSlot;
    freeSlot += numPoints;
    return vector;
}

Wm4::Vector2<float>* BezierSegmentationWorkspace::createVector(const Wm4::Vector2<float>* begin,
                                                               const Wm4::Vector2<float>* end)
{
    Wm4::Vector2<float>* vector = createVector();
    std::copy(begin, end, vector);
    return vector;
}

SegmentationJob::SegmentationJob(BezierSegmentationWorkspace& ws, Wm4::Vector2<float>* controlPoints, float midpoint,
                                 float quarterWidth) noexcept
    : points(controlPoints), left(nullptr), right(nullptr), t(midpoint), step(quarterWidth), error(0.0f)
{
    computeError(ws);
}

void SegmentationJob::computeError(BezierSegmentationWorkspace& ws) noexcept
{
    left = ws.createVector();
    right = ws.createVector();
    const std::size_t n = ws.getNumPoints();
    if (n == 0)
        return;

    // Scored on the control points as they are before the split overwrites
    // them.
    float polygon = 0.0f;
    for (std::size_t i = 1; i < n; ++i)
        polygon += Distance(points[i - 1], points[i]);
    const float chord = Distance(points[0], points[n - 1]);
    float opposite = 0.0f;
    if (n >= 4) {
        const float side1 = Cross(points[0], points[n - 1], points[1]);
        const float side2 = Cross(points[0], points[n - 1], points[n - 2]);
        opposite = side1 * side2 < 0.0f ? 1.0f : 0.0f;
    }
    error = polygon == 0.0f ? opposite - 1.0f : opposite - chord / polygon;

    // De Casteljau at the midpoint, in place: each level averages
    // neighbours; its first point belongs to the left half and its last to
    // the right half.
    if (n == 4) {
        // The cubic, unrolled: this runs for every piece of every curve.
        const V2 p0 = points[0];
        const V2 p3 = points[3];
        const V2 a = Midpoint(p0, points[1]);
        const V2 b = Midpoint(points[1], points[2]);
        const V2 c = Midpoint(points[2], p3);
        const V2 ab = Midpoint(a, b);
        const V2 bc = Midpoint(b, c);
        const V2 mid = Midpoint(ab, bc);
        left[0] = p0, left[1] = a, left[2] = ab, left[3] = mid;
        right[0] = mid, right[1] = bc, right[2] = c, right[3] = p3;
        points[0] = mid, points[1] = bc, points[2] = c;
        return;
    }
    left[0] = points[0];
    right[n - 1] = points[n - 1];
    for (std::size_t level = 1; level < n; ++level) {
        const std::size_t count = n - level;
        for (std::size_t i = 0; i < count; ++i) {
            points[i] = Midpoint(points[i], points[i + 1]);
        }
        left[level] = points[0];
        right[count - 1] = points[count - 1];
    }
}

void DeCasteljauGetBezierPoints(BezierSegmentationWorkspace& ws, const Wm4::BezierCurve2<float>& curve,
                                std::vector<SegmentationJob>& jobs, unsigned int maxJobs, float tolerance)
{
    jobs.clear();
    if (curve.GetDegree() != 3)
        return;
    ws.initWorkspace(maxJobs, 4);
    jobs.reserve(maxJobs);

    const Wm4::Vector2<float>* control = curve.GetControlPoints();
    jobs.emplace_back(ws, ws.createVector(control, control + 4), 0.5f, 0.25f);
    if (maxJobs <= kLinearScanLimit)
        SplitByScan(ws, jobs, maxJobs, tolerance);
    else
        SplitByHeap(ws, jobs, maxJobs, tolerance);
    SortByParameter(jobs);
}

void DeCasteljauSegmentBezier(BezierSegmentationWorkspace& ws, const Wm4::BezierCurve2<float>& curve,
                              SegmentedPrimitive& primitive, bool newContour, unsigned int maxJobs, float tolerance)
{
    std::vector<Wm4::Vector2<float>>& points = primitive.editPoints();
    std::vector<uint32_t>& indices = primitive.editIndices();
    if (static_cast<uint64_t>(points.size()) + maxJobs > impl::kMaxIndex) {
        vk::vkLog::Log("svg", vk::vkLog::Error, "Index overflow during segmentation");
        return;
    }
    if (!impl::WithinSegmentLimit(maxJobs) || curve.GetDegree() != 3)
        return;
    // There is no previous point to join when the contour is empty.
    if (points.empty())
        newContour = true;

    try {
        std::vector<SegmentationJob>& jobs = ws.editJobs();
        DeCasteljauGetBezierPoints(ws, curve, jobs, maxJobs, tolerance);

        const std::size_t k = points.size();
        const std::size_t added = jobs.size() + (newContour ? 2 : 1);
        ReserveAtLeast(points, k + added);
        ReserveAtLeast(indices, indices.size() + 2 * added);

        const Wm4::Vector2<float>* control = curve.GetControlPoints();
        if (newContour)
            points.push_back(control[0]);
        for (const SegmentationJob& job : jobs)
            points.push_back(job.getResult());
        points.push_back(control[3]);

        const std::size_t last = points.size() - 1;
        for (std::size_t i = newContour ? k : k - 1; i < last; ++i) {
            indices.push_back(static_cast<uint32_t>(i));
            indices.push_back(static_cast<uint32_t>(i + 1));
        }
    } catch (const std::bad_alloc&) {
        impl::LogOutOfMemory();
    } catch (const std::length_error&) {
        impl::LogOutOfMemory();
    }
}

} // namespace vk::svg::SegmentationUtils
