// vksvg info and vksvg convert, run in process on documents of their own.
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

TEST_F(DocumentCommands, InfoPrintsTheOutlineAndTheCounts)
{
    const CliRun r = RunTool({"info", Write("drawing.svg", kDrawing)});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.out, "svg viewBox=0,0,100,50 style=4B\n"
                     "  g id=\"layer\" transform=matrix(1 0 0 1 10 20)\n"
                     "    rect id=\"box\" x=1 y=2 width=30 height=40 rx=3 ry=0\n"
                     "    circle cx=5 cy=6 r=0.5\n"
                     "    path commands=4\n"
                     "    text x=4 y=5 content=\"Hello world\"\n"
                     "    image x=0 y=0 width=8 height=9 href=\"pic.png\"\n"
                     "  line x1=1 y1=0 x2=0 y2=7.25\n"
                     "  g\n"
                     "Items: svg 1, g 2, line 1, rect 1, circle 1, path 1, text 1, image 1\n");
}

TEST_F(DocumentCommands, InfoReportsEveryMessageAndFailsWhenTheLoadFails)
{
    const std::string file = Write("odd.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"1\"><foo/>"
                                              "<text font-style=\"oblique\">t</text></svg>");
    const CliRun strict = RunTool({"info", file});
    EXPECT_EQ(strict.code, 1);
    EXPECT_EQ(strict.out, "");
    EXPECT_EQ(strict.err, "Unsupported attribute attribute \"width\" with value \"1\"\n");

    const CliRun lenient = RunTool({"info", "--lenient", file});
    EXPECT_EQ(lenient.code, 0);
    EXPECT_EQ(lenient.out, "svg\n  text x=0 y=0 content=\"t\"\nItems: svg 1, text 1\n");
    EXPECT_EQ(lenient.err, "Ignore unsupported attribute \"width\" with value \"1\"\n"
                           "Ignore unsupported tag in svg : \"foo\"\n"
                           "Ignore unsupported attribute \"font-style\" with value \"oblique\"\n");

    const CliRun missing = RunTool({"info", Path("missing.svg")});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err, "Fail to open file\n");

    const std::string text = Write("drawing.txt", kDrawing);
    const CliRun noDriver = RunTool({"info", text});
    EXPECT_EQ(noDriver.code, 1);
    EXPECT_EQ(noDriver.err, "vksvg: no driver can load \"" + text + "\"\n");

    const CliRun nothing = RunTool({"info", Write("style.svg", "<style/>")});
    EXPECT_EQ(nothing.code, 0);
    EXPECT_EQ(nothing.out, "Items: none\n");
}

TEST_F(DocumentCommands, ConvertWritesWithTheChosenOptions)
{
    const std::string in = Write("in.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"><g><circle r=\"3.14159\"/>"
                                           "<path d=\"M10 20 C10 20 30 -5 30 -5\"/></g></svg>");
    const CliRun compact = RunTool({"convert", in, "-", "--no-header", "--precision", "2"});
    EXPECT_EQ(compact.code, 0) << compact.err;
    EXPECT_EQ(compact.err, "");
    EXPECT_EQ(compact.out, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<svg xmlns=\"http://www.w3.org/2000/svg\"><g><circle r=\"3.14\"/>"
                           "<path d=\"M10 20C10 20 30-5 30-5\"/></g></svg>\n");

    const std::string out = Path("out.svg");
    const CliRun pretty = RunTool({"convert", "--pretty", in, out, "--no-header"});
    EXPECT_EQ(pretty.code, 0) << pretty.err;
    EXPECT_EQ(pretty.out, "");
    EXPECT_EQ(Read(out), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<svg xmlns=\"http://www.w3.org/2000/svg\">\n"
                         "  <g>\n"
                         "    <circle r=\"3.14159\"/>\n"
                         "    <path d=\"M 10 20 C 10 20 30 -5 30 -5\"/>\n"
                         "  </g>\n"
                         "</svg>\n");

    const CliRun header = RunTool({"convert", in, "-"});
    EXPECT_EQ(header.code, 0);
    EXPECT_NE(header.out.find("<!--Exporter : "), std::string::npos);
    EXPECT_NE(header.out.find("--><!--Datetime : "), std::string::npos);
}

TEST_F(DocumentCommands, ConvertFailsOnLoadOrSaveFailures)
{
    const std::string odd = Write("odd.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"><ellipse/><rect/></svg>");
    const CliRun strict = RunTool({"convert", odd, "-"});
    EXPECT_EQ(strict.code, 1);
    EXPECT_EQ(strict.out, "");
    EXPECT_EQ(strict.err, "Found unsupported tag in svg : \"ellipse\"\n");

    const CliRun lenient = RunTool({"convert", odd, "-", "--lenient", "--no-header"});
    EXPECT_EQ(lenient.code, 0);
    EXPECT_EQ(lenient.err, "Ignore unsupported tag in svg : \"ellipse\"\n");
    EXPECT_EQ(lenient.out, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<svg xmlns=\"http://www.w3.org/2000/svg\"><rect width=\"0\" height=\"0\"/></svg>\n");

    const std::string good = Write("good.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"/>");
    const CliRun png = RunTool({"convert", good, Path("out.png")});
    EXPECT_EQ(png.code, 1);
    EXPECT_EQ(png.err, "No driver available to save 'png'\n");

    const CliRun unwritable = RunTool({"convert", good, "/nonexistent/dir/out.svg"});
    EXPECT_EQ(unwritable.code, 1);
    EXPECT_EQ(unwritable.err, "Fail to open file\n");

    const std::string emptyFile = Write("style.svg", "<style/>");
    const CliRun empty = RunTool({"convert", emptyFile, "-"});
    EXPECT_EQ(empty.code, 1);
    EXPECT_EQ(empty.err, "vksvg: \"" + emptyFile + "\" holds no item to write\n");
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
