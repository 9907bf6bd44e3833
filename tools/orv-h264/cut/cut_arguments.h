// The arguments of cut besides its places. What is wrong is thrown as std::invalid_argument, the text for the user.
#pragma once

#include "cut/layer_choice.h"
#include "cut/range_finder.h"

#include <cstdint>
#include <string>

namespace orv_h264 {

/// `D`, `D,Q` or `D,Q,T`: dependency_id, quality_id and temporal_id, the highest where they are not told.
layer_target parse_layer(const std::string& text);
/// A view_id.
std::uint16_t parse_view(const std::string& text);
/// `25` or `30000/1001`.
h264::ratio parse_rate(const std::string& text);

/// Both places are of one kind, and nothing lies between them whatever the stream is.
bool is_surely_empty(const cut_range& range);

} // namespace orv_h264
