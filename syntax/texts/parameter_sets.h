// The texts of the sequence and picture parameter sets, H.264 clauses 7.3.2.1, 7.3.2.2 and E.1. A text is the
// standard's table: an element a line, with its range. coders/ say what is done with the elements.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/derived.h>
#include <orv-utils-v4/h264_syntax/parameter_sets.h>
#include <orv-utils-v4/h264_syntax/pic_parameter_set.h>
#include <orv-utils-v4/h264_syntax/seq_parameter_set.h>

namespace orv_utils_v4::h264 {

// H.264 7.3.2.11
template <class Coder>
void rbsp_trailing_bits(Coder& c)
{
    const auto here = c.structure("rbsp_trailing_bits");
    c.stop_bit("rbsp_stop_one_bit");
    while (!c.byte_aligned())
        c.f(1, "rbsp_alignment_zero_bit", 0);
    c.end_of_unit();
}

// H.264 7.3.2.1.1.1
template <class Coder>
void code(Coder& c, in<Coder, scaling_list>& x, unsigned sizeOfScalingList)
{
    const auto here = c.structure("scaling_list");
    int lastScale = 8;
    int nextScale = 8;
    unsigned sent = 0;
    for (unsigned j = 0; j < sizeOfScalingList; ++j) {
        if (nextScale != 0) {
            auto& delta_scale = c.entry("delta_scale", x.delta_scale, sent++);
            c.se({"delta_scale", j}, delta_scale, -128, 127);
            nextScale = (lastScale + delta_scale + 256) % 256;
        }
        lastScale = nextScale == 0 ? lastScale : nextScale;
    }
    c.entries_end("delta_scale", x.delta_scale, sent);
}

// H.264 E.1.2
template <class Coder>
void code(Coder& c, in<Coder, hrd_parameters>& x)
{
    const auto here = c.structure("hrd_parameters");
    c.ue_bound("cpb_cnt_minus1", x.cpb_cnt_minus1, 0, hrd_parameters::most_specifications - 1);
    c.u(4, "bit_rate_scale", x.bit_rate_scale);
    c.u(4, "cpb_size_scale", x.cpb_size_scale);
    for (std::uint32_t SchedSelIdx = 0; SchedSelIdx <= x.cpb_cnt_minus1 && c.going(); ++SchedSelIdx) {
        c.ue({"bit_rate_value_minus1", SchedSelIdx}, x.bit_rate_value_minus1[SchedSelIdx]);
        c.ue({"cpb_size_value_minus1", SchedSelIdx}, x.cpb_size_value_minus1[SchedSelIdx]);
        c.flag({"cbr_flag", SchedSelIdx}, x.cbr_flag[SchedSelIdx]);
    }
    c.u(5, "initial_cpb_removal_delay_length_minus1", x.initial_cpb_removal_delay_length_minus1);
    c.u(5, "cpb_removal_delay_length_minus1", x.cpb_removal_delay_length_minus1);
    c.u(5, "dpb_output_delay_length_minus1", x.dpb_output_delay_length_minus1);
    c.u(5, "time_offset_length", x.time_offset_length);
}

// H.264 E.1.1
template <class Coder>
void code(Coder& c, in<Coder, vui_parameters>& x)
{
    constexpr std::uint8_t Extended_SAR = 255;
    const auto here = c.structure("vui_parameters");
    c.flag("aspect_ratio_info_present_flag", x.aspect_ratio_info_present_flag);
    if (x.aspect_ratio_info_present_flag) {
        c.u(8, "aspect_ratio_idc", x.aspect_ratio_idc);
        if (x.aspect_ratio_idc == Extended_SAR) {
            c.u(16, "sar_width", x.sar_width);
            c.u(16, "sar_height", x.sar_height);
        }
    }
    c.flag("overscan_info_present_flag", x.overscan_info_present_flag);
    if (x.overscan_info_present_flag)
        c.flag("overscan_appropriate_flag", x.overscan_appropriate_flag);
    c.flag("video_signal_type_present_flag", x.video_signal_type_present_flag);
    if (x.video_signal_type_present_flag) {
        c.u(3, "video_format", x.video_format);
        c.flag("video_full_range_flag", x.video_full_range_flag);
        c.flag("colour_description_present_flag", x.colour_description_present_flag);
        if (x.colour_description_present_flag) {
            c.u(8, "colour_primaries", x.colour_primaries);
            c.u(8, "transfer_characteristics", x.transfer_characteristics);
            c.u(8, "matrix_coefficients", x.matrix_coefficients);
        }
    }
    c.flag("chroma_loc_info_present_flag", x.chroma_loc_info_present_flag);
    if (x.chroma_loc_info_present_flag) {
        c.ue("chroma_sample_loc_type_top_field", x.chroma_sample_loc_type_top_field, 0, 5);
        c.ue("chroma_sample_loc_type_bottom_field", x.chroma_sample_loc_type_bottom_field, 0, 5);
    }
    c.flag("timing_info_present_flag", x.timing_info_present_flag);
    if (x.timing_info_present_flag) {
        c.u(32, "num_units_in_tick", x.num_units_in_tick, 1, 0xFFFFFFFF);
        c.u(32, "time_scale", x.time_scale, 1, 0xFFFFFFFF);
        c.flag("fixed_frame_rate_flag", x.fixed_frame_rate_flag);
    }
    c.flag("nal_hrd_parameters_present_flag", x.nal_hrd_parameters_present_flag);
    if (x.nal_hrd_parameters_present_flag)
        code(c, x.nal_hrd_parameters);
    c.flag("vcl_hrd_parameters_present_flag", x.vcl_hrd_parameters_present_flag);
    if (x.vcl_hrd_parameters_present_flag)
        code(c, x.vcl_hrd_parameters);
    if (x.nal_hrd_parameters_present_flag || x.vcl_hrd_parameters_present_flag)
        c.flag("low_delay_hrd_flag", x.low_delay_hrd_flag);
    else
        c.infer(x.low_delay_hrd_flag, !x.fixed_frame_rate_flag);
    c.flag("pic_struct_present_flag", x.pic_struct_present_flag);
    c.flag("bitstream_restriction_flag", x.bitstream_restriction_flag);
    if (x.bitstream_restriction_flag) {
        c.flag("motion_vectors_over_pic_boundaries_flag", x.motion_vectors_over_pic_boundaries_flag);
        c.ue("max_bytes_per_pic_denom", x.max_bytes_per_pic_denom, 0, 16);
        c.ue("max_bits_per_mb_denom", x.max_bits_per_mb_denom, 0, 16);
        c.ue("log2_max_mv_length_horizontal", x.log2_max_mv_length_horizontal, 0, 15);
        c.ue("log2_max_mv_length_vertical", x.log2_max_mv_length_vertical, 0, 15);
        c.ue("max_num_reorder_frames", x.max_num_reorder_frames, 0, 16);
        c.ue("max_dec_frame_buffering", x.max_dec_frame_buffering, 0, 16);
    }
}

/// Whether the table of clause 7.3.2.1.1 goes on with chroma_format_idc.
constexpr bool has_chroma_format(std::uint8_t profile_idc) noexcept
{
    switch (profile_idc) {
    case 100:
    case 110:
    case 122:
    case 244:
    case 44:
    case 83:
    case 86:
    case 118:
    case 128:
    case 138:
    case 139:
    case 134:
    case 135:
        return true;
    default:
        return false;
    }
}

// H.264 7.3.2.1.1
template <class Coder>
void code(Coder& c, in<Coder, seq_parameter_set_data>& x)
{
    const auto here = c.structure("seq_parameter_set_data");
    c.u(8, "profile_idc", x.profile_idc);
    c.flag("constraint_set0_flag", x.constraint_set0_flag);
    c.flag("constraint_set1_flag", x.constraint_set1_flag);
    c.flag("constraint_set2_flag", x.constraint_set2_flag);
    c.flag("constraint_set3_flag", x.constraint_set3_flag);
    c.flag("constraint_set4_flag", x.constraint_set4_flag);
    c.flag("constraint_set5_flag", x.constraint_set5_flag);
    c.u(2, "reserved_zero_2bits", x.reserved_zero_2bits, 0, 0);
    c.u(8, "level_idc", x.level_idc);
    c.ue("seq_parameter_set_id", x.seq_parameter_set_id, 0, 31);
    if (has_chroma_format(x.profile_idc)) {
        c.ue("chroma_format_idc", x.chroma_format_idc, 0, 3);
        if (x.chroma_format_idc == 3)
            c.flag("separate_colour_plane_flag", x.separate_colour_plane_flag);
        c.ue("bit_depth_luma_minus8", x.bit_depth_luma_minus8, 0, 6);
        c.ue("bit_depth_chroma_minus8", x.bit_depth_chroma_minus8, 0, 6);
        c.flag("qpprime_y_zero_transform_bypass_flag", x.qpprime_y_zero_transform_bypass_flag);
        c.flag("seq_scaling_matrix_present_flag", x.seq_scaling_matrix_present_flag);
        if (x.seq_scaling_matrix_present_flag) {
            for (unsigned i = 0; i < (x.chroma_format_idc != 3 ? 8U : 12U); ++i) {
                c.flag({"seq_scaling_list_present_flag", i}, x.seq_scaling_list_present_flag[i]);
                if (x.seq_scaling_list_present_flag[i])
                    code(c, x.lists[i], i < 6 ? 16 : 64);
            }
        }
    }
    c.ue("log2_max_frame_num_minus4", x.log2_max_frame_num_minus4, 0, 12);
    c.ue("pic_order_cnt_type", x.pic_order_cnt_type, 0, 2);
    if (x.pic_order_cnt_type == 0)
        c.ue("log2_max_pic_order_cnt_lsb_minus4", x.log2_max_pic_order_cnt_lsb_minus4, 0, 12);
    else if (x.pic_order_cnt_type == 1) {
        c.flag("delta_pic_order_always_zero_flag", x.delta_pic_order_always_zero_flag);
        c.se("offset_for_non_ref_pic", x.offset_for_non_ref_pic);
        c.se("offset_for_top_to_bottom_field", x.offset_for_top_to_bottom_field);
        c.ue_bound("num_ref_frames_in_pic_order_cnt_cycle", x.num_ref_frames_in_pic_order_cnt_cycle, 0,
                   seq_parameter_set_data::most_frames_in_cycle);
        for (std::uint32_t i = 0; i < x.num_ref_frames_in_pic_order_cnt_cycle && c.going(); ++i)
            c.se({"offset_for_ref_frame", i}, x.offset_for_ref_frame[i]);
    }
    c.ue("max_num_ref_frames", x.max_num_ref_frames, 0, 16);
    c.flag("gaps_in_frame_num_value_allowed_flag", x.gaps_in_frame_num_value_allowed_flag);
    c.ue("pic_width_in_mbs_minus1", x.pic_width_in_mbs_minus1);
    c.ue("pic_height_in_map_units_minus1", x.pic_height_in_map_units_minus1);
    c.flag("frame_mbs_only_flag", x.frame_mbs_only_flag);
    if (!x.frame_mbs_only_flag)
        c.flag("mb_adaptive_frame_field_flag", x.mb_adaptive_frame_field_flag);
    c.flag("direct_8x8_inference_flag", x.direct_8x8_inference_flag);
    c.flag("frame_cropping_flag", x.frame_cropping_flag);
    if (x.frame_cropping_flag) {
        c.ue("frame_crop_left_offset", x.frame_crop_left_offset);
        c.ue("frame_crop_right_offset", x.frame_crop_right_offset);
        c.ue("frame_crop_top_offset", x.frame_crop_top_offset);
        c.ue("frame_crop_bottom_offset", x.frame_crop_bottom_offset);
    }
    c.flag("vui_parameters_present_flag", x.vui_parameters_present_flag);
    if (x.vui_parameters_present_flag)
        code(c, x.vui_parameters);
    if (!x.vui_parameters_present_flag || !x.vui_parameters.bitstream_restriction_flag) {
        c.infer(x.vui_parameters.max_num_reorder_frames, inferred_reorder_frames(x));
        c.infer(x.vui_parameters.max_dec_frame_buffering, inferred_reorder_frames(x));
    }
}

// H.264 7.3.2.1
template <class Coder>
void code(Coder& c, in<Coder, seq_parameter_set_rbsp>& x)
{
    const auto here = c.structure("seq_parameter_set_rbsp");
    code(c, x.seq_parameter_set_data);
    rbsp_trailing_bits(c);
}

// H.264 7.3.2.1.2
template <class Coder>
void code(Coder& c, in<Coder, seq_parameter_set_extension_rbsp>& x)
{
    const auto here = c.structure("seq_parameter_set_extension_rbsp");
    c.ue("seq_parameter_set_id", x.seq_parameter_set_id, 0, 31);
    c.ue("aux_format_idc", x.aux_format_idc, 0, 3);
    if (x.aux_format_idc != 0) {
        c.ue("bit_depth_aux_minus8", x.bit_depth_aux_minus8, 0, 4);
        c.flag("alpha_incr_flag", x.alpha_incr_flag);
        const std::uint64_t bits = std::uint64_t{x.bit_depth_aux_minus8} + 9;
        c.u_v(bits, "alpha_opaque_value", x.alpha_opaque_value);
        c.u_v(bits, "alpha_transparent_value", x.alpha_transparent_value);
    }
    c.flag("additional_extension_flag", x.additional_extension_flag, 0, 0);
    rbsp_trailing_bits(c);
}

// H.264 7.3.2.2; with an SPS that is not there, as if it had the defaults
template <class Coder>
void code(Coder& c, in<Coder, pic_parameter_set_rbsp>& x, const parameter_sets& sets)
{
    const auto here = c.structure("pic_parameter_set_rbsp");
    c.ue("pic_parameter_set_id", x.pic_parameter_set_id, 0, 255);
    c.ue("seq_parameter_set_id", x.seq_parameter_set_id, 0, 31);
    const seq_parameter_set_data* const sps = sps_of(x, sets);
    c.flag("entropy_coding_mode_flag", x.entropy_coding_mode_flag);
    c.flag("bottom_field_pic_order_in_frame_present_flag", x.bottom_field_pic_order_in_frame_present_flag);
    c.ue_bound("num_slice_groups_minus1", x.num_slice_groups_minus1, 0, pic_parameter_set_rbsp::most_slice_groups - 1);
    if (x.num_slice_groups_minus1 > 0) {
        c.ue("slice_group_map_type", x.slice_group_map_type, 0, 6);
        if (x.slice_group_map_type == 0) {
            for (std::uint32_t iGroup = 0; iGroup <= x.num_slice_groups_minus1 && c.going(); ++iGroup)
                c.ue({"run_length_minus1", iGroup}, x.run_length_minus1[iGroup]);
        } else if (x.slice_group_map_type == 2) {
            for (std::uint32_t iGroup = 0; iGroup < x.num_slice_groups_minus1 && c.going(); ++iGroup) {
                c.ue({"top_left", iGroup}, x.top_left[iGroup]);
                c.ue({"bottom_right", iGroup}, x.bottom_right[iGroup]);
            }
        } else if (x.slice_group_map_type >= 3 && x.slice_group_map_type <= 5) {
            c.flag("slice_group_change_direction_flag", x.slice_group_change_direction_flag);
            c.ue("slice_group_change_rate_minus1", x.slice_group_change_rate_minus1);
        } else if (x.slice_group_map_type == 6) {
            c.ue("pic_size_in_map_units_minus1", x.pic_size_in_map_units_minus1);
            c.count("slice_group_id", x.slice_group_id, std::uint64_t{x.pic_size_in_map_units_minus1} + 1);
            for (std::uint32_t i = 0; i < x.slice_group_id.size() && c.going(); ++i)
                c.u_v(slice_group_id_bits(x), {"slice_group_id", i}, x.slice_group_id[i], 0, x.num_slice_groups_minus1);
        }
    }
    c.ue("num_ref_idx_l0_default_active_minus1", x.num_ref_idx_l0_default_active_minus1, 0, 31);
    c.ue("num_ref_idx_l1_default_active_minus1", x.num_ref_idx_l1_default_active_minus1, 0, 31);
    c.flag("weighted_pred_flag", x.weighted_pred_flag);
    c.u(2, "weighted_bipred_idc", x.weighted_bipred_idc, 0, 2);
    c.se("pic_init_qp_minus26", x.pic_init_qp_minus26, -26 - (sps ? 6 * std::int64_t{sps->bit_depth_luma_minus8} : 0),
         25);
    c.se("pic_init_qs_minus26", x.pic_init_qs_minus26, -26, 25);
    c.se("chroma_qp_index_offset", x.chroma_qp_index_offset, -12, 12);
    c.flag("deblocking_filter_control_present_flag", x.deblocking_filter_control_present_flag);
    c.flag("constrained_intra_pred_flag", x.constrained_intra_pred_flag);
    c.flag("redundant_pic_cnt_present_flag", x.redundant_pic_cnt_present_flag);
    c.more_rbsp_data(x.transform_8x8_mode_sent);
    if (x.transform_8x8_mode_sent) {
        c.flag("transform_8x8_mode_flag", x.transform_8x8_mode_flag);
        c.flag("pic_scaling_matrix_present_flag", x.pic_scaling_matrix_present_flag);
        if (x.pic_scaling_matrix_present_flag) {
            const unsigned lists_8x8 = sps && sps->chroma_format_idc == 3 ? 6 : 2;
            for (unsigned i = 0; i < 6 + (x.transform_8x8_mode_flag ? lists_8x8 : 0); ++i) {
                c.flag({"pic_scaling_list_present_flag", i}, x.pic_scaling_list_present_flag[i]);
                if (x.pic_scaling_list_present_flag[i])
                    code(c, x.lists[i], i < 6 ? 16 : 64);
            }
        }
        c.se("second_chroma_qp_index_offset", x.second_chroma_qp_index_offset, -12, 12);
    } else
        c.infer(x.second_chroma_qp_index_offset, x.chroma_qp_index_offset);
    rbsp_trailing_bits(c);
}

} // namespace orv_utils_v4::h264
