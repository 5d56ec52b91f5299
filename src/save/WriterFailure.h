#ifndef VKSVG_SAVE_WRITERFAILURE_H
#define VKSVG_SAVE_WRITERFAILURE_H

#include <vkSystem/vkLog.h>
#include <vkXml/XmlSaveContext.h>

#include <cstdint>

namespace vk::svg::impl {

// Records a writer failure: the context keeps the code, the log the reason.
// Returns false so that writers can `return Fail(...)`.
inline bool Fail(vk::xml::XmlSaveContext& context, int32_t code, const char* message)
{
    context.setErrorCode(code);
    vk::vkLog::Log("svg", vk::vkLog::Error, message);
    return false;
}

} // namespace vk::svg::impl

#endif
