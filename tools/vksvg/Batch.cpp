#include "Batch.h"

#include "Cli.h"
#include "DocumentIO.h"
#include "Progress.h"
#include "Session.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <sstream>
#include <thread>

#include <unistd.h>

namespace vksvg {

namespace {

// The rank of a status among the others: higher is worse.
int Rank(int status)
{
    switch (status) {
    case Success:
        return 0;
    case PartialResult:
        return 1;
    case Failure:
        return 2;
    case UsageError:
        return 4;
    default:
        return 3;
    }
}

std::string Stem(const std::string& input) { return std::filesystem::path(input).stem().string(); }

} // namespace

int WorstStatus(int a, int b) { return Rank(b) > Rank(a) ? b : a; }

bool PlanJobs(const std::vector<std::string>& inputs, const std::string& output, const std::string& directory,
              const std::string& extension, std::vector<Job>& jobs, std::string& why)
{
    jobs.clear();
    if (inputs.empty()) {
        why = "no input given";
        return false;
    }
    if (directory.empty()) {
        if (inputs.size() > 1) {
            why = std::to_string(inputs.size()) + " inputs given: several inputs need -d DIR for their outputs";
            return false;
        }
        if (output.empty()) {
            why = "no output given: name it with -o OUT (\"-\" for standard output)";
            return false;
        }
        jobs.push_back({inputs.front(), output});
        return true;
    }
    if (!output.empty()) {
        why = "-o and -d cannot go together: -o names one output, -d a directory for several";
        return false;
    }
    std::map<std::string, std::string> taken;
    for (const std::string& input : inputs) {
        if (input == "-") {
            why = "standard input (\"-\") has no name to give its output in -d DIR: use -o";
            return false;
        }
        const std::string target = (std::filesystem::path(directory) / (Stem(input) + extension)).string();
        const auto [at, added] = taken.emplace(target, input);
        if (!added) {
            why = "\"" + at->second + "\" and \"" + input + "\" would both write \"" + target + "\"";
            return false;
        }
        jobs.push_back({input, target});
    }
    return true;
}

bool PrepareDirectory(const std::string& directory, std::string& why)
{
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        why = error.message();
        return false;
    }
    if (!std::filesystem::is_directory(directory, error)) {
        why = std::strerror(ENOTDIR);
        return false;
    }
    if (::access(directory.c_str(), W_OK | X_OK) != 0) {
        why = std::strerror(errno);
        return false;
    }
    return true;
}

std::string PrefixLines(const std::string& text, const std::string& input, bool messages)
{
    const std::string name = io::DisplayName(input);
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!messages)
            result += name + ": " + line;
        else if (line.rfind("vksvg: " + name + ":", 0) == 0 || line.rfind("vksvg: cannot read \"" + name, 0) == 0)
            result += line;
        else if (line.rfind("vksvg: ", 0) == 0)
            result += "vksvg: " + name + ": " + line.substr(7);
        else
            result += "vksvg: " + name + ": " + line;
        result += '\n';
    }
    return result;
}

int RunBatch(const std::vector<Job>& jobs, unsigned threads, const JobWork& work, std::ostream& out, std::ostream& err)
{
    std::mutex printing;
    Progress progress(err, jobs.size(), Progress::IsTerminal(err));
    std::vector<int> statuses(jobs.size(), Success);
    std::atomic<std::size_t> next{0};
    std::size_t done = 0;

    const auto worker = [&]() {
        for (std::size_t index = next++; index < jobs.size(); index = next++) {
            const Job& job = jobs[index];
            std::ostringstream jobOut;
            std::ostringstream jobErr;
            int status = Failure;
            {
                // What the library logs on this thread is about this file.
                const LogCapture capture([&jobErr](const vk::vkLog::Entry& entry) { PrintLogEntry(entry, jobErr); });
                try {
                    status = work(job, jobOut, jobErr);
                } catch (const std::exception& exception) {
                    jobErr << "vksvg: " << exception.what() << '\n';
                }
            }
            const std::lock_guard<std::mutex> lock(printing);
            progress.clear();
            err << PrefixLines(jobErr.str(), job.input, true);
            out << PrefixLines(jobOut.str(), job.input, false) << std::flush;
            statuses[index] = status;
            progress.update(++done);
        }
    };
    const unsigned count = std::max(1u, std::min<unsigned>(threads, static_cast<unsigned>(jobs.size())));
    std::vector<std::thread> pool;
    for (unsigned i = 1; i < count; ++i)
        pool.emplace_back(worker);
    worker();
    for (std::thread& thread : pool)
        thread.join();
    progress.clear();

    int worst = Success;
    std::vector<std::string> failed;
    std::vector<std::string> partial;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        worst = WorstStatus(worst, statuses[i]);
        if (statuses[i] == PartialResult)
            partial.push_back(jobs[i].input);
        else if (statuses[i] != Success)
            failed.push_back(jobs[i].input);
    }
    if (!partial.empty()) {
        err << "vksvg: " << partial.size() << " of " << jobs.size()
            << " files written with some shapes as outlines only:\n";
        for (const std::string& input : partial)
            err << "  " << input << '\n';
    }
    if (!failed.empty()) {
        err << "vksvg: " << failed.size() << " of " << jobs.size() << " files failed:\n";
        for (const std::string& input : failed)
            err << "  " << input << '\n';
    }
    return worst;
}

} // namespace vksvg
