// The vksvg program as a user meets it: run as a process, its exit status,
// standard output and standard error checked.
#include "ProcessSupport.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using tooltest::ProcessOptions;
using tooltest::ProcessRun;
using tooltest::RunVksvg;
using Json = nlohmann::json;
namespace fs = std::filesystem;

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

std::string Label(const std::vector<std::string>& args)
{
    std::string label = "vksvg";
    for (const std::string& arg : args)
        label += " " + arg;
    return label;
}

class Process : public tooltest::ProcessTest {};

const char* const kSquare = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 40 20\">"
                            "<rect id=\"box\" x=\"10\" y=\"5\" width=\"10\" height=\"10\" fill=\"red\"/></svg>";

} // namespace

// Every command explains itself: each option, an example and the exit
// statuses; "vksvg help COMMAND" says the same.
TEST_F(Process, EveryCommandHasHelp)
{
    const struct {
        std::string command;
        std::vector<std::string> options;
    } cases[] = {
        {"color", {"--json"}},
        {"info", {"--json", "--subset", "--lenient"}},
        {"convert",
         {"-o,--output", "-d,--directory", "-j,--jobs", "--precision", "--pretty", "--no-header", "--subset",
          "--lenient"}},
        {"mesh",
         {"-o,--output", "-d,--directory", "-j,--jobs", "--format", "--json", "--tolerance", "--subset"}},
        {"render",
         {"-o,--output", "-d,--directory", "-j,--jobs", "--format", "--width", "--height", "--background",
          "--wireframe", "--tolerance", "--subset", "--lenient"}},
        {"bbox", {"--json", "--tolerance", "--subset", "--lenient"}},
    };
    for (const auto& c : cases) {
        const ProcessRun help = RunVksvg({c.command, "--help"});
        EXPECT_EQ(help.status, 0) << c.command;
        EXPECT_EQ(help.err, "") << c.command;
        EXPECT_TRUE(Contains(help.out, "Usage: vksvg " + c.command)) << help.out;
        EXPECT_TRUE(Contains(help.out, "Example:\n  vksvg " + c.command + " ")) << help.out;
        EXPECT_TRUE(Contains(help.out, "  2  a usage error")) << help.out;
        for (const std::string& option : c.options)
            EXPECT_TRUE(Contains(help.out, "  " + option + " ") || Contains(help.out, "  " + option + "\n"))
                << c.command << " lacks " << option << '\n'
                << help.out;
        EXPECT_EQ(RunVksvg({"help", c.command}).out, help.out);
        EXPECT_EQ(RunVksvg({c.command, "-h"}).out, help.out);
    }
    const ProcessRun top = RunVksvg({"--help"});
    EXPECT_EQ(top.status, 0);
    for (const auto& c : cases)
        EXPECT_TRUE(Contains(top.out, "\n  " + c.command + " ")) << c.command;
    EXPECT_TRUE(Contains(top.out, "With several inputs: the worst status of any file"));
}

