// The summary of a stream, as lines for a person and as a JSON object for a program.
#pragma once

#include "json_output.h"
#include "stream_input.h"
#include "stream_summary.h"

#include <string_view>

namespace orv_h264 {

void print_info(const stream_input& input, const stream_summary& summary);
json info_json(const stream_input& input, const stream_summary& summary);
/// The same of a stream by itself that someone else has read.
json info_json(std::string_view name, h264::framing framing, std::uint64_t bytes, const stream_summary& summary);

} // namespace orv_h264
