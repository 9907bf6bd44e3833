// What a slice header is parsed with: its parameter sets and the NAL unit header.
#pragma once

#include "support/slice_header_builder.h"

#include <orv-utils-v4/h264/nal_slice_header.h>

#include <cstdint>

namespace support {

/// One SPS and one PPS, the ids they are stored under, and the type of the unit. Unless a test says more, nothing but
/// what every slice has is sent.
struct slice_context {
    brenik::h264_nal_sps sps;
    brenik::h264_nal_pps pps;
    std::uint32_t sps_id = 3;
    std::uint32_t pps_id = 0;
    brenik::h264_nal nal;

    slice_context()
    {
        sps.valid = pps.valid = nal.valid = true;
        sps.frame_mbs_only_flag = true;
        sps.pic_order_cnt_type = 2;
        pps.seq_parameter_set_id = sps_id;
        nal.nal_unit_type = brenik::h264_nal_unit_type_slice_non_idr;
    }

    brenik::h2645_common_base_store<brenik::h264_nal_sps> sps_store() const
    {
        brenik::h2645_common_base_store<brenik::h264_nal_sps> store;
        store.insert_or_assign(sps_id, sps);
        return store;
    }

    brenik::h2645_common_base_store<brenik::h264_nal_pps> pps_store() const
    {
        brenik::h2645_common_base_store<brenik::h264_nal_pps> store;
        store.insert_or_assign(pps_id, pps);
        return store;
    }
};

/// The context in which the elements of the description are those that are sent. An element that only a flag of both
/// parameter sets or an earlier element brings is for the description to leave out.
inline slice_context context_of(const slice_header_description& slice)
{
    slice_context context;
    context.pps_id = slice.pic_parameter_set_id;
    context.sps.separate_colour_plane_flag = slice.colour_plane_id.has_value();
    context.sps.log2_max_frame_num_minus4 = slice.frame_num_width - 4;
    context.sps.frame_mbs_only_flag = !slice.field_pic_flag;
    if (slice.idr_pic_id)
        context.nal.nal_unit_type = brenik::h264_nal_unit_type_slice_idr;
    if (slice.pic_order_cnt_lsb)
        context.sps.pic_order_cnt_type = 0;
    else if (!slice.delta_pic_order_cnt.empty())
        context.sps.pic_order_cnt_type = 1;
    context.sps.log2_max_pic_order_cnt_lsb_minus4 = slice.pic_order_cnt_lsb_width - 4;
    context.pps.bottom_field_pic_order_in_frame_present_flag =
        slice.delta_pic_order_cnt_bottom || slice.delta_pic_order_cnt.size() == 2;
    context.pps.redundant_pic_cnt_present_flag = slice.redundant_pic_cnt.has_value();
    return context;
}

} // namespace support
