#include "tessellate/MonotoneTriangulation.h"

#include "tessellate/RadixSort.h"
#include "tessellate/SweepStatus.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <utility>

namespace vk::svg::impl {
namespace {

constexpr uint32_t kNone = 0xFFFFFFFFu;

// The sweep's copy of a vertex: coordinates stay within +-2^29, and half
// the size means more of the status and the vertices stay in cache.
struct Point32 {
    int32_t x = 0;
    int32_t y = 0;
};

inline bool operator==(const Point32& a, const Point32& b) { return a.x == b.x && a.y == b.y; }

// Positive when c lies left of the line from a to b.
template <class P> int64_t Orient(const P& a, const P& b, const P& c)
{
    return (int64_t(b.x) - a.x) * (int64_t(c.y) - a.y) - (int64_t(b.y) - a.y) * (int64_t(c.x) - a.x);
}

template <class P> bool SweepLess(const P& a, const P& b) { return a.y < b.y || (a.y == b.y && a.x < b.x); }

enum class Side : uint8_t { None, Left, Right };

struct Edge {
    uint32_t lo = 0; // earlier in sweep order
    uint32_t hi = 0;
    int32_t delta = 0;     // winding change when crossing from left to right
    int32_t winding = 0;   // winding number just right of the edge
    bool inside = false;   // the area just right of the edge is covered
    bool boundary = false; // ... and just left of it is not, or the reverse
};

bool Covers(WindingRule rule, int32_t w)
{
    switch (rule) {
    case WindingRule::EvenOdd:
        return (w & 1) != 0;
    case WindingRule::Positive:
        return w > 0;
    case WindingRule::Negative:
        return w < 0;
    case WindingRule::NonZero:
    default:
        return w != 0;
    }
}

int Sign(int64_t x) { return (x > 0) - (x < 0); }

// A y-monotone piece being triangulated: the reflex chain still waiting for
// a vertex that can see it, all on `side` except possibly the first.
// Most chains are a few vertices long, so they live in the piece itself and
// a step of the sweep touches one cache line for its piece.
class Chain {
public:
    size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }
    const uint32_t* data() const { return mSize <= kInline ? mInline : mSpill.data(); }
    uint32_t back() const { return data()[mSize - 1]; }
    void clear()
    {
        mSize = 0;
        mSpill.clear();
    }
    void push_back(uint32_t v)
    {
        if (mSize < kInline) {
            mInline[mSize++] = v;
            return;
        }
        if (mSize == kInline) {
            mSpill.assign(mInline, mInline + kInline);
        }
        mSpill.push_back(v);
        ++mSize;
    }
    void pop_back()
    {
        --mSize;
        if (mSize >= kInline) {
            mSpill.pop_back();
            if (mSize == kInline) {
                std::copy(mSpill.begin(), mSpill.end(), mInline);
                mSpill.clear();
            }
        }
    }

private:
    static constexpr size_t kInline = 7;
    uint32_t mInline[kInline] = {};
    uint32_t mSize = 0;
    std::vector<uint32_t> mSpill;
};

struct alignas(64) Piece {
    Chain stack;
    Side side = Side::None;
};
static_assert(sizeof(Piece) == 64, "a piece fills one cache line");

// The covered area right of an active edge. After a merge vertex it holds
// two pieces that share that vertex as their top until the next vertex of
// the area joins both.
struct Region {
    int32_t a = -1;
    int32_t b = -1;
};

// An edge's end points beside it, so that ordering the status reads one
// record per edge instead of chasing edge then vertices.
struct Segment {
    Point32 lo;
    Point32 hi;
};

class Sweep {
public:
    Sweep(const std::vector<GridPoint>& vertices, std::vector<Edge>& edges, std::vector<uint32_t>& triangles,
          WindingRule rule, bool stopAtCrossing)
        : mV(vertices.size()), mEdges(edges), mTriangles(triangles), mRule(rule), mStopAtCrossing(stopAtCrossing),
          mWhere(edges.size(), kEnd)
    {
        mStatus.Reserve(edges.size());
        for (size_t i = 0; i < vertices.size(); ++i) {
            mV[i] = {static_cast<int32_t>(vertices[i].x), static_cast<int32_t>(vertices[i].y)};
        }
    }

