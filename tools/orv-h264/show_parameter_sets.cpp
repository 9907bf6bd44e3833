#include "names.h"
#include "sequence_summary.h"
#include "show_structures.h"

#include <array>
#include <bit>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using lists = std::array<brenik::h264_scaling_list, 6>;

// H.264 E.1.2, hrd_parameters()
void show(field_printer& p, const char* name, const brenik::h264_hrd_parameters& hrd)
{
    const field_printer::deeper indented(p, name);
    p.ue("cpb_cnt_minus1", hrd.cpb_cnt_minus1);
    p.u(4, "bit_rate_scale", hrd.bit_rate_scale);
    p.u(4, "cpb_size_scale", hrd.cpb_size_scale);
    const std::vector<cpb_schedule> schedules = schedules_of(hrd);
    for (std::size_t i = 0; i < schedules.size(); ++i) {
        p.ue({"bit_rate_value_minus1", i}, hrd.bit_rate_value_minus1[i],
             fmt::format("{} bit/s", schedules[i].bit_rate));
        p.ue({"cpb_size_value_minus1", i}, hrd.cpb_size_value_minus1[i], fmt::format("{} bits", schedules[i].size));
        p.flag({"cbr_flag", i}, hrd.cbr_flag[i]);
    }
    p.u(5, "initial_cpb_removal_delay_length_minus1", hrd.initial_cpb_removal_delay_length_minus1);
    p.u(5, "cpb_removal_delay_length_minus1", hrd.cpb_removal_delay_length_minus1);
    p.u(5, "dpb_output_delay_length_minus1", hrd.dpb_output_delay_length_minus1);
    p.u(5, "time_offset_length", hrd.time_offset_length);
}

void show_video_signal_type(field_printer& p, const brenik::h264_vui_parameters& vui)
{
    p.u(3, "video_format", vui.video_format, vui.video_format_to_str());
    p.flag("video_full_range_flag", vui.video_full_range_flag);
    p.flag("colour_description_present_flag", vui.colour_description_present_flag);
    if (!vui.colour_description_present_flag)
        return;
    p.u(8, "colour_primaries", vui.colour_primaries, colour_primaries_name(vui.colour_primaries));
    p.u(8, "transfer_characteristics", vui.transfer_characteristics,
        transfer_characteristics_name(vui.transfer_characteristics));
    p.u(8, "matrix_coefficients", vui.matrix_coefficients, matrix_coefficients_name(vui.matrix_coefficients));
}

void show_bitstream_restriction(field_printer& p, const brenik::h264_vui_parameters& vui)
{
    p.flag("motion_vectors_over_pic_boundaries_flag", vui.motion_vectors_over_pic_boundaries_flag);
    p.ue("max_bytes_per_pic_denom", vui.max_bytes_per_pic_denom);
    p.ue("max_bits_per_mb_denom", vui.max_bits_per_mb_denom);
    p.ue("log2_max_mv_length_horizontal", vui.log2_max_mv_length_horizontal);
    p.ue("log2_max_mv_length_vertical", vui.log2_max_mv_length_vertical);
    p.ue("max_num_reorder_frames", vui.max_num_reorder_frames);
    p.ue("max_dec_frame_buffering", vui.max_dec_frame_buffering);
}