// A usage error names the option or value and what is allowed, then the
// usage line; nothing goes to standard output.
TEST_F(Process, UsageErrorsSayWhatIsWrong)
{
    const std::string in = File("in.svg", kSquare);
    const std::string obj = File("out.obj");
    const struct {
        std::vector<std::string> args;
        std::string message;
    } cases[] = {
        {{"render", in, "-o", "x.png", "--width", "0"}, "--width needs a whole number from 1 to 16384, not \"0\""},
        {{"render", in, "-o", "x.png", "--width=abc"}, "--width needs a whole number from 1 to 16384, not \"abc\""},
        {{"render", in, "-o", "x.png", "--height", "16385"},
         "--height needs a whole number from 1 to 16384, not \"16385\""},
        {{"render", in, "-o", "x.png", "--background", "nocolour"},
         "--background needs an SVG colour or none, not \"nocolour\""},
        {{"render", in, "-o", "x.jpg"}, "cannot tell the format of \"x.jpg\": render writes .png, .pdf or .svg"},
        {{"render", in, "-o", "x"}, "cannot tell the format of \"x\": render writes .png, .pdf or .svg"},
        {{"render", in, "-o", "-", "--format", "gif"}, "--format must be png, pdf or svg, not \"gif\""},
        {{"render", in, "-o", "x.png", "--format=pdf"}, "--format pdf does not match \"x.png\""},
        {{"render", in, "-o", "x.png", "--tolerance"}, "--tolerance needs a value"},
        {{"render", in, "-o", "x.png", "--tolerance", "-1"}, "--tolerance must be above 0, not \"-1\""},
        {{"render", in}, "no output given: name it with -o OUT (\"-\" for standard output)"},
        {{"render", "-o", "x.png"}, "no input given"},
        {{"mesh", in, "-o", "x.stl"}, "cannot tell the format of \"x.stl\": mesh writes .obj or .json"},
        {{"mesh", in, in, "-o", obj}, "2 inputs given: several inputs need -d DIR for their outputs"},
        {{"mesh", in, "-o", obj, "-d", "dir"}, "-o and -d cannot go together"},
        {{"mesh", in, "-d", "dir", "-j", "0"}, "-j needs a whole number from 1 to 256, not \"0\""},
        {{"mesh", "-", "-d", "dir"}, "standard input (\"-\") has no name to give its output in -d DIR: use -o"},
        {{"mesh", in, File("in.SVG", kSquare), "-d", "dir"},
         "\"" + in + "\" and \"" + File("in.SVG") + "\" would both write \"dir/in.obj\""},
        {{"mesh", in, "-o", "-", "--json"}, "--json prints to standard output, which -o - already takes"},
        {{"convert", in, "out.svg", "--precision", "101"},
         "--precision needs a whole number from -1 to 100, not \"101\""},
        {{"convert", in, "a.svg", "b.svg"}, "3 files given: convert takes IN OUT, IN -o OUT, or several inputs"},
        {{"info", in, "--bogus"}, "unknown option \"--bogus\""},
        {{"info", in, "--subset=yes"}, "--subset takes no value"},
        {{"info", in, in}, "info reads one file, not 2"},
        {{"bbox"}, "no input given"},
        {{"bbox", in, "--subset", "--tolerance", "1"}, "--tolerance needs the default segmentation, not --subset"},
        {{"color"}, "no colour given"},
        {{"frobnicate"}, "unknown command 'frobnicate'"},
    };
    for (const auto& c : cases) {
        const ProcessRun r = RunVksvg(c.args, {"", Directory().string(), 0});
        EXPECT_EQ(r.status, 2) << Label(c.args) << '\n' << r.err;
        EXPECT_EQ(r.out, "") << Label(c.args);
        EXPECT_TRUE(Contains(r.err, "vksvg: " + c.message)) << Label(c.args) << '\n' << r.err;
        EXPECT_TRUE(Contains(r.err, "Usage: vksvg")) << Label(c.args);
    }
    // Nothing was written on the way.
    EXPECT_FALSE(fs::exists(Directory() / "x.png"));
    EXPECT_FALSE(fs::exists(Directory() / "dir"));
}

// --opt VALUE and --opt=VALUE are the same option.
TEST_F(Process, OptionValuesTakeBothForms)
{
    const std::string in = File("in.svg", kSquare);
    const ProcessRun spaced = RunVksvg({"render", in, "-o", File("a.png"), "--width", "64", "--background", "none"});
    const ProcessRun joined = RunVksvg({"render", in, "--output=" + File("b.png"), "--width=64", "--background=none"});
    ASSERT_EQ(spaced.status, 0) << spaced.err;
    ASSERT_EQ(joined.status, 0) << joined.err;
    EXPECT_TRUE(Contains(spaced.out, "(64x32)"));
    EXPECT_EQ(tooltest::ReadFile(File("a.png")), tooltest::ReadFile(File("b.png")));
}