    // False when the edges crossed or the bookkeeping went wrong.
    bool Run();
    bool Crossed() const { return mCrossed; }
    bool HasInnerEdges() const { return mInnerEdges; }

private:
    // The edge of a status node with what the sweep reads of it while it is
    // active, its end points, the winding number right of it and the area
    // there, so that a descent or a look at a neighbour loads one record. A
    // node may be handed over to an edge that takes exactly its place in the
    // order (one ending at a vertex, the next one starting there), which
    // saves an erase and an insert.
    struct StatusKey {
        Segment seg;
        uint32_t e;
        int32_t winding;
        Region region;
    };
    using Status = SweepStatus<StatusKey>;
    static constexpr uint32_t kEnd = Status::kNil;

    // The first active edge that `at` is not right of.
    uint32_t Locate(const Point32& at) const
    {
        return mStatus.LowerBound([&](const StatusKey& k) { return Orient(k.seg.lo, k.seg.hi, at) < 0; });
    }

    // Field by field: a temporary record would cost a stalled copy.
    void SetKey(uint32_t h, uint32_t e, Region region)
    {
        StatusKey& k = mStatus[h];
        k.seg = mSeg[e];
        k.e = e;
        k.winding = mEdges[e].winding;
        k.region = region;
    }

    int64_t Orient3(uint32_t e, uint32_t v) const { return Orient(mSeg[e].lo, mSeg[e].hi, mV[v]); }

    // Neighbours in the status that cross or overlap: the first crossing in
    // sweep order always shows up between neighbours (Shamos and Hoey). A
    // vertex on the other edge is no crossing; its event cuts the edge.
    void CheckPair(uint32_t a, uint32_t b)
    {
        if (a == kEnd || b == kEnd) {
            return;
        }
        const Segment& sa = mStatus[a].seg;
        const Segment& sb = mStatus[b].seg;
        const int o1 = Sign(Orient(sa.lo, sa.hi, sb.lo));
        const int o2 = Sign(Orient(sa.lo, sa.hi, sb.hi));
        if (o1 * o2 > 0) {
            return;
        }
        const int o3 = Sign(Orient(sb.lo, sb.hi, sa.lo));
        const int o4 = Sign(Orient(sb.lo, sb.hi, sa.hi));
        if ((o1 * o2 < 0 && o3 * o4 < 0) || (o1 == 0 && o2 == 0 && o3 == 0 && o4 == 0)) {
            // A rounded touch, which the event at the vertex will cut.
            const uint32_t ia = mStatus[a].e;
            const uint32_t ib = mStatus[b].e;
            const Edge& ea = mEdges[ia];
            const Edge& eb = mEdges[ib];
            const bool touch = Near(ia, eb.lo) || Near(ia, eb.hi) || Near(ib, ea.lo) || Near(ib, ea.hi);
            mCrossed = mCrossed || !touch;
        }
    }

    // Clipper rounds the crossings it makes to the grid, so a vertex that
    // lay on an edge of another ring can end up a fraction of a unit off it,
    // which would cross. Within that fraction the edge is cut at the vertex.
    bool Near(uint32_t e, uint32_t v) const
    {
        if (!mSnap) {
            return false;
        }
        const Segment& s = mSeg[e];
        const double dx = double(s.hi.x - s.lo.x);
        const double dy = double(s.hi.y - s.lo.y);
        const double o = double(Orient3(e, v));
        return 2.0 * o * o <= dx * dx + dy * dy;
    }

    void Emit(uint32_t a, uint32_t b, uint32_t c)
    {
        const int64_t o = Orient(mV[a], mV[b], mV[c]);
        if (o > 0) {
            mTriangles.insert(mTriangles.end(), {a, b, c});
        } else if (o < 0) {
            mConsistent = false;
        }
    }

    int32_t NewPiece(uint32_t v)
    {
        int32_t id;
        if (!mFree.empty()) {
            id = mFree.back();
            mFree.pop_back();
        } else {
            id = static_cast<int32_t>(mPieces.size());
            mPieces.emplace_back();
        }
        Piece& p = mPieces[size_t(id)];
        p.stack.clear();
        p.stack.push_back(v);
        p.side = Side::None;
        return id;
    }