// H.264 E.1.1, vui_parameters()
void show(field_printer& p, const brenik::h264_vui_parameters& vui)
{
    constexpr std::uint8_t Extended_SAR = 255;
    const field_printer::deeper indented(p, "vui_parameters");
    p.flag("aspect_ratio_info_present_flag", vui.aspect_ratio_info_present_flag);
    if (vui.aspect_ratio_info_present_flag) {
        p.u(8, "aspect_ratio_idc", vui.aspect_ratio_idc, sample_aspect_ratio_name(vui));
        if (vui.aspect_ratio_idc == Extended_SAR) {
            p.u(16, "sar_width", vui.sar_width);
            p.u(16, "sar_height", vui.sar_height);
        }
    }
    p.flag("overscan_info_present_flag", vui.overscan_info_present_flag);
    if (vui.overscan_info_present_flag)
        p.flag("overscan_appropriate_flag", vui.overscan_appropriate_flag);
    p.flag("video_signal_type_present_flag", vui.video_signal_type_present_flag);
    if (vui.video_signal_type_present_flag)
        show_video_signal_type(p, vui);
    p.flag("chroma_loc_info_present_flag", vui.chroma_loc_info_present_flag);
    if (vui.chroma_loc_info_present_flag) {
        p.ue("chroma_sample_loc_type_top_field", vui.chroma_sample_loc_type_top_field);
        p.ue("chroma_sample_loc_type_bottom_field", vui.chroma_sample_loc_type_bottom_field);
    }
    p.flag("timing_info_present_flag", vui.timing_info_present_flag);
    if (vui.timing_info_present_flag) {
        p.u(32, "num_units_in_tick", vui.num_units_in_tick);
        p.u(32, "time_scale", vui.time_scale);
        p.flag("fixed_frame_rate_flag", vui.fixed_frame_rate_flag);
    }
    p.flag("nal_hrd_parameters_present_flag", vui.nal_hrd_parameters_present_flag);
    if (vui.nal_hrd_parameters_present_flag)
        show(p, "nal_hrd_parameters", vui.nal_hrd);
    p.flag("vcl_hrd_parameters_present_flag", vui.vcl_hrd_parameters_present_flag);
    if (vui.vcl_hrd_parameters_present_flag)
        show(p, "vcl_hrd_parameters", vui.vcl_hrd);
    if (vui.nal_hrd_parameters_present_flag || vui.vcl_hrd_parameters_present_flag)
        p.flag("low_delay_hrd_flag", vui.low_delay_hrd_flag);
    p.flag("pic_struct_present_flag", vui.pic_struct_present_flag);
    p.flag("bitstream_restriction_flag", vui.bitstream_restriction_flag);
    if (vui.bitstream_restriction_flag)
        show_bitstream_restriction(p, vui);
}

/// The lists that begin at number `first`, each with its present flag.
void show_scaling_lists(field_printer& p, const char* present_flag, std::size_t first, const lists& all,
                        std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        p.flag({present_flag, first + i}, all[i].present);
        if (all[i].present)
            p.scaling_list(first + i, all[i]);
    }
}

std::size_t lists_8x8(std::uint32_t chroma_format_idc)
{
    return chroma_format_idc == 3 ? 6 : 2;
}

void show_high_profile_syntax(field_printer& p, const brenik::h264_nal_sps& sps)
{
    p.ue("chroma_format_idc", sps.chroma_format_idc, chroma_format_name(sps.chroma_format_idc));
    if (sps.chroma_format_idc == 3)
        p.flag("separate_colour_plane_flag", sps.separate_colour_plane_flag);
    p.ue("bit_depth_luma_minus8", sps.bit_depth_luma_minus8);
    p.ue("bit_depth_chroma_minus8", sps.bit_depth_chroma_minus8);
    p.flag("qpprime_y_zero_transform_bypass_flag", sps.qpprime_y_zero_transform_bypass_flag);
    p.flag("seq_scaling_matrix_present_flag", sps.seq_scaling_matrix_present_flag);
    if (!sps.seq_scaling_matrix_present_flag)
        return;
    constexpr const char* present_flag = "seq_scaling_list_present_flag";
    const field_printer::deeper indented(p, "seq_scaling_matrix");
    show_scaling_lists(p, present_flag, 0, sps.scaling_list_4x4, sps.scaling_list_4x4.size());
    show_scaling_lists(p, present_flag, sps.scaling_list_4x4.size(), sps.scaling_list_8x8,
                       lists_8x8(sps.chroma_format_idc));
}

