#include <vkXml/XmlLibrary.h>

#include <vkSystem/LibInitCounter.h>

#include <libxml/parser.h>

namespace vk::xml {

namespace {

// Built on first use so that it exists whatever the order of static
// initialisation between this library and its hosts.
vk::impl::LibInitCounter& initCounter()
{
    static vk::impl::LibInitCounter counter("xml", true);
    return counter;
}

} // namespace

void initializeXmlLibrary()
{
    if (initCounter().incrementInitCounter())
        xmlInitParser();
}

void finalizeXmlLibrary()
{
    // Deliberately no xmlCleanupParser(): libxml2's global state belongs to
    // the whole process, the host or another library may still be using it,
    // and libxml2 cannot safely be brought up again once cleaned up.
    initCounter().decrementInitCounter();
}

} // namespace vk::xml
