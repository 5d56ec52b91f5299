#ifndef VKSVG_TOOL_JSON_H
#define VKSVG_TOOL_JSON_H

// The pieces of the --json outputs (their schemas are documented in
// docs/json.md). Every document is one line of JSON, so that the objects
// of several files read as JSON Lines.

#include "DocumentIO.h"

#include <svg/BoundingBox.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace vksvg::json {

// Keys stay in the order they are written, "schema" first.
using Json = nlohmann::ordered_json;

// A float as the shortest decimal that reads back to it; null for NaN and
// infinities, which JSON has no words for.
Json Number(float value);

// [min x, min y, max x, max y], or null for an invalid box.
Json Box(const vk::svg::BoundingBox& box);

// The messages of a load as objects: severity, line, column, text.
Json Messages(const std::vector<io::Diagnostic>& diagnostics);

// `document` on one line, then a newline. Bytes that are not UTF-8 become
// U+FFFD rather than an error.
std::string Dump(const Json& document);

} // namespace vksvg::json

#endif
