#ifndef VKSVG_OPTIONS_H
#define VKSVG_OPTIONS_H

#include <cstdint>

namespace vk::svg {

/// How a document is read.
enum class LoadProfile : uint32_t {
    /// The library's own subset of SVG, read strictly by its rules: what it
    /// does not know is an error, or with ignoreUnsupported a warning.
    Subset = 0,
    /// SVG as a user agent reads it: style sheets, references, units, every
    /// basic shape and the full path grammar, normalised into the same item
    /// types. What the items cannot hold is skipped with a warning.
    Full = 1,
};

/// How a document is loaded.
///
/// Threads: options records are plain values, copied into each request.
struct LoadOptions {
    /// Skip unsupported elements and attributes with a warning instead of
    /// failing the load. Only the subset profile looks at it: the full
    /// profile always skips what it cannot hold, with a warning.
    bool ignoreUnsupported = false;
    /// Which reading profile reads the document.
    LoadProfile profile = LoadProfile::Subset;
};

/// How a document is written.
struct SaveOptions {
    /// Digits after the decimal point of every number written; negative means 6.
    int32_t precision = -1;
    /// Indented output, and path data with every command and number separated.
    bool prettyPrint = false;
    /// Start the document with the Exporter and Datetime comments.
    bool writeHeaderComments = true;
    /// Write every number with the fewest digits that read back to the same
    /// float (133.02 stays 133.02, 0.1f is written 0.1) instead of six fixed
    /// decimals; still fixed notation, never an exponent, whatever the locale.
    /// A precision of 0 or more wins over this flag: it applies only while
    /// `precision` is negative.
    bool shortestNumbers = false;
};

} // namespace vk::svg

#endif
