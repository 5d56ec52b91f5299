#ifndef VKXML_XMLLIBRARY_H
#define VKXML_XMLLIBRARY_H

#include <vkXml/Export.h>

namespace vk::xml {

// Brings up libxml2 for this library's use. Calls nest: only the first
// initialisation does the work, and each needs a matching finalisation.
VKXML_API void initializeXmlLibrary();
VKXML_API void finalizeXmlLibrary();

} // namespace vk::xml

#endif
