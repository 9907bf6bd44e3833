// How a subcommand prints what it knows.
#pragma once

#include <cstdint>

namespace orv_h264 {

enum class output_format : std::uint8_t {
    text, ///< for a person
    json,
    csv, ///< RFC 4180, a first line of names, lines that end in a line feed
    tsv, ///< likewise, tabs between the columns and nothing quoted
};

/// The lines are rows of a table.
constexpr bool is_table(output_format format)
{
    return format == output_format::csv || format == output_format::tsv;
}

} // namespace orv_h264
