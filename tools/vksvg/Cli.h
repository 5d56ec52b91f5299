#ifndef VKSVG_TOOL_CLI_H
#define VKSVG_TOOL_CLI_H

#include <iosfwd>
#include <string>
#include <vector>

namespace vksvg {

// Exit codes of the tool. PartialResult: everything was written, but some
// shapes could not be filled and are there as outlines only.
enum ExitCode : int { Success = 0, Failure = 1, UsageError = 2, PartialResult = 3 };

// One subcommand: its name, a one-line synopsis of its arguments, what it
// does, and the function that runs it on the arguments after its name.
struct Command {
    const char* name;
    const char* synopsis;
    const char* summary;
    int (*run)(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
};

const std::vector<Command>& commands();

// Runs the tool on argv[1..]; all output goes to out and err.
int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// The commands, one per file.
int runColorCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
int runInfoCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
int runConvertCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
int runMeshCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
int runRenderCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
int runBboxCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace vksvg

#endif
