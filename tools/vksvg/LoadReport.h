#ifndef VKSVG_TOOL_LOADREPORT_H
#define VKSVG_TOOL_LOADREPORT_H

// How the tool tells what happened to a load: the file, the system's
// reason, every message of the library as it wrote it with the file (and
// line and column) in front, and the option that would have helped.

#include "DocumentIO.h"

#include <svg/Options.h>

#include <ostream>
#include <string>

namespace vksvg {

// Prints the messages of `result` for `path`, and on failure why and a hint.
void ReportLoad(const io::LoadResult& result, const std::string& path, const vk::svg::LoadOptions& options,
                std::ostream& err);

// Prints `diagnostic` as "vksvg: <file>[:line:column]: <text>".
void PrintDiagnostic(const io::Diagnostic& diagnostic, const std::string& path, std::ostream& err);

// Loads `path` and reports it; false when there is no document to work on.
bool LoadDocument(const std::string& path, const vk::svg::LoadOptions& options,
                  vk::svg::ItemInterfacePointer<vk::svg::ItemInterface>& root, std::ostream& err,
                  io::LoadResult* loaded = nullptr);

} // namespace vksvg

#endif
