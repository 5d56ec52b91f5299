#include "Batch.h"
#include "Cli.h"
#include "GeometryCommands.h"
#include "Json.h"
#include "OutputFile.h"

#include <svg/Options.h>
#include <svg/Writer.h>

#include <cmath>
#include <cstdint>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

namespace vksvg {

namespace {

using vk::svg::SegmentedPrimitive;

enum class MeshFormat { Obj, Json };

// Numbers go through the library's own formatter, never the process
// locale. JSON has no NaN or infinity, so those become null.
class NumberWriter {
public:
    std::string operator()(float value) const
    {
        if (!std::isfinite(value))
            return "null";
        return vk::svg::floatToSvgNumber(value, mOptions);
    }

private:
    vk::svg::SaveOptions mOptions;
};

void WriteObj(std::ostream& file, const vk::svg::SegmenterVisitor& visitor)
{
    const NumberWriter number;
    file << "# vksvg mesh: one object per shape, outline as lines, fill as triangles\n";
    std::size_t base = 1; // OBJ vertex numbers are global and start at 1
    std::size_t n = 0;
    for (const auto& primitive : visitor.getSegmentedPrimitives()) {
        file << "o shape" << n++ << '\n';
        for (const auto& p : primitive->getPoints())
            file << "v " << number(p.X()) << ' ' << number(p.Y()) << " 0\n";
        for (const auto& p : primitive->getTriangleVertices())
            file << "v " << number(p.X()) << ' ' << number(p.Y()) << " 0\n";
        const auto& indices = primitive->getIndices();
        for (std::size_t i = 0; i + 1 < indices.size(); i += 2)
            file << "l " << base + indices[i] << ' ' << base + indices[i + 1] << '\n';
        const std::size_t triangleBase = base + primitive->getPoints().size();
        const auto& triangles = primitive->getTriangleIndices();
        for (std::size_t i = 0; i + 2 < triangles.size(); i += 3)
            file << "f " << triangleBase + triangles[i] << ' ' << triangleBase + triangles[i + 1] << ' '
                 << triangleBase + triangles[i + 2] << '\n';
        base = triangleBase + primitive->getTriangleVertices().size();
    }
}

// The object name of shape `index`: its id with blanks replaced, since an
// OBJ name ends at the first blank, else a made-up one.
std::string ObjectName(const std::optional<std::string>& id, std::size_t index)
{
    if (!id || id->empty())
        return "shape-" + std::to_string(index);
    std::string name = *id;
    for (char& c : name)
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r')
            c = '_';
    return name;
}

// Vertices of one object, each as written once: the fill's vertices first,
// then the outline points the fill does not already have. Keyed by the
// written text, so that points no reader of the file could tell apart are
// one vertex.
class SharedVertices {
public:
    uint32_t add(const Wm4::Vector2<float>& p)
    {
        const auto [at, added] =
            mIndex.try_emplace(mNumber(p.X()) + ' ' + mNumber(p.Y()), static_cast<uint32_t>(mLines.size()));
        if (added)
            mLines.push_back(at->first);
        return at->second;
    }
    // "x y" of every vertex in order.
    const std::vector<std::string>& lines() const { return mLines; }

private:
    NumberWriter mNumber;
    std::unordered_map<std::string, uint32_t> mIndex;
    std::vector<std::string> mLines;
};

// The triangles of a stroke mesh as an object of their own, each vertex
// once; `base` moves past its vertices.
void WriteStrokeObject(std::ostream& file, const std::string& name, const SegmentedPrimitive& primitive,
                       std::size_t& base)
{
    const auto& points = primitive.getStrokeVertices();
    const auto& indices = primitive.getStrokeIndices();
    if (indices.size() < 3)
        return;
    file << "o " << name << "-stroke\n";
    SharedVertices vertices;
    std::vector<uint32_t> vertex;
    for (const auto& p : points)
        vertex.push_back(vertices.add(p));
    for (const std::string& xy : vertices.lines())
        file << "v " << xy << " 0\n";
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        file << 'f';
        for (std::size_t j = 0; j < 3; ++j)
            file << ' ' << base + (indices[i + j] < vertex.size() ? vertex[indices[i + j]] : 0);
        file << '\n';
    }
    base += vertices.lines().size();
}

// Every stroke mesh follows its shape's object as the object
// "<name>-stroke" (the library's own segmentation makes none).
void WriteSharedObj(std::ostream& file, const vk::svg::SegmenterVisitor& visitor,
                    const std::vector<geometry::ShapeWalk::Shape>& shapes)
{
    file << "# vksvg mesh: one object per shape named by its id, each vertex once, outline as lines, fill as "
            "triangles, stroke as triangles of <name>-stroke\n";
    std::size_t base = 1; // OBJ vertex numbers are global and start at 1
    std::size_t n = 0;
    for (const auto& primitive : visitor.getSegmentedPrimitives()) {
        const std::string name = ObjectName(n < shapes.size() ? shapes[n].id : std::nullopt, n);
        file << "o " << name << '\n';
        ++n;
        SharedVertices vertices;
        std::vector<uint32_t> fillVertex;
        for (const auto& p : primitive->getTriangleVertices())
            fillVertex.push_back(vertices.add(p));
        std::vector<uint32_t> fill;
        for (const uint32_t i : primitive->getTriangleIndices())
            fill.push_back(i < fillVertex.size() ? fillVertex[i] : 0);
        std::vector<uint32_t> outline;
        for (const uint32_t i : primitive->getIndices())
            outline.push_back(vertices.add(primitive->getPoints()[i]));
        for (const std::string& xy : vertices.lines())
            file << "v " << xy << " 0\n";
        for (std::size_t i = 0; i + 1 < outline.size(); i += 2)
            file << "l " << base + outline[i] << ' ' << base + outline[i + 1] << '\n';
        for (std::size_t i = 0; i + 2 < fill.size(); i += 3)
            file << "f " << base + fill[i] << ' ' << base + fill[i + 1] << ' ' << base + fill[i + 2] << '\n';
        base += vertices.lines().size();
        WriteStrokeObject(file, name, *primitive, base);
    }
}

void WriteJsonPoints(std::ostream& file, const std::vector<Wm4::Vector2<float>>& points, const NumberWriter& number)
{
    file << '[';
    for (std::size_t i = 0; i < points.size(); ++i)
        file << (i > 0 ? "," : "") << '[' << number(points[i].X()) << ',' << number(points[i].Y()) << ']';
    file << ']';
}

void WriteJsonTuples(std::ostream& file, const std::vector<uint32_t>& indices, std::size_t arity)
{
    file << '[';
    for (std::size_t i = 0; i + arity <= indices.size(); i += arity) {
        file << (i > 0 ? "," : "") << '[';
        for (std::size_t j = 0; j < arity; ++j)
            file << (j > 0 ? "," : "") << indices[i + j];
        file << ']';
    }
    file << ']';
}

void WriteJsonColor(std::ostream& file, bool present, const Wm4::ColorRGBA& color, const NumberWriter& number)
{
    if (!present) {
        file << "null";
        return;
    }
    file << '[' << number(color.R()) << ',' << number(color.G()) << ',' << number(color.B()) << ',' << number(color.A())
         << ']';
}

void WriteJsonString(std::ostream& file, const std::string& text)
{
    static const char* const kHex = "0123456789abcdef";
    file << '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            file << '\\' << c;
        else if (byte < 0x20)
            file << "\\u00" << kHex[byte >> 4] << kHex[byte & 15];
        else
            file << c;
    }
    file << '"';
}

