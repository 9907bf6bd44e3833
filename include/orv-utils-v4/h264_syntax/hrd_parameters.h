/// @file
/// hrd_parameters(), H.264 clause E.1.2.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// hrd_parameters(): the bit rates and buffer sizes of the hypothetical reference decoder (clauses E.1.2 and E.2.2).
struct hrd_parameters {
    /// The most alternative specifications; cpb_cnt_minus1 is at most one less.
    static constexpr std::uint32_t most_specifications = 32;

    std::uint32_t cpb_cnt_minus1 = 0;                              ///< 0 to 31
    std::uint8_t bit_rate_scale = 0;                               ///< BitRate is in units of 2^(6 + scale) bit/s
    std::uint8_t cpb_size_scale = 0;                               ///< CpbSize is in units of 2^(4 + scale) bits
    std::uint32_t bit_rate_value_minus1[most_specifications] = {}; ///< 0 to 2^32 - 2
    std::uint32_t cpb_size_value_minus1[most_specifications] = {}; ///< 0 to 2^32 - 2
    bool cbr_flag[most_specifications] = {};                       ///< constant bit rate
    std::uint8_t initial_cpb_removal_delay_length_minus1 = 23;     ///< 0 to 31
    std::uint8_t cpb_removal_delay_length_minus1 = 23;             ///< 0 to 31
    std::uint8_t dpb_output_delay_length_minus1 = 23;              ///< 0 to 31
    std::uint8_t time_offset_length = 24;                          ///< 0 to 31 bits

    friend ORV_UTILS_V4_EXPORT bool operator==(const hrd_parameters&, const hrd_parameters&);
};

} // namespace orv_utils_v4::h264
