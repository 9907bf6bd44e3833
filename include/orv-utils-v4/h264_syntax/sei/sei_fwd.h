/// @file
/// The SEI message, named for the nesting messages, which hold messages themselves.
#pragma once

namespace orv_utils_v4::h264 {

struct sei_message;

} // namespace orv_utils_v4::h264
