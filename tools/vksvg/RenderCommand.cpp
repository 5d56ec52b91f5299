#include "Cli.h"
#include "GeometryCommands.h"

#include <svg/BoundingBoxEstimation.h>
#include <svg/Color.h>

#include <cairo.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <ostream>
#include <sstream>

namespace vksvg {

namespace {

using vk::svg::BoundingBox;
using vk::svg::SegmentedPrimitive;

const char* const kUsage = "Usage: vksvg render IN -o OUT.png [--width W] [--height H] [--background COLOR] "
                           "[--wireframe] [--tolerance T] [--subset] [--lenient]\n";

constexpr int kDefaultWidth = 512;
constexpr int kMaxSide = 16384;

struct RenderOptions {
    std::string input;
    std::string output;
    int width = 0;
    int height = 0;
    Wm4::Vector4<unsigned char> background{255, 255, 255, 255};
    bool wireframe = false;
    vk::svg::LoadOptions load = DefaultLoadOptions();
    geometry::SegmentationFlags segmentation;
};

bool ParseSide(const std::string& text, int& side)
{
    errno = 0;
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno != 0 || value < 1 || value > kMaxSide)
        return false;
    side = static_cast<int>(value);
    return true;
}

// False on a usage error; `why` then says what was wrong, when it can.
bool ParseArguments(const std::vector<std::string>& args, RenderOptions& options, std::string& why)
{
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        const bool hasValue = i + 1 < args.size();
        if (options.segmentation.apply(args, i, why)) {
            if (!why.empty())
                return false;
        } else if (arg == "-o" && hasValue && options.output.empty()) {
            options.output = args[++i];
        } else if (arg == "--width" && hasValue) {
            if (!ParseSide(args[++i], options.width))
                return false;
        } else if (arg == "--height" && hasValue) {
            if (!ParseSide(args[++i], options.height))
                return false;
        } else if (arg == "--background" && hasValue) {
            const std::string& color = args[++i];
            if (color == "none")
                options.background = Wm4::Vector4<unsigned char>(0, 0, 0, 0);
            else if (!vk::svg::ParseSvgColor(color, options.background))
                return false;
        } else if (arg == "--wireframe") {
            options.wireframe = true;
        } else if (options.input.empty() && !(arg.size() > 1 && arg[0] == '-')) {
            options.input = arg;
        } else if (!ApplyLoadFlag(arg, options.load)) {
            return false;
        }
    }
    return !options.input.empty() && !options.output.empty() && options.segmentation.check(options.load, why);
}

// A length in pixels as an image side.
int WholeSide(double length) { return static_cast<int>(std::clamp(std::round(length), 1.0, double(kMaxSide))); }

bool Usable(const BoundingBox& box)
{
    return box.isValid() && std::isfinite(box.getMinPoint().X()) && std::isfinite(box.getMinPoint().Y()) &&
           std::isfinite(box.getMaxPoint().X()) && std::isfinite(box.getMaxPoint().Y());
}

// The document's viewBox, when it has a usable one.
const BoundingBox* Viewbox(const vk::svg::Node& tree)
{
    if (tree.getType() != vk::svg::ItemType::Document)
        return nullptr;
    const auto& viewbox = static_cast<const vk::svg::Document&>(tree).getViewbox();
    if (viewbox && Usable(*viewbox) && viewbox->getWidth() > 0 && viewbox->getHeight() > 0)
        return &*viewbox;
    return nullptr;
}

// Whether SourceBox needs the segmentation: neither a viewBox nor a usable
// estimate.
bool NeedsSegmentedBox(const vk::svg::Node& tree)
{
    if (Viewbox(tree) != nullptr)
        return false;
    BoundingBox box;
    vk::svg::ComputeEstimatedBoundingBox(tree, box, nullptr, nullptr);
    return !Usable(box);
}

