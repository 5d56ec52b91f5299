#ifndef VKSVG_TOOL_OUTPUTFILE_H
#define VKSVG_TOOL_OUTPUTFILE_H

// Where the commands' results go, and in which format: a file is written
// whole or not at all, "-" is standard output, and the format follows the
// file's extension.

#include <ostream>
#include <string>
#include <vector>

namespace vksvg::output {

// Writes `bytes` to `path`. "-" writes to `out`. A regular file (or a new
// name) is written to a temporary file in the same directory and renamed
// over it once complete, so that a failure leaves no partial file; anything
// else (a device such as /dev/full, a pipe) is written directly. False with
// the system's reason in `why`.
bool WriteOutput(const std::string& path, const std::string& bytes, std::ostream& out, std::string& why);

// The format of `output` among `formats` (lower-case names that are also
// the extensions; the first is the default): from `--format` when given,
// else from the file's extension. "-", a device or pipe, and an empty
// output (several inputs into a directory) take `--format` or the default. False with a message
// for the user in `why`.
bool ChooseFormat(const std::string& command, const std::vector<std::string>& formats, const std::string& output,
                  const std::string& formatFlag, std::string& format, std::string& why);

// "png, pdf or svg" for messages and help.
std::string ListFormats(const std::vector<std::string>& formats, const char* last = " or ");

} // namespace vksvg::output

#endif
