#include "tessellate/MonotoneTriangulation.h"

#include "tessellate/RadixSort.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>
#include <set>
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
struct Piece {
    std::vector<uint32_t> stack;
    Side side = Side::None;
};

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

// Fixed-size blocks for the status tree's nodes, recycled through a free
// list: a sweep inserts and erases a node at nearly every event.
class NodePool {
public:
    NodePool() = default;
    NodePool(const NodePool&) = delete;
    NodePool& operator=(const NodePool&) = delete;
    ~NodePool()
    {
        for (void* chunk : mChunks) {
            ::operator delete(chunk, std::align_val_t(kLine));
        }
    }

    void* Take(size_t size)
    {
        if (mFree) {
            void* block = mFree;
            mFree = *static_cast<void**>(mFree);
            return block;
        }
        const size_t stride = std::max(RoundUp(size), sizeof(void*));
        if (mLeft < stride) {
            const size_t bytes = stride * std::max<size_t>(64, mBlocks);
            mNext = static_cast<char*>(::operator new(bytes, std::align_val_t(kLine)));
            mChunks.push_back(mNext);
            mLeft = bytes;
        }
        void* block = mNext;
        mNext += stride;
        mLeft -= stride;
        ++mBlocks;
        return block;
    }

    void Give(void* block)
    {
        *static_cast<void**>(block) = mFree;
        mFree = block;
    }

private:
    // Chunks start on a cache line, and a node of a line's size fills one.
    static constexpr size_t kLine = 64;
    static size_t RoundUp(size_t size)
    {
        return (size + alignof(std::max_align_t) - 1) & ~(alignof(std::max_align_t) - 1);
    }

    std::vector<void*> mChunks;
    void* mFree = nullptr;
    char* mNext = nullptr;
    size_t mLeft = 0;
    size_t mBlocks = 0;
};

template <class T> struct PoolAllocator {
    using value_type = T;
    NodePool* pool;

    explicit PoolAllocator(NodePool* p) : pool(p) {}
    template <class U> PoolAllocator(const PoolAllocator<U>& other) : pool(other.pool) {}

    T* allocate(size_t n)
    {
        if (n != 1) {
            return static_cast<T*>(::operator new(n * sizeof(T)));
        }
        return static_cast<T*>(pool->Take(sizeof(T)));
    }
    void deallocate(T* p, size_t n)
    {
        if (n != 1) {
            ::operator delete(p);
        } else {
            pool->Give(p);
        }
    }
    template <class U> bool operator==(const PoolAllocator<U>& other) const { return pool == other.pool; }
    template <class U> bool operator!=(const PoolAllocator<U>& other) const { return pool != other.pool; }
};

class Sweep {
public:
    Sweep(const std::vector<GridPoint>& vertices, std::vector<Edge>& edges, std::vector<uint32_t>& triangles,
          WindingRule rule, bool stopAtCrossing)
        : mV(vertices.size()), mEdges(edges), mTriangles(triangles), mRule(rule), mStopAtCrossing(stopAtCrossing),
          mStatus(EdgeLess{this}, PoolAllocator<StatusKey>(&mPool)), mWhere(edges.size())
    {
        for (size_t i = 0; i < vertices.size(); ++i) {
            mV[i] = {static_cast<int32_t>(vertices[i].x), static_cast<int32_t>(vertices[i].y)};
        }
    }

    // False when the edges crossed or the bookkeeping went wrong.
    bool Run();
    bool Crossed() const { return mCrossed; }
    bool HasInnerEdges() const { return mInnerEdges; }

private:
    struct Probe {
        uint32_t vertex;
    };

    // The edge of a status node with what the sweep reads of it while it is
    // active, its end points, the winding number right of it and the area
    // there, so that a descent or a look at a neighbour loads one record. A
    // node may be handed over to an edge that takes exactly its place in the
    // order (one ending at a vertex, the next one starting there), which
    // saves an erase and an insert.
    struct StatusKey {
        mutable Segment seg;
        mutable uint32_t e;
        mutable int32_t winding;
        mutable Region region;
    };

    struct EdgeLess {
        using is_transparent = void;
        const Sweep* s;
        bool operator()(const StatusKey& a, const StatusKey& b) const { return EdgeLeftOf(a, b); }
        bool operator()(const StatusKey& k, Probe p) const { return Orient(k.seg.lo, k.seg.hi, s->mV[p.vertex]) < 0; }
        bool operator()(Probe p, const StatusKey& k) const { return Orient(k.seg.lo, k.seg.hi, s->mV[p.vertex]) > 0; }
    };
    using Status = std::set<StatusKey, EdgeLess, PoolAllocator<StatusKey>>;

