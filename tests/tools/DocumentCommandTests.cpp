// vksvg color, info and convert, run in process on documents of their own.
#include "ToolTestSupport.h"

namespace {

using tooltest::CliRun;
using tooltest::RunTool;
using DocumentCommands = tooltest::TempFiles;

const char* const kDrawing = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 100 50\">"
                             "<style>.a{}</style>"
                             "<g id=\"layer\" transform=\"translate(10 20)\">"
                             "<rect id=\"box\" x=\"1\" y=\"2\" width=\"30\" height=\"40\" rx=\"3\"/>"
                             "<circle cx=\"5\" cy=\"6\" r=\"0.5\"/>"
                             "<path d=\"M0 0 L1 1 2 2Z\"/>"
                             "<text x=\"4\" y=\"5\"> Hello\n  world </text>"
                             "<image width=\"8\" height=\"9\" href=\"pic.png\"/>"
                             "</g><line x1=\"1\" y2=\"7.25\"/><g/></svg>";

} // namespace

// Exit code, output and messages, word for word.
TEST_F(DocumentCommands, ResultsAndMessages)
{
    const std::string odd = Write("odd.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"1\"><foo/>"
                                             "<text font-style=\"oblique\">t</text></svg>");
    const std::string text = Write("drawing.txt", kDrawing);
    const std::string styleOnly = Write("style.svg", "<style/>");
    const std::string in = Write("in.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"><g><circle r=\"3.14159\"/>"
                                           "<path d=\"M10 20 C10 20 30 -5 30 -5\"/></g></svg>");
    const std::string ellipse =
        Write("ellipse.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"><ellipse/><rect/></svg>");
    const std::string good = Write("good.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"/>");
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    const std::string hint = "vksvg: hint: add --lenient to skip what the subset does not support, or drop --subset "
                             "to read with the full profile\n";
    const std::string outline = "svg viewBox=0,0,100,50 style=4B\n"
                                "  g id=\"layer\" transform=matrix(1 0 0 1 10 20)\n"
                                "    rect id=\"box\" x=1 y=2 width=30 height=40 rx=3 ry=0\n"
                                "    circle cx=5 cy=6 r=0.5\n"
                                "    path commands=4\n"
                                "    text x=4 y=5 content=\"Hello world\"\n"
                                "    image x=0 y=0 width=8 height=9 href=\"pic.png\"\n"
                                "  line x1=1 y1=0 x2=0 y2=7.25\n"
                                "  g\n"
                                "Items: svg 1, g 2, line 1, rect 1, circle 1, path 1, text 1, image 1\n";
    const struct {
        std::vector<std::string> args;
        int code;
        std::string out, err;
    } cases[] = {
        {{"color", "#ff8000"}, 0, "#ff8000: 255 128 0 255\n", ""},
        {{"color", "rebeccapurple", "rgba(1,2,3,4)"}, 0, "rebeccapurple: 102 51 153 255\nrgba(1,2,3,4): 1 2 3 4\n", ""},
        {{"color", "Red"}, 1, "Red: no colour\n", ""},
        {{"color", "none", "#000"}, 1, "none: no colour\n#000: 0 0 0 255\n", ""},
        {{"info", Write("drawing.svg", kDrawing), "--subset"},
         0,
         "svg viewBox=0,0,100,50 style=4B\n"
         "  g id=\"layer\" transform=matrix(1 0 0 1 10 20)\n"
         "    rect id=\"box\" x=1 y=2 width=30 height=40 rx=3 ry=0\n"
         "    circle cx=5 cy=6 r=0.5\n"
         "    path commands=4\n"
         "    text x=4 y=5 content=\"Hello world\"\n"
         "    image x=0 y=0 width=8 height=9 href=\"pic.png\"\n"
         "  line x1=1 y1=0 x2=0 y2=7.25\n"
         "  g\n"
         "Items: svg 1, g 2, line 1, rect 1, circle 1, path 1, text 1, image 1\n",
         ""},
        {{"info", odd, "--subset"},
         1,
         "",
         "vksvg: " + odd + ":1:1: Unsupported attribute attribute \"width\" with value \"1\"\n" + hint},
        {{"info", "--lenient", odd, "--subset"},
         0,
         "svg\n  text x=0 y=0 content=\"t\"\nItems: svg 1, text 1\n",
         "vksvg: " + odd + ":1:1: Ignore unsupported attribute \"width\" with value \"1\"\n" + "vksvg: " + odd +
             ":1:51: Ignore unsupported tag in svg : \"foo\"\n" + "vksvg: " + odd +
             ":1:57: Ignore unsupported attribute \"font-style\" with value \"oblique\"\n"},
        {{"info", Path("missing.svg"), "--subset"},
         1,
         "",
         "vksvg: cannot read \"" + Path("missing.svg") + "\": No such file or directory\n"},
        {{"info", text, "--subset"}, 0, outline, ""},
        {{"info", styleOnly, "--subset"}, 0, "Items: none\n", ""},
        {{"convert", in, "-", "--no-header", "--precision", "2", "--subset"},
         0,
         declaration + "<svg xmlns=\"http://www.w3.org/2000/svg\"><g><circle r=\"3.14\"/>"
                       "<path d=\"M10 20C10 20 30-5 30-5\"/></g></svg>\n",
         ""},
        {{"convert", "--pretty", in, Path("out.svg"), "--no-header", "--subset"}, 0, "", ""},
        {{"convert", ellipse, "-", "--subset"},
         1,
         "",
         "vksvg: " + ellipse + ":1:41: Found unsupported tag in svg : \"ellipse\"\n" + hint},
        {{"convert", ellipse, "-", "--lenient", "--no-header", "--subset"},
         0,
         declaration + "<svg xmlns=\"http://www.w3.org/2000/svg\"><rect width=\"0\" height=\"0\"/></svg>\n",
         "vksvg: " + ellipse + ":1:41: Ignore unsupported tag in svg : \"ellipse\"\n"},
        {{"convert", good, Path("out.png"), "--subset"},
         2,
         "",
         "vksvg: cannot tell the format of \"" + Path("out.png") + "\": convert writes .svg\nUsage: vksvg convert " +
             vksvg::findCommand("convert")->synopsis + "\nRun \"vksvg convert --help\" for every option.\n"},
        {{"convert", good, "/nonexistent/dir/out.svg", "--subset"},
         1,
         "",
         "vksvg: cannot write \"/nonexistent/dir/out.svg\": No such file or directory\n"},
        {{"convert", styleOnly, "-", "--subset"}, 1, "", "vksvg: \"" + styleOnly + "\" holds no item to write\n"},
    };
    for (const auto& c : cases) {
        const CliRun r = RunTool(c.args);
        const std::string run = c.args[0] + " " + c.args[1];
        EXPECT_EQ(r.code, c.code) << run;
        EXPECT_EQ(r.out, c.out) << run;
        EXPECT_EQ(r.err, c.err) << run;
    }
    EXPECT_EQ(Read(Path("out.svg")), declaration + "<svg xmlns=\"http://www.w3.org/2000/svg\">\n"
                                                   "  <g>\n"
                                                   "    <circle r=\"3.14159\"/>\n"
                                                   "    <path d=\"M 10 20 C 10 20 30 -5 30 -5\"/>\n"
                                                   "  </g>\n"
                                                   "</svg>\n");
    const CliRun header = RunTool({"convert", in, "-", "--subset"});
    EXPECT_EQ(header.code, 0);
    EXPECT_NE(header.out.find("<!--Exporter : "), std::string::npos);
    EXPECT_NE(header.out.find("--><!--Datetime : "), std::string::npos);
}

TEST_F(DocumentCommands, UsageErrors)
{
    for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
             {"info"},
             {"info", "a.svg", "b.svg"},
             {"info", "--bogus", "a.svg"},
             {"convert", "a.svg"},
             {"convert", "a.svg", "b.svg", "c.svg"},
             {"convert", "a.svg", "b.svg", "--precision"},
             {"convert", "a.svg", "b.svg", "--precision", "x"},
             {"convert", "a.svg", "b.svg", "--precision", "101"},
             {"convert", "a.svg", "b.svg", "--fast"},
         }) {
        const CliRun r = RunTool(args);
        EXPECT_EQ(r.code, 2) << args.back();
        EXPECT_EQ(r.out, "");
        EXPECT_NE(r.err.find("Usage: vksvg " + args.front()), std::string::npos) << r.err;
    }
}

