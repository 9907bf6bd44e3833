// orv-h264 inspect: what a stream holds, unit by unit.
#pragma once

#include "exit_status.h"
#include "output_format.h"
#include "stream_input.h"

#include <bitset>
#include <cstdint>
#include <limits>

namespace orv_h264 {

struct inspect_options {
    stream_options stream;
    bool nals = false;                          ///< units only, without their elements
    bool positions = false;                     ///< with the place of each element
    bool long_names = false;                    ///< of units
    output_format format = output_format::text; ///< a table has a line for each syntax element
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
    std::bitset<32> only = std::bitset<32>().set(); ///< the NAL unit types that are shown
};

/// Prints what the units hold to the standard output, and what is wrong with the stream to the standard error stream.
/// Throws refusal for an input that is not read, and std::system_error when reading or writing fails.
exit_status inspect(const inspect_options& options);

} // namespace orv_h264
