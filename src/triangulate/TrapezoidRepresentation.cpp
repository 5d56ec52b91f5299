#include "triangulate/TrapezoidRepresentation.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace vk::impl {
namespace {

// A float cross product of differences carries three roundings per product:
// its sign is exact once it exceeds 4 ulps of the summed products plus what
// gradual underflow may have lost (a few times 2^-150).
const float kCrossErrorFactor = std::ldexp(4.0f, -24);
const float kCrossErrorFloor = std::ldexp(1.0f, -140);

// Coordinates up to this magnitude keep every product of differences finite.
const float kLargestCoordinate = std::ldexp(1.0f, 60);

} // namespace

void FailTriangulation() { throw std::runtime_error("Shape triangulation failed"); }

void NeighbourList::replace(RecordId from, RecordId to)
{
    for (std::uint32_t i = 0; i < mSize; ++i) {
        if (mIds[i] == from) {
            mIds[i] = to;
            return;
        }
    }
    FailTriangulation();
}

void NeighbourList::replaceWithPair(RecordId from, RecordId left, RecordId right)
{
    if (mSize != 1 || mIds[0] != from) {
        FailTriangulation();
    }
    mIds[0] = left;
    mIds[1] = right;
    mSize = 2;
}

bool TrapezoidRepresentation::KeyLess::operator()(RecordId p, RecordId q) const
{
    const Wm4::Vector2<float>& a = (*points)[p];
    const Wm4::Vector2<float>& b = (*points)[q];
    if (a.Y() != b.Y()) {
        return a.Y() < b.Y();
    }
    if (a.X() != b.X()) {
        return a.X() < b.X();
    }
    return !merge && p > q;
}

TrapezoidRepresentation::TrapezoidRepresentation(const std::vector<Wm4::Vector2<float>>& points,
                                                 bool mergeCoincidentPoints, bool fastLocation)
    : mPoints(&points), mMergeCoincidentPoints(mergeCoincidentPoints), mIndexedLocation(fastLocation),
      mNearLocation(fastLocation)
{
    const std::size_t n = points.size();
    if (n >= kNoRecord / 4) {
        FailTriangulation();
    }
    mVertices.resize(n);
    float minX = std::numeric_limits<float>::infinity();
    float maxX = -minX;
    for (std::size_t i = 0; i < n; ++i) {
        mVertices[i].index = i;
        mVertices[i].point = &points[i];
        for (int c = 0; c < 2; ++c) {
            const float v = std::fabs(points[i][c]);
            // With a NaN about, the point order is no longer an order, and
            // only the node-by-node walk gives the results the structure is
            // built on.
            if (std::isnan(v)) {
                mIndexedLocation = false;
            }
            if (!(v <= kLargestCoordinate)) {
                mNearLocation = false;
            }
        }
        minX = std::min(minX, points[i].X());
        maxX = std::max(maxX, points[i].X());
    }
    if (mNearLocation && n > 0) {
        // A segment that passes a point this far off, horizontally, gets an
        // exact side test from single precision: with dy the segment's
        // height, the cross product is dy times that distance, while its
        // error stays below 6 ulps of dy times the width plus 2^-148.
        // Twice that, leaving the floor term to the segments' least height.
        mMargin = 16.0 * std::ldexp(1.0, -24) * (double(maxX) - double(minX));
    }
    mTrapezoids.reserve(3 * n + 1);
    mSegments.reserve(2 * n);
    mNodes.reserve(10 * n + 1);
    mLinks.reserve(10 * n);
    newTrapezoid();
    mRoot = newNode(QueryNode::Sink, 0);
    setSink(0, mRoot);
}

RecordId TrapezoidRepresentation::newNode(QueryNode::Kind kind, RecordId item)
{
    if (mNodes.size() >= kNoRecord) {
        FailTriangulation();
    }
    const auto id = static_cast<RecordId>(mNodes.size());
    mNodes.emplace_back();
    mNodes.back().kind = kind;
    mNodes.back().item = item;
    return id;
}

