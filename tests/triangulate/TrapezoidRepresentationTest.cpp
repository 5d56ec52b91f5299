#include "triangulate/TrapezoidRepresentation.h"

#include "Shapes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using shapes::V2;
using vk::impl::kNoRecord;
using vk::impl::QueryNode;
using vk::impl::RecordId;
using vk::impl::TrapezoidRepresentation;
using Order = TrapezoidRepresentation::Order;

namespace {

const float kNaN = std::numeric_limits<float>::quiet_NaN();

// Inserts edges the way the triangulator does; `skipCollapsed` drops edges
// whose ends resolve to one vertex, as it does when merging.
void Insert(TrapezoidRepresentation& rep, const std::vector<unsigned int>& edges, bool skipCollapsed)
{
    for (std::size_t k = 0; k + 1 < edges.size(); k += 2) {
        vk::impl::Vertex& end = rep.getVertex(edges[k + 1]);
        const RecordId a = rep.addPoint(rep.getVertex(edges[k]), end.yNode != kNoRecord ? &end : nullptr);
        const RecordId b = rep.addPoint(end, &rep.getVertex(rep.getNodes()[a].item));
        if (!(skipCollapsed && rep.getNodes()[a].item == rep.getNodes()[b].item)) {
            rep.addSegment(a, b);
        }
    }
}

std::string Failure(TrapezoidRepresentation& rep, const std::vector<unsigned int>& edges, bool skipCollapsed)
{
    try {
        Insert(rep, edges, skipCollapsed);
    } catch (const std::runtime_error& e) {
        return e.what();
    }
    return "";
}

// Neighbour links are mutual and meet at one vertex height, sinks and
// trapezoids point at each other, side segments span the trapezoid, and
// every segment adds exactly one trapezoid.
void ExpectConsistent(const TrapezoidRepresentation& rep, std::size_t insertedVertices)
{
    const auto& traps = rep.getTrapezoids();
    const auto& nodes = rep.getNodes();
    ASSERT_EQ(traps.size(), 1 + insertedVertices + rep.getSegments().size());
    for (const auto& t : traps) {
        ASSERT_EQ(nodes[t.sink].kind, QueryNode::Sink);
        ASSERT_EQ(nodes[t.sink].item, t.index);
        for (RecordId n : t.above) {
            ASSERT_EQ(traps[n].lower, t.upper);
            ASSERT_NE(std::find(traps[n].below.begin(), traps[n].below.end(), t.index), traps[n].below.end());
        }
        for (RecordId n : t.below) {
            ASSERT_EQ(traps[n].upper, t.lower);
            ASSERT_NE(std::find(traps[n].above.begin(), traps[n].above.end(), t.index), traps[n].above.end());
        }
        for (RecordId s : t.sides) {
            if (s == kNoRecord) {
                continue;
            }
            const auto& seg = rep.getSegments()[s];
            ASSERT_NE(rep.comparePoints(rep.getVertices()[seg.lower], rep.getVertices()[t.lower]), Order::Above);
            ASSERT_NE(rep.comparePoints(rep.getVertices()[seg.upper], rep.getVertices()[t.upper]), Order::Below);
        }
    }
}

bool SameTrapezoids(const TrapezoidRepresentation& a, const TrapezoidRepresentation& b)
{
    const auto key = [](const vk::impl::Trapezoid& t) {
        std::vector<RecordId> k = {t.lower, t.upper, t.sides[0], t.sides[1], RecordId(t.above.size())};
        k.insert(k.end(), t.above.begin(), t.above.end());
        k.insert(k.end(), t.below.begin(), t.below.end());
        return k;
    };
    const auto& x = a.getTrapezoids();
    const auto& y = b.getTrapezoids();
    return std::equal(x.begin(), x.end(), y.begin(), y.end(), [&](auto& p, auto& q) { return key(p) == key(q); });
}

} // namespace

TEST(TrapezoidRepresentation, PointOrder)
{
    const std::vector<V2> points = {V2(0, 0), V2(5, -1), V2(-5, 0), V2(1, 0), V2(0, 0), V2(kNaN, 0), V2(0, kNaN)};
    struct Case {
        std::size_t p, q;
        bool merge;
        Order expected;
    };
    const Case cases[] = {
        {0, 0, false, Order::Same},  {0, 1, false, Order::Above}, {1, 0, false, Order::Below},
        {0, 2, false, Order::Above}, {0, 3, false, Order::Below}, {0, 4, false, Order::Above}, // smaller index higher
        {4, 0, false, Order::Below}, {4, 0, true, Order::Same},   {6, 0, false, Order::Above}, // NaN y counts as above
        {0, 6, false, Order::Above}, {5, 0, false, Order::Below}, {0, 5, false, Order::Below}, // NaN x never higher
    };
    for (const Case& c : cases) {
        TrapezoidRepresentation rep(points, c.merge);
        EXPECT_EQ(rep.comparePoints(rep.getVertices()[c.p], rep.getVertices()[c.q]), c.expected) << c.p << " " << c.q;
    }
}

