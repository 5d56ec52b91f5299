#ifndef VKSYSTEM_LIBINITCOUNTER_H
#define VKSYSTEM_LIBINITCOUNTER_H

#include <vkSystem/Export.h>

#include <mutex>
#include <string>

namespace vk::impl {

// Counts nested initialisations of a library so that only the first
// initialisation and the matching last termination do the work. Thread-safe.
class VKSYSTEM_API LibInitCounter {
public:
    // With warnUnbalanced, a termination without a matching initialisation is
    // reported to the system log (category "init", warning level).
    LibInitCounter(std::string name, bool warnUnbalanced);

    LibInitCounter(const LibInitCounter&) = delete;
    LibInitCounter& operator=(const LibInitCounter&) = delete;

    // True for the first of nested initialisations only.
    bool incrementInitCounter();

    // True for the last of nested terminations only. An unbalanced call
    // changes nothing and returns false.
    bool decrementInitCounter();

    int getCount() const;
    const std::string& getName() const { return mName; }

private:
    std::string mName;
    bool mWarnUnbalanced;
    mutable std::mutex mMutex;
    int mCount = 0;
};

} // namespace vk::impl

#endif
