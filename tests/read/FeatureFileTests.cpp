// Every document of the feature folder, read by the full profile, against
// the item tree it is expected to give: the messages of the load, then the
// tree as the writer prints it, which shows every field of every item.
// VKSVG_UPDATE_EXPECTED=1 rewrites the expected files; review their diff.
#include <svg/Items.h>
#include <svg/vkSvgDriver.h>

#include <vkSystem/vkIoDeviceMemory.h>

#include <gtest/gtest.h>

#include <dirent.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace vk::svg;

const std::string kFolder = std::string(VKSVG_TEST_DATA_DIR) + "/full";

std::vector<std::string> FeatureFiles()
{
    std::vector<std::string> names;
    if (DIR* dir = opendir(kFolder.c_str())) {
        while (const dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".svg") == 0)
                names.push_back(name.substr(0, name.size() - 4));
        }
        closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadFile(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::string Describe(const std::string& document)
{
    vkSvgDriver driver;
    vk::vkIoDeviceMemory input(document);
    LoadOptions loadOptions;
    loadOptions.profile = LoadProfile::Full;
    ItemInterfacePointer<ItemInterface> root;
    const bool loaded = driver.loadSvg(root, input, "svg", nullptr, loadOptions);
    std::string text;
    for (const std::string& message : driver.getMessages())
        text += "# " + message + "\n";
    if (!loaded)
        return text + "# load failed\n";
    vk::vkIoDeviceMemory output;
    SaveOptions saveOptions;
    saveOptions.writeHeaderComments = false;
    saveOptions.prettyPrint = true;
    if (!driver.saveSvg(*root, output, "svg", nullptr, saveOptions))
        return text + "# save failed\n";
    return text + output.getData();
}

class FeatureFile : public ::testing::TestWithParam<std::string> {};

TEST_P(FeatureFile, GivesTheExpectedItems)
{
    const std::string base = kFolder + "/" + GetParam();
    const std::string actual = Describe(ReadFile(base + ".svg"));
    const std::string expectedPath = base + ".expected";
    if (std::getenv("VKSVG_UPDATE_EXPECTED") != nullptr)
        std::ofstream(expectedPath, std::ios::binary) << actual;
    EXPECT_EQ(actual, ReadFile(expectedPath)) << "for " << base << ".svg";
}

INSTANTIATE_TEST_SUITE_P(Folder, FeatureFile, ::testing::ValuesIn(FeatureFiles()),
                         [](const ::testing::TestParamInfo<std::string>& param) { return param.param; });

} // namespace