TEST(TrapezoidRepresentation, SideTest)
{
    // Segments: 0 vertical (0,0)-(0,4), 1 slanted (0,0)-(4,2), 2 horizontal (0,0)-(4,0).
    const std::vector<V2> points = {V2(0, 0),   V2(0, 4), V2(4, 2), V2(4, 0), V2(-1, 1),   V2(1, 3), V2(0, 2),
                                    V2(-2, -1), V2(2, 1), V2(8, 4), V2(2, 0), V2(kNaN, 1), V2(0, 0)};
    TrapezoidRepresentation rep(points, false);
    Insert(rep, {0, 1, 0, 2, 0, 3}, false);
    struct Case {
        std::size_t point, segment;
        int expected;
    };
    const Case cases[] = {
        {4, 0, 1},   {5, 0, -1}, {6, 0, 0}, {11, 0, 0},                        // vertical: left, right, on, NaN
        {5, 1, 1},   {3, 1, -1}, {7, 1, 1}, {8, 1, 0},  {9, 1, -1}, {2, 1, 0}, // before, on, beyond, upper end
        {11, 1, -1}, {10, 2, 0}, {8, 2, 1}, {0, 1, 0},  {12, 1, 1},            // coincident lower end, larger index
    };
    for (const Case& c : cases) {
        EXPECT_EQ(rep.sideOf(rep.getVertices()[c.point], rep.getSegments()[c.segment]), c.expected)
            << "point " << c.point << " segment " << c.segment;
    }
}

TEST(TrapezoidRepresentation, AddPointFindsWhatIsAlreadyThere)
{
    const std::vector<V2> points = {V2(0, 0), V2(2, 2), V2(0, 0), V2(1, 5)};
    for (bool merge : {false, true}) {
        TrapezoidRepresentation rep(points, merge);
        const RecordId a = rep.addPoint(rep.getVertex(0));
        rep.addPoint(rep.getVertex(1));
        const std::size_t trapezoids = rep.getTrapezoids().size();
        const std::size_t nodes = rep.getNodes().size();
        EXPECT_EQ(rep.addPoint(rep.getVertex(0)), a);
        EXPECT_EQ(rep.getTrapezoids().size(), trapezoids);
        EXPECT_EQ(rep.getNodes().size(), nodes);

        const RecordId c = rep.addPoint(rep.getVertex(2));
        EXPECT_EQ(c == a, merge);
        EXPECT_EQ(rep.getTrapezoids().size(), trapezoids + (merge ? 0 : 1));
        EXPECT_EQ(rep.getVertices()[2].yNode, merge ? kNoRecord : c);
    }
}

TEST(TrapezoidRepresentation, HorizontalEdgeRunsFromSmallerToGreaterX)
{
    const std::vector<V2> points = {V2(5, 1), V2(-3, 1)};
    TrapezoidRepresentation rep(points, true);
    Insert(rep, {0, 1}, true);
    ASSERT_EQ(rep.getSegments().size(), 1u);
    EXPECT_EQ(rep.getSegments()[0].lower, 1u);
    EXPECT_EQ(rep.getSegments()[0].upper, 0u);
    EXPECT_EQ(rep.listIds(rep.getVertices()[0].segments), std::vector<RecordId>{0});
}

TEST(TrapezoidRepresentation, EveryInconsistencyFailsTheSameWay)
{
    struct Case {
        std::string name;
        std::vector<V2> points;
        std::vector<unsigned int> edges;
        bool merge;
    };
    const std::vector<Case> cases = {
        {"point on a segment", {V2(0, 0), V2(4, 4), V2(2, 2)}, {0, 1, 2, 0}, true},
        {"segment through a point", {V2(2, 2), V2(0, 0), V2(4, 4)}, {0, 1, 1, 2}, true},
        {"edge to itself", {V2(0, 0), V2(1, 1)}, {0, 1, 1, 1}, false},
        {"edge between merged points", {V2(0, 0), V2(1, 1), V2(1, 1)}, {0, 1, 1, 2}, true},
        {"edge twice", {V2(0, 0), V2(1, 3)}, {0, 1, 1, 0}, false},
        {"collinear overlap", {V2(0, 0), V2(0, 4), V2(0, 6)}, {0, 1, 0, 2}, false},
        {"crossing", {V2(0, 0), V2(4, 4), V2(4, 0), V2(0, 4)}, {0, 1, 2, 3}, false},
    };
    for (const Case& c : cases) {
        TrapezoidRepresentation rep(c.points, c.merge);
        EXPECT_EQ(Failure(rep, c.edges, false), "Shape triangulation failed") << c.name;
    }
}

