/// @file
/// The pan-scan rectangle SEI message, H.264 clause D.1.4.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstdint>
#include <vector>

namespace brenik {

/// The pan-scan rectangle SEI message: pan_scan_rect() of H.264 clause D.1.4. A parse does not clear the object: fields
/// that the message does not carry keep their values.
class ORV_UTILS_V4_EXPORT h264_nal_sei_pan_scan_rect {
public:
    /// A rectangle, its sides in sixteenths of a luma sample off those of the cropped picture.
    struct rect {
        std::int32_t pan_scan_rect_left_offset = 0;   ///< se(v)
        std::int32_t pan_scan_rect_right_offset = 0;  ///< se(v)
        std::int32_t pan_scan_rect_top_offset = 0;    ///< se(v)
        std::int32_t pan_scan_rect_bottom_offset = 0; ///< se(v)
    };

    std::uint32_t pan_scan_rect_id = 0;                ///< ue(v)
    bool pan_scan_rect_cancel_flag = false;            ///< u(1): nothing follows
    std::uint32_t pan_scan_cnt_minus1 = 0;             ///< ue(v), at most 127 (the standard: 2)
    std::vector<rect> rects;                           ///< pan_scan_cnt_minus1 + 1 of them
    std::uint32_t pan_scan_rect_repetition_period = 0; ///< ue(v), not limited (the standard: 0 to 16384)
    bool valid = false;                                ///< see parse()

    /// Reads the payload. Bits past the end read as zero.
    /// @return true, and `valid` true; false, with `valid` as it was and the fields read so far kept, when there are
    ///     more than 128 rectangles or memory runs out
    /// @throws h2645_common_malformed_code from the bit reader; `valid` stays as it was
    bool parse(h2645_common_bitreader& br);
};

} // namespace brenik
