#ifndef VKSVG_TOOL_PROGRESS_H
#define VKSVG_TOOL_PROGRESS_H

// A progress line for work on many files: files done of total, rate and
// time left, redrawn in place. Drawn only on a terminal, so that logs and
// pipes get nothing but the messages.

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>

namespace vksvg {

class Progress {
public:
    Progress(std::ostream& err, std::size_t total, bool enabled);

    // Redraws the line after `done` files.
    void update(std::size_t done);
    // Takes the line away, so that a message can be printed in its place.
    void clear();

    bool enabled() const { return mEnabled; }

    // The line for `done` of `total` after `seconds`, without the carriage
    // return: "[3/10] 1.5 files/s, 0:05 left".
    static std::string Line(std::size_t done, std::size_t total, double seconds);

    // Whether `err` is the process's standard error and that is a terminal.
    static bool IsTerminal(const std::ostream& err);

private:
    std::ostream& mErr;
    std::size_t mTotal;
    bool mEnabled;
    bool mShown = false;
    std::chrono::steady_clock::time_point mStart;
};

} // namespace vksvg

#endif
