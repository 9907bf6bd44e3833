// What an encoder writes of itself into user data.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <optional>
#include <string>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

struct encoder_text {
    std::string name;     ///< and version
    std::string settings; ///< as they are written, or ""
};

/// The encoder that the user data tells of; nothing unless its UUID is one that is known for that. Printable ASCII, up
/// to the first byte that is none.
std::optional<encoder_text> encoder_of(const h264::user_data_unregistered& user_data);

} // namespace orv_h264
