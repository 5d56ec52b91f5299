// Start-up and shut-down of the library: nesting, the built-in driver and
// its registration count.
#include <svg/Library.h>
#include <svg/vkSvgDriver.h>
#include <svg/vkSvgIOManager.h>

#include "io/LibraryState.h"

#include <vkSystem/vkIoDeviceMemory.h>
#include <vkSystem/vkSoftwareVersion.h>

#include <gtest/gtest.h>

using namespace vk::svg;

namespace {

bool LoadsThroughTheManager()
{
    vk::vkIoDeviceMemory device("<svg xmlns=\"http://www.w3.org/2000/svg\"><circle r=\"1\"/></svg>");
    ItemInterfacePointer<ItemInterface> root;
    std::list<std::string> messages;
    return vkSvgIOManager::get().loadSvg(root, device, "svg", nullptr, nullptr, &messages) && root != nullptr &&
           messages.empty();
}

} // namespace

TEST(Library, NestedStartUpsNeedAsManyShutDowns)
{
    ASSERT_EQ(vkSvgIOManager::sThis, nullptr);
    const int32_t before = impl::GetBuiltInDriverRegistrationCount();
    initializeVkSvg();
    vkSvgIOManager* const manager = vkSvgIOManager::sThis;
    ASSERT_NE(manager, nullptr);
    initializeVkSvg();
    EXPECT_EQ(vkSvgIOManager::sThis, manager) << "a nested start-up only counts";
    ASSERT_EQ(manager->getDrivers().size(), 1u);
    EXPECT_EQ(manager->getDrivers().front(), impl::GetBuiltInDriver());
    EXPECT_NE(dynamic_cast<vkSvgDriver*>(impl::GetBuiltInDriver()), nullptr);

    terminateVkSvg();
    EXPECT_EQ(vkSvgIOManager::sThis, manager);
    EXPECT_TRUE(LoadsThroughTheManager());
    terminateVkSvg();
    EXPECT_EQ(vkSvgIOManager::sThis, nullptr);
    EXPECT_EQ(impl::GetBuiltInDriver(), nullptr);

    // A second cycle registers a fresh driver and keeps counting.
    initializeVkSvg();
    ASSERT_NE(vkSvgIOManager::sThis, nullptr);
    EXPECT_EQ(vkSvgIOManager::get().getDrivers().size(), 1u);
    EXPECT_EQ(impl::GetBuiltInDriverRegistrationCount(), before + 2) << "never decremented";
    EXPECT_TRUE(LoadsThroughTheManager());
    // Saved documents name the library unless the host sets a stamp.
    EXPECT_EQ(vk::GetSoftwareVersionForStream().toString(), "libvkSvg 3.0.0.1226");
    vk::SetSoftwareVersionForStream("host", "9");
    EXPECT_EQ(vk::GetSoftwareVersionForStream().toString(), "host 9");
    vk::SetSoftwareVersionForStream("", "");
    terminateVkSvg();
    EXPECT_EQ(vkSvgIOManager::sThis, nullptr);
    terminateVkSvg(); // unbalanced: harmless
    EXPECT_EQ(vkSvgIOManager::sThis, nullptr);
}
