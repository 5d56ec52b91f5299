// A minimal host of libvkSvg: resolves the paint of a shape whose
// properties cascade from a parent group, and measures a box.
#include <svg/vkSvg.h>

#include <cstdio>

int main()
{
    std::printf("libvkSvg %s\n", vkSvg::Version::GetDescStringMajorMinorReleaseRevision(false, true));

    vk::svg::RenderingProperties group;
    group.editFill() = "rebeccapurple";
    group.editOpacity() = 0.5f;

    vk::svg::RenderingProperties shape;
    shape.editStroke() = "#ff8000";
    shape.cascadeParent(group);

    const Wm4::ColorRGBA fill = shape.parseFillColor();
    const Wm4::ColorRGBA stroke = shape.parseStrokeColor();
    std::printf("fill   %.3f %.3f %.3f %.3f\n", fill.R(), fill.G(), fill.B(), fill.A());
    std::printf("stroke %.3f %.3f %.3f %.3f\n", stroke.R(), stroke.G(), stroke.B(), stroke.A());

    vk::svg::BoundingBox box;
    box.expandToContain(Wm4::Vector2<float>(10.0f, 20.0f));
    box.expandToContain(Wm4::Vector2<float>(-5.0f, 40.0f));
    std::printf("box    %g x %g\n", box.getWidth(), box.getHeight());

    vk::svg::UnitValue length(0.0f, vk::svg::Unit::None);
    if (!vk::svg::UnitValue::parseVal("12.5mm", length))
        return 1;
    std::string suffix;
    vk::svg::UnitToString(length.unit, suffix, false);
    std::printf("length %g %s\n", length.value, suffix.c_str());
    return 0;
}
