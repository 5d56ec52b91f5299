#include <svg/Items.h>

#include <gtest/gtest.h>

#include <type_traits>

using namespace vk::svg;
using V = Wm4::Vector2<float>;

namespace {

// Detects whether Node::addChild accepts a pointer to T.
template <class T, class = void> struct CanAddChild : std::false_type {
};
template <class T>
struct CanAddChild<
    T, std::void_t<decltype(std::declval<Node&>().addChild(std::declval<const ItemInterfacePointer<T>&>(), true))>>
    : std::true_type {
};

class Subdocument : public Document {};

} // namespace

static_assert(CanAddChild<Rect>::value && CanAddChild<Node>::value && CanAddChild<ItemInterface>::value);
static_assert(!CanAddChild<Document>::value && !CanAddChild<Subdocument>::value,
              "a document can never be added as a child");
static_assert(std::is_convertible_v<ItemInterfacePointer<Rect>, std::shared_ptr<ItemInterface>>);
static_assert(std::is_convertible_v<ItemInterfacePointer<Rect>, ItemInterfacePointer<ItemInterface>>);

TEST(Items, FreshItemsHaveTheirTypesAndDefaults)
{
    const Document document;
    EXPECT_EQ(document.getType(), ItemType::Document);
    EXPECT_TRUE(document.getChildren().empty());
    EXPECT_FALSE(document.getViewbox() || document.getStyle());
    EXPECT_EQ(Node().getType(), ItemType::Node);
    EXPECT_EQ(Node(ItemType::Image).getType(), ItemType::Image);

    const Rect rect(V(1, 2), V(3, 4));
    EXPECT_EQ(rect.getType(), ItemType::Rect);
    EXPECT_TRUE(rect.getRadius().X() == 0.0f && rect.getRadius().Y() == 0.0f);

    const Image image;
    EXPECT_TRUE(image.getPosition().X() == 0.0f && image.getSize().Y() == 0.0f && image.getHref().empty());
    EXPECT_FALSE(image.getPreserveAspectRatio());

    const Text text(V(0, 0), "t");
    EXPECT_FALSE(text.getXmlSpacePreserve() || text.getFontFamily() || text.getTextLength() || text.getBold() ||
                 text.getItalic() || text.getUnderline() || text.getFontSize());
    EXPECT_FALSE(text.getTransform() || text.getId());
    EXPECT_EQ(text.getRenderingProperties(), RenderingProperties());
    EXPECT_EQ(static_cast<uint32_t>(Path().getType()), 5u);
}

TEST(Items, AddChildIgnoresNullAndInsertsAtEitherEnd)
{
    Node node;
    node.addChild(ItemInterfacePointer<Rect>(), true);
    EXPECT_TRUE(node.getChildren().empty());
    auto first = std::make_shared<Circle>(V(0, 0), 1.0f);
    auto second = std::make_shared<Line>(V(0, 0), V(1, 1));
    node.addChild(ItemInterfacePointer<Circle>(first), true);
    node.addChild(second, false);
    ASSERT_EQ(node.getChildren().size(), 2u);
    EXPECT_EQ(node.getChildren().front(), second);
    EXPECT_EQ(node.getChildren().back(), first);
    EXPECT_EQ(first.use_count(), 2) << "ownership is shared, not copied";
}

TEST(Items, CopiesAreDeepAndSkipNullsDocumentsAndUnknownTypes)
{
    Document source;
    source.editViewbox() = BoundingBox(V(0, 0), V(10, 10));
    source.editStyle() = "g{}";
    source.editId() = "root";
    auto group = std::make_shared<Node>();
    auto path = std::make_shared<Path>();
    path->editCommands().emplace_back(PathCommandType::MoveTo, std::vector<float>{1, 2});
    group->addChild(path, true);
    auto text = std::make_shared<Text>(V(1, 1), "x");
    text->editBold() = true;
    source.addChild(group, true);
    source.editChildren().push_back(nullptr);
    source.editChildren().push_back(std::make_shared<Document>());
    source.editChildren().push_back(std::make_shared<Node>(static_cast<ItemType>(8)));
    source.addChild(text, true);

    const Document copy(source);
    EXPECT_EQ(copy.getId(), source.getId());
    EXPECT_EQ(copy.getStyle(), source.getStyle());
    EXPECT_EQ(copy.getViewbox(), source.getViewbox());
    ASSERT_EQ(copy.getChildren().size(), 2u);
    const auto& copiedGroup = static_cast<const Node&>(*copy.getChildren().front());
    EXPECT_NE(&copiedGroup, group.get());
    ASSERT_EQ(copiedGroup.getChildren().size(), 1u);
    const auto& copiedPath = static_cast<const Path&>(*copiedGroup.getChildren().front());
    EXPECT_NE(&copiedPath, path.get());
    EXPECT_EQ(copiedPath.getCommands().front().values, std::vector<float>({1, 2}));
    const auto& copiedText = static_cast<const Text&>(*copy.getChildren().back());
    EXPECT_EQ(copiedText.getType(), ItemType::Text);
    EXPECT_EQ(copiedText.getBold(), std::optional<bool>(true));

    // Editing the copy leaves the source alone.
    path->editCommands().clear();
    EXPECT_EQ(copiedPath.getCommands().size(), 1u);
}

TEST(Items, AssignmentCopiesDeeplyEvenFromADescendant)
{
    auto inner = std::make_shared<Node>();
    inner->addChild(std::make_shared<Rect>(V(0, 0), V(1, 1)), true);
    Node outer;
    outer.addChild(inner, true);
    const std::weak_ptr<Node> watch = inner;
    outer = *inner; // `inner` is freed by the assignment unless copied first
    inner.reset();
    EXPECT_TRUE(watch.expired());
    ASSERT_EQ(outer.getChildren().size(), 1u);
    EXPECT_EQ(outer.getChildren().front()->getType(), ItemType::Rect);

    Rect rect(V(0, 0), V(1, 1));
    rect.editId() = "a";
    Rect other(V(5, 5), V(2, 2));
    other = rect;
    EXPECT_EQ(other.getId(), std::optional<std::string>("a"));
    EXPECT_EQ(other.getPosition().X(), 0.0f);
}
