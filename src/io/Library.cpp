#include <svg/Library.h>

#include <svg/Version.h>
#include <svg/vkSvgDriver.h>
#include <svg/vkSvgIOManager.h>

#include "io/LibraryState.h"

#include <vkSystem/LibInitCounter.h>
#include <vkSystem/vkSoftwareVersion.h>
#include <vkXml/XmlLibrary.h>

namespace vk::svg {

namespace {

// Constructed when the library is loaded, so that nested start-ups can be
// counted from the very first call.
vk::impl::LibInitCounter sInitCounter("svg", true);

vkCoreSvgIODriver* sBuiltInDriver = nullptr;

// Counts registrations of the built-in driver and is never decremented: a
// termination only needs to know that a start-up registered it.
int32_t sRegistrationCount = 0;

} // namespace

namespace impl {

vkCoreSvgIODriver* GetBuiltInDriver() { return sBuiltInDriver; }

int32_t GetBuiltInDriverRegistrationCount() { return sRegistrationCount; }

} // namespace impl

void initializeVkSvg()
{
    if (!sInitCounter.incrementInitCounter())
        return;
    // Saved documents name the library unless the host stamps its own name.
    vk::SetDefaultSoftwareVersionForStream("libvkSvg",
                                           vkSvg::Version::GetDescStringMajorMinorReleaseRevision(false, false));
    vk::xml::initializeXmlLibrary();
    vkSvgIOManager::sThis = new vkSvgIOManager();
    sBuiltInDriver = new vkSvgDriver();
    vkSvgIOManager::edit().registerDriver(sBuiltInDriver, true);
    ++sRegistrationCount;
}

void terminateVkSvg()
{
    if (!sInitCounter.decrementInitCounter())
        return;
    if (sRegistrationCount > 0) {
        vkSvgIOManager::edit().unregisterDriver(sBuiltInDriver);
        delete sBuiltInDriver;
        sBuiltInDriver = nullptr;
    }
    delete vkSvgIOManager::sThis;
    vkSvgIOManager::sThis = nullptr;
    vk::xml::finalizeXmlLibrary();
}

} // namespace vk::svg
