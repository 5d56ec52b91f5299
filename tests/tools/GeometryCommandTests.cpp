// vksvg mesh, render and bbox, run in process on documents of their own.
#include "GeometryCommands.h"
#include "ToolTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace {

using tooltest::RunTool;
using ToolRun = tooltest::CliRun;
using tooltest::Command;
using GeometryCommands = tooltest::TempFiles;

// The number of lines of `text` that begin with `prefix`.
std::size_t CountLines(const std::string& text, const std::string& prefix)
{
    std::size_t count = text.rfind(prefix, 0) == 0 ? 1 : 0;
    for (std::size_t at = text.find("\n" + prefix); at != std::string::npos; at = text.find("\n" + prefix, at + 1))
        ++count;
    return count;
}

// A filled red square under a translation, a stroked line and a text.
const char* const kDrawing = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 40 20\">"
                             "<g id=\"layer\" transform=\"translate(10 5)\">"
                             "<rect id=\"box\" width=\"10\" height=\"10\" fill=\"red\"/></g>"
                             "<line x1=\"0\" y1=\"0\" x2=\"40\" y2=\"20\" stroke=\"blue\" stroke-width=\"2\"/>"
                             "<text x=\"1\" y=\"2\">t</text></svg>";

// The outline has a corner on another contour's edge: it cannot be filled.
const char* const kUnfillable = "<svg xmlns=\"http://www.w3.org/2000/svg\">"
                                "<path d=\"M0 0 H10 V10 H0 Z M5 0 L7 5 L3 5 Z\" fill=\"green\"/></svg>";

} // namespace

TEST_F(GeometryCommands, MeshWritesObjAndJson)
{
    const std::string in = Path("drawing.svg", kDrawing);
    const ToolRun obj = RunTool({in, "-o", Path("mesh.obj"), "--subset"}, vksvg::runMeshCommand);
    EXPECT_EQ(obj.code, 0) << obj.err;
    EXPECT_EQ(obj.out, "Primitives: 2\nContour points: 6\nTriangles: 2\nFailed shapes: 0\n");
    const std::string objText = Read(Path("mesh.obj"));
    EXPECT_EQ(CountLines(objText, "o "), 2u);
    EXPECT_EQ(CountLines(objText, "v "), 4u + 4u + 2u); // square outline, its trapezoid, the line
    EXPECT_EQ(CountLines(objText, "l "), 5u);
    EXPECT_NE(objText.find("\nv 10 5 0\n"), std::string::npos);
    EXPECT_NE(objText.find("\nf 5 6 8\n"), std::string::npos); // numbered after the outline, from 1
    EXPECT_NE(objText.find("\nl 9 10\n"), std::string::npos);

    const ToolRun json = RunTool({in, "-o", Path("mesh.json"), "--subset"}, vksvg::runMeshCommand);
    EXPECT_EQ(json.code, 0) << json.err;
    const std::string jsonText = Read(Path("mesh.json"));
    EXPECT_NE(jsonText.find("\"points\":[[10,5],[20,5],[20,15],[10,15]],\"indices\":[[0,1],[1,2],[2,3],[3,0]]"),
              std::string::npos)
        << jsonText;
    EXPECT_NE(jsonText.find("\"fill\":[1,0,0,1],\"stroke\":null,\"strokeWidth\":1}"), std::string::npos);
    EXPECT_NE(jsonText.find("\"triangleVertices\":[],\"triangleIndices\":[],\"fill\":[0,0,0,1],"
                            "\"stroke\":[0,0,1,1],\"strokeWidth\":2}"),
              std::string::npos);
    EXPECT_NE(jsonText.find("\"failedShapes\":0,\"stopped\":false}"), std::string::npos);
}