// "-" reads standard input; -o - writes standard output in the --format
// asked for, and never a file called "-".
TEST_F(Process, StandardInputAndOutput)
{
    const std::string square = kSquare;
    const ProcessOptions piped{square, Directory().string(), 0};
    const ProcessRun fromFile = RunVksvg({"info", File("in.svg", kSquare)});
    const ProcessRun fromStdin = RunVksvg({"info", "-"}, piped);
    EXPECT_EQ(fromStdin.status, 0) << fromStdin.err;
    EXPECT_EQ(fromStdin.out, fromFile.out);

    const ProcessRun converted = RunVksvg({"convert", "-", "-", "--no-header"}, piped);
    EXPECT_EQ(converted.status, 0) << converted.err;
    EXPECT_EQ(converted.out.rfind("<?xml", 0), 0u) << converted.out;
    EXPECT_TRUE(Contains(converted.out, "id=\"box\""));

    const struct {
        std::vector<std::string> args;
        std::string start;
    } pictures[] = {
        {{"render", "-", "-o", "-"}, "\x89PNG\r\n"},
        {{"render", "-", "-o", "-", "--format", "png"}, "\x89PNG\r\n"},
        {{"render", "-", "-o", "-", "--format", "pdf"}, "%PDF-"},
        {{"render", "-", "-o", "-", "--format", "svg"}, "<?xml"},
        {{"mesh", "-", "-o", "-"}, "# vksvg mesh"},
        {{"mesh", "-", "-o", "-", "--format=json"}, "{\"primitives\":["},
    };
    for (const auto& p : pictures) {
        const ProcessRun r = RunVksvg(p.args, piped);
        EXPECT_EQ(r.status, 0) << Label(p.args) << '\n' << r.err;
        EXPECT_EQ(r.out.rfind(p.start, 0), 0u) << Label(p.args);
        EXPECT_EQ(r.err, "") << Label(p.args);
    }
    const Json mesh = Json::parse(RunVksvg({"mesh", "-", "-o", "-", "--format", "json"}, piped).out, nullptr, false);
    EXPECT_FALSE(mesh.is_discarded());
    EXPECT_FALSE(fs::exists(Directory() / "-"));
}

// One table of statuses for every command.
TEST_F(Process, ExitStatuses)
{
    const std::string in = File("in.svg", kSquare);
    const std::string missing = File("missing.svg");
    const struct {
        std::vector<std::string> args;
        int status;
    } cases[] = {
        {{"info", in}, 0},
        {{"bbox", in}, 0},
        {{"color", "red"}, 0},
        {{"convert", in, File("out.svg")}, 0},
        {{"mesh", in, "-o", File("out.obj")}, 0},
        {{"render", in, "-o", File("out.png")}, 0},
        {{"info", missing}, 1},
        {{"bbox", missing}, 1},
        {{"color", "nocolour"}, 1},
        {{"convert", missing, File("out.svg")}, 1},
        {{"mesh", missing, "-o", File("out.obj")}, 1},
        {{"render", missing, "-o", File("out.png")}, 1},
        {{"render", in, "-o", File("no/such/dir/out.png")}, 1},
        {{"info"}, 2},
        {{"mesh", in}, 2},
        {{"mesh", Data("tool/partial.svg"), "-o", File("partial.obj")}, 3},
        {{"render", Data("tool/partial.svg"), "-o", File("partial.png")}, 3},
    };
    for (const auto& c : cases)
        EXPECT_EQ(RunVksvg(c.args).status, c.status) << Label(c.args);
}

