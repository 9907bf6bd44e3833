// The fields of parsed structures as lines, in the order of their syntax.
#pragma once

#include "field_printer.h"
#include "stream_walker.h"

namespace orv_h264 {

/// The fields that the unit carried, a line each; "" for a unit whose syntax is not read.
std::string show_fields(const walked_unit& unit);

} // namespace orv_h264
