#include <svg/Items.h>
#include <svg/Writer.h>

#include "WriteTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace vk::svg;
using vksvgtest::LogCapture;
using vksvgtest::WriteToText;
using V = Wm4::Vector2<float>;
using T = PathCommandType;

namespace {

std::shared_ptr<Path> path(std::initializer_list<std::pair<T, std::vector<float>>> commands)
{
    auto item = std::make_shared<Path>();
    for (const auto& [type, values] : commands)
        item->editCommands().emplace_back(type, values);
    return item;
}

// `item` once `edit` has run on it: a table row in one expression.
template <class Item, class Edit> std::shared_ptr<ItemInterface> edited(std::shared_ptr<Item> item, Edit edit)
{
    edit(*item);
    return item;
}

} // namespace

TEST(ElementWriters, EachKindWithItsAttributeOrderAndZeroOmission)
{
    const struct {
        std::shared_ptr<ItemInterface> item;
        const char* expected;
    } cases[] = {
        {std::make_shared<Line>(V(1, 2), V(3, 4)), "<line x1=\"1\" y1=\"2\" x2=\"3\" y2=\"4\"/>"},
        {std::make_shared<Line>(V(-0.0f, std::nanf("")), V(0, 0)), "<line y1=\"nan\"/>"},
        {std::make_shared<Rect>(V(0, 0), V(0, 0)), "<rect width=\"0\" height=\"0\"/>"},
        {edited(std::make_shared<Rect>(V(1, 2), V(3, 4)), [](Rect& r) { r.editRadius() = V(0, 5); }),
         "<rect x=\"1\" y=\"2\" width=\"3\" height=\"4\" ry=\"5\"/>"},
        {std::make_shared<Rect>(V(0, 0), V(-5, 1e-7f)), "<rect width=\"-5\" height=\"0\"/>"},
        {std::make_shared<Circle>(V(0, 0), 5.0f), "<circle r=\"5\"/>"},
        {std::make_shared<Circle>(V(1, 2), 0.0f), "<circle r=\"0\" cx=\"1\" cy=\"2\"/>"},
        {std::make_shared<Node>(), "<g/>"},
        {std::make_shared<Document>(), "<svg xmlns=\"http://www.w3.org/2000/svg\"/>"},
        {edited(std::make_shared<Document>(),
                [](Document& d) {
                    d.editViewbox() = BoundingBox(); // invalid: not written
                    d.editStyle() = "";              // empty: not written
                }),
         "<svg xmlns=\"http://www.w3.org/2000/svg\"/>"},
        {edited(std::make_shared<Document>(),
                [](Document& d) {
                    d.editViewbox() = BoundingBox(V(-10, 5), V(10, 5));
                    d.editStyle() = "rect { fill: red; } a > b & c";
                    d.editId() = "doc";
                }),
         "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"-10 5 20 0\" id=\"doc\"><style>\n/* <![CDATA[ */"
         "rect { fill: red; } a > b & c\n/* ]]> */</style></svg>"},
        {std::make_shared<Image>(), "<image width=\"0\" height=\"0\" href=\"\"/>"},
        {edited(std::make_shared<Image>(),
                [](Image& i) {
                    i.editPosition() = V(1, 0);
                    i.editSize() = V(20, 10);
                    i.editHref() = "pic.png";
                    i.editPreserveAspectRatio() = PreserveAspectRatio::XMidYMid;
                }),
         "<image x=\"1\" width=\"20\" height=\"10\" href=\"pic.png\" preserveAspectRatio=\"xMidYMid\"/>"},
        {edited(std::make_shared<Image>(), [](Image& i) { i.editPreserveAspectRatio() = PreserveAspectRatio::None; }),
         "<image width=\"0\" height=\"0\" href=\"\"/>"},
        {edited(std::make_shared<Image>(),
                [](Image& i) { i.editPreserveAspectRatio() = static_cast<PreserveAspectRatio>(12); }),
         "<image width=\"0\" height=\"0\" href=\"\" preserveAspectRatio=\"none\"/>"},
        {std::make_shared<Text>(V(0, 0), "a < b"), "<text>a &lt; b</text>"},
        {edited(std::make_shared<Text>(V(5, 6), ""),
                [](Text& t) {
                    t.editFontFamily() = "Sans";
                    t.editBold() = true;
                    t.editItalic() = false;
                    t.editUnderline() = true;
                    t.editFontSize() = 12.5f;
                    t.editTextLength() = UnitValue(30, Unit::Px);
                    t.editXmlSpacePreserve() = false;
                }),
         "<text x=\"5\" y=\"6\" font-family=\"Sans\" font-weight=\"bold\" text-decoration=\"underline\" "
         "font-size=\"12.5\" textLength=\"30px\" xml:space=\"default\"></text>"},
        {edited(std::make_shared<Line>(V(0, 0), V(1, 0)),
                [](Line& l) { l.editTransform() = Wm4::Matrix3<float>::IDENTITY; }),
         "<line x2=\"1\"/>"},
        {edited(std::make_shared<Line>(V(0, 0), V(1, 0)),
                [](Line& l) {
                    l.editTransform() = Wm4::Matrix3<float>(1, 0, 10, 0, 1, 20, 0, 0, 1);
                    l.editId() = "l1";
                    l.editRenderingProperties().editStroke() = "red";
                }),
         "<line x2=\"1\" id=\"l1\" stroke=\"red\" transform=\"matrix(1 0 0 1 10 20)\"/>"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(WriteToText(*c.item), c.expected);
}

TEST(ElementWriters, PresentationAttributesInTheirFixedOrder)
{
    Node group;
    RenderingProperties& p = group.editRenderingProperties();
    p.editVectorEffect() = 1u | 4u | 8u;
    p.editStrokeDasharray() = std::vector<UnitValue>{UnitValue(1, Unit::None), UnitValue(2, Unit::Em)};
    p.editStrokeLinejoin() = LineJoin::MiterClip;
    p.editStrokeLinecap() = LineCap::Square;
    p.editOpacity() = 0.5f;
    p.editClassName() = "c";
    p.editFillOpacity() = 0.25f;
    p.editFill() = "#F00";
    p.editStroke() = "none";
    p.editStrokeOpacity() = 1.0f;
    p.editStrokeWidth() = 2.0f;
    EXPECT_EQ(WriteToText(group),
              "<g stroke-width=\"2\" stroke-opacity=\"1\" stroke=\"none\" fill=\"#F00\" fill-opacity=\"0.25\" "
              "class=\"c\" opacity=\"0.5\" stroke-linecap=\"square\" stroke-linejoin=\"miter-clip\" "
              "stroke-dasharray=\"1 2em\" vector-effect=\"non-scaling-stroke non-rotation fixed-position\"/>");

    Node other;
    RenderingProperties& q = other.editRenderingProperties();
    q.editStroke() = "";
    q.editVectorEffect() = 0u;
    q.editStrokeLinecap() = static_cast<LineCap>(9);
    q.editStrokeLinejoin() = static_cast<LineJoin>(9);
    q.editStrokeDasharray() = std::vector<UnitValue>{};
    EXPECT_EQ(WriteToText(other), "<g stroke-linecap=\"butt\" stroke-linejoin=\"miter\" stroke-dasharray=\"\" "
                                  "vector-effect=\"none\"/>");
}

TEST(ElementWriters, PathDataCompactAndReadable)
{
    const struct {
        std::shared_ptr<Path> item;
        const char* compact;
        const char* readable;
    } cases[] = {
        {path({{T::MoveTo, {0, 0}}, {T::LineTo, {10, 0}}, {T::LineTo, {10, 10}}, {T::ClosePath, {}}}),
         "M0 0 10 0 10 10Z", "M 0 0 10 0 10 10 Z"},
        {path({{T::MoveToRel, {1, 1}}, {T::LineToRel, {2, 2}}, {T::LineToRel, {3, 3}}}), "m1 1 2 2 3 3",
         "m 1 1 2 2 3 3"},
        {path({{T::MoveTo, {10, 20}}, {T::BezierCubic, {10, 20, 30, -5, 30, -5}}}), "M10 20C10 20 30-5 30-5",
         "M 10 20 C 10 20 30 -5 30 -5"},
        {path({{T::MoveTo, {0, 0}},
               {T::EllipticalArc, {5, 5, 0, 1, 0, 9, 9}},
               {T::EllipticalArc, {5, 5, 30, 0, 1, -1, .5f}}}),
         "M0 0A5 5 0 1 0 9 9 5 5 30 0 1-1 0.5", "M 0 0 A 5 5 0 1 0 9 9 5 5 30 0 1 -1 0.5"},
        // A move after a line-to keeps its letter, an l after an L does not lose it.
        {path({{T::MoveTo, {0, 0}}, {T::LineTo, {1, 1}}, {T::MoveTo, {2, 2}}, {T::LineToRel, {1, 0}}}),
         "M0 0 1 1M2 2l1 0", "M 0 0 1 1 M 2 2 l 1 0"},
        {path({{T::MoveTo, {0, 0}},
               {T::HLineTo, {5}},
               {T::HLineTo, {6}},
               {T::VLineToRel, {-1}},
               {T::ClosePath, {}},
               {T::ClosePath, {}}}),
         "M0 0H5 6v-1ZZ", "M 0 0 H 5 6 v -1 Z Z"},
        {path({{T::MoveTo, {0, 0}}, {T::SmoothBezierCubic, {1, 2, 3, 4}}, {T::SmoothBezierCubicRel, {1, 1, 2, 2}}}),
         "M0 0S1 2 3 4s1 1 2 2", "M 0 0 S 1 2 3 4 s 1 1 2 2"},
        // NaN flags print 1; short commands write what they have; unknown types are skipped.
        {path({{T::MoveTo, {0}}, {static_cast<T>(40), {1, 2}}, {T::EllipticalArcRel, {1, 1, 0, std::nanf(""), 0}}}),
         "M0a1 1 0 1 0", "M 0 a 1 1 0 1 0"},
        {path({}), "", ""},
    };
    SaveOptions readable;
    readable.prettyPrint = true;
    for (const auto& c : cases) {
        EXPECT_EQ(WriteToText(*c.item), std::string("<path d=\"") + c.compact + "\"/>");
        const std::string pretty = WriteToText(*c.item, readable);
        EXPECT_NE(pretty.find(std::string("d=\"") + c.readable + "\""), std::string::npos) << pretty;
    }
}

TEST(ElementWriters, TreeIsWrittenDepthFirstAndPrettyPrintIndents)
{
    Document document;
    auto group = std::make_shared<Node>();
    group->addChild(std::make_shared<Circle>(V(1, 1), 1.0f), true);
    document.addChild(group, true);
    document.addChild(std::make_shared<Text>(V(0, 0), "hi"), true);
    EXPECT_EQ(WriteToText(document), "<svg xmlns=\"http://www.w3.org/2000/svg\"><g><circle r=\"1\" cx=\"1\" "
                                     "cy=\"1\"/></g><text>hi</text></svg>");
    SaveOptions pretty;
    pretty.prettyPrint = true;
    EXPECT_EQ(WriteToText(document, pretty), "<svg xmlns=\"http://www.w3.org/2000/svg\">\n  <g>\n    <circle r=\"1\" "
                                             "cx=\"1\" cy=\"1\"/>\n  </g>\n  <text>hi</text>\n</svg>\n");
}

TEST(ElementWriters, FailuresSetTheirCodeAndLogAndKeepWhatWasWritten)
{
    LogCapture log;
    {
        Text text(V(1, 0), std::string("caf\xe9"));
        vk::xml::XmlSaveContext context(false);
        EXPECT_TRUE(text.beginWriteAsXml(context, SaveOptions()));
        EXPECT_FALSE(text.endWriteAsXml(context, SaveOptions()));
        EXPECT_EQ(context.getErrorCode(), 5);
        EXPECT_EQ(vksvgtest::BufferedText(context), "<text x=\"1\"");
    }
    {
        Line line(V(0, 0), V(1, 1));
        vk::xml::XmlSaveContext context(false);
        EXPECT_FALSE(line.endWriteAsXml(context, SaveOptions())); // nothing is open
        EXPECT_EQ(context.getErrorCode(), 5);
    }
    EXPECT_EQ(log.texts(),
              std::vector<std::string>({"svg|1|Text content was not utf8", "svg|1|Generic end element failed"}));
}
