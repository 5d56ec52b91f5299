#include "tessellate/Dash.h"

#include <algorithm>
#include <cmath>

namespace vk::svg::impl {

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

} // namespace vk::svg::impl
