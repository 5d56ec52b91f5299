// Oracles for the stroke tests that share nothing with the stroker: areas
// by the shoelace formula, unions by Clipper, coverage by point-in-triangle.
#ifndef VKSVG_TESTS_STROKETESTSUPPORT_H
#define VKSVG_TESTS_STROKETESTSUPPORT_H

#include <svg/Tessellation.h>

#include <clipper.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace stroke_test {

using V2 = Wm4::Vector2<float>;
using vk::svg::FillMesh;
using vk::svg::StrokeCap;
using vk::svg::StrokeJoin;
using vk::svg::StrokeMode;
using vk::svg::StrokePolyline;
using vk::svg::StrokeStyle;
using vk::svg::TessellateStroke;

inline constexpr double kPi = 3.14159265358979323846;

inline double Cross(V2 a, V2 b, V2 c)
{
    return (double(b.X()) - a.X()) * (double(c.Y()) - a.Y()) - (double(b.Y()) - a.Y()) * (double(c.X()) - a.X());
}

inline double MeshArea(const vk::svg::FillMesh& mesh)
{
    double area = 0.0;
    for (std::size_t t = 0; t + 2 < mesh.indices.size(); t += 3) {
        area += Cross(mesh.vertices[mesh.indices[t]], mesh.vertices[mesh.indices[t + 1]],
                      mesh.vertices[mesh.indices[t + 2]]) /
                2.0;
    }
    return area;
}

// The area of the union of the mesh's triangles, on a grid of 1/scale.
inline double UnionArea(const vk::svg::FillMesh& mesh, double scale = 65536.0)
{
    ClipperLib::Paths paths;
    for (std::size_t t = 0; t + 2 < mesh.indices.size(); t += 3) {
        ClipperLib::Path path;
        for (int k = 0; k < 3; ++k) {
            const V2& v = mesh.vertices[mesh.indices[t + k]];
            path.emplace_back(ClipperLib::cInt(std::llround(v.X() * scale)),
                              ClipperLib::cInt(std::llround(v.Y() * scale)));
        }
        if (!ClipperLib::Orientation(path)) {
            ClipperLib::ReversePath(path);
        }
        paths.push_back(std::move(path));
    }
    ClipperLib::Clipper clipper;
    clipper.AddPaths(paths, ClipperLib::ptSubject, true);
    ClipperLib::Paths solution;
    clipper.Execute(ClipperLib::ctUnion, solution, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
    double area = 0.0;
    for (const auto& path : solution) {
        area += ClipperLib::Area(path);
    }
    return area / (scale * scale);
}

// True when a triangle holds p, counting points within `slack` of an edge.
inline bool Covers(const vk::svg::FillMesh& mesh, V2 p, double slack = 1e-4)
{
    for (std::size_t t = 0; t + 2 < mesh.indices.size(); t += 3) {
        const V2 a = mesh.vertices[mesh.indices[t]];
        const V2 b = mesh.vertices[mesh.indices[t + 1]];
        const V2 c = mesh.vertices[mesh.indices[t + 2]];
        const double ab = Cross(a, b, p) / std::hypot(double(b.X()) - a.X(), double(b.Y()) - a.Y());
        const double bc = Cross(b, c, p) / std::hypot(double(c.X()) - b.X(), double(c.Y()) - b.Y());
        const double ca = Cross(c, a, p) / std::hypot(double(a.X()) - c.X(), double(a.Y()) - c.Y());
        if (ab >= -slack && bc >= -slack && ca >= -slack) {
            return true;
        }
    }
    return false;
}

// How many triangles hold each sample strictly inside, by a grid of buckets
// over the triangles' boxes so that large meshes stay cheap to sample.
inline std::vector<int> CoverCounts(const vk::svg::FillMesh& mesh, const std::vector<V2>& samples)
{
    std::vector<int> counts(samples.size(), 0);
    if (mesh.indices.empty() || samples.empty()) {
        return counts;
    }
    double x0 = samples[0].X(), x1 = x0, y0 = samples[0].Y(), y1 = y0;
    for (const V2& p : samples) {
        x0 = std::min(x0, double(p.X()));
        x1 = std::max(x1, double(p.X()));
        y0 = std::min(y0, double(p.Y()));
        y1 = std::max(y1, double(p.Y()));
    }
    const int n = 64;
    const double w = (x1 - x0) / n + 1e-9, h = (y1 - y0) / n + 1e-9;
    const auto cell = [](double v, double lo, double size) { return std::clamp(int((v - lo) / size), 0, n - 1); };
    std::vector<std::vector<std::size_t>> buckets(std::size_t(n) * n);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        buckets[std::size_t(cell(samples[i].Y(), y0, h)) * n + std::size_t(cell(samples[i].X(), x0, w))].push_back(i);
    }
    for (std::size_t t = 0; t + 2 < mesh.indices.size(); t += 3) {
        const V2 a = mesh.vertices[mesh.indices[t]];
        const V2 b = mesh.vertices[mesh.indices[t + 1]];
        const V2 c = mesh.vertices[mesh.indices[t + 2]];
        const double lx = std::min({a.X(), b.X(), c.X()}), hx = std::max({a.X(), b.X(), c.X()});
        const double ly = std::min({a.Y(), b.Y(), c.Y()}), hy = std::max({a.Y(), b.Y(), c.Y()});
        if (hx < x0 || lx > x1 || hy < y0 || ly > y1) {
            continue;
        }
        for (int cy = cell(ly, y0, h); cy <= cell(hy, y0, h); ++cy) {
            for (int cx = cell(lx, x0, w); cx <= cell(hx, x0, w); ++cx) {
                for (std::size_t i : buckets[std::size_t(cy) * n + std::size_t(cx)]) {
                    const V2 p = samples[i];
                    if (Cross(a, b, p) > 0.0 && Cross(b, c, p) > 0.0 && Cross(c, a, p) > 0.0) {
                        ++counts[i];
                    }
                }
            }
        }
    }
    return counts;
}

// Indices in range, finite vertices each used, every triangle of positive
// area.
inline bool WellFormed(const vk::svg::FillMesh& mesh)
{
    if (mesh.indices.size() % 3 != 0) {
        return false;
    }
    std::vector<bool> used(mesh.vertices.size(), false);
    for (std::uint32_t index : mesh.indices) {
        if (index < used.size()) {
            used[index] = true;
        }
    }
    if (std::find(used.begin(), used.end(), false) != used.end()) {
        return false;
    }
    for (const V2& v : mesh.vertices) {
        if (!std::isfinite(v.X()) || !std::isfinite(v.Y())) {
            return false;
        }
    }
    for (std::uint32_t index : mesh.indices) {
        if (index >= mesh.vertices.size()) {
            return false;
        }
    }
    for (std::size_t t = 0; t < mesh.indices.size(); t += 3) {
        if (!(Cross(mesh.vertices[mesh.indices[t]], mesh.vertices[mesh.indices[t + 1]],
                    mesh.vertices[mesh.indices[t + 2]]) > 0.0)) {
            return false;
        }
    }
    return true;
}

} // namespace stroke_test

#endif