TEST_F(GeometryCommands, MeshReportsShapesThatKeepOnlyTheirOutline)
{
    const ToolRun r =
        RunTool({Path("bad.svg", kUnfillable), "-o", Path("bad.json"), "--subset"}, vksvg::runMeshCommand);
    EXPECT_EQ(r.code, 0);
    EXPECT_NE(r.out.find("Failed shapes: 1\n"), std::string::npos);
    EXPECT_NE(r.err.find("Only its contour will be visible."), std::string::npos);
    // The outline is drawn in the fill's paint instead.
    EXPECT_NE(Read(Path("bad.json")).find("\"stroke\":[0,0.501961,0,1]"), std::string::npos);
}

TEST_F(GeometryCommands, RenderWritesAPngOfTheViewboxAspect)
{
    const std::string in = Path("drawing.svg", kDrawing);
    const std::string png = Path("out.png");
    const ToolRun r = RunTool({in, "-o", png, "--width", "200", "--subset"}, vksvg::runRenderCommand);
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "Wrote " + png + " (200x100): 2 primitives, 2 triangles, 0 failed shapes\n");
    const std::string bytes = Read(png);
    ASSERT_GT(bytes.size(), 24u);
    EXPECT_EQ(bytes.substr(1, 3), "PNG");
    const auto be32 = [&bytes](std::size_t at) {
        return (unsigned(uint8_t(bytes[at])) << 24) | (unsigned(uint8_t(bytes[at + 1])) << 16) |
               (unsigned(uint8_t(bytes[at + 2])) << 8) | unsigned(uint8_t(bytes[at + 3]));
    };
    EXPECT_EQ(be32(16), 200u); // IHDR width and height
    EXPECT_EQ(be32(20), 100u);

    const std::string wire = Path("wire.png");
    EXPECT_EQ(RunTool({in, "-o", wire, "--height", "100", "--background", "none", "--wireframe", "--subset"},
                      vksvg::runRenderCommand)
                  .code,
              0);
    EXPECT_NE(Read(wire), bytes);
}

TEST_F(GeometryCommands, BboxPrintsDocumentAndTopLevelItems)
{
    const ToolRun r = RunTool({Path("drawing.svg", kDrawing), "--subset"}, vksvg::runBboxCommand);
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "svg: 0 0 40 20\n"
                     "  g \"layer\": 10 5 20 15\n"
                     "  line: 0 0 40 20\n"
                     "  text: empty\n");
}

TEST_F(GeometryCommands, UsageAndLoadFailures)
{
    const std::string in = Path("drawing.svg", kDrawing);
    const std::vector<std::pair<Command, std::vector<std::string>>> usage = {
        {vksvg::runMeshCommand, {in}},
        {vksvg::runMeshCommand, {in, "-o", "mesh.stl"}},
        {vksvg::runRenderCommand, {in, "-o", "x.png", "--width", "0"}},
        {vksvg::runRenderCommand, {in, "-o", "x.png", "--background", "nocolour"}},
        {vksvg::runRenderCommand, {"-o", "x.png"}},
        {vksvg::runBboxCommand, {}},
        {vksvg::runBboxCommand, {in, "--frobnicate"}},
    };
    for (const auto& [command, args] : usage) {
        const ToolRun r = RunTool(args, command);
        EXPECT_EQ(r.code, 2) << args.back();
        EXPECT_NE(r.err.find("Usage: vksvg"), std::string::npos);
    }
    const std::string missing = Path("missing.svg");
    EXPECT_EQ(RunTool({missing, "-o", Path("m.obj")}, vksvg::runMeshCommand).code, 1);
    EXPECT_EQ(RunTool({missing, "-o", Path("m.png")}, vksvg::runRenderCommand).code, 1);
    EXPECT_EQ(RunTool({missing}, vksvg::runBboxCommand).code, 1);
    EXPECT_EQ(RunTool({in, "-o", "/nonexistent-dir/x.png"}, vksvg::runRenderCommand).code, 1);
}

