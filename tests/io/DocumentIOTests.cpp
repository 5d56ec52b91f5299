// The reentrant entry points: the same results as the manager, messages
// appended with diagnostics that match them entry for entry, any file name,
// and the places that diagnostics give for known faults.
#include <svg/DocumentIO.h>
#include <svg/Library.h>
#include <svg/vkSvgIOManager.h>

#include <vkSystem/vkIoDeviceMemory.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <dirent.h>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <tuple>
#include <unistd.h>
#include <vector>

using namespace vk::svg;

namespace {

class DocumentIO : public ::testing::Test {
protected:
    void SetUp() override { initializeVkSvg(); }
    void TearDown() override { terminateVkSvg(); }
};

std::vector<std::string> SvgFilesIn(const std::string& folder)
{
    std::vector<std::string> files;
    if (DIR* dir = opendir(folder.c_str())) {
        while (const dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".svg") == 0)
                files.push_back(folder + "/" + name);
        }
        closedir(dir);
    }
    return files;
}

std::string SaveThroughManager(const ItemInterface& root)
{
    vk::vkIoDeviceMemory device;
    SaveOptions options;
    options.writeHeaderComments = false;
    vkSvgIOManager::get().saveSvg(root, device, "svg", nullptr, &options, nullptr);
    return device.getData();
}

std::string TempPath(const std::string& name)
{
    return ::testing::TempDir() + "vksvg_documentio_" + std::to_string(getpid()) + "_" + name;
}

void WriteFile(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::vector<std::string> TextsOf(const std::vector<Diagnostic>& diagnostics)
{
    std::vector<std::string> texts;
    for (const Diagnostic& d : diagnostics)
        texts.push_back(d.text);
    return texts;
}

} // namespace

TEST_F(DocumentIO, LoadsAndSavesAsTheManagerDoesOnEveryTestDocument)
{
    std::vector<std::string> files = SvgFilesIn(VKSVG_TEST_DATA_DIR);
    const std::vector<std::string> full = SvgFilesIn(std::string(VKSVG_TEST_DATA_DIR) + "/full");
    files.insert(files.end(), full.begin(), full.end());
    ASSERT_GT(files.size(), 40u);
    for (const std::string& file : files)
        for (LoadProfile profile : {LoadProfile::Subset, LoadProfile::Full})
            for (bool lenient : {false, true}) {
                SCOPED_TRACE(file + (profile == LoadProfile::Full ? " full" : " subset") + (lenient ? " lenient" : ""));
                LoadOptions options;
                options.ignoreUnsupported = lenient;
                options.profile = profile;
                ItemInterfacePointer<ItemInterface> expectedRoot;
                std::list<std::string> expectedMessages;
                const bool expectedOk =
                    vkSvgIOManager::get().loadSvg(expectedRoot, file, nullptr, &options, &expectedMessages);

                ItemInterfacePointer<ItemInterface> root;
                std::list<std::string> messages;
                std::vector<Diagnostic> diagnostics;
                EXPECT_EQ(LoadSvgDocument(root, file, options, &messages, &diagnostics), expectedOk);
                EXPECT_EQ(messages, expectedMessages);
                EXPECT_EQ(TextsOf(diagnostics), std::vector<std::string>(messages.begin(), messages.end()));
                ASSERT_EQ(root == nullptr, expectedRoot == nullptr);
                if (root == nullptr)
                    continue;

                vk::vkIoDeviceMemory device;
                SaveOptions save;
                save.writeHeaderComments = false;
                std::list<std::string> saveMessages;
                EXPECT_TRUE(SaveSvgDocument(*root, device, save, &saveMessages));
                EXPECT_TRUE(saveMessages.empty());
                EXPECT_EQ(device.getData(), SaveThroughManager(*expectedRoot));
            }
}

