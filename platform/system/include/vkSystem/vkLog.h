#ifndef VKSYSTEM_VKLOG_H
#define VKSYSTEM_VKLOG_H

#include <vkSystem/Export.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace vk {

// The system log. The process has at most one installed instance; with none
// installed every write is dropped. Each entry is stamped with the time in
// milliseconds since the epoch and the writing thread's id.
class VKSYSTEM_API vkLog {
public:
    enum Level : int { Fatal = 0, Error = 1, Warning = 2, Info = 3, Debug = 4 };
    static constexpr int MaxLevel = 31;

    struct Entry {
        int64_t timeMs = 0;
        uint64_t threadId = 0;
        std::string category;
        int level = 0;
        std::string text;
    };
    using Sink = std::function<void(const Entry&)>;

    // Every level is enabled; entries go to standard error until a sink is set.
    vkLog();

    // Entries are handed to the sink one at a time, under the log's lock. An
    // empty sink restores the standard error output.
    void setSink(Sink sink);

    void setLevelEnabled(int level, bool enabled);
    bool isLevelEnabled(int level) const;

    void write(std::string_view category, int level, std::string_view text);

    static std::shared_ptr<vkLog> getInstance();
    // Installs the process-wide log; null removes it.
    static void setInstance(std::shared_ptr<vkLog> log);

    // Writes to the installed log, if there is one and the level is enabled.
    static void Log(std::string_view category, int level, std::string_view text);

    static const char* LevelName(int level);

private:
    std::atomic<uint32_t> mEnabledLevels{0xFFFFFFFFu};
    std::mutex mSinkMutex;
    Sink mSink;
};

} // namespace vk

#endif
