// Tables of comma-separated (RFC 4180) or tab-separated columns out of JSON objects: an object a row, or a row a fact.
#pragma once

#include "json_output.h"
#include "output_format.h"

#include <functional>
#include <string>
#include <vector>

namespace orv_h264 {

/// A value as a cell has it: "" of null, a text as it is with U+FFFD for bytes that are not UTF-8, the values of an
/// array with spaces between them, of an object with a member "value" that one; what else there is, as JSON.
std::string cell_of(const json& value);

/// Appends a cell. CSV quotes one with a comma, a quotation mark or the end of a line in it; in TSV tabs and the ends
/// of lines become spaces.
void append_cell(std::string& out, output_format table, std::string_view cell);
/// Appends the cells as a line.
void append_row(std::string& out, output_format table, const std::vector<std::string>& cells);

/// Takes the path of a value that has no further ones in it, and the value.
using fact_sink = std::function<void(const std::string& path, const json& value)>;

/// Tells all values of the object in order, their paths as in `sequences[0].size.width`; of an array or object without
/// members itself.
void tell_facts(const json& object, const fact_sink& take);

/// Prints a line for each fact behind a line of names: path, value.
void print_facts(output_format table, const json& object);

/// The same of many files: one line of names, of which file is the first, and the lines of each object.
void print_fact_names_of_many(output_format table);
void print_facts_of(const std::string& file, output_format table, const json& object);

} // namespace orv_h264
