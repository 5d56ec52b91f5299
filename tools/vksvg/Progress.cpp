#include "Progress.h"

#include <cmath>
#include <cstdio>
#include <iostream>

#include <unistd.h>

namespace vksvg {

Progress::Progress(std::ostream& err, std::size_t total, bool enabled)
    : mErr(err), mTotal(total), mEnabled(enabled), mStart(std::chrono::steady_clock::now())
{
    if (mEnabled)
        update(0);
}

std::string Progress::Line(std::size_t done, std::size_t total, double seconds)
{
    std::string line = "[" + std::to_string(done) + "/" + std::to_string(total) + "]";
    if (done == 0 || !(seconds > 0))
        return line;
    const double rate = static_cast<double>(done) / seconds;
    char text[64];
    std::snprintf(text, sizeof text, " %.1f files/s", rate);
    line += text;
    if (done < total) {
        const auto left = static_cast<long long>(std::ceil(static_cast<double>(total - done) / rate));
        std::snprintf(text, sizeof text, ", %lld:%02lld left", left / 60, left % 60);
        line += text;
    }
    return line;
}

void Progress::update(std::size_t done)
{
    if (!mEnabled)
        return;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - mStart).count();
    mErr << "\r\033[K" << Line(done, mTotal, seconds) << std::flush;
    mShown = true;
}

void Progress::clear()
{
    if (!mEnabled || !mShown)
        return;
    mErr << "\r\033[K" << std::flush;
    mShown = false;
}

bool Progress::IsTerminal(const std::ostream& err) { return &err == &std::cerr && ::isatty(STDERR_FILENO) == 1; }

} // namespace vksvg
