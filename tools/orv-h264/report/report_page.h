// A report as a page: the files of page/ and uPlot, the data, and a policy that lets nothing else run or load.
#pragma once

#include "json_output.h"

#include <functional>
#include <string_view>

namespace orv_h264 {

/// Throws refusal where the tool was built without uPlot.
void require_page_parts();

/// Gives the page to `write`, piece by piece.
void write_page(const json& data, const std::function<void(std::string_view)>& write);

} // namespace orv_h264
