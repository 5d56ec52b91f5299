#include <svg/Tessellation.h>

#include "tessellate/Dash.h"
#include "tessellate/Flatten.h"
#include "tessellate/Stroke.h"
#include "tessellate/StrokeGeometry.h"
#include "tessellate/StrokeUnion.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <exception>
#include <limits>
#include <new>

namespace vk::svg {
namespace {

using impl::Point;
using V2 = Wm4::Vector2<float>;

constexpr double kPi = 3.14159265358979323846;

void SetError(std::string* error, std::string text)
{
    if (error) {
        *error = std::move(text);
    }
}

struct Affine {
    double m00 = 1, m01 = 0, m02 = 0;
    double m10 = 0, m11 = 1, m12 = 0;

    Point apply(Point p) const { return {m00 * p.x + m01 * p.y + m02, m10 * p.x + m11 * p.y + m12}; }
    bool finite() const
    {
        return std::isfinite(m00) && std::isfinite(m01) && std::isfinite(m02) && std::isfinite(m10) &&
               std::isfinite(m11) && std::isfinite(m12);
    }
    // The largest singular value of the linear part: how much a length
    // grows at most, so that a tolerance in output units can be taken back.
    double maxScale() const
    {
        const double e = (m00 + m11) / 2, f = (m00 - m11) / 2, g = (m10 + m01) / 2, h = (m10 - m01) / 2;
        return std::hypot(e, h) + std::hypot(f, g);
    }
};

// Turns the pieces of a stroke into the mesh (Fast) or into positive rings
// for the union (NonOverlapping).
class Builder {
public:
    Builder(const StrokeStyle& style, double radius, double miterLimit, const Affine& transform, unsigned circleSteps)
        : mJoin(style.join), mCap(style.cap), mRadius(radius), mLimit(miterLimit), mTransform(transform),
          mCircleSteps(circleSteps), mPieces(style.mode == StrokeMode::NonOverlapping)
    {
    }

    // `points` is a std::vector<Point> or a FloatView: anything with
    // size() and an operator[] that gives a Point.
    template <class Points> void polyline(const Points& points, bool closed)
    {
        const std::size_t m = points.size();
        const std::size_t segments = closed ? m : m - 1;
        if (mPieces) {
            planCuts(points, closed);
        }
        Point firstDirection;
        uint32_t firstLeft = 0, firstRight = 0;
        Point previousDirection;
        uint32_t previousLeft = 0, previousRight = 0;
        Cut startCut = mPieces && closed ? makeCut(points[0], 0) : Cut{};
        const Cut firstCut = startCut;
        for (std::size_t i = 0; i < segments; ++i) {
            const Point a = points[i];
            const Point b = points[i + 1 < m ? i + 1 : 0];
            const Point d = (b - a) * (1.0 / Length(b - a));
            const Point offset = Normal(d) * mRadius;
            const uint32_t startLeft = vertex(a + offset);
            const uint32_t startRight = vertex(a - offset);
            const uint32_t endLeft = vertex(b + offset);
            const uint32_t endRight = vertex(b - offset);
            if (!mPieces) {
                piece({startLeft, endLeft, endRight, startRight});
            } else {
                const Cut endCut = i + 1 < segments ? makeCut(b, i + 1) : closed ? firstCut : Cut{};
                cutPiece(startCut, endCut, startLeft, endLeft, endRight, startRight);
                startCut = endCut;
            }
            if (i == 0) {
                firstDirection = d;
                firstLeft = startLeft;
                firstRight = startRight;
                if (!closed) {
                    cap(a, d * -1.0, startRight, startLeft);
                }
            } else {
                join(a, previousDirection, d, previousLeft, previousRight, startLeft, startRight,
                     mPieces ? mCenter[i] : kNone);
            }
            previousDirection = d;
            previousLeft = endLeft;
            previousRight = endRight;
        }
        if (closed) {
            join(points[0], previousDirection, firstDirection, previousLeft, previousRight, firstLeft, firstRight,
                 mPieces ? mCenter[0] : kNone);
        } else {
            cap(points[m - 1], previousDirection, previousLeft, previousRight);
        }
    }

