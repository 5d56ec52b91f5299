#include "Cli.h"
#include "GeometryCommands.h"
#include "Json.h"

#include <svg/BoundingBoxEstimation.h>
#include <svg/Options.h>
#include <svg/Writer.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <list>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <vector>

namespace vksvg {

namespace {

using namespace vk::svg;

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

// The box of one item: the document's first, then each top-level item.
struct ItemBox {
    ItemType type;
    std::optional<std::string> id;
    BoundingBox box;
};

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
std::vector<ItemBox> SegmentedBoxes(const Node& tree, float tolerance)
{
    const SegmentationOptions options = SegmentationOptions::Faithful(tolerance);
    // A fill that failed leaves the outline, and so the box, as it is.
    std::ostringstream quiet;
    const geometry::Segmentation segmentation = geometry::SegmentTree(tree, quiet, &options);
    const auto& primitives = segmentation.visitor->getSegmentedPrimitives();
    auto all = primitives.begin();
    std::vector<ItemBox> boxes{{tree.getType(), tree.getId(), OutlineBox(all, primitives.size())}};
    auto next = primitives.begin();
    std::size_t left = primitives.size();
    for (const auto& child : tree.getChildren()) {
        if (child == nullptr)
            continue;
        const std::size_t count = std::min(left, geometry::ShapeWalk::CountShapes(*child));
        left -= count;
        boxes.push_back({child->getType(), child->getId(), OutlineBox(next, count)});
    }
    return boxes;
}

std::vector<ItemBox> EstimatedBoxes(const Node& tree)
{
    BoundingBox box;
    ComputeEstimatedBoundingBox(tree, box, nullptr, nullptr);
    std::vector<ItemBox> boxes{{tree.getType(), tree.getId(), box}};
    // Top-level items in the document's coordinates: under its own
    // transform, if it has one.
    const Wm4::Matrix3<float> rootMatrix = tree.getTransform().value_or(Wm4::Matrix3<float>::IDENTITY);
    for (const auto& child : tree.getChildren()) {
        if (child == nullptr)
            continue;
        ComputeEstimatedBoundingBox(*child, box, nullptr, &rootMatrix);
        boxes.push_back({child->getType(), child->getId(), box});
    }
    return boxes;
}

void PrintBoxes(std::ostream& out, const std::vector<ItemBox>& boxes)
{
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (i > 0) {
            out << "  " << ElementName(boxes[i].type);
            if (boxes[i].id)
                out << " \"" << *boxes[i].id << '"';
        } else {
            out << ElementName(boxes[i].type);
        }
        out << ": ";
        PrintBox(out, boxes[i].box);
    }
}

json::Json BoxesJson(const std::vector<ItemBox>& boxes)
{
    json::Json items = json::Json::array();
    for (const ItemBox& box : boxes)
        items.push_back({{"type", ElementName(box.type)},
                         {"id", box.id ? json::Json(*box.id) : json::Json(nullptr)},
                         {"box", json::Box(box.box)}});
    return items;
}

} // namespace

int runBboxCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    cli::Parser parser(*findCommand("bbox"));
    std::vector<std::string> files;
    cli::LoadFlags loadFlags;
    geometry::SegmentationFlags flags;
    bool asJson = false;
    parser.app().add_option("IN", files, "The SVG document (\"-\" for standard input)");
    parser.flag("--json", asJson, "Print one JSON object (schema vksvg-bbox/1) instead of lines");
    flags.add(parser);
    parser.loadFlags(loadFlags);
    if (const auto status = parser.parse(args, out, err))
        return *status;
    const LoadOptions options = loadFlags.options();
    std::string why;
    if (!flags.check(parser, options, why))
        return parser.usage(why, err);
    if (files.empty())
        return parser.usage("no input given", err);
    if (files.size() > 1)
        return parser.usage("bbox reads one file, not " + std::to_string(files.size()), err);
    const std::string& input = files.front();

    DocumentSession session(err);
    std::shared_ptr<Node> tree;
    if (!geometry::LoadTree(input, options, tree, err))
        return Failure;
    const bool segmented = geometry::Faithful(options);
    const float tolerance = flags.tolerance.value_or(geometry::kDefaultTolerance);
    const std::vector<ItemBox> boxes = segmented ? SegmentedBoxes(*tree, tolerance) : EstimatedBoxes(*tree);
    if (!asJson) {
        PrintBoxes(out, boxes);
        return Success;
    }
    json::Json document{{"schema", "vksvg-bbox/1"},
                        {"file", io::DisplayName(input)},
                        {"method", segmented ? "segmented" : "estimated"},
                        {"tolerance", segmented ? json::Number(tolerance) : json::Json(nullptr)}};
    document["document"] = BoxesJson(boxes).front();
    json::Json items = BoxesJson(boxes);
    items.erase(items.begin());
    document["items"] = std::move(items);
    out << json::Dump(document);
    return Success;
}

} // namespace vksvg
