// A minimal host of libvkSvg: builds a drawing in code, saves it, loads it
// back, resolves a cascaded paint and triangulates a polygon with a hole.
#include <svg/vkSvg.h>

#include <cmath>
#include <cstdio>
#include <list>
#include <string>

using V = Wm4::Vector2<float>;

int main()
{
    vk::svg::initializeVkSvg();
    std::printf("libvkSvg %s\n", vkSvg::Version::GetDescStringMajorMinorReleaseRevision(false, true));

    // A document with a group and a path assembled by the path builder.
    vk::svg::Document document;
    document.editViewbox() = vk::svg::BoundingBox(V(0, 0), V(100, 100));
    auto group = std::make_shared<vk::svg::Node>();
    group->editRenderingProperties().editFill() = "rebeccapurple";
    group->editRenderingProperties().editOpacity() = 0.5f;
    vk::svg::PathBuilder builder;
    builder.startContour();
    builder.appendRect(V(10, 10), V(80, 80));
    builder.endContour(false);
    builder.appendEllipse(V(50, 50), V(20, 10), 0.0f, 6.2831855f);
    group->addChild(builder.createPathItem(true), true);
    document.addChild(group, true);

    // Save to memory and load it back through the I/O manager.
    vk::svg::SaveOptions saveOptions;
    saveOptions.writeHeaderComments = false;
    vk::vkIoDeviceMemory output;
    std::list<std::string> messages;
    if (!vk::svg::vkSvgIOManager::get().saveSvg(document, output, "svg", nullptr, &saveOptions, &messages)) {
        for (const std::string& message : messages)
            std::fprintf(stderr, "%s\n", message.c_str());
        return 1;
    }
    std::printf("saved  %s\n", output.getData().c_str());

    vk::vkIoDeviceMemory input(output.getData());
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> root;
    if (!vk::svg::vkSvgIOManager::get().loadSvg(root, input, "svg", nullptr, nullptr, &messages)) {
        for (const std::string& message : messages)
            std::fprintf(stderr, "%s\n", message.c_str());
        return 1;
    }
    const auto& loaded = static_cast<const vk::svg::Document&>(*root);
    const auto& loadedGroup = static_cast<const vk::svg::Node&>(*loaded.getChildren().front());
    std::printf("loaded %zu group(s), %zu item(s) in the first\n", loaded.getChildren().size(),
                loadedGroup.getChildren().size());

    // The path has no paint of its own: it takes the group's.
    vk::svg::RenderingProperties shape = loadedGroup.getChildren().front()->getRenderingProperties();
    shape.cascadeParent(loadedGroup.getRenderingProperties());
    const Wm4::ColorRGBA fill = shape.parseFillColor();
    std::printf("fill   %.3f %.3f %.3f %.3f\n", fill.R(), fill.G(), fill.B(), fill.A());

    // A square with a square hole, filled under the even-odd rule.
    const std::vector<V> points = {V(0, 0), V(4, 0), V(4, 4), V(0, 4), V(1, 1), V(3, 1), V(3, 3), V(1, 3)};
    const std::vector<unsigned int> edges = {0, 1, 1, 2, 2, 3, 3, 0, 4, 5, 5, 6, 6, 7, 7, 4};
    std::vector<V> trianglePoints;
    std::vector<unsigned int> triangles;
    if (!vk::TriangulatePoly(points, edges, trianglePoints, triangles, vk::TriangulationFillRule::EvenOdd, true))
        return 1;
    float area = 0.0f;
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
        const V& a = trianglePoints[triangles[i]];
        const V& b = trianglePoints[triangles[i + 1]];
        const V& c = trianglePoints[triangles[i + 2]];
        area += 0.5f * std::abs((b.X() - a.X()) * (c.Y() - a.Y()) - (c.X() - a.X()) * (b.Y() - a.Y()));
    }
    std::printf("ring   %zu triangles, area %g\n", triangles.size() / 3, area);

    vk::svg::terminateVkSvg();
    return 0;
}
