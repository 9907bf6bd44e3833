#include "first_slice.h"

namespace orv_utils_v4::h264 {

first_slice_key key_of(const unit_reading& reading, const slice_header& header)
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

bool begins_picture(const first_slice_key& first, const first_slice_key& next)
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