RecordId TrapezoidRepresentation::newTrapezoid()
{
    if (mTrapezoids.size() >= kNoRecord) {
        FailTriangulation();
    }
    const auto id = static_cast<RecordId>(mTrapezoids.size());
    mTrapezoids.emplace_back();
    mTrapezoids.back().index = id;
    return id;
}

void TrapezoidRepresentation::setSink(RecordId trapezoid, RecordId node)
{
    if (mTrapezoids[trapezoid].sink != kNoRecord) {
        FailTriangulation();
    }
    mTrapezoids[trapezoid].sink = node;
}

void TrapezoidRepresentation::append(IdList& list, RecordId value)
{
    if (mLinks.size() >= kNoRecord) {
        FailTriangulation();
    }
    const auto cell = static_cast<RecordId>(mLinks.size());
    mLinks.push_back({value, kNoRecord});
    if (list.head == kNoRecord) {
        list.head = cell;
    } else {
        mLinks[list.tail].next = cell;
    }
    list.tail = cell;
}

bool TrapezoidRepresentation::contains(const IdList& list, RecordId value) const
{
    // The verdict lists grow in segment order (a segment is threaded once,
    // after every segment before it), so a segment newer than the last entry,
    // such as the one being threaded, is answered at once.
    if (list.tail == kNoRecord || mLinks[list.tail].value < value) {
        return false;
    }
    for (RecordId cell = list.head; cell != kNoRecord; cell = mLinks[cell].next) {
        if (mLinks[cell].value == value) {
            return true;
        }
    }
    return false;
}

std::vector<RecordId> TrapezoidRepresentation::listIds(const IdList& list) const
{
    std::vector<RecordId> ids;
    for (RecordId cell = list.head; cell != kNoRecord; cell = mLinks[cell].next) {
        ids.push_back(mLinks[cell].value);
    }
    return ids;
}

TrapezoidRepresentation::Order TrapezoidRepresentation::comparePoints(const Vertex& p, const Vertex& q) const
{
    if (p.index == q.index) {
        return Order::Same;
    }
    const Wm4::Vector2<float>& a = *p.point;
    const Wm4::Vector2<float>& b = *q.point;
    if (a.Y() != b.Y()) {
        return b.Y() > a.Y() ? Order::Below : Order::Above; // a NaN counts as above
    }
    if (a.X() != b.X()) {
        return b.X() <= a.X() ? Order::Above : Order::Below;
    }
    if (mMergeCoincidentPoints) {
        return Order::Same;
    }
    // Reversed on purpose: of two coincident points the one listed first is higher.
    return p.index < q.index ? Order::Above : Order::Below;
}

int TrapezoidRepresentation::sideOf(const Vertex& p, const Segment& segment) const
{
    bool certain = true;
    return sideOf(p, segment, certain);
}

