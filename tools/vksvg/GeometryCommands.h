#ifndef VKSVG_TOOL_GEOMETRYCOMMANDS_H
#define VKSVG_TOOL_GEOMETRYCOMMANDS_H

// What the commands that look at a document's geometry share: loading a
// tree to walk and segmenting it with the failures counted.

#include "Cli.h"
#include "CommandSupport.h"

#include <svg/Items.h>
#include <svg/Segmentation.h>

#include <vkSystem/vkLog.h>

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace vksvg {

namespace geometry {

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

// A document's segmentation, with the number of shapes that kept only
// their outline (the library logs each one).
struct Segmentation {
    std::unique_ptr<vk::svg::SegmenterVisitor> visitor;
    std::size_t failedShapes = 0;
};

inline Segmentation SegmentTree(const vk::svg::Node& tree, std::ostream& err)
{
    Segmentation result;
    const std::shared_ptr<vk::vkLog> previous = vk::vkLog::getInstance();
    auto log = std::make_shared<vk::vkLog>();
    for (int level = 0; level <= vk::vkLog::MaxLevel; ++level)
        log->setLevelEnabled(level, level <= vk::vkLog::Error);
    std::size_t& failed = result.failedShapes;
    log->setSink([&failed, &err](const vk::vkLog::Entry& entry) {
        if (entry.text == "Shape cannot be rendered. Only its contour will be visible.")
            ++failed;
        err << "vksvg: " << entry.category << ": " << entry.text << '\n';
    });
    vk::vkLog::setInstance(log);
    result.visitor = std::make_unique<vk::svg::SegmenterVisitor>(tree);
    vk::vkLog::setInstance(previous);
    return result;
}

} // namespace geometry

} // namespace vksvg

#endif
