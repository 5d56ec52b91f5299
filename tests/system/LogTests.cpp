#include <vkSystem/vkLog.h>
#include <vkSystem/vkSystemUtils.h>
#include <vkSystem/vkThread.h>

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <vector>

using vk::vkLog;

namespace {

// Installs a log whose entries are collected, and removes it again.
class CapturedLog {
public:
    CapturedLog() : mLog(std::make_shared<vkLog>())
    {
        mLog->setSink([this](const vkLog::Entry& entry) {
            std::lock_guard<std::mutex> lock(mMutex);
            mEntries.push_back(entry);
        });
        vkLog::setInstance(mLog);
    }
    ~CapturedLog() { vkLog::setInstance(nullptr); }

    vkLog& log() { return *mLog; }
    std::vector<vkLog::Entry> entries()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        return mEntries;
    }

private:
    std::shared_ptr<vkLog> mLog;
    std::mutex mMutex;
    std::vector<vkLog::Entry> mEntries;
};

} // namespace

TEST(Log, EntriesCarryTimeThreadCategoryLevelAndText)
{
    CapturedLog captured;
    const int64_t before = vk::vkSystemUtils::GetMSecElapsedSinceEpoch();
    vkLog::Log("driver", vkLog::Warning, "first");
    vkLog::Log("svg", vkLog::Error, "second");
    const int64_t after = vk::vkSystemUtils::GetMSecElapsedSinceEpoch();

    const auto entries = captured.entries();
    ASSERT_EQ(entries.size(), 2u);
    const auto show = [](const vkLog::Entry& e) { return e.category + " " + std::to_string(e.level) + " " + e.text; };
    EXPECT_EQ(show(entries[0]), "driver 2 first");
    EXPECT_EQ(show(entries[1]), "svg " + std::to_string(vkLog::Error) + " second");
    for (const auto& entry : entries) {
        EXPECT_GE(entry.timeMs, before);
        EXPECT_LE(entry.timeMs, after);
        EXPECT_EQ(entry.threadId, vk::vkThread::CurrentThreadId());
    }
}

TEST(Log, DisabledLevelsAreDroppedOthersKept)
{
    CapturedLog captured;
    captured.log().setLevelEnabled(vkLog::Error, false);
    vkLog::Log("svg", vkLog::Error, "dropped");
    vkLog::Log("svg", vkLog::Warning, "kept");
    captured.log().setLevelEnabled(vkLog::Error, true);
    vkLog::Log("svg", vkLog::Error, "kept again");

    const auto entries = captured.entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].text, "kept");
    EXPECT_EQ(entries[1].text, "kept again");

    // Levels outside the supported range are never enabled.
    EXPECT_FALSE(captured.log().isLevelEnabled(-1));
    EXPECT_FALSE(captured.log().isLevelEnabled(vkLog::MaxLevel + 1));
}

TEST(Log, WithoutAnInstalledLogNothingIsWritten)
{
    CapturedLog captured;
    vkLog::Log("svg", vkLog::Error, "seen");
    vkLog::setInstance(nullptr);
    EXPECT_EQ(vkLog::getInstance(), nullptr);
    vkLog::Log("svg", vkLog::Error, "not seen");
    EXPECT_EQ(captured.entries().size(), 1u);
}

TEST(Log, ThreadsAreToldApartAndNoEntryIsLost)
{
    CapturedLog captured;
    constexpr int kThreads = 4;
    constexpr int kPerThread = 200;
    std::vector<std::thread> threads;
    std::vector<uint64_t> ids(kThreads);
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t, &ids] {
            ids[static_cast<std::size_t>(t)] = vk::vkThread::CurrentThreadId();
            for (int i = 0; i < kPerThread; ++i)
                vkLog::Log("worker", vkLog::Info, std::to_string(t));
        });
    for (auto& thread : threads)
        thread.join();

    const auto entries = captured.entries();
    ASSERT_EQ(entries.size(), static_cast<std::size_t>(kThreads * kPerThread));
    for (const auto& entry : entries)
        EXPECT_EQ(entry.threadId, ids[static_cast<std::size_t>(std::stoi(entry.text))]);
    for (int t = 1; t < kThreads; ++t)
        EXPECT_NE(ids[0], ids[static_cast<std::size_t>(t)]);
}
