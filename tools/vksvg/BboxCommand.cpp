#include "Cli.h"
#include "GeometryCommands.h"

#include <svg/BoundingBoxEstimation.h>
#include <svg/Options.h>
#include <svg/Writer.h>

#include <array>
#include <ostream>

namespace vksvg {

namespace {

using namespace vk::svg;

const char* const kUsage = "Usage: vksvg bbox IN [--subset] [--lenient]\n";

constexpr std::array<const char*, 8> kElementNames = {"svg", "g", "line", "rect", "circle", "path", "text", "image"};

const char* ElementName(ItemType type)
{
    const auto index = static_cast<std::size_t>(type);
    return index < kElementNames.size() ? kElementNames[index] : "unknown";
}

void PrintBox(std::ostream& out, const BoundingBox& box)
{
    if (!box.isValid()) {
        out << "empty\n";
        return;
    }
    const SaveOptions options;
    out << floatToSvgNumber(box.getMinPoint().X(), options) << ' ' << floatToSvgNumber(box.getMinPoint().Y(), options)
        << ' ' << floatToSvgNumber(box.getMaxPoint().X(), options) << ' '
        << floatToSvgNumber(box.getMaxPoint().Y(), options) << '\n';
}

} // namespace

int runBboxCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    std::string input;
    LoadOptions options = DefaultLoadOptions();
    for (const std::string& arg : args) {
        if (input.empty() && !(arg.size() > 1 && arg[0] == '-')) {
            input = arg;
        } else if (!ApplyLoadFlag(arg, options)) {
            err << kUsage;
            return UsageError;
        }
    }
    if (input.empty()) {
        err << kUsage;
        return UsageError;
    }

    DocumentSession session(err);
    std::shared_ptr<Node> tree;
    if (!geometry::LoadTree(input, options, tree, err))
        return Failure;

    BoundingBox box;
    ComputeEstimatedBoundingBox(*tree, box, nullptr, nullptr);
    out << ElementName(tree->getType()) << ": ";
    PrintBox(out, box);
    // Top-level items in the document's coordinates: under its own
    // transform, if it has one.
    const Wm4::Matrix3<float> rootMatrix = tree->getTransform().value_or(Wm4::Matrix3<float>::IDENTITY);
    for (const auto& child : tree->getChildren()) {
        if (child == nullptr)
            continue;
        ComputeEstimatedBoundingBox(*child, box, nullptr, &rootMatrix);
        out << "  " << ElementName(child->getType());
        if (child->getId())
            out << " \"" << *child->getId() << '"';
        out << ": ";
        PrintBox(out, box);
    }
    return Success;
}

} // namespace vksvg
