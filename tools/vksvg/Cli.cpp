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
    out << "\nThe commands that load a document read it as a web browser does: style sheets, references, units "
           "and every shape, with what the items cannot hold skipped with a warning. --subset reads only the "
           "library's own subset of SVG, failing on anything else, or with --lenient skipping it with a "
           "warning.\n"
           "\nExit status: 0 success, 1 failure, 2 usage error.\n";
}

} // namespace

const std::vector<Command>& commands()
{
    static const std::vector<Command> table = {
        {"color", "TEXT...",
         "Parse each TEXT as an SVG colour and print its red, green, blue and alpha bytes, or say that it is no "
         "colour.",
         runColorCommand},
        {"info", "FILE [--subset] [--lenient]",
         "Load an SVG document and print its items as an indented outline with ids and key geometry, then the "
         "number of items of each type. Warnings and errors go to standard error, one per line.",
         runInfoCommand},
        {"convert", "IN OUT [--precision N] [--pretty] [--no-header] [--subset] [--lenient]",
         "Load IN and save it as OUT (\"-\" for standard output): N digits after the point (default 6), "
         "indented output, no Exporter/Datetime comments. Messages go to standard error.",
         runConvertCommand},
        {"mesh", "IN -o OUT [--subset] [--lenient]",
         "Segment IN and write the result to OUT: .obj (one object per shape, outline as lines, fill as triangles) or "
         ".json (points, index pairs, triangle vertices and indices, fill and stroke colours, stroke width). Prints "
         "the numbers of primitives, outline points and triangles, and of shapes whose fill could not be "
         "triangulated; exits with 1 when segmentation stopped at a stroked one.",
         runMeshCommand},
        {"render", "IN -o OUT.png [--width W] [--height H] [--background COLOR] [--wireframe] [--subset] [--lenient]",
         "Draw the segmentation of IN as a PNG: fills from their triangles, outlines in their stroke colour and "
         "width, the viewBox (or the estimated box) fitted to W x H on COLOR (default white; none for "
         "transparent). The default size is the document's own in pixels, or with --subset or without a viewBox "
         "512 wide; a missing side follows the aspect ratio. --wireframe also outlines every triangle.",
         runRenderCommand},
        {"bbox", "IN [--subset] [--lenient]",
         "Print the estimated bounding box (min x, min y, max x, max y) of the document and of each of its "
         "top-level items, or \"empty\" for items without geometry.",
         runBboxCommand},
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
