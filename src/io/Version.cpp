#include <svg/Version.h>

#include "vkSvgVersionConfig.h"

#define VKSVG_STRINGIFY_(x) #x
#define VKSVG_STRINGIFY(x) VKSVG_STRINGIFY_(x)

namespace {

// The revision and date of this release line; the build supplies the rest.
#define VKSVG_REVISION 1226
#define VKSVG_YEAR 2025
#define VKSVG_MONTH 12
#define VKSVG_DATE "2025-12"

#define VKSVG_MAJOR_MINOR VKSVG_STRINGIFY(VKSVG_VERSION_MAJOR) "." VKSVG_STRINGIFY(VKSVG_VERSION_MINOR)
#define VKSVG_MAJOR_MINOR_RELEASE VKSVG_MAJOR_MINOR "." VKSVG_STRINGIFY(VKSVG_VERSION_RELEASE)
#define VKSVG_FULL VKSVG_MAJOR_MINOR_RELEASE "." VKSVG_STRINGIFY(VKSVG_REVISION)

constexpr const char kMajorMinor[] = VKSVG_MAJOR_MINOR;
constexpr const char kMajorMinorRelease[] = VKSVG_MAJOR_MINOR_RELEASE;
constexpr const char kFull[] = VKSVG_FULL;
constexpr const char kFullWithCommit[] = VKSVG_FULL " #" VKSVG_COMMIT_ID;
constexpr const char kFullWithDate[] = VKSVG_FULL " #" VKSVG_COMMIT_ID " " VKSVG_DATE;

} // namespace

namespace vkSvg::Version {

int GetMajor() { return VKSVG_VERSION_MAJOR; }
int GetMinor() { return VKSVG_VERSION_MINOR; }
int GetRelease() { return VKSVG_VERSION_RELEASE; }
int GetRevision() { return VKSVG_REVISION; }
const char* GetCommitId() { return VKSVG_COMMIT_ID; }
int GetYear() { return VKSVG_YEAR; }
int GetMonth() { return VKSVG_MONTH; }

const char* GetDescStringMajorMinor(bool) { return kMajorMinor; }
const char* GetDescStringMajorMinorRelease(bool) { return kMajorMinorRelease; }

const char* GetDescStringMajorMinorReleaseRevision(bool, bool withCommitId)
{
    return withCommitId ? kFullWithCommit : kFull;
}

const char* GetDescStringMajorMinorReleaseRevisionDate() { return kFullWithDate; }

bool IsBeta() { return false; }
bool IsDebug() { return false; }
bool IsDev() { return false; }

} // namespace vkSvg::Version
