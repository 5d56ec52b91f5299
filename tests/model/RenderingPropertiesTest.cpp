#include <svg/RenderingProperties.h>

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>

using vk::svg::LineCap;
using vk::svg::LineJoin;
using vk::svg::RenderingProperties;
using vk::svg::Unit;
using vk::svg::UnitValue;
using vk::svg::VectorEffect;
using Rgba = std::array<float, 4>;

namespace {

Rgba Of(const Wm4::ColorRGBA& c) { return {c.R(), c.G(), c.B(), c.A()}; }

} // namespace

TEST(RenderingProperties, DefaultFillsBlackAndDoesNotStroke)
{
    const RenderingProperties p;
    EXPECT_FALSE(p.getFill() || p.getOpacity() || p.getVectorEffect() || p.getStrokeDasharray());
    EXPECT_TRUE(p.hasFill() && !p.hasStroke());
    EXPECT_EQ(Of(p.parseFillColor()), (Rgba{0, 0, 0, 1}));
}

// One table drives fill and stroke: they follow the same rules, except that an
// unset stroke means no stroke at all.
TEST(RenderingProperties, PaintTable)
{
    const struct {
        std::optional<std::string> paint;
        std::optional<float> paintOpacity, opacity;
        bool painted;
        Rgba colour;
    } cases[] = {
        {std::nullopt, std::nullopt, 0.5f, true, {0, 0, 0, 0.5f}},
        {std::nullopt, 3.0f, std::nullopt, true, {0, 0, 0, 1}},
        {"none", std::nullopt, std::nullopt, false, {0, 0, 0, 0}},
        // Only the exact keyword is special; "None" is an unparsable paint.
        {"None", std::nullopt, std::nullopt, true, {0, 0, 0, 0}},
        {"#ff0000", 0.5f, 0.5f, true, {1, 0, 0, 0.25f}},
        {"#ff0000", 2.0f, std::nullopt, true, {1, 0, 0, 1}},
        {"#ff0000", -1.0f, std::nullopt, false, {1, 0, 0, 0}},
        // Neither factor is clamped before the product.
        {"#ff0000", -1.0f, -1.0f, true, {1, 0, 0, 1}},
        {"#00ff0080", std::nullopt, std::nullopt, true, {0, 1, 0, 128.0f / 255.0f}},
        {"rgb(0,0,255)", 0.0f, std::nullopt, false, {0, 0, 1, 0}},
        {"rebeccapurple", std::nullopt, std::nullopt, true, {102.0f / 255.0f, 0.2f, 0.6f, 1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.paint.value_or("<unset>"));
        RenderingProperties fill, stroke;
        fill.editFill() = c.paint;
        fill.editFillOpacity() = c.paintOpacity;
        fill.editOpacity() = c.opacity;
        stroke.editStroke() = c.paint;
        stroke.editStrokeOpacity() = c.paintOpacity;
        stroke.editOpacity() = c.opacity;
        EXPECT_EQ(fill.hasFill(), c.painted);
        EXPECT_EQ(stroke.hasStroke(), c.painted && c.paint.has_value());
        EXPECT_EQ(Of(fill.parseFillColor()), c.colour);
        EXPECT_EQ(Of(stroke.parseStrokeColor()), c.colour);
        // Fill opacity never reaches the stroke, and the other way round.
        EXPECT_EQ(Of(fill.parseStrokeColor()),
                  Of(RenderingProperties::ParseColor(std::nullopt, c.opacity.value_or(1))));
    }
    EXPECT_EQ(Of(RenderingProperties::ParseColor(std::nullopt, -3.0f)), (Rgba{0, 0, 0, 0}));
}

TEST(RenderingProperties, CascadeCopiesUnsetFieldsExceptVectorEffect)
{
    RenderingProperties parent;
    parent.editOpacity() = 0.5f;
    parent.editStrokeWidth() = 3.0f;
    parent.editStrokeOpacity() = 0.75f;
    parent.editStroke() = "blue";
    parent.editStrokeLinecap() = LineCap::Round;
    parent.editStrokeLinejoin() = LineJoin::MiterClip;
    parent.editStrokeDasharray() = std::vector<UnitValue>{UnitValue(2, Unit::Px), UnitValue(10, Unit::Percent)};
    parent.editClassName() = "parent";
    parent.editFill() = "red";
    parent.editFillOpacity() = 0.25f;
    parent.editVectorEffect() = static_cast<uint32_t>(VectorEffect::NonScalingStroke);

    RenderingProperties child;
    child.cascadeParent(parent);
    RenderingProperties expected = parent;
    expected.editVectorEffect().reset();
    EXPECT_EQ(child, expected);

    // Set fields keep their own values: nothing multiplies down the tree.
    RenderingProperties own;
    own.editOpacity() = 0.5f;
    own.editFill() = "none";
    own.editClassName() = "child";
    own.editStrokeDasharray() = std::vector<UnitValue>{};
    own.editVectorEffect() = 0u;
    own.cascadeParent(parent);
    EXPECT_EQ(own.getOpacity(), 0.5f);
    EXPECT_EQ(own.getFill(), "none");
    EXPECT_EQ(own.getClassName(), "child");
    EXPECT_TRUE(own.getStrokeDasharray()->empty());
    EXPECT_EQ(own.getVectorEffect(), 0u);
    EXPECT_EQ(own.getStroke(), "blue");
}
