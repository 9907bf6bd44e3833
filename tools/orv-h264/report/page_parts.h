// The files that a report is made of, as they are in page/ and in uPlot: the build puts them into the tool.
#pragma once

#include <span>
#include <string_view>

namespace orv_h264 {

struct page_part {
    std::string_view name; ///< of the file
    std::string_view text;
    std::string_view sha256; ///< of the text, in hex digits
};

/// Those of uPlot come first; they are not there when the tool was built without it.
std::span<const page_part> page_parts();

} // namespace orv_h264
