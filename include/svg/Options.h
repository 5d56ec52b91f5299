#ifndef VKSVG_OPTIONS_H
#define VKSVG_OPTIONS_H

#include <cstdint>

namespace vk::svg {

struct LoadOptions {
    // Skip unsupported elements and attributes with a warning instead of
    // failing the load.
    bool ignoreUnsupported = false;
};

struct SaveOptions {
    // Digits after the decimal point of every number written; negative means 6.
    int32_t precision = -1;
    // Indented output, and path data with every command and number separated.
    bool prettyPrint = false;
    // Start the document with the Exporter and Datetime comments.
    bool writeHeaderComments = true;
};

} // namespace vk::svg

#endif