// Root attributes that only the full profile reads: every document command
// loads them by default, and fails on them with --subset.
TEST_F(DocumentCommands, LoadWithTheFullProfileUnlessSubsetIsGiven)
{
    const std::string in = Write("sized.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" "
                                              "xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"120\" "
                                              "height=\"80\" viewBox=\"0 0 60 40\">"
                                              "<rect width=\"30\" height=\"20\" fill=\"red\"/></svg>");
    for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
             {"info", in},
             {"convert", in, "-"},
             {"mesh", in, "-o", Path("sized.obj")},
             {"render", in, "-o", Path("sized.png")},
             {"bbox", in},
         }) {
        const CliRun full = RunTool(args);
        EXPECT_EQ(full.code, 0) << args[0] << ": " << full.err;
        std::vector<std::string> subsetArgs = args;
        subsetArgs.push_back("--subset");
        const CliRun subset = RunTool(subsetArgs);
        EXPECT_EQ(subset.code, 1) << args[0];
        EXPECT_EQ(subset.err.rfind("vksvg: " + in + ":1:1: Unsupported attribute attribute \"", 0), 0u) << subset.err;
    }
    // The root viewport in pixels, the viewBox mapping as the root's transform.
    const CliRun info = RunTool({"info", in});
    EXPECT_EQ(info.out.rfind("svg viewBox=0,0,120,80 transform=matrix(2 0 0 2 0 0)\n", 0), 0u) << info.out;
    EXPECT_NE(info.out.find("\n  rect x=0 y=0 width=30 height=20\n"), std::string::npos) << info.out;
}

