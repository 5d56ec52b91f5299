#ifndef VKSVG_TEXTSPACE_H
#define VKSVG_TEXTSPACE_H

#include <svg/Export.h>

#include <string>

namespace vk::svg {

/// @name Text whitespace
/// The loader keeps a text's character data exactly as read. These turn it
/// into the text to display under the two xml:space regimes. Both work on
/// bytes: space and tab are blanks, line feed and carriage return are line
/// breaks, and every other byte (UTF-8 sequences included) is copied as is.
///@{

/// xml:space="default": line breaks are removed without leaving a space,
/// leading and trailing blanks are dropped and every other run of blanks
/// becomes one space. Blanks that follow a line break after the first word
/// count as leading ("abc\n def" gives "abcdef"), and blank runs on both
/// sides of a later line break each leave a space ("x a \n b" gives
/// "x a  b").
///
/// Threads: both are pure functions of their argument and may run at once
/// on any threads.
VKSVG_API std::string ApplySvgXMLSpaceDefault(const std::string& text);

/// xml:space="preserve": every tab and line break becomes one space; the
/// length stays the same and nothing is trimmed.
VKSVG_API std::string ApplySvgXMLSpacePreserve(const std::string& text);
///@}

} // namespace vk::svg

#endif
