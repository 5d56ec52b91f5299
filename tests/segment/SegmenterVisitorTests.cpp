// The segmenter visitor over trees built in code and over sample documents:
// composed transforms, cascaded colours, the error latch and the outline
// given to an unfillable unstroked shape.
#include "SegmentTestSupport.h"

#include <svg/Library.h>
#include <svg/vkSvgIOManager.h>

#include <gtest/gtest.h>

#include <iterator>

using namespace vk::svg;
using segtest::MakePath;
using segtest::V;

namespace {

const SegmentedPrimitive& At(const SegmenterVisitor& visitor, std::size_t i)
{
    return **std::next(visitor.getSegmentedPrimitives().begin(), static_cast<std::ptrdiff_t>(i));
}

// A sample document, segmented; null when it does not load.
std::unique_ptr<SegmenterVisitor> Segmented(const std::string& name)
{
    initializeVkSvg();
    ItemInterfacePointer<ItemInterface> root;
    LoadOptions options;
    std::list<std::string> messages;
    const bool ok = vkSvgIOManager::get().loadSvg(root, std::string(VKSVG_TEST_DATA_DIR) + "/" + name, nullptr,
                                                  &options, &messages);
    terminateVkSvg();
    EXPECT_TRUE(ok) << name;
    const auto document = std::dynamic_pointer_cast<Document>(std::shared_ptr<ItemInterface>(root));
    return document ? std::make_unique<SegmenterVisitor>(*document) : nullptr;
}

} // namespace

TEST(SegmenterVisitor, ComposesParentTimesOwnAndCascades)
{
    Document document;
    auto group = std::make_shared<Node>();
    group->editTransform() = Wm4::Matrix3<float>(1, 0, 10, 0, 1, 0, 0, 0, 1); // translate(10, 0)
    group->editRenderingProperties().editFill() = "#ff0000";
    group->editRenderingProperties().editStroke() = "blue";
    auto rect = std::make_shared<Rect>(V(1, 1), V(1, 1));
    rect->editTransform() = Wm4::Matrix3<float>(2, 0, 0, 0, 2, 0, 0, 0, 1); // scale(2) acts first
    auto hollow = std::make_shared<Circle>(V(0, 0), 1);
    hollow->editRenderingProperties().editFill() = "none";
    group->addChild(rect, true);
    group->addChild(hollow, true);
    document.addChild(group, true);
    document.addChild(std::make_shared<Text>(V(0, 0), "t"), true);
    document.addChild(std::make_shared<Line>(V(0, 0), V(1, 1)), true);

    const SegmenterVisitor visitor(document);
    EXPECT_FALSE(visitor.hasError());
    ASSERT_EQ(visitor.getSegmentedPrimitives().size(), 3u);
    EXPECT_EQ(visitor.getPrimitiveCount(), 3u);
    const SegmentedPrimitive& square = At(visitor, 0);
    EXPECT_EQ(square.getPoints(), (std::vector<V>{V(12, 2), V(14, 2), V(14, 4), V(12, 4)}));
    EXPECT_DOUBLE_EQ(segtest::MeshArea(square), 4.0);
    EXPECT_EQ(square.getProperties().getFill(), "#ff0000");
    EXPECT_EQ(square.getProperties().getStroke(), "blue");

    const SegmentedPrimitive& circle = At(visitor, 1);
    EXPECT_EQ(circle.getPoints().size(), 32u);
    EXPECT_NEAR(circle.getPoints()[0].X(), 11, 1e-6);
    EXPECT_TRUE(circle.getTriangleIndices().empty());
    EXPECT_EQ(circle.getProperties().getStroke(), "blue");
    EXPECT_FALSE(At(visitor, 2).getProperties().getFill().has_value()); // siblings do not leak

    Document words;
    words.addChild(std::make_shared<Text>(V(0, 0), "t"), true);
    words.addChild(std::make_shared<Image>(), true);
    EXPECT_TRUE(SegmenterVisitor(words).getSegmentedPrimitives().empty());
}

