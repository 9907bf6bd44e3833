// Behind show_syntax.h, for the files that implement it alone: a show() for each structure, which hands on the fields
// of that structure in the order of its syntax table.
#pragma once

#include "field_printer.h"
#include "walked_unit.h"

#include <cstddef>

namespace orv_h264 {

void show(field_printer& p, const brenik::h264_nal_sps& sps, const walked_unit& unit);
void show(field_printer& p, const brenik::h264_nal_pps& pps, const walked_unit& unit);
void show(field_printer& p, const brenik::h264_nal_slice_header& slice, const walked_unit& unit);

void show_messages(field_sink& sink, const walked_sei& sei);

/// The last bit up to which fields are what the unit or payload says.
std::size_t last_known_bit(const parse_outcome& outcome);

} // namespace orv_h264