    int64_t Orient3(uint32_t e, uint32_t v) const { return Orient(mSeg[e].lo, mSeg[e].hi, mV[v]); }

    // Order of two edges that both cross the sweep line, tested where the
    // later of the two starts; they do not cross, so it holds for both lives.
    static bool EdgeLeftOf(const StatusKey& a, const StatusKey& b)
    {
        if (a.e == b.e) {
            return false;
        }
        const Segment& sa = a.seg;
        const Segment& sb = b.seg;
        int64_t o = 0;
        if (sa.lo == sb.lo) {
            o = Orient(sa.lo, sa.hi, sb.hi);
        } else if (SweepLess(sa.lo, sb.lo)) {
            o = Orient(sa.lo, sa.hi, sb.lo);
            if (o == 0) {
                o = Orient(sa.lo, sa.hi, sb.hi);
            }
        } else {
            o = -Orient(sb.lo, sb.hi, sa.lo);
            if (o == 0) {
                o = -Orient(sb.lo, sb.hi, sa.hi);
            }
        }
        return o != 0 ? o < 0 : a.e < b.e;
    }

    // Neighbours in the status that cross or overlap: the first crossing in
    // sweep order always shows up between neighbours (Shamos and Hoey). A
    // vertex on the other edge is no crossing; its event cuts the edge.
    void CheckPair(Status::iterator a, Status::iterator b)
    {
        if (a == mStatus.end() || b == mStatus.end()) {
            return;
        }
        const Segment& sa = a->seg;
        const Segment& sb = b->seg;
        const int o1 = Sign(Orient(sa.lo, sa.hi, sb.lo));
        const int o2 = Sign(Orient(sa.lo, sa.hi, sb.hi));
        if (o1 * o2 > 0) {
            return;
        }
        const int o3 = Sign(Orient(sb.lo, sb.hi, sa.lo));
        const int o4 = Sign(Orient(sb.lo, sb.hi, sa.hi));
        if ((o1 * o2 < 0 && o3 * o4 < 0) || (o1 == 0 && o2 == 0 && o3 == 0 && o4 == 0)) {
            // A rounded touch, which the event at the vertex will cut.
            const Edge& ea = mEdges[a->e];
            const Edge& eb = mEdges[b->e];
            const bool touch = Near(a->e, eb.lo) || Near(a->e, eb.hi) || Near(b->e, ea.lo) || Near(b->e, ea.hi);
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
        p.stack.assign(1, v);
        p.side = Side::None;
        return id;
    }

    // Triangles between w and a chain on `side`, the chain ordered upwards.
    void Fan(const std::vector<uint32_t>& chain, Side side, uint32_t w)
    {
        for (size_t i = 0; i + 1 < chain.size(); ++i) {
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
            p.stack.assign({top, w});
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
    Region Take(const StatusKey& k, uint32_t v)
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
    NodePool mPool;
    Status mStatus;
    std::vector<Status::iterator> mWhere;
    std::vector<Piece> mPieces;
    std::vector<int32_t> mFree;
    bool mConsistent = true;

    // Edges by lower and by upper vertex (compressed rows).
    std::vector<uint32_t> upStart, up, downStart, down;
    std::vector<uint32_t> mDownBlock;
    std::vector<Status::iterator> mDownNodes;
    std::vector<Region> mUpRegion;
    std::vector<uint32_t> mUps;
    std::vector<char> mInBlock;
};

void Sweep::Event(uint32_t v)
{
    mUps.assign(up.begin() + upStart[v], up.begin() + upStart[v + 1]);
    const auto downBegin = down.begin() + downStart[v];
    const auto downEnd = down.begin() + downStart[v + 1];

    // The edges that end at v, or pass through it, are neighbours in the
    // status; find them around any one of them or around v's position.
    const Point32& at = mV[v];
    const auto meets = [&](const StatusKey& k) {
        return k.seg.hi == at || Orient(k.seg.lo, k.seg.hi, at) == 0 || Near(k.e, v);
    };
    Status::iterator first = downBegin != downEnd ? mWhere[*downBegin] : mStatus.lower_bound(Probe{v});
    Status::iterator last = first;
    if (first == mStatus.end() || !meets(*first)) {
        last = first == mStatus.begin() ? mStatus.end() : std::prev(first);
        if (last == mStatus.end() || !meets(*last)) {
            last = first;
            first = mStatus.end();
        } else {
            first = last;
        }
    }
    mDownBlock.clear();
    mDownNodes.clear();
    Status::iterator leftIt = mStatus.end();
    Status::iterator rightIt = mStatus.end();
    if (first != mStatus.end()) {
        while (first != mStatus.begin() && meets(*std::prev(first))) {
            --first;
        }
        while (std::next(last) != mStatus.end() && meets(*std::next(last))) {
            ++last;
        }
        rightIt = std::next(last);
        leftIt = first == mStatus.begin() ? mStatus.end() : std::prev(first);
        for (auto it = first; it != rightIt; ++it) {
            uint32_t e = it->e;
            if (!(it->seg.hi == at)) {
                // v touches the edge inside: cut it there. The lower part
                // takes a new id and the edge's node, with the area right of
                // it; the upper part keeps the id, so that its upper end
                // still finds it.
                const auto f = static_cast<uint32_t>(mEdges.size());
                mEdges.push_back(mEdges[e]);
                mEdges.back().hi = v;
                mSeg.push_back({mSeg[e].lo, mV[v]});
                mWhere.push_back(it);
                mInBlock.push_back(0);
                mEdges[e].lo = v;
                mSeg[e].lo = mV[v];
                mUps.push_back(e);
                it->seg = mSeg[f];
                it->e = f;
                e = f;
            }
            mInBlock[e] = 1;
            mDownBlock.push_back(e);
            mDownNodes.push_back(it);
        }
        // Edges that end here but sit elsewhere in the status only arise from
        // crossing input; close what they bound and drop them.
        for (auto it = downBegin; it != downEnd; ++it) {
            if (!mInBlock[*it]) {
                mConsistent = false;
                const StatusKey& key = *mWhere[*it];
                if (Inside(key) && key.region.a >= 0) {
                    End(Take(key, v), v);
                }
                mStatus.erase(mWhere[*it]);
            }
        }
    } else {
        rightIt = last;
        leftIt = rightIt == mStatus.begin() ? mStatus.end() : std::prev(rightIt);
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
    const StatusKey* left = leftIt == mStatus.end() ? nullptr : &*leftIt;
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
        if (Inside(*mDownNodes[i])) {
            End(Take(*mDownNodes[i], v), v);
        }
    }
    const bool insideBelowRight = k > 0 && Inside(*mDownNodes[k - 1]);
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
            const Region below = Take(*mDownNodes[k - 1], v);
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
            const Region below = Take(*mDownNodes[k - 1], v);
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
        const Status::iterator node = mDownNodes[j];
        if (j < reuse) {
            const uint32_t u = mUps[j];
            mWhere[u] = node;
            node->seg = mSeg[u];
            node->e = u;
            node->winding = mEdges[u].winding;
            node->region = mUpRegion[j];
        } else {
            mStatus.erase(node);
        }
    }
    for (size_t j = reuse; j < m; ++j) {
        const uint32_t u = mUps[j];
        mWhere[u] = mStatus.emplace_hint(rightIt, StatusKey{mSeg[u], u, mEdges[u].winding, mUpRegion[j]});
    }
    if (m == 0) {
        CheckPair(leftIt, rightIt);
    } else {
        CheckPair(leftIt, mWhere[mUps[0]]);
        for (size_t j = 0; j + 1 < m; ++j) {
            CheckPair(mWhere[mUps[j]], mWhere[mUps[j + 1]]);
        }
        CheckPair(mWhere[mUps[m - 1]], rightIt);
    }
}

bool Sweep::Run()
{
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
    up.resize(mEdges.size());
    down.resize(mEdges.size());
    {
        std::vector<uint32_t> upFill(upStart.begin(), upStart.end() - 1);
        std::vector<uint32_t> downFill(downStart.begin(), downStart.end() - 1);
        for (uint32_t e = 0; e < mEdges.size(); ++e) {
            up[upFill[mEdges[e].lo]++] = e;
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
        Event(v);
    }
    return mConsistent && !mCrossed && mStatus.empty();
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
    std::vector<GridPoint> vertices;
    vertices.reserve(total);
    for (size_t i = 0; i < total; ++i) {
        if (i == 0 || keyed[i].key != keyed[i - 1].key) {
            vertices.push_back(rings.points[keyed[i].index]);
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
                edges.push_back({std::min(a, b), std::max(a, b), a < b ? -1 : 1, 0, false, false});
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

    // Keep only the vertices the triangles use.
    std::vector<uint32_t> remap(nv, kNone);
    for (uint32_t& index : triangles) {
        if (remap[index] == kNone) {
            remap[index] = 0;
        }
    }
    uint32_t next = 0;
    out.vertices.reserve(nv);
    for (size_t i = 0; i < nv; ++i) {
        if (remap[i] != kNone) {
            remap[i] = next++;
            out.vertices.push_back(vertices[i]);
        }
    }
    for (uint32_t& index : triangles) {
        index = remap[index];
    }
    out.indices = std::move(triangles);
}

} // namespace vk::svg::impl
