#ifndef VKSVG_READ_PATHGRAMMAR_H
#define VKSVG_READ_PATHGRAMMAR_H

// Path data by SVG's own grammar and rules, normalised to absolute, explicit
// commands that mean the same under the library's primitive rules: MoveTo,
// LineTo, BezierCubic, EllipticalArc and ClosePath only. H and V become
// lines, S and T reflect the previous control point in absolute terms,
// quadratic curves become the exactly equal cubics, arcs with radii too
// small for their chord are scaled up as SVG says, zero-radius arcs become
// lines and arcs that end where they start are dropped. Compact arc flags
// ("a7 7 0 100 14") are read.

#include <svg/PathCommand.h>

#include <cstddef>
#include <list>
#include <string>
#include <string_view>

namespace vk::svg::impl {

struct PathGrammarResult {
    bool ok = true;
    // Byte offset of the first character that does not fit the grammar.
    std::size_t errorOffset = 0;
    // What was wrong, for a warning; empty when ok.
    std::string error;
};

// Appends the commands of `data` to `out`. On a syntax error the commands
// before the failing one are kept, as SVG renders them.
PathGrammarResult ParseSvgPathData(std::string_view data, std::list<PathCommand>& out);

} // namespace vk::svg::impl

#endif
