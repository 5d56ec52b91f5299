// vksvg mesh, render and bbox, run in process on documents of their own.
#include "GeometryCommands.h"
#include "ToolTestSupport.h"

#include <gtest/gtest.h>

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
