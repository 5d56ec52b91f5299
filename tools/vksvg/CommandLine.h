#ifndef VKSVG_TOOL_COMMANDLINE_H
#define VKSVG_TOOL_COMMANDLINE_H

// Each command's arguments, parsed by CLI11. Values are taken as text and
// checked by the command itself, so that every bad value gets a message
// that names the option, the value and what is allowed.

#include "Cli.h"

#include <svg/Options.h>

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace vksvg::cli {

// --subset and --lenient, which every command that loads a document takes.
struct LoadFlags {
    bool subset = false;
    bool lenient = false;

    // The full profile unless --subset asks for the library's own subset,
    // read strictly unless --lenient.
    vk::svg::LoadOptions options() const;
};

class Parser {
public:
    explicit Parser(const Command& command);

    CLI::App& app() { return *mApp; }

    // A flag: --name=VALUE is refused rather than read as true or false.
    CLI::Option* flag(const std::string& names, bool& value, const std::string& description);
    // An option with one value, kept as text.
    CLI::Option* value(const std::string& names, std::string& value, const std::string& typeName,
                       const std::string& description);
    void loadFlags(LoadFlags& flags);

    // Whether the option was on the command line.
    bool given(const std::string& name) const { return mApp->count(name) > 0; }

    // Parses `args`: nullopt when the command is to run, else the exit
    // status (0 after --help, 2 after a usage error, both printed).
    std::optional<int> parse(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

    // Prints why the arguments are wrong, the usage line and where the help
    // is; returns UsageError.
    int usage(const std::string& why, std::ostream& err) const;

private:
    std::string explain(const CLI::ParseError& error) const;

    const Command& mCommand;
    std::unique_ptr<CLI::App> mApp;
};

// Checked values: each returns false and says why, naming the option and
// the value, when the text is not allowed.

// A whole decimal number from `min` to `max`.
bool ParseWhole(const std::string& option, const std::string& text, long min, long max, long& value, std::string& why);

// A finite number above 0, read in the "C" locale whatever the process's.
bool ParseTolerance(const std::string& text, float& tolerance, std::string& why);

} // namespace vksvg::cli

#endif