    // A zero-length subpath or dash: SVG draws it only with round or square
    // caps, the square turned along `direction`.
    void dot(Point center, Point direction)
    {
        if (mCap == StrokeCap::Round) {
            mRing.clear();
            for (unsigned i = 0; i < mCircleSteps; ++i) {
                const double angle = 2.0 * kPi * double(i) / double(mCircleSteps);
                mRing.push_back(vertex(center + Point{std::cos(angle), std::sin(angle)} * mRadius));
            }
            emitRing();
        } else if (mCap == StrokeCap::Square) {
            const Point along = direction * mRadius;
            const Point across = Normal(direction) * mRadius;
            piece({vertex(center + along + across), vertex(center - along + across), vertex(center - along - across),
                   vertex(center + along - across)});
        }
    }

    bool overflowed() const { return mOverflow; }
    // Some triangle was left out, so that its vertices may be unused.
    bool dropped() const { return mDropped; }
    // A bit per vertex, set once a kept triangle uses it (Fast mode).
    std::vector<uint64_t>& used() { return mUsed; }
    // Per 64 vertices, how many indices there were when the first was made:
    // no earlier index can refer to them.
    std::vector<std::size_t>& indicesBefore() { return mIndicesBefore; }

    bool tooManyVertices() const { return mTooMany; }
    FillMesh& mesh() { return mMesh; }
    std::vector<std::vector<V2>>& pieces() { return mRings; }

private:
    static constexpr uint32_t kNone = std::numeric_limits<uint32_t>::max();

    // Where the union of two segments' rectangles is split between them:
    // from the joint's centre to the crossing of their inner offset lines.
    struct Cut {
        bool active = false;
        bool innerLeft = false;
        uint32_t center = kNone;
        uint32_t inner = kNone;
    };

    // Without overlaps inside one polyline, the union (TessellateFill) sees
    // pieces that only touch, and needs no Clipper pass unless the path
    // itself crosses. A joint is cut when its inner crossing lies within
    // the nearer half of both segments, so that cuts never meet; other
    // joints keep overlapping rectangles, which the union resolves.
    template <class Points> void planCuts(const Points& points, bool closed)
    {
        const std::size_t m = points.size();
        mCut.assign(m, 0);
        mInner.assign(m, Point{});
        mCenter.assign(m, kNone);
        for (std::size_t j = closed ? 0 : 1; j < (closed ? m : m - 1); ++j) {
            const Point p = points[j];
            const Point before = points[j > 0 ? j - 1 : m - 1];
            const Point after = points[j + 1 < m ? j + 1 : 0];
            const double inLength = Length(p - before);
            const double outLength = Length(after - p);
            const Point in = (p - before) * (1.0 / inLength);
            const Point out = (after - p) * (1.0 / outLength);
            const double sine = Cross(in, out);
            const double cosine = Dot(in, out);
            if (sine == 0.0 || !(cosine > -1.0)) {
                continue;
            }
            // The crossing is radius * tan(turn / 2) back along each segment.
            const double back = mRadius * std::fabs(sine) / (1.0 + cosine);
            if (!(back <= inLength / 2.0 && back <= outLength / 2.0)) {
                continue;
            }
            const bool right = sine >= 0.0;
            const Point offsetIn = Normal(in) * (right ? mRadius : -mRadius);
            const Point offsetOut = Normal(out) * (right ? mRadius : -mRadius);
            mCut[j] = right ? 1 : 2; // the inner side is the left for a left turn
            mInner[j] = p + (offsetIn + offsetOut) * (1.0 / (1.0 + cosine));
        }
    }

    Cut makeCut(Point p, std::size_t j)
    {
        Cut cut;
        if (mCut[j] != 0) {
            cut.active = true;
            cut.innerLeft = mCut[j] == 1;
            cut.center = mCenter[j] = vertex(p);
            cut.inner = vertex(mInner[j]);
        }
        return cut;
    }

    void cutPiece(const Cut& start, const Cut& end, uint32_t startLeft, uint32_t endLeft, uint32_t endRight,
                  uint32_t startRight)
    {
        mRing.clear();
        if (start.active && start.innerLeft) {
            mRing.insert(mRing.end(), {start.center, start.inner});
        } else {
            mRing.push_back(startLeft);
        }
        if (end.active && end.innerLeft) {
            mRing.insert(mRing.end(), {end.inner, end.center});
        } else {
            mRing.push_back(endLeft);
        }
        if (end.active && !end.innerLeft) {
            mRing.insert(mRing.end(), {end.center, end.inner});
        } else {
            mRing.push_back(endRight);
        }
        if (start.active && !start.innerLeft) {
            mRing.insert(mRing.end(), {start.inner, start.center});
        } else {
            mRing.push_back(startRight);
        }
        emitRing();
    }

