// The text of the SEI payload scalability_info(), H.264 clause G.13.1.1.
#pragma once

#include "coders/coder.h"
#include "texts/sei/stream_info.h"
#include "texts/sei_context.h"

#include <orv-utils-v4/h264_syntax/sei/scalability_info.h>

namespace orv_utils_v4::h264 {

// H.264 G.13.1.1, with iroi_division_info_present_flag[ i ]
template <class Coder>
void code_iroi_division(Coder& c, in<Coder, scalability_info_layer>& x, std::uint32_t i)
{
    c.flag({"iroi_grid_flag", i}, x.iroi_grid_flag);
    if (x.iroi_grid_flag) {
        c.ue({"grid_width_in_mbs_minus1", i}, x.grid_width_in_mbs_minus1);
        c.ue({"grid_height_in_mbs_minus1", i}, x.grid_height_in_mbs_minus1);
    } else {
        c.ue({"num_rois_minus1", i}, x.num_rois_minus1);
        c.count({"first_mb_in_roi", i}, x.rois, std::uint64_t{x.num_rois_minus1} + 1);
        for (std::uint32_t j = 0; j <= x.num_rois_minus1 && c.going(); ++j) {
            auto& roi = x.rois[j];
            c.ue({"first_mb_in_roi", i, j}, roi.first_mb_in_roi);
            c.ue({"roi_width_in_mbs_minus1", i, j}, roi.roi_width_in_mbs_minus1);
            c.ue({"roi_height_in_mbs_minus1", i, j}, roi.roi_height_in_mbs_minus1);
        }
    }
}

// H.264 G.13.1.1, from profile_level_info_present_flag[ i ] on
template <class Coder>
void code_flagged_layer_info(Coder& c, in<Coder, scalability_info_layer>& x, std::uint32_t i)
{
    if (x.profile_level_info_present_flag)
        c.u(24, {"layer_profile_level_idc", i}, x.layer_profile_level_idc);
    if (x.bitrate_info_present_flag) {
        c.u(16, {"avg_bitrate", i}, x.avg_bitrate);
        c.u(16, {"max_bitrate_layer", i}, x.max_bitrate_layer);
        c.u(16, {"max_bitrate_layer_representation", i}, x.max_bitrate_layer_representation);
        c.u(16, {"max_bitrate_calc_window", i}, x.max_bitrate_calc_window);
    }
    if (x.frm_rate_info_present_flag) {
        c.u(2, {"constant_frm_rate_idc", i}, x.constant_frm_rate_idc, 0, 2);
        c.u(16, {"avg_frm_rate", i}, x.avg_frm_rate);
    }
    if (x.frm_size_info_present_flag || x.iroi_division_info_present_flag) {
        c.ue({"frm_width_in_mbs_minus1", i}, x.frm_width_in_mbs_minus1);
        c.ue({"frm_height_in_mbs_minus1", i}, x.frm_height_in_mbs_minus1);
    }
    if (x.sub_region_layer_flag) {
        c.ue({"base_region_layer_id", i}, x.base_region_layer_id, 0, 2047);
        c.flag({"dynamic_rect_flag", i}, x.dynamic_rect_flag);
        if (!x.dynamic_rect_flag) {
            c.u(16, {"horizontal_offset", i}, x.horizontal_offset);
            c.u(16, {"vertical_offset", i}, x.vertical_offset);
            c.u(16, {"region_width", i}, x.region_width);
            c.u(16, {"region_height", i}, x.region_height);
        }
    }
    if (x.sub_pic_layer_flag)
        c.ue({"roi_id", i}, x.roi_id);
    if (x.iroi_division_info_present_flag)
        code_iroi_division(c, x, i);
    if (x.layer_dependency_info_present_flag) {
        c.ue({"num_directly_dependent_layers", i}, x.num_directly_dependent_layers);
        code_ue_list(c, "directly_dependent_layer_id_delta_minus1", i, x.directly_dependent_layer_id_delta_minus1,
                     x.num_directly_dependent_layers, highest_ue);
    } else
        c.ue({"layer_dependency_info_src_layer_id_delta", i}, x.layer_dependency_info_src_layer_id_delta);
    if (x.parameter_sets_info_present_flag)
        code(c, x.parameter_sets, i);
    else
        c.ue({"parameter_sets_info_src_layer_id_delta", i}, x.parameter_sets_info_src_layer_id_delta);
    if (x.bitstream_restriction_info_present_flag)
        code(c, x.bitstream_restriction, i);
}

// H.264 G.13.1.1, the loop over i
template <class Coder>
void code(Coder& c, in<Coder, scalability_info_layer>& x, std::uint32_t i)
{
    c.ue({"layer_id", i}, x.layer_id, 0, 2047);
    c.u(6, {"priority_id", i}, x.priority_id);
    c.flag({"discardable_flag", i}, x.discardable_flag);
    c.u(3, {"dependency_id", i}, x.dependency_id);
    c.u(4, {"quality_id", i}, x.quality_id);
    c.u(3, {"temporal_id", i}, x.temporal_id);
    c.flag({"sub_pic_layer_flag", i}, x.sub_pic_layer_flag);
    c.flag({"sub_region_layer_flag", i}, x.sub_region_layer_flag);
    c.flag({"iroi_division_info_present_flag", i}, x.iroi_division_info_present_flag);
    c.flag({"profile_level_info_present_flag", i}, x.profile_level_info_present_flag);
    c.flag({"bitrate_info_present_flag", i}, x.bitrate_info_present_flag);
    c.flag({"frm_rate_info_present_flag", i}, x.frm_rate_info_present_flag);
    c.flag({"frm_size_info_present_flag", i}, x.frm_size_info_present_flag);
    c.flag({"layer_dependency_info_present_flag", i}, x.layer_dependency_info_present_flag);
    c.flag({"parameter_sets_info_present_flag", i}, x.parameter_sets_info_present_flag);
    c.flag({"bitstream_restriction_info_present_flag", i}, x.bitstream_restriction_info_present_flag);
    c.flag({"exact_inter_layer_pred_flag", i}, x.exact_inter_layer_pred_flag);
    if (x.sub_pic_layer_flag || x.iroi_division_info_present_flag)
        c.flag({"exact_sample_value_match_flag", i}, x.exact_sample_value_match_flag);
    c.flag({"layer_conversion_flag", i}, x.layer_conversion_flag);
    c.flag({"layer_output_flag", i}, x.layer_output_flag);
    code_flagged_layer_info(c, x, i);
    if (x.layer_conversion_flag) {
        c.ue({"conversion_type_idc", i}, x.conversion_type_idc, 0, 2);
        for (std::uint32_t j = 0; j < 2; ++j) {
            auto& rewriting = x.rewriting[j];
            c.flag({"rewriting_info_flag", i, j}, rewriting.rewriting_info_flag);
            if (rewriting.rewriting_info_flag) {
                c.u(24, {"rewriting_profile_level_idc", i, j}, rewriting.rewriting_profile_level_idc);
                c.u(16, {"rewriting_avg_bitrate", i, j}, rewriting.rewriting_avg_bitrate);
                c.u(16, {"rewriting_max_bitrate", i, j}, rewriting.rewriting_max_bitrate);
            }
        }
    }
}

// H.264 G.13.1.1, with priority_layer_info_present_flag: the loop over i
template <class Coder>
void code(Coder& c, in<Coder, scalability_info_priorities>& x, std::uint32_t i)
{
    c.u(3, {"pr_dependency_id", i}, x.pr_dependency_id);
    c.ue({"pr_num_minus1", i}, x.pr_num_minus1, 0, 63);
    c.count({"pr_id", i}, x.priorities, std::uint64_t{x.pr_num_minus1} + 1);
    for (std::uint32_t j = 0; j <= x.pr_num_minus1 && c.going(); ++j) {
        auto& priority = x.priorities[j];
        c.ue({"pr_id", i, j}, priority.pr_id, 0, 63);
        c.u(24, {"pr_profile_level_idc", i, j}, priority.pr_profile_level_idc);
        c.u(16, {"pr_avg_bitrate", i, j}, priority.pr_avg_bitrate);
        c.u(16, {"pr_max_bitrate", i, j}, priority.pr_max_bitrate);
    }
}

// H.264 G.13.1.1, with priority_id_setting_flag: up to a null byte, which belongs to it
template <class Coder, class List>
void code_priority_id_setting_uri(Coder& c, List& priority_id_setting_uri)
{
    std::uint32_t PriorityIdSettingUriIdx = 0;
    for (bool more = true; more && c.going();) {
        const label name = {"priority_id_setting_uri", PriorityIdSettingUriIdx};
        auto* const byte = c.append(name, priority_id_setting_uri, PriorityIdSettingUriIdx++);
        if (byte == nullptr)
            return;
        c.b(name, *byte);
        more = *byte != 0;
    }
    c.entries_end("priority_id_setting_uri", priority_id_setting_uri, PriorityIdSettingUriIdx);
}

// H.264 G.13.1.1
template <class Coder>
void code(Coder& c, in<Coder, scalability_info>& x, const sei_context&)
{
    const auto here = c.structure("scalability_info");
    c.flag("temporal_id_nesting_flag", x.temporal_id_nesting_flag);
    c.flag("priority_layer_info_present_flag", x.priority_layer_info_present_flag);
    c.flag("priority_id_setting_flag", x.priority_id_setting_flag);
    c.ue_bound("num_layers_minus1", x.num_layers_minus1, 0, scalability_info::most_layers - 1);
    c.count("layer_id", x.layers, std::uint64_t{x.num_layers_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_layers_minus1 && c.going(); ++i)
        code(c, x.layers[i], i);
    if (x.priority_layer_info_present_flag) {
        c.ue_bound("pr_num_dIds_minus1", x.pr_num_dIds_minus1, 0, scalability_info::most_dependency_ids - 1);
        c.count("pr_dependency_id", x.pr_dIds, std::uint64_t{x.pr_num_dIds_minus1} + 1);
        for (std::uint32_t i = 0; i <= x.pr_num_dIds_minus1 && c.going(); ++i)
            code(c, x.pr_dIds[i], i);
    }
    if (x.priority_id_setting_flag)
        code_priority_id_setting_uri(c, x.priority_id_setting_uri);
}

} // namespace orv_utils_v4::h264
