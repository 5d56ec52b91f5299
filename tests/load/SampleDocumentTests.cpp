// Every sample document of tests/data and examples: the messages of a strict
// and a lenient load, and the load-save round trip.
#include "LoadTestSupport.h"

#include <algorithm>
#include <filesystem>
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

struct Expectation {
    bool ok = true;
    std::list<std::string> messages;
};

// NAME.messages: "[strict ok|fail]" and "[lenient ok|fail]" sections with
// one message a line; "\n" stands for a line break inside a message. Without
// the file both loads succeed silently.
void ReadExpectations(const std::string& svgPath, Expectation& strict, Expectation& lenient)
{
    const std::string path = svgPath.substr(0, svgPath.size() - 4) + ".messages";
    std::ifstream in(path);
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

// The .svg files of tests/data and examples.
std::vector<std::string> AllSamples()
{
    std::vector<std::string> files;
    for (const char* directory : {VKSVG_TEST_DATA_DIR, VKSVG_EXAMPLES_DIR})
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            if (entry.path().extension() == ".svg")
                files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

// The style text of a document root, empty for any other item.
std::string StyleOf(const vk::svg::ItemInterface& item)
{
    if (item.getType() != vk::svg::ItemType::Document)
        return {};
    return As<vk::svg::Document>(item).getStyle().value_or("");
}

std::string WithoutStyleElement(std::string text)
{
    const std::size_t begin = text.find("<style>");
    const std::size_t end = text.find("</style>");
    if (begin != std::string::npos && end != std::string::npos)
        text.erase(begin, end + 8 - begin);
    return text;
}

// Saves, loads and saves twice more: the second and third saves agree. The
// style sheet is the exception: it is written inside comment markers that a
// reader keeps as part of the style text, so it grows by one pair a cycle.
void ExpectAStableRoundTrip(const vk::svg::ItemInterface& root)
{
    bool saved = false;
    const std::string out1 = SaveText(root, &saved);
    ASSERT_TRUE(saved);
    const LoadResult second = LoadText(out1);
    ASSERT_TRUE(second.ok) << out1;
    EXPECT_TRUE(second.messages.empty()) << second.messages.front();
    const std::string out2 = SaveText(*second.root);
    const LoadResult third = LoadText(out2);
    ASSERT_TRUE(third.ok) << out2;
    const std::string out3 = SaveText(*third.root);
    const std::string style = StyleOf(*second.root);
    if (style.empty()) {
        EXPECT_EQ(out2, out3);
        return;
    }
    EXPECT_EQ(StyleOf(*third.root), "\n/*  */" + style + "\n/*  */");
    EXPECT_EQ(WithoutStyleElement(out2), WithoutStyleElement(out3));
}

} // namespace

TEST(SampleDocuments, LoadWithTheExpectedMessagesAndSurviveTheRoundTrip)
{
    const std::vector<std::string> files = AllSamples();
    ASSERT_GE(files.size(), 30u);
    int roundTrips = 0;
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        Expectation strict;
        Expectation lenient;
        ReadExpectations(file, strict, lenient);
        const std::string text = ReadFile(file);

        const LoadResult strictLoad = LoadText(text, false);
        EXPECT_EQ(strictLoad.ok, strict.ok);
        EXPECT_EQ(strictLoad.messages, strict.messages);
        EXPECT_TRUE(strictLoad.ok || strictLoad.root == nullptr) << "a failed load hands out no tree";

        const LoadResult lenientLoad = LoadText(text, true);
        EXPECT_EQ(lenientLoad.ok, lenient.ok);
        EXPECT_EQ(lenientLoad.messages, lenient.messages);

        const LoadResult& loaded = strictLoad.ok ? strictLoad : lenientLoad;
        if (loaded.ok && loaded.root != nullptr) {
            ExpectAStableRoundTrip(*loaded.root);
            ++roundTrips;
        }
    }
    EXPECT_GE(roundTrips, 20);
}
