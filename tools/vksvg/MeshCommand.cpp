#include "Cli.h"
#include "GeometryCommands.h"

#include <svg/Options.h>
#include <svg/Writer.h>

#include <cmath>
#include <fstream>
#include <ostream>

namespace vksvg {

namespace {

using vk::svg::SegmentedPrimitive;

const char* const kUsage = "Usage: vksvg mesh IN -o OUT [--subset] [--lenient]   (OUT ends in .obj or .json)\n";

enum class MeshFormat { Obj, Json };

bool EndsWith(const std::string& text, const std::string& suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

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

void WriteJson(std::ostream& file, const vk::svg::SegmenterVisitor& visitor, std::size_t failedShapes)
{
    const NumberWriter number;
    file << "{\"primitives\":[";
    const char* separator = "\n";
    for (const auto& primitive : visitor.getSegmentedPrimitives()) {
        const vk::svg::RenderingProperties& properties = primitive->getProperties();
        file << separator << "{\"points\":";
        WriteJsonPoints(file, primitive->getPoints(), number);
        file << ",\"indices\":";
        WriteJsonTuples(file, primitive->getIndices(), 2);
        file << ",\"triangleVertices\":";
        WriteJsonPoints(file, primitive->getTriangleVertices(), number);
        file << ",\"triangleIndices\":";
        WriteJsonTuples(file, primitive->getTriangleIndices(), 3);
        file << ",\"fill\":";
        WriteJsonColor(file, properties.hasFill(), properties.parseFillColor(), number);
        file << ",\"stroke\":";
        WriteJsonColor(file, properties.hasStroke(), properties.parseStrokeColor(), number);
        file << ",\"strokeWidth\":" << number(properties.getStrokeWidth().value_or(1.0f)) << '}';
        separator = ",\n";
    }
    file << "\n],\"failedShapes\":" << failedShapes << ",\"stopped\":" << (visitor.hasError() ? "true" : "false")
         << "}\n";
}

} // namespace

int runMeshCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    std::string input;
    std::string output;
    vk::svg::LoadOptions options = DefaultLoadOptions();
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "-o" && i + 1 < args.size() && output.empty()) {
            output = args[++i];
        } else if (input.empty() && !(arg.size() > 1 && arg[0] == '-')) {
            input = arg;
        } else if (!ApplyLoadFlag(arg, options)) {
            err << kUsage;
            return UsageError;
        }
    }
    MeshFormat format = MeshFormat::Obj;
    if (EndsWith(output, ".json")) {
        format = MeshFormat::Json;
    } else if (!EndsWith(output, ".obj") || input.empty()) {
        err << kUsage;
        return UsageError;
    }

    DocumentSession session(err);
    std::shared_ptr<vk::svg::Node> tree;
    if (!geometry::LoadTree(input, options, tree, err))
        return Failure;
    const geometry::Segmentation segmentation = geometry::SegmentTree(*tree, err);
    const vk::svg::SegmenterVisitor& visitor = *segmentation.visitor;

    std::ofstream file(output, std::ios::binary);
    if (format == MeshFormat::Obj)
        WriteObj(file, visitor);
    else
        WriteJson(file, visitor, segmentation.failedShapes);
    file.close();
    if (!file) {
        err << "vksvg: cannot write \"" << output << "\"\n";
        return Failure;
    }

    std::size_t points = 0;
    std::size_t triangles = 0;
    for (const auto& primitive : visitor.getSegmentedPrimitives()) {
        points += primitive->getPoints().size();
        triangles += primitive->getTriangleIndices().size() / 3;
    }
    out << "Primitives: " << visitor.getSegmentedPrimitives().size() << '\n'
        << "Contour points: " << points << '\n'
        << "Triangles: " << triangles << '\n'
        << "Failed shapes: " << segmentation.failedShapes << '\n';
    if (visitor.hasError()) {
        out << "Segmentation stopped at a stroked shape that could not be filled; later shapes are missing.\n";
        return Failure;
    }
    return Success;
}

} // namespace vksvg
