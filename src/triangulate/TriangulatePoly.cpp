#include <svg/Triangulation.h>

#include "triangulate/TrapezoidRepresentation.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <limits>
#include <vector>

namespace vk {
namespace {

using impl::kNoRecord;
using impl::RecordId;
using impl::Trapezoid;

constexpr std::uint64_t kUnvisited = ~std::uint64_t(0);

// Gives every trapezoid the number of edges crossed to reach it from the
// outside (depth) and the id of its connected component (region). Above and
// below links never cross a segment, so a component is flooded through them
// at one depth; the trapezoids met across its side segments seed the next
// depth. Any trapezoid across a segment will do: all of them belong to the
// one component on that side of it.
void LabelRegions(impl::TrapezoidRepresentation& representation)
{
    std::vector<Trapezoid>& trapezoids = representation.getTrapezoids();
    const std::size_t segmentCount = representation.getSegments().size();
    std::vector<RecordId> leftOf(segmentCount, kNoRecord);
    std::vector<RecordId> rightOf(segmentCount, kNoRecord);
    for (Trapezoid& t : trapezoids) {
        t.depth = kUnvisited;
        t.region = 0;
        const auto id = static_cast<RecordId>(t.index);
        if (t.sides[0] != kNoRecord && rightOf[t.sides[0]] == kNoRecord) {
            rightOf[t.sides[0]] = id;
        }
        if (t.sides[1] != kNoRecord && leftOf[t.sides[1]] == kNoRecord) {
            leftOf[t.sides[1]] = id;
        }
    }

    std::vector<RecordId> frontier{0};
    std::vector<RecordId> next;
    std::vector<RecordId> work;
    std::uint64_t depth = 0;
    std::uint64_t region = 0;
    while (!frontier.empty()) {
        next.clear();
        for (RecordId seed : frontier) {
            if (trapezoids[seed].depth != kUnvisited) {
                continue;
            }
            trapezoids[seed].depth = depth;
            trapezoids[seed].region = region;
            work.push_back(seed);
            while (!work.empty()) {
                const Trapezoid& t = trapezoids[work.back()];
                work.pop_back();
                for (const impl::NeighbourList* list : {&t.above, &t.below}) {
                    for (RecordId n : *list) {
                        if (trapezoids[n].depth == kUnvisited) {
                            trapezoids[n].depth = depth;
                            trapezoids[n].region = region;
                            work.push_back(n);
                        }
                    }
                }
                for (int s = 0; s < 2; ++s) {
                    if (t.sides[s] == kNoRecord) {
                        continue;
                    }
                    const RecordId across = s == 0 ? leftOf[t.sides[s]] : rightOf[t.sides[s]];
                    if (across != kNoRecord && trapezoids[across].depth == kUnvisited) {
                        next.push_back(across);
                    }
                }
            }
            ++region;
        }
        frontier.swap(next);
        ++depth;
    }
}

bool IsFilled(std::uint64_t depth, TriangulationFillRule rule)
{
    switch (rule) {
    case TriangulationFillRule::NonZero:
        return depth != 0;
    case TriangulationFillRule::EvenOdd:
        return (depth & 1) != 0;
    }
    return true;
}

// x of a side segment at height y, in single precision throughout.
float XAt(const Wm4::Vector2<float>& p0, const Wm4::Vector2<float>& p1, float y)
{
    const float dx = p1.X() - p0.X();
    if (dx == 0.0f) {
        return p0.X();
    }
    const float slope = (p1.Y() - p0.Y()) / dx;
    const float intercept = p0.Y() - p0.X() * slope;
    return (y - intercept) / slope;
}

void EmitFilledTrapezoids(const impl::TrapezoidRepresentation& representation, TriangulationFillRule rule,
                          std::vector<Wm4::Vector2<float>>& outPoints, std::vector<unsigned int>& outTriangles)
{
    const std::vector<Trapezoid>& trapezoids = representation.getTrapezoids();
    const std::vector<impl::Vertex>& vertices = representation.getVertices();
    const std::vector<impl::Segment>& segments = representation.getSegments();

    // Group by region, keeping creation order inside each region.
    std::size_t regionCount = 0;
    for (const Trapezoid& t : trapezoids) {
        regionCount = std::max<std::size_t>(regionCount, t.region + 1);
    }
    std::vector<std::size_t> offsets(regionCount + 1, 0);
    for (const Trapezoid& t : trapezoids) {
        ++offsets[t.region + 1];
    }
    for (std::size_t r = 0; r < regionCount; ++r) {
        if (offsets[r + 1] == 0) {
            impl::FailTriangulation();
        }
        offsets[r + 1] += offsets[r];
    }
    std::vector<RecordId> grouped(trapezoids.size());
    {
        std::vector<std::size_t> fill(offsets.begin(), offsets.end() - 1);
        for (const Trapezoid& t : trapezoids) {
            grouped[fill[t.region]++] = static_cast<RecordId>(t.index);
        }
    }

    std::vector<bool> filled(regionCount);
    std::size_t emitted = 0;
    for (std::size_t r = 0; r < regionCount; ++r) {
        filled[r] = IsFilled(trapezoids[grouped[offsets[r]]].depth, rule);
        if (filled[r]) {
            emitted += offsets[r + 1] - offsets[r];
        }
    }
    outPoints.reserve(outPoints.size() + 4 * emitted);
    outTriangles.reserve(outTriangles.size() + 6 * emitted);

    for (std::size_t r = 0; r < regionCount; ++r) {
        if (!filled[r]) {
            continue;
        }
        for (std::size_t i = offsets[r]; i < offsets[r + 1]; ++i) {
            const Trapezoid& t = trapezoids[grouped[i]];
            if (t.sides[0] == kNoRecord || t.sides[1] == kNoRecord) {
                continue;
            }
            if (t.lower == kNoRecord || t.upper == kNoRecord) {
                impl::FailTriangulation();
            }
            const float y1 = vertices[t.lower].point->Y();
            const float y2 = vertices[t.upper].point->Y();
            if (y1 == y2) {
                continue;
            }
            float x[2][2]; // [side][lower, upper]
            for (int s = 0; s < 2; ++s) {
                const impl::Segment& segment = segments[t.sides[s]];
                const Wm4::Vector2<float>& p0 = *vertices[segment.upper].point;
                const Wm4::Vector2<float>& p1 = *vertices[segment.lower].point;
                x[s][0] = XAt(p0, p1, y1);
                x[s][1] = XAt(p0, p1, y2);
            }
            if (outPoints.size() > std::numeric_limits<unsigned int>::max() - 4u) {
                impl::FailTriangulation();
            }
            outPoints.emplace_back(x[0][0], y1);
            outPoints.emplace_back(x[1][0], y1);
            outPoints.emplace_back(x[1][1], y2);
            outPoints.emplace_back(x[0][1], y2);
            const auto n = static_cast<unsigned int>(outPoints.size());
            outTriangles.insert(outTriangles.end(), {n - 4, n - 3, n - 1, n - 3, n - 1, n - 2});
        }
    }
}

} // namespace

bool TriangulatePoly(const std::vector<Wm4::Vector2<float>>& points, const std::vector<unsigned int>& edges,
                     std::vector<Wm4::Vector2<float>>& outPoints, std::vector<unsigned int>& outTriangles,
                     TriangulationFillRule fillRule, bool mergeCoincidentPoints)
{
    if (edges.size() % 2 != 0) {
        return false;
    }
    for (unsigned int index : edges) {
        if (index >= points.size()) {
            return false;
        }
    }
    try {
        impl::TrapezoidRepresentation representation(points, mergeCoincidentPoints);
        for (std::size_t k = 0; k < edges.size(); k += 2) {
            // Each end is located from the other when that one is in already,
            // which is what keeps outlines given in order cheap to insert.
            impl::Vertex& start = representation.getVertex(edges[k]);
            impl::Vertex& end = representation.getVertex(edges[k + 1]);
            const RecordId a = representation.addPoint(start, end.yNode != kNoRecord ? &end : nullptr);
            const RecordId b =
                representation.addPoint(end, &representation.getVertex(representation.getNodes()[a].item));
            if (mergeCoincidentPoints && representation.getNodes()[a].item == representation.getNodes()[b].item) {
                continue; // collapsed onto one vertex
            }
            representation.addSegment(a, b);
        }
        LabelRegions(representation);
        EmitFilledTrapezoids(representation, fillRule, outPoints, outTriangles);
        if (outTriangles.size() % 3 != 0) {
            impl::FailTriangulation();
        }
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace vk
