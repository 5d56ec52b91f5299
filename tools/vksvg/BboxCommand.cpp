#include "Cli.h"
#include "GeometryCommands.h"

#include <svg/BoundingBoxEstimation.h>
#include <svg/Options.h>
#include <svg/Writer.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <list>
#include <memory>
#include <ostream>
#include <sstream>

namespace vksvg {

namespace {

using namespace vk::svg;

const char* const kUsage = "Usage: vksvg bbox IN [--tolerance T] [--subset] [--lenient]\n";

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

// The box of the outlines of `count` primitives from `first` on. A NaN
// has no place in a box; an infinite point stretches it to infinity.
BoundingBox OutlineBox(std::list<std::shared_ptr<SegmentedPrimitive>>::const_iterator& first, std::size_t count)
{
    BoundingBox box;
    for (; count > 0; --count, ++first)
        for (const auto& p : (*first)->getPoints())
            if (!std::isnan(p.X()) && !std::isnan(p.Y()))
                box.expandToContain(p);
    return box;
}

// The boxes of the segmented outlines: every shape is one primitive, in
// document order, so each top-level item owns the next run of them.
void PrintSegmentedBoxes(std::ostream& out, const Node& tree, float tolerance)
{
    const SegmentationOptions options = SegmentationOptions::Faithful(tolerance);
    // A fill that failed leaves the outline, and so the box, as it is.
    std::ostringstream quiet;
    const geometry::Segmentation segmentation = geometry::SegmentTree(tree, quiet, &options);
    const auto& primitives = segmentation.visitor->getSegmentedPrimitives();
    auto all = primitives.begin();
    out << ElementName(tree.getType()) << ": ";
    PrintBox(out, OutlineBox(all, primitives.size()));
    auto next = primitives.begin();
    std::size_t left = primitives.size();
    for (const auto& child : tree.getChildren()) {
        if (child == nullptr)
            continue;
        const std::size_t count = std::min(left, geometry::ShapeWalk::CountShapes(*child));
        left -= count;
        out << "  " << ElementName(child->getType());
        if (child->getId())
            out << " \"" << *child->getId() << '"';
        out << ": ";
        PrintBox(out, OutlineBox(next, count));
    }
}

} // namespace

int runBboxCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    std::string input;
    LoadOptions options = DefaultLoadOptions();
    geometry::SegmentationFlags flags;
    std::string why;
    for (std::size_t i = 0; i < args.size() && why.empty(); ++i) {
        const std::string& arg = args[i];
        if (flags.apply(args, i, why)) {
            continue;
        } else if (input.empty() && !(arg.size() > 1 && arg[0] == '-')) {
            input = arg;
        } else if (!ApplyLoadFlag(arg, options)) {
            err << kUsage;
            return UsageError;
        }
    }
    if (!why.empty() || !flags.check(options, why)) {
        err << "vksvg: " << why << '\n' << kUsage;
        return UsageError;
    }
    if (input.empty()) {
        err << kUsage;
        return UsageError;
    }

    DocumentSession session(err);
    std::shared_ptr<Node> tree;
    if (!geometry::LoadTree(input, options, tree, err))
        return Failure;
    if (geometry::Faithful(options)) {
        PrintSegmentedBoxes(out, *tree, flags.tolerance.value_or(geometry::kDefaultTolerance));
        return Success;
    }

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
