#include "Session.h"

#include <svg/Library.h>

namespace vksvg {

namespace {

thread_local LogCapture* tCapture = nullptr;

} // namespace

void PrintLogEntry(const vk::vkLog::Entry& entry, std::ostream& err)
{
    err << "vksvg: " << entry.category << ": " << entry.text << '\n';
}

DocumentSession::DocumentSession(std::ostream& err) : mPreviousLog(vk::vkLog::getInstance())
{
    vk::svg::initializeVkSvg();
    auto log = std::make_shared<vk::vkLog>();
    for (int level = 0; level <= vk::vkLog::MaxLevel; ++level)
        log->setLevelEnabled(level, level <= vk::vkLog::Error);
    log->setSink([this, &err](const vk::vkLog::Entry& entry) {
        if (LogCapture::Deliver(entry))
            return;
        const std::lock_guard<std::mutex> lock(mErrMutex);
        PrintLogEntry(entry, err);
    });
    vk::vkLog::setInstance(std::move(log));
}

DocumentSession::~DocumentSession()
{
    vk::vkLog::setInstance(mPreviousLog);
    vk::svg::terminateVkSvg();
}

LogCapture::LogCapture(Handler handler) : mHandler(std::move(handler)), mPrevious(tCapture) { tCapture = this; }

LogCapture::~LogCapture() { tCapture = mPrevious; }

bool LogCapture::Deliver(const vk::vkLog::Entry& entry)
{
    if (tCapture == nullptr || !tCapture->mHandler)
        return false;
    tCapture->mHandler(entry);
    return true;
}

} // namespace vksvg
