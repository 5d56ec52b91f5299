#ifndef VKSVG_TRIANGULATE_TRAPEZOIDREPRESENTATION_H
#define VKSVG_TRIANGULATE_TRAPEZOIDREPRESENTATION_H

#include <wm4/Wm4Vector2.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace vk::impl {

// Records live by value in the representation's vectors and refer to each
// other by position, so growing a vector never leaves a stale link behind.
using RecordId = std::uint32_t;
inline constexpr RecordId kNoRecord = 0xFFFFFFFFu;

// Throws the one error every broken invariant of the triangulator ends in.
[[noreturn]] void FailTriangulation();

// A list of record ids whose cells are pooled in the representation, so that
// the many short lists (parents of a node, segments at a vertex) cost no
// allocation of their own.
struct IdList {
    RecordId head = kNoRecord;
    RecordId tail = kNoRecord;
};

struct Vertex {
    std::uint64_t index = 0;                    // position of the point in the caller's vector
    const Wm4::Vector2<float>* point = nullptr; // the caller's point
    RecordId yNode = kNoRecord;                 // set once, when the vertex is inserted
    IdList segments;                            // every segment ending here, in insertion order
    // Segments this vertex was found to lie left of (first) or right of
    // (second) while they were threaded past it; later side tests reuse the
    // verdict the structure was built on.
    IdList firstSegments;
    IdList secondSegments;
};

struct Segment {
    std::uint64_t index = 0;
    RecordId upper = kNoRecord; // vertex ids, ordered by the point order
    RecordId lower = kNoRecord;
};

// The neighbours of a trapezoid across its top or bottom edge, left to right.
// A consistent decomposition never has more than two; a third means the
// input broke the structure.
class NeighbourList {
public:
    std::size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }
    RecordId operator[](std::size_t i) const { return mIds[i]; }
    RecordId front() const { return mIds[0]; }
    RecordId back() const { return mIds[mSize - 1]; }
    const RecordId* begin() const { return mIds; }
    const RecordId* end() const { return mIds + mSize; }

    void clear() { mSize = 0; }
    void push_back(RecordId id)
    {
        if (mSize == 2) {
            FailTriangulation();
        }
        mIds[mSize++] = id;
    }
    // Replaces `from` by `to` in place; fails when `from` is not listed.
    void replace(RecordId from, RecordId to);
    // Replaces `from` by the pair `left`, `right` in place.
    void replaceWithPair(RecordId from, RecordId left, RecordId right);

private:
    RecordId mIds[2] = {kNoRecord, kNoRecord};
    std::uint32_t mSize = 0;
};

struct Trapezoid {
    std::uint64_t index = 0;
    RecordId lower = kNoRecord; // bounding vertices; absent while unbounded
    RecordId upper = kNoRecord;
    NeighbourList below;
    NeighbourList above;
    RecordId sides[2] = {kNoRecord, kNoRecord}; // left and right segment; absent while unbounded
    RecordId sink = kNoRecord;
    std::uint64_t depth = ~std::uint64_t(0); // all bits set: not reached by the fill yet
    std::uint64_t region = 0;
};

struct QueryNode {
    enum Kind : std::uint8_t { YNode = 0, XNode = 1, Sink = 2 };

    Kind kind = Sink;
    RecordId item = kNoRecord; // vertex, segment or trapezoid, by kind
    IdList parents;
    // First: above the vertex or left of the segment; second: below or right.
    RecordId children[2] = {kNoRecord, kNoRecord};
    RecordId run = kNoRecord; // y-nodes only: the search tree of y-nodes it belongs to
};

// Seidel's (1991) trapezoidal decomposition of non-crossing segments with its
// point-location DAG. Vertices and segments are inserted in the caller's
// order, never shuffled. Predicates are plain single-precision arithmetic
// with no tolerance; points are totally ordered by y, then x (greater x is
// higher), then by index (smaller index is higher), or coincide when merging.
// Any inconsistency throws std::runtime_error("Shape triangulation failed"),
// after which the structure must not be used any more.
class TrapezoidRepresentation {
public:
    enum class Order { Same, Above, Below };

    // `points` must outlive the representation. With `fastLocation` off,
    // every query walks the DAG node by node from the root; the results are
    // the same, only slower (kept for cross-checking).
    TrapezoidRepresentation(const std::vector<Wm4::Vector2<float>>& points, bool mergeCoincidentPoints,
                            bool fastLocation = true);
    TrapezoidRepresentation(const TrapezoidRepresentation&) = delete;
    TrapezoidRepresentation& operator=(const TrapezoidRepresentation&) = delete;

