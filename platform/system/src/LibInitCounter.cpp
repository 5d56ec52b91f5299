#include <vkSystem/LibInitCounter.h>

#include <vkSystem/vkLog.h>

#include <utility>

namespace vk::impl {

LibInitCounter::LibInitCounter(std::string name, bool warnUnbalanced)
    : mName(std::move(name)), mWarnUnbalanced(warnUnbalanced)
{
}

bool LibInitCounter::incrementInitCounter()
{
    std::lock_guard<std::mutex> lock(mMutex);
    return ++mCount == 1;
}

bool LibInitCounter::decrementInitCounter()
{
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mCount > 0)
            return --mCount == 0;
    }
    if (mWarnUnbalanced)
        vkLog::Log("init", vkLog::Warning, "Library " + mName + " terminated more often than initialised");
    return false;
}

int LibInitCounter::getCount() const
{
    std::lock_guard<std::mutex> lock(mMutex);
    return mCount;
}

} // namespace vk::impl