// What the picture shows: the viewBox, else the estimated box, else
// whatever the segmentation covers (estimates leave curves out).
BoundingBox SourceBox(const vk::svg::Node& tree, const vk::svg::SegmenterVisitor* visitor)
{
    if (const BoundingBox* viewbox = Viewbox(tree))
        return *viewbox;
    BoundingBox box;
    vk::svg::ComputeEstimatedBoundingBox(tree, box, nullptr, nullptr);
    if (!Usable(box) && visitor != nullptr) {
        box = BoundingBox();
        for (const auto& primitive : visitor->getSegmentedPrimitives())
            for (const auto& p : primitive->getPoints())
                if (std::isfinite(p.X()) && std::isfinite(p.Y()))
                    box.expandToContain(p);
    }
    if (!Usable(box))
        return BoundingBox(Wm4::Vector2<float>(0, 0), Wm4::Vector2<float>(1, 1));
    // A flat drawing still needs an extent to scale by.
    const float pad = std::max(box.getWidth(), box.getHeight()) * 0.5f;
    const float grow = pad > 0 ? pad : 0.5f;
    box.addMargin(Wm4::Vector2<float>(box.getWidth() > 0 ? 0 : grow, box.getHeight() > 0 ? 0 : grow));
    return box;
}

// Cairo stops drawing altogether after a non-finite coordinate, so those
// triangles and segments are left out.
bool Finite(const Wm4::Vector2<float>& p) { return std::isfinite(p.X()) && std::isfinite(p.Y()); }

void AddTriangles(cairo_t* cr, const SegmentedPrimitive& primitive)
{
    const auto& v = primitive.getTriangleVertices();
    const auto& t = primitive.getTriangleIndices();
    cairo_new_path(cr);
    for (std::size_t i = 0; i + 2 < t.size(); i += 3) {
        const auto& a = v[t[i]];
        const auto& b = v[t[i + 1]];
        const auto& c = v[t[i + 2]];
        if (!Finite(a) || !Finite(b) || !Finite(c))
            continue;
        cairo_move_to(cr, a.X(), a.Y());
        cairo_line_to(cr, b.X(), b.Y());
        cairo_line_to(cr, c.X(), c.Y());
        cairo_close_path(cr);
    }
}

void SetSource(cairo_t* cr, const Wm4::ColorRGBA& color)
{
    cairo_set_source_rgba(cr, color.R(), color.G(), color.B(), color.A());
}

// All of one shape's triangles as one path, filled once: separate fills
// would leave antialiased seams along every shared edge.
void FillTriangles(cairo_t* cr, const SegmentedPrimitive& primitive)
{
    if (primitive.getTriangleIndices().size() < 3)
        return;
    AddTriangles(cr, primitive);
    cairo_set_fill_rule(cr, CAIRO_FILL_RULE_WINDING);
    SetSource(cr, primitive.getProperties().parseFillColor());
    cairo_fill(cr);
}

// Consecutive pairs that share an end are one polyline, so that its
// corners get joins instead of two caps. With `closeLoops` a polyline that
// comes back to its first point is closed, so that the corner there is
// joined too: rectangles and circles return to the first index, paths
// repeat the first point.
void TraceContour(cairo_t* cr, const SegmentedPrimitive& primitive, bool closeLoops)
{
    const auto& points = primitive.getPoints();
    const auto& indices = primitive.getIndices();
    cairo_new_path(cr);
    uint32_t first = 0;
    bool drawn = false;
    for (std::size_t i = 0; i + 1 < indices.size(); i += 2) {
        const auto& a = points[indices[i]];
        const auto& b = points[indices[i + 1]];
        if (!Finite(a) || !Finite(b)) {
            cairo_new_sub_path(cr);
            continue;
        }
        if (i == 0 || indices[i] != indices[i - 1] || !cairo_has_current_point(cr)) {
            cairo_move_to(cr, a.X(), a.Y());
            first = indices[i];
            drawn = false;
        }
        const auto& start = points[first];
        if (closeLoops && drawn && (indices[i + 1] == first || (b.X() == start.X() && b.Y() == start.Y())))
            cairo_close_path(cr);
        else
            cairo_line_to(cr, b.X(), b.Y());
        drawn = true;
    }
}

// The outline run by run as the segmentation marks them, so that an open
// run that comes back to its start still gets caps, not a join.
void TraceSubpaths(cairo_t* cr, const SegmentedPrimitive& primitive)
{
    const auto& points = primitive.getPoints();
    const auto& indices = primitive.getIndices();
    cairo_new_path(cr);
    for (const SegmentedPrimitive::Subpath& run : primitive.getSubpaths()) {
        const std::size_t end = std::min<std::size_t>(indices.size(), std::size_t(run.firstIndex) + run.indexCount);
        bool drawing = false;
        // A run broken by a non-finite point has no start to close to.
        bool whole = true;
        for (std::size_t i = run.firstIndex; i + 2 <= end; i += 2) {
            const auto& a = points[indices[i]];
            const auto& b = points[indices[i + 1]];
            if (!Finite(a) || !Finite(b)) {
                drawing = false;
                whole = false;
                continue;
            }
            if (!drawing)
                cairo_move_to(cr, a.X(), a.Y());
            drawing = true;
            if (run.closed && whole && i + 2 == end)
                cairo_close_path(cr);
            else
                cairo_line_to(cr, b.X(), b.Y());
        }
    }
}

