// The fields of parsed structures as lines, in the order of their syntax.
#pragma once

#include "walked_unit.h"

#include <string>

namespace orv_h264 {

/// The fields that the unit carried, a line each; "" for a unit whose syntax is not read.
std::string show_fields(const walked_unit& unit);

} // namespace orv_h264
