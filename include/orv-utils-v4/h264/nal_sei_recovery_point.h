/// @file
/// The recovery point SEI message, H.264 clause D.1.8.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstdint>

namespace brenik {

/// The recovery point, recovery_point() of H.264 clause D.1.8: from which picture on decoding that began here gives the
/// right pictures.
class ORV_UTILS_V4_EXPORT h264_nal_sei_recovery_point {
public:
    std::uint32_t recovery_frame_cnt = 0;      ///< ue(v), in frames by frame_num
    std::uint8_t changing_slice_group_idc = 0; ///< u(2); the last element of the message
    bool exact_match_flag = false;             ///< u(1)
    bool broken_link_flag = false;             ///< u(1)
    bool valid = false;                        ///< set by a parse

    /// Reads the payload. Bits past the end read as zero.
    /// @return true, and `valid` true
    /// @throws h2645_common_malformed_code from the bit reader; `valid` stays as it was
    bool parse(h2645_common_bitreader& br);
};

} // namespace brenik