// The full profile's viewBox is the root viewport in pixels: drawn at that
// size unless a side is given. The subset keeps its default width of 512.
TEST_F(GeometryCommands, RenderDrawsTheRootViewportAtItsOwnSize)
{
    const std::string in = Path("sized.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"120\" height=\"80\" "
                                             "viewBox=\"0 0 60 40\"><rect width=\"30\" height=\"20\"/></svg>");
    const std::string png = Path("sized.png");
    const struct {
        std::vector<std::string> flags;
        std::string size;
    } cases[] = {
        {{}, "(120x80)"},
        {{"--width", "60"}, "(60x40)"},
        {{"--height", "160"}, "(240x160)"},
        {{"--width", "50", "--height", "50"}, "(50x50)"},
        {{"--subset", "--lenient"}, "(512x341)"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {in, "-o", png};
        args.insert(args.end(), c.flags.begin(), c.flags.end());
        const ToolRun r = RunTool(args, vksvg::runRenderCommand);
        EXPECT_EQ(r.code, 0) << r.err;
        EXPECT_EQ(r.out.rfind("Wrote " + png + " " + c.size + ": 1 primitives, 2 triangles", 0), 0u) << r.out;
    }
    // Fractional sizes round to whole pixels.
    const std::string mm = Path("mm.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10mm\" height=\"5.5mm\">"
                                          "<rect width=\"3\" height=\"2\"/></svg>");
    const ToolRun r = RunTool({mm, "-o", png}, vksvg::runRenderCommand);
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.rfind("Wrote " + png + " (38x21): ", 0), 0u) << r.out;
}

namespace {

// A filled square with an id, a filled circle and an open filled path
// without, and a stroked line.
const char* const kShapes = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 40 40\">"
                            "<rect id=\"box\" width=\"10\" height=\"10\" fill=\"red\"/>"
                            "<circle cx=\"25\" cy=\"10\" r=\"5\" fill=\"blue\"/>"
                            "<path d=\"M0 20 L10 20 L10 30\" fill=\"green\"/>"
                            "<line id=\"rule\" x1=\"0\" y1=\"35\" x2=\"40\" y2=\"35\" stroke=\"black\"/></svg>";

// The middle shape overflows to infinite coordinates, which cannot be filled.
const char* const kOverflow = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 20 20\">"
                              "<rect id=\"before\" width=\"5\" height=\"5\"/>"
                              "<path id=\"huge\" transform=\"scale(1e30)\" d=\"M0 0 L1e30 0 L0 1e30 Z\"/>"
                              "<path transform=\"scale(1e30)\" d=\"M0 0 L1e30 0 L0 1e30 Z\"/>"
                              "<rect id=\"after\" x=\"10\" y=\"10\" width=\"5\" height=\"5\"/></svg>";

// One object of an OBJ file: its name and its v, l and f lines.
struct ObjObject {
    std::string name;
    std::vector<std::string> vertices;
    std::vector<std::vector<std::size_t>> lines;
    std::vector<std::vector<std::size_t>> faces;
    std::size_t firstVertex = 1; // the global number of its first vertex
};

std::vector<ObjObject> ParseObj(const std::string& text)
{
    std::vector<ObjObject> objects;
    std::istringstream in(text);
    std::string line;
    std::size_t vertexCount = 0;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string kind;
        fields >> kind;
        if (kind == "o") {
            objects.emplace_back();
            fields >> objects.back().name;
            objects.back().firstVertex = vertexCount + 1;
        } else if (!objects.empty() && kind == "v") {
            objects.back().vertices.push_back(line);
            ++vertexCount;
        } else if (!objects.empty() && (kind == "l" || kind == "f")) {
            std::vector<std::size_t> numbers;
            for (std::size_t n = 0; fields >> n;)
                numbers.push_back(n);
            (kind == "l" ? objects.back().lines : objects.back().faces).push_back(numbers);
        }
    }
    return objects;
}

} // namespace