TEST_F(DocumentCommands, LoadFlagsGoAnywhereAfterTheCommand)
{
    const std::string in = Write("plain.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"><rect width=\"2\"/></svg>");
    EXPECT_EQ(RunTool({"info", "--subset", "--lenient", in}).code, 0);
    EXPECT_EQ(RunTool({"convert", "--subset", in, "--lenient", "-"}).code, 0);
    for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
             {"info", in, "--subset", "--full"},
             {"convert", in, "-", "--subset=yes"},
         }) {
        const CliRun r = RunTool(args);
        EXPECT_EQ(r.code, 2) << args.back();
        EXPECT_NE(r.err.find("[--subset] [--lenient]\n"), std::string::npos) << r.err;
    }
}

// convert writes the fewest digits that read back exactly, unless a
// precision or the library's own behaviour (--subset) is asked for.
TEST_F(DocumentCommands, ConvertWritesShortestNumbersByDefault)
{
    const std::string in = Write("numbers.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\">"
                                                "<circle cx=\"133.02\" cy=\"0.1\" r=\"1234.5678\"/></svg>");
    const struct {
        std::vector<std::string> flags;
        const char* circle;
    } cases[] = {
        {{}, "<circle r=\"1234.5677\" cx=\"133.02\" cy=\"0.1\"/>"},
        {{"--subset"}, "<circle r=\"1234.567749\" cx=\"133.020004\" cy=\"0.1\"/>"},
        {{"--precision", "2"}, "<circle r=\"1234.57\" cx=\"133.02\" cy=\"0.1\"/>"},
        {{"--precision=1", "--subset"}, "<circle r=\"1234.6\" cx=\"133\" cy=\"0.1\"/>"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"convert", in, "-", "--no-header"};
        args.insert(args.end(), c.flags.begin(), c.flags.end());
        const CliRun r = RunTool(args);
        EXPECT_EQ(r.code, 0) << r.err;
        EXPECT_NE(r.out.find(c.circle), std::string::npos) << r.out;
    }
}
