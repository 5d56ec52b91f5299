#include "CommandLine.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

namespace vksvg::cli {

vk::svg::LoadOptions LoadFlags::options() const
{
    vk::svg::LoadOptions options;
    options.profile = subset ? vk::svg::LoadProfile::Subset : vk::svg::LoadProfile::Full;
    options.ignoreUnsupported = lenient;
    return options;
}

namespace {

// `text` broken into lines of at most `width` characters at blanks.
std::string Wrap(const std::string& text, std::size_t width)
{
    std::string wrapped;
    std::size_t lineLength = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find(' ', at);
        if (end == std::string::npos)
            end = text.size();
        const std::size_t word = end - at;
        if (lineLength > 0 && lineLength + 1 + word > width) {
            wrapped += '\n';
            lineLength = 0;
        } else if (lineLength > 0) {
            wrapped += ' ';
            ++lineLength;
        }
        wrapped.append(text, at, word);
        lineLength += word;
        at = end + 1;
    }
    return wrapped;
}

} // namespace

Parser::Parser(const Command& command)
    : mCommand(command),
      mApp(std::make_unique<CLI::App>(Wrap(command.summary, 100), std::string("vksvg ") + command.name))
{
    mApp->set_help_flag("-h,--help", "Print this help and exit");
    mApp->footer(std::string("Example:\n  ") + command.example + "\n\n" + exitStatusText());
    mApp->get_formatter()->column_width(34);
}

CLI::Option* Parser::flag(const std::string& names, bool& value, const std::string& description)
{
    return mApp->add_flag(names, value, description)->disable_flag_override();
}

CLI::Option* Parser::value(const std::string& names, std::string& value, const std::string& typeName,
                           const std::string& description)
{
    return mApp->add_option(names, value, description)->type_name(typeName);
}

void Parser::loadFlags(LoadFlags& flags)
{
    flag("--subset", flags.subset,
         "Read only the library's own subset of SVG, failing on anything else (mesh, render, bbox: segment as the "
         "library always has)");
    flag("--lenient", flags.lenient, "With --subset, skip what the subset does not know with a warning");
}

std::optional<int> Parser::parse(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    // CLI11 takes its arguments last first.
    std::vector<std::string> reversed(args.rbegin(), args.rend());
    try {
        mApp->parse(reversed);
    } catch (const CLI::CallForHelp&) {
        out << mApp->help();
        return Success;
    } catch (const CLI::ParseError& error) {
        return usage(explain(error), err);
    }
    return std::nullopt;
}

std::string Parser::explain(const CLI::ParseError& error) const
{
    const std::string what = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        const std::vector<std::string> extras = mApp->remaining();
        if (!extras.empty()) {
            const std::string& first = extras.front();
            if (first.size() > 1 && first[0] == '-')
                return "unknown option \"" + first + "\"";
            return "unexpected argument \"" + first + "\"";
        }
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        // CLI11 words these as "NAME: 1 required TYPE missing" and "NAME was
        // given a disallowed flag override".
        const std::size_t colon = what.find(": ");
        if (colon != std::string::npos && what.find(" required ") != std::string::npos && what.size() > 8 &&
            what.compare(what.size() - 8, 8, " missing") == 0)
            return what.substr(0, colon) + " needs a value";
        const std::string overridden = " was given a disallowed flag override";
        const std::size_t at = what.find(overridden);
        if (at != std::string::npos) {
            // Flags come back by their bare name.
            const std::string name = what.substr(0, at);
            return (name.rfind('-', 0) == 0 ? name : "--" + name) + " takes no value";
        }
    }
    return what;
}

int Parser::usage(const std::string& why, std::ostream& err) const
{
    if (!why.empty())
        err << "vksvg: " << why << '\n';
    err << "Usage: vksvg " << mCommand.name << ' ' << mCommand.synopsis << '\n'
        << "Run \"vksvg " << mCommand.name << " --help\" for every option.\n";
    return UsageError;
}

bool ParseWhole(const std::string& option, const std::string& text, long min, long max, long& value, std::string& why)
{
    long parsed = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, parsed);
    if (text.empty() || error != std::errc() || stop != end || parsed < min || parsed > max) {
        why = option + " needs a whole number from " + std::to_string(min) + " to " + std::to_string(max) + ", not \"" +
              text + "\"";
        return false;
    }
    value = parsed;
    return true;
}

// from_chars, not strtof, so that the process locale cannot change what a
// number means.
bool ParseTolerance(const std::string& text, float& tolerance, std::string& why)
{
    float value = 0.0f;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || stop != end || !std::isfinite(value)) {
        why = "--tolerance needs a number, not \"" + text + "\"";
        return false;
    }
    if (!(value > 0.0f)) {
        why = "--tolerance must be above 0, not \"" + text + "\"";
        return false;
    }
    tolerance = value;
    return true;
}

} // namespace vksvg::cli