// Every value after --tolerance, for each command: good ones run, bad ones
// are usage errors that say what is wrong.
TEST_F(GeometryCommands, ToleranceMustBeAPositiveNumber)
{
    const std::string in = Path("shapes.svg", kShapes);
    const std::string obj = Path("t.obj");
    const std::string png = Path("t.png");
    const struct {
        std::vector<std::string> flags;
        int code;
        std::string message;
    } cases[] = {
        {{"--tolerance", "0.5"}, 0, ""},
        {{"--tolerance", "2"}, 0, ""},
        {{"--tolerance", "1e-3"}, 0, ""},
        {{"--tolerance", ".25"}, 0, ""},
        {{"--tolerance", "0"}, 2, "--tolerance must be above 0, not \"0\""},
        {{"--tolerance", "-1"}, 2, "--tolerance must be above 0, not \"-1\""},
        {{"--tolerance", "abc"}, 2, "--tolerance needs a number, not \"abc\""},
        {{"--tolerance", "1x"}, 2, "--tolerance needs a number, not \"1x\""},
        {{"--tolerance", ""}, 2, "--tolerance needs a number, not \"\""},
        {{"--tolerance", "nan"}, 2, "--tolerance needs a number, not \"nan\""},
        {{"--tolerance", "inf"}, 2, "--tolerance needs a number, not \"inf\""},
        {{"--tolerance", "1e99"}, 2, "--tolerance needs a number, not \"1e99\""},
        {{"--tolerance"}, 2, "--tolerance needs a value"},
        {{"--tolerance", "0.5", "--subset"}, 2, "--tolerance needs the default segmentation, not --subset"},
        {{"--subset", "--tolerance", "0.5"}, 2, "--tolerance needs the default segmentation, not --subset"},
    };
    const struct {
        const char* name;
        Command command;
        std::vector<std::string> args;
    } commands[] = {
        {"mesh", vksvg::runMeshCommand, {in, "-o", obj}},
        {"render", vksvg::runRenderCommand, {in, "-o", png}},
        {"bbox", vksvg::runBboxCommand, {in}},
    };
    for (const auto& command : commands) {
        for (const auto& c : cases) {
            std::vector<std::string> args = command.args;
            args.insert(args.end(), c.flags.begin(), c.flags.end());
            const ToolRun r = RunTool(args, command.command);
            const std::string label = command.name + (" " + testing::PrintToString(c.flags));
            EXPECT_EQ(r.code, c.code) << label << '\n' << r.err;
            if (c.code == 2) {
                EXPECT_NE(r.err.find("vksvg: " + c.message + "\n"), std::string::npos) << label << '\n' << r.err;
                EXPECT_NE(r.err.find("Usage: vksvg"), std::string::npos) << label;
            }
        }
    }
}

// A smaller tolerance gives more points: the value reaches the segmentation.
TEST_F(GeometryCommands, ToleranceSetsHowFinelyCurvesAreFlattened)
{
    const std::string in = Path("shapes.svg", kShapes);
    const auto contourPoints = [&](const std::vector<std::string>& flags) {
        std::vector<std::string> args = {in, "-o", Path("fine.obj")};
        args.insert(args.end(), flags.begin(), flags.end());
        const ToolRun r = RunTool(args, vksvg::runMeshCommand);
        EXPECT_EQ(r.code, 0) << r.err;
        const std::size_t at = r.out.find("Contour points: ");
        return at == std::string::npos ? 0ul : std::stoul(r.out.substr(at + 16));
    };
    const std::size_t coarse = contourPoints({"--tolerance", "1"});
    const std::size_t fine = contourPoints({"--tolerance", "0.001"});
    EXPECT_GT(fine, coarse);
    EXPECT_EQ(contourPoints({}), contourPoints({"--tolerance", "0.25"}));

    // render takes pixels: the same tolerance on a bigger picture is finer
    // in document units.
    const auto renderedTriangles = [&](const std::string& width) {
        const ToolRun r = RunTool({in, "-o", Path("fine.png"), "--width", width}, vksvg::runRenderCommand);
        EXPECT_EQ(r.code, 0) << r.err;
        const std::size_t at = r.out.find(" primitives, ");
        return at == std::string::npos ? 0ul : std::stoul(r.out.substr(at + 13));
    };
    EXPECT_GT(renderedTriangles("4000"), renderedTriangles("40"));
}

