// A set of NAL unit types as a user writes it.
#pragma once

#include <bitset>
#include <string>

namespace orv_h264 {

/// The types of a list like "5", "7,8" or "1-5,9". Throws std::invalid_argument, the text for the user, when the list
/// is malformed or names a type above 31.
std::bitset<32> parse_type_set(const std::string& text);

} // namespace orv_h264
