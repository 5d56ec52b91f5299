#include <svg/Tessellation.h>

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

// Snaps the contours to a grid of `spacing` and triangulates them directly
// when no edges cross, which is the common case and avoids Clipper's sweep
// (quadratic when many edges are active at once); otherwise unites them with
// Clipper first. False when Clipper gives up.
bool FillOnGrid(const std::vector<std::vector<V2>>& contours, WindingRule rule, double spacing,
                impl::RingTriangulation& result)
{
    const double scale = 1.0 / spacing;
    std::vector<std::vector<GridPoint>> rings;
    rings.reserve(contours.size());
    for (const auto& contour : contours) {
        std::vector<GridPoint> ring;
        ring.reserve(contour.size());
        for (const V2& p : contour) {
            const GridPoint q{int64_t(std::nearbyint(double(p.X()) * scale)),
                              int64_t(std::nearbyint(double(p.Y()) * scale))};
            if (ring.empty() || !(ring.back() == q)) {
                ring.push_back(q);
            }
        }
        while (ring.size() > 1 && ring.front() == ring.back()) {
            ring.pop_back();
        }
        if (ring.size() >= 3) {
            rings.push_back(std::move(ring));
        }
    }
    result = impl::RingTriangulation{};
    if (rings.empty()) {
        return true;
    }
    impl::TriangulateRings(rings, rule, true, result);
    if (!result.crossed) {
        return true;
    }

    ClipperLib::Paths paths(rings.size());
    for (size_t i = 0; i < rings.size(); ++i) {
        paths[i].reserve(rings[i].size());
        for (const GridPoint& p : rings[i]) {
            paths[i].emplace_back(p.x, p.y);
        }
    }
    rings.clear();
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
        std::vector<GridPoint> ring;
        ring.reserve(path.size());
        for (const auto& p : path) {
            if (std::abs(p.X) >= kTriangulationLimit || std::abs(p.Y) >= kTriangulationLimit) {
                return false;
            }
            ring.push_back({p.X, p.Y});
        }
        rings.push_back(std::move(ring));
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

bool Fill(const std::vector<std::vector<V2>>& contours, WindingRule rule, FillMesh& mesh, std::string* error)
{
    double largest = 0.0;
    for (size_t c = 0; c < contours.size(); ++c) {
        for (size_t i = 0; i < contours[c].size(); ++i) {
            const V2& p = contours[c][i];
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
        // it ends, otherwise by any unused edge that does.
        const size_t count = edges.size() / 2;
        std::vector<uint32_t> start(points.size() + 1, 0);
        for (size_t k = 0; k < count; ++k) {
            ++start[edges[2 * k] + 1];
        }
        for (size_t i = 0; i < points.size(); ++i) {
            start[i + 1] += start[i];
        }
        std::vector<uint32_t> byStart(count);
        {
            std::vector<uint32_t> fillAt(start.begin(), start.end() - 1);
            for (size_t k = 0; k < count; ++k) {
                byStart[fillAt[edges[2 * k]]++] = uint32_t(k);
            }
        }
        std::vector<uint32_t> cursor(start.begin(), start.end() - 1);
        std::vector<char> used(count, 0);
        std::vector<std::vector<V2>> contours;
        for (size_t first = 0; first < count; ++first) {
            if (used[first]) {
                continue;
            }
            const uint32_t origin = edges[2 * first];
            std::vector<V2> contour{points[origin]};
            size_t k = first;
            while (true) {
                used[k] = 1;
                const uint32_t end = edges[2 * k + 1];
                if (end == origin) {
                    break;
                }
                contour.push_back(points[end]);
                size_t next = count;
                if (k + 1 < count && !used[k + 1] && edges[2 * (k + 1)] == end) {
                    next = k + 1;
                } else {
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
            contours.push_back(std::move(contour));
        }
        return TessellateFill(contours, rule, mesh, error);
    } catch (const std::bad_alloc&) {
        mesh = FillMesh{};
        SetError(error, "Out of memory while filling");
        return false;
    }
}

} // namespace vk::svg
