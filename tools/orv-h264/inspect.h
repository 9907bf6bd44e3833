// orv-h264 inspect: what a stream holds, unit by unit.
#pragma once

#include "exit_status.h"
#include "piece_feeder.h"

#include <bitset>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace orv_h264 {

struct inspect_options {
    std::string path;
    bool nals = false; ///< units only, without their fields
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
    std::bitset<32> only = std::bitset<32>().set(); ///< the NAL unit types shown
    std::optional<brenik::h2645_common_nalfmt> format;
    std::uint64_t max_unit = piece_feeder::usual_max_unit;
};

/// Prints a line for each NAL unit to the standard output, and what is wrong to the standard error stream.
/// Throws std::system_error when reading or writing fails.
exit_status inspect(const inspect_options& options);

} // namespace orv_h264
