// Bytes as text that a page can hold, RFC 4648 clause 4.
#pragma once

#include <string>
#include <string_view>

namespace orv_h264 {

std::string base64(std::string_view bytes);

} // namespace orv_h264