// With `userSpace`, the full profile's strokes: the pen is shaped by the
// shape's transform (the contour is already mapped), loops are closed and
// the miter limit is SVG's.
// Without it, the subset's: the width in the document's space, every
// polyline capped at both ends.
void StrokeContour(cairo_t* cr, const SegmentedPrimitive& primitive, const Wm4::Matrix3<float>* userSpace)
{
    const vk::svg::RenderingProperties& properties = primitive.getProperties();
    const float width = properties.getStrokeWidth().value_or(1.0f);
    if (!properties.hasStroke() || !(width > 0.0f) || primitive.getIndices().size() < 2)
        return;
    if (!primitive.getSubpaths().empty())
        TraceSubpaths(cr, primitive);
    else
        TraceContour(cr, primitive, userSpace != nullptr);
    cairo_save(cr);
    const bool nonScaling = (properties.getVectorEffect().value_or(0) &
                             static_cast<uint32_t>(vk::svg::VectorEffect::NonScalingStroke)) != 0;
    if (userSpace != nullptr && !nonScaling) {
        const Wm4::Matrix3<float>& m = *userSpace;
        cairo_matrix_t pen;
        cairo_matrix_init(&pen, m(0, 0), m(1, 0), m(0, 1), m(1, 1), 0, 0);
        // A singular matrix would put the context in an error state.
        cairo_matrix_t inverse = pen;
        if (std::isfinite(m(0, 0)) && std::isfinite(m(1, 0)) && std::isfinite(m(0, 1)) && std::isfinite(m(1, 1)) &&
            cairo_matrix_invert(&inverse) == CAIRO_STATUS_SUCCESS)
            cairo_transform(cr, &pen);
    }
    if (userSpace != nullptr)
        cairo_set_miter_limit(cr, properties.getStrokeMiterlimit().value_or(4.0f));
    cairo_set_line_width(cr, width);
    switch (properties.getStrokeLinecap().value_or(vk::svg::LineCap::Butt)) {
    case vk::svg::LineCap::Round:
        cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
        break;
    case vk::svg::LineCap::Square:
        cairo_set_line_cap(cr, CAIRO_LINE_CAP_SQUARE);
        break;
    default:
        cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
        break;
    }
    switch (properties.getStrokeLinejoin().value_or(vk::svg::LineJoin::Miter)) {
    case vk::svg::LineJoin::Round:
    case vk::svg::LineJoin::Arcs:
        cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
        break;
    case vk::svg::LineJoin::Bevel:
        cairo_set_line_join(cr, CAIRO_LINE_JOIN_BEVEL);
        break;
    default:
        cairo_set_line_join(cr, CAIRO_LINE_JOIN_MITER);
        break;
    }
    SetSource(cr, properties.parseStrokeColor());
    cairo_stroke(cr);
    cairo_restore(cr);
}

// Every triangle outlined one device pixel wide, whatever the scale.
void OutlineTriangles(cairo_t* cr, const SegmentedPrimitive& primitive, double pixel)
{
    AddTriangles(cr, primitive);
    cairo_set_line_width(cr, pixel);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_BEVEL);
    cairo_set_source_rgba(cr, 0.9, 0.1, 0.4, 0.8);
    cairo_stroke(cr);
}

} // namespace

int runRenderCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    RenderOptions options;
    std::string why;
    if (!ParseArguments(args, options, why)) {
        if (!why.empty())
            err << "vksvg: " << why << '\n';
        err << kUsage;
        return UsageError;
    }

    DocumentSession session(err);
    std::shared_ptr<vk::svg::Node> tree;
    if (!geometry::LoadTree(options.input, options.load, tree, err))
        return Failure;
    const bool faithful = geometry::Faithful(options.load);
    const float tolerance = options.segmentation.tolerance.value_or(geometry::kDefaultTolerance);

    // The faithful segmentation's tolerance depends on the scale, which
    // depends on the box; only a drawing without a viewBox or estimate
    // needs a first segmentation, at the tolerance in document units, to
    // find it.
    std::optional<geometry::Segmentation> segmentation;
    if (!faithful) {
        segmentation = geometry::SegmentTree(*tree, err);
    } else if (NeedsSegmentedBox(*tree)) {
        const vk::svg::SegmentationOptions first = vk::svg::SegmentationOptions::Faithful(tolerance);
        std::ostringstream quiet;
        segmentation = geometry::SegmentTree(*tree, quiet, &first);
    }

    // Keep the aspect ratio: a missing side follows from the other, and
    // with both given the drawing is fitted and centred.
    const BoundingBox box = SourceBox(*tree, segmentation ? segmentation->visitor.get() : nullptr);
    const double aspect = static_cast<double>(box.getHeight()) / box.getWidth();
    int width = options.width;
    int height = options.height;
    const BoundingBox* viewbox = Viewbox(*tree);
    if (width == 0 && height == 0) {
        // The full profile's viewBox is the root viewport in pixels, so it
        // is drawn at its own size.
        if (options.load.profile == vk::svg::LoadProfile::Full && viewbox != nullptr) {
            width = WholeSide(viewbox->getWidth());
            height = WholeSide(viewbox->getHeight());
        } else {
            width = kDefaultWidth;
        }
    }
    if (width == 0)
        width = WholeSide(height / aspect);
    if (height == 0)
        height = WholeSide(width * aspect);
    const double scale =
        std::min(width / static_cast<double>(box.getWidth()), height / static_cast<double>(box.getHeight()));

    if (faithful) {
        const double units = tolerance / scale;
        // A degenerate scale leaves the tolerance as given.
        const auto inUnits = static_cast<float>(units);
        const float documentTolerance = std::isfinite(inUnits) && inUnits > 0 ? inUnits : tolerance;
        const vk::svg::SegmentationOptions pixelOptions = vk::svg::SegmentationOptions::Faithful(documentTolerance);
        segmentation = geometry::SegmentTree(*tree, err, &pixelOptions);
    }
    const vk::svg::SegmenterVisitor& visitor = *segmentation->visitor;

    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t* cr = cairo_create(surface);
    const auto& bg = options.background;
    cairo_set_source_rgba(cr, bg[0] / 255.0, bg[1] / 255.0, bg[2] / 255.0, bg[3] / 255.0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);

    cairo_translate(cr, (width - scale * box.getWidth()) / 2, (height - scale * box.getHeight()) / 2);
    cairo_scale(cr, scale, scale);
    cairo_translate(cr, -box.getMinPoint().X(), -box.getMinPoint().Y());
    // The subset draws every stroke at its width in the document's space.
    std::vector<Wm4::Matrix3<float>> userSpaces;
    if (options.load.profile == vk::svg::LoadProfile::Full) {
        const geometry::ShapeWalk walk(*tree);
        for (const geometry::ShapeWalk::Shape& shape : walk.shapes())
            userSpaces.push_back(shape.transform);
    }
    std::size_t triangles = 0;
    std::size_t shape = 0;
    for (const auto& primitive : visitor.getSegmentedPrimitives()) {
        if (primitive->getProperties().hasFill())
            FillTriangles(cr, *primitive);
        StrokeContour(cr, *primitive, shape < userSpaces.size() ? &userSpaces[shape] : nullptr);
        ++shape;
        triangles += primitive->getTriangleIndices().size() / 3;
    }
    if (options.wireframe)
        for (const auto& primitive : visitor.getSegmentedPrimitives())
            OutlineTriangles(cr, *primitive, 1.0 / scale);

    cairo_surface_flush(surface);
    const cairo_status_t status = cairo_surface_write_to_png(surface, options.output.c_str());
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
    if (status != CAIRO_STATUS_SUCCESS) {
        err << "vksvg: cannot write \"" << options.output << "\": " << cairo_status_to_string(status) << '\n';
        return Failure;
    }
    out << "Wrote " << options.output << " (" << width << "x" << height
        << "): " << visitor.getSegmentedPrimitives().size() << " primitives, " << triangles << " triangles, "
        << segmentation->failedShapes << " failed shapes\n";
    return segmentation->partial() ? PartialResult : Success;
}

} // namespace vksvg
