#ifndef VKSVG_VERSION_H
#define VKSVG_VERSION_H

#include <svg/Export.h>

/// The library's version. Every string is a static constant: never free it.
///
/// Threads: every query returns a constant and may run on any thread at any
/// time, even outside initializeVkSvg and terminateVkSvg.
namespace vkSvg::Version {

/// The major version, 3.
VKSVG_API int GetMajor();
/// The minor version, 0.
VKSVG_API int GetMinor();
/// The release number within the minor version.
VKSVG_API int GetRelease();
/// The build revision number.
VKSVG_API int GetRevision();
/// 16 lower-case hexadecimal digits naming the commit the library was built from.
VKSVG_API const char* GetCommitId();
/// The year of the release.
VKSVG_API int GetYear();
/// The month of the release, 1 to 12.
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

/// Whether this is a beta release.
VKSVG_API bool IsBeta();
/// Whether the library was built with debugging enabled.
VKSVG_API bool IsDebug();
/// Whether this is a development build rather than a release.
VKSVG_API bool IsDev();

} // namespace vkSvg::Version

#endif
