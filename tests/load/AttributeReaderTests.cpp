// The attribute readers on their own: what each value yields, which
// messages a refused value produces, and what stays behind after a failure.
#include "load/AttributeReaders.h"

#include <svg/Items.h>

#include <gtest/gtest.h>

#include <vkSystem/vkStringUtils.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <list>
#include <random>
#include <string>
#include <vector>

using namespace vk::svg;
using namespace vk::svg::impl;
using vk::xml::XmlAttribute;

namespace {

// A reader context that collects its messages.
struct Messages {
    std::list<std::string> errors;
    std::list<std::string> warnings;
    MessageCallback onError = [this](const std::string& text) { errors.push_back(text); };
    MessageCallback onWarning = [this](const std::string& text) { warnings.push_back(text); };
    ReaderContext context() { return {&onError, &onWarning, 0}; }
};

Rect MakeRect() { return Rect(Wm4::Vector2<float>(0, 0), Wm4::Vector2<float>(0, 0)); }

std::string Twice(const std::string& name) { return "Attribute \"" + name + "\" specified twice"; }
std::string BadValue(const std::string& value, const std::string& name)
{
    return "Failed to parse value \"" + value + "\" in attribute \"" + name + "\"";
}

using Reader = int (*)(ItemInterface*, const XmlAttribute&, ReaderContext&);

struct ElementReaderEntry {
    const char* element;
    Reader reader;
    std::function<std::shared_ptr<ItemInterface>()> make;
};

const ElementReaderEntry kReaders[] = {
    {"svg", ReadDocumentAttribute, [] { return std::make_shared<Document>(); }},
    {"rect", ReadRectAttribute, [] { return std::make_shared<Rect>(MakeRect()); }},
    {"line", ReadLineAttribute,
     [] { return std::make_shared<Line>(Wm4::Vector2<float>(0, 0), Wm4::Vector2<float>(0, 0)); }},
    {"circle", ReadCircleAttribute, [] { return std::make_shared<Circle>(Wm4::Vector2<float>(0, 0), 0.0f); }},
    {"path", ReadPathAttribute, [] { return std::make_shared<Path>(); }},
    {"text", ReadTextAttribute, [] { return std::make_shared<Text>(Wm4::Vector2<float>(0, 0), ""); }},
    {"image", ReadImageAttribute, [] { return std::make_shared<Image>(); }},
};

// Reads the attributes into a fresh item as the loader reads one start tag:
// the shared reader first, then the element's own. Answers the first result
// that is not Handled.
int ReadAll(const std::string& element, const std::vector<XmlAttribute>& attributes, Messages& messages,
            std::shared_ptr<ItemInterface>& item)
{
    const ElementReaderEntry* entry = &kReaders[0];
    while (element != entry->element)
        ++entry;
    item = entry->make();
    ReaderContext context = messages.context();
    for (const XmlAttribute& attribute : attributes) {
        int result = ReadPresentationAttribute(*item, attribute, context);
        if (result == NotMine)
            result = entry->reader(item.get(), attribute, context);
        if (result != Handled)
            return result;
    }
    return Handled;
}

} // namespace

