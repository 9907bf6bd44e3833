// The fields of slice headers by name. The steps of a list are two arrays, one of the idcs and one of the values.
#pragma once

#include "support/parameter_set_fields.h"

#include <orv-utils-v4/h264/nal_slice_header.h>

#include <cstdint>
#include <iterator>
#include <vector>

namespace support {

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_nal_slice_header::ref_pic_list_modification_entry_t& list)
{
    std::vector<std::uint32_t> idcs;
    std::vector<std::uint32_t> values;
    for (const auto& entry : list.entries) {
        idcs.push_back(entry.modification_of_pic_nums_idc);
        values.push_back(entry.pic_num_value);
    }
    visit("ref_pic_list_modification_flag", list.ref_pic_list_modification_flag);
    visit("modification_of_pic_nums_idc", idcs);
    visit("pic_num_value", values);
}

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_nal_slice_header& slice)
{
    visit("first_mb_in_slice", slice.first_mb_in_slice);
    visit("slice_type", slice.slice_type);
    visit("pic_parameter_set_id", slice.pic_parameter_set_id);
    visit("colour_plane_id", slice.colour_plane_id);
    visit("frame_num", slice.frame_num);
    visit("field_pic_flag", slice.field_pic_flag);
    visit("bottom_field_flag", slice.bottom_field_flag);
    visit("idr_pic_id", slice.idr_pic_id);
    visit("pic_order_cnt_lsb", slice.pic_order_cnt_lsb);
    visit("delta_pic_order_cnt_bottom", slice.delta_pic_order_cnt_bottom);
    visit("delta_pic_order_cnt",
          std::vector<std::int32_t>(std::begin(slice.delta_pic_order_cnt), std::end(slice.delta_pic_order_cnt)));
    visit("redundant_pic_cnt", slice.redundant_pic_cnt);
    visit("direct_spatial_mv_pred_flag", slice.direct_spatial_mv_pred_flag);
    visit("num_ref_idx_active_override_flag", slice.num_ref_idx_active_override_flag);
    visit("num_ref_idx_l0_active_minus1", slice.num_ref_idx_l0_active_minus1);
    visit("num_ref_idx_l1_active_minus1", slice.num_ref_idx_l1_active_minus1);
    visit.enter("ref_pic_list_modification_l0", slice.ref_pic_list_modification_l0);
    visit.enter("ref_pic_list_modification_l1", slice.ref_pic_list_modification_l1);
    visit("IdrPicFlag", slice.IdrPicFlag);
    visit("valid", slice.valid);
}

} // namespace support
