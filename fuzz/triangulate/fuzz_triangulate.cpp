// Bytes as outlines for the triangulator: points on a small grid (so that
// duplicates, collinear runs, overlaps and crossings are common) or raw
// floats (NaN, infinities, huge and subnormal values), joined as rings or as
// arbitrary edges. Each outline goes through cleanup and triangulation under
// both rules and both merge settings, and the decomposition found with the
// fast point location must equal the one of the plain DAG walk. A crash, a
// leak, undefined behaviour, an exception or a broken invariant is a finding.
#include <svg/Triangulation.h>

#include "triangulate/TrapezoidRepresentation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using V2 = Wm4::Vector2<float>;
using vk::impl::kNoRecord;
using vk::impl::RecordId;
using vk::impl::TrapezoidRepresentation;

class Reader {
public:
    Reader(const std::uint8_t* data, std::size_t size) : mData(data), mSize(size) {}
    bool empty() const { return mPos >= mSize; }
    std::uint8_t byte() { return mPos < mSize ? mData[mPos++] : 0; }
    float raw()
    {
        std::uint32_t bits = 0;
        for (int i = 0; i < 4; ++i) {
            bits = (bits << 8) | byte();
        }
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

private:
    const std::uint8_t* mData;
    std::size_t mSize;
    std::size_t mPos = 0;
};

void Check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

struct Outline {
    std::vector<V2> points;
    std::vector<unsigned int> edges;
};

Outline Decode(Reader& in)
{
    const std::uint8_t mode = in.byte();
    const std::size_t count = 1 + in.byte() % 96;
    const float scale = (mode & 4) ? float(1 + in.byte()) / 16.0f : 1.0f;
    Outline outline;
    for (std::size_t i = 0; i < count; ++i) {
        if ((mode & 3) == 3 || ((mode & 3) == 2 && (in.byte() & 1))) {
            const float x = in.raw();
            outline.points.emplace_back(x, in.raw());
        } else {
            const float x = float(std::int8_t(in.byte()) % 9) * scale;
            outline.points.emplace_back(x, float(std::int8_t(in.byte()) % 9) * scale);
        }
    }
    const auto n = static_cast<unsigned int>(count);
    if (mode & 8) { // the points in order as one ring
        for (unsigned int i = 0; i < n; ++i) {
            outline.edges.push_back(i);
            outline.edges.push_back((i + 1) % n);
        }
    }
    while (!in.empty() && outline.edges.size() < 1024) {
        outline.edges.push_back(in.byte() % n);
    }
    if ((mode & 16) && outline.edges.size() % 2 != 0) {
        outline.edges.pop_back();
    }
    return outline;
}

// Inserts the edges the way the triangulator does; returns the failure text.
std::string Insert(TrapezoidRepresentation& rep, const std::vector<unsigned int>& edges, bool merge)
{
    try {
        for (std::size_t k = 0; k + 1 < edges.size(); k += 2) {
            vk::impl::Vertex& end = rep.getVertex(edges[k + 1]);
            const RecordId a = rep.addPoint(rep.getVertex(edges[k]), end.yNode != kNoRecord ? &end : nullptr);
            const RecordId b = rep.addPoint(end, &rep.getVertex(rep.getNodes()[a].item));
            if (!(merge && rep.getNodes()[a].item == rep.getNodes()[b].item)) {
                rep.addSegment(a, b);
            }
        }
    } catch (const std::runtime_error& e) {
        Check(std::string(e.what()) == "Shape triangulation failed");
        return e.what();
    }
    return "";
}

void CompareLocations(const Outline& outline, bool merge)
{
    if (outline.edges.size() % 2 != 0) {
        return;
    }
    TrapezoidRepresentation fast(outline.points, merge, true);
    TrapezoidRepresentation plain(outline.points, merge, false);
    const std::string fastFailure = Insert(fast, outline.edges, merge);
    Check(fastFailure == Insert(plain, outline.edges, merge));
    if (!fastFailure.empty()) {
        return;
    }
    const auto& a = fast.getTrapezoids();
    const auto& b = plain.getTrapezoids();
    Check(a.size() == b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        Check(a[i].lower == b[i].lower && a[i].upper == b[i].upper && a[i].sides[0] == b[i].sides[0] &&
              a[i].sides[1] == b[i].sides[1] &&
              std::equal(a[i].above.begin(), a[i].above.end(), b[i].above.begin(), b[i].above.end()) &&
              std::equal(a[i].below.begin(), a[i].below.end(), b[i].below.begin(), b[i].below.end()));
    }
}

void Triangulate(const Outline& outline)
{
    const vk::TriangulationFillRule rules[] = {vk::TriangulationFillRule::NonZero, vk::TriangulationFillRule::EvenOdd,
                                               static_cast<vk::TriangulationFillRule>(5)};
    for (const auto rule : rules) {
        for (bool merge : {true, false}) {
            std::vector<V2> points(1, V2(0, 0));
            std::vector<unsigned int> triangles{0, 0, 0};
            const bool ok = vk::TriangulatePoly(outline.points, outline.edges, points, triangles, rule, merge);
            Check(triangles.size() % 3 == 0);
            if (ok) {
                Check(outline.edges.size() % 2 == 0);
                Check((points.size() - 1) * 6 == (triangles.size() - 3) * 4);
                for (unsigned int index : triangles) {
                    Check(index < points.size());
                }
            }
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Reader in(data, size);
    Outline outline = Decode(in);
    Triangulate(outline);
    CompareLocations(outline, true);
    CompareLocations(outline, false);

    const std::vector<V2> before = outline.points;
    const std::size_t edgeEntries = outline.edges.size();
    vk::CleanupContour(outline.points, outline.edges);
    Check(std::memcmp(before.data(), outline.points.data(), before.size() * sizeof(V2)) == 0);
    Check(outline.edges.size() <= edgeEntries);
    if (edgeEntries % 2 == 0) {
        Check(outline.edges.size() % 2 == 0);
    }
    for (unsigned int index : outline.edges) {
        Check(index < outline.points.size());
    }
    Triangulate(outline);
    return 0;
}
