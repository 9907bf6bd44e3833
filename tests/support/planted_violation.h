// Streams that break rules of `orv-h264 check` on purpose, a table for each family of rules.
#pragma once

#include "support/made_stream.h"

#include <span>
#include <string_view>

namespace support {

/// A stream, and all that is wrong with it.
struct planted_violation {
    std::string_view what;   ///< was planted
    std::string_view broken; ///< as broken_rules() tells it
    std::vector<unsigned char> (*make)();
};

/// The tables, each in a file of its own.
std::span<const planted_violation> planted_in_parameter_sets();
std::span<const planted_violation> planted_in_units();
std::span<const planted_violation> planted_in_slices();
std::span<const planted_violation> planted_in_order();
std::span<const planted_violation> planted_in_pictures();

} // namespace support