    // Triangles between w and a chain on `side`, the chain ordered upwards.
    void Fan(const Chain& stack, Side side, uint32_t w)
    {
        const uint32_t* chain = stack.data();
        for (size_t i = 0; i + 1 < stack.size(); ++i) {
            if (side == Side::Right) {
                Emit(chain[i], chain[i + 1], w);
            } else {
                Emit(chain[i + 1], chain[i], w);
            }
        }
    }

    void Add(int32_t id, uint32_t w, Side s)
    {
        Piece& p = mPieces[size_t(id)];
        if (p.stack.back() == w) {
            return;
        }
        if (p.stack.size() == 1) {
            p.stack.push_back(w);
            p.side = s;
            return;
        }
        if (p.side != s) {
            Fan(p.stack, p.side, w);
            const uint32_t top = p.stack.back();
            p.stack.clear();
            p.stack.push_back(top);
            p.stack.push_back(w);
            p.side = s;
            return;
        }
        uint32_t last = p.stack.back();
        p.stack.pop_back();
        while (!p.stack.empty()) {
            const uint32_t next = p.stack.back();
            const bool convex =
                s == Side::Left ? Orient(mV[w], mV[last], mV[next]) > 0 : Orient(mV[next], mV[last], mV[w]) > 0;
            if (!convex) {
                break;
            }
            if (s == Side::Left) {
                Emit(w, last, next);
            } else {
                Emit(next, last, w);
            }
            last = next;
            p.stack.pop_back();
        }
        p.stack.push_back(last);
        p.stack.push_back(w);
    }

    void Finish(int32_t id, uint32_t w)
    {
        Piece& p = mPieces[size_t(id)];
        if (p.stack.back() != w) {
            Fan(p.stack, p.side == Side::None ? Side::Left : p.side, w);
        }
        p.stack.clear();
        mFree.push_back(id);
    }

    bool Inside(const StatusKey& k) const { return Covers(mRule, k.winding); }

    // The area right of an active edge, created at v when the bookkeeping
    // lost it.
    Region Take(StatusKey& k, uint32_t v)
    {
        Region r = k.region;
        k.region = Region{};
        if (r.a < 0) {
            mConsistent = false;
            r.a = NewPiece(v);
        }
        return r;
    }

    // v on the left boundary of the area; returns the piece that goes on.
    int32_t OnLeft(Region r, uint32_t v)
    {
        if (r.b >= 0) {
            Finish(r.a, v);
            Add(r.b, v, Side::Left);
            return r.b;
        }
        Add(r.a, v, Side::Left);
        return r.a;
    }

    int32_t OnRight(Region r, uint32_t v)
    {
        if (r.b >= 0) {
            Finish(r.b, v);
            Add(r.a, v, Side::Right);
            return r.a;
        }
        Add(r.a, v, Side::Right);
        return r.a;
    }

    void End(Region r, uint32_t v)
    {
        Finish(r.a, v);
        if (r.b >= 0) {
            Finish(r.b, v);
        }
    }

    // v inside the area starts edges upwards: the area splits in two along
    // the diagonal from v to the highest vertex seen in it.
    std::pair<int32_t, int32_t> Split(Region r, uint32_t v)
    {
        if (r.b >= 0) {
            Add(r.a, v, Side::Right);
            Add(r.b, v, Side::Left);
            return {r.a, r.b};
        }
        const Piece& p = mPieces[size_t(r.a)];
        const uint32_t top = p.stack.back();
        if (p.side == Side::Right) {
            const int32_t other = NewPiece(top);
            Add(r.a, v, Side::Right);
            Add(other, v, Side::Left);
            return {r.a, other};
        }
        const int32_t other = NewPiece(top);
        Add(other, v, Side::Right);
        Add(r.a, v, Side::Left);
        return {other, r.a};
    }

    void Event(uint32_t v);

