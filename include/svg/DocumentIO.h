#ifndef VKSVG_DOCUMENTIO_H
#define VKSVG_DOCUMENTIO_H

#include <svg/Export.h>
#include <svg/Items.h>
#include <svg/Options.h>

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace vk {
class vkIoDevice;
} // namespace vk

namespace vk::svg {

/// How serious a message of a load or save is.
enum class DiagnosticSeverity : uint32_t {
    Warning = 0, ///< the request went on
    Error = 1,   ///< the request failed
};

/// One message of a load or save, with where in the document it arose.
struct Diagnostic {
    /// Whether the request went on after it.
    DiagnosticSeverity severity = DiagnosticSeverity::Error;
    /// 1-based line and column (in characters) in the document, when the XML
    /// parser knew them: for a tag, where the tag begins; for the parser's
    /// own errors, where it stopped. Messages that belong to no one place
    /// (a file that cannot be opened, what the full profile finds after
    /// parsing) have neither.
    ///@{
    std::optional<int> line;
    std::optional<int> column;
    ///@}
    /// Exactly the text of the corresponding entry of the message list.
    std::string text;
};

/// @name Reentrant load and save
/// Loads and saves that need no driver and no manager: each call reads or
/// writes SVG with a driver state of its own, whatever the file is called
/// (icon.SVG, a name without extension), and hands back its own messages.
///
/// Threads: any number of these calls may run at once on different threads,
/// alongside the manager's requests, as long as each works on its own root
/// and device (several loads may read the same file). They touch no state
/// of the manager or of any driver. They must run between initializeVkSvg
/// and terminateVkSvg, never concurrently with either.
///
/// Messages: this call's warnings and errors, in order and with the
/// driver's limits (at most 1024, each cut to 1024 characters), are appended
/// to `*messages`; what the list held before stays. With `diagnostics`, one
/// Diagnostic per appended message is appended to it as well, in the same
/// order and with the same text. Either pointer may be null.
/// @{

/// Loads the SVG document of the file `fileName` into `root` (set only on
/// success). options.profile picks the reading profile.
VKSVG_API bool LoadSvgDocument(ItemInterfacePointer<ItemInterface>& root, const std::string& fileName,
                               const LoadOptions& options = LoadOptions(), std::list<std::string>* messages = nullptr,
                               std::vector<Diagnostic>* diagnostics = nullptr);

/// Loads the SVG document read from `device` (open for reading; a
/// vk::vkIoDeviceMemory holds bytes already in memory).
VKSVG_API bool LoadSvgDocument(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device,
                               const LoadOptions& options = LoadOptions(), std::list<std::string>* messages = nullptr,
                               std::vector<Diagnostic>* diagnostics = nullptr);

/// Writes `root` as an SVG document to the file `fileName`, with the same
/// bytes as the manager's save.
VKSVG_API bool SaveSvgDocument(const ItemInterface& root, const std::string& fileName,
                               const SaveOptions& options = SaveOptions(), std::list<std::string>* messages = nullptr,
                               std::vector<Diagnostic>* diagnostics = nullptr);

/// Writes `root` as an SVG document to `device` (open for writing).
VKSVG_API bool SaveSvgDocument(const ItemInterface& root, vk::vkIoDevice& device,
                               const SaveOptions& options = SaveOptions(), std::list<std::string>* messages = nullptr,
                               std::vector<Diagnostic>* diagnostics = nullptr);

/// @}

} // namespace vk::svg

#endif
