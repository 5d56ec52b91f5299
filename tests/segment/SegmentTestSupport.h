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

// Total area of a triangle mesh, each triangle counted positively.
inline double MeshArea(const vk::svg::SegmentedPrimitive& p)
{
    const auto& v = p.getTriangleVertices();
    const auto& t = p.getTriangleIndices();
    double area = 0.0;
    for (std::size_t i = 0; i + 2 < t.size(); i += 3) {
        const V& a = v[t[i]];
        const V& b = v[t[i + 1]];
        const V& c = v[t[i + 2]];
        area += std::fabs(double(b.X() - a.X()) * (c.Y() - a.Y()) - double(b.Y() - a.Y()) * (c.X() - a.X())) / 2;
    }
    return area;
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
