// The texts of the extensions of the SPS for multiview (H.264 Annex H), multiview with depth (Annex I) and 3D-AVC
// (Annex J) video.
#pragma once

#include "coders/coder.h"
#include "texts/depth_parameter_set.h"
#include "texts/vui_extension.h"

#include <orv-utils-v4/h264_syntax/subset_seq_parameter_set.h>

#include <algorithm>

namespace orv_utils_v4::h264 {

constexpr std::int64_t highest_view_id = 1023;

// H.264 H.7.3.2.1.4, the references of view i in one list
template <class Coder>
void code_view_references(Coder& c, const char* number_name, in<Coder, std::uint32_t>& number, const char* name,
                          in<Coder, inter_view_references::list>& references, std::uint32_t i,
                          std::uint32_t num_views_minus1)
{
    c.ue({number_name, i}, number, 0, std::min<std::int64_t>(inter_view_references::most_references, num_views_minus1));
    for (std::uint32_t j = 0; j < number && c.going(); ++j)
        c.ue({name, i, j}, c.entry({name, i, j}, references, j), 0, highest_view_id);
    c.entries_end({name, i}, references, number);
}

// H.264 H.7.3.2.1.4, the references of view i in its anchor pictures
template <class Coder>
void code_anchor_references(Coder& c, in<Coder, inter_view_references>& x, std::uint32_t i,
                            std::uint32_t num_views_minus1)
{
    code_view_references(c, "num_anchor_refs_l0", x.num_anchor_refs_l0, "anchor_ref_l0", x.anchor_ref_l0, i,
                         num_views_minus1);
    code_view_references(c, "num_anchor_refs_l1", x.num_anchor_refs_l1, "anchor_ref_l1", x.anchor_ref_l1, i,
                         num_views_minus1);
}

// H.264 H.7.3.2.1.4, the references of view i in its other pictures
template <class Coder>
void code_non_anchor_references(Coder& c, in<Coder, inter_view_references>& x, std::uint32_t i,
                                std::uint32_t num_views_minus1)
{
    code_view_references(c, "num_non_anchor_refs_l0", x.num_non_anchor_refs_l0, "non_anchor_ref_l0",
                         x.non_anchor_ref_l0, i, num_views_minus1);
    code_view_references(c, "num_non_anchor_refs_l1", x.num_non_anchor_refs_l1, "non_anchor_ref_l1",
                         x.non_anchor_ref_l1, i, num_views_minus1);
}

// H.264 H.7.3.2.1.4, operation point j of level i
template <class Coder>
void code_operation_point(Coder& c, in<Coder, mvc_operation_point>& x, std::uint32_t i, std::uint32_t j)
{
    c.u(3, {"applicable_op_temporal_id", i, j}, x.applicable_op_temporal_id);
    c.ue_bound({"applicable_op_num_target_views_minus1", i, j}, x.applicable_op_num_target_views_minus1, 0,
               multiview_bounds::most_views - 1);
    c.count({"applicable_op_target_view_id", i, j}, x.applicable_op_target_view_id,
            std::uint64_t{x.applicable_op_num_target_views_minus1} + 1);
    for (std::uint32_t k = 0; k <= x.applicable_op_num_target_views_minus1 && c.going(); ++k)
        c.ue({"applicable_op_target_view_id", i, j, k}, x.applicable_op_target_view_id[k], 0, highest_view_id);
    c.ue({"applicable_op_num_views_minus1", i, j}, x.applicable_op_num_views_minus1, 0,
         multiview_bounds::most_views - 1);
}

// H.264 I.7.3.2.1.5, operation point j of level i
template <class Coder>
void code_operation_point(Coder& c, in<Coder, mvcd_operation_point>& x, std::uint32_t i, std::uint32_t j)
{
    c.u(3, {"applicable_op_temporal_id", i, j}, x.applicable_op_temporal_id);
    c.ue_bound({"applicable_op_num_target_views_minus1", i, j}, x.applicable_op_num_target_views_minus1, 0,
               multiview_bounds::most_views - 1);
    c.count({"applicable_op_target_view_id", i, j}, x.target_views,
            std::uint64_t{x.applicable_op_num_target_views_minus1} + 1);
    for (std::uint32_t k = 0; k <= x.applicable_op_num_target_views_minus1 && c.going(); ++k) {
        auto& view = x.target_views[k];
        c.ue({"applicable_op_target_view_id", i, j, k}, view.applicable_op_target_view_id, 0, highest_view_id);
        c.flag({"applicable_op_depth_flag", i, j, k}, view.applicable_op_depth_flag);
        c.flag({"applicable_op_texture_flag", i, j, k}, view.applicable_op_texture_flag);
    }
    c.ue({"applicable_op_num_texture_views_minus1", i, j}, x.applicable_op_num_texture_views_minus1, 0,
         multiview_bounds::most_views - 1);
    c.ue({"applicable_op_num_depth_views", i, j}, x.applicable_op_num_depth_views, 0, multiview_bounds::most_views);
}

// H.264 H.7.3.2.1.4 and I.7.3.2.1.5, the levels and their operation points
template <class Coder, class Extension>
void code_levels(Coder& c, Extension& x)
{
    c.ue_bound("num_level_values_signalled_minus1", x.num_level_values_signalled_minus1, 0,
               multiview_bounds::most_level_values - 1);
    c.count("level_idc", x.levels, std::uint64_t{x.num_level_values_signalled_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_level_values_signalled_minus1 && c.going(); ++i) {
        auto& level = x.levels[i];
        c.u(8, {"level_idc", i}, level.level_idc);
        c.ue_bound({"num_applicable_ops_minus1", i}, level.num_applicable_ops_minus1, 0,
                   multiview_bounds::most_operation_points - 1);
        c.count({"applicable_op_temporal_id", i}, level.operation_points,
                std::uint64_t{level.num_applicable_ops_minus1} + 1);
        for (std::uint32_t j = 0; j <= level.num_applicable_ops_minus1 && c.going(); ++j)
            code_operation_point(c, level.operation_points[j], i, j);
    }
}

// H.264 H.7.3.2.1.4
template <class Coder>
void code(Coder& c, in<Coder, seq_parameter_set_mvc_extension>& x, const seq_parameter_set_data& sps)
{
    const auto here = c.structure("seq_parameter_set_mvc_extension");
    c.ue_bound("num_views_minus1", x.num_views_minus1, 0, multiview_bounds::most_views - 1);
    c.count("view_id", x.views, std::uint64_t{x.num_views_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_views_minus1 && c.going(); ++i)
        c.ue({"view_id", i}, x.views[i].view_id, 0, highest_view_id);
    for (std::uint32_t i = 1; i <= x.num_views_minus1 && c.going(); ++i)
        code_anchor_references(c, x.views[i].references, i, x.num_views_minus1);
    for (std::uint32_t i = 1; i <= x.num_views_minus1 && c.going(); ++i)
        code_non_anchor_references(c, x.views[i].references, i, x.num_views_minus1);
    code_levels(c, x);
    if (sps.profile_idc == 134) {
        c.u(6, "mfc_format_idc", x.mfc_format_idc);
        if (x.mfc_format_idc == 0 || x.mfc_format_idc == 1) {
            c.flag("default_grid_position_flag", x.default_grid_position_flag);
            if (!x.default_grid_position_flag) {
                c.u(4, "view0_grid_position_x", x.view0_grid_position_x);
                c.u(4, "view0_grid_position_y", x.view0_grid_position_y);
                c.u(4, "view1_grid_position_x", x.view1_grid_position_x);
                c.u(4, "view1_grid_position_y", x.view1_grid_position_y);
            }
        }
        c.flag("rpu_filter_enabled_flag", x.rpu_filter_enabled_flag);
        if (!sps.frame_mbs_only_flag)
            c.flag("rpu_field_processing_flag", x.rpu_field_processing_flag);
    }
}

// H.264 H.14.1
template <class Coder>
void code(Coder& c, in<Coder, mvc_vui_parameters_extension>& x)
{
    constexpr vui_extension_names names = {"vui_mvc_timing_info_present_flag",
                                           "vui_mvc_num_units_in_tick",
                                           "vui_mvc_time_scale",
                                           "vui_mvc_fixed_frame_rate_flag",
                                           "vui_mvc_nal_hrd_parameters_present_flag",
                                           "vui_mvc_vcl_hrd_parameters_present_flag",
                                           "vui_mvc_low_delay_hrd_flag",
                                           "vui_mvc_pic_struct_present_flag"};
    const auto here = c.structure("mvc_vui_parameters_extension");
    c.ue_bound("vui_mvc_num_ops_minus1", x.vui_mvc_num_ops_minus1, 0, multiview_bounds::most_operation_points - 1);
    c.count("vui_mvc_temporal_id", x.operation_points, std::uint64_t{x.vui_mvc_num_ops_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.vui_mvc_num_ops_minus1 && c.going(); ++i) {
        auto& op = x.operation_points[i];
        c.u(3, {"vui_mvc_temporal_id", i}, op.vui_mvc_temporal_id);
        c.ue_bound({"vui_mvc_num_target_output_views_minus1", i}, op.vui_mvc_num_target_output_views_minus1, 0,
                   multiview_bounds::most_views - 1);
        c.count({"vui_mvc_view_id", i}, op.vui_mvc_view_id,
                std::uint64_t{op.vui_mvc_num_target_output_views_minus1} + 1);
        for (std::uint32_t j = 0; j <= op.vui_mvc_num_target_output_views_minus1 && c.going(); ++j)
            c.ue({"vui_mvc_view_id", i, j}, op.vui_mvc_view_id[j], 0, highest_view_id);
        code_vui_extension_timing(c, names, op.timing, i);
    }
}

// H.264 I.14.1
template <class Coder>
void code(Coder& c, in<Coder, mvcd_vui_parameters_extension>& x)
{
    constexpr vui_extension_names names = {"vui_mvcd_timing_info_present_flag",
                                           "vui_mvcd_num_units_in_tick",
                                           "vui_mvcd_time_scale",
                                           "vui_mvcd_fixed_frame_rate_flag",
                                           "vui_mvcd_nal_hrd_parameters_present_flag",
                                           "vui_mvcd_vcl_hrd_parameters_present_flag",
                                           "vui_mvcd_low_delay_hrd_flag",
                                           "vui_mvcd_pic_struct_present_flag"};
    const auto here = c.structure("mvcd_vui_parameters_extension");
    c.ue_bound("vui_mvcd_num_ops_minus1", x.vui_mvcd_num_ops_minus1, 0, multiview_bounds::most_operation_points - 1);
    c.count("vui_mvcd_temporal_id", x.operation_points, std::uint64_t{x.vui_mvcd_num_ops_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.vui_mvcd_num_ops_minus1 && c.going(); ++i) {
        auto& op = x.operation_points[i];
        c.u(3, {"vui_mvcd_temporal_id", i}, op.vui_mvcd_temporal_id);
        c.ue_bound({"vui_mvcd_num_target_output_views_minus1", i}, op.vui_mvcd_num_target_output_views_minus1, 0,
                   multiview_bounds::most_views - 1);
        c.count({"vui_mvcd_view_id", i}, op.views, std::uint64_t{op.vui_mvcd_num_target_output_views_minus1} + 1);
        for (std::uint32_t j = 0; j <= op.vui_mvcd_num_target_output_views_minus1 && c.going(); ++j) {
            c.ue({"vui_mvcd_view_id", i, j}, op.views[j].vui_mvcd_view_id, 0, highest_view_id);
            c.flag({"vui_mvcd_depth_flag", i, j}, op.views[j].vui_mvcd_depth_flag);
            c.flag({"vui_mvcd_texture_flag", i, j}, op.views[j].vui_mvcd_texture_flag);
        }
        code_vui_extension_timing(c, names, op.timing, i);
    }
}

// H.264 I.7.3.2.1.5
template <class Coder>
void code(Coder& c, in<Coder, seq_parameter_set_mvcd_extension>& x)
{
    const auto here = c.structure("seq_parameter_set_mvcd_extension");
    c.ue_bound("num_views_minus1", x.num_views_minus1, 0, multiview_bounds::most_views - 1);
    c.count("view_id", x.views, std::uint64_t{x.num_views_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_views_minus1 && c.going(); ++i) {
        c.ue({"view_id", i}, x.views[i].view_id, 0, highest_view_id);
        c.flag({"depth_view_present_flag", i}, x.views[i].depth_view_present_flag);
        c.flag({"texture_view_present_flag", i}, x.views[i].texture_view_present_flag);
    }
    for (std::uint32_t i = 1; i <= x.num_views_minus1 && c.going(); ++i) {
        if (x.views[i].depth_view_present_flag)
            code_anchor_references(c, x.views[i].references, i, x.num_views_minus1);
    }
    for (std::uint32_t i = 1; i <= x.num_views_minus1 && c.going(); ++i) {
        if (x.views[i].depth_view_present_flag)
            code_non_anchor_references(c, x.views[i].references, i, x.num_views_minus1);
    }
    code_levels(c, x);
    c.flag("mvcd_vui_parameters_present_flag", x.mvcd_vui_parameters_present_flag);
    if (x.mvcd_vui_parameters_present_flag)
        code(c, x.mvcd_vui_parameters_extension);
    c.flag("texture_vui_parameters_present_flag", x.texture_vui_parameters_present_flag);
    if (x.texture_vui_parameters_present_flag)
        code(c, x.mvc_vui_parameters_extension);
}

// H.264 J.7.3.2.1.6, what is sent with a depth view: up to seq_view_synthesis_flag
template <class Coder>
void code_depth_views(Coder& c, in<Coder, seq_parameter_set_3davc_extension>& x, std::uint32_t NumDepthViews,
                      const seq_parameter_set_data& sps)
{
    c.ue("3dv_acquisition_idc", x.three_dv_acquisition_idc);
    c.count("view_id_3dv", x.view_id_3dv, NumDepthViews);
    for (std::uint32_t i = 0; i < NumDepthViews && c.going(); ++i)
        c.ue({"view_id_3dv", i}, x.view_id_3dv[i], 0, highest_view_id);
    if (x.three_dv_acquisition_idc != 0) {
        code(c, x.depth_ranges, NumDepthViews, 2);
        code(c, x.vsp_param, NumDepthViews);
    }
    c.flag("reduced_resolution_flag", x.reduced_resolution_flag);
    if (x.reduced_resolution_flag) {
        c.ue("depth_pic_width_in_mbs_minus1", x.depth_pic_width_in_mbs_minus1);
        c.ue("depth_pic_height_in_map_units_minus1", x.depth_pic_height_in_map_units_minus1);
        c.ue("depth_hor_mult_minus1", x.depth_hor_mult_minus1);
        c.ue("depth_ver_mult_minus1", x.depth_ver_mult_minus1);
        c.ue("depth_hor_rsh", x.depth_hor_rsh);
        c.ue("depth_ver_rsh", x.depth_ver_rsh);
    } else {
        c.infer(x.depth_pic_width_in_mbs_minus1, sps.pic_width_in_mbs_minus1);
        c.infer(x.depth_pic_height_in_map_units_minus1, sps.pic_height_in_map_units_minus1);
    }
    c.flag("depth_frame_cropping_flag", x.depth_frame_cropping_flag);
    if (x.depth_frame_cropping_flag) {
        c.ue("depth_frame_crop_left_offset", x.depth_frame_crop_left_offset);
        c.ue("depth_frame_crop_right_offset", x.depth_frame_crop_right_offset);
        c.ue("depth_frame_crop_top_offset", x.depth_frame_crop_top_offset);
        c.ue("depth_frame_crop_bottom_offset", x.depth_frame_crop_bottom_offset);
    }
    c.ue_bound("grid_pos_num_views", x.grid_pos_num_views, 0, multiview_bounds::most_views);
    c.count("grid_pos_view_id", x.grid_positions, x.grid_pos_num_views);
    for (std::uint32_t i = 0; i < x.grid_pos_num_views && c.going(); ++i) {
        auto& position = x.grid_positions[i];
        c.ue({"grid_pos_view_id", i}, position.grid_pos_view_id, 0, highest_view_id);
        c.se({"grid_pos_x", position.grid_pos_view_id}, position.grid_pos_x);
        c.se({"grid_pos_y", position.grid_pos_view_id}, position.grid_pos_y);
    }
    c.flag("slice_header_prediction_flag", x.slice_header_prediction_flag);
    c.flag("seq_view_synthesis_flag", x.seq_view_synthesis_flag);
}

/// One of the texture views whose references the table of clause J.7.3.2.1.6 sends.
inline bool sends_texture_references(const seq_parameter_set_mvcd_extension& mvcd, std::size_t i) noexcept
{
    return i != 0 && mvcd.views[i].texture_view_present_flag;
}

// H.264 J.7.3.2.1.6, unless AllViewsPairedFlag
template <class Coder>
void code_texture_references(Coder& c, in<Coder, seq_parameter_set_3davc_extension>& x,
                             const seq_parameter_set_mvcd_extension& mvcd)
{
    std::uint64_t sending = 0;
    for (std::size_t i = 0; i < mvcd.views.size(); ++i)
        sending += sends_texture_references(mvcd, i) ? 1U : 0U;
    c.count("num_anchor_refs_l0", x.texture_references, sending);
    std::size_t sent = 0;
    for (std::uint32_t i = 0; i < mvcd.views.size() && c.going(); ++i) {
        if (sends_texture_references(mvcd, i))
            code_anchor_references(c, x.texture_references[sent++], i, mvcd.num_views_minus1);
    }
    sent = 0;
    for (std::uint32_t i = 0; i < mvcd.views.size() && c.going(); ++i) {
        if (sends_texture_references(mvcd, i))
            code_non_anchor_references(c, x.texture_references[sent++], i, mvcd.num_views_minus1);
    }
}

// H.264 J.7.3.2.1.6
template <class Coder>
void code(Coder& c, in<Coder, seq_parameter_set_3davc_extension>& x, const seq_parameter_set_mvcd_extension& mvcd,
          const seq_parameter_set_data& sps)
{
    const auto here = c.structure("seq_parameter_set_3davc_extension");
    const std::uint32_t depth_views = NumDepthViews(mvcd);
    if (depth_views > 0)
        code_depth_views(c, x, depth_views, sps);
    else {
        c.infer(x.three_dv_acquisition_idc, 0);
        c.infer(x.slice_header_prediction_flag, false);
        c.infer(x.seq_view_synthesis_flag, false);
    }
    c.flag("alc_sps_enable_flag", x.alc_sps_enable_flag);
    c.flag("enable_rle_skip_flag", x.enable_rle_skip_flag);
    if (!AllViewsPairedFlag(mvcd))
        code_texture_references(c, x, mvcd);
}

} // namespace orv_utils_v4::h264
