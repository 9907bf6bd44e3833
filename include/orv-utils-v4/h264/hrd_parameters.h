/// @file
/// HRD parameters, H.264 clause E.1.2.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstdint>
#include <vector>

namespace brenik {

/// HRD parameters, bit rates and buffer sizes: hrd_parameters() of H.264 clause E.1.2. The three arrays have an entry
/// for each SchedSelIdx.
class ORV_UTILS_V4_EXPORT h264_hrd_parameters {
public:
    std::uint32_t cpb_cnt_minus1 = 0; ///< ue(v), at most 127 (the standard: 31)
    std::uint8_t bit_rate_scale = 0;  ///< u(4): BitRate = (bit_rate_value_minus1 + 1) << (6 + bit_rate_scale) bit/s
    std::uint8_t cpb_size_scale = 0;  ///< u(4): CpbSize = (cpb_size_value_minus1 + 1) << (4 + cpb_size_scale) bits
    std::vector<std::uint32_t> bit_rate_value_minus1;         ///< ue(v) each
    std::vector<std::uint32_t> cpb_size_value_minus1;         ///< ue(v) each
    std::vector<bool> cbr_flag;                               ///< u(1) each
    std::uint8_t initial_cpb_removal_delay_length_minus1 = 0; ///< u(5), bits less one
    std::uint8_t cpb_removal_delay_length_minus1 = 0;         ///< u(5), bits less one
    std::uint8_t dpb_output_delay_length_minus1 = 0;          ///< u(5), bits less one
    std::uint8_t time_offset_length = 0;                      ///< u(5), bits
    bool valid = false;                                       ///< set by a successful parse, never cleared

    /// Reads the structure. Bits past the end read as zero.
    /// @return false, with `valid` as it was and the fields read so far kept, when there are more than 128 CPB
    ///     specifications or memory runs out
    /// @throws h2645_common_malformed_code from the bit reader
    bool parse(h2645_common_bitreader& br);
};

} // namespace brenik
