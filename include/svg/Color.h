#ifndef VKSVG_COLOR_H
#define VKSVG_COLOR_H

#include <svg/Export.h>

#include <wm4/Wm4Vector4.h>

#include <string>

namespace vk::svg {

/// Parses an SVG colour: \#rgb, \#rgba, \#rrggbb, \#rrggbbaa, rgb(...), rgba(...)
/// or one of the 148 CSS colour names. The text is taken as is (no trimming,
/// no case folding). `rgba` is first set to opaque red, so a failed call
/// leaves that behind, apart from components an rgb()/rgba() text had already
/// delivered before a later one failed.
///
/// Threads: reads only a constant table; calls may run at once on any
/// threads with different `rgba` outputs.
VKSVG_API bool ParseSvgColor(const std::string& text, Wm4::Vector4<unsigned char>& rgba);

} // namespace vk::svg

#endif
