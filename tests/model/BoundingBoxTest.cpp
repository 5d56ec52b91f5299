#include <svg/BoundingBox.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

using vk::svg::BoundingBox;
using V2 = Wm4::Vector2<float>;
using Corners = std::array<float, 4>;

namespace {

const float kNaN = std::numeric_limits<float>::quiet_NaN();

BoundingBox Box(float x0, float y0, float x1, float y1) { return BoundingBox(V2(x0, y0), V2(x1, y1)); }

// Component by component, never through the tuple's memcmp.
Corners Of(const BoundingBox& b)
{
    return {b.getMinPoint().X(), b.getMinPoint().Y(), b.getMaxPoint().X(), b.getMaxPoint().Y()};
}

} // namespace

TEST(BoundingBox, DefaultIsTheSmallInvalidBox)
{
    const BoundingBox box;
    EXPECT_FALSE(box.isValid());
    EXPECT_EQ(Of(box), (Corners{1, 1, -1, -1}));
    EXPECT_EQ(box.getWidth(), -2.0f);
    EXPECT_EQ(box.getHeight(), -2.0f);
    EXPECT_EQ(box.getSize().Y(), -2.0f);
    EXPECT_EQ(box.getCenterPoint().X(), 0.0f);
    EXPECT_FALSE(Box(0, 0, -1, 1).isValid() || Box(0, 0, 1, -1).isValid() || Box(0, kNaN, 1, 1).isValid());
}

TEST(BoundingBox, ExpandToContain)
{
    BoundingBox box;
    box.expandToContain(V2(5, 7));
    EXPECT_EQ(Of(box), (Corners{5, 7, 5, 7}));
    EXPECT_TRUE(box.isValid());
    box.expandToContain(V2(-1, 9));
    box.expandToContain(V2(0, 8));
    EXPECT_EQ(Of(box), (Corners{-1, 7, 5, 9}));
    EXPECT_EQ(box.getCenterPoint().X(), 2.0f);

    // The other box's validity plays no part once this box is valid...
    box = Box(5, 5, 10, 10);
    box.expandToContain(BoundingBox());
    EXPECT_EQ(Of(box), (Corners{1, 1, 10, 10}));
    // ...and an invalid box simply becomes the other one, invalid or not.
    box = Box(0, 0, -5, -5);
    box.expandToContain(Box(9, 9, 2, 2));
    EXPECT_EQ(Of(box), (Corners{9, 9, 2, 2}));
}

TEST(BoundingBox, NaNOnEitherSideTakesTheOtherValue)
{
    BoundingBox box = Box(0, 0, 4, 4);
    box.expandToContain(Box(kNaN, 1, 5, kNaN));
    EXPECT_TRUE(std::isnan(box.getMinPoint().X()));
    EXPECT_EQ(box.getMinPoint().Y(), 0.0f);
    EXPECT_EQ(box.getMaxPoint().X(), 5.0f);
    EXPECT_TRUE(std::isnan(box.getMaxPoint().Y()));
    box.expandToContain(V2(3, 3)); // now invalid, so it collapses onto the point
    EXPECT_EQ(Of(box), (Corners{3, 3, 3, 3}));
}

TEST(BoundingBox, MarginAndTranslateIgnoreValidity)
{
    BoundingBox box;
    box.addMargin(V2(1, 1));
    EXPECT_EQ(Of(box), (Corners{0, 0, 0, 0}));
    EXPECT_TRUE(box.isValid());
    box = Box(0, 0, 2, 2);
    box.addMargin(V2(-1.5f, 0.5f));
    EXPECT_EQ(Of(box), (Corners{1.5f, -0.5f, 0.5f, 2.5f}));
    box = BoundingBox();
    box.translate(V2(10, -3));
    EXPECT_EQ(Of(box), (Corners{11, -2, 9, -4}));
}

TEST(BoundingBox, EqualityComparesCornersExactly)
{
    EXPECT_EQ(BoundingBox(), Box(1, 1, -1, -1));
    EXPECT_EQ(Box(0.0f, 0, 1, 1), Box(-0.0f, 0, 1, 1));
    EXPECT_NE(Box(0, 0, 1, 1), Box(0, 0, 1, 2));
    EXPECT_NE(Box(kNaN, 0, 1, 1), Box(kNaN, 0, 1, 1));
}
