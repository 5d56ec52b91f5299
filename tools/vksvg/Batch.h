#ifndef VKSVG_TOOL_BATCH_H
#define VKSVG_TOOL_BATCH_H

// Work on several files: the plan (which input writes which output), the
// run on N threads, and the summary. Every stage of a file, its load and
// save included, runs in parallel with the other files'.

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace vksvg {

struct Job {
    std::string input;
    std::string output;
};

// Inputs and outputs from the command line: without `directory`, one input
// written to `output`; with it, every input written to the directory under
// its stem and `extension` (with its dot). False with the reason.
bool PlanJobs(const std::vector<std::string>& inputs, const std::string& output, const std::string& directory,
              const std::string& extension, std::vector<Job>& jobs, std::string& why);

// Makes `directory` when it is missing; false with the system's reason when
// it cannot be made or written to.
bool PrepareDirectory(const std::string& directory, std::string& why);

// The status of a run of several files: usage error, then failure, then
// partial result, then success.
int WorstStatus(int a, int b);

using JobWork = std::function<int(const Job& job, std::ostream& out, std::ostream& err)>;

// Runs `work` on every job, `threads` at a time. Each job's output and
// messages are kept until it ends and then printed together, every line
// led by the job's input, so that lines of different files never mix.
// Ends with the list of the files that failed; returns the worst status.
int RunBatch(const std::vector<Job>& jobs, unsigned threads, const JobWork& work, std::ostream& out, std::ostream& err);

// Prefixes every line of `text` for `input`: messages ("vksvg: ...") become
// "vksvg: <input>: ..." unless they already name it, other lines
// "<input>: ...".
std::string PrefixLines(const std::string& text, const std::string& input, bool messages);

} // namespace vksvg

#endif