// Segments meeting at shared vertices from every side: fans above and below
// a vertex, and segments ending at vertices that are already connected.
TEST(TrapezoidRepresentation, StaysConsistentAroundSharedVertices)
{
    const std::vector<V2> points = {V2(0, 0),   V2(-3, 4), V2(-1, 5), V2(2, 4), V2(4, 3),
                                    V2(-2, -3), V2(1, -4), V2(3, -2), V2(0, 9), V2(0, -9)};
    // A hub at 0 with spokes inserted in a scrambled order, then a rim
    // linking the spoke ends, then two long segments to the far ends.
    const std::vector<unsigned int> edges = {0, 3, 0, 1, 6, 0, 0, 4, 5, 0, 0, 2, 7, 0, 1, 2,
                                             2, 3, 3, 4, 4, 7, 7, 6, 6, 5, 5, 1, 8, 2, 9, 6};
    TrapezoidRepresentation rep(points, true);
    ASSERT_NO_THROW(Insert(rep, edges, true));
    ExpectConsistent(rep, points.size());
}

// Point location through the per-run search trees and by walks from a
// neighbour must reach exactly the trapezoids the plain DAG walk reaches,
// fed with clean, nearly degenerate and messy input.
TEST(TrapezoidRepresentation, FastLocationMatchesTheDagWalk)
{
    std::mt19937 rng(4242);
    for (int round = 0; round < 120; ++round) {
        shapes::Outline outline;
        if (round % 4 == 0) {
            shapes::AddRing(outline, shapes::Star(rng, 40 + round * 7, V2(0, 0), 1.0f, 9.0f));
            shapes::AddRing(outline, shapes::Square(-0.5f, -0.5f, 0.5f, 0.5f), round % 2 == 0);
        } else if (round % 4 == 1) {
            shapes::AddRing(outline, shapes::RandomWalk(rng, 30 + round * 9, 10.0f));
        } else if (round % 4 == 3) {
            // A zigzag whose lower corners sit a few ulps above a long,
            // shallow edge: side tests that single precision cannot settle.
            shapes::AddRing(outline, {V2(0, 0), V2(1000, 1), V2(1000, 10), V2(0, 10)});
            std::uniform_int_distribution<int> ulps(-3, 40);
            shapes::Ring zigzag;
            for (int i = 0; i < 9; ++i) {
                const float x = 50.0f + 100.0f * float(i);
                float y = x / 1000.0f;
                for (int u = ulps(rng); u > 0; --u) {
                    y = std::nextafter(y, 2.0f);
                }
                zigzag.emplace_back(x, y);
                zigzag.emplace_back(x + 50.0f, 3.0f);
            }
            zigzag.emplace_back(900.0f, 6.0f);
            zigzag.emplace_back(50.0f, 6.0f);
            shapes::AddRing(outline, zigzag, round % 8 == 3);
        } else {
            // Grid points with random edges: duplicates, overlaps and crossings.
            std::uniform_int_distribution<int> coordinate(0, 4);
            for (int i = 0; i < 12; ++i) {
                outline.points.emplace_back(float(coordinate(rng)), float(coordinate(rng)));
            }
            std::uniform_int_distribution<unsigned int> index(0, 11);
            for (int i = 0; i < 8; ++i) {
                outline.edges.push_back(index(rng));
                outline.edges.push_back(index(rng));
            }
        }
        const bool merge = round % 2 == 0;
        TrapezoidRepresentation indexed(outline.points, merge, true);
        TrapezoidRepresentation plain(outline.points, merge, false);
        const std::string indexedFailure = Failure(indexed, outline.edges, merge);
        const std::string plainFailure = Failure(plain, outline.edges, merge);
        ASSERT_EQ(indexedFailure, plainFailure) << round;
        if (indexedFailure.empty()) {
            EXPECT_TRUE(SameTrapezoids(indexed, plain)) << round;
            if (round % 4 < 2) {
                ExpectConsistent(indexed, outline.points.size());
            }
        }
    }
}