    uint32_t vertex(Point p)
    {
        const Point q = mTransform.apply(p);
        const auto x = float(q.x);
        const auto y = float(q.y);
        if (!std::isfinite(x) || !std::isfinite(y)) {
            mOverflow = true;
        }
        if (mMesh.vertices.size() >= std::numeric_limits<uint32_t>::max()) {
            mTooMany = true;
            return 0;
        }
        const auto index = uint32_t(mMesh.vertices.size());
        mMesh.vertices.emplace_back(x, y);
        if (index % 64 == 0) {
            mUsed.push_back(0);
            mIndicesBefore.push_back(mMesh.indices.size());
        }
        return index;
    }

    static double cross(const V2& p, const V2& q, const V2& r)
    {
        return (double(q.X()) - p.X()) * (double(r.Y()) - p.Y()) - (double(q.Y()) - p.Y()) * (double(r.X()) - p.X());
    }

    double cross(uint32_t a, uint32_t b, uint32_t c) const
    {
        return cross(mMesh.vertices[a], mMesh.vertices[b], mMesh.vertices[c]);
    }

    // Where vertex() puts p, without adding it.
    V2 position(Point p) const
    {
        const Point q = mTransform.apply(p);
        return V2(float(q.x), float(q.y));
    }

    // The triangle that triangle() would drop.
    static bool flat(const V2& p, const V2& q, const V2& r) { return !(cross(p, q, r) != 0.0); }

    bool triangle(uint32_t a, uint32_t b, uint32_t c)
    {
        const double area = cross(a, b, c);
        if (!(area != 0.0) || mOverflow || mTooMany) {
            return false;
        }
        mMesh.indices.push_back(a);
        mMesh.indices.push_back(area > 0 ? b : c);
        mMesh.indices.push_back(area > 0 ? c : b);
        for (const uint32_t v : {a, b, c}) {
            mUsed[v / 64] |= uint64_t{1} << (v % 64);
        }
        return true;
    }

    void piece(std::initializer_list<uint32_t> ring)
    {
        mRing.assign(ring.begin(), ring.end());
        emitRing();
    }

    // mRing is convex and in order; Fast mode fans it from its first vertex.
    void emitRing()
    {
        if (mOverflow || mTooMany) {
            return;
        }
        if (!mPieces) {
            // Every vertex is made for some ring; while each ring uses all
            // of its own, no vertex is left unused. Vertex i of the fan is
            // in triangles i - 1 and i, the first in all of them.
            bool any = false;
            bool previous = false;
            for (std::size_t i = 1; i + 1 < mRing.size(); ++i) {
                const bool kept = triangle(mRing[0], mRing[i], mRing[i + 1]);
                mDropped = mDropped || (!kept && !previous);
                any = any || kept;
                previous = kept;
            }
            mDropped = mDropped || !previous || !any;
            return;
        }
        std::vector<V2> ring;
        ring.reserve(mRing.size());
        double area = 0.0;
        for (std::size_t i = 0; i < mRing.size(); ++i) {
            ring.push_back(mMesh.vertices[mRing[i]]);
            if (i >= 2) {
                area += cross(mRing[0], mRing[i - 1], mRing[i]);
            }
        }
        if (!(area != 0.0)) {
            return;
        }
        if (area < 0.0) {
            std::reverse(ring.begin(), ring.end());
        }
        mRings.push_back(std::move(ring));
    }