TEST(Readers, AttributesTheyTakeAndRefuse)
{
    // The sample documents invalid_values, text_warnings and
    // unsupported_attributes cover further values with their messages.
    struct Case {
        const char* element;
        std::vector<XmlAttribute> attributes; // all but the last are taken
        int result;
        std::list<std::string> errors;
        std::list<std::string> warnings;
    };
    const std::string ignored = "Ignore unsupported attribute ";
    const std::string badRatio = "Attribute \"preserveAspectRatio\" has an unsupported value ";
    // clang-format off
    std::vector<Case> cases = {
        // The shared reader.
        {"rect", {{"stroke-width", "", "2px"}}, Invalid, {BadValue("2px", "stroke-width")}, {}},
        {"rect", {{"stroke-width", "", " -1.5e-1"}}, Handled, {}, {}},
        {"rect", {{"opacity", "", "0x1p-1"}}, Handled, {}, {}},
        {"rect", {{"opacity", "", "nan"}}, Handled, {}, {}},
        {"rect", {{"fill-opacity", "", "1,5"}}, Invalid, {BadValue("1,5", "fill-opacity")}, {}},
        {"rect", {{"stroke-opacity", "", ""}}, Handled, {}, {}},
        {"rect", {{"fill", "", "rgb(1,2,3)"}}, Handled, {}, {}},
        {"rect", {{"fill", "", "None"}}, Invalid, {"Failed to parse color \"None\" in attribute \"fill\""}, {}},
        {"rect", {{"stroke", "", "url(#g)"}}, Invalid,
         {"Failed to parse color \"url(#g)\" in attribute \"stroke\""}, {}},
        {"rect", {{"stroke", "", " red"}}, Invalid, {"Failed to parse color \" red\" in attribute \"stroke\""}, {}},
        {"rect", {{"class", "", ""}}, Handled, {}, {}},
        {"rect", {{"id", "", "a b"}}, Handled, {}, {}},
        {"rect", {{"stroke-linecap", "", "square"}}, Handled, {}, {}},
        {"rect", {{"stroke-linejoin", "", "miter-clip"}}, Handled, {}, {}},
        {"rect", {{"stroke-linejoin", "", "miter "}}, Invalid, {BadValue("miter ", "stroke-linejoin")}, {}},
        {"rect", {{"stroke-dasharray", "", ""}}, Invalid, {}, {}},
        {"rect", {{"stroke-dasharray", "", "1,2 3mm"}}, Handled, {}, {}},
        {"rect", {{"vector-effect", "", "none"}}, Handled, {}, {}},
        {"rect", {{"vector-effect", "", "none non-rotation"}}, Invalid,
         {BadValue("none non-rotation", "vector-effect")}, {}},
        {"rect", {{"vector-effect", "", "NON-ROTATION"}}, Invalid, {BadValue("NON-ROTATION", "vector-effect")}, {}},
        {"rect", {{"Fill", "", "red"}}, NotMine, {}, {}},
        {"rect", {{"fill", "svg", "red"}}, NotMine, {}, {}},
        // The readers of the elements.
        {"svg", {{"xmlns", "", "anything"}}, Handled, {}, {}},
        {"svg", {{"viewBox", "", "0 0 1 a"}}, Invalid, {"Failed to parse value \"a\" in attribute \"viewBox\""}, {}},
        {"svg", {{"preserveAspectRatio", "", "none"}}, NotMine, {}, {}},
        {"rect", {{"cx", "", "1"}}, NotMine, {}, {}},
        {"rect", {{"x", "a", "1"}}, NotMine, {}, {}},
        {"line", {{"x", "", "1"}}, NotMine, {}, {}},
        {"circle", {{"r", "", "1e"}}, Invalid, {BadValue("1e", "r")}, {}},
        {"circle", {{"rx", "", "1"}}, NotMine, {}, {}},
        {"path", {{"d", "", "M0 0 Q1 1 2 2"}}, Invalid,
         {"Malformed path attribute, Unsupported command in path @5 : Q1 1 2 2 : M0 0 Q1 1 2 2"}, {}},
        {"path", {{"d", "", "M"}}, Invalid,
         {"Malformed path attribute, Expected MoveTo sequence at position 1 : M"}, {}},
        {"path", {{"d", "", "M0 0L"}}, Invalid, {"Malformed path attribute,  : M0 0L"}, {}},
        {"path", {{"d", "", "M0 0 \xff"}}, Invalid, {"Malformed path attribute, Invalid UTF-8 : M0 0 \xff"}, {}},
        {"path", {{"d", "x", "M0 0"}}, NotMine, {}, {}},
        {"path", {{"D", "", "M0 0"}}, NotMine, {}, {}},
        {"text", {{"font-size", "", "12pt"}}, Invalid, {BadValue("12pt", "font-size")}, {}},
        {"text", {{"textLength", "", "12 mm "}}, Handled, {}, {}},
        {"text", {{"font-family", "", "  Any, thing "}}, Handled, {}, {}},
        {"text", {{"font-weight", "", "Bold"}}, Handled, {}, {ignored + "\"font-weight\" with value \"Bold\""}},
        {"text", {{"font-style", "", "oblique"}}, Handled, {}, {ignored + "\"font-style\" with value \"oblique\""}},
        {"text", {{"space", "xmlns", "preserve"}}, NotMine, {}, {}},
        {"text", {{"space", "", "preserve"}}, NotMine, {}, {}},
        {"text", {{"rotate", "", "90"}}, NotMine, {}, {}},
        {"image", {{"title", "xlink", "t"}}, NotMine, {}, {}},
        {"image", {{"preserveAspectRatio", "", "xmidymid"}}, Invalid, {badRatio + "\"xmidymid\""}, {}},
        {"image", {{"r", "", "1"}}, NotMine, {}, {}},
        // A second value is refused before it is looked at.
        {"rect", {{"ry", "", "1"}, {"ry", "", "x"}}, Invalid, {Twice("ry")}, {}},
        {"text", {{"font-weight", "", "x"}, {"font-weight", "", "bold"}}, Invalid, {Twice("font-weight")},
         {ignored + "\"font-weight\" with value \"x\""}},
        {"text", {{"text-decoration", "", "underline"}, {"text-decoration", "", "x"}}, Invalid,
         {Twice("text-decoration")}, {}},
        {"image", {{"href", "", "a"}, {"href", "xlink", "b"}}, Invalid, {Twice("xlink:href")}, {}},
    };
    // Every field refuses a second value; the element readers catch it by a scratch flag.
    const char* const repeated[][3] = {
        {"rect", "stroke-width", "1"}, {"rect", "stroke", "red"}, {"rect", "stroke-opacity", "1"},
        {"rect", "fill", "red"}, {"rect", "fill-opacity", "1"}, {"rect", "class", "c"},
        {"rect", "stroke-linecap", "butt"}, {"rect", "stroke-linejoin", "arcs"}, {"rect", "stroke-dasharray", "1"},
        {"rect", "vector-effect", "none"}, {"rect", "id", "i"}, {"rect", "transform", "scale(2)"},
        {"rect", "opacity", "1"}, {"svg", "xmlns", "a"}, {"rect", "width", "1"}, {"line", "x1", "1"},
        {"circle", "cy", "1"}, {"path", "d", "M1 1"}, {"text", "dx", "1"}, {"text", "font-size", "1"},
        {"text", "textLength", "1"}, {"text", "font-family", "a"}, {"text", "font-style", "italic"},
        {"image", "x", "1"}, {"image", "preserveAspectRatio", "none"},
    };
    // clang-format on
    for (const auto& r : repeated)
        cases.push_back({r[0], {{r[1], "", r[2]}, {r[1], "", r[2]}}, Invalid, {Twice(r[1])}, {}});
    for (const Case& c : cases) {
        const XmlAttribute& last = c.attributes.back();
        SCOPED_TRACE(std::string(c.element) + " " + last.prefix + ":" + last.localName + "=" + last.value);
        Messages messages;
        std::shared_ptr<ItemInterface> item;
        EXPECT_EQ(ReadAll(c.element, c.attributes, messages, item), c.result);
        EXPECT_EQ(messages.errors, c.errors);
        EXPECT_EQ(messages.warnings, c.warnings);
    }
}