void show_pic_order_cnt(field_printer& p, const brenik::h264_nal_sps& sps)
{
    p.ue("pic_order_cnt_type", sps.pic_order_cnt_type);
    if (sps.pic_order_cnt_type == 0) {
        p.ue("log2_max_pic_order_cnt_lsb_minus4", sps.log2_max_pic_order_cnt_lsb_minus4);
    } else if (sps.pic_order_cnt_type == 1) {
        p.flag("delta_pic_order_always_zero_flag", sps.delta_pic_order_always_zero_flag);
        p.se("offset_for_non_ref_pic", sps.offset_for_non_ref_pic);
        p.se("offset_for_top_to_bottom_field", sps.offset_for_top_to_bottom_field);
        p.ue("num_ref_frames_in_pic_order_cnt_cycle", sps.num_ref_frames_in_pic_order_cnt_cycle);
        for (std::size_t i = 0; i < sps.offset_for_ref_frame.size(); ++i)
            p.se({"offset_for_ref_frame", i}, sps.offset_for_ref_frame[i]);
    }
}

void show_derived(field_printer& p, const brenik::h264_nal_sps& sps)
{
    const picture_size size = cropped_size(sps);
    p.derived(size.width == 0
                  ? fmt::format("coded size {}x{}, cropped to nothing", sps.getPicWidth(), sps.getPicHeight())
                  : fmt::format("cropped size {}x{}", size.width, size.height),
              {{"cropped_width", size.width}, {"cropped_height", size.height}});
    if (const auto rate = field_rate(sps))
        p.derived(fmt::format("field rate {:.7g} Hz", rate->value()), {{"field_rate", rate->value()}});
}

} // namespace

// H.264 7.3.2.1.1, seq_parameter_set_data()
void show(field_printer& p, const brenik::h264_nal_sps& sps, const walked_unit&)
{
    p.u(8, "profile_idc", sps.profile_idc, profile_name(sps));
    p.flag("constraint_set0_flag", sps.constraint_set0_flag);
    p.flag("constraint_set1_flag", sps.constraint_set1_flag);
    p.flag("constraint_set2_flag", sps.constraint_set2_flag);
    p.flag("constraint_set3_flag", sps.constraint_set3_flag);
    p.flag("constraint_set4_flag", sps.constraint_set4_flag);
    p.flag("constraint_set5_flag", sps.constraint_set5_flag);
    p.u(2, "reserved_zero_2bits", sps.reserved_zero_2bits);
    p.u(8, "level_idc", sps.level_idc, level_name(sps));
    p.ue("seq_parameter_set_id", sps.seq_parameter_set_id);
    if (sps.high_profile_syntax_present)
        show_high_profile_syntax(p, sps);
    p.ue("log2_max_frame_num_minus4", sps.log2_max_frame_num_minus4);
    show_pic_order_cnt(p, sps);
    p.ue("max_num_ref_frames", sps.max_num_ref_frames);
    p.flag("gaps_in_frame_num_value_allowed_flag", sps.gaps_in_frame_num_value_allowed_flag);
    p.ue("pic_width_in_mbs_minus1", sps.pic_width_in_mbs_minus1);
    p.ue("pic_height_in_map_units_minus1", sps.pic_height_in_map_units_minus1);
    p.flag("frame_mbs_only_flag", sps.frame_mbs_only_flag);
    if (!sps.frame_mbs_only_flag)
        p.flag("mb_adaptive_frame_field_flag", sps.mb_adaptive_frame_field_flag);
    p.flag("direct_8x8_inference_flag", sps.direct_8x8_inference_flag);
    p.flag("frame_cropping_flag", sps.frame_cropping_flag);
    if (sps.frame_cropping_flag) {
        p.ue("frame_crop_left_offset", sps.frame_crop_left_offset);
        p.ue("frame_crop_right_offset", sps.frame_crop_right_offset);
        p.ue("frame_crop_top_offset", sps.frame_crop_top_offset);
        p.ue("frame_crop_bottom_offset", sps.frame_crop_bottom_offset);
    }
    p.flag("vui_parameters_present_flag", sps.vui_parameters_present_flag);
    if (sps.vui_parameters_present_flag)
        show(p, sps.vui);
    show_derived(p, sps);
}

