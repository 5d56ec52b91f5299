#include <svg/Tessellation.h>

#include "tessellate/Crossings.h"
#include "tessellate/MonotoneTriangulation.h"

#include <clipper.hpp>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <exception>
#include <new>

namespace vk::svg {
namespace {

using impl::GridPoint;
using V2 = Wm4::Vector2<float>;

// Grid points stay below 2^25 in magnitude; a retry coarsens by this much.
constexpr int kGridBits = 24;
constexpr int kRetryShift = 8;
constexpr int64_t kTriangulationLimit = int64_t(1) << 29;
// Work allowed for finding crossings before Clipper takes over: pair tests
// and cut points, at least this many, or this many per point.
constexpr size_t kCrossingBudget = size_t(1) << 24;
constexpr size_t kCrossingBudgetPerPoint = 2048;
constexpr int kSplitRounds = 3;

void SetError(std::string* error, std::string text)
{
    if (error) {
        *error = std::move(text);
    }
}

ClipperLib::PolyFillType FillType(WindingRule rule)
{
    switch (rule) {
    case WindingRule::EvenOdd:
        return ClipperLib::pftEvenOdd;
    case WindingRule::Positive:
        return ClipperLib::pftPositive;
    case WindingRule::Negative:
        return ClipperLib::pftNegative;
    case WindingRule::NonZero:
    default:
        return ClipperLib::pftNonZero;
    }
}

// The caller's contours as nested vectors.
struct NestedContours {
    const std::vector<std::vector<V2>>& contours;

    size_t Count() const { return contours.size(); }
    size_t Size(size_t c) const { return contours[c].size(); }
    const V2& At(size_t c, size_t i) const { return contours[c][i]; }
};

// Loops chained from an edge list: point indices back to back, each loop
// ending before ends[loop].
struct ChainedContours {
    const std::vector<V2>& points;
    std::vector<uint32_t> order;
    std::vector<uint32_t> ends;