// A load that fails names the file, every library message with its line
// and column, and the option that would help.
TEST_F(Process, LoadFailuresNameTheFileThePlaceAndAHint)
{
    const std::string broken = Data("tool/broken.svg");
    const ProcessRun syntax = RunVksvg({"info", broken});
    EXPECT_EQ(syntax.status, 1);
    EXPECT_EQ(syntax.err,
              "vksvg: " + broken + ":3:36: Opening and ending tag mismatch: rect line 3 and g (line 3, column 36)\n");

    const std::string unsupported = Data("tool/unsupported.svg");
    const ProcessRun strict = RunVksvg({"mesh", unsupported, "-o", File("u.obj"), "--subset"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.err, "vksvg: " + unsupported +
                              ":2:3: Found unsupported tag in svg : \"ellipse\"\n"
                              "vksvg: hint: add --lenient to skip what the subset does not support, or drop "
                              "--subset to read with the full profile\n");
    EXPECT_FALSE(fs::exists(File("u.obj")));
    const ProcessRun lenient = RunVksvg({"info", unsupported, "--subset", "--lenient"});
    EXPECT_EQ(lenient.status, 0);
    EXPECT_EQ(lenient.err, "vksvg: " + unsupported + ":2:3: Ignore unsupported tag in svg : \"ellipse\"\n");
    EXPECT_EQ(RunVksvg({"info", unsupported}).status, 0);

    // Any name is read as SVG.
    const ProcessRun upper = RunVksvg({"bbox", File("ICON.SVG", kSquare)});
    EXPECT_EQ(upper.status, 0) << upper.err;
    const ProcessRun bare = RunVksvg({"bbox", File("icon", kSquare)});
    EXPECT_EQ(bare.out, upper.out);
}

// --json: one object on one line, with the documented schema.
TEST_F(Process, JsonOutputsFollowTheirSchemas)
{
    const std::string in = File("in.svg", kSquare);
    const ProcessRun info = RunVksvg({"info", in, "--json"});
    ASSERT_EQ(info.status, 0) << info.err;
    EXPECT_EQ(std::count(info.out.begin(), info.out.end(), '\n'), 1);
    const Json i = Json::parse(info.out);
    EXPECT_EQ(i["schema"], "vksvg-info/1");
    EXPECT_EQ(i["file"], in);
    EXPECT_EQ(i["profile"], "full");
    EXPECT_EQ(i["root"]["type"], "svg");
    EXPECT_TRUE(i["root"]["viewBox"].is_array());
    ASSERT_EQ(i["root"]["children"].size(), 1u);
    const Json& rect = i["root"]["children"][0];
    EXPECT_EQ(rect["type"], "rect");
    EXPECT_EQ(rect["id"], "box");
    EXPECT_TRUE(rect["transform"].is_null());
    EXPECT_EQ(rect["x"], 10);
    EXPECT_EQ(rect["width"], 10);
    EXPECT_EQ(i["counts"]["rect"], 1);
    EXPECT_EQ(i["counts"]["circle"], 0);
    EXPECT_TRUE(i["messages"].is_array());

    const ProcessRun lenient = RunVksvg({"info", Data("tool/unsupported.svg"), "--json", "--subset", "--lenient"});
    const Json l = Json::parse(lenient.out);
    EXPECT_EQ(l["profile"], "subset");
    ASSERT_EQ(l["messages"].size(), 1u);
    EXPECT_EQ(l["messages"][0]["severity"], "warning");
    // Where the skipped tag begins.
    EXPECT_EQ(l["messages"][0]["line"], 2);
    EXPECT_EQ(l["messages"][0]["column"], 3);
    EXPECT_EQ(l["messages"][0]["text"], "Ignore unsupported tag in svg : \"ellipse\"");

    const Json b = Json::parse(RunVksvg({"bbox", in, "--json"}).out);
    EXPECT_EQ(b["schema"], "vksvg-bbox/1");
    EXPECT_EQ(b["method"], "segmented");
    EXPECT_EQ(b["tolerance"], 0.25);
    EXPECT_EQ(b["document"]["box"], Json::array({10, 5, 20, 15}));
    ASSERT_EQ(b["items"].size(), 1u);
    EXPECT_EQ(b["items"][0]["id"], "box");
    const Json estimated = Json::parse(RunVksvg({"bbox", in, "--json", "--subset"}).out);
    EXPECT_EQ(estimated["method"], "estimated");
    EXPECT_TRUE(estimated["tolerance"].is_null());

    const ProcessRun color = RunVksvg({"color", "#ff8000", "Red", "--json"});
    EXPECT_EQ(color.status, 1);
    const Json c = Json::parse(color.out);
    EXPECT_EQ(c["schema"], "vksvg-color/1");
    EXPECT_EQ(c["colors"][0], Json({{"text", "#ff8000"}, {"valid", true}, {"rgba", {255, 128, 0, 255}}}));
    EXPECT_EQ(c["colors"][1], Json({{"text", "Red"}, {"valid", false}, {"rgba", nullptr}}));

    const ProcessRun mesh = RunVksvg({"mesh", Data("tool/partial.svg"), "-o", File("p.json"), "--json"});
    EXPECT_EQ(mesh.status, 3);
    const Json m = Json::parse(mesh.out);
    EXPECT_EQ(m["schema"], "vksvg-mesh/1");
    EXPECT_EQ(m["format"], "json");
    EXPECT_EQ(m["output"], File("p.json"));
    EXPECT_EQ(m["primitives"], 3);
    EXPECT_EQ(m["failedShapes"], 1);
    ASSERT_EQ(m["failures"].size(), 1u);
    EXPECT_EQ(m["failures"][0]["index"], 1);
    EXPECT_EQ(m["failures"][0]["id"], "huge");
    EXPECT_TRUE(m["failures"][0]["reason"].is_string());
    EXPECT_EQ(m["stopped"], false);
    for (const char* key : {"contourPoints", "triangles"})
        EXPECT_TRUE(m[key].is_number_unsigned()) << key;
}

// Several inputs: a failing file in the middle does not stop the others,
// its messages carry its name, and the summary lists it.
TEST_F(Process, BatchGoesOnPastAFailingFile)
{
    const std::string first = File("first.svg", kSquare);
    const std::string middle = File("middle.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"><g></svg>");
    const std::string last = File("last.svg", kSquare);
    for (const char* jobs : {"1", "3"}) {
        for (const std::string command : {"render", "mesh", "convert"}) {
            const std::string out = File(std::string("out-") + command + jobs);
            const std::vector<std::string> args = {command, first, middle, last, "-d", out, "-j", jobs};
            const ProcessRun r = RunVksvg(args);
            EXPECT_EQ(r.status, 1) << Label(args) << '\n' << r.err;
            const std::string extension = command == "render" ? ".png" : command == "mesh" ? ".obj" : ".svg";
            EXPECT_TRUE(fs::exists(out + "/first" + extension)) << Label(args);
            EXPECT_TRUE(fs::exists(out + "/last" + extension)) << Label(args);
            EXPECT_FALSE(fs::exists(out + "/middle" + extension)) << Label(args);
            // Every message line names its file; no progress line off a
            // terminal.
            std::istringstream lines(r.err);
            std::size_t aboutMiddle = 0;
            for (std::string line; std::getline(lines, line);) {
                if (line.rfind("vksvg: " + middle + ":", 0) == 0)
                    ++aboutMiddle;
            }
            EXPECT_GE(aboutMiddle, 1u) << r.err;
            EXPECT_TRUE(Contains(r.err, "vksvg: 1 of 3 files failed:\n  " + middle + "\n")) << r.err;
            EXPECT_FALSE(Contains(r.err, "\r")) << r.err;
            if (command != "convert") {
                EXPECT_TRUE(Contains(r.out, first + ": ")) << r.out;
                EXPECT_FALSE(Contains(r.out, middle)) << r.out;
            }
        }
    }
    // The worst status wins: a partial result and a success give 3.
    const ProcessRun partial = RunVksvg({"mesh", first, Data("tool/partial.svg"), "-d", File("mixed"), "-j", "2"});
    EXPECT_EQ(partial.status, 3) << partial.err;
    EXPECT_TRUE(Contains(partial.err, "vksvg: " + Data("tool/partial.svg") + ": shape 1 \"huge\": ")) << partial.err;
    // --json gives one object per file and line.
    const ProcessRun lines = RunVksvg({"mesh", first, last, "-d", File("json"), "--json"});
    EXPECT_EQ(lines.status, 0) << lines.err;
    std::istringstream objects(lines.out);
    std::size_t count = 0;
    for (std::string line; std::getline(objects, line); ++count) {
        const std::size_t colon = line.find(": {");
        ASSERT_NE(colon, std::string::npos) << line;
        EXPECT_EQ(Json::parse(line.substr(colon + 2))["schema"], "vksvg-mesh/1");
    }
    EXPECT_EQ(count, 2u);
}

// Inputs that cannot be read: the system's reason, status 1, no crash.
TEST_F(Process, BadInputsFailClearly)
{
    const std::string empty = File("empty.svg", "");
    const struct {
        std::string input;
        std::string message;
    } cases[] = {
        {Directory().string(), "vksvg: cannot read \"" + Directory().string() + "\": Is a directory\n"},
        {empty, "vksvg: cannot read \"" + empty + "\": the file is empty\n"},
        {File("missing.svg"), "vksvg: cannot read \"" + File("missing.svg") + "\": No such file or directory\n"},
    };
    for (const auto& c : cases) {
        for (const std::string command : {"info", "bbox"}) {
            const ProcessRun r = RunVksvg({command, c.input});
            EXPECT_EQ(r.status, 1) << command << ' ' << c.input;
            EXPECT_EQ(r.err, c.message);
            EXPECT_EQ(r.out, "");
        }
    }

    // Megabytes of one unclosed tag: the parser's message, not a crash.
    const std::string huge = File("huge.svg");
    {
        std::ofstream file(huge, std::ios::binary);
        file << "<svg xmlns=\"http://www.w3.org/2000/svg\" ";
        const std::string block(1 << 20, 'a');
        for (int i = 0; i < 24; ++i)
            file << block;
    }
    const ProcessRun unclosed = RunVksvg({"info", huge});
    EXPECT_EQ(unclosed.status, 1);
    EXPECT_EQ(unclosed.err.rfind("vksvg: " + huge + ":", 0), 0u) << unclosed.err;

    const std::string locked = File("locked.svg", kSquare);
    ::chmod(locked.c_str(), 0);
    if (::access(locked.c_str(), R_OK) == 0)
        GTEST_SKIP() << "this user reads files whatever their mode (root?)";
    const ProcessRun denied = RunVksvg({"info", locked});
    EXPECT_EQ(denied.status, 1);
    EXPECT_EQ(denied.err, "vksvg: cannot read \"" + locked + "\": Permission denied\n");
}

// Outputs that cannot be written: a message and status 1, and never a
// partial file in place of the old one.
TEST_F(Process, FailedWritesLeaveNoPartialFile)
{
    const std::string in = File("in.svg", kSquare);
    std::string many = "<svg xmlns=\"http://www.w3.org/2000/svg\">";
    for (int i = 0; i < 2000; ++i)
        many += "<rect x=\"" + std::to_string(i) + "\" width=\"1\" height=\"1\"/>";
    const std::string big = File("big.svg", (many + "</svg>").c_str());
    const std::string out = File("out.svg", "old");
    // The disk fills up half way through the document.
    const ProcessRun full = RunVksvg({"convert", big, out}, {"", "", 16384});
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.err, "vksvg: cannot write \"" + out + "\": File too large\n");
    EXPECT_EQ(tooltest::ReadFile(out), "old");
    std::size_t files = 0;
    for (const auto& entry : fs::directory_iterator(Directory())) {
        (void)entry;
        ++files;
    }
    EXPECT_EQ(files, 3u) << "a temporary file was left behind";

    if (fs::exists("/dev/full")) {
        for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
                 {"render", in, "-o", "/dev/full"},
                 {"mesh", in, "-o", "/dev/full", "--format", "json"},
                 {"convert", in, "/dev/full"},
             }) {
            const ProcessRun r = RunVksvg(args);
            EXPECT_EQ(r.status, 1) << Label(args);
            EXPECT_EQ(r.err, "vksvg: cannot write \"/dev/full\": No space left on device\n") << Label(args);
        }
    }

    const std::string readOnly = File("read-only");
    fs::create_directories(readOnly);
    ::chmod(readOnly.c_str(), 0555);
    if (::access(readOnly.c_str(), W_OK) == 0)
        GTEST_SKIP() << "this user writes into any directory (root?)";
    const ProcessRun single = RunVksvg({"convert", in, readOnly + "/out.svg"});
    EXPECT_EQ(single.status, 1);
    EXPECT_EQ(single.err, "vksvg: cannot write \"" + readOnly + "/out.svg\": Permission denied\n");
    const ProcessRun batch = RunVksvg({"render", in, File("other.svg", kSquare), "-d", readOnly});
    EXPECT_EQ(batch.status, 1);
    EXPECT_EQ(batch.err, "vksvg: cannot write to \"" + readOnly + "\": Permission denied\n");
}

