#ifndef VKSYSTEM_VKSYSTEMUTILS_H
#define VKSYSTEM_VKSYSTEMUTILS_H

#include <vkSystem/Export.h>

#include <cstdint>
#include <string>

namespace vk {

class VKSYSTEM_API vkSystemUtils {
public:
    // The current time in ISO 8601 to the second: UTC with a "Z" suffix
    // (2026-11-21T09:30:00Z), or local time with its offset (+01:00).
    static std::string GetCurrentDateTimeISO(bool utc);

    static int64_t GetMSecElapsedSinceEpoch();
};

} // namespace vk

#endif
