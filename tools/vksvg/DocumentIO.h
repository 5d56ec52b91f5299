#ifndef VKSVG_TOOL_DOCUMENTIO_H
#define VKSVG_TOOL_DOCUMENTIO_H

// Every load and save of the tool goes through here, and nowhere else, so
// that how documents reach the library is decided in one file. Calls may
// come from several threads at once and run side by side: each request has
// a driver state of its own, so nothing needs to wait for another file.

#include <svg/DocumentIO.h>
#include <svg/Items.h>
#include <svg/Options.h>

#include <list>
#include <optional>
#include <string>
#include <vector>

namespace vk {
class vkIoDevice;
}

namespace vksvg::io {

// One message of a load or save as the library tells it: its severity,
// and its line and column when the parser knew them.
using Diagnostic = vk::svg::Diagnostic;

struct LoadResult {
    bool ok = false;
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> root;
    // The library's messages as it wrote them, in order.
    std::list<std::string> messages;
    // The same messages, each with its severity and position.
    std::vector<Diagnostic> diagnostics;
    // Why the bytes could not be read at all (the system's reason), when
    // that is what failed; the library was then not asked.
    std::string readError;
};

// Loads `path`, "-" meaning standard input. Any file name is read as SVG.
LoadResult LoadInput(const std::string& path, const vk::svg::LoadOptions& options);

struct SaveResult {
    bool ok = false;
    std::list<std::string> messages;
    std::vector<Diagnostic> diagnostics;
};

// Writes `root` as SVG to `device`.
SaveResult SaveDocument(const vk::svg::ItemInterface& root, vk::vkIoDevice& device,
                        const vk::svg::SaveOptions& options);

// How the tool names `path` in messages: "<stdin>" for "-".
std::string DisplayName(const std::string& path);

} // namespace vksvg::io

#endif
