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
           "\nmesh, render and bbox segment as SVG renderers do: curves flattened to within --tolerance T (default "
           "0.25; pixels for render, document units for mesh and bbox), fills by the fill rule with open subpaths "
           "closed, every shape segmented even after one fails. With --subset they segment as the library always "
           "has (32 steps per curve, non-zero fills, stopping at a failed stroked shape) and --tolerance is a "
           "usage error.\n"
           "\nExit status: 0 success, 1 failure, 2 usage error, 3 partial result (mesh and render: some shapes "
           "could not be filled; each is listed on standard error and kept as its outline, the rest is written).\n";
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
        {"mesh", "IN -o OUT [--tolerance T] [--subset] [--lenient]",
         "Segment IN and write the result to OUT: .obj (one object per shape named by its id or shape-N, each "
         "vertex once, outline as lines, fill as triangles) or .json (per shape its id, points, index pairs, "
         "subpaths, triangle vertices and indices, fill and stroke colours, stroke width; then the failed shapes). "
         "Prints the numbers of primitives, outline points and triangles, and of shapes whose fill could not be "
         "made, each listed on standard error; exits with 3 when there are any. With --subset, the library's old "
         "output (outline and triangle vertices apart, objects shapeN), exiting with 1 when segmentation stopped "
         "at a stroked shape.",
         runMeshCommand},
        {"render",
         "IN -o OUT.png [--width W] [--height H] [--background COLOR] [--wireframe] [--tolerance T] [--subset] "
         "[--lenient]",
         "Draw the segmentation of IN as a PNG: fills from their triangles, outlines in their stroke colour and "
         "width, the viewBox (or the estimated box) fitted to W x H on COLOR (default white; none for "
         "transparent). The default size is the document's own in pixels, or with --subset or without a viewBox "
         "512 wide; a missing side follows the aspect ratio. --wireframe also outlines every triangle. Shapes whose "
         "fill could not be made are listed on standard error and drawn as outlines; the exit status is then 3.",
         runRenderCommand},
        {"bbox", "IN [--tolerance T] [--subset] [--lenient]",
         "Print the bounding box (min x, min y, max x, max y) of the document and of each of its top-level items, "
         "or \"empty\" for items without geometry: the box of the segmented outlines (strokes not included), or "
         "with --subset the estimated box.",
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
