#include <vkSystem/vkLog.h>

#include <vkSystem/vkSystemUtils.h>
#include <vkSystem/vkThread.h>

#include <cstdio>
#include <utility>

namespace vk {

namespace {

// The installed log is shared so that a writer keeps it alive even while
// another thread replaces it.
std::mutex& instanceMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::shared_ptr<vkLog>& installedLog()
{
    static std::shared_ptr<vkLog> log;
    return log;
}

void writeToStandardError(const vkLog::Entry& entry)
{
    std::fprintf(stderr, "%lld [%llu] %s %s: %.*s\n", static_cast<long long>(entry.timeMs),
                 static_cast<unsigned long long>(entry.threadId), entry.category.c_str(), vkLog::LevelName(entry.level),
                 static_cast<int>(entry.text.size()), entry.text.data());
}

} // namespace

vkLog::vkLog() = default;

void vkLog::setSink(Sink sink)
{
    std::lock_guard<std::mutex> lock(mSinkMutex);
    mSink = std::move(sink);
}

void vkLog::setLevelEnabled(int level, bool enabled)
{
    if (level < 0 || level > MaxLevel)
        return;
    const uint32_t bit = 1u << level;
    if (enabled)
        mEnabledLevels.fetch_or(bit);
    else
        mEnabledLevels.fetch_and(~bit);
}

bool vkLog::isLevelEnabled(int level) const
{
    if (level < 0 || level > MaxLevel)
        return false;
    return (mEnabledLevels.load() & (1u << level)) != 0;
}

void vkLog::write(std::string_view category, int level, std::string_view text)
{
    if (!isLevelEnabled(level))
        return;
    Entry entry;
    entry.timeMs = vkSystemUtils::GetMSecElapsedSinceEpoch();
    entry.threadId = vkThread::CurrentThreadId();
    entry.category.assign(category);
    entry.level = level;
    entry.text.assign(text);

    std::lock_guard<std::mutex> lock(mSinkMutex);
    if (mSink)
        mSink(entry);
    else
        writeToStandardError(entry);
}

std::shared_ptr<vkLog> vkLog::getInstance()
{
    std::lock_guard<std::mutex> lock(instanceMutex());
    return installedLog();
}

void vkLog::setInstance(std::shared_ptr<vkLog> log)
{
    std::shared_ptr<vkLog> previous;
    {
        std::lock_guard<std::mutex> lock(instanceMutex());
        previous = std::exchange(installedLog(), std::move(log));
    }
    // `previous` may be the last reference; release it outside the lock.
}

void vkLog::Log(std::string_view category, int level, std::string_view text)
{
    if (const std::shared_ptr<vkLog> log = getInstance())
        log->write(category, level, text);
}

const char* vkLog::LevelName(int level)
{
    switch (level) {
    case Fatal:
        return "fatal";
    case Error:
        return "error";
    case Warning:
        return "warning";
    case Info:
        return "info";
    case Debug:
        return "debug";
    default:
        return "level";
    }
}

} // namespace vk