int TrapezoidRepresentation::sideOf(const Vertex& p, const Segment& segment, bool& certain) const
{
    certain = true;
    const auto id = static_cast<RecordId>(segment.index);
    if (contains(p.firstSegments, id)) {
        return 1;
    }
    if (contains(p.secondSegments, id)) {
        return -1;
    }
    const Vertex& lower = mVertices[segment.lower];
    const Vertex& upper = mVertices[segment.upper];
    const Wm4::Vector2<float>& pt = *p.point;
    const Wm4::Vector2<float>& a = *lower.point;
    const Wm4::Vector2<float>& b = *upper.point;
    if (a.X() == b.X()) {
        if (a.X() > pt.X()) {
            return 1;
        }
        return pt.X() > b.X() ? -1 : 0;
    }
    const float t1 = (b.X() - a.X()) * (pt.Y() - a.Y());
    const float t2 = (b.Y() - a.Y()) * (pt.X() - a.X());
    const float k = t1 - t2;
    if (std::isnan(k)) {
        certain = false;
        return -1;
    }
    // Whether the sign is that of the exact cross product of the three
    // points: three roundings per product, plus what underflow may lose.
    if (k != 0.0f) {
        certain = std::fabs(k) > kCrossErrorFactor * (std::fabs(t1) + std::fabs(t2)) + kCrossErrorFloor;
        return k > 0.0f ? 1 : -1;
    }
    // Zero for sure when each product has a zero factor (a difference of
    // floats is zero only for equal values), or at the upper end itself.
    certain = ((a.X() == b.X() || pt.Y() == a.Y()) && (a.Y() == b.Y() || pt.X() == a.X())) ||
              (pt.X() == b.X() && pt.Y() == b.Y());
    // On the segment's line: before its lower end counts as left, beyond its
    // upper end as right, and anything from the lower end up to the upper
    // end as on it.
    if (pt.Y() < a.Y() || (pt.Y() == a.Y() && (a.X() > pt.X() || (a.X() == pt.X() && lower.index < p.index)))) {
        return 1;
    }
    if (p.index == upper.index) {
        return 0;
    }
    if (pt.Y() < b.Y() || (pt.Y() == b.Y() && (b.X() > pt.X() || (b.X() == pt.X() && upper.index < p.index)))) {
        return 0;
    }
    return -1;
}

int TrapezoidRepresentation::decide(const Vertex& p, const Segment& segment) const
{
    bool certain = true;
    const int side = sideOf(p, segment, certain);
    if (!certain) {
        mExactSoFar = false;
    }
    return side;
}

RecordId TrapezoidRepresentation::runExit(RecordId entry, RecordId vertex, RecordId& sameNode) const
{
    // The y-nodes of a run form a search tree over its vertices, and a walk
    // from its entry leaves it through the gap between the two keys that
    // enclose the query. The gap's child hangs under whichever of the two
    // keys has no y-node on that side.
    const Run& run = mRuns[mNodes[entry].run];
    auto it = run.lower_bound(vertex);
    if (it != run.end() && !run.key_comp()(vertex, it->first)) {
        sameNode = it->second;
        return kNoRecord;
    }
    if (it == run.begin()) {
        return mNodes[it->second].children[1];
    }
    const RecordId aboveLower = mNodes[std::prev(it)->second].children[0];
    if (it == run.end() || aboveLower == kNoRecord || mNodes[aboveLower].kind != QueryNode::YNode) {
        return aboveLower;
    }
    return mNodes[it->second].children[1];
}

RecordId TrapezoidRepresentation::descend(RecordId node, const Vertex& vertex, bool startingTrapezoid,
                                          const Vertex* upper) const
{
    // A walk down the DAG meets every node at most once; more steps than
    // nodes can only come from a corrupted graph.
    for (std::size_t steps = 0;; ++steps) {
        if (node == kNoRecord || steps > mNodes.size()) {
            FailTriangulation();
        }
        const QueryNode& current = mNodes[node];
        switch (current.kind) {
        case QueryNode::Sink:
            return node;
        case QueryNode::XNode: {
            const Segment& segment = mSegments[current.item];
            int side = decide(vertex, segment);
            if (side == 0 && startingTrapezoid) {
                side = decide(*upper, segment);
            }
            if (side == 0) {
                FailTriangulation();
            }
            node = current.children[side > 0 ? 0 : 1];
            break;
        }
        case QueryNode::YNode: {
            RecordId same = kNoRecord;
            RecordId next;
            if (mIndexedLocation) {
                next = runExit(node, static_cast<RecordId>(vertex.index), same);
            } else {
                const Order order = comparePoints(vertex, mVertices[current.item]);
                if (order == Order::Same) {
                    same = node;
                }
                next = current.children[order == Order::Above ? 0 : 1];
            }
            if (same != kNoRecord) {
                if (startingTrapezoid) {
                    FailTriangulation();
                }
                return same;
            }
            node = next;
            break;
        }
        default:
            FailTriangulation();
        }
    }
}

