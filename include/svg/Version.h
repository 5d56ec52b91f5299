#ifndef VKSVG_VERSION_H
#define VKSVG_VERSION_H

#include <svg/Export.h>

/// The library's version. Every string is a static constant: never free it.
/// Threads: every query returns a constant and may run on any thread at any
/// time, even outside initializeVkSvg and terminateVkSvg.
namespace vkSvg::Version {

VKSVG_API int GetMajor();
VKSVG_API int GetMinor();
VKSVG_API int GetRelease();
VKSVG_API int GetRevision();
/// 16 lower-case hexadecimal digits naming the commit the library was built from.
VKSVG_API const char* GetCommitId();
VKSVG_API int GetYear();
VKSVG_API int GetMonth();

/// "3.0"; the argument is accepted for compatibility and ignored.
VKSVG_API const char* GetDescStringMajorMinor(bool unused);
/// "3.0.0"; the argument is ignored.
VKSVG_API const char* GetDescStringMajorMinorRelease(bool unused);
/// "3.0.0.1226", or with withCommitId "3.0.0.1226 #" and the commit id; the
/// first argument is ignored.
VKSVG_API const char* GetDescStringMajorMinorReleaseRevision(bool unused, bool withCommitId);
/// "3.0.0.1226 #", the commit id, a blank and "2025-12".
VKSVG_API const char* GetDescStringMajorMinorReleaseRevisionDate();

VKSVG_API bool IsBeta();
VKSVG_API bool IsDebug();
VKSVG_API bool IsDev();

} // namespace vkSvg::Version

#endif