TEST(Readers, StoreWhatTheyRead)
{
    // clang-format off
    const std::pair<const char*, std::vector<XmlAttribute>> inputs[] = {
        {"svg", {{"viewBox", "", "-10,5 100 50"}}},
        {"rect", {{"x", "", "1"}, {"y", "", "2"}, {"width", "", "3"}, {"height", "", "4"}, {"rx", "", "5"},
                  {"ry", "", "6"}, {"stroke-width", "", "2.5"}, {"stroke", "", "#F80"}, {"stroke-opacity", "", "0.25"},
                  {"fill", "", "none"}, {"fill-opacity", "", "1e-1"}, {"class", "", " a  b "},
                  {"stroke-linecap", "", "round"}, {"stroke-linejoin", "", "bevel"},
                  {"stroke-dasharray", "", "1 2,,3%"}, {"vector-effect", "", "non-rotation  fixed-position"},
                  {"id", "", "r&1"}, {"opacity", "", "-3"}}},
        {"line", {{"x1", "", "1"}, {"y1", "", "2"}, {"x2", "", "3"}, {"y2", "", "4"}}},
        {"circle", {{"cx", "", "1"}, {"cy", "", "2"}, {"r", "", "3"}}},
        {"text", {{"x", "", "5"}, {"dx", "", "3"}, {"dy", "", "7"}, {"y", "", "9"}, {"font-size", "", "12.5"},
                  {"textLength", "", "3em"}, {"font-family", "", "Serif"}, {"font-weight", "", "bold"},
                  {"font-style", "", "italic"}, {"text-decoration", "", "underline"}}},
        {"image", {{"x", "", "1"}, {"y", "", "2"}, {"width", "", "3"}, {"height", "", "4"},
                   {"href", "svg", "pic.png"}, {"preserveAspectRatio", "", "xMidYMax"}}},
    };
    // clang-format on
    Messages messages;
    std::vector<std::shared_ptr<ItemInterface>> items;
    for (const auto& [element, attributes] : inputs) {
        items.emplace_back();
        ASSERT_EQ(ReadAll(element, attributes, messages, items.back()), Handled) << element;
    }
    EXPECT_TRUE(messages.errors.empty());
    EXPECT_TRUE(messages.warnings.empty());

    const auto& document = static_cast<const Document&>(*items[0]);
    EXPECT_EQ(document.getViewbox()->getMinPoint(), Wm4::Vector2<float>(-10, 5));
    EXPECT_EQ(document.getViewbox()->getMaxPoint(), Wm4::Vector2<float>(90, 55));
    const auto& rect = static_cast<const Rect&>(*items[1]);
    EXPECT_EQ(rect.getPosition(), Wm4::Vector2<float>(1, 2));
    EXPECT_EQ(rect.getSize(), Wm4::Vector2<float>(3, 4));
    EXPECT_EQ(rect.getRadius(), Wm4::Vector2<float>(5, 6));
    const RenderingProperties& p = rect.getRenderingProperties();
    EXPECT_EQ(p.getStrokeWidth(), 2.5f);
    EXPECT_EQ(p.getStroke(), std::optional<std::string>("#F80")) << "paints keep their spelling";
    EXPECT_EQ(p.getStrokeOpacity(), 0.25f);
    EXPECT_EQ(p.getFill(), std::optional<std::string>("none"));
    EXPECT_EQ(p.getFillOpacity(), 1e-1f);
    EXPECT_EQ(p.getClassName(), std::optional<std::string>(" a  b "));
    EXPECT_EQ(p.getStrokeLinecap(), LineCap::Round);
    EXPECT_EQ(p.getStrokeLinejoin(), LineJoin::Bevel);
    EXPECT_EQ(p.getStrokeDasharray(), (std::vector<UnitValue>{{1, Unit::None}, {2, Unit::None}, {3, Unit::Percent}}));
    EXPECT_EQ(p.getVectorEffect(), 12u);
    EXPECT_EQ(rect.getId(), std::optional<std::string>("r&1"));
    EXPECT_EQ(p.getOpacity(), -3.0f);
    const auto& line = static_cast<const Line&>(*items[2]);
    EXPECT_EQ(line.getStart(), Wm4::Vector2<float>(1, 2));
    EXPECT_EQ(line.getEnd(), Wm4::Vector2<float>(3, 4));
    const auto& circle = static_cast<const Circle&>(*items[3]);
    EXPECT_EQ(circle.getCenter(), Wm4::Vector2<float>(1, 2));
    EXPECT_EQ(circle.getRadius(), 3.0f);
    const auto& text = static_cast<const Text&>(*items[4]);
    EXPECT_EQ(text.getPosition(), Wm4::Vector2<float>(3, 9)) << "the later of x/dx and y/dy wins";
    EXPECT_EQ(text.getFontSize(), 12.5f);
    EXPECT_EQ(text.getTextLength(), UnitValue(3, Unit::Em));
    EXPECT_EQ(text.getFontFamily(), std::optional<std::string>("Serif"));
    EXPECT_EQ(text.getBold(), true);
    EXPECT_EQ(text.getItalic(), true);
    EXPECT_EQ(text.getUnderline(), true);
    const auto& image = static_cast<const Image&>(*items[5]);
    EXPECT_EQ(image.getPosition(), Wm4::Vector2<float>(1, 2));
    EXPECT_EQ(image.getSize(), Wm4::Vector2<float>(3, 4));
    EXPECT_EQ(image.getHref(), "pic.png");
    EXPECT_EQ(image.getPreserveAspectRatio(), PreserveAspectRatio::XMidYMax);

    // A refused path leaves no commands behind, and the same tag may give it again.
    Path path;
    ReaderContext context = messages.context();
    EXPECT_EQ(ReadPathAttribute(&path, {"d", "", "M0 0 L1 1 L2"}, context), Invalid);
    EXPECT_TRUE(path.getCommands().empty());
    ASSERT_EQ(ReadPathAttribute(&path, {"d", "", "M1 2 3 4z"}, context), Handled);
    EXPECT_EQ(path.getCommands().size(), 3u);
}

