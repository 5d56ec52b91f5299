#ifndef VKSVG_TOOL_CLI_H
#define VKSVG_TOOL_CLI_H

#include <iosfwd>
#include <string>
#include <vector>

namespace vksvg {

// Exit codes of the tool, one table for every command. Failure: an input
// problem (a file could not be read, loaded or written). PartialResult:
// everything was written, but some shapes could not be filled and are there
// as outlines only. Several files: the worst status of any of them, in the
// order usage error, failure, partial result, success.
enum ExitCode : int { Success = 0, Failure = 1, UsageError = 2, PartialResult = 3 };

// One subcommand: its name, a one-line synopsis of its arguments, what it
// does, the function that runs it on the arguments after its name, and an
// example for its help.
struct Command {
    const char* name;
    const char* synopsis;
    const char* summary;
    int (*run)(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
    const char* example = "";
};

const std::vector<Command>& commands();

// The command called `name`; null when there is none.
const Command* findCommand(const std::string& name);

// The exit status table as --help prints it.
const char* exitStatusText();

// Runs the tool on argv[1..]; all output goes to out and err. "-" as an
// input reads standard input.
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
