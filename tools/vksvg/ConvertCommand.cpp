#include "Cli.h"
#include "CommandSupport.h"

#include <vkSystem/vkIoDeviceMemory.h>

#include <cerrno>
#include <cstdlib>
#include <ostream>

namespace vksvg {

namespace {

constexpr const char* kUsage =
    "Usage: vksvg convert IN OUT [--precision N] [--pretty] [--no-header] [--subset] [--lenient]\n";

// A whole decimal integer from -1 (the default) to 100.
bool ParsePrecision(const std::string& text, int32_t& precision)
{
    if (text.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (errno != 0 || end != text.c_str() + text.size() || value < -1 || value > 100)
        return false;
    precision = static_cast<int32_t>(value);
    return true;
}

} // namespace

int runConvertCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    std::vector<std::string> files;
    vk::svg::SaveOptions saveOptions;
    vk::svg::LoadOptions loadOptions = DefaultLoadOptions();
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--pretty") {
            saveOptions.prettyPrint = true;
        } else if (arg == "--no-header") {
            saveOptions.writeHeaderComments = false;
        } else if (arg == "--precision") {
            if (i + 1 >= args.size() || !ParsePrecision(args[i + 1], saveOptions.precision)) {
                err << "vksvg: --precision needs a whole number from -1 to 100\n" << kUsage;
                return UsageError;
            }
            ++i;
        } else if (arg.size() > 1 && arg[0] == '-') {
            if (!ApplyLoadFlag(arg, loadOptions)) {
                err << "vksvg: unknown option '" << arg << "'\n" << kUsage;
                return UsageError;
            }
        } else {
            files.push_back(arg);
        }
    }
    if (files.size() != 2) {
        err << kUsage;
        return UsageError;
    }

    DocumentSession session(err);
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> root;
    if (!LoadDocument(files[0], loadOptions, root, err))
        return Failure;
    if (root == nullptr) {
        err << "vksvg: \"" << files[0] << "\" holds no item to write\n";
        return Failure;
    }

    std::list<std::string> messages;
    bool saved = false;
    if (files[1] == "-") {
        // "-" writes to standard output.
        vk::vkIoDeviceMemory device;
        saved = vk::svg::vkSvgIOManager::get().saveSvg(*root, device, "svg", nullptr, &saveOptions, &messages);
        out << device.getData();
    } else {
        saved = vk::svg::vkSvgIOManager::get().saveSvg(*root, files[1], nullptr, &saveOptions, &messages);
    }
    PrintMessages(messages, err);
    return saved ? Success : Failure;
}

} // namespace vksvg
