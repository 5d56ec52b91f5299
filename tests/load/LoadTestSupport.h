#ifndef VKSVG_TESTS_LOADTESTSUPPORT_H
#define VKSVG_TESTS_LOADTESTSUPPORT_H

#include <svg/Items.h>
#include <svg/Library.h>
#include <svg/vkSvgDriver.h>

#include <vkSystem/vkIoDeviceMemory.h>

#include <gtest/gtest.h>

#include <list>
#include <string>

namespace vksvgtest {

// The library is brought up once for the whole program.
class LibraryEnvironment : public ::testing::Environment {
public:
    void SetUp() override { vk::svg::initializeVkSvg(); }
    void TearDown() override { vk::svg::terminateVkSvg(); }
};

struct LoadResult {
    bool ok = false;
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> root;
    std::list<std::string> messages;
};

inline LoadResult LoadText(const std::string& text, bool lenient = false)
{
    vk::svg::vkSvgDriver driver;
    vk::vkIoDeviceMemory device(text);
    vk::svg::LoadOptions options;
    options.ignoreUnsupported = lenient;
    LoadResult result;
    result.ok = driver.loadSvg(result.root, device, "svg", nullptr, options);
    result.messages = driver.getMessages();
    return result;
}

// Saves without header comments, so that two saves can be compared.
inline std::string SaveText(const vk::svg::ItemInterface& root, bool* ok = nullptr)
{
    vk::svg::vkSvgDriver driver;
    vk::vkIoDeviceMemory device;
    vk::svg::SaveOptions options;
    options.writeHeaderComments = false;
    const bool saved = driver.saveSvg(root, device, "svg", nullptr, options);
    if (ok != nullptr)
        *ok = saved;
    return device.getData();
}

template <class T> const T& As(const vk::svg::ItemInterface& item) { return static_cast<const T&>(item); }

// The i-th child of a node.
inline const vk::svg::ItemInterface& Child(const vk::svg::ItemInterface& node, std::size_t i)
{
    const auto& children = static_cast<const vk::svg::Node&>(node).getChildren();
    auto it = children.begin();
    std::advance(it, static_cast<std::ptrdiff_t>(i));
    return **it;
}

} // namespace vksvgtest

#endif
