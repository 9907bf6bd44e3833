// The fields of the parameter sets by name, member by member.
#pragma once

#include "support/named_values.h"

#include <orv-utils-v4/h264/nal_pps.h>
#include <orv-utils-v4/h264/nal_sps.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace support {

/// Shows a visitor every member of the structure: `visit(name, member)` for a number, a flag or an array of them,
/// `visit.enter(name, structure)` for a nested one.
template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_scaling_list& list)
{
    visit("values", list.values);
    visit("useDefaultScalingMatrixFlag", list.useDefaultScalingMatrixFlag);
    visit("present", list.present);
    visit("valid", list.valid);
}

template <typename Visitor>
void each_list(Visitor& visit, const char* name, const std::array<brenik::h264_scaling_list, 6>& lists)
{
    static constexpr const char* index[] = {"[0]", "[1]", "[2]", "[3]", "[4]", "[5]"};
    for (std::size_t i = 0; i < lists.size(); ++i)
        visit.enter(name, lists[i], index[i]);
}

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_hrd_parameters& hrd)
{
    visit("cpb_cnt_minus1", hrd.cpb_cnt_minus1);
    visit("bit_rate_scale", hrd.bit_rate_scale);
    visit("cpb_size_scale", hrd.cpb_size_scale);
    visit("bit_rate_value_minus1", hrd.bit_rate_value_minus1);
    visit("cpb_size_value_minus1", hrd.cpb_size_value_minus1);
    visit("cbr_flag", hrd.cbr_flag);
    visit("initial_cpb_removal_delay_length_minus1", hrd.initial_cpb_removal_delay_length_minus1);
    visit("cpb_removal_delay_length_minus1", hrd.cpb_removal_delay_length_minus1);
    visit("dpb_output_delay_length_minus1", hrd.dpb_output_delay_length_minus1);
    visit("time_offset_length", hrd.time_offset_length);
    visit("valid", hrd.valid);
}

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_vui_parameters& vui)
{
    visit("aspect_ratio_info_present_flag", vui.aspect_ratio_info_present_flag);
    visit("aspect_ratio_idc", vui.aspect_ratio_idc);
    visit("extended_sar", vui.extended_sar);
    visit("sar_width", vui.sar_width);
    visit("sar_height", vui.sar_height);
    visit("overscan_info_present_flag", vui.overscan_info_present_flag);
    visit("overscan_appropriate_flag", vui.overscan_appropriate_flag);
    visit("video_signal_type_present_flag", vui.video_signal_type_present_flag);
    visit("video_format", vui.video_format);
    visit("video_full_range_flag", vui.video_full_range_flag);
    visit("colour_description_present_flag", vui.colour_description_present_flag);
    visit("colour_primaries", vui.colour_primaries);
    visit("transfer_characteristics", vui.transfer_characteristics);
    visit("matrix_coefficients", vui.matrix_coefficients);
    visit("chroma_loc_info_present_flag", vui.chroma_loc_info_present_flag);
    visit("chroma_sample_loc_type_top_field", vui.chroma_sample_loc_type_top_field);
    visit("chroma_sample_loc_type_bottom_field", vui.chroma_sample_loc_type_bottom_field);
    visit("timing_info_present_flag", vui.timing_info_present_flag);
    visit("num_units_in_tick", vui.num_units_in_tick);
    visit("time_scale", vui.time_scale);
    visit("fixed_frame_rate_flag", vui.fixed_frame_rate_flag);
    visit("nal_hrd_parameters_present_flag", vui.nal_hrd_parameters_present_flag);
    visit.enter("nal_hrd", vui.nal_hrd);
    visit("vcl_hrd_parameters_present_flag", vui.vcl_hrd_parameters_present_flag);
    visit.enter("vcl_hrd", vui.vcl_hrd);
    visit("low_delay_hrd_flag", vui.low_delay_hrd_flag);
    visit("pic_struct_present_flag", vui.pic_struct_present_flag);
    visit("bitstream_restriction_flag", vui.bitstream_restriction_flag);
    visit("motion_vectors_over_pic_boundaries_flag", vui.motion_vectors_over_pic_boundaries_flag);
    visit("max_bytes_per_pic_denom", vui.max_bytes_per_pic_denom);
    visit("max_bits_per_mb_denom", vui.max_bits_per_mb_denom);
    visit("log2_max_mv_length_horizontal", vui.log2_max_mv_length_horizontal);
    visit("log2_max_mv_length_vertical", vui.log2_max_mv_length_vertical);
    visit("max_num_reorder_frames", vui.max_num_reorder_frames);
    visit("max_dec_frame_buffering", vui.max_dec_frame_buffering);
    visit("valid", vui.valid);
}

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_nal_sps& seq)
{
    visit("profile_idc", seq.profile_idc);
    visit("constraint_set0_flag", seq.constraint_set0_flag);
    visit("constraint_set1_flag", seq.constraint_set1_flag);
    visit("constraint_set2_flag", seq.constraint_set2_flag);
    visit("constraint_set3_flag", seq.constraint_set3_flag);
    visit("constraint_set4_flag", seq.constraint_set4_flag);
    visit("constraint_set5_flag", seq.constraint_set5_flag);
    visit("reserved_zero_2bits", seq.reserved_zero_2bits);
    visit("level_idc", seq.level_idc);
    visit("seq_parameter_set_id", seq.seq_parameter_set_id);
    visit("chroma_format_idc", seq.chroma_format_idc);
    visit("separate_colour_plane_flag", seq.separate_colour_plane_flag);
    visit("bit_depth_luma_minus8", seq.bit_depth_luma_minus8);
    visit("bit_depth_chroma_minus8", seq.bit_depth_chroma_minus8);
    visit("qpprime_y_zero_transform_bypass_flag", seq.qpprime_y_zero_transform_bypass_flag);
    visit("seq_scaling_matrix_present_flag", seq.seq_scaling_matrix_present_flag);
    each_list(visit, "scaling_list_4x4", seq.scaling_list_4x4);
    each_list(visit, "scaling_list_8x8", seq.scaling_list_8x8);
    visit("log2_max_frame_num_minus4", seq.log2_max_frame_num_minus4);
    visit("pic_order_cnt_type", seq.pic_order_cnt_type);
    visit("log2_max_pic_order_cnt_lsb_minus4", seq.log2_max_pic_order_cnt_lsb_minus4);
    visit("delta_pic_order_always_zero_flag", seq.delta_pic_order_always_zero_flag);
    visit("offset_for_non_ref_pic", seq.offset_for_non_ref_pic);
    visit("offset_for_top_to_bottom_field", seq.offset_for_top_to_bottom_field);
    visit("num_ref_frames_in_pic_order_cnt_cycle", seq.num_ref_frames_in_pic_order_cnt_cycle);
    visit("offset_for_ref_frame", seq.offset_for_ref_frame);
    visit("max_num_ref_frames", seq.max_num_ref_frames);
    visit("gaps_in_frame_num_value_allowed_flag", seq.gaps_in_frame_num_value_allowed_flag);
    visit("pic_width_in_mbs_minus1", seq.pic_width_in_mbs_minus1);
    visit("pic_height_in_map_units_minus1", seq.pic_height_in_map_units_minus1);
    visit("frame_mbs_only_flag", seq.frame_mbs_only_flag);
    visit("mb_adaptive_frame_field_flag", seq.mb_adaptive_frame_field_flag);
    visit("direct_8x8_inference_flag", seq.direct_8x8_inference_flag);
    visit("frame_cropping_flag", seq.frame_cropping_flag);
    visit("frame_crop_left_offset", seq.frame_crop_left_offset);
    visit("frame_crop_right_offset", seq.frame_crop_right_offset);
    visit("frame_crop_top_offset", seq.frame_crop_top_offset);
    visit("frame_crop_bottom_offset", seq.frame_crop_bottom_offset);
    visit("vui_parameters_present_flag", seq.vui_parameters_present_flag);
    visit.enter("vui", seq.vui);
    visit("valid", seq.valid);
    visit("high_profile_syntax_present", seq.high_profile_syntax_present);
    visit("SubWidthC", seq.SubWidthC);
    visit("SubHeightC", seq.SubHeightC);
}

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_nal_pps& pic)
{
    visit("valid", pic.valid);
    visit("pic_parameter_set_id", pic.pic_parameter_set_id);
    visit("seq_parameter_set_id", pic.seq_parameter_set_id);
    visit("entropy_coding_mode_flag", pic.entropy_coding_mode_flag);
    visit("bottom_field_pic_order_in_frame_present_flag", pic.bottom_field_pic_order_in_frame_present_flag);
    visit("num_slice_groups_minus1", pic.num_slice_groups_minus1);
    visit("slice_group_map_type", pic.slice_group_map_type);
    visit("run_length_minus1", pic.run_length_minus1);
    visit("top_left", pic.top_left);
    visit("bottom_right", pic.bottom_right);
    visit("slice_group_change_direction_flag", pic.slice_group_change_direction_flag);
    visit("slice_group_change_rate_minus1", pic.slice_group_change_rate_minus1);
    visit("num_ref_idx_l0_default_active_minus1", pic.num_ref_idx_l0_default_active_minus1);
    visit("num_ref_idx_l1_default_active_minus1", pic.num_ref_idx_l1_default_active_minus1);
    visit("weighted_pred_flag", pic.weighted_pred_flag);
    visit("weighted_bipred_idc", pic.weighted_bipred_idc);
    visit("pic_init_qp_minus26", pic.pic_init_qp_minus26);
    visit("pic_init_qs_minus26", pic.pic_init_qs_minus26);
    visit("chroma_qp_index_offset", pic.chroma_qp_index_offset);
    visit("deblocking_filter_control_present_flag", pic.deblocking_filter_control_present_flag);
    visit("constrained_intra_pred_flag", pic.constrained_intra_pred_flag);
    visit("redundant_pic_cnt_present_flag", pic.redundant_pic_cnt_present_flag);
    visit("more_rbsp_data_present", pic.more_rbsp_data_present);
    visit("transform_8x8_mode_flag", pic.transform_8x8_mode_flag);
    visit("pic_scaling_matrix_present_flag", pic.pic_scaling_matrix_present_flag);
    visit("second_chroma_qp_index_offset", pic.second_chroma_qp_index_offset);
    visit("pic_size_in_map_units_minus1", pic.pic_size_in_map_units_minus1);
    visit("slice_group_id", pic.slice_group_id);
    each_list(visit, "pic_scaling_list_4x4", pic.pic_scaling_list_4x4);
    each_list(visit, "pic_scaling_list_8x8", pic.pic_scaling_list_8x8);
}

