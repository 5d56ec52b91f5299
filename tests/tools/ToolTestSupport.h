#ifndef VKSVG_TESTS_TOOLTESTSUPPORT_H
#define VKSVG_TESTS_TOOLTESTSUPPORT_H

// Running vksvg commands in process, and files for them to work on.
#include "Cli.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace tooltest {

struct CliRun {
    int code;
    std::string out;
    std::string err;
};

using Command = int (*)(const std::vector<std::string>&, std::ostream&, std::ostream&);

// One command function, or the whole tool when none is given.
inline CliRun RunTool(const std::vector<std::string>& args, Command command = &vksvg::runCli)
{
    std::ostringstream out;
    std::ostringstream err;
    const int code = command(args, out, err);
    return {code, out.str(), err.str()};
}

// A fixture whose files live in the test directory and go with the test.
class TempFiles : public ::testing::Test {
protected:
    // The path of `name`, written with `text` when it is given.
    std::string Path(const std::string& name, const char* text = nullptr)
    {
        const std::string path = ::testing::TempDir() + "/vksvg_tool_" + std::to_string(::getpid()) + "_" + name;
        mFiles.push_back(path);
        if (text != nullptr)
            std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    std::string Write(const std::string& name, const std::string& text) { return Path(name, text.c_str()); }
    static std::string Read(const std::string& path)
    {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    void TearDown() override
    {
        for (const std::string& file : mFiles)
            std::remove(file.c_str());
    }

private:
    std::vector<std::string> mFiles;
};

} // namespace tooltest

#endif
