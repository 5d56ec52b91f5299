// The attribute readers on their own: what each value yields, which
// messages a refused value produces, and what stays behind after a failure.
#include "load/AttributeReaders.h"

#include <svg/Items.h>

#include <gtest/gtest.h>

#include <wm4/Wm4Vector3.h>

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
    ReaderContext context()
    {
        ReaderContext c;
        c.error = &onError;
        c.warning = &onWarning;
        return c;
    }
};

Rect MakeRect() { return Rect(Wm4::Vector2<float>(0, 0), Wm4::Vector2<float>(0, 0)); }

std::string Twice(const std::string& name) { return "Attribute \"" + name + "\" specified twice"; }
std::string BadValue(const std::string& value, const std::string& name)
{
    return "Failed to parse value \"" + value + "\" in attribute \"" + name + "\"";
}
std::string BadTransform(const std::string& value, const std::string& tail)
{
    return "Failed to parse transform attribute \"" + value + "\"" + tail;
}

// The matrix as SVG writes it: a b c d e f.
std::vector<float> SvgOrder(const Wm4::Matrix3<float>& m)
{
    return {m(0, 0), m(1, 0), m(0, 1), m(1, 1), m(0, 2), m(1, 2)};
}

void ExpectNear(const std::vector<float>& actual, const std::vector<float>& expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-5f) << "entry " << i;
}

} // namespace

TEST(PresentationReader, ValuesAndTheirMessages)
{
    struct Case {
        const char* name;
        std::string value;
        int result;
        std::list<std::string> errors;
    };
    const Case cases[] = {
        {"stroke-width", "2", Handled, {}},
        {"stroke-width", "2px", Invalid, {BadValue("2px", "stroke-width")}},
        {"stroke-width", "2 ", Invalid, {BadValue("2 ", "stroke-width")}},
        {"stroke-width", " -1.5e-1", Handled, {}},
        {"opacity", "0x1p-1", Handled, {}},
        {"opacity", "nan", Handled, {}},
        {"fill-opacity", "1,5", Invalid, {BadValue("1,5", "fill-opacity")}},
        {"stroke-opacity", "", Handled, {}},
        {"fill", "none", Handled, {}},
        {"fill", "#abc", Handled, {}},
        {"fill", "rgb(1,2,3)", Handled, {}},
        {"fill", "None", Invalid, {"Failed to parse color \"None\" in attribute \"fill\""}},
        {"stroke", "url(#g)", Invalid, {"Failed to parse color \"url(#g)\" in attribute \"stroke\""}},
        {"stroke", " red", Invalid, {"Failed to parse color \" red\" in attribute \"stroke\""}},
        {"class", "", Handled, {}},
        {"id", "a b", Handled, {}},
        {"stroke-linecap", "square", Handled, {}},
        {"stroke-linecap", "Round", Invalid, {BadValue("Round", "stroke-linecap")}},
        {"stroke-linejoin", "miter-clip", Handled, {}},
        {"stroke-linejoin", "miter ", Invalid, {BadValue("miter ", "stroke-linejoin")}},
        {"stroke-dasharray", "", Invalid, {}},
        {"stroke-dasharray", "1,2 3mm", Handled, {}},
        {"stroke-dasharray", "1 x", Invalid, {BadValue("1 x", "stroke-dasharray")}},
        {"vector-effect", "none", Handled, {}},
        {"vector-effect", "none non-rotation", Invalid, {BadValue("none non-rotation", "vector-effect")}},
        {"vector-effect", "NON-ROTATION", Invalid, {BadValue("NON-ROTATION", "vector-effect")}},
        {"transform", "translate(1)", Handled, {}},
        {"Fill", "red", NotMine, {}},
        {"style", "fill:red", NotMine, {}},
        {"stroke-miterlimit", "4", NotMine, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name) + "=" + c.value);
        Messages messages;
        ReaderContext context = messages.context();
        Rect rect = MakeRect();
        EXPECT_EQ(ReadPresentationAttribute(rect, {c.name, "", c.value}, context), c.result);
        EXPECT_EQ(messages.errors, c.errors);
        EXPECT_TRUE(messages.warnings.empty());
    }
}

