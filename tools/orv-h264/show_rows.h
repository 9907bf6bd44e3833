// The rows of frames as text and as JSON, one by one and added up.
#pragma once

#include "frame_totals.h"
#include "json_output.h"
#include "picture_rows.h"

#include <orv-utils-v4/h264_syntax/bounded_list.h>

#include <string>

namespace orv_h264 {

/// The names of the columns.
std::string row_heading(bool in_container);

std::string text_of(const picture_row& row, std::optional<container_ratio> tick);

/// The closing line. With fields a row is a field.
std::string text_of(const frame_totals& totals, bool fields);

/// Appends the row as a line of JSON, with its file where there are many. docs/schema/frames.schema.json describes it
/// and the totals. `tick` is that of a stream in a container.
void append_json(std::string& out, const picture_row& row, std::optional<container_ratio> tick,
                 const std::string* file = nullptr);
json json_of(const frame_totals& totals);

/// Appends the members of that line as the columns of a table, the file in front of them, and their names.
void append_columns(std::string& out, output_format table, const picture_row& row, std::optional<container_ratio> tick,
                    const std::string* file = nullptr);
void append_column_names(std::string& out, output_format table, bool in_container, bool with_file);

/// A layer or view in it.
json json_of(const row_layer& layer);

/// The words for what a row has. Those of slices are of H.264 Table 7-6.
const char* slice_kind_name(h264::slice_kind kind);
const char* structure_name(row_structure structure);
const char* source_name(h264::time_source source);

/// The types of its primary slices, each once, as they come.
using slice_kinds = h264::bounded_list<h264::slice_kind, 5>;
slice_kinds slice_types(const picture_row& row);

} // namespace orv_h264