    size_t Count() const { return ends.size(); }
    size_t Begin(size_t c) const { return c == 0 ? 0 : ends[c - 1]; }
    size_t Size(size_t c) const { return ends[c] - Begin(c); }
    const V2& At(size_t c, size_t i) const { return points[order[Begin(c) + i]]; }
};

// Snaps the contours to a grid of `spacing` and triangulates them directly
// when no edges cross, which is the common case and avoids Clipper's sweep
// (quadratic when many edges are active at once); otherwise unites them with
// Clipper first. False when Clipper gives up.
template <class Contours>
bool FillOnGrid(const Contours& contours, WindingRule rule, double spacing, impl::RingTriangulation& result)
{
    const double scale = 1.0 / spacing;
    impl::RingSet rings;
    size_t total = 0;
    for (size_t c = 0; c < contours.Count(); ++c) {
        total += contours.Size(c);
    }
    rings.points.reserve(total);
    for (size_t c = 0; c < contours.Count(); ++c) {
        const size_t begin = rings.points.size();
        const size_t n = contours.Size(c);
        for (size_t i = 0; i < n; ++i) {
            const V2& p = contours.At(c, i);
            const GridPoint q{int64_t(std::nearbyint(double(p.X()) * scale)),
                              int64_t(std::nearbyint(double(p.Y()) * scale))};
            if (rings.points.size() == begin || !(rings.points.back() == q)) {
                rings.points.push_back(q);
            }
        }
        while (rings.points.size() > begin + 1 && rings.points[begin] == rings.points.back()) {
            rings.points.pop_back();
        }
        if (rings.points.size() >= begin + 3) {
            rings.ends.push_back(static_cast<uint32_t>(rings.points.size()));
        } else {
            rings.points.resize(begin);
        }
    }
    result = impl::RingTriangulation{};
    if (rings.ends.empty()) {
        return true;
    }
    impl::TriangulateRings(rings, rule, true, result);
    // Put the crossings into the rings ourselves; Clipper only when rounding
    // them keeps making new ones or there are too many to test.
    const size_t budget = std::max(kCrossingBudget, kCrossingBudgetPerPoint * rings.points.size());
    for (int round = 0; round < kSplitRounds && result.crossed; ++round) {
        if (!impl::SplitAtCrossings(rings, budget)) {
            break;
        }
        impl::TriangulateRings(rings, rule, true, result);
    }
    if (!result.crossed) {
        return true;
    }

    ClipperLib::Paths paths(rings.ends.size());
    for (size_t r = 0, begin = 0; r < rings.ends.size(); begin = rings.ends[r++]) {
        paths[r].reserve(rings.ends[r] - begin);
        for (size_t i = begin; i < rings.ends[r]; ++i) {
            paths[r].emplace_back(rings.points[i].x, rings.points[i].y);
        }
    }
    rings = impl::RingSet{};
    ClipperLib::Paths solution;
    try {
        ClipperLib::Clipper clipper;
        clipper.StrictlySimple(true);
        clipper.AddPaths(paths, ClipperLib::ptSubject, true);
        if (!clipper.Execute(ClipperLib::ctUnion, solution, FillType(rule), FillType(rule))) {
            return false;
        }
    } catch (const ClipperLib::clipperException&) {
        return false;
    }
    paths.clear();
    paths.shrink_to_fit();
    for (const auto& path : solution) {
        for (const auto& p : path) {
            if (std::abs(p.X) >= kTriangulationLimit || std::abs(p.Y) >= kTriangulationLimit) {
                return false;
            }
            rings.points.push_back({p.X, p.Y});
        }
        rings.ends.push_back(static_cast<uint32_t>(rings.points.size()));
    }
    solution.clear();
    solution.shrink_to_fit();
    // The union's rings bound what it covers by parity whatever their
    // direction.
    impl::TriangulateRings(rings, WindingRule::EvenOdd, false, result);
    return true;
}

float ToFloat(int64_t k, double spacing)
{
    const double value = double(k) * spacing;
    return float(std::clamp(value, -double(FLT_MAX), double(FLT_MAX)));
}

template <class Contours> bool Fill(const Contours& contours, WindingRule rule, FillMesh& mesh, std::string* error)
{
    double largest = 0.0;
    for (size_t c = 0; c < contours.Count(); ++c) {
        for (size_t i = 0; i < contours.Size(c); ++i) {
            const V2& p = contours.At(c, i);
            if (!std::isfinite(p.X()) || !std::isfinite(p.Y())) {
                SetError(error, "Contour " + std::to_string(c) + " point " + std::to_string(i) + " is not finite");
                return false;
            }
            largest = std::max({largest, std::fabs(double(p.X())), std::fabs(double(p.Y()))});
        }
    }
    if (largest == 0.0) {
        return true;
    }
    // The float spacing in the binade of the largest coordinate: every grid
    // point within the input's range is then a float.
    int exponent = 0;
    std::frexp(largest, &exponent);
    double spacing = std::ldexp(1.0, std::max(exponent - kGridBits, -149));

    impl::RingTriangulation result;
    impl::RingTriangulation fallback;
    double fallbackSpacing = 0.0;
    bool clean = false;
    for (int attempt = 0; attempt < 3 && !clean; ++attempt) {
        if (attempt > 0) {
            // A coarser grid moves apart what rounding made cross or touch.
            spacing = std::ldexp(spacing, kRetryShift);
        }
        if (!FillOnGrid(contours, rule, spacing, result)) {
            continue;
        }
        clean = result.consistent;
        if (!clean && fallbackSpacing == 0.0) {
            fallback = std::move(result);
            fallbackSpacing = spacing;
        }
    }
    if (!clean) {
        result = std::move(fallback);
        spacing = fallbackSpacing;
    }

    mesh.vertices.reserve(result.vertices.size());
    for (const GridPoint& p : result.vertices) {
        mesh.vertices.emplace_back(ToFloat(p.x, spacing), ToFloat(p.y, spacing));
    }
    mesh.indices = std::move(result.indices);
    return true;
}

} // namespace

bool TessellateFill(const std::vector<std::vector<Wm4::Vector2<float>>>& contours, WindingRule rule, FillMesh& mesh,
                    std::string* error)
{
    mesh.vertices.clear();
    mesh.indices.clear();
    try {
        return Fill(NestedContours{contours}, rule, mesh, error);
    } catch (const std::bad_alloc&) {
        mesh = FillMesh{};
        SetError(error, "Out of memory while filling");
        return false;
    } catch (const std::exception& e) {
        mesh = FillMesh{};
        SetError(error, std::string("Filling failed: ") + e.what());
        return false;
    }
}

bool TessellateFill(const std::vector<Wm4::Vector2<float>>& points, const std::vector<uint32_t>& edges,
                    WindingRule rule, FillMesh& mesh, std::string* error)
{
    mesh.vertices.clear();
    mesh.indices.clear();
    if (edges.size() % 2 != 0) {
        SetError(error, "The edge list has an odd length (" + std::to_string(edges.size()) + ")");
        return false;
    }
    for (size_t i = 0; i < edges.size(); ++i) {
        if (edges[i] >= points.size()) {
            SetError(error, "Edge " + std::to_string(i / 2) + " refers to point " + std::to_string(edges[i]) + " of " +
                                std::to_string(points.size()));
            return false;
        }
    }
    for (uint32_t index : edges) {
        const V2& p = points[index];
        if (!std::isfinite(p.X()) || !std::isfinite(p.Y())) {
            SetError(error, "Point " + std::to_string(index) + " is not finite");
            return false;
        }
    }
    try {
        // Follow each edge by the next one in the list when that starts where
        // it ends, otherwise by any unused edge that does. Segmentation lists
        // its loops edge after edge, so the index of edges by start point is
        // only built when that fails.
        const size_t count = edges.size() / 2;
        std::vector<uint32_t> start;
        std::vector<uint32_t> byStart;
        std::vector<uint32_t> cursor;
        const auto index = [&]() {
            start.assign(points.size() + 1, 0);
            for (size_t k = 0; k < count; ++k) {
                ++start[edges[2 * k] + 1];
            }
            for (size_t i = 0; i < points.size(); ++i) {
                start[i + 1] += start[i];
            }
            byStart.resize(count);
            cursor.assign(start.begin(), start.end() - 1);
            for (size_t k = 0; k < count; ++k) {
                byStart[cursor[edges[2 * k]]++] = uint32_t(k);
            }
            cursor.assign(start.begin(), start.end() - 1);
        };
        std::vector<char> used(count, 0);
        ChainedContours contours{points, {}, {}};
        contours.order.reserve(count);
        for (size_t first = 0; first < count; ++first) {
            if (used[first]) {
                continue;
            }
            const uint32_t origin = edges[2 * first];
            contours.order.push_back(origin);
            size_t k = first;
            while (true) {
                used[k] = 1;
                const uint32_t end = edges[2 * k + 1];
                if (end == origin) {
                    break;
                }
                contours.order.push_back(end);
                size_t next = count;
                if (k + 1 < count && !used[k + 1] && edges[2 * (k + 1)] == end) {
                    next = k + 1;
                } else {
                    if (start.empty()) {
                        index();
                    }
                    uint32_t& c = cursor[end];
                    while (c < start[end + 1] && used[byStart[c]]) {
                        ++c;
                    }
                    if (c < start[end + 1]) {
                        next = byStart[c];
                    }
                }
                if (next == count) {
                    break;
                }
                k = next;
            }
            contours.ends.push_back(static_cast<uint32_t>(contours.order.size()));
        }
        return Fill(contours, rule, mesh, error);
    } catch (const std::bad_alloc&) {
        mesh = FillMesh{};
        SetError(error, "Out of memory while filling");
        return false;
    } catch (const std::exception& e) {
        mesh = FillMesh{};
        SetError(error, std::string("Filling failed: ") + e.what());
        return false;
    }
}

} // namespace vk::svg