namespace {

// A stroked line with an id, a stroked square without one, a filled square
// without a stroke, and a dashed line whose every dash is a piece of mesh.
const char* const kStrokes =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 60 60\">"
    "<line id=\"rule\" x1=\"0\" y1=\"5\" x2=\"40\" y2=\"5\" stroke=\"blue\" stroke-width=\"2\"/>"
    "<rect x=\"10\" y=\"10\" width=\"20\" height=\"20\" fill=\"none\" stroke=\"red\" "
    "stroke-width=\"4\" stroke-linejoin=\"bevel\"/>"
    "<rect id=\"plain\" x=\"40\" y=\"40\" width=\"5\" height=\"5\"/>"
    "<path id=\"dashes\" d=\"M0 50 H30\" stroke=\"black\" stroke-width=\"4\" "
    "stroke-dasharray=\"5 5\"/></svg>";

// The area of a stroke mesh's triangles, summed: where the fast stroker's
// pieces overlap (inside a corner), that part counts twice.
double MeshArea(const Json& vertices, const Json& triangles)
{
    double area = 0;
    for (const Json& t : triangles) {
        const Json& a = vertices[t[0].get<std::size_t>()];
        const Json& b = vertices[t[1].get<std::size_t>()];
        const Json& c = vertices[t[2].get<std::size_t>()];
        const double cross = (b[0].get<double>() - a[0].get<double>()) * (c[1].get<double>() - a[1].get<double>()) -
                             (b[1].get<double>() - a[1].get<double>()) * (c[0].get<double>() - a[0].get<double>());
        area += std::abs(cross) / 2;
    }
    return area;
}

} // namespace

