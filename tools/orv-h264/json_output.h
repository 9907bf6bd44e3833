// JSON for programs: a line an object, written as soon as it is complete. docs/schema/ describes the objects.
#pragma once

#include "output_format.h" // its enumerator json comes before the type of that name

#include <nlohmann/json.hpp>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace orv_h264 {

using json = nlohmann::ordered_json;

/// The value in one line. Bytes that are not UTF-8 become U+FFFD.
std::string json_line(const json& value);

/// Prints the object as one line.
void print_json(const json& object);

/// The text as a JSON string.
std::string json_text(std::string_view text);

/// Two hex digits a byte.
std::string hex_digits(std::span<const std::uint8_t> bytes);

/// An exact fraction: its numerator, its denominator, and its value rounded once.
json json_fraction(std::int64_t numerator, std::int64_t denominator);

/// The number with so many digits behind the point.
double rounded(double number, int digits);

/// The members that every output begins with: the name of its schema, the version of the schema, the input's name.
/// The version grows when members change their meaning or go; new members may come without it.
json json_head(const char* schema, std::string_view input_name);

/// The record, its file behind the member record: for runs over many files.
json record_of(std::string_view file, const json& record);

/// The first of the lines of an output that has several.
json json_first_line(const char* schema, std::string_view input_name);

} // namespace orv_h264
