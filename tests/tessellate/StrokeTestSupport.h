// Oracles for the stroke tests that share nothing with the stroker: areas
// by the shoelace formula, unions by Clipper, coverage by point-in-triangle.
#ifndef VKSVG_TESTS_STROKETESTSUPPORT_H
#define VKSVG_TESTS_STROKETESTSUPPORT_H

#include <svg/Tessellation.h>

#include <clipper.hpp>

#include <cmath>
#include <cstdint>
#include <vector>

namespace stroke_test {

using V2 = Wm4::Vector2<float>;

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

// Indices in range, finite vertices, every triangle of positive area.
inline bool WellFormed(const vk::svg::FillMesh& mesh)
{
    if (mesh.indices.size() % 3 != 0) {
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
