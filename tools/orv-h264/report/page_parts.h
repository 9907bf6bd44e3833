// The files that a report is made of, as they are in page/ and in uPlot: the build puts them into the tool.
#pragma once

#include "embedded_file.h"

#include <span>

namespace orv_h264 {

using page_part = embedded_file;

/// Those of uPlot come first; they are not there when the tool was built without it.
std::span<const page_part> page_parts();

} // namespace orv_h264
