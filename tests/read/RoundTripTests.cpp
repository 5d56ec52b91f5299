// A document read by the full profile and saved is in the library's own
// subset: reading that output again and saving it gives the same bytes.
#include <svg/Items.h>
#include <svg/vkSvgDriver.h>

#include <vkSystem/vkIoDeviceMemory.h>

#include <gtest/gtest.h>

#include <dirent.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace vk::svg;

std::vector<std::string> SampleFiles()
{
    std::vector<std::string> files;
    for (const std::string& folder : {std::string(VKSVG_TEST_DATA_DIR) + "/full", std::string(VKSVG_EXAMPLES_DIR)}) {
        DIR* dir = opendir(folder.c_str());
        if (dir == nullptr)
            continue;
        while (const dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".svg") == 0)
                files.push_back(folder + "/" + name);
        }
        closedir(dir);
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool Cycle(const std::string& input, LoadProfile profile, std::string& output, std::string& messages)
{
    vkSvgDriver driver;
    vk::vkIoDeviceMemory in(input);
    LoadOptions loadOptions;
    loadOptions.profile = profile;
    ItemInterfacePointer<ItemInterface> root;
    const bool loaded = driver.loadSvg(root, in, "svg", nullptr, loadOptions);
    for (const std::string& m : driver.getMessages())
        messages += m + "\n";
    if (!loaded)
        return false;
    vk::vkIoDeviceMemory out;
    SaveOptions saveOptions;
    saveOptions.writeHeaderComments = false;
    if (!driver.saveSvg(*root, out, "svg", nullptr, saveOptions))
        return false;
    output = out.getData();
    return true;
}

// The attributes that only the full profile reads back.
bool UsesPaintExtensions(const std::string& text)
{
    for (const char* name : {"fill-rule=", "clip-rule=", "stroke-miterlimit=", "stroke-dashoffset="})
        if (text.find(name) != std::string::npos)
            return true;
    return false;
}

TEST(FullProfileRoundTrip, SecondCycleGivesIdenticalBytes)
{
    const std::vector<std::string> files = SampleFiles();
    ASSERT_GE(files.size(), 10u);
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        std::ifstream stream(file, std::ios::binary);
        std::ostringstream text;
        text << stream.rdbuf();
        std::string first;
        std::string second;
        std::string messages;
        ASSERT_TRUE(Cycle(text.str(), LoadProfile::Full, first, messages)) << messages;
        // The subset profile reads everything the full one writes but the
        // four paint fields that came with it; those read back under the
        // full profile.
        const LoadProfile again = UsesPaintExtensions(first) ? LoadProfile::Full : LoadProfile::Subset;
        messages.clear();
        ASSERT_TRUE(Cycle(first, again, second, messages)) << messages << first;
        EXPECT_EQ(first, second);
    }
}

} // namespace
