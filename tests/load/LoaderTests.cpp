// The loader: which documents it accepts, with which messages, and the trees
// it builds; the handler is also driven event by event for the states that
// a well-formed document cannot reach.
#include "LoadTestSupport.h"

#include "load/Loader.h"

#include <initializer_list>

using namespace vk::svg;
using namespace vksvgtest;

namespace {

std::string Svg(const std::string& body) { return "<svg xmlns=\"http://www.w3.org/2000/svg\">" + body + "</svg>"; }

} // namespace

TEST(Loader, DocumentsEndWithTheirMessages)
{
    // Documents that the sample files in tests/data do not already cover.
    struct Case {
        const char* name;
        std::string text;
        bool ok;
        std::list<std::string> messages;
    };
    // clang-format off
    const Case cases[] = {
        {"empty style under a g root", "<g><style/></g>", true, {}},
        {"the pass stops at the first failure", Svg("<rect width=\"x\" height=\"y\"/>"), false,
         {"Failed to parse value \"x\" in attribute \"width\"", "Invalid attribute \"width\" with value \"x\""}},
        {"g has no attributes of its own", Svg("<g x=\"1\"/>"), false,
         {"Unsupported attribute attribute \"x\" with value \"1\""}},
        {"style attributes are never read", Svg("<style foo=\"bar\">.a{}</style>"), true, {}},
        {"xmlns on a shape", "<rect xmlns=\"http://www.w3.org/2000/svg\"/>", false,
         {"Unsupported attribute attribute \"xmlns\" with value \"http://www.w3.org/2000/svg\""}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const LoadResult result = LoadText(c.text);
        EXPECT_EQ(result.ok, c.ok);
        EXPECT_EQ(result.messages, c.messages);
        EXPECT_EQ(result.root != nullptr, c.ok);
    }
}

TEST(Loader, BuildsTheTreeInDocumentOrder)
{
    // Text and style data are kept as delivered; an inner svg is a child document.
    const LoadResult result =
        LoadText(Svg("text is dropped<style>a</style><g id=\"a\"><rect width=\"1\" height=\"2\"/>"
                     "<style><![CDATA[<b>]]></style><circle r=\"3\"/></g><line x2=\"4\"/><path d=\"M1 2\"/>"
                     "<text>  x &amp;\n\ty <![CDATA[<z>]]></text><image href=\"i\"/><svg viewBox=\"0 0 1 1\"/>"));
    ASSERT_TRUE(result.ok);
    const ItemInterface& root = *result.root;
    ASSERT_EQ(root.getType(), ItemType::Document);
    EXPECT_EQ(As<Document>(root).getStyle(), std::optional<std::string>("a<b>"));
    const std::vector<ItemType> expected = {ItemType::Node, ItemType::Line,  ItemType::Path,
                                            ItemType::Text, ItemType::Image, ItemType::Document};
    std::vector<ItemType> types;
    for (const auto& child : As<Node>(root).getChildren())
        types.push_back(child->getType());
    EXPECT_EQ(types, expected);
    const ItemInterface& group = Child(root, 0);
    EXPECT_EQ(group.getId(), std::optional<std::string>("a"));
    ASSERT_EQ(As<Node>(group).getChildren().size(), 2u) << "the style element makes no item";
    EXPECT_EQ(As<Rect>(Child(group, 0)).getSize(), Wm4::Vector2<float>(1.0f, 2.0f));
    EXPECT_EQ(As<Circle>(Child(group, 1)).getRadius(), 3.0f);
    EXPECT_EQ(As<Text>(Child(root, 3)).getContent(), "  x &\n\ty <z>");
}

TEST(Loader, TheOutermostElementIsTheRootWhateverItIs)
{
    const LoadResult circle = LoadText("<circle r=\"1\"/>");
    ASSERT_TRUE(circle.ok);
    EXPECT_EQ(circle.root->getType(), ItemType::Circle);

    // A lone style element creates no item: the load succeeds without a root.
    const LoadResult style = LoadText("<style/>");
    EXPECT_TRUE(style.ok);
    EXPECT_EQ(style.root, nullptr);
}

// The handler driven by hand, for states no parser produces.
class LoaderEvents : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(handler.startDocument()); }
    // Opens each element inside the one before.
    void Open(std::initializer_list<const char*> names)
    {
        for (const char* name : names)
            ASSERT_EQ(handler.startElement(name, {}), 0) << name;
    }

    ItemInterfacePointer<ItemInterface> root;
    std::list<std::string> messages;
    impl::Loader loader{root, LoadOptions(), [this](const std::string& t) { messages.push_back(t); }, nullptr};
    vk::xml::XmlSaxParserHandler& handler = loader.handler();
};

TEST_F(LoaderEvents, ClosingTagsThatDoNotMatch)
{
    EXPECT_FALSE(handler.endElement("svg"));
    Open({"svg", "rect"});
    EXPECT_FALSE(handler.endElement("svg"));
    EXPECT_EQ(messages, (std::list<std::string>{"End of element \"svg\" unexpected",
                                                "End of element \"svg\", expected closing of \"rect\""}));
}

TEST_F(LoaderEvents, EndOfDocumentBeforeTheRootClosed)
{
    EXPECT_FALSE(handler.endDocument());
    Open({"svg"});
    EXPECT_FALSE(handler.endDocument());
    EXPECT_EQ(messages, (std::list<std::string>{"Some svg tags were not closed properly.",
                                                "Some svg tags were not closed properly."}));
    EXPECT_EQ(root, nullptr);
}

TEST_F(LoaderEvents, AnEmptySlotAtTheEnd)
{
    Open({"svg"});
    ASSERT_TRUE(handler.endElement("svg"));
    loader.state()->slots.emplace(loader.state()->slots.begin());
    EXPECT_FALSE(handler.endDocument());
    EXPECT_EQ(messages, std::list<std::string>{"Some closing tags were missing."});
}

TEST_F(LoaderEvents, AChildOfAShapeFoundAtItsClosingTag)
{
    Open({"svg", "rect"});
    // What the nesting check at the start tag keeps out.
    loader.state()->slots.back().push_back(impl::Frame{impl::FindElement("circle"), nullptr});
    EXPECT_FALSE(handler.endElement("circle"));
    EXPECT_EQ(messages,
              std::list<std::string>{"Internal svg error, object of type \"rect\" may not contain any child element."});
}

TEST_F(LoaderEvents, SeveralTopLevelElementsAreGatheredUnderANode)
{
    for (const char* name : {"circle", "style", "rect"}) {
        Open({name});
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

TEST_F(LoaderEvents, EventsOutsideAnyElement)
{
    EXPECT_TRUE(handler.characters("x", 0));
    EXPECT_FALSE(handler.characters("x", 1)) << "character data stops the parse, silently";
    EXPECT_TRUE(messages.empty());
    EXPECT_TRUE(handler.parserMessage("careful", vk::xml::XmlSaxParserHandler::Warning));
    EXPECT_FALSE(handler.parserMessage("broken", vk::xml::XmlSaxParserHandler::Error));
    EXPECT_FALSE(handler.parserMessage("fatal", vk::xml::XmlSaxParserHandler::Fatal));
    EXPECT_EQ(messages, (std::list<std::string>{"broken", "fatal"})) << "no warning callback: warnings are dropped";
    EXPECT_EQ(handler.startElement(nullptr, {}), 2);
}