namespace {

void show_slice_groups(field_printer& p, const brenik::h264_nal_pps& pps)
{
    p.ue("slice_group_map_type", pps.slice_group_map_type);
    for (std::size_t i = 0; i < pps.run_length_minus1.size(); ++i)
        p.ue({"run_length_minus1", i}, pps.run_length_minus1[i]);
    for (std::size_t i = 0; i < pps.bottom_right.size(); ++i) {
        p.ue({"top_left", i}, pps.top_left[i]);
        p.ue({"bottom_right", i}, pps.bottom_right[i]);
    }
    if (pps.slice_group_map_type >= 3 && pps.slice_group_map_type <= 5) {
        p.flag("slice_group_change_direction_flag", pps.slice_group_change_direction_flag);
        p.ue("slice_group_change_rate_minus1", pps.slice_group_change_rate_minus1);
    }
    if (pps.slice_group_map_type != 6)
        return;
    p.ue("pic_size_in_map_units_minus1", pps.pic_size_in_map_units_minus1);
    // The library reads a bit more than the standard where the number of slice groups is a power of two.
    const std::uint32_t slice_groups = pps.num_slice_groups_minus1 + 1;
    const auto width = static_cast<unsigned int>(std::bit_width(slice_groups));
    const std::string note =
        std::has_single_bit(slice_groups) ? fmt::format("read as {} bits, in H.264 {}", width, width - 1) : "";
    for (std::size_t i = 0; i < pps.slice_group_id.size(); ++i)
        p.u(width, {"slice_group_id", i}, pps.slice_group_id[i], note);
}

void show_tail(field_printer& p, const brenik::h264_nal_pps& pps, std::uint32_t chroma_format_idc)
{
    p.flag("transform_8x8_mode_flag", pps.transform_8x8_mode_flag);
    p.flag("pic_scaling_matrix_present_flag", pps.pic_scaling_matrix_present_flag);
    if (pps.pic_scaling_matrix_present_flag) {
        constexpr const char* present_flag = "pic_scaling_list_present_flag";
        const field_printer::deeper indented(p, "pic_scaling_matrix");
        show_scaling_lists(p, present_flag, 0, pps.pic_scaling_list_4x4, pps.pic_scaling_list_4x4.size());
        const std::size_t count = pps.transform_8x8_mode_flag ? lists_8x8(chroma_format_idc) : 0;
        show_scaling_lists(p, present_flag, pps.pic_scaling_list_4x4.size(), pps.pic_scaling_list_8x8, count);
    }
    p.se("second_chroma_qp_index_offset", pps.second_chroma_qp_index_offset);
}

} // namespace

// H.264 7.3.2.2, pic_parameter_set_rbsp()
void show(field_printer& p, const brenik::h264_nal_pps& pps, const walked_unit& unit)
{
    p.ue("pic_parameter_set_id", pps.pic_parameter_set_id);
    p.ue("seq_parameter_set_id", pps.seq_parameter_set_id);
    p.flag("entropy_coding_mode_flag", pps.entropy_coding_mode_flag);
    p.flag("bottom_field_pic_order_in_frame_present_flag", pps.bottom_field_pic_order_in_frame_present_flag);
    p.ue("num_slice_groups_minus1", pps.num_slice_groups_minus1);
    if (pps.num_slice_groups_minus1 > 0)
        show_slice_groups(p, pps);
    p.ue("num_ref_idx_l0_default_active_minus1", pps.num_ref_idx_l0_default_active_minus1);
    p.ue("num_ref_idx_l1_default_active_minus1", pps.num_ref_idx_l1_default_active_minus1);
    p.flag("weighted_pred_flag", pps.weighted_pred_flag);
    p.u(2, "weighted_bipred_idc", pps.weighted_bipred_idc);
    p.se("pic_init_qp_minus26", pps.pic_init_qp_minus26);
    p.se("pic_init_qs_minus26", pps.pic_init_qs_minus26);
    p.se("chroma_qp_index_offset", pps.chroma_qp_index_offset);
    p.flag("deblocking_filter_control_present_flag", pps.deblocking_filter_control_present_flag);
    p.flag("constrained_intra_pred_flag", pps.constrained_intra_pred_flag);
    p.flag("redundant_pic_cnt_present_flag", pps.redundant_pic_cnt_present_flag);
    if (pps.more_rbsp_data_present)
        show_tail(p, pps, unit.sps == nullptr ? 0 : unit.sps->chroma_format_idc);
}

} // namespace orv_h264