/// Keeps the names.
class name_collector {
public:
    template <typename Member>
    void operator()(const char* name, const Member& /*member*/)
    {
        names.index.emplace(scope + name, names.in_order.size());
        names.in_order.push_back(scope + name);
    }

    template <typename Structure>
    void enter(const char* name, const Structure& structure, const char* index = "")
    {
        const std::string outer = std::exchange(scope, scope + name + index + '.');
        each_field(*this, structure);
        scope = outer;
    }

    field_names names;

private:
    std::string scope;
};

/// Keeps the values.
class value_collector {
public:
    template <typename Number>
    void operator()(const char* /*name*/, const Number& number)
    {
        values.push_back({static_cast<std::int64_t>(number), {}});
    }

    template <typename Entry>
    void operator()(const char* /*name*/, const std::vector<Entry>& entries)
    {
        values.push_back({0, {entries.begin(), entries.end()}});
    }

    template <typename Structure>
    void enter(const char* /*name*/, const Structure& structure, const char* /*index*/ = "")
    {
        each_field(*this, structure);
    }

    std::vector<value> values;
};

template <typename Structure>
const field_names& names_of(const Structure& structure)
{
    static const field_names names = [&] {
        name_collector collect;
        each_field(collect, structure);
        return collect.names;
    }();
    return names;
}

/// Every field of the object.
template <typename Structure>
named_values fields_of(const Structure& structure)
{
    const field_names& names = names_of(structure);
    value_collector collect;
    collect.values.reserve(names.in_order.size());
    each_field(collect, structure);
    return {&names, std::move(collect.values)};
}

} // namespace support