TEST(PresentationReader, StoresWhatItReads)
{
    Messages messages;
    ReaderContext context = messages.context();
    Rect rect = MakeRect();
    // clang-format off
    const std::vector<XmlAttribute> attributes = {
        {"stroke-width", "", "2.5"}, {"stroke", "", "#F80"}, {"stroke-opacity", "", "0.25"}, {"fill", "", "none"},
        {"fill-opacity", "", "1e-1"}, {"class", "", " a  b "}, {"stroke-linecap", "", "round"},
        {"stroke-linejoin", "", "bevel"}, {"stroke-dasharray", "", "1 2,,3%"},
        {"vector-effect", "", "non-rotation  fixed-position"}, {"id", "", "r&1"}, {"opacity", "", "-3"},
    };
    // clang-format on
    for (const XmlAttribute& attribute : attributes)
        ASSERT_EQ(ReadPresentationAttribute(rect, attribute, context), Handled) << attribute.localName;
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
    EXPECT_FALSE(rect.getTransform());
    EXPECT_TRUE(messages.errors.empty());
}

TEST(PresentationReader, EveryFieldRefusesASecondValue)
{
    const char* names[] = {
        "stroke-width",    "stroke",           "stroke-opacity", "fill", "fill-opacity", "class",  "stroke-linecap",
        "stroke-linejoin", "stroke-dasharray", "vector-effect",  "id",   "transform",    "opacity"};
    const char* values[] = {"1", "red", "1", "red", "1", "c", "butt", "arcs", "1", "none", "i", "scale(2)", "1"};
    for (std::size_t i = 0; i < sizeof(names) / sizeof(names[0]); ++i) {
        SCOPED_TRACE(names[i]);
        Messages messages;
        ReaderContext context = messages.context();
        Rect rect = MakeRect();
        ASSERT_EQ(ReadPresentationAttribute(rect, {names[i], "", values[i]}, context), Handled);
        EXPECT_EQ(ReadPresentationAttribute(rect, {names[i], "", values[i]}, context), Invalid);
        EXPECT_EQ(messages.errors, std::list<std::string>{Twice(names[i])});
    }
}

