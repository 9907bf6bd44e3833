// Detection of the first slice of a primary coded picture, H.264 clause 7.4.1.2.4.
#pragma once

#include <orv-utils-v4/h264_syntax/stream.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// Elements of a primary slice that the slices of one picture have in common.
struct first_slice_key {
    bool whole = false; ///< the header was read; else only what stands above pic_order_cnt_type counts
    bool reference = false;
    bool idr = false;
    std::uint32_t pic_parameter_set_id = 0;
    std::uint32_t first_mb_in_slice = 0; ///< of the picture's first slice
    std::uint8_t colour_plane_id = 0;    ///< likewise
    std::uint32_t pic_order_cnt_type = 0;
    std::uint32_t frame_num = 0;
    bool field_pic_flag = false;
    bool bottom_field_flag = false;
    std::uint32_t idr_pic_id = 0;
    std::uint32_t pic_order_cnt_lsb = 0;
    std::int32_t delta_pic_order_cnt_bottom = 0;
    std::int32_t delta_pic_order_cnt[2] = {};
};

/// The key of a slice with this header.
first_slice_key key_of(const unit_reading& reading, const slice_header& header);

/// A slice with key `next` is the first one of a picture, behind a picture whose first slice has key `first`. Where the
/// clause finds no difference, a macroblock that comes a second time tells that slices between are lost.
bool begins_picture(const first_slice_key& first, const first_slice_key& next);

} // namespace orv_utils_v4::h264
