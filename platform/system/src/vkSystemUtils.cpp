#include <vkSystem/vkSystemUtils.h>

#include <chrono>
#include <cstdio>
#include <ctime>

namespace vk {

std::string vkSystemUtils::GetCurrentDateTimeISO(bool utc)
{
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    if (utc)
        gmtime_r(&now, &parts);
    else
        localtime_r(&now, &parts);

    char text[64];
    std::size_t length = std::strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S", &parts);
    if (utc) {
        std::snprintf(text + length, sizeof(text) - length, "Z");
    } else {
        // strftime's %z gives +0100; ISO 8601's extended form wants +01:00.
        const long offset = parts.tm_gmtoff;
        const long magnitude = offset < 0 ? -offset : offset;
        std::snprintf(text + length, sizeof(text) - length, "%c%02ld:%02ld", offset < 0 ? '-' : '+', magnitude / 3600,
                      (magnitude % 3600) / 60);
    }
    return text;
}

int64_t vkSystemUtils::GetMSecElapsedSinceEpoch()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

} // namespace vk
