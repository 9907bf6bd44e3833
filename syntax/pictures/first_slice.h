// Detection of the first slice of a primary coded picture, H.264 clause 7.4.1.2.4. All is inline: between making a key
// and comparing it there is nothing that has to be stored.
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
inline first_slice_key key_of(const unit_reading& reading, const slice_header& header)
{
    first_slice_key key;
    key.whole = !reading.result.failure;
    key.reference = reading.unit.header.nal_ref_idc != 0;
    key.idr = IdrPicFlag(reading.unit.header);
    key.pic_parameter_set_id = header.pic_parameter_set_id;
    key.first_mb_in_slice = header.first_mb_in_slice;
    key.colour_plane_id = header.colour_plane_id;
    key.pic_order_cnt_type = reading.sps != nullptr ? reading.sps->pic_order_cnt_type : 0;
    key.frame_num = header.frame_num;
    key.field_pic_flag = header.field_pic_flag;
    key.bottom_field_flag = header.bottom_field_flag;
    key.idr_pic_id = header.idr_pic_id;
    key.pic_order_cnt_lsb = header.pic_order_cnt_lsb;
    key.delta_pic_order_cnt_bottom = header.delta_pic_order_cnt_bottom;
    key.delta_pic_order_cnt[0] = header.delta_pic_order_cnt[0];
    key.delta_pic_order_cnt[1] = header.delta_pic_order_cnt[1];
    return key;
}

/// A slice with key `next` is the first one of a picture, behind a picture whose first slice has key `first`. Where the
/// clause finds no difference, a macroblock that comes a second time tells that slices between are lost.
inline bool begins_picture(const first_slice_key& first, const first_slice_key& next)
{
    if (next.pic_parameter_set_id != first.pic_parameter_set_id || next.reference != first.reference ||
        next.idr != first.idr)
        return true;
    if (next.first_mb_in_slice == first.first_mb_in_slice && next.colour_plane_id == first.colour_plane_id)
        return true;
    if (!first.whole || !next.whole)
        return next.first_mb_in_slice == 0;
    if (next.frame_num != first.frame_num || next.field_pic_flag != first.field_pic_flag ||
        next.bottom_field_flag != first.bottom_field_flag || next.pic_order_cnt_type != first.pic_order_cnt_type)
        return true;
    if (next.idr && next.idr_pic_id != first.idr_pic_id)
        return true;
    if (next.pic_order_cnt_type == 0)
        return next.pic_order_cnt_lsb != first.pic_order_cnt_lsb ||
               next.delta_pic_order_cnt_bottom != first.delta_pic_order_cnt_bottom;
    return next.delta_pic_order_cnt[0] != first.delta_pic_order_cnt[0] ||
           next.delta_pic_order_cnt[1] != first.delta_pic_order_cnt[1];
}

} // namespace orv_utils_v4::h264