RecordId TrapezoidRepresentation::getStartingTrapezoid(RecordId lowerNode, RecordId upperNode) const
{
    if (lowerNode >= mNodes.size() || upperNode >= mNodes.size() || mNodes[lowerNode].kind != QueryNode::YNode ||
        mNodes[upperNode].kind != QueryNode::YNode) {
        FailTriangulation();
    }
    const Vertex& lower = mVertices[mNodes[lowerNode].item];
    const Vertex& upper = mVertices[mNodes[upperNode].item];
    RecordId node = mNodes[lowerNode].children[0];
    if (node == kNoRecord) {
        FailTriangulation();
    }
    if (mIndexedLocation && mNodes[node].kind == QueryNode::YNode) {
        // Every key under the lower vertex's upper child lies above it, so
        // the walk keeps going down until the gap right above that vertex,
        // which hangs below its successor in the run.
        const Run& run = mRuns[mNodes[lowerNode].run];
        auto it = run.find(static_cast<RecordId>(lower.index));
        if (it == run.end() || it->second != lowerNode || ++it == run.end()) {
            FailTriangulation();
        }
        node = mNodes[it->second].children[1];
    }
    return descend(node, lower, true, &upper);
}

void TrapezoidRepresentation::replaceSink(RecordId sink, RecordId replacement)
{
    const IdList parents = mNodes[sink].parents;
    if (parents.head == kNoRecord) {
        if (mRoot != sink) {
            FailTriangulation();
        }
        mRoot = replacement;
    }
    for (RecordId cell = parents.head; cell != kNoRecord; cell = mLinks[cell].next) {
        QueryNode& parent = mNodes[mLinks[cell].value];
        for (RecordId& child : parent.children) {
            if (child == sink) {
                child = replacement;
            }
        }
    }
    mNodes[replacement].parents = parents;
    mNodes[sink].parents = IdList();
}

void TrapezoidRepresentation::joinRun(RecordId yNode, RecordId replacedSink)
{
    // A y-node that takes the place of a y-node's child extends that node's
    // run; one below an x-node (or at the root) starts a run of its own.
    const IdList& parents = mNodes[replacedSink].parents;
    RecordId run = kNoRecord;
    if (parents.head != kNoRecord && parents.head == parents.tail) {
        const QueryNode& parent = mNodes[mLinks[parents.head].value];
        if (parent.kind == QueryNode::YNode) {
            run = parent.run;
        }
    }
    if (run == kNoRecord) {
        run = static_cast<RecordId>(mRuns.size());
        mRuns.emplace_back(KeyLess{mPoints, mMergeCoincidentPoints});
    }
    mNodes[yNode].run = run;
    if (!mRuns[run].emplace(mNodes[yNode].item, yNode).second) {
        FailTriangulation();
    }
}

bool TrapezoidRepresentation::containsWithMargin(const Trapezoid& t, const Vertex& vertex) const
{
    if ((t.lower != kNoRecord && comparePoints(vertex, mVertices[t.lower]) != Order::Above) ||
        (t.upper != kNoRecord && comparePoints(vertex, mVertices[t.upper]) != Order::Below)) {
        return false;
    }
    const Wm4::Vector2<float>& p = *vertex.point;
    for (int s = 0; s < 2; ++s) {
        if (t.sides[s] == kNoRecord) {
            continue;
        }
        const Wm4::Vector2<float>& a = *mVertices[mSegments[t.sides[s]].lower].point;
        const Wm4::Vector2<float>& b = *mVertices[mSegments[t.sides[s]].upper].point;
        if (a.Y() == b.Y()) {
            return false; // only a point on it could lie within its height
        }
        const double x = double(a.X()) + (double(b.X()) - a.X()) * ((double(p.Y()) - a.Y()) / (double(b.Y()) - a.Y()));
        const double clearance = s == 0 ? p.X() - x : x - p.X();
        if (!(clearance > mMargin + std::ldexp(1.0, -138) / mLeastSegmentHeight)) {
            return false;
        }
    }
    return true;
}