    std::vector<Point32> mV;
    std::vector<Edge>& mEdges;
    std::vector<uint32_t>& mTriangles;
    WindingRule mRule;
    bool mStopAtCrossing;
    bool mSnap = !mStopAtCrossing;
    bool mCrossed = false;
    bool mInnerEdges = false;
    std::vector<Segment> mSeg;
    Status mStatus;
    std::vector<uint32_t> mWhere;
    std::vector<Piece> mPieces;
    std::vector<int32_t> mFree;
    bool mConsistent = true;

    // Edges by lower and by upper vertex (compressed rows).
    // Edges by lower vertex (the caller's order) and by upper vertex.
    std::vector<uint32_t> upStart, downStart, down;
    std::vector<uint32_t> mDownBlock;
    std::vector<uint32_t> mDownNodes;
    std::vector<Region> mUpRegion;
    std::vector<uint32_t> mUps;
    std::vector<char> mInBlock;
};

void Sweep::Event(uint32_t v)
{
    mUps.resize(upStart[v + 1] - upStart[v]);
    std::iota(mUps.begin(), mUps.end(), upStart[v]);
    const auto downBegin = down.begin() + downStart[v];
    const auto downEnd = down.begin() + downStart[v + 1];

    // The edges that end at v, or pass through it, are neighbours in the
    // status; find them around any one of them or around v's position.
    const Point32& at = mV[v];
    const auto meets = [&](uint32_t h) {
        const StatusKey& k = mStatus[h];
        return k.seg.hi == at || Orient(k.seg.lo, k.seg.hi, at) == 0 || Near(k.e, v);
    };
    const auto previous = [&](uint32_t h) { return h == kEnd ? mStatus.Last() : mStatus.Prev(h); };
    uint32_t first = downBegin != downEnd ? mWhere[*downBegin] : Locate(at);
    uint32_t last = first;
    if (first == kEnd || !meets(first)) {
        last = previous(first);
        if (last == kEnd || !meets(last)) {
            last = first;
            first = kEnd;
        } else {
            first = last;
        }
    }
    mDownBlock.clear();
    mDownNodes.clear();
    uint32_t leftH = kEnd;
    uint32_t rightH = kEnd;
    if (first != kEnd) {
        leftH = mStatus.Prev(first);
        while (leftH != kEnd && meets(leftH)) {
            first = leftH;
            leftH = mStatus.Prev(first);
        }
        rightH = mStatus.Next(last);
        while (rightH != kEnd && meets(rightH)) {
            last = rightH;
            rightH = mStatus.Next(last);
        }
        for (uint32_t h = first; h != rightH; h = mStatus.Next(h)) {
            StatusKey& key = mStatus[h];
            uint32_t e = key.e;
            if (!(key.seg.hi == at)) {
                // v touches the edge inside: cut it there. The lower part
                // takes a new id and the edge's node, with the area right of
                // it; the upper part keeps the id, so that its upper end
                // still finds it.
                const auto f = static_cast<uint32_t>(mEdges.size());
                mEdges.push_back(mEdges[e]);
                mEdges.back().hi = v;
                mSeg.push_back({mSeg[e].lo, mV[v]});
                mWhere.push_back(h);
                mInBlock.push_back(0);
                mEdges[e].lo = v;
                mSeg[e].lo = mV[v];
                mUps.push_back(e);
                key.seg = mSeg[f];
                key.e = f;
                e = f;
            }
            mInBlock[e] = 1;
            mDownBlock.push_back(e);
            mDownNodes.push_back(h);
        }
        // Edges that end here but sit elsewhere in the status only arise from
        // crossing input; close what they bound and drop them.
        for (auto it = downBegin; it != downEnd; ++it) {
            if (!mInBlock[*it]) {
                mConsistent = false;
                StatusKey& key = mStatus[mWhere[*it]];
                if (Inside(key) && key.region.a >= 0) {
                    End(Take(key, v), v);
                }
                mStatus.Erase(mWhere[*it]);
            }
        }
    } else {
        rightH = last;
        leftH = previous(rightH);
    }
    if (mUps.size() > 1) {
        std::sort(mUps.begin(), mUps.end(), [&](uint32_t a, uint32_t b) {
            const int64_t o = Orient(mV[v], mSeg[a].hi, mSeg[b].hi);
            return o != 0 ? o < 0 : a < b;
        });
    }

    const size_t k = mDownBlock.size();
    const size_t m = mUps.size();
    if (k == 0 && m == 0) {
        return; // every edge here cancelled out
    }
    // Nothing is inserted before the last use of `left`.
    StatusKey* left = leftH == kEnd ? nullptr : &mStatus[leftH];
    const bool insideLeft = left && Inside(*left);

    // The new edges' winding numbers, counted on from the left.
    int32_t winding = left ? left->winding : 0;
    for (uint32_t e : mUps) {
        const bool before = Covers(mRule, winding);
        winding += mEdges[e].delta;
        mEdges[e].winding = winding;
        mEdges[e].inside = Covers(mRule, winding);
        mEdges[e].boundary = mEdges[e].inside != before;
        mInnerEdges = mInnerEdges || !mEdges[e].boundary;
    }
    mUpRegion.assign(m, Region{});

    for (size_t i = 0; i + 1 < k; ++i) {
        if (Inside(mStatus[mDownNodes[i]])) {
            End(Take(mStatus[mDownNodes[i]], v), v);
        }
    }
    const bool insideBelowRight = k > 0 && Inside(mStatus[mDownNodes[k - 1]]);
    const bool insideAboveRight = m > 0 && mEdges[mUps[m - 1]].inside;

    if (k == 0) {
        if (insideLeft) {
            const Region r = Take(*left, v);
            if (insideAboveRight) {
                const auto parts = Split(r, v);
                left->region = Region{parts.first, -1};
                mUpRegion[m - 1] = Region{parts.second, -1};
            } else {
                left->region = Region{OnRight(r, v), -1};
            }
        } else if (insideAboveRight) {
            mUpRegion[m - 1] = Region{NewPiece(v), -1};
        }
    } else if (m == 0) {
        const int32_t a = insideLeft ? OnRight(Take(*left, v), v) : -1;
        if (insideBelowRight) {
            const Region below = Take(mStatus[mDownNodes[k - 1]], v);
            if (insideLeft) {
                left->region = Region{a, OnLeft(below, v)};
            } else {
                End(below, v);
            }
        } else if (insideLeft) {
            left->region = Region{a, -1};
        }
    } else {
        if (insideLeft) {
            left->region = Region{OnRight(Take(*left, v), v), -1};
        }
        if (insideBelowRight) {
            const Region below = Take(mStatus[mDownNodes[k - 1]], v);
            if (insideAboveRight) {
                mUpRegion[m - 1] = Region{OnLeft(below, v), -1};
            } else {
                End(below, v);
            }
        } else if (insideAboveRight) {
            mUpRegion[m - 1] = Region{NewPiece(v), -1};
        }
    }
    for (size_t j = 0; j + 1 < m; ++j) {
        if (mEdges[mUps[j]].inside) {
            mUpRegion[j] = Region{NewPiece(v), -1};
        }
    }

    // The new edges take the old ones' places in order, reusing their nodes.
    const size_t reuse = std::min(k, m);
    for (size_t j = 0; j < k; ++j) {
        mInBlock[mDownBlock[j]] = 0;
        const uint32_t node = mDownNodes[j];
        if (j < reuse) {
            const uint32_t u = mUps[j];
            mWhere[u] = node;
            SetKey(node, u, mUpRegion[j]);
        } else {
            mStatus.Erase(node);
        }
    }
    for (size_t j = reuse; j < m; ++j) {
        const uint32_t u = mUps[j];
        mWhere[u] = mStatus.InsertBefore(rightH);
        SetKey(mWhere[u], u, mUpRegion[j]);
    }
    if (m == 0) {
        CheckPair(leftH, rightH);
    } else {
        CheckPair(leftH, mWhere[mUps[0]]);
        for (size_t j = 0; j + 1 < m; ++j) {
            CheckPair(mWhere[mUps[j]], mWhere[mUps[j + 1]]);
        }
        CheckPair(mWhere[mUps[m - 1]], rightH);
    }
}

bool Sweep::Run()
{
    // Edges come by lower vertex, except those cut in an earlier sweep.
    const auto byLower = [](const Edge& a, const Edge& b) { return a.lo < b.lo; };
    if (!std::is_sorted(mEdges.begin(), mEdges.end(), byLower)) {
        std::stable_sort(mEdges.begin(), mEdges.end(), byLower);
    }
    const size_t nv = mV.size();
    upStart.assign(nv + 1, 0);
    downStart.assign(nv + 1, 0);
    for (const Edge& e : mEdges) {
        ++upStart[e.lo + 1];
        ++downStart[e.hi + 1];
    }
    for (size_t i = 0; i < nv; ++i) {
        upStart[i + 1] += upStart[i];
        downStart[i + 1] += downStart[i];
    }
    down.resize(mEdges.size());
    {
        std::vector<uint32_t> downFill(downStart.begin(), downStart.end() - 1);
        for (uint32_t e = 0; e < mEdges.size(); ++e) {
            down[downFill[mEdges[e].hi]++] = e;
        }
    }
    mInBlock.assign(mEdges.size(), 0);
    mSeg.resize(mEdges.size());
    for (size_t e = 0; e < mEdges.size(); ++e) {
        mSeg[e] = {mV[mEdges[e].lo], mV[mEdges[e].hi]};
    }
    const auto n = static_cast<uint32_t>(mV.size());
    for (uint32_t v = 0; v < n && !(mCrossed && mStopAtCrossing); ++v) {
        // A large status lives outside the first-level cache: start loading
        // the node that a coming event looks up first.
        // Three events ahead the edge's handle, two ahead its node.
        const auto firstDown = [&](uint32_t u) {
            return u < n && downStart[u] != downStart[u + 1] ? down[downStart[u]] : kNone;
        };
        if (const uint32_t e = firstDown(v + 3); e != kNone) {
            __builtin_prefetch(&mWhere[e]);
        }
        if (const uint32_t e = firstDown(v + 2); e != kNone && mWhere[e] != kEnd) {
            __builtin_prefetch(mStatus.Address(mWhere[e]));
        }
        Event(v);
    }
    return mConsistent && !mCrossed && mStatus.Empty();
}

} // namespace

