#include "ToolTestSupport.h"

#include <svg/Version.h>

#include <gtest/gtest.h>

using tooltest::CliRun;
using tooltest::RunTool;

TEST(Cli, UsageErrorsExitWithTwo)
{
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{}, {"color"}, {"frobnicate"}, {"--frobnicate"}}) {
        const CliRun r = RunTool(args);
        EXPECT_EQ(r.code, 2);
        EXPECT_EQ(r.out, "");
        EXPECT_NE(r.err.find("Usage: vksvg"), std::string::npos) << r.err;
    }
}

TEST(Cli, HelpListsEveryCommandAndVersionNamesTheLibrary)
{
    const CliRun help = RunTool({"--help"});
    EXPECT_EQ(help.code, 0);
    for (const vksvg::Command& command : vksvg::commands())
        EXPECT_NE(help.out.find(std::string("  ") + command.name + " "), std::string::npos) << command.name;

    const CliRun version = RunTool({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.out, std::string("vksvg ") + vkSvg::Version::GetDescStringMajorMinorReleaseRevisionDate() + "\n");
}

TEST(Cli, HelpNamesTheSubsetFlagOfEveryDocumentCommand)
{
    const CliRun help = RunTool({"--help"});
    EXPECT_EQ(help.code, 0);
    for (const vksvg::Command& command : vksvg::commands()) {
        const bool loadsDocuments = std::string(command.name) != "color";
        EXPECT_EQ(std::string(command.synopsis).find("[--subset] [--lenient]") != std::string::npos, loadsDocuments)
            << command.name;
    }
    EXPECT_NE(help.out.find("--subset reads only the library's own subset of SVG"), std::string::npos);
}

TEST(Cli, HelpNamesToleranceOfTheGeometryCommandsAndThePartialStatus)
{
    const CliRun help = RunTool({"--help"});
    EXPECT_EQ(help.code, 0);
    for (const vksvg::Command& command : vksvg::commands()) {
        const std::string name = command.name;
        const bool segments = name == "mesh" || name == "render" || name == "bbox";
        EXPECT_EQ(std::string(command.synopsis).find("[--tolerance T]") != std::string::npos, segments) << name;
    }
    EXPECT_NE(help.out.find("--tolerance is a usage error"), std::string::npos);
    EXPECT_NE(help.out.find("Exit status: 0 success, 1 failure, 2 usage error, 3 partial result"), std::string::npos);
}