// Finds the trapezoid of a new vertex by walking from a neighbouring vertex
// along the line to it, the way the edge between them will be threaded:
// with input in outline order this costs about what threading costs, where
// the DAG walk from the root grows with everything inserted before.
// The answer is only given when it is certainly the DAG walk's: the
// structure is exact so far, and the vertex lies clear of the trapezoid's
// sides by more than the error of any single-precision side test on the
// way (every other segment at its height is further off). Otherwise, and
// whenever the walk meets anything unexpected, kNoRecord sends the caller
// to the DAG walk.
RecordId TrapezoidRepresentation::locateNear(const Vertex& vertex, const Vertex& neighbour) const
{
    if (!mNearLocation || !mIndexedLocation || neighbour.yNode == kNoRecord) {
        return kNoRecord;
    }
    // A vertex coinciding with an inserted one (when merging) never passes
    // the final check: that one's line would cut through the trapezoid.
    if (!mExactSoFar) {
        return kNoRecord;
    }
    const Order order = comparePoints(vertex, neighbour);
    if (order == Order::Same) {
        return kNoRecord;
    }
    const bool up = order == Order::Above;
    const int toward = up ? 0 : 1;

    // The trapezoid right next to the neighbour on the side of the line.
    RecordId node = mNodes[neighbour.yNode].children[toward];
    if (node != kNoRecord && mNodes[node].kind == QueryNode::YNode) {
        const Run& run = mRuns[mNodes[neighbour.yNode].run];
        auto it = run.find(static_cast<RecordId>(neighbour.index));
        if (it == run.end() || (up && ++it == run.end()) || (!up && it == run.begin())) {
            return kNoRecord;
        }
        node = up ? mNodes[it->second].children[1] : mNodes[std::prev(it)->second].children[0];
    }
    for (std::size_t steps = 0; node != kNoRecord && steps <= mNodes.size(); ++steps) {
        const QueryNode& current = mNodes[node];
        if (current.kind == QueryNode::Sink) {
            break;
        }
        if (current.kind == QueryNode::XNode) {
            const Segment& segment = mSegments[current.item];
            int side = sideOf(neighbour, segment);
            if (side == 0) {
                side = sideOf(vertex, segment);
            }
            if (side == 0) {
                return kNoRecord;
            }
            node = current.children[side > 0 ? 0 : 1];
        } else if (current.kind == QueryNode::YNode) {
            RecordId same = kNoRecord;
            node = runExit(node, static_cast<RecordId>(neighbour.index), same);
            if (same != kNoRecord) {
                return kNoRecord;
            }
        } else {
            return kNoRecord;
        }
    }
    if (node == kNoRecord || mNodes[node].kind != QueryNode::Sink) {
        return kNoRecord;
    }

    const Wm4::Vector2<float>& low = up ? *neighbour.point : *vertex.point;
    const Wm4::Vector2<float>& high = up ? *vertex.point : *neighbour.point;
    RecordId t = mNodes[node].item;
    for (std::size_t steps = 0;; ++steps) {
        if (steps > mTrapezoids.size()) {
            return kNoRecord;
        }
        const Trapezoid& trapezoid = mTrapezoids[t];
        const RecordId bound = up ? trapezoid.upper : trapezoid.lower;
        if (bound == kNoRecord || comparePoints(vertex, mVertices[bound]) == (up ? Order::Below : Order::Above)) {
            break;
        }
        const NeighbourList& next = up ? trapezoid.above : trapezoid.below;
        if (next.size() == 1) {
            t = next[0];
            continue;
        }
        if (next.size() != 2) {
            return kNoRecord;
        }
        // The line passes the bounding vertex on one side: cross into the
        // neighbour on the other.
        const Wm4::Vector2<float>& v = *mVertices[bound].point;
        const double cross = (double(high.X()) - low.X()) * (double(v.Y()) - low.Y()) -
                             (double(high.Y()) - low.Y()) * (double(v.X()) - low.X());
        if (cross == 0.0) {
            return kNoRecord;
        }
        t = cross > 0.0 ? next.back() : next.front();
    }
    return containsWithMargin(mTrapezoids[t], vertex) ? mTrapezoids[t].sink : kNoRecord;
}