TEST_F(DocumentIO, DiagnosticsPlaceKnownFaults)
{
    const struct {
        const char* name;
        const char* text;
        LoadProfile profile;
        bool lenient;
        bool ok;
        // Each message: its severity, line and column (0: none).
        std::vector<std::tuple<DiagnosticSeverity, int, int>> expected;
    } cases[] = {
        {"unsupported element on line 2",
         "<svg xmlns=\"http://www.w3.org/2000/svg\">\n  <foo/>\n</svg>\n",
         LoadProfile::Subset,
         false,
         false,
         {{DiagnosticSeverity::Error, 2, 3}}},
        {"skipped elements, each where its tag begins",
         "<svg xmlns=\"http://www.w3.org/2000/svg\">\n<defs>\n<b/></defs>\n <rect width=\"1\"/>\n   "
         "<foo>x</foo>\n</svg>",
         LoadProfile::Subset,
         true,
         true,
         {{DiagnosticSeverity::Warning, 2, 1}, {DiagnosticSeverity::Warning, 5, 4}}},
        {"attribute of a tag over several lines",
         "<svg xmlns=\"http://www.w3.org/2000/svg\">\n  <g>\n    <rect\n      width=\"x\"/></g>\n</svg>",
         LoadProfile::Subset,
         false,
         false,
         {{DiagnosticSeverity::Error, 3, 5}, {DiagnosticSeverity::Error, 3, 5}}},
        {"child of a shape, found at its start tag",
         "<svg xmlns=\"http://www.w3.org/2000/svg\">\n<text>\n\n <g/></text></svg>",
         LoadProfile::Subset,
         false,
         false,
         {{DiagnosticSeverity::Error, 4, 2}}},
        {"unclosed tag on line 3, found by the parser on line 4",
         "<svg xmlns=\"http://www.w3.org/2000/svg\">\n<g>\n  <rect width=\"1\" height=\"1\">\n</g>\n</svg>\n",
         LoadProfile::Subset,
         false,
         false,
         {{DiagnosticSeverity::Error, 4, 5}}},
        {"the same under the full profile",
         "<svg xmlns=\"http://www.w3.org/2000/svg\">\n<g>\n  <rect width=\"1\" height=\"1\">\n</g>\n</svg>\n",
         LoadProfile::Full,
         false,
         false,
         {{DiagnosticSeverity::Error, 4, 5}}},
        {"a character beyond ASCII counts once",
         "<svg xmlns=\"http://www.w3.org/2000/svg\"><text>\xC3\xA9\xC3\xA9</text><foo/></svg>",
         LoadProfile::Subset,
         false,
         false,
         {{DiagnosticSeverity::Error, 1, 56}}},
        {"the full profile points at the element it emits",
         "<svg xmlns=\"http://www.w3.org/2000/svg\">\n<clipPath id=\"c\"/>\n<rect clip-path=\"url(#c)\" "
         "width=\"1\" height=\"1\"/>\n</svg>",
         LoadProfile::Full,
         false,
         true,
         {{DiagnosticSeverity::Warning, 3, 1}}},
        {"the full profile: a failure of the walk, at the element that failed",
         "<svg xmlns=\"http://www.w3.org/2000/svg\">\n<g id=\"a\">\n  <use href=\"#a\"/>\n</g>\n</svg>",
         LoadProfile::Full,
         false,
         false,
         {{DiagnosticSeverity::Error, 3, 3}}},
        {"the full profile: a summary of what the parse dropped has no place",
         "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:x=\"urn:x\">\n<x:a/>\n</svg>",
         LoadProfile::Full,
         false,
         true,
         {{DiagnosticSeverity::Warning, 0, 0}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LoadOptions options;
        options.profile = c.profile;
        options.ignoreUnsupported = c.lenient;
        vk::vkIoDeviceMemory device{std::string(c.text)};
        ItemInterfacePointer<ItemInterface> root;
        std::list<std::string> messages;
        std::vector<Diagnostic> diagnostics;
        EXPECT_EQ(LoadSvgDocument(root, device, options, &messages, &diagnostics), c.ok);
        EXPECT_EQ(TextsOf(diagnostics), std::vector<std::string>(messages.begin(), messages.end()));
        ASSERT_EQ(diagnostics.size(), c.expected.size()) << ::testing::PrintToString(TextsOf(diagnostics));
        for (std::size_t i = 0; i < diagnostics.size(); ++i) {
            const auto [severity, line, column] = c.expected[i];
            SCOPED_TRACE(diagnostics[i].text);
            EXPECT_EQ(diagnostics[i].severity, severity);
            EXPECT_EQ(diagnostics[i].line.value_or(0), line);
            EXPECT_EQ(diagnostics[i].column.value_or(0), column);
        }
    }
}

TEST_F(DocumentIO, DiagnosticsFollowTheMessageLimits)
{
    std::string text = "<svg xmlns=\"http://www.w3.org/2000/svg\">\n";
    for (int i = 0; i < 1100; ++i)
        text += "<b/>\n";
    text += "<" + std::string(2000, 'v') + "/>\n</svg>";
    LoadOptions lenient;
    lenient.ignoreUnsupported = true;
    vk::vkIoDeviceMemory device(text);
    ItemInterfacePointer<ItemInterface> root;
    std::list<std::string> messages{"earlier"};
    std::vector<Diagnostic> diagnostics;
    ASSERT_TRUE(LoadSvgDocument(root, device, lenient, &messages, &diagnostics));
    ASSERT_EQ(messages.size(), 1025u) << "1024 of this load's, after what was there";
    EXPECT_EQ(messages.front(), "earlier");
    messages.pop_front();
    EXPECT_EQ(TextsOf(diagnostics), std::vector<std::string>(messages.begin(), messages.end()));
    EXPECT_EQ(diagnostics.front().line, 2 + 1101 - 1024);
    EXPECT_EQ(diagnostics.back().line, 1102);
    EXPECT_EQ(diagnostics.back().text.size(), 1024u);
}

TEST_F(DocumentIO, ReadsAndWritesAnyFileName)
{
    const std::string document = "<svg xmlns=\"http://www.w3.org/2000/svg\"><rect width=\"2\" height=\"3\"/></svg>";
    for (const char* name : {"icon.SVG", "icon", "icon.svg.bak", "icon.Svg"}) {
        SCOPED_TRACE(name);
        const std::string path = TempPath(name);
        WriteFile(path, document);

        // The manager finds no driver for these keys and stays silent.
        std::list<std::string> messages{"kept"};
        ItemInterfacePointer<ItemInterface> root;
        EXPECT_FALSE(vkSvgIOManager::get().loadSvg(root, path, nullptr, nullptr, &messages));
        EXPECT_EQ(messages, std::list<std::string>{"kept"});

        EXPECT_TRUE(LoadSvgDocument(root, path, LoadOptions(), &messages));
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(messages, std::list<std::string>{"kept"});

        SaveOptions save;
        save.writeHeaderComments = false;
        EXPECT_TRUE(SaveSvgDocument(*root, path, save, &messages));
        EXPECT_EQ(ReadFile(path), SaveThroughManager(*root));
        std::remove(path.c_str());
    }
}

TEST_F(DocumentIO, FailuresAreMessagesWithoutAPlace)
{
    ItemInterfacePointer<ItemInterface> root;
    std::list<std::string> messages;
    std::vector<Diagnostic> diagnostics;
    EXPECT_FALSE(LoadSvgDocument(root, TempPath("missing/none.svg"), LoadOptions(), &messages, &diagnostics));
    EXPECT_EQ(messages, std::list<std::string>{"Fail to open file"});
    ASSERT_EQ(diagnostics.size(), 1u);
    EXPECT_EQ(diagnostics[0].severity, DiagnosticSeverity::Error);
    EXPECT_FALSE(diagnostics[0].line.has_value());
    EXPECT_FALSE(diagnostics[0].column.has_value());

    const Document document;
    EXPECT_FALSE(SaveSvgDocument(document, TempPath("missing/none.svg"), SaveOptions(), &messages, &diagnostics));
    EXPECT_EQ(messages, (std::list<std::string>{"Fail to open file", "Fail to open file"}));
    EXPECT_EQ(diagnostics.size(), 2u);

    vk::vkIoDeviceMemory empty{std::string()};
    EXPECT_FALSE(LoadSvgDocument(root, empty, LoadOptions(), nullptr, &diagnostics));
    ASSERT_EQ(diagnostics.size(), 3u);
    EXPECT_EQ(diagnostics[2].text, "Document is empty");
    EXPECT_EQ(root, nullptr);
}

// The manager hands a driver's messages over by replacing what the list
// held, whether the request succeeded or not.
TEST_F(DocumentIO, TheManagerReplacesTheListWhenADriverRan)
{
    std::list<std::string> messages{"earlier"};
    ItemInterfacePointer<ItemInterface> root;
    vk::vkIoDeviceMemory bad{std::string("<svg xmlns=\"http://www.w3.org/2000/svg\"><foo/></svg>")};
    EXPECT_FALSE(vkSvgIOManager::get().loadSvg(root, bad, "svg", nullptr, nullptr, &messages));
    EXPECT_EQ(messages, std::list<std::string>{"Found unsupported tag in svg : \"foo\""});
    vk::vkIoDeviceMemory good{std::string("<svg xmlns=\"http://www.w3.org/2000/svg\"/>")};
    EXPECT_TRUE(vkSvgIOManager::get().loadSvg(root, good, "svg", nullptr, nullptr, &messages));
    EXPECT_TRUE(messages.empty());
}
