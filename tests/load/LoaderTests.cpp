// The loader: which documents it accepts, with which messages, and the trees
// it builds; the handler is also driven event by event for the states that
// a well-formed document cannot reach.
#include "LoadTestSupport.h"

#include "load/Loader.h"

#include <cmath>

using namespace vk::svg;
using namespace vksvgtest;

namespace {

const char* const kNs = "<svg xmlns=\"http://www.w3.org/2000/svg\"";

std::string Svg(const std::string& body) { return std::string(kNs) + ">" + body + "</svg>"; }

struct DocumentCase {
    const char* name;
    std::string text;
    bool lenient;
    bool ok;
    std::list<std::string> messages;
};

} // namespace

TEST(Loader, DocumentsEndWithTheirMessages)
{
    // Documents that the sample files in tests/data do not already cover.
    // clang-format off
    const DocumentCase cases[] = {
        {"unknown element, lenient", Svg("<foo><g/></foo><rect/>"), true, true,
         {"Ignore unsupported tag in svg : \"foo\""}},
        {"namespaced element", "<x:svg xmlns:x=\"u\"/>", false, false, {"Found unsupported tag in svg : \"x:svg\""}},
        {"child of a shape", Svg("<rect><circle/></rect>"), true, false,
         {"Object of type \"rect\" may not contain any child element."}},
        {"empty style under a g root", "<g><style/></g>", false, true, {}},
        {"unknown attribute", Svg("<rect foo=\"1\"/>"), false, false,
         {"Unsupported attribute attribute \"foo\" with value \"1\""}},
        {"unknown attribute, lenient", Svg("<rect foo=\"1\" width=\"2\"/>"), true, true,
         {"Ignore unsupported attribute \"foo\" with value \"1\""}},
        {"prefixed unknown attribute", "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:a=\"u\" a:b=\"c\"/>", true, true,
         {"Ignore unsupported attribute \"xmlns:a\" with value \"u\"",
          "Ignore unsupported attribute \"a:b\" with value \"c\""}},
        {"invalid value", Svg("<rect width=\"2px\"/>"), false, false,
         {"Failed to parse value \"2px\" in attribute \"width\"", "Invalid attribute \"width\" with value \"2px\""}},
        {"the pass stops at the first failure", Svg("<rect width=\"x\" height=\"y\"/>"), false, false,
         {"Failed to parse value \"x\" in attribute \"width\"", "Invalid attribute \"width\" with value \"x\""}},
        {"g has no attributes of its own", Svg("<g x=\"1\"/>"), false, false,
         {"Unsupported attribute attribute \"x\" with value \"1\""}},
        {"style attributes are never read", Svg("<style foo=\"bar\">.a{}</style>"), false, true, {}},
        {"xmlns on a shape", "<rect xmlns=\"http://www.w3.org/2000/svg\"/>", false, false,
         {"Unsupported attribute attribute \"xmlns\" with value \"http://www.w3.org/2000/svg\""}},
    };
    // clang-format on
    for (const DocumentCase& c : cases) {
        SCOPED_TRACE(c.name);
        const LoadResult result = LoadText(c.text, c.lenient);
        EXPECT_EQ(result.ok, c.ok);
        EXPECT_EQ(result.messages, c.messages);
        EXPECT_EQ(result.root != nullptr, c.ok);
    }
}

TEST(Loader, BuildsTheTreeInDocumentOrder)
{
    const LoadResult result = LoadText(
        Svg("text is dropped<g id=\"a\"><rect width=\"1\" height=\"2\"/><style>.s{}</style><circle r=\"3\"/></g>"
            "<line x2=\"4\"/><path d=\"M1 2\"/><text>t</text><image href=\"i\"/>"));
    ASSERT_TRUE(result.ok);
    const ItemInterface& root = *result.root;
    ASSERT_EQ(root.getType(), ItemType::Document);
    EXPECT_EQ(As<Document>(root).getStyle(), std::optional<std::string>(".s{}"));
    const std::vector<ItemType> expected = {ItemType::Node, ItemType::Line, ItemType::Path, ItemType::Text,
                                            ItemType::Image};
    std::vector<ItemType> types;
    for (const auto& child : As<Node>(root).getChildren())
        types.push_back(child->getType());
    EXPECT_EQ(types, expected);
    const ItemInterface& group = Child(root, 0);
    EXPECT_EQ(group.getId(), std::optional<std::string>("a"));
    ASSERT_EQ(As<Node>(group).getChildren().size(), 2u) << "the style element makes no item";
    EXPECT_EQ(As<Rect>(Child(group, 0)).getSize(), Wm4::Vector2<float>(1.0f, 2.0f));
    EXPECT_EQ(As<Circle>(Child(group, 1)).getRadius(), 3.0f);
}

TEST(Loader, TheOutermostElementIsTheRootWhateverItIs)
{
    const LoadResult circle = LoadText("<circle r=\"1\"/>");
    ASSERT_TRUE(circle.ok);
    EXPECT_EQ(circle.root->getType(), ItemType::Circle);

    const LoadResult nested = LoadText(Svg("<g><svg viewBox=\"0 0 1 1\"/></g>"));
    ASSERT_TRUE(nested.ok);
    EXPECT_EQ(Child(Child(*nested.root, 0), 0).getType(), ItemType::Document) << "an inner svg is a child document";

    // A lone style element creates no item: the load succeeds without a root.
    const LoadResult style = LoadText("<style/>");
    EXPECT_TRUE(style.ok);
    EXPECT_EQ(style.root, nullptr);
}

