#include "ToolTestSupport.h"

#include <svg/Version.h>

#include <gtest/gtest.h>

#include <sstream>

using tooltest::CliRun;

namespace {

CliRun run(const std::vector<std::string>& args) { return tooltest::RunTool(args); }

} // namespace

TEST(Cli, ColorPrintsBytesOrSaysNoColour)
{
    struct Case {
        std::vector<std::string> args;
        int code;
        std::string out;
    };
    const Case cases[] = {
        {{"color", "#ff8000"}, 0, "#ff8000: 255 128 0 255\n"},
        {{"color", "rebeccapurple", "rgba(1,2,3,4)"}, 0, "rebeccapurple: 102 51 153 255\nrgba(1,2,3,4): 1 2 3 4\n"},
        {{"color", "Red"}, 1, "Red: no colour\n"},
        {{"color", "none", "#000"}, 1, "none: no colour\n#000: 0 0 0 255\n"},
    };
    for (const Case& c : cases) {
        const CliRun r = run(c.args);
        EXPECT_EQ(r.code, c.code) << c.args[1];
        EXPECT_EQ(r.out, c.out);
        EXPECT_EQ(r.err, "");
    }
}

TEST(Cli, UsageErrorsExitWithTwo)
{
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{}, {"color"}, {"frobnicate"}, {"--frobnicate"}}) {
        const CliRun r = run(args);
        EXPECT_EQ(r.code, 2);
        EXPECT_EQ(r.out, "");
        EXPECT_NE(r.err.find("Usage: vksvg"), std::string::npos) << r.err;
    }
}

TEST(Cli, HelpListsEveryCommandAndVersionNamesTheLibrary)
{
    const CliRun help = run({"--help"});
    EXPECT_EQ(help.code, 0);
    for (const vksvg::Command& command : vksvg::commands())
        EXPECT_NE(help.out.find(std::string("  ") + command.name + " "), std::string::npos) << command.name;

    const CliRun version = run({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.out, std::string("vksvg ") + vkSvg::Version::GetDescStringMajorMinorReleaseRevisionDate() + "\n");
}
