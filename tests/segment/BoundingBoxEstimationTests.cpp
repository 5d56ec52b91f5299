#include <svg/BoundingBoxEstimation.h>
#include <svg/Items.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace vk::svg;
using V = Wm4::Vector2<float>;

namespace {

Wm4::Matrix3<float> scale(float s) { return Wm4::Matrix3<float>(s, 0, 0, 0, s, 0, 0, 0, 1); }
Wm4::Matrix3<float> translation(float x, float y) { return Wm4::Matrix3<float>(1, 0, x, 0, 1, y, 0, 0, 1); }

void expectBox(const BoundingBox& box, float x0, float y0, float x1, float y1)
{
    EXPECT_FLOAT_EQ(box.getMinPoint().X(), x0);
    EXPECT_FLOAT_EQ(box.getMinPoint().Y(), y0);
    EXPECT_FLOAT_EQ(box.getMaxPoint().X(), x1);
    EXPECT_FLOAT_EQ(box.getMaxPoint().Y(), y1);
}

} // namespace

TEST(BoundingBoxEstimation, ItemsUnderTheirAccumulatedTransforms)
{
    Document document;
    auto group = std::make_shared<Node>();
    group->editTransform() = scale(2);
    auto circle = std::make_shared<Circle>(V(10, 10), 5.0f);
    group->addChild(circle, true);
    document.addChild(group, true);

    BoundingBox box;
    ComputeEstimatedBoundingBox(document, box, nullptr, nullptr);
    expectBox(box, 15, 15, 25, 25); // the radius is not scaled

    auto line = std::make_shared<Line>(V(-1, 0), V(0, 3));
    line->editTransform() = translation(1, 1);
    line->editRenderingProperties().editStrokeWidth() = 10.0f; // strokes never widen the box
    group->addChild(line, true);
    const Wm4::Matrix3<float> shift = translation(100, 0);
    ComputeEstimatedBoundingBox(document, box, nullptr, &shift);
    expectBox(box, 100, 2, 125, 25);

    // Skipping the group removes everything under it.
    ComputeEstimatedBoundingBox(
        document, box, [](const ItemInterface& item) { return item.getType() == ItemType::Node; }, nullptr);
    EXPECT_FALSE(box.isValid());
}

TEST(BoundingBoxEstimation, RotatedRectangleAndPathPrimitives)
{
    Rect rect(V(0, 0), V(2, 2));
    const float c = std::cos(0.785398163f);
    const float s = std::sin(0.785398163f);
    BoundingBox box;
    EXPECT_TRUE(rect.computeEstimatedBoundingVolume(box, Wm4::Matrix3<float>(c, -s, 0, s, c, 0, 0, 0, 1)));
    expectBox(box, -2 * s, 0, 2 * c, 2 * (s + c));

    Path path;
    path.editCommands().emplace_back(PathCommandType::MoveTo, std::vector<float>{1, 1});
    path.editCommands().emplace_back(PathCommandType::LineTo, std::vector<float>{4, -2});
    path.editCommands().emplace_back(PathCommandType::BezierCubic, std::vector<float>{50, 50, 60, 60, 4, -2});
    BoundingBox pathBox;
    EXPECT_TRUE(path.computeEstimatedBoundingVolume(pathBox, Wm4::Matrix3<float>::IDENTITY));
    expectBox(pathBox, 1, -2, 4, 1); // cubic curves add nothing

    BoundingBox emptyBox;
    EXPECT_TRUE(Path().computeEstimatedBoundingVolume(emptyBox, Wm4::Matrix3<float>::IDENTITY));
    EXPECT_FALSE(emptyBox.isValid());
    EXPECT_FALSE(Text(V(0, 0), "t").computeEstimatedBoundingVolume(emptyBox, Wm4::Matrix3<float>::IDENTITY));
}

TEST(BoundingBoxEstimation, ViewboxFromContentIsEngagedEvenWhenEmpty)
{
    Document empty;
    empty.addChild(std::make_shared<Node>(), true);
    empty.computeEstimatedViewboxFromContent();
    ASSERT_TRUE(empty.getViewbox());
    EXPECT_FALSE(empty.getViewbox()->isValid());

    Document drawing;
    drawing.editViewbox() = BoundingBox(V(0, 0), V(1000, 1000));
    drawing.addChild(std::make_shared<Rect>(V(10, 20), V(30, 40)), true);
    drawing.computeEstimatedViewboxFromContent();
    expectBox(*drawing.getViewbox(), 10, 20, 40, 60);
}
