#ifndef VKSVG_TESSELLATE_CROSSINGS_H
#define VKSVG_TESSELLATE_CROSSINGS_H

// Resolving crossings without Clipper: every pair of edges that cross is
// found, the crossing point rounded to the grid is put into both rings, and
// edges that overlap along a line get each other's end points. The rings
// then only touch, which the monotone sweep takes as it is, and it counts
// the winding numbers itself. Rounding can bend an edge across a vertex
// that lay within half a unit of the crossing; the caller sweeps again and
// repeats or falls back to Clipper when that happens.
//
// Pairs are found in vertical strips by a sweep over the edges' lowest y
// with a list of the strip's edges still reaching the current one, tested by
// x extent first: each edge meets only the few in its strip that a
// horizontal line also meets. Long edges join many strips, so the cost is
// still quadratic for outlines whose every scan line meets many edges in
// every strip; the work stops at a budget.

#include "tessellate/MonotoneTriangulation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vk::svg::impl {

namespace crossings {

inline int64_t Cross(const GridPoint& a, const GridPoint& b, const GridPoint& c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

inline int Sign(int64_t v) { return (v > 0) - (v < 0); }

struct Span {
    int64_t xMin;
    int64_t xMax;
    int64_t yMax;
    uint32_t edge;
};

// Strips for the pair search: about this many edges each, at most this many.
constexpr size_t kEdgesPerStrip = 64;
constexpr int64_t kMaxStrips = 256;

// A point to put into the edge that starts at rings.points[at].
struct Cut {
    uint32_t at;
    GridPoint p;
    int64_t along; // distance along the edge, scaled by its length
};

} // namespace crossings

// Puts the crossing points into the rings. False when there is nothing to
// do or when more than `budget` pair tests or cuts would be needed; the rings
// are then left as they were.
inline bool SplitAtCrossings(RingSet& rings, size_t budget)
{
    using namespace crossings;
    const size_t n = rings.points.size();
    std::vector<uint32_t> next(n);
    {
        uint32_t begin = 0;
        for (const uint32_t end : rings.ends) {
            for (uint32_t i = begin; i < end; ++i) {
                next[i] = i + 1 < end ? i + 1 : begin;
            }
            begin = end;
        }
    }
    const auto& pt = rings.points;
    std::vector<uint32_t> order;
    order.reserve(n);
    for (uint32_t i = 0; i < n; ++i) {
        if (!(pt[i] == pt[next[i]])) {
            order.push_back(i);
        }
    }
    std::sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
        return std::min(pt[a].y, pt[next[a]].y) < std::min(pt[b].y, pt[next[b]].y);
    });

    std::vector<Cut> cuts;
    const auto cut = [&](uint32_t e, const GridPoint& p) {
        const GridPoint& a = pt[e];
        const GridPoint& b = pt[next[e]];
        if (p == a || p == b) {
            return;
        }
        cuts.push_back({e, p, (p.x - a.x) * (b.x - a.x) + (p.y - a.y) * (b.y - a.y)});
    };
    // End points of one edge that lie inside the other, collinear one.
    const auto overlap = [&](uint32_t e, uint32_t f) {
        const GridPoint& a = pt[e];
        const GridPoint& b = pt[next[e]];
        for (const GridPoint& p : {pt[f], pt[next[f]]}) {
            const int64_t d = (p.x - a.x) * (b.x - a.x) + (p.y - a.y) * (b.y - a.y);
            const int64_t l = (b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y);
            if (d > 0 && d < l) {
                cut(e, p);
            }
        }
    };

    // Vertical strips, so that the list of edges still reaching the current
    // one only holds those in the same strip. An edge joins every strip its
    // x extent meets; a pair is tested in the strip where the later of the
    // two starts in x, which both have joined.
    int64_t x0 = 0;
    int64_t x1 = 0;
    if (!order.empty()) {
        x0 = x1 = pt[order[0]].x;
    }
    for (const uint32_t e : order) {
        x0 = std::min({x0, pt[e].x, pt[next[e]].x});
        x1 = std::max({x1, pt[e].x, pt[next[e]].x});
    }
    // Each edge joins 1 + strips * (its width / the range) strips; about
    // two extra per edge on average keeps the lists short without repeating
    // long edges everywhere.
    double widths = 0.0;
    for (const uint32_t e : order) {
        widths += double(std::abs(pt[next[e]].x - pt[e].x));
    }
    double byWidth = double(kMaxStrips);
    if (widths > 0.0) {
        byWidth = 2.0 * double(order.size()) * double(x1 - x0) / widths;
    }
    const int64_t strips = std::clamp<int64_t>(
        std::min(int64_t(order.size() / kEdgesPerStrip), int64_t(std::min(byWidth, double(kMaxStrips)))), 1,
        kMaxStrips);
    const int64_t width = (x1 - x0) / strips + 1;
    const auto stripOf = [&](int64_t x) { return size_t((x - x0) / width); };
    std::vector<uint32_t> stripStart(size_t(strips) + 1, 0);
    for (const uint32_t e : order) {
        const auto [lo, hi] = std::minmax(pt[e].x, pt[next[e]].x);
        for (size_t k = stripOf(lo); k <= stripOf(hi); ++k) {
            ++stripStart[k + 1];
        }
    }
    for (size_t k = 0; k < size_t(strips); ++k) {
        stripStart[k + 1] += stripStart[k];
    }
    if (stripStart.back() > budget) {
        return false;
    }
    std::vector<uint32_t> byStrip(stripStart.back());
    {
        std::vector<uint32_t> fill(stripStart.begin(), stripStart.end() - 1);
        for (const uint32_t e : order) {
            const auto [lo, hi] = std::minmax(pt[e].x, pt[next[e]].x);
            for (size_t k = stripOf(lo); k <= stripOf(hi); ++k) {
                byStrip[fill[k]++] = e;
            }
        }
    }

    std::vector<Span> active;
    size_t tests = 0;
    for (size_t strip = 0; strip < size_t(strips); ++strip) {
        active.clear();
        for (uint32_t j = stripStart[strip]; j < stripStart[strip + 1]; ++j) {
            const uint32_t e = byStrip[j];
            const GridPoint& a = pt[e];
            const GridPoint& b = pt[next[e]];
            const int64_t yMin = std::min(a.y, b.y);
            const Span span{std::min(a.x, b.x), std::max(a.x, b.x), std::max(a.y, b.y), e};
            tests += active.size();
            if (tests > budget) {
                return false;
            }
            for (size_t i = 0; i < active.size();) {
                const Span& s = active[i];
                if (s.yMax < yMin) {
                    active[i] = active.back();
                    active.pop_back();
                    continue;
                }
                ++i;
                if (s.xMax < span.xMin || span.xMax < s.xMin || stripOf(std::max(s.xMin, span.xMin)) != strip) {
                    continue;
                }
                const uint32_t f = s.edge;
                const GridPoint& c = pt[f];
                const GridPoint& d = pt[next[f]];
                const int64_t oc = Cross(a, b, c);
                const int64_t od = Cross(a, b, d);
                if (Sign(oc) * Sign(od) > 0) {
                    continue;
                }
                const int64_t oa = Cross(c, d, a);
                const int64_t ob = Cross(c, d, b);
                if (oc == 0 && od == 0) {
                    overlap(e, f);
                    overlap(f, e);
                } else if (Sign(oc) * Sign(od) < 0 && Sign(oa) * Sign(ob) < 0) {
                    // a + t (b - a) with t = oa / (oa - ob), rounded to the grid.
                    const long double t = static_cast<long double>(oa) / (static_cast<long double>(oa) - ob);
                    const GridPoint p{a.x + std::llround(t * static_cast<long double>(b.x - a.x)),
                                      a.y + std::llround(t * static_cast<long double>(b.y - a.y))};
                    cut(e, p);
                    cut(f, p);
                }
            }
            active.push_back(span);
            if (cuts.size() > budget) {
                return false;
            }
        }
    }
    if (cuts.empty()) {
        return false;
    }

    std::sort(cuts.begin(), cuts.end(),
              [](const Cut& x, const Cut& y) { return x.at < y.at || (x.at == y.at && x.along < y.along); });
    RingSet out;
    out.points.reserve(n + cuts.size());
    out.ends.reserve(rings.ends.size());
    size_t c = 0;
    uint32_t begin = 0;
    for (const uint32_t end : rings.ends) {
        for (uint32_t i = begin; i < end; ++i) {
            out.points.push_back(pt[i]);
            for (; c < cuts.size() && cuts[c].at == i; ++c) {
                if (!(out.points.back() == cuts[c].p)) {
                    out.points.push_back(cuts[c].p);
                }
            }
        }
        out.ends.push_back(static_cast<uint32_t>(out.points.size()));
        begin = end;
    }
    rings = std::move(out);
    return true;
}

} // namespace vk::svg::impl

#endif
