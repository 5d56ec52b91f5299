#include "Cli.h"

#include <svg/Version.h>

#include <ostream>

namespace vksvg {

namespace {

void printUsage(std::ostream& out)
{
    out << "Usage: vksvg COMMAND [ARGS...]\n"
           "       vksvg COMMAND --help\n"
           "       vksvg --help | --version\n"
           "\n"
           "Commands:\n";
    for (const Command& command : commands())
        out << "  " << command.name << ' ' << command.synopsis << "\n      " << command.summary << '\n';
    out << "\nThe commands that load a document read it as a web browser does: style sheets, references, units "
           "and every shape, with what the items cannot hold skipped with a warning. --subset reads only the "
           "library's own subset of SVG, failing on anything else, or with --lenient skipping it with a "
           "warning. Any file name is read as SVG; \"-\" reads standard input.\n"
           "\nmesh, render and bbox segment as SVG renderers do: curves flattened to within --tolerance T (default "
           "0.25; pixels for render, document units for mesh and bbox), fills by the fill rule with open subpaths "
           "closed, every shape segmented even after one fails. With --subset they segment as the library always "
           "has (32 steps per curve, non-zero fills, stopping at a failed stroked shape) and --tolerance is a "
           "usage error.\n"
           "\nconvert, mesh and render take several inputs with -d DIR: each output is named after its input's "
           "stem with the format's extension, -j N works on N files at a time, and the failed files are listed "
           "at the end. Options take their value as --opt VALUE or --opt=VALUE.\n"
           "\n"
        << exitStatusText();
}

} // namespace

const char* exitStatusText()
{
    return "Exit status: 0 success, 1 failure, 2 usage error, 3 partial result:\n"
           "  0  success\n"
           "  1  an input problem: a file could not be read, loaded or written\n"
           "  2  a usage error: an unknown command or option, a missing or bad value\n"
           "  3  a partial result (mesh and render): some shapes could not be filled; each is listed on standard\n"
           "     error and kept as its outline, the rest is written\n"
           "  With several inputs: the worst status of any file (2, then 1, then 3).\n";
}

const std::vector<Command>& commands()
{
    static const std::vector<Command> table = {
        {"color", "TEXT... [--json]",
         "Parse each TEXT as an SVG colour and print its red, green, blue and alpha bytes, or say that it is no "
         "colour.",
         runColorCommand, "vksvg color '#f80' rebeccapurple 'rgb(100%,50%,0%)'"},
        {"info", "FILE [--json] [--subset] [--lenient]",
         "Load an SVG document and print its items as an indented outline with ids and key geometry, then the "
         "number of items of each type. Warnings and errors go to standard error, one per line.",
         runInfoCommand, "vksvg info drawing.svg --json"},
        {"convert", "IN OUT | IN... -d DIR [-j N] [--precision N] [--pretty] [--no-header] [--subset] [--lenient]",
         "Load IN and save it as OUT (\"-\" for standard output): N digits after the point (default 6), "
         "indented output, no Exporter/Datetime comments. Messages go to standard error.",
         runConvertCommand, "vksvg convert drawing.svg clean.svg --precision 2 --pretty"},
        {"mesh",
         "IN -o OUT | IN... -d DIR [-j N] [--format obj|json] [--json] [--strokes] [--tolerance T] [--subset] "
         "[--lenient]",
         "Segment IN and write the result to OUT: .obj (one object per shape named by its id or shape-N, each "
         "vertex once, outline as lines, fill as triangles; with --strokes each stroke's triangles as the object "
         "<name>-stroke) or .json (per shape its id, points, index pairs, subpaths, triangle vertices and "
         "indices, fill and stroke colours, stroke width, stroke vertices and indices; then the failed shapes). "
         "Prints the numbers of primitives, outline points, fill and stroke triangles, and of shapes whose fill "
         "could not be made, each listed on standard error; exits with 3 when there are any. With --subset, the "
         "library's old "
         "output (outline and triangle vertices apart, objects shapeN), exiting with 1 when segmentation stopped "
         "at a stroked shape.",
         runMeshCommand, "vksvg mesh drawing.svg -o drawing.obj"},
        {"render",
         "IN -o OUT | IN... -d DIR [-j N] [--format png|pdf|svg] [--width W] [--height H] [--background COLOR] "
         "[--wireframe] [--tolerance T] [--subset] [--lenient]",
         "Draw the segmentation of IN as a PNG, PDF or SVG picture (cairo): each shape's fill triangles in its "
         "fill paint, then its stroke triangles in its stroke paint (with --subset, outlines stroked by cairo in "
         "their stroke colour and width), the viewBox (or the estimated box) fitted to W x H on COLOR (default "
         "white; none for transparent). The default size is the document's own in pixels, or with --subset or "
         "without a viewBox 512 wide; a missing side follows the aspect ratio. --wireframe also outlines every "
         "triangle, fill triangles in crimson and stroke triangles in blue. Shapes whose fill could not be made are "
         "listed on standard error and drawn as outlines; the "
         "exit status is then 3.",
         runRenderCommand, "vksvg render drawing.svg -o drawing.png --width 640"},
        {"bbox", "IN [--json] [--tolerance T] [--subset] [--lenient]",
         "Print the bounding box (min x, min y, max x, max y) of the document and of each of its top-level items, "
         "or \"empty\" for items without geometry: the box of the segmented outlines (strokes not included), or "
         "with --subset the estimated box.",
         runBboxCommand, "vksvg bbox drawing.svg --tolerance 0.1"},
    };
    return table;
}

const Command* findCommand(const std::string& name)
{
    for (const Command& command : commands())
        if (name == command.name)
            return &command;
    return nullptr;
}

int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (args.empty()) {
        printUsage(err);
        return UsageError;
    }
    const std::string& first = args.front();
    if (first == "--help" || first == "-h" || first == "help") {
        // "vksvg help mesh" is "vksvg mesh --help".
        if (args.size() > 1) {
            if (const Command* command = findCommand(args[1]))
                return command->run({"--help"}, out, err);
            err << "vksvg: unknown command \"" << args[1] << "\"\n\n";
            printUsage(err);
            return UsageError;
        }
        printUsage(out);
        return Success;
    }
    if (first == "--version") {
        out << "vksvg " << vkSvg::Version::GetDescStringMajorMinorReleaseRevisionDate() << '\n';
        return Success;
    }
    if (const Command* command = findCommand(first))
        return command->run(std::vector<std::string>(args.begin() + 1, args.end()), out, err);
    if (first.size() > 1 && first[0] == '-')
        err << "vksvg: unknown option '" << first << "': options follow the command\n\n";
    else
        err << "vksvg: unknown command '" << first << "'\n\n";
    printUsage(err);
    return UsageError;
}

} // namespace vksvg
