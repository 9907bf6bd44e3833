// The bits of seconds of a stream, beside the bit rates that its HRD parameters promise.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <array>
#include <cstdint>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// The seconds of the pictures that have one set of HRD parameters.
struct second_rates {
    std::uint64_t seconds = 0;
    double largest = 0;                                                              ///< bits of the fullest one
    std::array<std::uint64_t, h264::hrd_parameters::most_specifications> above = {}; ///< of each schedule

    /// Takes seconds that are alike.
    void add(const h264::hrd_parameters& hrd, double bits, std::uint64_t count);
};

} // namespace orv_h264