void WriteJsonSubpaths(std::ostream& file, const std::vector<SegmentedPrimitive::Subpath>& subpaths)
{
    file << '[';
    for (std::size_t i = 0; i < subpaths.size(); ++i)
        file << (i > 0 ? "," : "") << "{\"first\":" << subpaths[i].firstIndex << ",\"count\":" << subpaths[i].indexCount
             << ",\"closed\":" << (subpaths[i].closed ? "true" : "false") << '}';
    file << ']';
}

// With `shapes` (the default segmentation) every primitive also has its id
// and subpaths, and the failed shapes are listed.
void WriteJson(std::ostream& file, const vk::svg::SegmenterVisitor& visitor, std::size_t failedShapes,
               const std::vector<geometry::ShapeWalk::Shape>* shapes)
{
    const NumberWriter number;
    file << "{\"primitives\":[";
    const char* separator = "\n";
    std::size_t n = 0;
    for (const auto& primitive : visitor.getSegmentedPrimitives()) {
        const vk::svg::RenderingProperties& properties = primitive->getProperties();
        file << separator << '{';
        if (shapes != nullptr) {
            file << "\"id\":";
            if (n < shapes->size() && (*shapes)[n].id)
                WriteJsonString(file, *(*shapes)[n].id);
            else
                file << "null";
            file << ',';
        }
        ++n;
        file << "\"points\":";
        WriteJsonPoints(file, primitive->getPoints(), number);
        file << ",\"indices\":";
        WriteJsonTuples(file, primitive->getIndices(), 2);
        if (shapes != nullptr) {
            file << ",\"subpaths\":";
            WriteJsonSubpaths(file, primitive->getSubpaths());
        }
        file << ",\"triangleVertices\":";
        WriteJsonPoints(file, primitive->getTriangleVertices(), number);
        file << ",\"triangleIndices\":";
        WriteJsonTuples(file, primitive->getTriangleIndices(), 3);
        file << ",\"fill\":";
        WriteJsonColor(file, properties.hasFill(), properties.parseFillColor(), number);
        file << ",\"stroke\":";
        WriteJsonColor(file, properties.hasStroke(), properties.parseStrokeColor(), number);
        file << ",\"strokeWidth\":" << number(properties.getStrokeWidth().value_or(1.0f));
        if (shapes != nullptr) {
            file << ",\"strokeVertices\":";
            WriteJsonPoints(file, primitive->getStrokeVertices(), number);
            file << ",\"strokeIndices\":";
            WriteJsonTuples(file, primitive->getStrokeIndices(), 3);
        }
        file << '}';
        separator = ",\n";
    }
    file << "\n],\"failedShapes\":" << failedShapes;
    if (shapes != nullptr) {
        file << ",\"failures\":[";
        const char* comma = "";
        for (const vk::svg::SegmentationFailure& failure : visitor.getFailures()) {
            file << comma << "{\"index\":" << failure.index << ",\"id\":";
            if (failure.id)
                WriteJsonString(file, *failure.id);
            else
                file << "null";
            file << ",\"reason\":";
            WriteJsonString(file, failure.reason);
            file << '}';
            comma = ",";
        }
        file << ']';
    }
    // Only the old segmentation stops at a failed stroked shape.
    file << ",\"stopped\":" << (shapes == nullptr && visitor.hasError() ? "true" : "false") << "}\n";
}

