// A file that the build puts into the tool.
#pragma once

#include <string_view>

namespace orv_h264 {

struct embedded_file {
    std::string_view name;
    std::string_view text;
    std::string_view sha256; ///< of the text, in hex digits
};

} // namespace orv_h264
