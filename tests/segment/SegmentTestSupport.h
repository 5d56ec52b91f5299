#ifndef VKSVG_TESTS_SEGMENT_SEGMENTTESTSUPPORT_H
#define VKSVG_TESTS_SEGMENT_SEGMENTTESTSUPPORT_H

#include <svg/PathData.h>
#include <svg/Segmentation.h>

#include <vkSystem/vkLog.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace segtest {

using V = Wm4::Vector2<float>;

// Collects the library log for the life of the object.
class CapturedLog {
public:
    CapturedLog() : mPrevious(vk::vkLog::getInstance())
    {
        auto log = std::make_shared<vk::vkLog>();
        log->setSink([this](const vk::vkLog::Entry& entry) { texts.push_back(entry.category + ": " + entry.text); });
        vk::vkLog::setInstance(log);
    }
    ~CapturedLog() { vk::vkLog::setInstance(mPrevious); }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    std::vector<std::string> texts;

private:
    std::shared_ptr<vk::vkLog> mPrevious;
};

inline const char* const kContourOnly = "svg: Shape cannot be rendered. Only its contour will be visible.";
inline const char* const kIndexOverflow = "svg: Index overflow during segmentation";
// A filled outline that the triangulator refuses: a corner on another edge.
inline const char* const kUnfillable = "M0 0 H10 V10 H0 Z M5 0 L7 5 L3 5 Z";

// The two icons of a real icon set that the trapezoidal fill gets wrong: a
// ring whose subpaths end a millionth away from their starts, and a house
// whose door runs against its walls.
inline const char* const kRing =
    "m 8.492188 0.0546875 c -4.128907 0 -7.488282 3.3554685 -7.488282 7.4882815 c 0 4.128906 3.359375 7.484375 "
    "7.488282 7.484375 c 4.128906 0 7.488281 -3.355469 7.488281 -7.484375 c 0 -4.132813 -3.359375 -7.4882815 "
    "-7.488281 -7.4882815 z m 0 1.9726565 c 3.050781 0 5.511718 2.464844 5.511718 5.515625 c 0 3.046875 "
    "-2.460937 5.511719 -5.511718 5.511719 c -3.050782 0 -5.511719 -2.464844 -5.511719 -5.511719 c 0 -3.050781 "
    "2.460937 -5.515625 5.511719 -5.515625 z";
inline const char* const kHouse =
    "m 8 1 c -0.207031 0 -0.410156 0.066406 -0.582031 0.183594 l -7 5 c -0.449219 0.324218 -0.554688 0.945312 "
    "-0.234375 1.394531 c 0.191406 0.265625 0.492187 0.421875 0.816406 0.417969 v 4.003906 c 0 1.644531 1.355469 "
    "3 3 3 h 8 c 1.644531 0 3 -1.320312 3 -3 v -4.003906 c 0.324219 0.003906 0.625 -0.152344 0.816406 -0.417969 "
    "c 0.320313 -0.449219 0.214844 -1.070313 -0.234375 -1.394531 l -7 -5 c -0.171875 -0.117188 -0.375 -0.183594 "
    "-0.582031 -0.183594 z m 0 2.226562 l 5 3.570313 v 5.203125 c 0 0.5625 -0.4375 1 -1 1 h -3 v -4 c 0 "
    "-0.554688 -0.445312 -1 -1 -1 h -1 c -0.554688 0 -1 0.445312 -1 1 v 4 h -2 c -0.5625 0 -1 -0.4375 -1 -1 v "
    "-5.203125 z m 0 0";

// Total area of a triangle mesh, each triangle counted positively.
inline double TriangleArea(const std::vector<V>& v, const std::vector<uint32_t>& t)
{
    double area = 0.0;
    for (std::size_t i = 0; i + 2 < t.size(); i += 3) {
        const V& a = v[t[i]];
        const V& b = v[t[i + 1]];
        const V& c = v[t[i + 2]];
        area += std::fabs(double(b.X() - a.X()) * (c.Y() - a.Y()) - double(b.Y() - a.Y()) * (c.X() - a.X())) / 2;
    }
    return area;
}

inline double MeshArea(const vk::svg::SegmentedPrimitive& p)
{
    return TriangleArea(p.getTriangleVertices(), p.getTriangleIndices());
}

inline double StrokeArea(const vk::svg::SegmentedPrimitive& p)
{
    return TriangleArea(p.getStrokeVertices(), p.getStrokeIndices());
}


// Both coordinates within `tolerance`, as a pair of EXPECT_NEARs would check.
inline ::testing::AssertionResult Near(const V& p, double x, double y, double tolerance)
{
    if (std::fabs(p.X() - x) <= tolerance && std::fabs(p.Y() - y) <= tolerance) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "(" << p.X() << ", " << p.Y() << ") vs (" << x << ", " << y << ")";
}

inline std::shared_ptr<vk::svg::Path> MakePath(const std::string& data)
{
    auto path = std::make_shared<vk::svg::Path>();
    std::string error;
    EXPECT_TRUE(vk::svg::ConvertPathStringToCommands(data, path->editCommands(), &error)) << error;
    return path;
}

inline std::vector<uint32_t> Chain(uint32_t first, uint32_t last)
{
    std::vector<uint32_t> pairs;
    for (uint32_t i = first; i < last; ++i) {
        pairs.push_back(i);
        pairs.push_back(i + 1);
    }
    return pairs;
}

} // namespace segtest

#endif
