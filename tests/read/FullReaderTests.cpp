// The full reading profile end to end: documents in, item trees out.
#include <svg/Items.h>
#include <svg/Library.h>
#include <svg/vkSvgDriver.h>

#include <vkSystem/vkIoDeviceMemory.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <list>
#include <string>

namespace {

using namespace vk::svg;

struct Library : ::testing::Environment {
    void SetUp() override { initializeVkSvg(); }
    void TearDown() override { terminateVkSvg(); }
};
const auto* const kLibrary = ::testing::AddGlobalTestEnvironment(new Library);

struct Loaded {
    bool ok = false;
    ItemInterfacePointer<ItemInterface> root;
    std::list<std::string> messages;

    // The item with `id`, depth first; fails the test when there is none.
    const ItemInterface& item(const std::string& id) const
    {
        const ItemInterface* found = find(root.get(), id);
        if (found == nullptr) {
            ADD_FAILURE() << "no item \"" << id << "\"";
            static const Node empty;
            return empty;
        }
        return *found;
    }
    const ItemInterface* find(const ItemInterface* item, const std::string& id) const
    {
        if (item == nullptr)
            return nullptr;
        if (item->getId() == id)
            return item;
        if (item->getType() == ItemType::Node || item->getType() == ItemType::Document)
            for (const auto& child : static_cast<const Node&>(*item).getChildren())
                if (const ItemInterface* found = find(child.get(), id))
                    return found;
        return nullptr;
    }
    std::size_t count(const std::string& part) const
    {
        return static_cast<std::size_t>(std::count_if(
            messages.begin(), messages.end(), [&](const std::string& m) { return m.find(part) != std::string::npos; }));
    }
    std::string allMessages() const
    {
        std::string text;
        for (const std::string& m : messages)
            text += m + "\n";
        return text;
    }
};

Loaded Load(const std::string& text, LoadProfile profile = LoadProfile::Full)
{
    vkSvgDriver driver;
    vk::vkIoDeviceMemory device(text);
    LoadOptions options;
    options.profile = profile;
    Loaded result;
    result.ok = driver.loadSvg(result.root, device, "svg", nullptr, options);
    result.messages = driver.getMessages();
    return result;
}

std::string Save(const ItemInterface& root)
{
    vkSvgDriver driver;
    vk::vkIoDeviceMemory device;
    SaveOptions options;
    options.writeHeaderComments = false;
    EXPECT_TRUE(driver.saveSvg(root, device, "svg", nullptr, options));
    return device.getData();
}

std::string Svg(const std::string& body, const std::string& rootAttributes = "")
{
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\"" + rootAttributes +
           ">" + body + "</svg>";
}

Wm4::Vector2<float> Map(const std::optional<Wm4::Matrix3<float>>& m, float x, float y)
{
    if (!m)
        return {x, y};
    const auto& t = *m;
    return {t(0, 0) * x + t(0, 1) * y + t(0, 2), t(1, 0) * x + t(1, 1) * y + t(1, 2)};
}

// Commands as text, e.g. "M0,0 L10,0 Z", to compare whole paths at once.
std::string Commands(const ItemInterface& item)
{
    if (item.getType() != ItemType::Path)
        return "<not a path>";
    static const char letters[] = "MmLlAaHhVvCcSsZ";
    std::string text;
    for (const PathCommand& c : static_cast<const Path&>(item).getCommands()) {
        if (!text.empty())
            text += ' ';
        text += letters[static_cast<int>(c.type)];
        for (std::size_t i = 0; i < c.values.size(); ++i) {
            char number[32];
            std::snprintf(number, sizeof number, "%g", std::round(c.values[i] * 1000.0) / 1000.0);
            text += (i == 0 ? "" : ",") + std::string(number);
        }
    }
    return text;
}

TEST(FullReader, RootFrameMapsViewBoxIntoTheViewport)
{
    struct Case {
        const char* root;
        float width, height;          // the Document's viewBox size
        float x, y, mappedX, mappedY; // a user-space point and where the root transform puts it
    };
    const Case cases[] = {
        {R"( width="100mm" height="50mm" viewBox="0 0 200 100")", 377.953f, 188.976f, 200, 100, 377.953f, 188.976f},
        {R"( width="200" height="100" viewBox="0 0 100 100")", 200, 100, 0, 0, 50, 0},
        {R"( width="200" height="100" viewBox="0 0 100 100" preserveAspectRatio="xMinYMin meet")", 200, 100, 100, 100,
         100, 100},
        {R"( width="200" height="100" viewBox="0 0 100 100" preserveAspectRatio="xMidYMid slice")", 200, 100, 0, 0, 0,
         -50},
        {R"( width="200" height="100" viewBox="0 0 100 100" preserveAspectRatio="none")", 200, 100, 100, 100, 200, 100},
        {R"( width="1in" viewBox="0 0 10 20")", 96, 192, 10, 20, 96, 192},
        {R"( width="30pt" height="2pc")", 40, 32, 5, 5, 5, 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.root);
        const Loaded loaded = Load(Svg("", c.root));
        ASSERT_TRUE(loaded.ok) << loaded.allMessages();
        const auto& document = static_cast<const Document&>(*loaded.root);
        ASSERT_TRUE(document.getViewbox().has_value());
        EXPECT_NEAR(document.getViewbox()->getWidth(), c.width, 1e-3);
        EXPECT_NEAR(document.getViewbox()->getHeight(), c.height, 1e-3);
        const auto mapped = Map(document.getTransform(), c.x, c.y);
        EXPECT_NEAR(mapped.X(), c.mappedX, 1e-3);
        EXPECT_NEAR(mapped.Y(), c.mappedY, 1e-3);
    }
}

TEST(FullReader, DocumentFrameVariants)
{
    // A viewBox that only moves the origin is kept as the author wrote it.
    Loaded plain = Load(Svg("", R"( viewBox="-10 -5 20 10")"));
    ASSERT_TRUE(plain.ok);
    const auto& document = static_cast<const Document&>(*plain.root);
    EXPECT_FALSE(document.getTransform().has_value());
    EXPECT_EQ(document.getViewbox()->getMinPoint(), Wm4::Vector2<float>(-10, -5));

    // A prefixed root, editor namespaces and metadata: one warning per kind.
    const Loaded editor = Load(R"(<svg:svg xmlns:svg="http://www.w3.org/2000/svg"
        xmlns:inkscape="http://www.inkscape.org/namespaces/inkscape"
        xmlns:sodipodi="http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd" inkscape:version="1.2"
        sodipodi:docname="a.svg"><svg:metadata><rdf xmlns="urn:x"/></svg:metadata><svg:title>t</svg:title>
        <sodipodi:namedview inkscape:zoom="1"/><svg:rect id="r" width="1" height="1" inkscape:label="x"/></svg:svg>)");
    ASSERT_TRUE(editor.ok) << editor.allMessages();
    EXPECT_EQ(editor.item("r").getType(), ItemType::Rect);
    EXPECT_EQ(editor.count("attributes in foreign namespaces"), 1u) << editor.allMessages();
    EXPECT_EQ(editor.count("element in foreign namespaces"), 1u) << editor.allMessages();
    EXPECT_EQ(editor.messages.size(), 2u) << editor.allMessages();

    // A nested viewport maps its viewBox into its own box.
    const Loaded nested = Load(Svg(R"(<svg x="10" y="20" width="50" height="50" viewBox="0 0 10 10">
        <rect id="r" x="1" y="1" width="2" height="2"/></svg>)"));
    ASSERT_TRUE(nested.ok);
    const auto& viewport = static_cast<const Node&>(*nested.root).getChildren().front();
    const auto corner = Map(viewport->getTransform(), 10, 10);
    EXPECT_NEAR(corner.X(), 60, 1e-4);
    EXPECT_NEAR(corner.Y(), 70, 1e-4);

    // Not an svg root, and not XML at all.
    EXPECT_FALSE(Load("<circle r=\"1\"/>").ok);
    const Loaded broken = Load("<svg");
    EXPECT_FALSE(broken.ok);
    EXPECT_FALSE(broken.messages.empty());
}

TEST(FullReader, StylesCascadeBySvgPrecedence)
{
    const Loaded loaded = Load(Svg(R"(
      <style>
        rect { fill: #010101 }
        .a { fill: #020202 }
        #idwins { fill: #030303 }
        g > .child { fill: #040404 }
        g .deep { fill: #050505 }
        [data-x] { fill: #060606 }
        .imp { fill: #070707 !important }
        * { stroke-width: 3 }
        .late, .list { fill: #080808 }
        .b.c { fill: #090909 }
        @media print { rect { fill: red } }
        .broken { fill: ; }
      </style>
      <rect id="type" width="1" height="1"/>
      <rect id="class" class="a" width="1" height="1"/>
      <rect id="idwins" class="a" width="1" height="1"/>
      <g><rect id="child" class="child" width="1" height="1"/></g>
      <g><g><rect id="deep" class="deep" width="1" height="1"/></g></g>
      <g><a><rect id="notchild" class="child" width="1" height="1"/></a></g>
      <rect id="attr" data-x="" width="1" height="1"/>
      <rect id="presentation" class="a" fill="#0a0a0a" width="1" height="1"/>
      <rect id="styleattr" class="a" style="fill:#0b0b0b" width="1" height="1"/>
      <rect id="important" class="imp" style="fill:#0b0b0b" width="1" height="1"/>
      <rect id="list" class="list" width="1" height="1"/>
      <rect id="compound" class="c b" width="1" height="1"/>
      <rect id="unknownprop" style="fill:#0c0c0c; line-height: 2; foo" width="1" height="1"/>
      <g style="color: #00ff00"><rect id="current" style="fill:currentColor" width="1" height="1"/>
        <rect id="inherit" style="stroke: inherit" width="1" height="1"/></g>
    )"));
    ASSERT_TRUE(loaded.ok) << loaded.allMessages();
    const std::pair<const char*, const char*> fills[] = {
        {"type", "#010101"},        {"class", "#020202"},     {"idwins", "#030303"}, {"child", "#040404"},
        {"deep", "#050505"},        {"notchild", "#010101"},  {"attr", "#060606"},   {"presentation", "#020202"},
        {"styleattr", "#0b0b0b"},   {"important", "#070707"}, {"list", "#080808"},   {"compound", "#090909"},
        {"unknownprop", "#0c0c0c"}, {"current", "#00ff00"},
    };
    for (const auto& [id, fill] : fills)
        EXPECT_EQ(loaded.item(id).getRenderingProperties().getFill().value_or("<unset>"), fill) << id;
    EXPECT_EQ(loaded.item("type").getRenderingProperties().getStrokeWidth().value_or(0), 3.0f);
    EXPECT_EQ(loaded.count("\"@media\""), 1u) << loaded.allMessages();
    EXPECT_EQ(loaded.count("\"line-height\""), 1u) << loaded.allMessages();
}

TEST(FullReader, ColoursBecomeTextTheLibraryReads)
{
    const std::pair<const char*, const char*> cases[] = {
        {"RED", "#ff0000"},
        {"#abc", "#aabbcc"},
        {"#abcd", "#aabbccdd"},
        {"#11223380", "#11223380"},
        {"rgb(100%, 0%, 50%)", "#ff0080"},
        {"rgba(0, 0, 255, 0.5)", "#0000ff80"},
        {"hsl(120, 100%, 25%)", "#008000"},
        {"hsla(0, 100%, 50%, 0)", "#ff000000"},
        {"transparent", "#00000000"},
        {"none", "none"},
    };
    for (const auto& [value, expected] : cases) {
        const Loaded loaded =
            Load(Svg(std::string("<rect id=\"r\" width=\"1\" height=\"1\" fill=\"") + value + "\"/>"));
        ASSERT_TRUE(loaded.ok) << value;
        EXPECT_EQ(loaded.item("r").getRenderingProperties().getFill().value_or("<unset>"), expected) << value;
    }
}

TEST(FullReader, UnitsResolveToUserUnits)
{
    const std::pair<const char*, float> widths[] = {
        {"2", 2},       {"2px", 2},     {"3pt", 4},    {"1pc", 16}, {"1in", 96},
        {"2.54cm", 96}, {"25.4mm", 96}, {"0.5em", 10}, {"1ex", 10}, {"10%", 10.0f * 0.1f * 10.0f},
    };
    for (const auto& [value, expected] : widths) {
        const Loaded loaded = Load(Svg(std::string("<rect id=\"r\" width=\"1\" height=\"1\" font-size=\"20\" "
                                                   "stroke-width=\"") +
                                           value + "\"/>",
                                       R"( viewBox="0 0 100 100")"));
        ASSERT_TRUE(loaded.ok) << value;
        EXPECT_NEAR(loaded.item("r").getRenderingProperties().getStrokeWidth().value_or(-1), expected, 1e-3) << value;
    }
    const Loaded geometry = Load(Svg(R"(<rect id="r" x="10%" y="1in" width="50%" height="2em" font-size="8"/>
        <rect id="o" width="1" height="1" opacity="50%" fill-opacity="0.5"/>)",
                                     R"( viewBox="0 0 200 100")"));
    ASSERT_TRUE(geometry.ok);
    const auto& rect = static_cast<const Rect&>(geometry.item("r"));
    EXPECT_EQ(rect.getPosition(), Wm4::Vector2<float>(20, 96));
    EXPECT_EQ(rect.getSize(), Wm4::Vector2<float>(100, 16));
    EXPECT_EQ(geometry.item("o").getRenderingProperties().getOpacity().value_or(-1), 0.5f);
    EXPECT_EQ(geometry.item("o").getRenderingProperties().getFillOpacity().value_or(-1), 0.5f);
}

TEST(FullReader, ShapesBecomeExplicitPaths)
{
    const std::pair<const char*, const char*> cases[] = {
        {R"(<ellipse id="s" cx="10" cy="20" rx="5" ry="2"/>)",
         "M15,20 A5,2,0,0,1,10,22 A5,2,0,0,1,5,20 A5,2,0,0,1,10,18 A5,2,0,0,1,15,20 Z"},
        {R"(<polygon id="s" points="0,0 10,0 10-10"/>)", "M0,0 L10,0 L10,-10 Z"},
        {R"(<polyline id="s" points="0 0 1 1 2"/>)", "M0,0 L1,1"},
        {R"(<rect id="s" width="10" height="8" rx="2"/>)",
         "M2,0 L8,0 A2,2,0,0,1,10,2 L10,6 A2,2,0,0,1,8,8 L2,8 A2,2,0,0,1,0,6 L0,2 A2,2,0,0,1,2,0 Z"},
        {R"(<path id="s" d="m10 10 h5 v5 z"/>)", "M10,10 L15,10 L15,15 Z"},
        {R"(<path id="s" d="M0 0a7 7 0 100 14"/>)", "M0,0 A7,7,0,1,0,0,14"},
        {R"(<path id="s" d="M0 0Q3 3 6 0"/>)", "M0,0 C2,2,4,2,6,0"},
        {R"(<path id="s" d="M0 0 L10 0 L10 x 20"/>)", "M0,0 L10,0"},
    };
    for (const auto& [element, expected] : cases) {
        const Loaded loaded = Load(Svg(element));
        ASSERT_TRUE(loaded.ok) << element;
        EXPECT_EQ(Commands(loaded.item("s")), expected) << element;
    }
    const Loaded broken = Load(Svg(R"(<path id="s" d="M0 0 L10 0 L10 x 20"/>)"));
    EXPECT_EQ(broken.count("from byte 15"), 1u) << broken.allMessages();
    // Shapes that SVG does not draw are not items.
    const Loaded empty = Load(Svg(R"(<rect id="a" width="0" height="5"/><circle id="b" r="-1"/><path id="c" d=""/>
        <ellipse id="d" rx="0"/><polygon id="e" points="1 1"/>)"));
    ASSERT_TRUE(empty.ok);
    EXPECT_TRUE(static_cast<const Node&>(*empty.root).getChildren().empty());
}

TEST(FullReader, ReferencesExpand)
{
    const Loaded loaded = Load(Svg(R"(
      <defs><rect id="box" width="10" height="10" fill="#ff0000"/>
        <g id="pair"><use href="#box"/><use xlink:href="#box" x="20"/></g>
        <symbol id="sym" viewBox="0 0 10 10"><circle id="dot" cx="5" cy="5" r="5"/></symbol></defs>
      <use id="u1" href="#box" x="5" y="6" fill="blue"/>
      <use id="u2" href="#pair" y="100"/>
      <use id="u3" href="#sym" width="100" height="100"/>
      <switch id="sw"><rect id="no" systemLanguage="xx" width="1" height="1"/><rect id="yes" width="1" height="1"/>
        <rect id="also" width="1" height="1"/></switch>
      <a id="link"><rect id="inlink" width="1" height="1"/></a>
      <rect id="hidden" display="none" width="1" height="1"/>
      <rect id="invisible" visibility="hidden" width="1" height="1"/>
      <use id="missing" href="#nothing"/>
    )"));
    ASSERT_TRUE(loaded.ok) << loaded.allMessages();
    const auto& u1 = static_cast<const Node&>(loaded.item("u1"));
    EXPECT_EQ(Map(u1.getTransform(), 0, 0), Wm4::Vector2<float>(5, 6));
    ASSERT_EQ(u1.getChildren().size(), 1u);
    EXPECT_EQ(u1.getChildren().front()->getType(), ItemType::Rect);
    EXPECT_EQ(u1.getRenderingProperties().getFill(), std::string("#0000ff"));
    const auto& pair = static_cast<const Node&>(*static_cast<const Node&>(loaded.item("u2")).getChildren().front());
    EXPECT_EQ(pair.getChildren().size(), 2u);
    const auto& symbol = static_cast<const Node&>(*static_cast<const Node&>(loaded.item("u3")).getChildren().front());
    EXPECT_EQ(Map(symbol.getTransform(), 10, 10), Wm4::Vector2<float>(100, 100));
    const auto& sw = static_cast<const Node&>(loaded.item("sw"));
    ASSERT_EQ(sw.getChildren().size(), 1u);
    EXPECT_EQ(sw.getChildren().front()->getId(), std::string("yes"));
    EXPECT_EQ(loaded.item("link").getType(), ItemType::Node);
    EXPECT_EQ(loaded.find(loaded.root.get(), "hidden"), nullptr);
    EXPECT_EQ(loaded.find(loaded.root.get(), "invisible"), nullptr);
    EXPECT_EQ(loaded.count("\"#nothing\""), 1u);
}

TEST(FullReader, ReferenceLoopsAndExpansionsAreRefused)
{
    const std::pair<std::string, const char*> cases[] = {
        {Svg(R"(<g id="a"><use href="#a"/></g>)"), "Reference loop"},
        {Svg(R"(<use id="a" href="#a"/>)"), "Reference loop"},
        {Svg(R"(<defs><g id="a"><use href="#b"/></g><g id="b"><use href="#a"/></g></defs><use href="#a"/>)"),
         "Reference loop"},
    };
    for (const auto& [text, message] : cases) {
        const Loaded loaded = Load(text);
        EXPECT_FALSE(loaded.ok);
        EXPECT_EQ(loaded.root, nullptr);
        EXPECT_EQ(loaded.count(message), 1u) << loaded.allMessages();
    }
    // Ten levels of ten uses each would be 10^10 copies.
    std::string defs = "<defs><rect id=\"l0\" width=\"1\" height=\"1\"/>";
    for (int level = 1; level <= 10; ++level) {
        defs += "<g id=\"l" + std::to_string(level) + "\">";
        for (int i = 0; i < 10; ++i)
            defs += "<use href=\"#l" + std::to_string(level - 1) + "\"/>";
        defs += "</g>";
    }
    const Loaded bomb = Load(Svg(defs + "</defs><use href=\"#l10\"/>"));
    EXPECT_FALSE(bomb.ok);
    EXPECT_EQ(bomb.count("References expand to more than"), 1u) << bomb.allMessages();
}

TEST(FullReader, PaintFieldsAndApproximations)
{
    const Loaded loaded = Load(Svg(R"svg(
      <linearGradient id="lin"><stop offset="0" stop-color="#000000"/><stop offset="1" stop-color="#ffffff"/>
      </linearGradient>
      <radialGradient id="rad" href="#lin"/>
      <rect id="g1" width="1" height="1" fill="url(#lin)"/>
      <rect id="g2" width="1" height="1" fill="url(#rad)" stroke="url(#gone) #00ff00"/>
      <path id="p" d="M0 0h1v1z" fill-rule="evenodd" clip-rule="evenodd" stroke-miterlimit="8"
            stroke-dashoffset="2" stroke-dasharray="1,2 3" filter="url(#f)" mask="url(#m)" clip-path="url(#c)"/>
      <path id="q" d="M0 0h1" filter="url(#f)" fill="url(#gone)" vector-effect="non-rotation fixed-position"/>
    )svg"));
    ASSERT_TRUE(loaded.ok) << loaded.allMessages();
    EXPECT_EQ(loaded.item("g1").getRenderingProperties().getFill(), std::string("#808080"));
    EXPECT_EQ(loaded.item("g2").getRenderingProperties().getFill(), std::string("#808080"));
    EXPECT_EQ(loaded.item("g2").getRenderingProperties().getStroke(), std::string("#00ff00"));
    EXPECT_EQ(loaded.item("q").getRenderingProperties().getFill(), std::string("none"));
    EXPECT_EQ(loaded.item("q").getRenderingProperties().getVectorEffect(), 12u);
    const RenderingProperties& p = loaded.item("p").getRenderingProperties();
    EXPECT_EQ(p.getFillRule(), FillRule::EvenOdd);
    EXPECT_EQ(p.getClipRule(), FillRule::EvenOdd);
    EXPECT_EQ(p.getStrokeMiterlimit(), 8.0f);
    EXPECT_EQ(p.getStrokeDashoffset(), 2.0f);
    ASSERT_TRUE(p.getStrokeDasharray().has_value());
    EXPECT_EQ(p.getStrokeDasharray()->size(), 3u);
    EXPECT_EQ(loaded.count("Approximate gradient"), 2u) << loaded.allMessages();
    EXPECT_EQ(loaded.count("Ignore filter \"f\""), 1u) << loaded.allMessages();
    EXPECT_EQ(loaded.count("Ignore mask \"m\""), 1u);
    EXPECT_EQ(loaded.count("Ignore clip path \"c\""), 1u);
    // Written back only when set, and read back by the same profile.
    const std::string saved = Save(*loaded.root);
    EXPECT_NE(saved.find("fill-rule=\"evenodd\""), std::string::npos) << saved;
    EXPECT_NE(saved.find("stroke-miterlimit=\"8\""), std::string::npos) << saved;
    const Loaded again = Load(saved);
    ASSERT_TRUE(again.ok);
    EXPECT_EQ(Save(*again.root), saved);
}

TEST(FullReader, TextTakesContentAndStyles)
{
    const Loaded loaded = Load(Svg(R"(<g font-family="Serif" font-size="20px"><text id="t" x="5 6" y="7" dx="1"
        font-weight="bold" style="font-style:italic;text-decoration:underline">
          Hello   <tspan>big</tspan>
          <tspan display="none">hidden</tspan> world</text></g>)"));
    ASSERT_TRUE(loaded.ok) << loaded.allMessages();
    const auto& text = static_cast<const Text&>(loaded.item("t"));
    EXPECT_EQ(text.getContent(), "Hello big world");
    EXPECT_EQ(text.getPosition(), Wm4::Vector2<float>(6, 7));
    EXPECT_EQ(text.getFontFamily(), std::string("Serif"));
    EXPECT_EQ(text.getFontSize(), 20.0f);
    EXPECT_EQ(text.getBold(), true);
    EXPECT_EQ(text.getItalic(), true);
    EXPECT_EQ(text.getUnderline(), true);
}

TEST(FullReader, OpacityMultipliesIntoShapes)
{
    const Loaded loaded = Load(Svg(R"(<g opacity="0.5"><g opacity="0.5"><rect id="r" width="1" height="1"
        opacity="0.5"/></g><rect id="s" width="1" height="1"/></g><rect id="t" width="1" height="1"/>)"));
    ASSERT_TRUE(loaded.ok);
    EXPECT_EQ(loaded.item("r").getRenderingProperties().getOpacity(), 0.125f);
    EXPECT_EQ(loaded.item("s").getRenderingProperties().getOpacity(), 0.5f);
    EXPECT_FALSE(loaded.item("t").getRenderingProperties().getOpacity().has_value());
    const auto& group = static_cast<const Node&>(*loaded.root).getChildren().front();
    EXPECT_FALSE(group->getRenderingProperties().getOpacity().has_value());
}

TEST(FullReader, BadInputEndsInAResult)
{
    std::string deep;
    for (int i = 0; i < 10000; ++i)
        deep += "<g>";
    std::string sheet = "<style>";
    for (int i = 0; i < 20000; ++i)
        sheet += ".c" + std::to_string(i) + " rect g > * { fill: red } ";
    sheet += "</style>";
    std::string rects;
    for (int i = 0; i < 2000; ++i)
        rects += "<g class=\"c" + std::to_string(i) + "\"><rect width=\"1\" height=\"1\"/></g>";
    const std::string cases[] = {
        Svg(deep),
        Svg(sheet + rects),
        Svg("<style>rect { fill: red; </style><rect width=\"1\" height=\"1\"/>"),
        Svg("<style>rect, { fill: red } g > > g {}</style><rect width=\"1\" height=\"1\"/>"),
        Svg("<rect style=\"fill:\xff\xfe; stroke:\xc3\" width=\"1\" height=\"1\"/>"),
        Svg("<rect width=\"nan\" height=\"inf\" x=\"1e999\"/><circle r=\"NaN\"/><path d=\"M1e39 0 L 0 0\"/>"),
        Svg("<rect width=\"1\" height=\"1\" transform=\"rotate(nan)\" stroke-width=\"-1\" opacity=\"x\"/>"),
    };
    for (const std::string& text : cases) {
        const Loaded loaded = Load(text);
        EXPECT_TRUE(loaded.ok || !loaded.messages.empty());
        EXPECT_LE(loaded.messages.size(), 1024u);
        if (loaded.ok)
            Save(*loaded.root);
    }
}

} // namespace