// The stroke meshes reach both mesh formats and the counts: in .json always,
// in .obj as objects "<name>-stroke".
TEST_F(Process, MeshWritesStrokeMeshes)
{
    const std::string in = File("strokes.svg", kStrokes);
    const ProcessRun json = RunVksvg({"mesh", in, "-o", "-", "--format", "json"});
    ASSERT_EQ(json.status, 0) << json.err;
    const Json mesh = Json::parse(json.out);
    ASSERT_EQ(mesh["primitives"].size(), 4u);
    std::size_t strokeTriangles = 0;
    for (const Json& primitive : mesh["primitives"]) {
        const Json& vertices = primitive["strokeVertices"];
        const Json& triangles = primitive["strokeIndices"];
        ASSERT_TRUE(vertices.is_array() && triangles.is_array());
        strokeTriangles += triangles.size();
        for (const Json& t : triangles) {
            ASSERT_EQ(t.size(), 3u);
            for (const Json& i : t)
                EXPECT_LT(i.get<std::size_t>(), vertices.size());
        }
        EXPECT_EQ(triangles.empty(), primitive["stroke"].is_null()) << primitive["id"];
    }
    // Independent of how the stroker cuts them: a butt-capped line covers
    // length x width. The bevelled square's ring is its outer square less its
    // inner one, less half of each 2 x 2 outer corner; the two sides meeting
    // at a corner both cover its 2 x 2 inner square. Three dashes of 5 (the
    // pattern ends on a gap at 30) cover 3 x 5 x 4.
    const Json& primitives = mesh["primitives"];
    EXPECT_NEAR(MeshArea(primitives[0]["strokeVertices"], primitives[0]["strokeIndices"]), 40.0 * 2, 1e-3);
    const double ring = 24.0 * 24 - 16 * 16 - 4 * (2.0 * 2 / 2);
    EXPECT_NEAR(MeshArea(primitives[1]["strokeVertices"], primitives[1]["strokeIndices"]), ring + 4 * (2.0 * 2), 1e-3);
    EXPECT_NEAR(MeshArea(primitives[3]["strokeVertices"], primitives[3]["strokeIndices"]), 3 * 5.0 * 4, 1e-3);

    // The counts say as much.
    const ProcessRun stats = RunVksvg({"mesh", in, "-o", File("s.obj"), "--json"});
    ASSERT_EQ(stats.status, 0) << stats.err;
    EXPECT_EQ(Json::parse(stats.out)["strokeTriangles"], strokeTriangles);
    const ProcessRun text = RunVksvg({"mesh", in, "-o", File("s.obj")});
    EXPECT_TRUE(Contains(text.out, "\nStroke triangles: " + std::to_string(strokeTriangles) + "\n")) << text.out;

    // Each stroke follows its shape, named after it, as faces on vertices
    // of its own; the library's own segmentation has no stroke meshes.
    const ProcessRun plain = RunVksvg({"mesh", in, "-o", "-", "--subset"});
    EXPECT_FALSE(Contains(plain.out, "-stroke")) << plain.out;
    const ProcessRun obj = RunVksvg({"mesh", in, "-o", "-"});
    ASSERT_EQ(obj.status, 0) << obj.err;
    std::vector<std::string> names;
    std::size_t vertices = 0;
    std::size_t objectStart = 1;
    std::string current;
    std::size_t faces = 0;
    std::istringstream lines(obj.out);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string kind;
        fields >> kind;
        if (kind == "o") {
            fields >> current;
            names.push_back(current);
            objectStart = vertices + 1;
        } else if (kind == "v") {
            ++vertices;
        } else if (kind == "f" && current.size() > 7 && current.compare(current.size() - 7, 7, "-stroke") == 0) {
            ++faces;
            for (std::size_t n = 0; fields >> n;)
                EXPECT_TRUE(n >= objectStart && n <= vertices) << line;
        } else if (kind == "l") {
            EXPECT_EQ(current.find("-stroke"), std::string::npos) << "a stroke object has no outline";
        }
    }
    EXPECT_EQ(names, (std::vector<std::string>{"rule", "rule-stroke", "shape-1", "shape-1-stroke", "plain", "dashes",
                                               "dashes-stroke"}));
    EXPECT_EQ(faces, strokeTriangles);
}
