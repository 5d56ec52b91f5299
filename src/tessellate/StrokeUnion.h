#ifndef VKSVG_TESSELLATE_STROKEUNION_H
#define VKSVG_TESSELLATE_STROKEUNION_H

// Uniting the pieces of a non-overlapping stroke in a tree instead of all at
// once.
//
// The pieces come along the path, so a run of consecutive pieces lies close
// together: fine dashes with round caps, or short segments at sharp turns,
// overlap their neighbours many times over. Handed to TessellateFill all at
// once, every such overlap is a crossing to resolve, and past the fill's
// budget Clipper takes over, whose time grows with the square of its output
// rings. United in small groups first, a group collapses to its outline,
// which has about as many edges as the stroke's border there; the outlines
// of a few groups are then united in turn, up to one fill over the last few
// outlines, which gives the mesh. Each level costs about the outlines' size
// and the crossings between them, so the whole is about n log n plus the
// crossings of the path with itself, at the price of sweeping a path that
// does not cross itself once per level.
//
// The outline of a mesh is its directed edges that no triangle runs the
// other way: counter-clockwise around what it covers and clockwise around
// holes, so that under NonZero the outlines of several groups cover their
// union. Every mesh vertex is a point of its fill's grid, so the next fill
// takes the outline as it is (up to a coarser grid when the coordinates
// grow), and the final mesh covers every point once, as a single fill would.

#include <svg/Tessellation.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vk::svg::impl {

// Pieces per group at the first level and outlines per group above it.
// Small first groups suit dense strokes (a fuzzed retracing dash pattern
// ran three times faster with 32 than with 128, fifteen with 512), and a
// wide fan-in keeps the levels few on paths that do not cross themselves,
// where each level sweeps about the whole outline again.
constexpr std::size_t kUnionLeafPieces = 32;
constexpr std::size_t kUnionFanIn = 8;

// An outline as the edge-list form of TessellateFill takes it.
struct Outline {
    std::vector<Wm4::Vector2<float>> points;
    std::vector<uint32_t> edges;
};

// Appends the outline of `mesh` to `out`: the directed triangle edges left
// over once each edge cancels against one running the other way.
inline void AppendOutline(const FillMesh& mesh, Outline& out)
{
    // Each edge by its two ends, lower index first, and which way it runs,
    // so that both ways of one edge sort next to each other.
    std::vector<std::pair<uint64_t, bool>> keys;
    keys.reserve(mesh.indices.size());
    for (std::size_t t = 0; t + 2 < mesh.indices.size(); t += 3) {
        for (int k = 0; k < 3; ++k) {
            const uint32_t a = mesh.indices[t + k];
            const uint32_t b = mesh.indices[t + (k + 1) % 3];
            const uint64_t lo = std::min(a, b), hi = std::max(a, b);
            keys.emplace_back((lo << 32) | hi, a > b);
        }
    }
    std::sort(keys.begin(), keys.end());
    std::vector<uint32_t> remap(mesh.vertices.size(), UINT32_MAX);
    const auto point = [&](uint32_t v) {
        if (remap[v] == UINT32_MAX) {
            remap[v] = uint32_t(out.points.size());
            out.points.push_back(mesh.vertices[v]);
        }
        return remap[v];
    };
    for (std::size_t i = 0; i < keys.size();) {
        const uint64_t edge = keys[i].first;
        long net = 0;
        for (; i < keys.size() && keys[i].first == edge; ++i) {
            net += keys[i].second ? -1 : 1;
        }
        const auto lo = uint32_t(edge >> 32), hi = uint32_t(edge & 0xffffffffu);
        for (; net > 0; --net) {
            out.edges.push_back(point(lo));
            out.edges.push_back(point(hi));
        }
        for (; net < 0; ++net) {
            out.edges.push_back(point(hi));
            out.edges.push_back(point(lo));
        }
    }
}

// Appends `outline` to `into`, its indices moved past the points already
// there.
inline void AppendOutline(const Outline& outline, Outline& into)
{
    const auto base = uint32_t(into.points.size());
    into.points.insert(into.points.end(), outline.points.begin(), outline.points.end());
    for (uint32_t index : outline.edges) {
        into.edges.push_back(base + index);
    }
}

// What the positive convex `pieces` cover, each point once, as one mesh.
inline bool UnitePieces(const std::vector<std::vector<Wm4::Vector2<float>>>& pieces, FillMesh& mesh, std::string* error)
{
    if (pieces.size() <= kUnionLeafPieces) {
        return TessellateFill(pieces, WindingRule::NonZero, mesh, error);
    }
    std::vector<Outline> level;
    level.reserve(pieces.size() / kUnionLeafPieces + 1);
    std::vector<std::vector<Wm4::Vector2<float>>> group;
    for (std::size_t begin = 0; begin < pieces.size(); begin += kUnionLeafPieces) {
        const std::size_t end = std::min(pieces.size(), begin + kUnionLeafPieces);
        group.assign(pieces.begin() + std::ptrdiff_t(begin), pieces.begin() + std::ptrdiff_t(end));
        if (!TessellateFill(group, WindingRule::NonZero, mesh, error)) {
            return false;
        }
        level.emplace_back();
        AppendOutline(mesh, level.back());
    }
    group.clear();
    while (true) {
        std::vector<Outline> next;
        next.reserve(level.size() / kUnionFanIn + 1);
        for (std::size_t begin = 0; begin < level.size(); begin += kUnionFanIn) {
            const std::size_t end = std::min(level.size(), begin + kUnionFanIn);
            Outline joined;
            for (std::size_t i = begin; i < end; ++i) {
                AppendOutline(level[i], joined);
                level[i] = Outline{};
            }
            if (!TessellateFill(joined.points, joined.edges, WindingRule::NonZero, mesh, error)) {
                return false;
            }
            if (level.size() <= kUnionFanIn) {
                return true;
            }
            next.emplace_back();
            AppendOutline(mesh, next.back());
        }
        level = std::move(next);
    }
}

} // namespace vk::svg::impl

#endif