RecordId TrapezoidRepresentation::addPoint(Vertex& vertex, const Vertex* neighbour)
{
    // A vertex already in the structure would walk the same path to its own
    // y-node, so it is answered from the record directly.
    if (vertex.yNode != kNoRecord) {
        return vertex.yNode;
    }
    RecordId sink = neighbour != nullptr ? locateNear(vertex, *neighbour) : kNoRecord;
    if (sink == kNoRecord) {
        sink = descend(mRoot, vertex, false, nullptr);
    }
    if (mNodes[sink].kind == QueryNode::YNode) {
        return sink; // a coincident vertex, when merging
    }

    const RecordId below = mNodes[sink].item;
    const RecordId above = newTrapezoid();
    const auto v = static_cast<RecordId>(vertex.index);
    {
        Trapezoid& t = mTrapezoids[below];
        Trapezoid& n = mTrapezoids[above];
        n.upper = t.upper;
        n.above = t.above;
        n.lower = v;
        t.upper = v;
        t.above.clear();
        t.above.push_back(above);
        n.below.push_back(below);
        n.sides[0] = t.sides[0];
        n.sides[1] = t.sides[1];
    }
    for (RecordId next : mTrapezoids[above].above) {
        mTrapezoids[next].below.replace(below, above);
    }
    if (mTrapezoids[below].above.size() != 1 || mTrapezoids[above].below.size() != 1) {
        FailTriangulation();
    }

    const RecordId yNode = newNode(QueryNode::YNode, v);
    if (vertex.yNode != kNoRecord) {
        FailTriangulation();
    }
    vertex.yNode = yNode;
    if (mIndexedLocation) {
        joinRun(yNode, sink);
    }
    replaceSink(sink, yNode);
    const RecordId aboveSink = newNode(QueryNode::Sink, above);
    setSink(above, aboveSink);
    append(mNodes[aboveSink].parents, yNode);
    append(mNodes[sink].parents, yNode);
    mNodes[yNode].children[0] = aboveSink;
    mNodes[yNode].children[1] = sink;
    return yNode;
}

void TrapezoidRepresentation::addSegment(RecordId first, RecordId second)
{
    if (first >= mNodes.size() || second >= mNodes.size() || mNodes[first].kind != QueryNode::YNode ||
        mNodes[second].kind != QueryNode::YNode) {
        FailTriangulation();
    }
    RecordId lower = mNodes[first].item;
    RecordId upper = mNodes[second].item;
    const Order order = comparePoints(mVertices[lower], mVertices[upper]);
    if (order == Order::Same) {
        FailTriangulation(); // an edge from a point to itself
    }
    if (order == Order::Above) {
        std::swap(lower, upper);
    }
    const RecordId start = getStartingTrapezoid(mVertices[lower].yNode, mVertices[upper].yNode);

    if (mSegments.size() >= kNoRecord) {
        FailTriangulation();
    }
    const auto segment = static_cast<RecordId>(mSegments.size());
    mSegments.push_back({segment, upper, lower});
    const double height = double(mVertices[upper].point->Y()) - double(mVertices[lower].point->Y());
    if (height > 0.0) {
        mLeastSegmentHeight = std::min(mLeastSegmentHeight, height);
    }
    append(mVertices[lower].segments, segment);
    append(mVertices[upper].segments, segment);
    thread(segment, mNodes[start].item);
}