TEST(Loader, TextAndStyleDataAreKeptAsDelivered)
{
    const LoadResult result = LoadText(Svg("<style>a</style><g><style><![CDATA[<b>]]></style></g>"
                                           "<text>  x &amp;\n\ty <![CDATA[<z>]]></text>"));
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(*As<Document>(*result.root).getStyle(), "a<b>");
    EXPECT_EQ(As<Text>(Child(*result.root, 1)).getContent(), "  x &\n\ty <z>");
}

TEST(Loader, AnIdentityTransformLeavesRoomForAnother)
{
    // One element cannot carry two transform attributes, so the readers are
    // run twice over the same item as the loader would.
    impl::ReaderContext context;
    Rect rect(Wm4::Vector2<float>(0, 0), Wm4::Vector2<float>(0, 0));
    EXPECT_EQ(impl::ReadPresentationAttribute(rect, {"transform", "", "translate(0)"}, context), impl::Handled);
    EXPECT_FALSE(rect.getTransform());
    EXPECT_EQ(impl::ReadPresentationAttribute(rect, {"transform", "", "scale(2)"}, context), impl::Handled);
    EXPECT_TRUE(rect.getTransform());
}

// The handler driven by hand, for states no parser produces.
class LoaderEvents : public ::testing::Test {
protected:
    ItemInterfacePointer<ItemInterface> root;
    std::list<std::string> messages;
    impl::Loader loader{root, LoadOptions(), [this](const std::string& t) { messages.push_back(t); }, nullptr};
    vk::xml::XmlSaxParserHandler& handler = loader.handler();
};

TEST_F(LoaderEvents, ClosingTagsThatDoNotMatch)
{
    ASSERT_TRUE(handler.startDocument());
    EXPECT_FALSE(handler.endElement("svg"));
    EXPECT_EQ(messages, std::list<std::string>{"End of element \"svg\" unexpected"});

    messages.clear();
    ASSERT_EQ(handler.startElement("svg", {}), 0);
    ASSERT_EQ(handler.startElement("rect", {}), 0);
    EXPECT_FALSE(handler.endElement("svg"));
    EXPECT_EQ(messages, std::list<std::string>{"End of element \"svg\", expected closing of \"rect\""});
}

TEST_F(LoaderEvents, EndOfDocumentBeforeTheRootClosed)
{
    ASSERT_TRUE(handler.startDocument());
    EXPECT_FALSE(handler.endDocument());
    ASSERT_EQ(handler.startElement("svg", {}), 0);
    EXPECT_FALSE(handler.endDocument());
    EXPECT_EQ(messages, (std::list<std::string>{"Some svg tags were not closed properly.",
                                                "Some svg tags were not closed properly."}));
    EXPECT_EQ(root, nullptr);
}

TEST_F(LoaderEvents, AnEmptySlotAtTheEnd)
{
    ASSERT_TRUE(handler.startDocument());
    ASSERT_EQ(handler.startElement("svg", {}), 0);
    ASSERT_TRUE(handler.endElement("svg"));
    loader.state()->slots.emplace(loader.state()->slots.begin());
    EXPECT_FALSE(handler.endDocument());
    EXPECT_EQ(messages, std::list<std::string>{"Some closing tags were missing."});
}

TEST_F(LoaderEvents, AChildOfAShapeFoundAtItsClosingTag)
{
    ASSERT_TRUE(handler.startDocument());
    ASSERT_EQ(handler.startElement("svg", {}), 0);
    ASSERT_EQ(handler.startElement("rect", {}), 0);
    // What the nesting check at the start tag keeps out.
    loader.state()->slots.back().push_back(impl::Frame{impl::FindElement("circle"), nullptr});
    EXPECT_FALSE(handler.endElement("circle"));
    EXPECT_EQ(messages,
              std::list<std::string>{"Internal svg error, object of type \"rect\" may not contain any child element."});
}

TEST_F(LoaderEvents, SeveralTopLevelElementsAreGatheredUnderANode)
{
    ASSERT_TRUE(handler.startDocument());
    for (const char* name : {"circle", "style", "rect"}) {
        ASSERT_EQ(handler.startElement(name, {}), 0);
        ASSERT_TRUE(handler.endElement(name));
    }
    ASSERT_TRUE(handler.endDocument());
    ASSERT_NE(root, nullptr);
    ASSERT_EQ(root->getType(), ItemType::Node);
    ASSERT_EQ(As<Node>(*root).getChildren().size(), 2u) << "the style slot adds nothing";
    EXPECT_EQ(Child(*root, 0).getType(), ItemType::Circle);
    EXPECT_EQ(Child(*root, 1).getType(), ItemType::Rect);
    EXPECT_EQ(loader.state(), nullptr) << "the parse state is released";
}

TEST_F(LoaderEvents, CharacterDataOutsideAnyElementStopsSilently)
{
    ASSERT_TRUE(handler.startDocument());
    EXPECT_TRUE(handler.characters("x", 0));
    EXPECT_FALSE(handler.characters("x", 1));
    EXPECT_TRUE(messages.empty());
}

TEST_F(LoaderEvents, ParserMessagesByTheirSeverity)
{
    EXPECT_TRUE(handler.parserMessage("careful", vk::xml::XmlSaxParserHandler::Warning));
    EXPECT_FALSE(handler.parserMessage("broken", vk::xml::XmlSaxParserHandler::Error));
    EXPECT_FALSE(handler.parserMessage("fatal", vk::xml::XmlSaxParserHandler::Fatal));
    EXPECT_EQ(messages, (std::list<std::string>{"broken", "fatal"})) << "no warning callback: warnings are dropped";
    EXPECT_EQ(handler.startElement(nullptr, {}), 2);
}