    // The piece on the outer side of the turn at `p` from direction `in` to
    // `out`, between the end offsets of the incoming segment and the start
    // offsets of the outgoing one.
    void join(Point p, Point in, Point out, uint32_t inLeft, uint32_t inRight, uint32_t outLeft, uint32_t outRight,
              uint32_t center)
    {
        const double sine = Cross(in, out);
        const double cosine = Dot(in, out);
        if (sine == 0.0 && cosine > 0.0) {
            return;
        }
        // A left turn opens on the right; a full reversal is taken as one.
        const bool right = sine >= 0.0;
        const uint32_t a = right ? inRight : inLeft;
        const uint32_t b = right ? outRight : outLeft;
        const Point offsetA = Normal(in) * (right ? -mRadius : mRadius);
        const Point offsetB = Normal(out) * (right ? -mRadius : mRadius);
        double turn = 0.0;
        unsigned steps = 1;
        if (mJoin == StrokeJoin::Round) {
            turn = std::fabs(std::atan2(sine, cosine));
            turn = right ? turn : -turn;
            steps = unsigned(std::max(1.0, std::ceil(std::fabs(turn) / (2.0 * kPi) * mCircleSteps)));
        }
        // Half the angle between the segments: the miter reaches
        // radius / cos(half) from p, a ratio of 1 / cos(half) to the width.
        const double cosHalf = std::sqrt(std::max(0.0, (1.0 + cosine) / 2.0));
        const double sinHalf = std::sqrt(std::max(0.0, (1.0 - cosine) / 2.0));
        const bool tipped = mJoin != StrokeJoin::Round && mJoin != StrokeJoin::Bevel && cosHalf * mLimit >= 1.0;
        const Point tip = p + (offsetA + offsetB) * (1.0 / (1.0 + cosine));
        if (center == kNone) {
            // Where rounding flattens the whole piece of a nearly straight
            // joint, its centre and tip would be left unused: not making
            // them spares dropping them from a long mesh afterwards.
            if (!mPieces && !mOverflow && !mTooMany) {
                const V2 c = position(p);
                const V2& va = mMesh.vertices[a];
                const V2& vb = mMesh.vertices[b];
                if (tipped) {
                    const V2 t = position(tip);
                    if (flat(c, va, t) && flat(c, t, vb)) {
                        return;
                    }
                } else if ((mJoin != StrokeJoin::MiterClip && mJoin != StrokeJoin::Arcs && steps == 1) &&
                           flat(c, va, vb)) {
                    return;
                }
            }
            center = vertex(p);
        }

        if (mJoin == StrokeJoin::Round) {
            mRing.assign({center, a});
            for (unsigned i = 1; i < steps; ++i) {
                const double angle = turn * double(i) / double(steps);
                const double c = std::cos(angle), s = std::sin(angle);
                mRing.push_back(vertex(p + Point{offsetA.x * c - offsetA.y * s, offsetA.x * s + offsetA.y * c}));
            }
            mRing.push_back(b);
            emitRing();
            return;
        }
        if (mJoin == StrokeJoin::Bevel) {
            piece({center, a, b});
            return;
        }
        if (tipped) {
            piece({center, a, vertex(tip), b});
            return;
        }
        if (mJoin == StrokeJoin::Miter) {
            piece({center, a, b});
            return;
        }
        // MiterClip (and Arcs, whose arcs are straight here): the miter cut
        // square to the bisector at miterLimit * width / 2 from p.
        const double along = (mLimit * mRadius - mRadius * cosHalf) / sinHalf;
        const Point clipA = p + offsetA + in * along;
        const Point clipB = p + offsetB - out * along;
        piece({center, a, vertex(clipA), vertex(clipB), b});
    }

    // The cap at `end`, facing `outward`; `left` and `right` are the offset
    // vertices there, on the left and right of `outward`.
    void cap(Point end, Point outward, uint32_t left, uint32_t right)
    {
        if (mCap == StrokeCap::Square) {
            const Point reach = outward * mRadius;
            const Point across = Normal(outward) * mRadius;
            piece({left, vertex(end + across + reach), vertex(end - across + reach), right});
        } else if (mCap == StrokeCap::Round) {
            const unsigned steps = std::max(2u, (mCircleSteps + 1) / 2);
            const Point offset = Normal(outward) * mRadius;
            mRing.assign({left});
            for (unsigned i = 1; i < steps; ++i) {
                // Clockwise from the left side, through `outward`.
                const double angle = -kPi * double(i) / double(steps);
                const double c = std::cos(angle), s = std::sin(angle);
                mRing.push_back(vertex(end + Point{offset.x * c - offset.y * s, offset.x * s + offset.y * c}));
            }
            mRing.push_back(right);
            emitRing();
        }
    }