// The first trapezoid the segment crosses starts at its lower vertex: the
// parts either side of the segment share that trapezoid's bottom edge, which
// the lower vertex divides, unless a side of the trapezoid starts there.
void TrapezoidRepresentation::splitBottom(const Trapezoid& t, RecordId current, RecordId left, RecordId right,
                                          RecordId vertex)
{
    const bool leftClosed = t.sides[0] != kNoRecord && mSegments[t.sides[0]].lower == vertex;
    const bool rightClosed = t.sides[1] != kNoRecord && mSegments[t.sides[1]].lower == vertex;
    Trapezoid& l = mTrapezoids[left];
    Trapezoid& r = mTrapezoids[right];
    l.below.clear();
    r.below.clear();
    if (leftClosed && rightClosed) {
        if (!t.below.empty()) {
            FailTriangulation();
        }
    } else if (leftClosed || rightClosed) {
        if (t.below.size() != 1) {
            FailTriangulation();
        }
        const RecordId open = leftClosed ? right : left;
        mTrapezoids[open].below = t.below;
        mTrapezoids[t.below[0]].above.replace(current, open);
    } else if (t.below.size() == 1) {
        // Nothing leaves the vertex downwards: one trapezoid below carries both parts.
        l.below = t.below;
        r.below = t.below;
        mTrapezoids[t.below[0]].above.replaceWithPair(current, left, right);
    } else if (t.below.size() == 2) {
        l.below.push_back(t.below[0]);
        r.below.push_back(t.below[1]);
        mTrapezoids[t.below[0]].above.replace(current, left);
        mTrapezoids[t.below[1]].above.replace(current, right);
    } else {
        FailTriangulation();
    }
}

// The same at the upper vertex, where the segment ends.
void TrapezoidRepresentation::splitTop(const Trapezoid& t, RecordId current, RecordId left, RecordId right,
                                       RecordId vertex)
{
    const bool leftClosed = t.sides[0] != kNoRecord && mSegments[t.sides[0]].upper == vertex;
    const bool rightClosed = t.sides[1] != kNoRecord && mSegments[t.sides[1]].upper == vertex;
    Trapezoid& l = mTrapezoids[left];
    Trapezoid& r = mTrapezoids[right];
    l.above.clear();
    r.above.clear();
    if (leftClosed && rightClosed) {
        if (!t.above.empty()) {
            FailTriangulation();
        }
    } else if (leftClosed || rightClosed) {
        if (t.above.size() != 1) {
            FailTriangulation();
        }
        const RecordId open = leftClosed ? right : left;
        mTrapezoids[open].above = t.above;
        mTrapezoids[t.above[0]].below.replace(current, open);
    } else if (t.above.size() == 1) {
        l.above = t.above;
        r.above = t.above;
        mTrapezoids[t.above[0]].below.replaceWithPair(current, left, right);
    } else if (t.above.size() == 2) {
        l.above.push_back(t.above[0]);
        r.above.push_back(t.above[1]);
        mTrapezoids[t.above[0]].below.replace(current, left);
        mTrapezoids[t.above[1]].below.replace(current, right);
    } else {
        FailTriangulation();
    }
}

