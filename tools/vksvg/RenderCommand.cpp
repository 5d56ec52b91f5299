#include "Batch.h"
#include "Cli.h"
#include "GeometryCommands.h"
#include "OutputFile.h"

#include <svg/BoundingBoxEstimation.h>
#include <svg/Color.h>

#include <cairo-pdf.h>
#include <cairo-svg.h>
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

constexpr int kDefaultWidth = 512;
constexpr int kMaxSide = 16384;

enum class PictureFormat { Png, Pdf, Svg };

struct RenderSettings {
    PictureFormat format = PictureFormat::Png;
    int width = 0;
    int height = 0;
    Wm4::Vector4<unsigned char> background{255, 255, 255, 255};
    bool wireframe = false;
    vk::svg::LoadOptions load;
    std::optional<float> tolerance;
};

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

// One mesh's triangles as one path.
void AddTriangles(cairo_t* cr, const std::vector<Wm4::Vector2<float>>& v, const std::vector<uint32_t>& t)
{
    cairo_new_path(cr);
    for (std::size_t i = 0; i + 2 < t.size(); i += 3) {
        if (t[i] >= v.size() || t[i + 1] >= v.size() || t[i + 2] >= v.size())
            continue;
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

// All of one mesh's triangles as one path, filled once under the non-zero
// rule: separate fills would leave antialiased seams along every shared
// edge, and would paint twice where a fast stroke's pieces overlap. The
// meshes wind all their triangles one way, so overlaps never cancel.
void FillMesh(cairo_t* cr, const std::vector<Wm4::Vector2<float>>& vertices, const std::vector<uint32_t>& indices,
              const Wm4::ColorRGBA& color)
{
    if (indices.size() < 3)
        return;
    AddTriangles(cr, vertices, indices);
    cairo_set_fill_rule(cr, CAIRO_FILL_RULE_WINDING);
    SetSource(cr, color);
    cairo_fill(cr);
}

// The library's stroke mesh, in the stroke's paint.
void FillStroke(cairo_t* cr, const SegmentedPrimitive& primitive)
{
    const vk::svg::RenderingProperties& properties = primitive.getProperties();
    if (properties.hasStroke())
        FillMesh(cr, primitive.getStrokeVertices(), primitive.getStrokeIndices(), properties.parseStrokeColor());
}

// Consecutive pairs that share an end are one polyline, so that its
// corners get joins instead of two caps.
void TraceContour(cairo_t* cr, const SegmentedPrimitive& primitive)
{
    const auto& points = primitive.getPoints();
    const auto& indices = primitive.getIndices();
    cairo_new_path(cr);
    for (std::size_t i = 0; i + 1 < indices.size(); i += 2) {
        const auto& a = points[indices[i]];
        const auto& b = points[indices[i + 1]];
        if (!Finite(a) || !Finite(b)) {
            cairo_new_sub_path(cr);
            continue;
        }
        if (i == 0 || indices[i] != indices[i - 1] || !cairo_has_current_point(cr))
            cairo_move_to(cr, a.X(), a.Y());
        cairo_line_to(cr, b.X(), b.Y());
    }
}

// The subset's strokes, drawn by cairo as the tool always has: the width
// in the document's space, every polyline capped at both ends. The
// default segmentation brings its own stroke meshes instead.
void StrokeContour(cairo_t* cr, const SegmentedPrimitive& primitive)
{
    const vk::svg::RenderingProperties& properties = primitive.getProperties();
    const float width = properties.getStrokeWidth().value_or(1.0f);
    if (!properties.hasStroke() || !(width > 0.0f) || primitive.getIndices().size() < 2)
        return;
    TraceContour(cr, primitive);
    cairo_save(cr);
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

// Every triangle of one mesh outlined one device pixel wide, whatever the
// scale.
struct EdgeColor {
    double r, g, b, a;
};

// Wireframe colours: fill edges crimson, stroke edges blue, both a little
// see-through so that dense meshes still show what lies under them.
constexpr EdgeColor kFillEdges{0.9, 0.1, 0.4, 0.8};
constexpr EdgeColor kStrokeEdges{0.1, 0.35, 0.95, 0.8};

void OutlineTriangles(cairo_t* cr, const std::vector<Wm4::Vector2<float>>& vertices,
                      const std::vector<uint32_t>& indices, double pixel, const EdgeColor& color)
{
    AddTriangles(cr, vertices, indices);
    cairo_set_line_width(cr, pixel);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_BEVEL);
    cairo_set_source_rgba(cr, color.r, color.g, color.b, color.a);
    cairo_stroke(cr);
}

// Collects what cairo writes.
cairo_status_t AppendBytes(void* closure, const unsigned char* data, unsigned int length)
{
    static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

// A surface of the picture's format whose bytes go to `bytes`; PDF and SVG
// measure in points, one per pixel.
cairo_surface_t* CreateSurface(PictureFormat format, int width, int height, std::string& bytes)
{
    switch (format) {
    case PictureFormat::Pdf:
        return cairo_pdf_surface_create_for_stream(AppendBytes, &bytes, width, height);
    case PictureFormat::Svg:
        return cairo_svg_surface_create_for_stream(AppendBytes, &bytes, width, height);
    default:
        return cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    }
}

// Draws one input and writes its picture.
int RenderOne(const Job& job, const RenderSettings& settings, std::ostream& out, std::ostream& err)
{
    std::shared_ptr<vk::svg::Node> tree;
    if (!geometry::LoadTree(job.input, settings.load, tree, err))
        return Failure;
    const bool faithful = geometry::Faithful(settings.load);
    const float tolerance = settings.tolerance.value_or(geometry::kDefaultTolerance);

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
    int width = settings.width;
    int height = settings.height;
    const BoundingBox* viewbox = Viewbox(*tree);
    if (width == 0 && height == 0) {
        // The full profile's viewBox is the root viewport in pixels, so it
        // is drawn at its own size.
        if (settings.load.profile == vk::svg::LoadProfile::Full && viewbox != nullptr) {
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

    std::string bytes;
    cairo_surface_t* surface = CreateSurface(settings.format, width, height, bytes);
    cairo_t* cr = cairo_create(surface);
    const auto& bg = settings.background;
    cairo_set_source_rgba(cr, bg[0] / 255.0, bg[1] / 255.0, bg[2] / 255.0, bg[3] / 255.0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);

    cairo_translate(cr, (width - scale * box.getWidth()) / 2, (height - scale * box.getHeight()) / 2);
    cairo_scale(cr, scale, scale);
    cairo_translate(cr, -box.getMinPoint().X(), -box.getMinPoint().Y());
    std::size_t triangles = 0;
    for (const auto& primitive : visitor.getSegmentedPrimitives()) {
        if (primitive->getProperties().hasFill())
            FillMesh(cr, primitive->getTriangleVertices(), primitive->getTriangleIndices(),
                     primitive->getProperties().parseFillColor());
        if (faithful)
            FillStroke(cr, *primitive);
        else
            StrokeContour(cr, *primitive);
        triangles += primitive->getTriangleIndices().size() / 3;
    }
    if (settings.wireframe) {
        for (const auto& primitive : visitor.getSegmentedPrimitives())
            OutlineTriangles(cr, primitive->getTriangleVertices(), primitive->getTriangleIndices(), 1.0 / scale,
                             kFillEdges);
        for (const auto& primitive : visitor.getSegmentedPrimitives())
            if (!primitive->getStrokeIndices().empty())
                OutlineTriangles(cr, primitive->getStrokeVertices(), primitive->getStrokeIndices(), 1.0 / scale,
                                 kStrokeEdges);
    }

    cairo_destroy(cr);
    cairo_status_t status = CAIRO_STATUS_SUCCESS;
    if (settings.format == PictureFormat::Png) {
        cairo_surface_flush(surface);
        status = cairo_surface_write_to_png_stream(surface, AppendBytes, &bytes);
    } else {
        // Vector surfaces write their last bytes when finished.
        cairo_surface_finish(surface);
        status = cairo_surface_status(surface);
    }
    cairo_surface_destroy(surface);
    std::string why = status == CAIRO_STATUS_SUCCESS ? std::string() : cairo_status_to_string(status);
    if (!why.empty() || !output::WriteOutput(job.output, bytes, out, why)) {
        err << "vksvg: cannot write \"" << job.output << "\": " << why << '\n';
        return Failure;
    }
    if (job.output != "-")
        out << "Wrote " << job.output << " (" << width << "x" << height
            << "): " << visitor.getSegmentedPrimitives().size() << " primitives, " << triangles << " triangles, "
            << segmentation->failedShapes << " failed shapes\n";
    return segmentation->partial() ? PartialResult : Success;
}

} // namespace

int runRenderCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    cli::Parser parser(*findCommand("render"));
    std::vector<std::string> inputs;
    std::string output;
    std::string directory;
    std::string jobsText;
    std::string formatText;
    std::string widthText;
    std::string heightText;
    std::string backgroundText;
    RenderSettings settings;
    cli::LoadFlags loadFlags;
    geometry::SegmentationFlags flags;
    const std::string side = "1 to " + std::to_string(kMaxSide);
    parser.app().add_option("IN", inputs, "SVG documents (\"-\" for standard input)");
    parser.value("-o,--output", output, "OUT", "The picture: .png, .pdf or .svg (\"-\" for standard output)");
    parser.value("-d,--directory", directory, "DIR",
                 "Write each input to DIR/<stem>.png, or the --format's extension (made when missing)");
    parser.value("-j,--jobs", jobsText, "N", "Work on N files at a time (1 to 256, default 1)");
    parser.value("--format", formatText, "png|pdf|svg", "The picture format for -o - and -d (default png)");
    parser.value("--width", widthText, "W", "Picture width in pixels, " + side);
    parser.value("--height", heightText, "H", "Picture height in pixels, " + side);
    parser.value("--background", backgroundText, "COLOR", "Any SVG colour, or none for transparent (default white)");
    parser.flag("--wireframe", settings.wireframe, "Also outline every triangle: fill ones crimson, stroke ones blue");
    flags.add(parser);
    parser.loadFlags(loadFlags);
    if (const auto status = parser.parse(args, out, err))
        return *status;

    std::string why;
    long value = 0;
    if (parser.given("--width")) {
        if (!cli::ParseWhole("--width", widthText, 1, kMaxSide, value, why))
            return parser.usage(why, err);
        settings.width = static_cast<int>(value);
    }
    if (parser.given("--height")) {
        if (!cli::ParseWhole("--height", heightText, 1, kMaxSide, value, why))
            return parser.usage(why, err);
        settings.height = static_cast<int>(value);
    }
    if (parser.given("--background")) {
        if (backgroundText == "none")
            settings.background = Wm4::Vector4<unsigned char>(0, 0, 0, 0);
        else if (!vk::svg::ParseSvgColor(backgroundText, settings.background))
            return parser.usage("--background needs an SVG colour or none, not \"" + backgroundText + "\"", err);
    }
    settings.load = loadFlags.options();
    if (!flags.check(parser, settings.load, why))
        return parser.usage(why, err);
    settings.tolerance = flags.tolerance;
    long jobsCount = 1;
    if (parser.given("--jobs") && !cli::ParseWhole("-j", jobsText, 1, 256, jobsCount, why))
        return parser.usage(why, err);
    std::string format;
    if (!output::ChooseFormat("render", {"png", "pdf", "svg"}, output, formatText, format, why))
        return parser.usage(why, err);
    settings.format = format == "pdf" ? PictureFormat::Pdf : format == "svg" ? PictureFormat::Svg : PictureFormat::Png;
    std::vector<Job> jobs;
    if (!PlanJobs(inputs, output, directory, "." + format, jobs, why))
        return parser.usage(why, err);
    if (!directory.empty() && !PrepareDirectory(directory, why)) {
        err << "vksvg: cannot write to \"" << directory << "\": " << why << '\n';
        return Failure;
    }

    DocumentSession session(err);
    const auto work = [&](const Job& job, std::ostream& jobOut, std::ostream& jobErr) {
        return RenderOne(job, settings, jobOut, jobErr);
    };
    if (directory.empty())
        return work(jobs.front(), out, err);
    return RunBatch(jobs, static_cast<unsigned>(jobsCount), work, out, err);
}

} // namespace vksvg
