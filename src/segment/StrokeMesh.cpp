#include "segment/StrokeMesh.h"

#include "segment/AffineMap.h"

#include <svg/Tessellation.h>

#include <cmath>

namespace vk::svg::impl {

namespace {

using V2 = Wm4::Vector2<float>;

// The round joins and caps of a segmentation without a tolerance get the
// tool's default flatness.
constexpr float kDefaultTolerance = 0.25f;

// The tessellators take plain records and know nothing of items; these map
// the item model's keywords onto theirs.
StrokeJoin JoinOf(LineJoin join)
{
    switch (join) {
    case LineJoin::Arcs:
        return StrokeJoin::Arcs;
    case LineJoin::Bevel:
        return StrokeJoin::Bevel;
    case LineJoin::MiterClip:
        return StrokeJoin::MiterClip;
    case LineJoin::Round:
        return StrokeJoin::Round;
    case LineJoin::Miter:
        break;
    }
    return StrokeJoin::Miter;
}

StrokeCap CapOf(LineCap cap)
{
    switch (cap) {
    case LineCap::Round:
        return StrokeCap::Round;
    case LineCap::Square:
        return StrokeCap::Square;
    case LineCap::Butt:
        break;
    }
    return StrokeCap::Butt;
}

StrokeStyle StyleOf(const RenderingProperties& properties, const SegmentationOptions& options)
{
    const float tolerance = options.tolerance;
    StrokeStyle style;
    style.width = properties.getStrokeWidth().value_or(1.0f);
    style.join = JoinOf(properties.getStrokeLinejoin().value_or(LineJoin::Miter));
    style.cap = CapOf(properties.getStrokeLinecap().value_or(LineCap::Butt));
    style.miterLimit = properties.getStrokeMiterlimit().value_or(4.0f);
    if (const auto& dashes = properties.getStrokeDasharray()) {
        style.dashArray.reserve(dashes->size());
        for (const UnitValue& dash : *dashes)
            style.dashArray.push_back(dash.value);
    }
    style.dashOffset = properties.getStrokeDashoffset().value_or(0.0f);
    style.tolerance = tolerance > 0.0f ? tolerance : kDefaultTolerance;
    style.mode = options.strokeMode;
    return style;
}

bool NonScaling(const RenderingProperties& properties)
{
    const auto& effect = properties.getVectorEffect();
    return effect && (*effect & static_cast<uint32_t>(VectorEffect::NonScalingStroke)) != 0;
}

// The inverse of the affine part, or false when it has none worth using.
bool Invert(const Wm4::Matrix3<float>& m, Wm4::Matrix3<float>& inverse)
{
    const double a = m(0, 0), b = m(0, 1), c = m(0, 2);
    const double d = m(1, 0), e = m(1, 1), f = m(1, 2);
    const double det = a * e - b * d;
    if (!std::isfinite(det) || std::abs(det) < 1e-30)
        return false;
    const double ia = e / det, ib = -b / det, id = -d / det, ie = a / det;
    inverse = Wm4::Matrix3<float>(static_cast<float>(ia), static_cast<float>(ib), static_cast<float>(-(ia * c + ib * f)),
                                  static_cast<float>(id), static_cast<float>(ie), static_cast<float>(-(id * c + ie * f)),
                                  0.0f, 0.0f, 1.0f);
    return true;
}

} // namespace

bool AddStrokeMesh(SegmentedPrimitive& primitive, const SegmentationOptions& options,
                   const Wm4::Matrix3<float>& transform, const RenderingProperties& properties, std::string* reason)
{
    if (!properties.hasStroke())
        return true;
    const bool nonScaling = NonScaling(properties);
    Wm4::Matrix3<float> inverse;
    if (!nonScaling && !Invert(transform, inverse))
        return true; // the shape is flattened to a line or a point: nothing shows

    const std::vector<V2>& points = primitive.getPoints();
    const std::vector<uint32_t>& indices = primitive.getIndices();
    std::vector<StrokePolyline> polylines;
    polylines.reserve(primitive.getSubpaths().size());
    for (const SegmentedPrimitive::Subpath& run : primitive.getSubpaths()) {
        if (run.indexCount < 2)
            continue;
        StrokePolyline polyline;
        polyline.closed = run.closed;
        polyline.points.reserve(run.indexCount / 2 + 1);
        const auto at = [&](uint32_t i) { return nonScaling ? points[i] : MapPoint(inverse, points[i]); };
        polyline.points.push_back(at(indices[run.firstIndex]));
        for (uint32_t k = run.firstIndex; k + 1 < run.firstIndex + run.indexCount; k += 2)
            polyline.points.push_back(at(indices[k + 1]));
        // A closed run ends on its first point; the stroker closes it itself.
        if (run.closed && polyline.points.size() > 1)
            polyline.points.pop_back();
        polylines.push_back(std::move(polyline));
    }

    const StrokeStyle style = StyleOf(properties, options);
    FillMesh mesh;
    const bool ok = nonScaling ? TessellateStroke(polylines, style, mesh, reason)
                               : TessellateStroke(polylines, style, transform, mesh, reason);
    primitive.editStrokeVertices() = std::move(mesh.vertices);
    primitive.editStrokeIndices() = std::move(mesh.indices);
    return ok;
}

} // namespace vk::svg::impl
