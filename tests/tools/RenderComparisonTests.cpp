// Every file in tests/data/full (fills and frames) and tests/data/stroke
// (one stroke feature each) drawn by vksvg render and by rsvg-convert,
// compared pixel by pixel over white.
#include "ToolTestSupport.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

// A pixel differs when any channel is off by more than this; a picture
// matches when at most kMaxDiffering of its pixels differ.
constexpr int kChannelTolerance = 32;
constexpr double kMaxDiffering = 0.02;

// Files that are known to draw differently, and why. They are still drawn
// and compared; a difference skips instead of failing.
const std::map<std::string, std::string> kKnownDifferences = {
    {"non_scaling", "rsvg-convert ignores vector-effect=\"non-scaling-stroke\" and scales the stroke with the "
                    "shape"},
};

const fs::path kFolder = fs::path(VKSVG_TEST_DATA_DIR) / "full";
const fs::path kStrokeFolder = fs::path(VKSVG_TEST_DATA_DIR) / "stroke";

// The names of the files of `folder` without ".svg", which also name the
// tests.
std::vector<std::string> SvgFiles(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file() && entry.path().extension() == ".svg")
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

// Test names allow letters, digits and underscores only.
std::string TestName(const ::testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param;
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    return name;
}

std::string Quoted(const std::string& text)
{
    std::string quoted = "'";
    for (char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// A PNG as opaque RGB bytes over white.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> rgb;
};

bool ReadOverWhite(const std::string& file, Picture& picture, std::string& error)
{
    cairo_surface_t* png = cairo_image_surface_create_from_png(file.c_str());
    if (cairo_surface_status(png) != CAIRO_STATUS_SUCCESS) {
        error = "cannot read " + file + ": " + cairo_status_to_string(cairo_surface_status(png));
        cairo_surface_destroy(png);
        return false;
    }
    picture.width = cairo_image_surface_get_width(png);
    picture.height = cairo_image_surface_get_height(png);
    // Painting onto a white RGB24 surface composites whatever format the
    // PNG came in.
    cairo_surface_t* white = cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height);
    cairo_t* cr = cairo_create(white);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    cairo_set_source_surface(cr, png, 0, 0);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_flush(white);
    const unsigned char* data = cairo_image_surface_get_data(white);
    const int stride = cairo_image_surface_get_stride(white);
    picture.rgb.resize(static_cast<std::size_t>(picture.width) * picture.height * 3);
    std::size_t at = 0;
    for (int y = 0; y < picture.height; ++y) {
        const auto* row = reinterpret_cast<const uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < picture.width; ++x) {
            picture.rgb[at++] = static_cast<unsigned char>(row[x] >> 16);
            picture.rgb[at++] = static_cast<unsigned char>(row[x] >> 8);
            picture.rgb[at++] = static_cast<unsigned char>(row[x]);
        }
    }
    cairo_surface_destroy(white);
    cairo_surface_destroy(png);
    return true;
}

// The share of pixels that differ by more than the tolerance.
double DifferingShare(const Picture& a, const Picture& b)
{
    std::size_t differing = 0;
    for (std::size_t i = 0; i + 2 < a.rgb.size(); i += 3)
        for (std::size_t c = 0; c < 3; ++c)
            if (std::abs(int(a.rgb[i + c]) - int(b.rgb[i + c])) > kChannelTolerance) {
                ++differing;
                break;
            }
    return a.rgb.empty() ? 0.0 : static_cast<double>(differing) / (a.rgb.size() / 3);
}

// Draws `folder`/`name`.svg both ways at vksvg's size and compares.
void CompareWithRsvg(const fs::path& folder, const std::string& name)
{
    if (std::system("command -v rsvg-convert > /dev/null 2>&1") != 0)
        FAIL() << "rsvg-convert is missing: install librsvg2-bin (scripts/deps.sh does)";

    const std::string file = (folder / (name + ".svg")).string();
    const std::string base = ::testing::TempDir() + "/vksvg_compare_" + std::to_string(::getpid()) + "_" + name;
    const std::string ours = base + "_vksvg.png";
    const std::string theirs = base + "_rsvg.png";

    const tooltest::CliRun run = tooltest::RunTool({"render", file, "-o", ours});
    ASSERT_EQ(run.code, 0) << file << '\n' << run.err;
    Picture mine;
    std::string error;
    ASSERT_TRUE(ReadOverWhite(ours, mine, error)) << error;

    const std::string command = "rsvg-convert -w " + std::to_string(mine.width) + " -h " + std::to_string(mine.height) +
                                " -o " + Quoted(theirs) + " " + Quoted(file);
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    Picture reference;
    ASSERT_TRUE(ReadOverWhite(theirs, reference, error)) << error;
    ASSERT_EQ(mine.width, reference.width) << file;
    ASSERT_EQ(mine.height, reference.height) << file;

    const double share = DifferingShare(mine, reference);
    const bool matches = share <= kMaxDiffering;
    std::ostringstream report;
    report << file << ": " << share * 100 << "% of " << mine.width << "x" << mine.height << " pixels differ (at most "
           << kMaxDiffering * 100 << "% may)\n  vksvg: " << ours << "\n  rsvg-convert: " << theirs;
    const auto known = kKnownDifferences.find(name);
    if (matches) {
        std::remove(ours.c_str());
        std::remove(theirs.c_str());
    } else if (known != kKnownDifferences.end()) {
        GTEST_SKIP() << report.str() << "\n  known difference: " << known->second;
    }
    EXPECT_TRUE(matches) << report.str();
    if (!run.err.empty())
        std::cout << name << " messages:\n" << run.err;
}

class RenderComparison : public ::testing::TestWithParam<std::string> {};

TEST_P(RenderComparison, MatchesRsvgConvert) { CompareWithRsvg(kFolder, GetParam()); }

INSTANTIATE_TEST_SUITE_P(FullProfileFiles, RenderComparison, ::testing::ValuesIn(SvgFiles(kFolder)), TestName);

// The library's own strokes: joins, caps, dashes, dots, transforms and
// translucency, each alone in a small file.
class StrokeRenderComparison : public ::testing::TestWithParam<std::string> {};

TEST_P(StrokeRenderComparison, MatchesRsvgConvert) { CompareWithRsvg(kStrokeFolder, GetParam()); }

INSTANTIATE_TEST_SUITE_P(StrokeFiles, StrokeRenderComparison, ::testing::ValuesIn(SvgFiles(kStrokeFolder)), TestName);

} // namespace
