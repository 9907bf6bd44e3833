// The way in for who shows a unit: its fields, whatever structure it holds.
#pragma once

#include "field_sink.h"
#include "walked_unit.h"

#include <string>

namespace orv_h264 {

/// Hands the fields that the unit carried to `sink`; none for a unit whose syntax is not read.
void show_fields(field_sink& sink, const walked_unit& unit);

/// Likewise as lines.
std::string show_fields(const walked_unit& unit);

} // namespace orv_h264