TEST(PresentationReader, DashesAndEffectsKeepWhatCameBeforeAFailure)
{
    Messages messages;
    ReaderContext context = messages.context();
    Rect rect = MakeRect();
    EXPECT_EQ(ReadPresentationAttribute(rect, {"stroke-dasharray", "", "4mm 5 x 6"}, context), Invalid);
    EXPECT_EQ(rect.getRenderingProperties().getStrokeDasharray(),
              (std::vector<UnitValue>{{4, Unit::Mm}, {5, Unit::None}}));
    EXPECT_EQ(ReadPresentationAttribute(rect, {"vector-effect", "", "non-scaling-size bogus non-rotation"}, context),
              Invalid);
    EXPECT_EQ(rect.getRenderingProperties().getVectorEffect(), 2u);

    Rect other = MakeRect();
    EXPECT_EQ(ReadPresentationAttribute(other, {"stroke-dasharray", "", ""}, context), Invalid);
    EXPECT_FALSE(other.getRenderingProperties().getStrokeDasharray()) << "an empty value engages nothing";
    EXPECT_EQ(ReadPresentationAttribute(other, {"stroke-dasharray", "", " , "}, context), Handled);
    EXPECT_EQ(other.getRenderingProperties().getStrokeDasharray(), std::vector<UnitValue>{});
    EXPECT_EQ(ReadPresentationAttribute(other, {"vector-effect", "", ""}, context), Handled);
    EXPECT_EQ(other.getRenderingProperties().getVectorEffect(), 0u);
}