    StrokeJoin mJoin;
    StrokeCap mCap;
    double mRadius;
    double mLimit;
    Affine mTransform;
    unsigned mCircleSteps;
    bool mPieces;
    bool mOverflow = false;
    bool mTooMany = false;
    bool mDropped = false;
    FillMesh mMesh;
    std::vector<uint64_t> mUsed;
    std::vector<std::size_t> mIndicesBefore;
    std::vector<uint32_t> mRing;
    std::vector<char> mCut;
    std::vector<Point> mInner;
    std::vector<uint32_t> mCenter;
    std::vector<std::vector<V2>> mRings;
};

// The first `count` float points of a polyline read as double in place:
// float is exact in double, so this is the copy without its memory.
struct FloatView {
    const V2* data = nullptr;
    std::size_t count = 0;

    std::size_t size() const { return count; }
    Point operator[](std::size_t i) const { return {double(data[i].X()), double(data[i].Y())}; }
};

// The points that stroking keeps: repeated points dropped, and a closing
// repeat of the first point. Most polylines have no repeats but perhaps the
// closing one, and are read in place; only the others are copied.
struct Subpath {
    FloatView view;
    std::vector<Point> copy;
    bool copied = false;
    bool closed = false;

    std::size_t size() const { return copied ? copy.size() : view.size(); }
};

Subpath Prepare(const StrokePolyline& polyline)
{
    Subpath subpath;
    subpath.closed = polyline.closed;
    const std::vector<V2>& points = polyline.points;
    bool repeats = false;
    for (std::size_t i = 1; i < points.size() && !repeats; ++i) {
        repeats = points[i] == points[i - 1];
    }
    if (!repeats) {
        std::size_t count = points.size();
        while (subpath.closed && count > 1 && points[count - 1] == points[0]) {
            --count;
        }
        subpath.view = FloatView{points.data(), count};
        return subpath;
    }
    subpath.copied = true;
    subpath.copy.reserve(points.size());
    for (const V2& p : points) {
        const Point q{double(p.X()), double(p.Y())};
        if (subpath.copy.empty() || subpath.copy.back() != q) {
            subpath.copy.push_back(q);
        }
    }
    if (subpath.closed) {
        while (subpath.copy.size() > 1 && subpath.copy.back() == subpath.copy.front()) {
            subpath.copy.pop_back();
        }
    }
    return subpath;
}

template <class Points> double PathLength(const Points& points, bool closed)
{
    double length = 0.0;
    const std::size_t m = points.size();
    for (std::size_t i = 0; i + 1 < m; ++i) {
        length += Length(points[i + 1] - points[i]);
    }
    if (closed && m > 1) {
        length += Length(points[0] - points[m - 1]);
    }
    return length;
}

double PathLength(const Subpath& subpath)
{
    return subpath.copied ? PathLength(subpath.copy, subpath.closed) : PathLength(subpath.view, subpath.closed);
}

// SVG draws a zero-length subpath only when it was closed or had a second
// point: a lone moveto draws nothing.
bool IsDot(const Subpath& subpath, const StrokePolyline& source)
{
    return subpath.size() == 1 && (source.closed || source.points.size() > 1);
}

Point First(const Subpath& subpath) { return subpath.copied ? subpath.copy[0] : subpath.view[0]; }

// A run of points in place.
struct PointSpan {
    const Point* data = nullptr;
    std::size_t count = 0;

