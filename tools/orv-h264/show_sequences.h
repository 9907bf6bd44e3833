// The lines of info about sequences, and what its other lines share with them.
#pragma once

#include "sequence_summary.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

/// Prints a label and its text; nothing where there is no text.
void print_row(std::string_view label, std::string_view text);

/// Prints an empty line and a heading.
void print_heading(std::string_view text);

/// "29.97003 Hz (30000/1001)"
std::string rate_text(const h264::ratio& rate);

/// "1920x1080"
std::string size_text(const h264::picture_size& size);

/// The name, or that it is unknown and its number.
std::string or_number(const std::string& name, std::uint64_t number);

/// Prints all sequences, and how many further ones there are.
void print_sequences(const std::vector<sequence_summary>& sequences, std::uint64_t further);

} // namespace orv_h264