    // Inserts the vertex unless it (or, when merging, a vertex at the same
    // coordinates) is already in; returns the y-node that stands for it.
    // `neighbour`, an inserted vertex the new one is about to be joined to,
    // only speeds the search up: the outcome is the one of the DAG walk.
    RecordId addPoint(Vertex& vertex, const Vertex* neighbour = nullptr);
    // Threads the segment between the vertices of two y-nodes from addPoint.
    void addSegment(RecordId first, RecordId second);
    // The sink of the trapezoid directly above the lower vertex on the side
    // of the segment to the upper vertex, where threading starts.
    RecordId getStartingTrapezoid(RecordId lowerNode, RecordId upperNode) const;

    // Where p lies relative to q.
    Order comparePoints(const Vertex& p, const Vertex& q) const;
    // +1 left of (above) the segment, -1 right of (below) it, 0 on it.
    int sideOf(const Vertex& p, const Segment& segment) const;
    // The same, telling whether that answer is the sign of the exact cross
    // product of the three points, which single precision need not give.
    int sideOf(const Vertex& p, const Segment& segment, bool& certain) const;
    // Whether every decision taken so far agrees with exact arithmetic, so
    // that the structure is the true decomposition of what was inserted.
    bool isExactSoFar() const { return mExactSoFar; }

    Vertex& getVertex(std::size_t i) { return mVertices[i]; }
    const std::vector<Vertex>& getVertices() const { return mVertices; }
    const std::vector<Segment>& getSegments() const { return mSegments; }
    // Creation order; the first one is the trapezoid the representation
    // started with, which stays unbounded below and outside every contour.
    std::vector<Trapezoid>& getTrapezoids() { return mTrapezoids; }
    const std::vector<Trapezoid>& getTrapezoids() const { return mTrapezoids; }
    const std::vector<QueryNode>& getNodes() const { return mNodes; }
    RecordId getRoot() const { return mRoot; }
    bool getMergeCoincidentPoints() const { return mMergeCoincidentPoints; }

    std::vector<RecordId> listIds(const IdList& list) const;

private:
    struct Link {
        RecordId value;
        RecordId next;
    };
    // Orders vertex ids like comparePoints; only used when no coordinate is
    // NaN, where that order is a strict weak order.
    struct KeyLess {
        const std::vector<Wm4::Vector2<float>>* points;
        bool merge;
        bool operator()(RecordId p, RecordId q) const;
    };
    using Run = std::map<RecordId, RecordId, KeyLess>;

    RecordId newNode(QueryNode::Kind kind, RecordId item);
    RecordId newTrapezoid();
    void setSink(RecordId trapezoid, RecordId node);
    void append(IdList& list, RecordId value);
    // For lists kept in ascending order only.
    bool contains(const IdList& list, RecordId value) const;
    void replaceSink(RecordId sink, RecordId replacement);
    void joinRun(RecordId yNode, RecordId replacedSink);

    int decide(const Vertex& p, const Segment& segment) const;
    RecordId descend(RecordId node, const Vertex& vertex, bool startingTrapezoid, const Vertex* upper) const;
    RecordId locateNear(const Vertex& vertex, const Vertex& neighbour) const;
    bool containsWithMargin(const Trapezoid& t, const Vertex& vertex) const;
    RecordId runExit(RecordId entry, RecordId vertex, RecordId& sameNode) const;
    void thread(RecordId segment, RecordId start);
    void splitBottom(const Trapezoid& t, RecordId current, RecordId left, RecordId right, RecordId vertex);
    void splitTop(const Trapezoid& t, RecordId current, RecordId left, RecordId right, RecordId vertex);

    const std::vector<Wm4::Vector2<float>>* mPoints;
    bool mMergeCoincidentPoints;
    // Search trees over runs of y-nodes: exact whenever no coordinate is NaN.
    bool mIndexedLocation;
    // Walks from a neighbouring vertex, certified against the DAG walk: needs
    // finite coordinates of moderate magnitude and an exact structure.
    bool mNearLocation;
    mutable bool mExactSoFar = true;
    double mMargin = 0.0;
    double mLeastSegmentHeight = 1.0; // least non-zero height of a segment, capped at 1
    std::vector<Vertex> mVertices;
    std::vector<Segment> mSegments;
    std::vector<Trapezoid> mTrapezoids;
    std::vector<QueryNode> mNodes;
    RecordId mRoot = kNoRecord;
    std::vector<Link> mLinks;
    std::vector<Run> mRuns;
};

} // namespace vk::impl

#endif