TEST(PresentationReader, PrefixedAttributesAndMissingCallbacks)
{
    ReaderContext silent;
    Rect rect = MakeRect();
    EXPECT_EQ(ReadPresentationAttribute(rect, {"fill", "svg", "red"}, silent), NotMine);
    EXPECT_EQ(ReadPresentationAttribute(rect, {"fill", "", "nope"}, silent), Invalid) << "refused without a message";
    EXPECT_FALSE(rect.getRenderingProperties().getFill());
    EXPECT_EQ(ReadPresentationAttribute(rect, {"transform", "", "foo(1)"}, silent), Invalid);
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

TEST(TransformReader, CommandsAndLists)
{
    const float s30 = 0.5f;
    const float c30 = std::sqrt(3.0f) / 2.0f;
    const float t30 = std::tan(30.0f * 0.017453292f);
    struct Case {
        std::string value;
        std::vector<float> matrix; // a b c d e f
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
        Wm4::Matrix3<float> matrix;
        ASSERT_TRUE(ReadTransformList(c.value, matrix, messages.context()));
        ExpectNear(SvgOrder(matrix), c.matrix);
        EXPECT_EQ(matrix(2, 0), 0.0f);
        EXPECT_EQ(matrix(2, 2), 1.0f);
        EXPECT_TRUE(messages.errors.empty());
    }
}

TEST(TransformReader, RotationAboutAPointIsARotationThenAMove)
{
    Messages messages;
    Wm4::Matrix3<float> matrix;
    ASSERT_TRUE(ReadTransformList("rotate(90 10 20)", matrix, messages.context()));
    const Wm4::Vector3<float> mapped = matrix * Wm4::Vector3<float>(1.0f, 0.0f, 1.0f);
    EXPECT_NEAR(mapped.X(), 10.0f, 1e-5f);
    EXPECT_NEAR(mapped.Y(), 21.0f, 1e-5f);
}

TEST(TransformReader, Failures)
{
    struct Case {
        std::string value;
        std::list<std::string> errors;
    };
    const std::string locate = ", fail to locate '(' / ')'";
    const Case cases[] = {
        {"rotate(30", {BadTransform("rotate(30", locate)}},
        {"rotate 30)", {BadTransform("rotate 30)", locate)}},
        {")scale(1(", {BadTransform(")scale(1(", locate)}},
        {"scale(2) x", {BadTransform("scale(2) x", locate)}},
        {"foo(1)", {BadTransform("foo(1)", ", unsupported command 'foo'")}},
        {"Scale(1)", {BadTransform("Scale(1)", ", unsupported command 'Scale'")}},
        {" \tskewx (1)", {BadTransform(" \tskewx (1)", ", unsupported command 'skewx'")}},
        {"(1)", {BadTransform("(1)", ", unsupported command ''")}},
        {"matrix(1 2 3 4 5)",
         {"Wrong number of values for \"transform\"",
          BadTransform("matrix(1 2 3 4 5)", ", fail to parse 'matrix' content")}},
        {"translate()",
         {"Wrong number of values for \"transform\"",
          BadTransform("translate()", ", fail to parse 'translate' content")}},
        {"scale(1 2 3)",
         {"Wrong number of values for \"transform\"", BadTransform("scale(1 2 3)", ", fail to parse 'scale' content")}},
        {"rotate(1 2 3 4)",
         {"Wrong number of values for \"transform\"",
          BadTransform("rotate(1 2 3 4)", ", fail to parse 'rotate' content")}},
        {"skewX(1 2)",
         {"Wrong number of values for \"transform\"", BadTransform("skewX(1 2)", ", fail to parse 'skewX' content")}},
        {"skewY(a)",
         {"Failed to parse value \"a\" in attribute \"transform\"",
          BadTransform("skewY(a)", ", fail to parse 'skewY' content")}},
        {"translate(1) rotate(1px)",
         {"Failed to parse value \"1px\" in attribute \"transform\"",
          BadTransform("translate(1) rotate(1px)", ", fail to parse 'rotate' content")}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        Messages messages;
        const Wm4::Matrix3<float> before(2, 0, 0, 0, 2, 0, 0, 0, 1);
        Wm4::Matrix3<float> matrix = before;
        EXPECT_FALSE(ReadTransformList(c.value, matrix, messages.context()));
        EXPECT_EQ(messages.errors, c.errors);
        EXPECT_TRUE(matrix == before) << "nothing is stored on failure";
    }
}

TEST(TransformReader, IdentityResultsLeaveTheItemUntouched)
{
    for (const char* value : {"translate(0)", "scale(1)", "rotate(0)", "matrix(1 0 0 1 0 0)", "", " , "}) {
        Messages messages;
        ReaderContext context = messages.context();
        Rect rect = MakeRect();
        EXPECT_EQ(ReadPresentationAttribute(rect, {"transform", "", value}, context), Handled) << value;
        EXPECT_FALSE(rect.getTransform()) << value;
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
        if (sign == 0)
            text += '-';
        else if (sign == 1)
            text += '+';
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
            uint32_t a = 0;
            uint32_t b = 0;
            std::memcpy(&a, &value, 4);
            std::memcpy(&b, &expected, 4);
            ASSERT_EQ(a, b) << text;
        }
    }
}

namespace {

struct ElementCase {
    const char* element;
    XmlAttribute attribute;
    int result;
    std::list<std::string> errors;
    std::list<std::string> warnings;
};

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

const ElementReaderEntry& ReaderOf(const std::string& element)
{
    for (const ElementReaderEntry& entry : kReaders)
        if (element == entry.element)
            return entry;
    return kReaders[0];
}

} // namespace

TEST(ElementReaders, AttributesTheyTakeAndRefuse)
{
    const std::string ignored = "Ignore unsupported attribute ";
    const std::string badRatio = "Attribute \"preserveAspectRatio\" has an unsupported value ";
    // clang-format off
    const ElementCase cases[] = {
        {"svg", {"xmlns", "", "anything"}, Handled, {}, {}},
        {"svg", {"viewBox", "", "0 0 1"}, Invalid, {"Wrong number of values for \"viewBox\""}, {}},
        {"svg", {"viewBox", "", "0 0 1 a"}, Invalid, {"Failed to parse value \"a\" in attribute \"viewBox\""}, {}},
        {"svg", {"width", "", "10"}, NotMine, {}, {}},
        {"svg", {"preserveAspectRatio", "", "none"}, NotMine, {}, {}},
        {"svg", {"xlink", "xmlns", "u"}, NotMine, {}, {}},
        {"rect", {"width", "", "10px"}, Invalid, {BadValue("10px", "width")}, {}},
        {"rect", {"cx", "", "1"}, NotMine, {}, {}},
        {"rect", {"x", "a", "1"}, NotMine, {}, {}},
        {"line", {"x", "", "1"}, NotMine, {}, {}},
        {"circle", {"r", "", "1e"}, Invalid, {BadValue("1e", "r")}, {}},
        {"circle", {"rx", "", "1"}, NotMine, {}, {}},
        {"path", {"d", "", "M0 0 L1"}, Invalid,
         {"Malformed path attribute, Unmatched coordinate sequence after L at position 7 : M0 0 L1"}, {}},
        {"path", {"d", "", "M0 0 Q1 1 2 2"}, Invalid,
         {"Malformed path attribute, Unsupported command in path @5 : Q1 1 2 2 : M0 0 Q1 1 2 2"}, {}},
        {"path", {"d", "", "M"}, Invalid, {"Malformed path attribute, Expected MoveTo sequence at position 1 : M"}, {}},
        {"path", {"d", "", "M0 0L"}, Invalid, {"Malformed path attribute,  : M0 0L"}, {}},
        {"path", {"d", "", "M0 0 \xff"}, Invalid, {"Malformed path attribute, Invalid UTF-8 : M0 0 \xff"}, {}},
        {"path", {"d", "x", "M0 0"}, NotMine, {}, {}},
        {"path", {"D", "", "M0 0"}, NotMine, {}, {}},
        {"text", {"font-size", "", "12pt"}, Invalid, {BadValue("12pt", "font-size")}, {}},
        {"text", {"textLength", "", "12 mm "}, Handled, {}, {}},
        {"text", {"textLength", "", "12PX"}, Invalid, {BadValue("12PX", "textLength")}, {}},
        {"text", {"font-family", "", "  Any, thing "}, Handled, {}, {}},
        {"text", {"font-weight", "", "Bold"}, Handled, {}, {ignored + "\"font-weight\" with value \"Bold\""}},
        {"text", {"font-style", "", "oblique"}, Handled, {}, {ignored + "\"font-style\" with value \"oblique\""}},
        {"text", {"text-decoration", "", "none"}, Handled, {}, {ignored + "\"text-decoration\" with value \"none\""}},
        {"text", {"lang", "xml", "en"}, NotMine, {}, {}},
        {"text", {"space", "xmlns", "preserve"}, NotMine, {}, {}},
        {"text", {"space", "", "preserve"}, NotMine, {}, {}},
        {"text", {"rotate", "", "90"}, NotMine, {}, {}},
        {"image", {"href", "xlink", "a.png"}, Handled, {}, {}},
        {"image", {"title", "xlink", "t"}, NotMine, {}, {}},
        {"image", {"preserveAspectRatio", "", "xMidYMid meet"}, Invalid, {badRatio + "\"xMidYMid meet\""}, {}},
        {"image", {"preserveAspectRatio", "", "xmidymid"}, Invalid, {badRatio + "\"xmidymid\""}, {}},
        {"image", {"r", "", "1"}, NotMine, {}, {}},
    };
    // clang-format on
    for (const ElementCase& c : cases) {
        SCOPED_TRACE(std::string(c.element) + " " + c.attribute.prefix + ":" + c.attribute.localName + "=" +
                     c.attribute.value);
        Messages messages;
        ReaderContext context = messages.context();
        const ElementReaderEntry& entry = ReaderOf(c.element);
        const std::shared_ptr<ItemInterface> item = entry.make();
        EXPECT_EQ(entry.reader(item.get(), c.attribute, context), c.result);
        EXPECT_EQ(messages.errors, c.errors);
        EXPECT_EQ(messages.warnings, c.warnings);
    }
}

TEST(ElementReaders, RepeatedAttributesAreCaughtByTheirFlags)
{
    struct Case {
        const char* element;
        XmlAttribute first;
        XmlAttribute second;
        const char* reportedName;
    };
    const Case cases[] = {
        {"svg", {"xmlns", "", "a"}, {"xmlns", "", "b"}, "xmlns"},
        {"rect", {"width", "", "1"}, {"width", "", "2"}, "width"},
        {"rect", {"ry", "", "1"}, {"ry", "", "x"}, "ry"},
        {"line", {"x1", "", "1"}, {"x1", "", "1"}, "x1"},
        {"circle", {"cy", "", "1"}, {"cy", "", "1"}, "cy"},
        {"path", {"d", "", "M1 1"}, {"d", "", "M2 2"}, "d"},
        {"text", {"dx", "", "1"}, {"dx", "", "1"}, "dx"},
        {"text", {"font-size", "", "1"}, {"font-size", "", "2"}, "font-size"},
        {"text", {"textLength", "", "1"}, {"textLength", "", "2"}, "textLength"},
        {"text", {"font-family", "", "a"}, {"font-family", "", "b"}, "font-family"},
        {"text", {"font-weight", "", "x"}, {"font-weight", "", "bold"}, "font-weight"},
        {"text", {"font-style", "", "italic"}, {"font-style", "", "italic"}, "font-style"},
        {"text", {"text-decoration", "", "underline"}, {"text-decoration", "", "x"}, "text-decoration"},
        {"image", {"href", "", "a"}, {"href", "xlink", "b"}, "xlink:href"},
        {"image", {"x", "", "1"}, {"x", "", "1"}, "x"},
        {"image", {"preserveAspectRatio", "", "none"}, {"preserveAspectRatio", "", "none"}, "preserveAspectRatio"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.element) + " " + c.reportedName);
        Messages messages;
        ReaderContext context = messages.context();
        const ElementReaderEntry& entry = ReaderOf(c.element);
        const std::shared_ptr<ItemInterface> item = entry.make();
        entry.reader(item.get(), c.first, context);
        messages.warnings.clear();
        EXPECT_EQ(entry.reader(item.get(), c.second, context), Invalid);
        EXPECT_EQ(messages.errors, std::list<std::string>{Twice(c.reportedName)});
    }
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

TEST(ElementReaders, StoreTheirFields)
{
    Messages messages;
    ReaderContext context = messages.context();

    Document document;
    ASSERT_EQ(ReadDocumentAttribute(&document, {"viewBox", "", "-10,5 100 50"}, context), Handled);
    EXPECT_EQ(document.getViewbox()->getMinPoint(), Wm4::Vector2<float>(-10, 5));
    EXPECT_EQ(document.getViewbox()->getMaxPoint(), Wm4::Vector2<float>(90, 55));

    context.flags = 0;
    Rect rect = MakeRect();
    // clang-format off
    for (const XmlAttribute& a : std::vector<XmlAttribute>{
             {"x", "", "1"}, {"y", "", "2"}, {"width", "", "3"}, {"height", "", "4"}, {"rx", "", "5"}, {"ry", "", "6"}})
        // clang-format on
        ASSERT_EQ(ReadRectAttribute(&rect, a, context), Handled);
    EXPECT_EQ(rect.getPosition(), Wm4::Vector2<float>(1, 2));
    EXPECT_EQ(rect.getSize(), Wm4::Vector2<float>(3, 4));
    EXPECT_EQ(rect.getRadius(), Wm4::Vector2<float>(5, 6));

    context.flags = 0;
    Line line(Wm4::Vector2<float>(0, 0), Wm4::Vector2<float>(0, 0));
    for (const XmlAttribute& a :
         std::vector<XmlAttribute>{{"x1", "", "1"}, {"y1", "", "2"}, {"x2", "", "3"}, {"y2", "", "4"}})
        ASSERT_EQ(ReadLineAttribute(&line, a, context), Handled);
    EXPECT_EQ(line.getStart(), Wm4::Vector2<float>(1, 2));
    EXPECT_EQ(line.getEnd(), Wm4::Vector2<float>(3, 4));

    context.flags = 0;
    Circle circle(Wm4::Vector2<float>(0, 0), 0);
    for (const XmlAttribute& a : std::vector<XmlAttribute>{{"cx", "", "1"}, {"cy", "", "2"}, {"r", "", "3"}})
        ASSERT_EQ(ReadCircleAttribute(&circle, a, context), Handled);
    EXPECT_EQ(circle.getCenter(), Wm4::Vector2<float>(1, 2));
    EXPECT_EQ(circle.getRadius(), 3.0f);

    context.flags = 0;
    Text text(Wm4::Vector2<float>(0, 0), "");
    // clang-format off
    for (const XmlAttribute& a : std::vector<XmlAttribute>{
             {"x", "", "5"}, {"dx", "", "3"}, {"dy", "", "7"}, {"y", "", "9"}, {"font-size", "", "12.5"},
             {"textLength", "", "3em"}, {"font-family", "", "Serif"}, {"font-weight", "", "bold"},
             {"font-style", "", "italic"}, {"text-decoration", "", "underline"}})
        // clang-format on
        ASSERT_EQ(ReadTextAttribute(&text, a, context), Handled);
    EXPECT_EQ(text.getPosition(), Wm4::Vector2<float>(3, 9)) << "the later of x/dx and y/dy wins";
    EXPECT_EQ(text.getFontSize(), 12.5f);
    EXPECT_EQ(text.getTextLength(), UnitValue(3, Unit::Em));
    EXPECT_EQ(text.getFontFamily(), std::optional<std::string>("Serif"));
    EXPECT_EQ(text.getBold(), true);
    EXPECT_EQ(text.getItalic(), true);
    EXPECT_EQ(text.getUnderline(), true);

    context.flags = 0;
    Image image;
    // clang-format off
    for (const XmlAttribute& a : std::vector<XmlAttribute>{
             {"x", "", "1"}, {"y", "", "2"}, {"width", "", "3"}, {"height", "", "4"}, {"href", "svg", "pic.png"},
             {"preserveAspectRatio", "", "xMidYMax"}})
        // clang-format on
        ASSERT_EQ(ReadImageAttribute(&image, a, context), Handled);
    EXPECT_EQ(image.getPosition(), Wm4::Vector2<float>(1, 2));
    EXPECT_EQ(image.getSize(), Wm4::Vector2<float>(3, 4));
    EXPECT_EQ(image.getHref(), "pic.png");
    EXPECT_EQ(image.getPreserveAspectRatio(), PreserveAspectRatio::XMidYMax);

    context.flags = 0;
    Path path;
    ASSERT_EQ(ReadPathAttribute(&path, {"d", "", "M1 2 3 4z"}, context), Handled);
    EXPECT_EQ(path.getCommands().size(), 3u);
    EXPECT_TRUE(messages.errors.empty());
    EXPECT_TRUE(messages.warnings.empty());
}

TEST(ElementReaders, ARefusedPathLeavesNoCommandsAndMayBeRetried)
{
    Messages messages;
    ReaderContext context = messages.context();
    Path path;
    EXPECT_EQ(ReadPathAttribute(&path, {"d", "", "M0 0 L1 1 L2"}, context), Invalid);
    EXPECT_TRUE(path.getCommands().empty());
    EXPECT_EQ(ReadPathAttribute(&path, {"d", "", "M0 0"}, context), Handled);
    EXPECT_EQ(path.getCommands().size(), 1u);
}

TEST(ElementReaders, WrongOrMissingItemsAndMissingCallbacks)
{
    ReaderContext silent;
    Rect rect = MakeRect();
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
