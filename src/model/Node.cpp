#include <svg/Items.h>

namespace vk::svg {

namespace {

// A deep copy of `item` as its concrete class, or null for items that a copy
// leaves out: documents (never children) and unknown types.
std::shared_ptr<ItemInterface> copyChild(const ItemInterface& item)
{
    switch (item.getType()) {
    case ItemType::Node:
        return std::make_shared<Node>(static_cast<const Node&>(item));
    case ItemType::Line:
        return std::make_shared<Line>(static_cast<const Line&>(item));
    case ItemType::Rect:
        return std::make_shared<Rect>(static_cast<const Rect&>(item));
    case ItemType::Circle:
        return std::make_shared<Circle>(static_cast<const Circle&>(item));
    case ItemType::Path:
        return std::make_shared<Path>(static_cast<const Path&>(item));
    case ItemType::Text:
        return std::make_shared<Text>(static_cast<const Text&>(item));
    case ItemType::Image:
        return std::make_shared<Image>(static_cast<const Image&>(item));
    case ItemType::Document:
    default:
        return nullptr;
    }
}

} // namespace

Node::Node() : ItemInterface(ItemType::Node) {}

Node::Node(ItemType type) : ItemInterface(type) {}

Node::Node(const Node& other) : ItemInterface(other) { copyChildrenFrom(other); }

Node& Node::operator=(const Node& other)
{
    if (this != &other) {
        // Copy first: `other` may be a descendant that the reset would free.
        Node copy(other);
        ItemInterface::operator=(copy);
        mChildren.swap(copy.mChildren);
    }
    return *this;
}

void Node::copyChildrenFrom(const Node& other)
{
    for (const std::shared_ptr<ItemInterface>& child : other.mChildren) {
        if (child == nullptr)
            continue;
        if (std::shared_ptr<ItemInterface> copy = copyChild(*child))
            insertChild(std::move(copy), true);
    }
}

void Node::insertChild(std::shared_ptr<ItemInterface> child, bool atEnd)
{
    if (child == nullptr)
        return;
    if (atEnd)
        mChildren.push_back(std::move(child));
    else
        mChildren.push_front(std::move(child));
}

Document::Document() : Node(ItemType::Document) {}

Document::Document(const Document& other) : Node(other)
{
    if (other.mViewbox)
        mViewbox = other.mViewbox;
    if (other.mStyle)
        mStyle = other.mStyle;
}

Document& Document::operator=(const Document& other)
{
    if (this != &other) {
        // Copy first: `other` may live under this document.
        Document copy(other);
        ItemInterface::operator=(copy);
        editChildren().swap(copy.editChildren());
        mViewbox.swap(copy.mViewbox);
        mStyle.swap(copy.mStyle);
    }
    return *this;
}

} // namespace vk::svg