void TriangulateRings(const RingSet& rings, WindingRule rule, bool stopAtCrossing, RingTriangulation& out)
{
    out.vertices.clear();
    out.indices.clear();
    out.consistent = true;
    out.crossed = false;

    // One vertex per position, numbered in sweep order: y, then x, packed
    // into one key from the bounding box's corner.
    const size_t total = rings.points.size();
    if (total == 0) {
        return;
    }
    int64_t minX = rings.points[0].x;
    int64_t maxX = minX;
    int64_t minY = rings.points[0].y;
    for (const GridPoint& p : rings.points) {
        minX = std::min(minX, p.x);
        maxX = std::max(maxX, p.x);
        minY = std::min(minY, p.y);
    }
    int xBits = 0;
    while (xBits < 63 && (uint64_t(maxX - minX) >> xBits) != 0) {
        ++xBits;
    }
    std::vector<KeyedIndex> keyed(total);
    for (size_t i = 0; i < total; ++i) {
        const GridPoint& p = rings.points[i];
        keyed[i] = {(uint64_t(p.y - minY) << xBits) | uint64_t(p.x - minX), static_cast<uint32_t>(i)};
    }
    {
        std::vector<KeyedIndex> scratch;
        RadixSortByKey(keyed, scratch);
    }
    std::vector<uint32_t> vertexOf(total);
    const uint64_t xMask = xBits == 0 ? 0 : ~uint64_t(0) >> (64 - xBits);
    std::vector<GridPoint> vertices;
    vertices.reserve(total);
    for (size_t i = 0; i < total; ++i) {
        if (i == 0 || keyed[i].key != keyed[i - 1].key) {
            // The key holds the point, which saves fetching it.
            const uint64_t key = keyed[i].key;
            vertices.push_back({int64_t(key & xMask) + minX, int64_t(key >> xBits) + minY});
        }
        vertexOf[keyed[i].index] = static_cast<uint32_t>(vertices.size() - 1);
    }
    keyed.clear();
    keyed.shrink_to_fit();

    // Edges from lower to upper vertex, repeats merged into one edge whose
    // winding step is their sum; zero-length edges and zero steps go.
    std::vector<Edge> edges;
    edges.reserve(total);
    uint32_t begin = 0;
    for (const uint32_t end : rings.ends) {
        for (uint32_t i = begin; i < end; ++i) {
            const uint32_t a = vertexOf[i];
            const uint32_t b = vertexOf[i + 1 < end ? i + 1 : begin];
            if (a != b) {
                Edge& e = edges.emplace_back();
                e.lo = std::min(a, b);
                e.hi = std::max(a, b);
                e.delta = a < b ? -1 : 1;
            }
        }
        begin = end;
    }
    vertexOf.clear();
    vertexOf.shrink_to_fit();
    {
        // By lower vertex in linear time, then by upper within each (short)
        // run, which is all that finding repeats needs.
        std::vector<uint32_t> start(vertices.size() + 1, 0);
        for (const Edge& e : edges) {
            ++start[e.lo + 1];
        }
        for (size_t i = 0; i + 1 < start.size(); ++i) {
            start[i + 1] += start[i];
        }
        std::vector<Edge> sorted(edges.size());
        for (const Edge& e : edges) {
            sorted[start[e.lo]++] = e;
        }
        edges.swap(sorted);
        for (size_t i = 0; i < edges.size();) {
            size_t j = i + 1;
            while (j < edges.size() && edges[j].lo == edges[i].lo) {
                ++j;
            }
            if (j - i > 1) {
                std::sort(edges.begin() + std::ptrdiff_t(i), edges.begin() + std::ptrdiff_t(j),
                          [](const Edge& a, const Edge& b) { return a.hi < b.hi; });
            }
            i = j;
        }
    }
    size_t kept = 0;
    for (size_t i = 0; i < edges.size();) {
        size_t j = i;
        int32_t delta = 0;
        while (j < edges.size() && edges[j].lo == edges[i].lo && edges[j].hi == edges[i].hi) {
            delta += edges[j].delta;
            ++j;
        }
        if (delta != 0) {
            edges[kept] = edges[i];
            edges[kept++].delta = delta;
        }
        i = j;
    }
    edges.resize(kept);
    if (edges.empty()) {
        return;
    }

    std::vector<uint32_t> triangles;
    triangles.reserve(3 * (edges.size() + 2 * rings.ends.size()));
    bool inner = false;
    {
        Sweep sweep(vertices, edges, triangles, rule, stopAtCrossing);
        out.consistent = sweep.Run();
        out.crossed = sweep.Crossed();
        inner = sweep.HasInnerEdges();
    }
    if (out.crossed && stopAtCrossing) {
        return;
    }
    if (inner && !out.crossed) {
        // Edges with cover on both sides or on neither only add vertices to
        // the mesh: drop them and cut the rest again, now by parity.
        edges.erase(std::remove_if(edges.begin(), edges.end(), [](const Edge& e) { return !e.boundary; }), edges.end());
        for (Edge& e : edges) {
            e.delta = 1;
        }
        triangles.clear();
        Sweep sweep(vertices, edges, triangles, WindingRule::EvenOdd, false);
        out.consistent = sweep.Run();
    }
    const size_t nv = vertices.size();

    // Keep only the vertices the triangles use; usually that is all of them.
    std::vector<char> used(nv, 0);
    for (const uint32_t index : triangles) {
        used[index] = 1;
    }
    if (std::find(used.begin(), used.end(), 0) == used.end()) {
        out.vertices = std::move(vertices);
    } else {
        std::vector<uint32_t> remap(nv, kNone);
        uint32_t next = 0;
        out.vertices.reserve(nv);
        for (size_t i = 0; i < nv; ++i) {
            if (used[i]) {
                remap[i] = next++;
                out.vertices.push_back(vertices[i]);
            }
        }
        for (uint32_t& index : triangles) {
            index = remap[index];
        }
    }
    out.indices = std::move(triangles);
}

} // namespace vk::svg::impl
