#include "Json.h"

#include <charconv>
#include <cmath>

namespace vksvg::json {

Json Number(float value)
{
    if (!std::isfinite(value))
        return nullptr;
    // The float's shortest form read back as a double, so that 0.1f is
    // written 0.1 and not 0.10000000149011612.
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value);
    double widened = value;
    if (error == std::errc())
        std::from_chars(text, end, widened);
    if (widened == std::floor(widened) && std::fabs(widened) < 9.0e15)
        return static_cast<int64_t>(widened);
    return widened;
}

Json Box(const vk::svg::BoundingBox& box)
{
    if (!box.isValid())
        return nullptr;
    return Json::array({Number(box.getMinPoint().X()), Number(box.getMinPoint().Y()), Number(box.getMaxPoint().X()),
                        Number(box.getMaxPoint().Y())});
}

Json Messages(const std::vector<io::Diagnostic>& diagnostics)
{
    Json list = Json::array();
    for (const io::Diagnostic& diagnostic : diagnostics) {
        Json message;
        message["severity"] = diagnostic.severity == vk::svg::DiagnosticSeverity::Warning ? "warning" : "error";
        message["line"] = diagnostic.line ? Json(*diagnostic.line) : Json(nullptr);
        message["column"] = diagnostic.column ? Json(*diagnostic.column) : Json(nullptr);
        message["text"] = diagnostic.text;
        list.push_back(std::move(message));
    }
    return list;
}

std::string Dump(const Json& document) { return document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n"; }

} // namespace vksvg::json