// Threads a segment upwards through every trapezoid it crosses. Each crossed
// trapezoid is cut into a left and a right part. At the top vertex of a
// crossed trapezoid, the part on that vertex's side ends, while the part on
// the other side carries on into the next trapezoid: nothing separates them
// any more, so they stay one record. Each crossed trapezoid's record becomes
// the part that starts with it; only the first one adds a record (its right
// part). Its sink is replaced by an x-node over the sinks of both parts, so
// a part that runs on hangs under several x-nodes.
void TrapezoidRepresentation::thread(RecordId segment, RecordId start)
{
    const RecordId lowerVertex = mSegments[segment].lower;
    const RecordId upperVertex = mSegments[segment].upper;
    if (mTrapezoids[start].lower != lowerVertex) {
        FailTriangulation();
    }
    RecordId current = start;
    RecordId previous = kNoRecord;
    RecordId left = kNoRecord;
    RecordId right = kNoRecord;
    int previousSide = 0;
    for (std::size_t steps = 0;; ++steps) {
        if (steps > mTrapezoids.size()) {
            FailTriangulation();
        }
        const Trapezoid t = mTrapezoids[current];
        if (t.upper == kNoRecord || t.sink == kNoRecord ||
            (t.upper != upperVertex && comparePoints(mVertices[t.upper], mVertices[upperVertex]) != Order::Below)) {
            FailTriangulation(); // the segment leaves the trapezoid through a side: it crosses another
        }

        RecordId l = current;
        RecordId r = current;
        if (previous == kNoRecord) {
            r = newTrapezoid();
            Trapezoid& n = mTrapezoids[r];
            n.lower = t.lower;
            n.upper = t.upper;
        } else if (previousSide > 0) {
            r = right;
        } else {
            l = left;
        }
        for (int s = 0; s < 2; ++s) {
            const RecordId part = s == 0 ? l : r;
            Trapezoid& p = mTrapezoids[part];
            const RecordId outer = t.sides[s];
            if (part == current || previous == kNoRecord) {
                p.sides[s] = outer;
                p.sides[1 - s] = segment;
            } else if (p.sides[s] != outer || p.sides[1 - s] != segment) {
                FailTriangulation(); // a part running on must keep its outer side
            } else {
                p.upper = t.upper;
            }
        }

        const RecordId x = newNode(QueryNode::XNode, segment);
        replaceSink(t.sink, x);
        append(mNodes[t.sink].parents, x);
        RecordId sinks[2] = {t.sink, t.sink};
        if (previous == kNoRecord) {
            sinks[1] = newNode(QueryNode::Sink, r);
            setSink(r, sinks[1]);
            append(mNodes[sinks[1]].parents, x);
        } else {
            const int runningOn = previousSide > 0 ? 1 : 0;
            sinks[runningOn] = mTrapezoids[runningOn == 0 ? l : r].sink;
            append(mNodes[sinks[runningOn]].parents, x);
        }
        mNodes[x].children[0] = sinks[0];
        mNodes[x].children[1] = sinks[1];

        if (previous == kNoRecord) {
            splitBottom(t, current, l, r, lowerVertex);
        } else if (previousSide > 0) {
            // The previous top vertex lies left of the segment: the left part
            // below ended there and sits under this trapezoid's left part.
            if (t.below.empty() || t.below.back() != previous) {
                FailTriangulation();
            }
            mTrapezoids[l].below = t.below;
            mTrapezoids[l].below.replace(previous, left);
        } else {
            if (t.below.empty() || t.below.front() != previous) {
                FailTriangulation();
            }
            mTrapezoids[r].below = t.below;
            mTrapezoids[r].below.replace(previous, right);
        }

        if (t.upper == upperVertex) {
            splitTop(t, current, l, r, upperVertex);
            return;
        }

        // The segment passes the top vertex on one side; the part on the
        // vertex's side ends there, under the same neighbours as before.
        Vertex& passed = mVertices[t.upper];
        const int side = decide(passed, mSegments[segment]);
        if (side == 0 || t.above.empty()) {
            FailTriangulation(); // a vertex on the segment, or an overlap
        }
        append(side > 0 ? passed.firstSegments : passed.secondSegments, segment);
        const RecordId ended = side > 0 ? l : r;
        const RecordId next = side > 0 ? t.above.back() : t.above.front();
        mTrapezoids[ended].above = t.above;
        if (ended != current) {
            for (RecordId neighbour : t.above) {
                if (neighbour != next) {
                    mTrapezoids[neighbour].below.replace(current, ended);
                }
            }
        }
        if (mTrapezoids[next].lower != t.upper) {
            FailTriangulation();
        }
        previous = current;
        left = l;
        right = r;
        previousSide = side;
        current = next;
    }
}

} // namespace vk::impl