TEST_F(GeometryCommands, MeshObjSharesVerticesAndNamesObjectsByTheirIds)
{
    const std::string in = Path("shapes.svg", kShapes);
    const std::string obj = Path("shared.obj");
    const ToolRun r = RunTool({in, "-o", obj}, vksvg::runMeshCommand);
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.err, "");
    const std::vector<ObjObject> objects = ParseObj(Read(obj));
    ASSERT_EQ(objects.size(), 5u);
    EXPECT_EQ(objects[0].name, "box");
    EXPECT_EQ(objects[1].name, "shape-1");
    EXPECT_EQ(objects[2].name, "shape-2");
    EXPECT_EQ(objects[3].name, "rule");
    EXPECT_EQ(objects[4].name, "rule-stroke");
    for (const ObjObject& object : objects) {
        std::vector<std::string> sorted = object.vertices;
        std::sort(sorted.begin(), sorted.end());
        EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end()) << object.name << " repeats a vertex";
        // Lines and faces use the object's own vertices only.
        const std::size_t last = object.firstVertex + object.vertices.size();
        for (const auto* group : {&object.lines, &object.faces})
            for (const auto& element : *group)
                for (const std::size_t n : element)
                    EXPECT_TRUE(n >= object.firstVertex && n < last) << object.name << ' ' << n;
    }
    // The square: four corners shared by its two triangles and its outline.
    EXPECT_EQ(objects[0].vertices.size(), 4u);
    EXPECT_EQ(objects[0].faces.size(), 2u);
    EXPECT_EQ(objects[0].lines.size(), 4u);
    EXPECT_GT(objects[1].faces.size(), 4u);
    // The open path is filled as if closed: one triangle, and an outline of
    // two lines only.
    EXPECT_EQ(objects[2].vertices.size(), 3u);
    EXPECT_EQ(objects[2].faces.size(), 1u);
    EXPECT_EQ(objects[2].lines.size(), 2u);
    EXPECT_EQ(objects[3].faces.size(), 0u);
    EXPECT_EQ(objects[3].lines.size(), 1u);
}

