// Every sample document of tests/data and examples: the messages of a strict
// and a lenient load, and the load-save round trip.
#include "LoadTestSupport.h"

#include <svg/Items.h>

#include <dirent.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <vector>

using namespace vksvgtest;

namespace {

const ::testing::Environment* const kLibrary = ::testing::AddGlobalTestEnvironment(new LibraryEnvironment);

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

bool FileExists(const std::string& path) { return std::ifstream(path).good(); }

std::vector<std::string> SvgFiles(const std::string& directory)
{
    std::vector<std::string> files;
    if (DIR* dir = opendir(directory.c_str())) {
        while (const dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".svg") == 0)
                files.push_back(directory + "/" + name);
        }
        closedir(dir);
    }
    std::sort(files.begin(), files.end());
    return files;
}

struct Expectation {
    bool ok = true;
    std::list<std::string> messages;
};

// NAME.messages: "[strict ok|fail]" and "[lenient ok|fail]" sections with
// one message a line; "\n" stands for a line break inside a message.
void ReadExpectations(const std::string& svgPath, Expectation& strict, Expectation& lenient)
{
    const std::string path = svgPath.substr(0, svgPath.size() - 4) + ".messages";
    if (!FileExists(path))
        return;
    std::istringstream in(ReadFile(path));
    Expectation* current = nullptr;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line[0] == '[') {
            current = line.rfind("[strict", 0) == 0 ? &strict : &lenient;
            current->ok = line.find(" ok]") != std::string::npos;
            continue;
        }
        ASSERT_NE(current, nullptr) << path << ": message before any section";
        for (std::size_t pos; (pos = line.find("\\n")) != std::string::npos;)
            line.replace(pos, 2, "\n");
        current->messages.push_back(line);
    }
}

std::vector<std::string> AllSamples()
{
    std::vector<std::string> files = SvgFiles(VKSVG_TEST_DATA_DIR);
    const std::vector<std::string> examples = SvgFiles(VKSVG_EXAMPLES_DIR);
    files.insert(files.end(), examples.begin(), examples.end());
    return files;
}

// The style sheet is written inside comment markers that a reader keeps as
// part of the style text, so it grows by one pair of them on every cycle.
std::string WithoutStyleElement(std::string text)
{
    const std::size_t begin = text.find("<style>");
    const std::size_t end = text.find("</style>");
    if (begin != std::string::npos && end != std::string::npos)
        text.erase(begin, end + 8 - begin);
    return text;
}

const vk::svg::Document* AsDocument(const vk::svg::ItemInterface* item)
{
    return item != nullptr && item->getType() == vk::svg::ItemType::Document
               ? static_cast<const vk::svg::Document*>(item)
               : nullptr;
}

} // namespace

TEST(SampleDocuments, LoadWithExactlyTheExpectedMessages)
{
    const std::vector<std::string> files = AllSamples();
    ASSERT_GE(files.size(), 30u);
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        Expectation strict;
        Expectation lenient;
        ReadExpectations(file, strict, lenient);
        const std::string text = ReadFile(file);

        const LoadResult strictLoad = LoadText(text, false);
        EXPECT_EQ(strictLoad.ok, strict.ok);
        EXPECT_EQ(strictLoad.messages, strict.messages);
        if (!strictLoad.ok) {
            EXPECT_EQ(strictLoad.root, nullptr) << "a failed load hands out no tree";
        }

        const LoadResult lenientLoad = LoadText(text, true);
        EXPECT_EQ(lenientLoad.ok, lenient.ok);
        EXPECT_EQ(lenientLoad.messages, lenient.messages);
    }
}

TEST(SampleDocuments, SecondAndThirdSavesOfTheRoundTripAreIdentical)
{
    int roundTrips = 0;
    for (const std::string& file : AllSamples()) {
        SCOPED_TRACE(file);
        const std::string text = ReadFile(file);
        LoadResult first = LoadText(text, false);
        if (!first.ok)
            first = LoadText(text, true);
        if (!first.ok || first.root == nullptr)
            continue;

        bool saved = false;
        const std::string out1 = SaveText(*first.root, &saved);
        ASSERT_TRUE(saved);
        const LoadResult second = LoadText(out1, false);
        ASSERT_TRUE(second.ok) << out1;
        EXPECT_TRUE(second.messages.empty()) << second.messages.front();
        const std::string out2 = SaveText(*second.root);
        const LoadResult third = LoadText(out2, false);
        ASSERT_TRUE(third.ok) << out2;
        const std::string out3 = SaveText(*third.root);

        const vk::svg::Document* document = AsDocument(second.root.get());
        if (document != nullptr && document->getStyle() && !document->getStyle()->empty()) {
            const vk::svg::Document* again = AsDocument(third.root.get());
            ASSERT_NE(again, nullptr);
            EXPECT_EQ(*again->getStyle(), "\n/*  */" + *document->getStyle() + "\n/*  */");
            EXPECT_EQ(WithoutStyleElement(out2), WithoutStyleElement(out3));
        } else {
            EXPECT_EQ(out2, out3);
        }
        ++roundTrips;
    }
    EXPECT_GE(roundTrips, 20);
}
