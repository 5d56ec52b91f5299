#ifndef VKSVG_TESSELLATE_SWEEPSTATUS_H
#define VKSVG_TESSELLATE_SWEEPSTATUS_H

// The sweep's ordered list of active edges. The sweep always knows where a
// new edge goes (just before the first edge right of its vertex), so
// insertion is positional and only the search for a lone start vertex
// compares. A red-black tree keeps that search logarithmic; its nodes are
// threaded by prev/next so that a neighbour is one load rather than a climb
// through the tree, live in one array linked by 32-bit indices (a handle
// stays valid until its node is erased, even when the array grows), and
// each fills one cache line.

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vk::svg::impl {

template <class T> class SweepStatus {
public:
    static constexpr uint32_t kNil = 0xFFFFFFFFu;

    bool Empty() const { return mRoot == kNil; }
    uint32_t First() const { return mFirst; }
    uint32_t Last() const { return mLast; }
    uint32_t Prev(uint32_t h) const { return mNodes[h].prev; }
    uint32_t Next(uint32_t h) const { return mNodes[h].next; }
    T& operator[](uint32_t h) { return mNodes[h].value; }
    const T& operator[](uint32_t h) const { return mNodes[h].value; }
    const void* Address(uint32_t h) const { return &mNodes[h]; }
    void Reserve(std::size_t n) { mNodes.reserve(n); }

    // The first node for which before(value) is false, or kNil.
    template <class Before> uint32_t LowerBound(Before before) const
    {
        uint32_t x = mRoot;
        uint32_t result = kNil;
        while (x != kNil) {
            // Both children start loading while this node is compared.
            const Node& node = mNodes[x];
            if (node.left != kNil) {
                __builtin_prefetch(&mNodes[node.left]);
            }
            if (node.right != kNil) {
                __builtin_prefetch(&mNodes[node.right]);
            }
            if (before(node.value)) {
                x = mNodes[x].right;
            } else {
                result = x;
                x = mNodes[x].left;
            }
        }
        return result;
    }

    // Makes a node just before `at`, or last for kNil, and returns its
    // handle; the caller fills in its value.
    uint32_t InsertBefore(uint32_t at)
    {
        const uint32_t n = NewNode();
        const uint32_t before = at == kNil ? mLast : mNodes[at].prev;
        Node& node = mNodes[n];
        node.prev = before;
        node.next = at;
        (before == kNil ? mFirst : mNodes[before].next) = n;
        (at == kNil ? mLast : mNodes[at].prev) = n;
        if (mRoot == kNil) {
            mRoot = n;
        } else if (at != kNil && mNodes[at].left == kNil) {
            Attach(n, at, true);
        } else {
            // The node before `at` is the rightmost of at's left subtree (or
            // the last node), so its right link is free.
            Attach(n, before, false);
        }
        InsertFixup(n);
        return n;
    }

    void Erase(uint32_t z)
    {
        Node& zn = mNodes[z];
        (zn.prev == kNil ? mFirst : mNodes[zn.prev].next) = zn.next;
        (zn.next == kNil ? mLast : mNodes[zn.next].prev) = zn.prev;

        uint32_t x;
        uint32_t xParent;
        bool removedRed;
        if (zn.left == kNil || zn.right == kNil) {
            x = zn.left == kNil ? zn.right : zn.left;
            xParent = zn.parent;
            removedRed = zn.red;
            if (x != kNil) {
                mNodes[x].parent = zn.parent;
            }
            Replace(z, x);
        } else {
            // The successor (leftmost of the right subtree) takes z's place
            // and colour; the fix-up then concerns the successor's old spot.
            const uint32_t y = zn.next;
            Node& yn = mNodes[y];
            x = yn.right;
            removedRed = yn.red;
            if (y == zn.right) {
                xParent = y;
            } else {
                xParent = yn.parent;
                if (x != kNil) {
                    mNodes[x].parent = yn.parent;
                }
                mNodes[yn.parent].left = x;
                yn.right = zn.right;
                mNodes[zn.right].parent = y;
            }
            yn.left = zn.left;
            mNodes[zn.left].parent = y;
            Replace(z, y);
            yn.parent = zn.parent;
            yn.red = zn.red;
        }
        if (!removedRed) {
            EraseFixup(x, xParent);
        }
        zn.left = mFree;
        mFree = z;
    }

private:
    struct alignas(64) Node {
        T value;
        uint32_t left;
        uint32_t right;
        uint32_t parent;
        uint32_t prev;
        uint32_t next;
        bool red;
    };

    bool Red(uint32_t h) const { return h != kNil && mNodes[h].red; }

    uint32_t NewNode()
    {
        uint32_t n = mFree;
        if (n != kNil) {
            mFree = mNodes[n].left;
        } else {
            n = static_cast<uint32_t>(mNodes.size());
            mNodes.emplace_back();
        }
        Node& node = mNodes[n];
        node.left = kNil;
        node.right = kNil;
        node.parent = kNil;
        node.red = true;
        return n;
    }

    void Attach(uint32_t n, uint32_t parent, bool left)
    {
        (left ? mNodes[parent].left : mNodes[parent].right) = n;
        mNodes[n].parent = parent;
    }

    // Puts `by` (possibly kNil) where `z` hangs from its parent.
    void Replace(uint32_t z, uint32_t by)
    {
        const uint32_t p = mNodes[z].parent;
        if (p == kNil) {
            mRoot = by;
        } else if (mNodes[p].left == z) {
            mNodes[p].left = by;
        } else {
            mNodes[p].right = by;
        }
    }

    void RotateLeft(uint32_t x)
    {
        const uint32_t y = mNodes[x].right;
        mNodes[x].right = mNodes[y].left;
        if (mNodes[y].left != kNil) {
            mNodes[mNodes[y].left].parent = x;
        }
        mNodes[y].parent = mNodes[x].parent;
        Replace(x, y);
        mNodes[y].left = x;
        mNodes[x].parent = y;
    }

    void RotateRight(uint32_t x)
    {
        const uint32_t y = mNodes[x].left;
        mNodes[x].left = mNodes[y].right;
        if (mNodes[y].right != kNil) {
            mNodes[mNodes[y].right].parent = x;
        }
        mNodes[y].parent = mNodes[x].parent;
        Replace(x, y);
        mNodes[y].right = x;
        mNodes[x].parent = y;
    }

    void InsertFixup(uint32_t z)
    {
        while (Red(mNodes[z].parent)) {
            const uint32_t p = mNodes[z].parent;
            const uint32_t g = mNodes[p].parent;
            const bool pLeft = mNodes[g].left == p;
            const uint32_t uncle = pLeft ? mNodes[g].right : mNodes[g].left;
            if (Red(uncle)) {
                mNodes[p].red = false;
                mNodes[uncle].red = false;
                mNodes[g].red = true;
                z = g;
                continue;
            }
            if (pLeft) {
                if (mNodes[p].right == z) {
                    RotateLeft(p);
                    z = p;
                }
                mNodes[mNodes[z].parent].red = false;
                mNodes[g].red = true;
                RotateRight(g);
            } else {
                if (mNodes[p].left == z) {
                    RotateRight(p);
                    z = p;
                }
                mNodes[mNodes[z].parent].red = false;
                mNodes[g].red = true;
                RotateLeft(g);
            }
        }
        mNodes[mRoot].red = false;
    }

    // x (possibly kNil) below xParent lacks one black on its paths.
    void EraseFixup(uint32_t x, uint32_t xParent)
    {
        while (x != mRoot && !Red(x)) {
            if (mNodes[xParent].left == x) {
                uint32_t w = mNodes[xParent].right;
                if (Red(w)) {
                    mNodes[w].red = false;
                    mNodes[xParent].red = true;
                    RotateLeft(xParent);
                    w = mNodes[xParent].right;
                }
                if (!Red(mNodes[w].left) && !Red(mNodes[w].right)) {
                    mNodes[w].red = true;
                    x = xParent;
                    xParent = mNodes[x].parent;
                    continue;
                }
                if (!Red(mNodes[w].right)) {
                    mNodes[mNodes[w].left].red = false;
                    mNodes[w].red = true;
                    RotateRight(w);
                    w = mNodes[xParent].right;
                }
                mNodes[w].red = mNodes[xParent].red;
                mNodes[xParent].red = false;
                mNodes[mNodes[w].right].red = false;
                RotateLeft(xParent);
            } else {
                uint32_t w = mNodes[xParent].left;
                if (Red(w)) {
                    mNodes[w].red = false;
                    mNodes[xParent].red = true;
                    RotateRight(xParent);
                    w = mNodes[xParent].left;
                }
                if (!Red(mNodes[w].left) && !Red(mNodes[w].right)) {
                    mNodes[w].red = true;
                    x = xParent;
                    xParent = mNodes[x].parent;
                    continue;
                }
                if (!Red(mNodes[w].left)) {
                    mNodes[mNodes[w].right].red = false;
                    mNodes[w].red = true;
                    RotateLeft(w);
                    w = mNodes[xParent].left;
                }
                mNodes[w].red = mNodes[xParent].red;
                mNodes[xParent].red = false;
                mNodes[mNodes[w].left].red = false;
                RotateRight(xParent);
            }
            x = mRoot;
        }
        if (x != kNil) {
            mNodes[x].red = false;
        }
    }

    std::vector<Node> mNodes;
    uint32_t mFree = kNil;
    uint32_t mRoot = kNil;
    uint32_t mFirst = kNil;
    uint32_t mLast = kNil;
};

} // namespace vk::svg::impl

#endif
