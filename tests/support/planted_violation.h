// Streams that break rules of `orv-h264 check` on purpose, a table for each family of rules.
#pragma once

#include "support/made_stream.h"

#include <ostream>
#include <span>
#include <string_view>
#include <vector>

namespace support {

/// A stream, and all that is wrong with it.
struct planted_violation {
    std::string_view what;   ///< was planted
    std::string_view broken; ///< as broken_rules() tells it
    std::vector<unsigned char> (*make)();
    orv_utils_v4::h264::framing how = orv_utils_v4::h264::framing::annex_b;
    std::uint64_t most_unit_bytes = orv_utils_v4::h264::unit_splitter::usual_most_bytes;
};

inline std::ostream& operator<<(std::ostream& out, const planted_violation& planted)
{
    return out << planted.what;
}

/// The tables, each in a file of its own.
std::span<const planted_violation> planted_in_parameter_sets();
std::span<const planted_violation> planted_in_units();
std::span<const planted_violation> planted_in_slices();
std::span<const planted_violation> planted_in_marking();
std::span<const planted_violation> planted_in_lists();
std::span<const planted_violation> planted_in_output();
std::span<const planted_violation> planted_in_activation();
std::span<const planted_violation> planted_in_numbers();
std::span<const planted_violation> planted_in_order();
std::span<const planted_violation> planted_in_pictures();
std::span<const planted_violation> planted_in_hrd();
std::span<const planted_violation> planted_in_sei();
std::span<const planted_violation> planted_in_levels();

} // namespace support