struct MeshSettings {
    MeshFormat format = MeshFormat::Obj;
    vk::svg::LoadOptions load;
    std::optional<float> tolerance;
    bool statisticsAsJson = false;
};

// Segments one input and writes its mesh; prints the counts, as lines or
// as one JSON object, unless the mesh itself goes to standard output.
int MeshOne(const Job& job, const MeshSettings& settings, std::ostream& out, std::ostream& err)
{
    std::shared_ptr<vk::svg::Node> tree;
    if (!geometry::LoadTree(job.input, settings.load, tree, err))
        return Failure;
    const bool faithful = geometry::Faithful(settings.load);
    const vk::svg::SegmentationOptions segmentationOptions =
        vk::svg::SegmentationOptions::Faithful(settings.tolerance.value_or(geometry::kDefaultTolerance));
    const geometry::Segmentation segmentation =
        geometry::SegmentTree(*tree, err, faithful ? &segmentationOptions : nullptr);
    const vk::svg::SegmenterVisitor& visitor = *segmentation.visitor;

    std::ostringstream file;
    if (faithful) {
        const geometry::ShapeWalk walk(*tree);
        if (settings.format == MeshFormat::Obj)
            WriteSharedObj(file, visitor, walk.shapes());
        else
            WriteJson(file, visitor, segmentation.failedShapes, &walk.shapes());
    } else if (settings.format == MeshFormat::Obj) {
        WriteObj(file, visitor);
    } else {
        WriteJson(file, visitor, segmentation.failedShapes, nullptr);
    }
    std::string why;
    if (!output::WriteOutput(job.output, file.str(), out, why)) {
        err << "vksvg: cannot write \"" << job.output << "\": " << why << '\n';
        return Failure;
    }

    std::size_t points = 0;
    std::size_t triangles = 0;
    std::size_t strokeTriangles = 0;
    for (const auto& primitive : visitor.getSegmentedPrimitives()) {
        points += primitive->getPoints().size();
        triangles += primitive->getTriangleIndices().size() / 3;
        strokeTriangles += primitive->getStrokeIndices().size() / 3;
    }
    const bool stopped = !faithful && visitor.hasError();
    if (settings.statisticsAsJson) {
        json::Json failures = json::Json::array();
        for (const vk::svg::SegmentationFailure& failure : visitor.getFailures())
            failures.push_back({{"index", failure.index},
                                {"id", failure.id ? json::Json(*failure.id) : json::Json(nullptr)},
                                {"reason", failure.reason}});
        out << json::Dump({{"schema", "vksvg-mesh/1"},
                           {"file", io::DisplayName(job.input)},
                           {"output", job.output},
                           {"format", settings.format == MeshFormat::Obj ? "obj" : "json"},
                           {"primitives", visitor.getSegmentedPrimitives().size()},
                           {"contourPoints", points},
                           {"triangles", triangles},
                           {"strokeTriangles", strokeTriangles},
                           {"failedShapes", segmentation.failedShapes},
                           {"failures", failures},
                           {"stopped", stopped}});
    } else if (job.output != "-") {
        out << "Primitives: " << visitor.getSegmentedPrimitives().size() << '\n'
            << "Contour points: " << points << '\n'
            << "Triangles: " << triangles << '\n';
        // The subset's segmentation has no stroke meshes, and keeps its
        // counts as they always were.
        if (faithful)
            out << "Stroke triangles: " << strokeTriangles << '\n';
        out << "Failed shapes: " << segmentation.failedShapes << '\n';
        if (stopped)
            out << "Segmentation stopped at a stroked shape that could not be filled; later shapes are missing.\n";
    }
    if (segmentation.partial())
        return PartialResult;
    return stopped ? Failure : Success;
}

} // namespace

int runMeshCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    cli::Parser parser(*findCommand("mesh"));
    std::vector<std::string> inputs;
    std::string output;
    std::string directory;
    std::string jobsText;
    std::string formatText;
    MeshSettings settings;
    cli::LoadFlags loadFlags;
    geometry::SegmentationFlags flags;
    parser.app().add_option("IN", inputs, "SVG documents (\"-\" for standard input)");
    parser.value("-o,--output", output, "OUT", "The mesh file: .obj or .json (\"-\" for standard output)");
    parser.value("-d,--directory", directory, "DIR",
                 "Write each input to DIR/<stem>.obj, or .json with --format json (made when missing)");
    parser.value("-j,--jobs", jobsText, "N", "Work on N files at a time (1 to 256, default 1)");
    parser.value("--format", formatText, "obj|json", "The mesh format for -o - and -d (default obj)");
    parser.flag("--json", settings.statisticsAsJson,
                "Print the counts as one JSON object (schema vksvg-mesh/1) per input");
    flags.add(parser);
    parser.loadFlags(loadFlags);
    if (const auto status = parser.parse(args, out, err))
        return *status;

    settings.load = loadFlags.options();
    std::string why;
    if (!flags.check(parser, settings.load, why))
        return parser.usage(why, err);
    settings.tolerance = flags.tolerance;
    long jobsCount = 1;
    if (parser.given("--jobs") && !cli::ParseWhole("-j", jobsText, 1, 256, jobsCount, why))
        return parser.usage(why, err);
    std::string format;
    if (!output::ChooseFormat("mesh", {"obj", "json"}, output, formatText, format, why))
        return parser.usage(why, err);
    settings.format = format == "json" ? MeshFormat::Json : MeshFormat::Obj;
    std::vector<Job> jobs;
    if (!PlanJobs(inputs, output, directory, "." + format, jobs, why))
        return parser.usage(why, err);
    if (output == "-" && settings.statisticsAsJson)
        return parser.usage("--json prints to standard output, which -o - already takes", err);
    if (!directory.empty() && !PrepareDirectory(directory, why)) {
        err << "vksvg: cannot write to \"" << directory << "\": " << why << '\n';
        return Failure;
    }

    DocumentSession session(err);
    const auto work = [&](const Job& job, std::ostream& jobOut, std::ostream& jobErr) {
        return MeshOne(job, settings, jobOut, jobErr);
    };
    if (directory.empty())
        return work(jobs.front(), out, err);
    return RunBatch(jobs, static_cast<unsigned>(jobsCount), work, out, err);
}

} // namespace vksvg