TEST_F(GeometryCommands, MeshJsonHasIdsAndSubpaths)
{
    const std::string json = Path("shared.json");
    const ToolRun r = RunTool({Path("shapes.svg", kShapes), "-o", json}, vksvg::runMeshCommand);
    ASSERT_EQ(r.code, 0) << r.err;
    const std::string text = Read(json);
    EXPECT_EQ(text.rfind("{\"primitives\":[\n{\"id\":\"box\",\"points\":[[0,0],[10,0],[10,10],[0,10]],"
                         "\"indices\":[[0,1],[1,2],[2,3],[3,0]],"
                         "\"subpaths\":[{\"first\":0,\"count\":8,\"closed\":true}],\"triangleVertices\":",
                         0),
              0u)
        << text;
    EXPECT_NE(text.find("{\"id\":null,\"points\":[[0,20],[10,20],[10,30]],\"indices\":[[0,1],[1,2]],"
                        "\"subpaths\":[{\"first\":0,\"count\":4,\"closed\":false}],"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("{\"id\":\"rule\","), std::string::npos);
    EXPECT_NE(text.find("\"failedShapes\":0,\"failures\":[],\"stopped\":false}\n"), std::string::npos) << text;
}

// Each failed shape is named on standard error; the shapes after it are
// still written, and the exit status says the result is partial.
TEST_F(GeometryCommands, FailedShapesAreListedAndTheRestIsWritten)
{
    const std::string in = Path("overflow.svg", kOverflow);
    const std::string obj = Path("overflow.obj");
    const ToolRun mesh = RunTool({in, "-o", obj}, vksvg::runMeshCommand);
    EXPECT_EQ(mesh.code, 3) << mesh.err;
    EXPECT_NE(mesh.out.find("Primitives: 4\n"), std::string::npos) << mesh.out;
    EXPECT_NE(mesh.out.find("Failed shapes: 2\n"), std::string::npos) << mesh.out;
    EXPECT_NE(mesh.err.find("vksvg: shape 1 \"huge\": "), std::string::npos) << mesh.err;
    EXPECT_NE(mesh.err.find("vksvg: shape 2: "), std::string::npos) << mesh.err;
    EXPECT_EQ(CountLines(mesh.err, "vksvg: shape "), 2u) << mesh.err;
    const std::vector<ObjObject> objects = ParseObj(Read(obj));
    ASSERT_EQ(objects.size(), 4u);
    EXPECT_EQ(objects[3].name, "after");
    EXPECT_EQ(objects[3].faces.size(), 2u);

    const std::string json = Path("overflow.json");
    const ToolRun jsonRun = RunTool({in, "-o", json}, vksvg::runMeshCommand);
    EXPECT_EQ(jsonRun.code, 3);
    EXPECT_NE(Read(json).find("\"failedShapes\":2,\"failures\":[{\"index\":1,\"id\":\"huge\",\"reason\":"),
              std::string::npos)
        << Read(json);

    const std::string png = Path("overflow.png");
    const ToolRun render = RunTool({in, "-o", png}, vksvg::runRenderCommand);
    EXPECT_EQ(render.code, 3) << render.err;
    EXPECT_NE(render.out.find(": 4 primitives, 4 triangles, 2 failed shapes\n"), std::string::npos) << render.out;
    EXPECT_NE(render.err.find("vksvg: shape 1 \"huge\": "), std::string::npos) << render.err;

    // The old segmentation neither lists them nor calls the result partial.
    const ToolRun subset = RunTool({in, "-o", Path("subset.obj"), "--subset", "--lenient"}, vksvg::runMeshCommand);
    EXPECT_EQ(subset.err.find("vksvg: shape "), std::string::npos) << subset.err;
    EXPECT_NE(subset.code, 3);
}

// The default box is that of the flattened outlines, curves included and
// strokes not; --subset keeps the estimate.
TEST_F(GeometryCommands, BboxFromTheSegmentationOrTheEstimate)
{
    const std::string in = Path("boxes.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 40 40\">"
                                             "<path id=\"arch\" d=\"M0 0 C0 20 20 20 20 0\"/>"
                                             "<g id=\"moved\" transform=\"translate(5 5)\">"
                                             "<rect x=\"10\" y=\"10\" width=\"10\" height=\"4\" stroke=\"red\" "
                                             "stroke-width=\"4\"/></g><text>t</text></svg>");
    const ToolRun segmented = RunTool({in}, vksvg::runBboxCommand);
    EXPECT_EQ(segmented.code, 0) << segmented.err;
    EXPECT_EQ(segmented.out, "svg: 0 0 25 19\n"
                             "  path \"arch\": 0 0 20 15\n"
                             "  g \"moved\": 15 15 25 19\n"
                             "  text: empty\n");
    const ToolRun estimated = RunTool({in, "--subset"}, vksvg::runBboxCommand);
    EXPECT_EQ(estimated.code, 0) << estimated.err;
    // Estimates leave cubic curves out.
    EXPECT_EQ(estimated.out, "svg: 15 15 25 19\n"
                             "  path \"arch\": empty\n"
                             "  g \"moved\": 15 15 25 19\n"
                             "  text: empty\n");
    const ToolRun coarse = RunTool({in, "--tolerance", "100"}, vksvg::runBboxCommand);
    EXPECT_EQ(coarse.code, 0) << coarse.err;
    EXPECT_NE(coarse.out.find("  path \"arch\": 0 0 20 "), std::string::npos) << coarse.out;
}
