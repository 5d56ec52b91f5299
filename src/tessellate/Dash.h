#ifndef VKSVG_TESSELLATE_DASH_H
#define VKSVG_TESSELLATE_DASH_H

#include "tessellate/StrokeGeometry.h"

#include <algorithm>
#include <cstddef>
#include <vector>

// Cutting a polyline into dashes by an SVG dash pattern, in double.
namespace vk::svg::impl {

// A pattern that SVG accepts: an even number of lengths (odd arrays
// repeated), none negative, not all zero, with the offset reduced into one
// period.
struct DashPattern {
    // ends[k] is where entry k ends within the period; even entries are dashes.
    std::vector<double> ends;
    double period = 0.0;
    double phase = 0.0;
};

// False when SVG strokes solid: an empty array, a negative or non-finite
// entry, or all zeros (also when the period overflows).
bool MakeDashPattern(const std::vector<float>& array, float offset, DashPattern& pattern);

// Working storage for CutDashes, reused from one polyline to the next.
struct DashBuffers {
    std::vector<Point> current;
    std::vector<Point> head;
};

// Cuts the polyline `points` (anything with size() and an operator[] that
// gives a Point; no two consecutive points equal, and for a closed one the
// last point is not the first again) into dashes and hands each to
// sink(points, direction, closed) as it is cut, so that a long path needs
// no more memory than its longest dash. `direction` is the path's
// direction at a zero-length (one-point) dash; `closed` says the dash is
// the whole closed polyline. On a closed polyline the pattern runs across
// the closing segment, and a dash over the start is one dash joined there,
// handed over last. Every pattern entry walked counts against `budget`;
// false, with the dashes incomplete, once it is spent.
template <class Points, class Sink>
bool CutDashes(const Points& points, bool loop, const DashPattern& pattern, std::size_t& budget, DashBuffers& buffers,
               Sink&& sink)
{
    const bool closed = loop && points.size() > 1;
    const std::vector<double>& ends = pattern.ends;
    const std::size_t n = ends.size();
    if (points.size() == 0 || n == 0) {
        return true;
    }
    auto length = [&](std::size_t k) { return ends[k] - (k > 0 ? ends[k - 1] : 0.0); };

    // The entry the phase falls in; zero-length entries sitting exactly at
    // the phase come first, so that a "0 10" pattern starts with a dot.
    std::size_t k = std::size_t(std::lower_bound(ends.begin(), ends.end(), pattern.phase) - ends.begin());
    while (k < n && ends[k] == pattern.phase && length(k) > 0.0) {
        ++k;
    }
    if (k == n) {
        k = 0;
    }
    double remaining = ends[k] - std::max(pattern.phase, k > 0 ? ends[k - 1] : 0.0);
    bool on = k % 2 == 0;
    if (budget == 0) {
        return false;
    }
    --budget;

    std::vector<Point>& current = buffers.current;
    std::vector<Point>& head = buffers.head;
    current.clear();
    head.clear();
    // On a closed polyline that starts inside a dash, that first dash waits
    // in `head` for the last one to join it.
    const bool startsOn = on;
    bool holdHead = closed && startsOn;
    Point headDirection{1.0, 0.0};
    bool cutAny = false;
    const auto finish = [&](Point direction) {
        current.erase(std::unique(current.begin(), current.end()), current.end());
        if (holdHead) {
            head.swap(current);
            headDirection = direction;
            holdHead = false;
        } else {
            sink(current, direction, false);
        }
        current.clear();
    };
    if (on) {
        current.push_back(points[0]);
    }
    const std::size_t m = points.size();
    const std::size_t segments = closed ? m : m - 1;
    Point direction{1.0, 0.0};
    for (std::size_t s = 0; s < segments; ++s) {
        const Point a = points[s];
        const Point b = points[(s + 1) % m];
        const double span = Length(b - a);
        if (!(span > 0.0)) {
            continue;
        }
        direction = (b - a) * (1.0 / span);
        double t = 0.0;
        while (remaining < span - t) {
            t += remaining;
            current.push_back(Lerp(a, b, t / span));
            if (on) {
                finish(direction);
            }
            cutAny = true;
            if (budget == 0) {
                return false;
            }
            --budget;
            k = k + 1 < n ? k + 1 : 0;
            remaining = length(k);
            on = !on;
        }
        remaining -= span - t;
        if (on) {
            current.push_back(b);
        }
    }
    if (!on) {
        if (!head.empty()) {
            sink(head, headDirection, false);
        }
        return true;
    }
    if (closed && startsOn) {
        if (!cutAny) {
            // One dash covers the whole loop: it is the closed polyline.
            current.pop_back();
            current.erase(std::unique(current.begin(), current.end()), current.end());
            sink(current, direction, true);
            return true;
        }
        // The dash over the start runs on into the first one, joined at the
        // start point that both share.
        current.insert(current.end(), head.begin(), head.end());
    }
    finish(direction);
    return true;
}

} // namespace vk::svg::impl

#endif
