#include <svg/Items.h>

namespace vk::svg {

Line::Line(const Wm4::Vector2<float>& start, const Wm4::Vector2<float>& end)
    : ItemInterface(ItemType::Line), mStart(start), mEnd(end)
{
}

Rect::Rect(const Wm4::Vector2<float>& position, const Wm4::Vector2<float>& size)
    : ItemInterface(ItemType::Rect), mPosition(position), mSize(size), mRadius(0.0f, 0.0f)
{
}

Circle::Circle(const Wm4::Vector2<float>& center, float radius)
    : ItemInterface(ItemType::Circle), mCenter(center), mRadius(radius)
{
}

Path::Path() : ItemInterface(ItemType::Path) {}

Text::Text(const Wm4::Vector2<float>& position, const std::string& content)
    : ItemInterface(ItemType::Text), mPosition(position), mContent(content)
{
}

Image::Image() : ItemInterface(ItemType::Image), mPosition(0.0f, 0.0f), mSize(0.0f, 0.0f) {}

} // namespace vk::svg
