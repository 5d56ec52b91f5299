#include "Cli.h"

#include <svg/Version.h>

#include <ostream>

namespace vksvg {

namespace {

void printUsage(std::ostream& out)
{
    out << "Usage: vksvg COMMAND [ARGS...]\n"
           "       vksvg --help | --version\n"
           "\n"
           "Commands:\n";
    for (const Command& command : commands())
        out << "  " << command.name << ' ' << command.synopsis << "\n      " << command.summary << '\n';
    out << "\nExit status: 0 success, 1 failure, 2 usage error.\n";
}

} // namespace

const std::vector<Command>& commands()
{
    static const std::vector<Command> table = {
        {"color", "TEXT...",
         "Parse each TEXT as an SVG colour and print its red, green, blue and alpha bytes, or say that it is no "
         "colour.",
         runColorCommand},
    };
    return table;
}

int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (args.empty()) {
        printUsage(err);
        return UsageError;
    }
    const std::string& first = args.front();
    if (first == "--help" || first == "-h" || first == "help") {
        printUsage(out);
        return Success;
    }
    if (first == "--version") {
        out << "vksvg " << vkSvg::Version::GetDescStringMajorMinorReleaseRevisionDate() << '\n';
        return Success;
    }
    for (const Command& command : commands())
        if (first == command.name)
            return command.run(std::vector<std::string>(args.begin() + 1, args.end()), out, err);
    err << "vksvg: unknown command '" << first << "'\n\n";
    printUsage(err);
    return UsageError;
}

} // namespace vksvg
