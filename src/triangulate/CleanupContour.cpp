#include <svg/Triangulation.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace vk {
namespace {

float FloatFromBits(std::uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// The tolerances work in the unit box of the outline and are pinned to their
// single-precision bit patterns so that every build drops the same edges.
const float kShortEdge = FloatFromBits(0x3A83126Fu);      // 0.001f
const float kCollinearCross = FloatFromBits(0x358637BEu); // 1.0000001e-6f

// Both rewrites of the walk replace every occurrence of one index by another
// over the whole edge list. Done literally that costs a pass over the list per
// dropped point, which is quadratic for finely segmented curves. Instead each
// entry refers to a class of entries that always hold the same index, and a
// rewrite relabels or merges classes (union-find), which gives the very same
// list in near-constant time per rewrite.
class IndexRewriter {
public:
    IndexRewriter(const std::vector<unsigned int>& edges, std::size_t pointCount)
        : mEntryClass(edges), mParent(pointCount), mClassValue(pointCount), mValueClass(pointCount)
    {
        for (std::size_t i = 0; i < pointCount; ++i) {
            mParent[i] = static_cast<unsigned int>(i);
            mClassValue[i] = static_cast<unsigned int>(i);
            mValueClass[i] = static_cast<unsigned int>(i);
        }
    }

    unsigned int valueAt(std::size_t entry) { return mClassValue[find(mEntryClass[entry])]; }

    void replace(unsigned int from, unsigned int to)
    {
        const unsigned int fromClass = mValueClass[from];
        if (from == to || fromClass == kNone) {
            return;
        }
        const unsigned int toClass = mValueClass[to];
        mValueClass[from] = kNone;
        if (toClass == kNone) {
            mClassValue[fromClass] = to;
            mValueClass[to] = fromClass;
        } else {
            mParent[fromClass] = toClass;
        }
    }

private:
    static constexpr unsigned int kNone = ~0u;

    unsigned int find(unsigned int c)
    {
        while (mParent[c] != c) {
            mParent[c] = mParent[mParent[c]];
            c = mParent[c];
        }
        return c;
    }

    std::vector<unsigned int> mEntryClass;
    std::vector<unsigned int> mParent;
    std::vector<unsigned int> mClassValue;
    std::vector<unsigned int> mValueClass;
};

bool IsShort(const Wm4::Vector2<float>& a, const Wm4::Vector2<float>& b)
{
    return std::fabs(b.X() - a.X()) < kShortEdge && std::fabs(b.Y() - a.Y()) < kShortEdge;
}

} // namespace

void CleanupContour(std::vector<Wm4::Vector2<float>>& points, std::vector<unsigned int>& edges)
{
    if (edges.empty() || points.empty() || edges.size() % 2 != 0) {
        return;
    }
    for (unsigned int index : edges) {
        if (index >= points.size()) {
            return;
        }
    }

    // Work on a normalised copy: the caller's coordinates are never touched.
    // A zero extent is deliberately left unguarded; the resulting infinities
    // and NaNs fail every comparison below, so they drop nothing.
    Wm4::Vector2<float> offset(0.0f, 0.0f);
    Wm4::Vector2<float> size(1.0f, 1.0f);
    if (points.size() > 1) {
        Wm4::Vector2<float> lo = points[0];
        Wm4::Vector2<float> hi = points[0];
        for (std::size_t i = 1; i < points.size(); ++i) {
            for (int c = 0; c < 2; ++c) {
                if (points[i][c] < lo[c]) {
                    lo[c] = points[i][c];
                } else if (points[i][c] > hi[c]) {
                    hi[c] = points[i][c];
                }
            }
        }
        offset = lo;
        size = Wm4::Vector2<float>(hi.X() - lo.X(), hi.Y() - lo.Y());
    }
    const float invX = 1.0f / size.X();
    const float invY = 1.0f / size.Y();
    std::vector<Wm4::Vector2<float>> unit;
    unit.reserve(points.size());
    for (const auto& p : points) {
        unit.emplace_back((p.X() - offset.X()) * invX, (p.Y() - offset.Y()) * invY);
    }

    const std::size_t edgeCount = edges.size() / 2;
    IndexRewriter rewriter(edges, points.size());
    std::vector<bool> kept(edgeCount, false);
    bool hasPrevious = false;
    std::size_t previous = 0;
    for (std::size_t k = 0; k < edgeCount; ++k) {
        const unsigned int a = rewriter.valueAt(2 * k);
        const unsigned int b = rewriter.valueAt(2 * k + 1);
        const Wm4::Vector2<float>& pa = unit[a];
        const Wm4::Vector2<float>& pb = unit[b];
        if (IsShort(pa, pb)) {
            rewriter.replace(b, a);
            continue;
        }
        if (hasPrevious && rewriter.valueAt(2 * previous + 1) == a) {
            // Only the magnitude counts: an outline doubling back along its
            // own line merges as well.
            const Wm4::Vector2<float>& p0 = unit[rewriter.valueAt(2 * previous)];
            const float cross = (pa.X() - p0.X()) * (pb.Y() - pa.Y()) - (pa.Y() - p0.Y()) * (pb.X() - pa.X());
            if (std::fabs(cross) < kCollinearCross) {
                rewriter.replace(a, b);
                continue;
            }
        }
        kept[k] = true;
        previous = k;
        hasPrevious = true;
    }

    std::vector<unsigned int> result;
    result.reserve(edges.size());
    for (std::size_t k = 0; k < edgeCount; ++k) {
        if (kept[k]) {
            result.push_back(rewriter.valueAt(2 * k));
            result.push_back(rewriter.valueAt(2 * k + 1));
        }
    }
    // The list only empties when unreferenced points widen the box; there is
    // nothing to close then.
    if (!result.empty() && IsShort(unit[result.back()], unit[result.front()])) {
        result.back() = result.front();
    }
    edges.swap(result);
}

} // namespace vk
