#include "Batch.h"
#include "Cli.h"
#include "CommandLine.h"
#include "LoadReport.h"
#include "OutputFile.h"
#include "Session.h"

#include <vkSystem/vkIoDeviceMemory.h>

#include <ostream>

namespace vksvg {

namespace {

struct ConvertFlags {
    std::string precision;
    bool pretty = false;
    bool noHeader = false;
};

// The one place where convert's SaveOptions are made from its flags: new
// save options (and their flags) are added here.
bool BuildSaveOptions(const cli::Parser& parser, const ConvertFlags& flags, bool subset, vk::svg::SaveOptions& options,
                      std::string& why)
{
    options = vk::svg::SaveOptions();
    // The fewest digits that read back exactly, unless a precision is asked
    // for or the library's own behaviour is (--subset).
    options.shortestNumbers = !subset;
    if (parser.given("--precision")) {
        options.shortestNumbers = false;
        long precision = 0;
        if (!cli::ParseWhole("--precision", flags.precision, -1, 100, precision, why))
            return false;
        options.precision = static_cast<int32_t>(precision);
    }
    options.prettyPrint = flags.pretty;
    options.writeHeaderComments = !flags.noHeader;
    return true;
}

int ConvertOne(const Job& job, const vk::svg::LoadOptions& loadOptions, const vk::svg::SaveOptions& saveOptions,
               std::ostream& out, std::ostream& err)
{
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> root;
    if (!LoadDocument(job.input, loadOptions, root, err))
        return Failure;
    if (root == nullptr) {
        err << "vksvg: \"" << job.input << "\" holds no item to write\n";
        return Failure;
    }
    vk::vkIoDeviceMemory device;
    const io::SaveResult saved = io::SaveDocument(*root, device, saveOptions);
    for (const io::Diagnostic& diagnostic : saved.diagnostics)
        PrintDiagnostic(diagnostic, job.output, err);
    if (!saved.ok) {
        err << "vksvg: cannot write \"" << job.output << "\"\n";
        return Failure;
    }
    std::string why;
    if (!output::WriteOutput(job.output, device.getData(), out, why)) {
        err << "vksvg: cannot write \"" << job.output << "\": " << why << '\n';
        return Failure;
    }
    return Success;
}

} // namespace

int runConvertCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    cli::Parser parser(*findCommand("convert"));
    std::vector<std::string> files;
    std::string output;
    std::string directory;
    std::string jobsText;
    ConvertFlags flags;
    cli::LoadFlags loadFlags;
    parser.app().add_option("FILES", files,
                            "IN OUT, or the inputs with -o or -d (\"-\" reads standard input, or as OUT writes "
                            "standard output)");
    parser.value("-o,--output", output, "OUT", "The output file (.svg; \"-\" for standard output)");
    parser.value("-d,--directory", directory, "DIR", "Write each input to DIR/<stem>.svg (made when missing)");
    parser.value("-j,--jobs", jobsText, "N", "Work on N files at a time (1 to 256, default 1)");
    parser.value("--precision", flags.precision, "N", "Digits after the point, -1 to 100 (default: the fewest that read back exactly; with --subset 6)");
    parser.flag("--pretty", flags.pretty, "Indent the output and space out path data");
    parser.flag("--no-header", flags.noHeader, "Leave out the Exporter and Datetime comments");
    parser.loadFlags(loadFlags);
    if (const auto status = parser.parse(args, out, err))
        return *status;

    std::string why;
    vk::svg::SaveOptions saveOptions;
    const bool subset = loadFlags.options().profile == vk::svg::LoadProfile::Subset;
    if (!BuildSaveOptions(parser, flags, subset, saveOptions, why))
        return parser.usage(why, err);
    long jobsCount = 1;
    if (parser.given("--jobs") && !cli::ParseWhole("-j", jobsText, 1, 256, jobsCount, why))
        return parser.usage(why, err);
    // Without -o or -d the last file is the output.
    if (output.empty() && directory.empty()) {
        if (files.size() != 2)
            return parser.usage(std::to_string(files.size()) + (files.size() == 1 ? " file given" : " files given") +
                                    ": convert takes IN OUT, IN -o OUT, or several inputs with -d DIR",
                                err);
        output = files.back();
        files.pop_back();
    }
    std::string format;
    if (!output::ChooseFormat("convert", {"svg"}, output, "", format, why))
        return parser.usage(why, err);
    std::vector<Job> jobs;
    if (!PlanJobs(files, output, directory, ".svg", jobs, why))
        return parser.usage(why, err);
    if (!directory.empty() && !PrepareDirectory(directory, why)) {
        err << "vksvg: cannot write to \"" << directory << "\": " << why << '\n';
        return Failure;
    }

    const vk::svg::LoadOptions loadOptions = loadFlags.options();
    DocumentSession session(err);
    const auto work = [&](const Job& job, std::ostream& jobOut, std::ostream& jobErr) {
        return ConvertOne(job, loadOptions, saveOptions, jobOut, jobErr);
    };
    if (directory.empty())
        return work(jobs.front(), out, err);
    return RunBatch(jobs, static_cast<unsigned>(jobsCount), work, out, err);
}

} // namespace vksvg
