// The rows of frames as text and as JSON, one by one and added up.
#pragma once

#include "frame_totals.h"
#include "json_output.h"
#include "picture_rows.h"

#include <string>

namespace orv_h264 {

/// The names of the columns.
std::string row_heading(bool in_container);

std::string text_of(const picture_row& row, std::optional<container_ratio> tick);

/// The closing line. With fields a row is a field.
std::string text_of(const frame_totals& totals, bool fields);

/// docs/schema/frames.schema.json describes both.
json json_of(const picture_row& row, std::optional<container_ratio> tick);
json json_of(const frame_totals& totals);

/// A layer or view in it.
json json_of(const row_layer& layer);

/// The words for what a row has. Those of slices are of H.264 Table 7-6.
const char* slice_kind_name(h264::slice_kind kind);
const char* structure_name(row_structure structure);
const char* source_name(h264::time_source source);

/// The types of its primary slices, each once, as they come.
std::vector<std::string> slice_types(const picture_row& row);

} // namespace orv_h264
