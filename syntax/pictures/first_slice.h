// Detection of the first slice of a primary coded picture, H.264 clause 7.4.1.2.4. Inline, since it is asked of every
// slice.
#pragma once

#include <orv-utils-v4/h264_syntax/access_unit.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// A primary slice with the header `next` is the first one of a picture, behind the picture of `before`, whose header
/// is known. Of headers that were not read whole, only what stands above pic_order_cnt_type counts. Where the clause
/// finds no difference, a macroblock that comes a second time tells that slices between are lost.
inline bool begins_picture(const access_unit& before, const unit_reading& reading, const slice_header& next)
{
    const slice_header& first = *before.header;
    const nal_unit_header& unit = reading.unit.header;
    if (next.pic_parameter_set_id != first.pic_parameter_set_id ||
        (unit.nal_ref_idc != 0) != (before.nal_ref_idc != 0) || IdrPicFlag(unit) != before.idr)
        return true;
    if (next.first_mb_in_slice == first.first_mb_in_slice && next.colour_plane_id == first.colour_plane_id)
        return true;
    if (!before.whole || reading.result.failure)
        return next.first_mb_in_slice == 0;
    const std::uint32_t first_type = before.sps != nullptr ? before.sps->pic_order_cnt_type : 0;
    const std::uint32_t next_type = reading.sps != nullptr ? reading.sps->pic_order_cnt_type : 0;
    if (next.frame_num != first.frame_num || next.field_pic_flag != first.field_pic_flag ||
        next.bottom_field_flag != first.bottom_field_flag || next_type != first_type)
        return true;
    if (before.idr && next.idr_pic_id != first.idr_pic_id)
        return true;
    if (next_type == 0)
        return next.pic_order_cnt_lsb != first.pic_order_cnt_lsb ||
               next.delta_pic_order_cnt_bottom != first.delta_pic_order_cnt_bottom;
    return next.delta_pic_order_cnt[0] != first.delta_pic_order_cnt[0] ||
           next.delta_pic_order_cnt[1] != first.delta_pic_order_cnt[1];
}

} // namespace orv_utils_v4::h264
