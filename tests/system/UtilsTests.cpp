#include <vkSystem/LibInitCounter.h>
#include <vkSystem/vkDirUtils.h>
#include <vkSystem/vkLog.h>
#include <vkSystem/vkSoftwareVersion.h>
#include <vkSystem/vkSystemUtils.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

using vk::vkDirUtils;

namespace {

// True when text has the shape of pattern, where '9' stands for any digit and
// '+' for either sign.
bool hasShape(const std::string& text, const std::string& pattern)
{
    return text.size() == pattern.size() && std::equal(text.begin(), text.end(), pattern.begin(), [](char t, char p) {
               return p == '9' ? t >= '0' && t <= '9' : p == '+' ? t == '+' || t == '-' : t == p;
           });
}

} // namespace

TEST(DirUtils, ExtractFileExtension)
{
    const struct {
        const char* path;
        bool withoutDot;
        int parts;
        const char* expected;
    } cases[] = {
        {"a/b/c.svg", true, 1, "svg"},
        {"a/b/c.svg", false, 1, ".svg"},
        {"drawing.svg", true, 1, "svg"},
        {"C.SVG", true, 1, "SVG"},
        {"archive.tar.gz", true, 1, "gz"},
        {"archive.tar.gz", true, 2, "tar.gz"},
        {"archive.tar.gz", false, 2, ".tar.gz"},
        {"one.gz", true, 3, "gz"},
        {"dir.d/file", true, 1, ""},
        {"noext", true, 1, ""},
        {".profile", true, 1, ""},
        {"dir/.profile", true, 1, ""},
        {".config.json", true, 1, "json"},
        {"trailing.", true, 1, ""},
        {"dir/", true, 1, ""},
        {"", true, 1, ""},
        {"x.svg", true, 0, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(vkDirUtils::ExtractFileExtension(c.path, c.withoutDot, c.parts), c.expected)
            << c.path << " " << c.withoutDot << " " << c.parts;
}

TEST(SystemUtils, IsoDateTimeInUtcAndLocalForms)
{
    EXPECT_TRUE(hasShape(vk::vkSystemUtils::GetCurrentDateTimeISO(true), "9999-99-99T99:99:99Z"));
    EXPECT_TRUE(hasShape(vk::vkSystemUtils::GetCurrentDateTimeISO(false), "9999-99-99T99:99:99+99:99"));
    // Sometime after this code was written and well before its far future.
    const int64_t now = vk::vkSystemUtils::GetMSecElapsedSinceEpoch();
    EXPECT_GT(now, 1700000000000LL);
    EXPECT_LT(now, 4102444800000LL);
}

TEST(LibInitCounter, OnlyTheOutermostCallsReportTrue)
{
    vk::impl::LibInitCounter counter("test", false);
    EXPECT_TRUE(counter.incrementInitCounter());
    EXPECT_FALSE(counter.incrementInitCounter());
    EXPECT_FALSE(counter.decrementInitCounter());
    EXPECT_TRUE(counter.decrementInitCounter());
    EXPECT_EQ(counter.getCount(), 0);
    // A new cycle starts over.
    EXPECT_TRUE(counter.incrementInitCounter());
    EXPECT_TRUE(counter.decrementInitCounter());
}

TEST(LibInitCounter, UnbalancedDecrementChangesNothingAndMayWarn)
{
    auto log = std::make_shared<vk::vkLog>();
    std::vector<std::string> texts;
    log->setSink([&texts](const vk::vkLog::Entry& entry) { texts.push_back(entry.category + ":" + entry.text); });
    vk::vkLog::setInstance(log);

    vk::impl::LibInitCounter quiet("quiet", false);
    EXPECT_FALSE(quiet.decrementInitCounter());
    EXPECT_EQ(quiet.getCount(), 0);
    EXPECT_TRUE(quiet.incrementInitCounter()) << "the stray decrement left no debt";

    vk::impl::LibInitCounter loud("svg", true);
    EXPECT_FALSE(loud.decrementInitCounter());
    vk::vkLog::setInstance(nullptr);

    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts[0], "init:Library svg terminated more often than initialised");
}

TEST(LibInitCounter, ConcurrentNestingFindsExactlyOneFirstAndOneLast)
{
    using Counter = vk::impl::LibInitCounter;
    Counter counter("threads", false);
    // Four threads make a thousand calls each; returns how many reported true.
    const auto race = [&](bool (Counter::*call)()) {
        std::atomic<int> trues{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&] {
                for (int i = 0; i < 1000; ++i)
                    trues += (counter.*call)() ? 1 : 0;
            });
        for (auto& thread : threads)
            thread.join();
        return trues.load();
    };
    EXPECT_EQ(race(&Counter::incrementInitCounter), 1);
    EXPECT_EQ(race(&Counter::decrementInitCounter), 1);
    EXPECT_EQ(counter.getCount(), 0);
}

TEST(SoftwareVersion, HostStampWinsOverTheDefault)
{
    vk::SetDefaultSoftwareVersionForStream("libexample", "1.2");
    EXPECT_EQ(vk::GetSoftwareVersionForStream().toString(), "libexample 1.2");
    vk::SetSoftwareVersionForStream("HostApp", "7.0 beta");
    EXPECT_EQ(vk::GetSoftwareVersionForStream().toString(), "HostApp 7.0 beta");
    EXPECT_EQ(vk::GetSoftwareVersionForStream().getName(), "HostApp");
    vk::SetSoftwareVersionForStream("", "");
    EXPECT_EQ(vk::GetSoftwareVersionForStream().toString(), "libexample 1.2");
    EXPECT_EQ(vk::vkSoftwareVersion("", "2.0").toString(), "2.0");
    EXPECT_EQ(vk::vkSoftwareVersion("tool", "").toString(), "tool");
}