    std::size_t size() const { return count; }
    Point operator[](std::size_t i) const { return data[i]; }
};

void Emit(Builder& builder, const std::vector<Point>& points, Point direction, bool closed)
{
    if (points.size() == 1) {
        builder.dot(points[0], direction);
    } else if (points.size() > 1) {
        builder.polyline(PointSpan{points.data(), points.size()}, closed);
    }
}

// The union's time grows faster than linearly with pieces that overlap,
// and fine dashes overlap by their caps: a smaller budget there.
std::size_t DashBudget(StrokeMode mode)
{
    return mode == StrokeMode::NonOverlapping ? impl::kMaxUnionDashEntries : impl::kMaxDashEntries;
}

// Leaves out the vertices of pieces that rounding flattened, keeping the
// others in place and in their order; `used` has a bit per vertex and
// `indicesBefore` where the indices of each 64 vertices can start. A few
// flat pieces in a long stroke are the usual case: only vertices past the
// first unused one move, only indices made after it change, and an index
// drops by the unused vertices below it, counted per word beforehand.
void DropUnused(FillMesh& mesh, const std::vector<uint64_t>& used, const std::vector<std::size_t>& indicesBefore)
{
    const std::size_t n = mesh.vertices.size();
    std::vector<uint32_t> below(used.size() + 1, 0);
    std::size_t first = n;
    for (std::size_t w = 0; w < used.size(); ++w) {
        const uint64_t all = w + 1 < used.size() || n % 64 == 0 ? ~uint64_t{0} : (uint64_t{1} << (n % 64)) - 1;
        const uint64_t missing = ~used[w] & all;
        below[w + 1] = below[w] + uint32_t(__builtin_popcountll(missing));
        if (missing != 0 && first == n) {
            first = w * 64 + std::size_t(__builtin_ctzll(missing));
        }
    }
    if (first == n) {
        return;
    }
    std::size_t kept = first;
    for (std::size_t i = first; i < n; ++i) {
        if (used[i / 64] >> (i % 64) & 1u) {
            mesh.vertices[kept++] = mesh.vertices[i];
        }
    }
    mesh.vertices.resize(kept);
    for (auto it = mesh.indices.begin() + std::ptrdiff_t(indicesBefore[first / 64]); it != mesh.indices.end(); ++it) {
        uint32_t& index = *it;
        if (index > first) {
            const uint64_t missing = ~used[index / 64] & ((uint64_t{1} << (index % 64)) - 1);
            index -= below[index / 64] + (missing != 0 ? uint32_t(__builtin_popcountll(missing)) : 0u);
        }
    }
}

bool Stroke(const std::vector<StrokePolyline>& polylines, const StrokeStyle& style, const Affine& transform,
            FillMesh& mesh, std::string* error)
{
    if (!transform.finite()) {
        SetError(error, "The transform is not finite");
        return false;
    }
    for (std::size_t i = 0; i < polylines.size(); ++i) {
        const auto& points = polylines[i].points;
        for (std::size_t j = 0; j < points.size(); ++j) {
            if (!std::isfinite(points[j].X()) || !std::isfinite(points[j].Y())) {
                SetError(error, "Polyline " + std::to_string(i) + " point " + std::to_string(j) + " is not finite");
                return false;
            }
        }
    }
    const double width = double(style.width);
    const double scale = transform.maxScale();
    if (!(width > 0.0) || !std::isfinite(width) || !(scale > 0.0) || !std::isfinite(scale)) {
        return true;
    }
    const double radius = width / 2.0;
    // A miter a million widths long is beyond any drawing; the cap keeps an
    // infinite limit from making infinite clipped miters at reversals.
    const double limit = style.miterLimit >= 1.0f ? std::min(double(style.miterLimit), 1e6) : 4.0;

    impl::DashPattern pattern;
    bool dashed = impl::MakeDashPattern(style.dashArray, style.dashOffset, pattern);

    std::vector<Subpath> subpaths;
    subpaths.reserve(polylines.size());
    std::size_t pointCount = 0;
    // Lengths only matter to dashes.
    std::vector<double> lengths;
    double totalLength = 0.0;
    for (const StrokePolyline& polyline : polylines) {
        subpaths.push_back(Prepare(polyline));
        pointCount += subpaths.back().size();
        if (dashed) {
            lengths.push_back(PathLength(subpaths.back()));
            totalLength += lengths.back();
        }
    }

    if (dashed) {
        // Whole periods are walked entry by entry for certain: when they
        // alone spend the budget, stroke solid without walking them.
        double walked = 0.0;
        for (double length : lengths) {
            walked += std::floor(length / pattern.period) * double(pattern.ends.size());
        }
        dashed = walked <= double(DashBudget(style.mode));
    }

    // Round pieces share one budget of steps: a join, a cap and a dot each
    // count as a full circle at most.
    const double userTolerance = double(style.tolerance) / scale;
    unsigned steps = impl::CircleSteps(float(radius), float(userTolerance));
    if (!(userTolerance > 0.0) || !std::isfinite(userTolerance)) {
        steps = impl::CircleSteps(float(radius), 0.0f);
    }
    steps = std::min(steps, impl::kMaxCircleSteps);
    if (style.join == StrokeJoin::Round || style.cap != StrokeCap::Butt) {
        double pieces = double(pointCount) + 2.0 * double(subpaths.size());
        if (dashed) {
            const double dashes = totalLength / pattern.period * double(pattern.ends.size() / 2);
            pieces += 2.0 * std::min(dashes, double(impl::kMaxDashEntries));
        }
        if (pieces * steps > impl::kRoundStepBudget) {
            steps = std::min(steps, std::max(impl::kMinCircleSteps, unsigned(impl::kRoundStepBudget / pieces)));
        }
    }

    bool dropped = true;
    std::vector<uint64_t> used;
    std::vector<std::size_t> indicesBefore;
    for (int attempt = 0; attempt < 2; ++attempt) {
        Builder builder(style, radius, limit, transform, steps);
        // The caller's storage is reused, so that stroking again into the
        // same mesh allocates nothing; a first guess of its size saves the
        // copies of growing it: four offsets and a centre per point, two
        // triangles per segment and about two per join.
        mesh.vertices.clear();
        mesh.indices.clear();
        builder.mesh() = std::move(mesh);
        if (style.mode == StrokeMode::Fast) {
            builder.mesh().vertices.reserve(5 * pointCount + 8);
            builder.mesh().indices.reserve(12 * pointCount + 24);
        }
        std::size_t budget = DashBudget(style.mode);
        impl::DashBuffers dashBuffers;
        const auto emit = [&builder](const std::vector<Point>& points, Point direction, bool closed) {
            Emit(builder, points, direction, closed);
        };
        bool restart = false;
        for (std::size_t i = 0; i < subpaths.size() && !restart; ++i) {
            const Subpath& subpath = subpaths[i];
            if (subpath.size() == 0) {
                continue;
            }
            if (subpath.size() == 1 && !IsDot(subpath, polylines[i])) {
                continue;
            }
            if (subpath.size() == 1 && !dashed) {
                builder.dot(First(subpath), Point{1.0, 0.0});
                continue;
            }
            if (!dashed) {
                if (subpath.copied) {
                    builder.polyline(subpath.copy, subpath.closed);
                } else {
                    builder.polyline(subpath.view, subpath.closed);
                }
                continue;
            }
            const bool cut = subpath.copied
                                 ? impl::CutDashes(subpath.copy, subpath.closed, pattern, budget, dashBuffers, emit)
                                 : impl::CutDashes(subpath.view, subpath.closed, pattern, budget, dashBuffers, emit);
            if (!cut) {
                // Too fine to draw: stroke the whole call solid instead.
                dashed = false;
                restart = true;
                break;
            }
            if (builder.overflowed() || builder.tooManyVertices()) {
                break;
            }
        }
        if (restart) {
            continue;
        }
        if (builder.overflowed()) {
            SetError(error, "The stroke reaches beyond the float range");
            return false;
        }
        if (builder.tooManyVertices()) {
            SetError(error, "The stroke needs more vertices than 32-bit indices reach");
            return false;
        }
        if (style.mode == StrokeMode::NonOverlapping) {
            const auto rings = std::move(builder.pieces());
            builder.mesh() = FillMesh{};
            return impl::UnitePieces(rings, mesh, error);
        }
        dropped = builder.dropped();
        used = std::move(builder.used());
        indicesBefore = std::move(builder.indicesBefore());
        mesh = std::move(builder.mesh());
        break;
    }
    if (!dropped) {
        // Every vertex belongs to a triangle that was kept.
        return true;
    }

    DropUnused(mesh, used, indicesBefore);
    return true;
}

} // namespace

bool TessellateStroke(const std::vector<StrokePolyline>& polylines, const StrokeStyle& style, FillMesh& mesh,
                      std::string* error)
{
    return TessellateStroke(polylines, style, Wm4::Matrix3<float>::IDENTITY, mesh, error);
}

bool TessellateStroke(const std::vector<StrokePolyline>& polylines, const StrokeStyle& style,
                      const Wm4::Matrix3<float>& transform, FillMesh& mesh, std::string* error)
{
    mesh.vertices.clear();
    mesh.indices.clear();
    Affine affine;
    affine.m00 = transform(0, 0);
    affine.m01 = transform(0, 1);
    affine.m02 = transform(0, 2);
    affine.m10 = transform(1, 0);
    affine.m11 = transform(1, 1);
    affine.m12 = transform(1, 2);
    try {
        return Stroke(polylines, style, affine, mesh, error);
    } catch (const std::bad_alloc&) {
        mesh = FillMesh{};
        SetError(error, "Out of memory while stroking");
        return false;
    } catch (const std::exception& e) {
        mesh = FillMesh{};
        SetError(error, std::string("Stroking failed: ") + e.what());
        return false;
    }
}

} // namespace vk::svg
