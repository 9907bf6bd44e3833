/// @file
/// The access unit delimiter, H.264 clause 7.3.2.4.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstdint>

namespace brenik {

/// The access unit delimiter: access_unit_delimiter_rbsp() of H.264 clause 7.3.2.4.
class ORV_UTILS_V4_EXPORT h264_nal_aud {
public:
    /// u(3), 0 to 7: which slice types the coming primary picture may hold (H.264 Table 7-5).
    std::uint8_t primary_pic_type = 0;
    /// The latest parse ended in well-formed trailing bits.
    bool valid = false;

    /// Reads the delimiter from the next byte boundary on; `br` stands behind the NAL unit header.
    /// @return `valid`: false when the trailing bits are missing, as in an empty RBSP, which reads as zero bits.
    ///     `primary_pic_type` is what was read either way
    bool parse(h2645_common_bitreader& br);
};

} // namespace brenik