TEST(SegmenterVisitor, StrokedFailureStopsUnstrokedFailureShowsItsOutline)
{
    segtest::CapturedLog log;
    Document document;
    auto quiet = MakePath(segtest::kUnfillable);
    quiet->editRenderingProperties().editFill() = "green";
    quiet->editRenderingProperties().editFillOpacity() = 0.5f;
    document.addChild(quiet, true);
    auto stroked = MakePath(segtest::kUnfillable);
    stroked->editRenderingProperties().editStroke() = "black";
    document.addChild(stroked, true);
    document.addChild(std::make_shared<Rect>(V(0, 0), V(1, 1)), true);

    const SegmenterVisitor visitor(document);
    EXPECT_TRUE(visitor.hasError());
    ASSERT_EQ(visitor.getSegmentedPrimitives().size(), 2u); // the rectangle is never reached
    const RenderingProperties& outlined = At(visitor, 0).getProperties();
    EXPECT_TRUE(outlined.hasStroke());
    EXPECT_EQ(outlined.getStroke(), "green");
    EXPECT_EQ(outlined.getStrokeOpacity(), 0.5f);
    EXPECT_FALSE(At(visitor, 1).getPoints().empty());
    EXPECT_TRUE(At(visitor, 1).getTriangleIndices().empty());
    EXPECT_EQ(log.texts, std::vector<std::string>(2, segtest::kContourOnly));

    Document alone;
    alone.addChild(quiet, true);
    alone.addChild(std::make_shared<Rect>(V(0, 0), V(1, 1)), true);
    const SegmenterVisitor recovered(alone);
    EXPECT_FALSE(recovered.hasError());
    EXPECT_EQ(recovered.getSegmentedPrimitives().size(), 2u);
}

TEST(SegmenterVisitor, PathsShareOneWorkspaceWithoutInfluence)
{
    Document document;
    document.addChild(MakePath("M0 0 C0 50 50 50 50 0 C60 -20 70 30 80 0 Z"), true);
    auto second = MakePath("M0 0 C0 10 10 10 10 0 A5 5 0 0 0 0 0");
    document.addChild(second, true);
    const SegmenterVisitor visitor(document);
    const RenderingProperties defaults;
    auto alone = SegmentPath(*second, 32, -0.999f, nullptr, &defaults, nullptr, nullptr);
    EXPECT_EQ(At(visitor, 1).getPoints(), alone->getPoints());
    EXPECT_EQ(At(visitor, 1).getTriangleVertices(), alone->getTriangleVertices());
}

TEST(SegmenterVisitor, SampleDocuments)
{
    // Three rectangles, two circles, two lines and a path; text and image
    // add nothing. Unset fills are black, so every closed shape is filled.
    const auto shapes = Segmented("shapes.svg");
    ASSERT_TRUE(shapes);
    EXPECT_FALSE(shapes->hasError());
    ASSERT_EQ(shapes->getSegmentedPrimitives().size(), 8u);
    EXPECT_DOUBLE_EQ(segtest::MeshArea(At(*shapes, 0)), 4000.0); // corner radii are not drawn
    EXPECT_DOUBLE_EQ(segtest::MeshArea(At(*shapes, 1)), 0.0);
    EXPECT_DOUBLE_EQ(segtest::MeshArea(At(*shapes, 2)), 125.0);
    EXPECT_NEAR(segtest::MeshArea(At(*shapes, 3)), 16 * 900 * std::sin(3.14159265 / 16), 0.05);
    EXPECT_EQ(At(*shapes, 5).getPoints(), (std::vector<V>{V(0, 0), V(240, 160)}));

    // A rotation about the origin followed by a shift by (10, 20), inside a
    // group shifted by (10, 20): (5, 0) lands on (20, 45).
    const auto moved = Segmented("transforms.svg");
    ASSERT_TRUE(moved);
    ASSERT_EQ(moved->getSegmentedPrimitives().size(), 13u);
    EXPECT_EQ(At(*moved, 0).getPoints()[0], V(17, 20));
    EXPECT_TRUE(segtest::Near(At(*moved, 4).getPoints()[1], 20, 45, 1e-5));

    // Paint cascades from the root: fill none, stroke black, width 1.5.
    const auto painted = Segmented("presentation.svg");
    ASSERT_TRUE(painted);
    EXPECT_FALSE(painted->hasError());
    const RenderingProperties& hex6 = At(*painted, 0).getProperties();
    EXPECT_EQ(hex6.getFill(), "#ff8000");
    EXPECT_EQ(hex6.getStroke(), "black");
    EXPECT_EQ(hex6.getStrokeWidth(), 1.5f);
    EXPECT_EQ(hex6.getOpacity(), 0.75f);
    EXPECT_FALSE(At(*painted, 0).getTriangleIndices().empty());
    EXPECT_TRUE(At(*painted, 7).getTriangleIndices().empty()); // a line

    const auto paths = Segmented("paths.svg");
    ASSERT_TRUE(paths);
    EXPECT_EQ(paths->getSegmentedPrimitives().size(), 7u);
}
