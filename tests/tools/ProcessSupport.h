#ifndef VKSVG_TESTS_PROCESSSUPPORT_H
#define VKSVG_TESTS_PROCESSSUPPORT_H

// Running the built vksvg program as a process: arguments and standard
// input in; exit status, standard output and standard error out.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tooltest {

struct ProcessRun {
    int status = -1; // the exit status; -1 when the program did not exit
    std::string out;
    std::string err;
};

inline std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void WriteFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

struct ProcessOptions {
    std::string input;        // standard input
    std::string directory;    // working directory; the test's own when empty
    rlim_t fileSizeLimit = 0; // RLIMIT_FSIZE in bytes when not 0
};

// Runs vksvg with `args`; standard output and error go through files, so
// that neither can fill a pipe and stall the program.
inline ProcessRun RunVksvg(const std::vector<std::string>& args, const ProcessOptions& options = {})
{
    namespace fs = std::filesystem;
    const fs::path base = fs::path(::testing::TempDir()) / ("vksvg_process_" + std::to_string(::getpid()));
    fs::create_directories(base);
    const std::string in = (base / "stdin").string();
    const std::string out = (base / "stdout").string();
    const std::string err = (base / "stderr").string();
    WriteFile(in, options.input);

    std::vector<std::string> argv = {VKSVG_TOOL_BINARY};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char*> pointers;
    for (std::string& arg : argv)
        pointers.push_back(arg.data());
    pointers.push_back(nullptr);

    const pid_t pid = ::fork();
    if (pid == 0) {
        const int inFd = ::open(in.c_str(), O_RDONLY);
        const int outFd = ::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int errFd = ::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (inFd < 0 || outFd < 0 || errFd < 0 || ::dup2(inFd, 0) < 0 || ::dup2(outFd, 1) < 0 || ::dup2(errFd, 2) < 0)
            ::_exit(126);
        if (!options.directory.empty() && ::chdir(options.directory.c_str()) != 0)
            ::_exit(126);
        if (options.fileSizeLimit != 0) {
            // A write past the limit then fails with EFBIG instead of
            // killing the program: a disk that fills up half way.
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{options.fileSizeLimit, options.fileSizeLimit};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        }
        ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }
    ProcessRun run;
    int status = 0;
    if (pid > 0 && ::waitpid(pid, &status, 0) == pid && WIFEXITED(status))
        run.status = WEXITSTATUS(status);
    run.out = ReadFile(out);
    run.err = ReadFile(err);
    return run;
}

// A fresh directory for one test, removed with it.
class ProcessTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        mDirectory = std::filesystem::path(::testing::TempDir()) /
                     ("vksvg_" + std::to_string(::getpid()) + "_" + info->test_suite_name() + "_" + info->name());
        std::filesystem::remove_all(mDirectory);
        std::filesystem::create_directories(mDirectory);
    }
    void TearDown() override
    {
        std::error_code ignored;
        // Put back the rights a test took away, so that everything goes.
        for (const auto& entry : std::filesystem::recursive_directory_iterator(mDirectory, ignored))
            std::filesystem::permissions(entry.path(), std::filesystem::perms::owner_all,
                                         std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(mDirectory, ignored);
    }

    // The path of `name` in the test's directory, written with `text` when given.
    std::string File(const std::string& name, const char* text = nullptr) const
    {
        const std::string path = (mDirectory / name).string();
        if (text != nullptr)
            WriteFile(path, text);
        return path;
    }
    const std::filesystem::path& Directory() const { return mDirectory; }

    static std::string Data(const std::string& name) { return std::string(VKSVG_TEST_DATA_DIR) + "/" + name; }
    static std::string Example(const std::string& name) { return std::string(VKSVG_EXAMPLES_DIR) + "/" + name; }

private:
    std::filesystem::path mDirectory;
};

} // namespace tooltest

#endif
