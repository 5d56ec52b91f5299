#include "tessellate/Dash.h"

#include <algorithm>
#include <cmath>

namespace vk::svg::impl {
namespace {

// Drops repeats that cutting at segment ends leaves behind and files the dash.
void Finish(Dash& dash, Point direction, std::vector<Dash>& dashes)
{
    auto last = std::unique(dash.points.begin(), dash.points.end());
    dash.points.erase(last, dash.points.end());
    dash.direction = direction;
    dashes.push_back(std::move(dash));
    dash = Dash{};
}

} // namespace

bool MakeDashPattern(const std::vector<float>& array, float offset, DashPattern& pattern)
{
    pattern = DashPattern{};
    if (array.empty()) {
        return false;
    }
    for (float value : array) {
        if (!std::isfinite(value) || value < 0.0f) {
            return false;
        }
    }
    const std::size_t count = array.size() % 2 == 0 ? array.size() : 2 * array.size();
    pattern.ends.reserve(count);
    double sum = 0.0;
    for (std::size_t k = 0; k < count; ++k) {
        sum += double(array[k % array.size()]);
        pattern.ends.push_back(sum);
    }
    if (!(sum > 0.0) || !std::isfinite(sum)) {
        pattern.ends.clear();
        return false;
    }
    pattern.period = sum;
    const double shift = std::isfinite(offset) ? double(offset) : 0.0;
    double phase = std::fmod(shift, sum);
    if (phase < 0.0) {
        phase += sum;
    }
    pattern.phase = phase < sum ? phase : 0.0;
    return true;
}

bool CutDashes(const std::vector<Point>& points, bool loop, const DashPattern& pattern, std::size_t& budget,
               std::vector<Dash>& dashes)
{
    const bool closed = loop && points.size() > 1;
    const std::vector<double>& ends = pattern.ends;
    const std::size_t n = ends.size();
    if (points.empty() || n == 0) {
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

    const std::size_t first = dashes.size();
    const bool startsOn = on;
    bool cutAny = false;
    Dash current;
    if (on) {
        current.points.push_back(points[0]);
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
            const Point p = Lerp(a, b, t / span);
            if (on) {
                current.points.push_back(p);
                Finish(current, direction, dashes);
            } else {
                current.points.push_back(p);
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
            current.points.push_back(b);
        }
    }
    if (!on) {
        return true;
    }
    if (closed && startsOn) {
        if (!cutAny) {
            // One dash covers the whole loop: it is the closed polyline.
            current.points.pop_back();
            current.closed = true;
        } else if (first < dashes.size()) {
            // The dash over the start runs on into the first one, joined at
            // the start point that both share.
            Dash& head = dashes[first];
            current.points.insert(current.points.end(), head.points.begin(), head.points.end());
            head = Dash{};
            Finish(current, direction, dashes);
            std::swap(dashes[first], dashes.back());
            dashes.pop_back();
            return true;
        }
    }
    Finish(current, direction, dashes);
    return true;
}

} // namespace vk::svg::impl
