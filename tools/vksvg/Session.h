#ifndef VKSVG_TOOL_SESSION_H
#define VKSVG_TOOL_SESSION_H

// The library's lifetime for one run of a command, and the one log it
// installs: each thread can take the entries it causes for itself, so that
// what the library logs while working on one file stays with that file.

#include <vkSystem/vkLog.h>

#include <functional>
#include <memory>
#include <mutex>
#include <ostream>

namespace vksvg {

// Keeps the library initialised, and a log that prints errors to `err`
// installed, for the life of one command.
class DocumentSession {
public:
    explicit DocumentSession(std::ostream& err);
    ~DocumentSession();
    DocumentSession(const DocumentSession&) = delete;
    DocumentSession& operator=(const DocumentSession&) = delete;

private:
    std::shared_ptr<vk::vkLog> mPreviousLog;
    std::mutex mErrMutex;
};

// While one lives, the log entries written on its thread go to its
// handler instead of the session's stream. They nest.
class LogCapture {
public:
    using Handler = std::function<void(const vk::vkLog::Entry&)>;
    explicit LogCapture(Handler handler);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // Hands `entry` to the innermost capture of this thread; false when
    // there is none.
    static bool Deliver(const vk::vkLog::Entry& entry);

private:
    Handler mHandler;
    LogCapture* mPrevious;
};

// An entry as the tool prints it: "vksvg: <category>: <text>".
void PrintLogEntry(const vk::vkLog::Entry& entry, std::ostream& err);

} // namespace vksvg

#endif
