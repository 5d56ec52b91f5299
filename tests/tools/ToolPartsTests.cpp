// The parts of the tool that decide without running a command: format
// choice, job plans, status ranking, message prefixes, progress lines,
// numbers in JSON.
#include "Batch.h"
#include "Cli.h"
#include "CommandLine.h"
#include "Json.h"
#include "OutputFile.h"
#include "Progress.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using namespace vksvg;

TEST(ToolParts, ChooseFormat)
{
    const std::vector<std::string> picture = {"png", "pdf", "svg"};
    const struct {
        std::string output, flag;
        bool ok;
        std::string result; // the format, or the message
    } cases[] = {
        {"a.png", "", true, "png"},
        {"dir.v1/A.PDF", "", true, "pdf"},
        {"a.svg", "svg", true, "svg"},
        {"a.svg", "SVG", true, "svg"},
        {"-", "", true, "png"},
        {"-", "pdf", true, "pdf"},
        {"", "svg", true, "svg"},
        {"a.jpg", "", false, "cannot tell the format of \"a.jpg\": render writes .png, .pdf or .svg"},
        {"dir.png/a", "", false, "cannot tell the format of \"dir.png/a\": render writes .png, .pdf or .svg"},
        {"a.png", "pdf", false, "--format pdf does not match \"a.png\""},
        {"-", "gif", false, "--format must be png, pdf or svg, not \"gif\""},
    };
    for (const auto& c : cases) {
        std::string format;
        std::string why;
        EXPECT_EQ(output::ChooseFormat("render", picture, c.output, c.flag, format, why), c.ok) << c.output;
        EXPECT_EQ(c.ok ? format : why, c.result) << c.output;
    }
}

TEST(ToolParts, PlanJobs)
{
    std::vector<Job> jobs;
    std::string why;
    ASSERT_TRUE(PlanJobs({"a/x.svg", "b/y.tar.svg", "z"}, "", "out", ".png", jobs, why));
    ASSERT_EQ(jobs.size(), 3u);
    EXPECT_EQ(jobs[0].output, "out/x.png");
    EXPECT_EQ(jobs[1].output, "out/y.tar.png");
    EXPECT_EQ(jobs[2].output, "out/z.png");
    ASSERT_TRUE(PlanJobs({"-"}, "-", "", ".png", jobs, why));
    EXPECT_EQ(jobs[0].input, "-");
    const struct {
        std::vector<std::string> inputs;
        std::string output, directory, message;
    } bad[] = {
        {{}, "o.png", "", "no input given"},
        {{"a.svg"}, "", "", "no output given: name it with -o OUT (\"-\" for standard output)"},
        {{"a.svg", "b.svg"}, "o.png", "", "2 inputs given: several inputs need -d DIR for their outputs"},
        {{"a.svg"}, "o.png", "d", "-o and -d cannot go together: -o names one output, -d a directory for several"},
        {{"x/a.svg", "y/a.svg"}, "", "d", "\"x/a.svg\" and \"y/a.svg\" would both write \"d/a.png\""},
        {{"-"}, "", "d", "standard input (\"-\") has no name to give its output in -d DIR: use -o"},
    };
    for (const auto& c : bad) {
        EXPECT_FALSE(PlanJobs(c.inputs, c.output, c.directory, ".png", jobs, why));
        EXPECT_EQ(why, c.message);
    }
}

// The worst status is a total order: usage error, failure, partial, success,
// whatever order the files finish in.
TEST(ToolParts, WorstStatusIgnoresOrder)
{
    const int statuses[] = {Success, PartialResult, Failure, UsageError};
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::vector<int> run(1 + random() % 6);
        int worstIndex = 0;
        for (int& status : run) {
            const int index = static_cast<int>(random() % 4);
            status = statuses[index];
            worstIndex = std::max(worstIndex, index);
        }
        int forward = Success;
        for (const int status : run)
            forward = WorstStatus(forward, status);
        int backward = Success;
        for (auto it = run.rbegin(); it != run.rend(); ++it)
            backward = WorstStatus(backward, *it);
        EXPECT_EQ(forward, statuses[worstIndex]);
        EXPECT_EQ(backward, forward);
    }
}

TEST(ToolParts, PrefixLines)
{
    EXPECT_EQ(PrefixLines("vksvg: a.svg:3:7: bad\nvksvg: shape 1: why\nplain\n", "a.svg", true),
              "vksvg: a.svg:3:7: bad\nvksvg: a.svg: shape 1: why\nvksvg: a.svg: plain\n");
    EXPECT_EQ(PrefixLines("vksvg: cannot read \"a.svg\": Is a directory\n", "a.svg", true),
              "vksvg: cannot read \"a.svg\": Is a directory\n");
    EXPECT_EQ(PrefixLines("Primitives: 2\nTriangles: 2\n", "a.svg", false),
              "a.svg: Primitives: 2\na.svg: Triangles: 2\n");
    EXPECT_EQ(PrefixLines("", "a.svg", true), "");
}

TEST(ToolParts, ProgressLine)
{
    EXPECT_EQ(Progress::Line(0, 10, 0.0), "[0/10]");
    EXPECT_EQ(Progress::Line(5, 10, 10.0), "[5/10] 0.5 files/s, 0:10 left");
    EXPECT_EQ(Progress::Line(1, 200, 1.0), "[1/200] 1.0 files/s, 3:19 left");
    EXPECT_EQ(Progress::Line(10, 10, 4.0), "[10/10] 2.5 files/s");
}

TEST(ToolParts, ParseWhole)
{
    long value = 0;
    std::string why;
    EXPECT_TRUE(cli::ParseWhole("-j", "12", 1, 256, value, why));
    EXPECT_EQ(value, 12);
    for (const char* text : {"", "0", "257", "1.5", "4x", " 4", "-3", "99999999999999999999"}) {
        EXPECT_FALSE(cli::ParseWhole("-j", text, 1, 256, value, why)) << text;
        EXPECT_EQ(why, std::string("-j needs a whole number from 1 to 256, not \"") + text + "\"");
    }
}

// Every float comes back from its JSON text as the same float; short
// decimals stay short.
TEST(ToolParts, JsonNumbersRoundTrip)
{
    std::mt19937 random(11);
    for (int i = 0; i < 5000; ++i) {
        float value = 0.0f;
        const uint32_t bits = static_cast<uint32_t>(random());
        std::memcpy(&value, &bits, sizeof value);
        const json::Json number = json::Number(value);
        if (!std::isfinite(value)) {
            EXPECT_TRUE(number.is_null());
            continue;
        }
        const std::string text = number.dump();
        EXPECT_EQ(static_cast<float>(json::Json::parse(text).get<double>()), value) << text;
    }
    EXPECT_EQ(json::Number(0.1f).dump(), "0.1");
    EXPECT_EQ(json::Number(3.0f).dump(), "3");
}
