// A set of NAL unit types as a user writes it.
#pragma once

#include <bitset>
#include <string>

namespace orv_h264 {

/// The types of a list like "5", "7,8", "1-5,9" or "sps,pps,idr". Throws std::invalid_argument, the text for the user,
/// when the list is malformed, has another name or a type above 31.
std::bitset<32> parse_type_set(const std::string& text);

/// The names that such a list may have, as a list.
std::string type_names();

} // namespace orv_h264
