// Fields that follow from others (valid, SubWidthC, sar_width of a table ...) are left out.
#include "same_sequence.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace orv_h264 {

namespace {

bool same(const brenik::h264_scaling_list& a, const brenik::h264_scaling_list& b)
{
    return a.present == b.present && a.useDefaultScalingMatrixFlag == b.useDefaultScalingMatrixFlag &&
           a.values == b.values;
}

using scaling_lists = std::array<brenik::h264_scaling_list, 6>;

bool same(const scaling_lists& a, const scaling_lists& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), [](const auto& x, const auto& y) { return same(x, y); });
}

// H.264 E.1.2, hrd_parameters()
auto fields_of(const brenik::h264_hrd_parameters& hrd)
{
    return std::tie(hrd.cpb_cnt_minus1, hrd.bit_rate_scale, hrd.cpb_size_scale, hrd.bit_rate_value_minus1,
                    hrd.cpb_size_value_minus1, hrd.cbr_flag, hrd.initial_cpb_removal_delay_length_minus1,
                    hrd.cpb_removal_delay_length_minus1, hrd.dpb_output_delay_length_minus1, hrd.time_offset_length);
}

// H.264 E.1.1, vui_parameters(), but for the HRD parameters
auto fields_of(const brenik::h264_vui_parameters& vui)
{
    return std::tie(vui.aspect_ratio_info_present_flag, vui.aspect_ratio_idc, vui.sar_width, vui.sar_height,
                    vui.overscan_info_present_flag, vui.overscan_appropriate_flag, vui.video_signal_type_present_flag,
                    vui.video_format, vui.video_full_range_flag, vui.colour_description_present_flag,
                    vui.colour_primaries, vui.transfer_characteristics, vui.matrix_coefficients,
                    vui.chroma_loc_info_present_flag, vui.chroma_sample_loc_type_top_field,
                    vui.chroma_sample_loc_type_bottom_field, vui.timing_info_present_flag, vui.num_units_in_tick,
                    vui.time_scale, vui.fixed_frame_rate_flag, vui.nal_hrd_parameters_present_flag,
                    vui.vcl_hrd_parameters_present_flag, vui.low_delay_hrd_flag, vui.pic_struct_present_flag,
                    vui.bitstream_restriction_flag, vui.motion_vectors_over_pic_boundaries_flag,
                    vui.max_bytes_per_pic_denom, vui.max_bits_per_mb_denom, vui.log2_max_mv_length_horizontal,
                    vui.log2_max_mv_length_vertical, vui.max_num_reorder_frames, vui.max_dec_frame_buffering);
}

// H.264 7.3.2.1.1, seq_parameter_set_data(), but for the id, the scaling lists and the VUI
auto fields_of(const brenik::h264_nal_sps& sps)
{
    return std::tie(
        sps.profile_idc, sps.constraint_set0_flag, sps.constraint_set1_flag, sps.constraint_set2_flag,
        sps.constraint_set3_flag, sps.constraint_set4_flag, sps.constraint_set5_flag, sps.reserved_zero_2bits,
        sps.level_idc, sps.chroma_format_idc, sps.separate_colour_plane_flag, sps.bit_depth_luma_minus8,
        sps.bit_depth_chroma_minus8, sps.qpprime_y_zero_transform_bypass_flag, sps.seq_scaling_matrix_present_flag,
        sps.log2_max_frame_num_minus4, sps.pic_order_cnt_type, sps.log2_max_pic_order_cnt_lsb_minus4,
        sps.delta_pic_order_always_zero_flag, sps.offset_for_non_ref_pic, sps.offset_for_top_to_bottom_field,
        sps.num_ref_frames_in_pic_order_cnt_cycle, sps.offset_for_ref_frame, sps.max_num_ref_frames,
        sps.gaps_in_frame_num_value_allowed_flag, sps.pic_width_in_mbs_minus1, sps.pic_height_in_map_units_minus1,
        sps.frame_mbs_only_flag, sps.mb_adaptive_frame_field_flag, sps.direct_8x8_inference_flag,
        sps.frame_cropping_flag, sps.frame_crop_left_offset, sps.frame_crop_right_offset, sps.frame_crop_top_offset,
        sps.frame_crop_bottom_offset, sps.vui_parameters_present_flag);
}

} // namespace

bool same_sequence(const brenik::h264_nal_sps& a, const brenik::h264_nal_sps& b)
{
    return fields_of(a) == fields_of(b) && same(a.scaling_list_4x4, b.scaling_list_4x4) &&
           same(a.scaling_list_8x8, b.scaling_list_8x8) && fields_of(a.vui) == fields_of(b.vui) &&
           fields_of(a.vui.nal_hrd) == fields_of(b.vui.nal_hrd) && fields_of(a.vui.vcl_hrd) == fields_of(b.vui.vcl_hrd);
}

} // namespace orv_h264
