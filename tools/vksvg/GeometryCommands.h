#ifndef VKSVG_TOOL_GEOMETRYCOMMANDS_H
#define VKSVG_TOOL_GEOMETRYCOMMANDS_H

// What the commands that look at a document's geometry share: loading a
// tree to walk, the --tolerance option, and segmenting it with the failed
// shapes counted and listed.

#include "Cli.h"
#include "CommandLine.h"
#include "LoadReport.h"
#include "Session.h"

#include <svg/Items.h>
#include <svg/Segmentation.h>

#include <cmath>
#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace vksvg {

namespace geometry {

constexpr float kDefaultTolerance = 0.25f;

// Loads `file` as a tree to walk: a document as it is, any other root
// inside a group of its own.
inline bool LoadTree(const std::string& file, const vk::svg::LoadOptions& options, std::shared_ptr<vk::svg::Node>& tree,
                     std::ostream& err)
{
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> root;
    if (!LoadDocument(file, options, root, err))
        return false;
    if (root == nullptr) {
        err << "vksvg: \"" << file << "\" holds no drawing\n";
        return false;
    }
    const vk::svg::ItemType type = root->getType();
    if (type == vk::svg::ItemType::Document || type == vk::svg::ItemType::Node) {
        tree = std::static_pointer_cast<vk::svg::Node>(std::shared_ptr<vk::svg::ItemInterface>(root));
    } else {
        tree = std::make_shared<vk::svg::Node>();
        tree->addChild(std::shared_ptr<vk::svg::ItemInterface>(root), true);
    }
    return true;
}

// The segmentation flag of mesh, render and bbox, next to the load flags.
struct SegmentationFlags {
    std::string toleranceText;
    std::optional<float> tolerance;

    void add(cli::Parser& parser)
    {
        parser.value("--tolerance", toleranceText, "T",
                     "Flatten curves to within T (default 0.25; pixels for render, document units for mesh and "
                     "bbox); not with --subset");
    }

    // The value against the load profile: --subset means the old
    // segmentation, which has no tolerance to set. False with `why`.
    bool check(const cli::Parser& parser, const vk::svg::LoadOptions& load, std::string& why)
    {
        if (parser.given("--tolerance")) {
            float value = 0.0f;
            if (!cli::ParseTolerance(toleranceText, value, why))
                return false;
            tolerance = value;
        }
        if (tolerance && load.profile == vk::svg::LoadProfile::Subset) {
            why = "--tolerance needs the default segmentation, not --subset";
            return false;
        }
        return true;
    }
};

// Whether the command segments faithfully: always, except under --subset,
// which keeps the library's long-standing results exactly.
inline bool Faithful(const vk::svg::LoadOptions& load) { return load.profile != vk::svg::LoadProfile::Subset; }

// A document's segmentation, with the shapes that kept only their outline.
struct Segmentation {
    std::unique_ptr<vk::svg::SegmenterVisitor> visitor;
    std::size_t failedShapes = 0;
    // The walk went on past failed shapes: nothing is missing.
    bool faithful = false;
    // Some shapes failed, yet every shape is there.
    bool partial() const { return faithful && failedShapes > 0; }
};

// One line per failed shape, as `vksvg: shape <index> "<id>": <reason>`.
inline void PrintFailures(const vk::svg::SegmenterVisitor& visitor, std::ostream& err)
{
    for (const vk::svg::SegmentationFailure& failure : visitor.getFailures()) {
        err << "vksvg: shape " << failure.index;
        if (failure.id)
            err << " \"" << *failure.id << '"';
        err << ": " << failure.reason << '\n';
    }
}

// Segments `tree`: under `options` when given (failures listed on `err`),
// else as the library always has (failures counted from its log).
inline Segmentation SegmentTree(const vk::svg::Node& tree, std::ostream& err,
                                const vk::svg::SegmentationOptions* options = nullptr)
{
    Segmentation result;
    std::size_t logged = 0;
    {
        // The old segmentation tells of a failed fill only through the log.
        const LogCapture capture([&logged, &err](const vk::vkLog::Entry& entry) {
            if (entry.text == "Shape cannot be rendered. Only its contour will be visible.")
                ++logged;
            PrintLogEntry(entry, err);
        });
        if (options != nullptr)
            result.visitor = std::make_unique<vk::svg::SegmenterVisitor>(tree, *options);
        else
            result.visitor = std::make_unique<vk::svg::SegmenterVisitor>(tree);
    }
    if (options != nullptr) {
        result.faithful = true;
        result.failedShapes = result.visitor->getFailures().size();
        PrintFailures(*result.visitor, err);
    } else {
        result.failedShapes = logged;
    }
    return result;
}

// Every shape in the order the segmenter visits them: its id and the
// transform it is drawn under.
class ShapeWalk : private vk::svg::VisitorBase<ShapeWalk> {
    friend class vk::svg::VisitorBase<ShapeWalk>;

public:
    struct Shape {
        std::optional<std::string> id;
        Wm4::Matrix3<float> transform;
    };

    explicit ShapeWalk(const vk::svg::Node& root) { walk(root, Wm4::Matrix3<float>::IDENTITY); }
    const std::vector<Shape>& shapes() const { return mShapes; }

    static bool IsShape(vk::svg::ItemType type)
    {
        return type == vk::svg::ItemType::Line || type == vk::svg::ItemType::Rect ||
               type == vk::svg::ItemType::Circle || type == vk::svg::ItemType::Path;
    }

    // The number of shapes in the subtree of `item`, itself included.
    static std::size_t CountShapes(const vk::svg::ItemInterface& item)
    {
        const vk::svg::ItemType type = item.getType();
        if (IsShape(type))
            return 1;
        if (type != vk::svg::ItemType::Node && type != vk::svg::ItemType::Document)
            return 0;
        std::size_t count = 0;
        for (const auto& child : static_cast<const vk::svg::Node&>(item).getChildren())
            if (child != nullptr)
                count += CountShapes(*child);
        return count;
    }

private:
    bool visitItem(const vk::svg::ItemInterface& item, const Wm4::Matrix3<float>& transform,
                   const vk::svg::RenderingProperties&)
    {
        if (IsShape(item.getType()))
            mShapes.push_back(Shape{item.getId(), transform});
        return true;
    }

    std::vector<Shape> mShapes;
};

} // namespace geometry

} // namespace vksvg

#endif