TEST(ElementReaders, TheViewBoxIsGuardedByTheFieldAndXmlSpaceNotAtAll)
{
    Messages messages;
    ReaderContext context = messages.context();
    Document document;
    document.editViewbox() = BoundingBox();
    EXPECT_EQ(ReadDocumentAttribute(&document, {"viewBox", "", "0 0 1 1"}, context), Invalid);
    EXPECT_EQ(messages.errors, std::list<std::string>{Twice("viewBox")});

    Text text(Wm4::Vector2<float>(0, 0), "");
    EXPECT_EQ(ReadTextAttribute(&text, {"space", "xml", "preserve"}, context), Handled);
    EXPECT_EQ(text.getXmlSpacePreserve(), true);
    EXPECT_EQ(ReadTextAttribute(&text, {"space", "xml", "Preserve"}, context), Handled);
    EXPECT_EQ(text.getXmlSpacePreserve(), false);
}

TEST(Readers, WrongOrMissingItemsAndMissingCallbacks)
{
    ReaderContext silent;
    Rect rect = MakeRect();
    EXPECT_EQ(ReadPresentationAttribute(rect, {"fill", "", "nope"}, silent), Invalid) << "refused without a message";
    EXPECT_FALSE(rect.getRenderingProperties().getFill());
    EXPECT_EQ(ReadPresentationAttribute(rect, {"transform", "", "foo(1)"}, silent), Invalid);
    for (const ElementReaderEntry& entry : kReaders) {
        if (std::string(entry.element) != "rect") {
            EXPECT_EQ(entry.reader(&rect, {"x", "", "1"}, silent), Invalid) << entry.element;
        }
        EXPECT_EQ(entry.reader(nullptr, {"x", "", "1"}, silent), Invalid) << entry.element;
    }
    // Without a warning callback a refused keyword is an error instead.
    Messages messages;
    ReaderContext errorsOnly;
    errorsOnly.error = &messages.onError;
    Text text(Wm4::Vector2<float>(0, 0), "");
    EXPECT_EQ(ReadTextAttribute(&text, {"font-weight", "", "normal"}, errorsOnly), Invalid);
    EXPECT_EQ(messages.errors,
              std::list<std::string>{"Ignore unsupported attribute \"font-weight\" with value \"normal\""});
    EXPECT_FALSE(text.getBold());
    EXPECT_EQ(ReadTextAttribute(&text, {"font-weight", "", "bold"}, silent), Handled) << "a fresh tag, fresh flags";
}

