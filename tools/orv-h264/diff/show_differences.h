// What diff prints: a screen for a person, or all of it; and JSON.
#pragma once

#include "diff/stream_comparison.h"
#include "json_output.h"

#include <string>

namespace orv_h264 {

/// At most so many lines, unless all are wanted; what is left out is counted.
std::string text_of(const stream_comparison& found, bool all);

/// docs/schema/diff.schema.json describes it.
json json_of(const stream_comparison& found);

} // namespace orv_h264