TEST(TransformReader, CommandsAndLists)
{
    const float s30 = 0.5f;
    const float c30 = std::sqrt(3.0f) / 2.0f;
    const float t30 = std::tan(30.0f * 0.017453292f);
    struct Case {
        std::string value;
        float matrix[6]; // a b c d e f
    };
    const Case cases[] = {
        {"translate(10 20)", {1, 0, 0, 1, 10, 20}},
        {"translate(-7)", {1, 0, 0, 1, -7, 0}},
        {"scale(2)", {2, 0, 0, 2, 0, 0}},
        {"scale(2,3)", {2, 0, 0, 3, 0, 0}},
        {"rotate(30)", {c30, s30, -s30, c30, 0, 0}},
        {"rotate(30 5)", {c30, s30, -s30, c30, 0, 0}},
        // A rotation followed by a move to the centre, not one about it.
        {"rotate(30 5 6)", {c30, s30, -s30, c30, 5, 6}},
        {"skewX(30)", {1, 0, t30, 1, 0, 0}},
        {"skewY(30)", {1, t30, 0, 1, 0, 0}},
        {"matrix(1 2 3 4 5 6)", {1, 2, 3, 4, 5, 6}},
        {"translate(10,20) scale(2)", {2, 0, 0, 2, 10, 20}},
        {"scale(2) translate(10,20)", {2, 0, 0, 2, 20, 40}},
        {" ,\ttranslate\n (1)\r\n,scale( 3 ),", {3, 0, 0, 3, 1, 0}},
        {"", {1, 0, 0, 1, 0, 0}},
        {"translate(1)translate(-1)", {1, 0, 0, 1, 0, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        Messages messages;
        Wm4::Matrix3<float> m;
        ASSERT_TRUE(ReadTransformList(c.value, m, messages.context()));
        const float svgOrder[] = {m(0, 0), m(1, 0), m(0, 1), m(1, 1), m(0, 2), m(1, 2)};
        for (std::size_t i = 0; i < 6; ++i)
            EXPECT_NEAR(svgOrder[i], c.matrix[i], 1e-5f) << "entry " << i;
        EXPECT_EQ(m(2, 0), 0.0f);
        EXPECT_EQ(m(2, 2), 1.0f);
        EXPECT_TRUE(messages.errors.empty());
    }
}

TEST(TransformReader, Failures)
{
    // "rotate(30" and an unknown command such as "spin(1)" are in the
    // invalid_values sample document.
    struct Case {
        std::string value;
        std::string listError; // reported by the number list first, if any
        std::string tail;
    };
    const std::string locate = ", fail to locate '(' / ')'";
    const std::string count = "Wrong number of values for \"transform\"";
    const Case cases[] = {
        {"rotate 30)", "", locate},
        {")scale(1(", "", locate},
        {"scale(2) x", "", locate},
        {"Scale(1)", "", ", unsupported command 'Scale'"},
        {" \tskewx (1)", "", ", unsupported command 'skewx'"},
        {"(1)", "", ", unsupported command ''"},
        {"matrix(1 2 3 4 5)", count, ", fail to parse 'matrix' content"},
        {"translate()", count, ", fail to parse 'translate' content"},
        {"scale(1 2 3)", count, ", fail to parse 'scale' content"},
        {"rotate(1 2 3 4)", count, ", fail to parse 'rotate' content"},
        {"skewX(1 2)", count, ", fail to parse 'skewX' content"},
        {"skewY(a)", BadValue("a", "transform"), ", fail to parse 'skewY' content"},
        {"translate(1) rotate(1px)", BadValue("1px", "transform"), ", fail to parse 'rotate' content"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        Messages messages;
        const Wm4::Matrix3<float> before(2, 0, 0, 0, 2, 0, 0, 0, 1);
        Wm4::Matrix3<float> matrix = before;
        EXPECT_FALSE(ReadTransformList(c.value, matrix, messages.context()));
        std::list<std::string> errors{"Failed to parse transform attribute \"" + c.value + "\"" + c.tail};
        if (!c.listError.empty())
            errors.push_front(c.listError);
        EXPECT_EQ(messages.errors, errors);
        EXPECT_TRUE(matrix == before) << "nothing is stored on failure";
    }
}

TEST(TransformReader, AnIdentityLeavesTheItemUntouchedAndRoomForAnother)
{
    // One element cannot carry two transform attributes, but the readers may
    // meet the same item twice.
    for (const char* value : {"translate(0)", "scale(1)", "rotate(0)", "matrix(1 0 0 1 0 0)", "", " , "}) {
        SCOPED_TRACE(value);
        ReaderContext context;
        Rect rect = MakeRect();
        EXPECT_EQ(ReadPresentationAttribute(rect, {"transform", "", value}, context), Handled);
        EXPECT_FALSE(rect.getTransform());
        EXPECT_EQ(ReadPresentationAttribute(rect, {"transform", "", "scale(2)"}, context), Handled);
        EXPECT_TRUE(rect.getTransform());
    }
}

TEST(NumberListReader, CountsAndPieces)
{
    struct Case {
        std::string text;
        std::size_t min;
        std::size_t max;
        std::vector<float> values; // empty: the read fails
        std::list<std::string> errors;
    };
    const Case cases[] = {
        {"0 0 100 50", 4, 4, {0, 0, 100, 50}, {}},
        {"0,0,100,50", 4, 4, {0, 0, 100, 50}, {}},
        {" 0 , 0 ,100\t50\r\n", 4, 4, {0, 0, 100, 50}, {}},
        {"1", 1, 3, {1}, {}},
        {"1e2 -.5", 1, 3, {100, -0.5f}, {}},
        {"0 0 100", 4, 4, {}, {"Wrong number of values for \"list\""}},
        {"1 2 3 4 5", 4, 4, {}, {"Wrong number of values for \"list\""}},
        {"", 1, 1, {}, {"Wrong number of values for \"list\""}},
        {"1 2px 3 4", 4, 4, {}, {"Failed to parse value \"2px\" in attribute \"list\""}},
        {"1;2", 1, 2, {}, {"Failed to parse value \"1;2\" in attribute \"list\""}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        Messages messages;
        float values[4] = {-9, -9, -9, -9};
        std::size_t count = 99;
        const bool ok = ReadNumberList(c.text, c.min, c.max, "list", values, count, messages.context());
        EXPECT_EQ(ok, !c.values.empty());
        EXPECT_EQ(messages.errors, c.errors);
        if (ok) {
            EXPECT_EQ(std::vector<float>(values, values + count), c.values);
        } else {
            EXPECT_EQ(count, 99u);
            EXPECT_EQ(values[0], -9.0f) << "values before a failing piece are discarded";
        }
    }
}

TEST(NumberReader, TheWholeTextIsOneNumber)
{
    struct Case {
        std::string text;
        bool ok;
        float value;
    };
    const Case cases[] = {
        {"2", true, 2},
        {"-0.5", true, -0.5f},
        {" 3", true, 3},
        {"1e3", true, 1000},
        {"", true, 0},
        {"2px", false, 0},
        {"2 ", false, 0},
        {"1,5", false, 0},
        {"0x10", true, 16},
        {std::string(300, '1'), true, std::numeric_limits<float>::infinity()},
        {std::string(200, '0') + "7", true, 7},
    };
    for (const Case& c : cases) {
        float value = -1;
        EXPECT_EQ(ReadNumber(c.text, value), c.ok) << c.text;
        EXPECT_EQ(value, c.ok ? c.value : -1.0f) << c.text;
    }
}

TEST(NumberReader, AgreesBitForBitWithStrtof)
{
    // Plain decimals take a shortcut; it must round exactly as strtof does.
    std::mt19937 random(7u);
    const auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
    for (int i = 0; i < 200000; ++i) {
        std::string text;
        const int sign = pick(0, 5);
        if (sign < 2)
            text += "-+"[sign];
        const int integerDigits = pick(0, 9);
        for (int d = 0; d < integerDigits; ++d)
            text += static_cast<char>('0' + pick(0, 9));
        if (pick(0, 2) != 0) {
            text += '.';
            const int decimals = pick(0, 12);
            for (int d = 0; d < decimals; ++d)
                text += static_cast<char>('0' + pick(0, 9));
        }
        char* end = nullptr;
        const float expected = strtof_l(text.c_str(), &end, vk::vkStringUtils::msCLocale);
        const bool expectedOk = end == text.c_str() + text.size();
        float value = 0;
        ASSERT_EQ(ReadNumber(text, value), expectedOk) << text;
        if (expectedOk) {
            ASSERT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << text << ": " << value << " vs " << expected;
        }
    }
}
