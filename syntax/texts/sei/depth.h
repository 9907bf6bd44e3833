// The texts of SEI payloads of multiview video with depth and of 3D-AVC, H.264 clauses I.13.1 and J.13.1.
#pragma once

#include "coders/coder.h"
#include "texts/sei/multiview.h"
#include "texts/sei_context.h"

#include <orv-utils-v4/h264_syntax/sei/depth.h>
#include <orv-utils-v4/h264_syntax/sei/multiview_acquisition_info.h>
#include <orv-utils-v4/h264_syntax/subset_seq_parameter_set.h>

namespace orv_utils_v4::h264 {

// H.264 I.13.1, with operation_point_flag
template <class Coder>
void code_nesting_operation_point(Coder& c, in<Coder, mvcd_scalable_nesting>& x)
{
    c.flag("sei_op_texture_only_flag", x.sei_op_texture_only_flag);
    c.ue("num_view_components_op_minus1", x.num_view_components_op_minus1, 0, 1023);
    c.count("sei_op_view_id", x.op_views, std::uint64_t{x.num_view_components_op_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_view_components_op_minus1 && c.going(); ++i) {
        auto& view = x.op_views[i];
        c.u(10, {"sei_op_view_id", i}, view.sei_op_view_id);
        if (!x.sei_op_texture_only_flag) {
            c.flag({"sei_op_depth_flag", i}, view.sei_op_depth_flag);
            c.flag({"sei_op_texture_flag", i}, view.sei_op_texture_flag);
        } else {
            c.infer(view.sei_op_depth_flag, false);
            c.infer(view.sei_op_texture_flag, true);
        }
    }
    c.u(3, "sei_op_temporal_id", x.sei_op_temporal_id);
}

// H.264 I.13.1
template <class Coder>
void code(Coder& c, in<Coder, mvcd_scalable_nesting>& x, const sei_context& context)
{
    const auto here = c.structure("mvcd_scalable_nesting");
    c.flag("operation_point_flag", x.operation_point_flag);
    if (!x.operation_point_flag) {
        c.flag("all_view_components_in_au_flag", x.all_view_components_in_au_flag);
        if (!x.all_view_components_in_au_flag) {
            c.ue("num_view_components_minus1", x.num_view_components_minus1, 0, 1023);
            c.count("sei_view_id", x.views, std::uint64_t{x.num_view_components_minus1} + 1);
            for (std::uint32_t i = 0; i <= x.num_view_components_minus1 && c.going(); ++i) {
                c.u(10, {"sei_view_id", i}, x.views[i].sei_view_id);
                c.flag({"sei_view_applicability_flag", i}, x.views[i].sei_view_applicability_flag);
            }
        }
    } else
        code_nesting_operation_point(c, x);
    code_nested_message(c, x.messages, context);
}

// H.264 I.13.1
template <class Coder>
void code(Coder& c, in<Coder, depth_representation_sei_element>& x)
{
    const auto here = c.structure("depth_representation_sei_element");
    c.flag("da_sign_flag", x.da_sign_flag);
    c.u(7, "da_exponent", x.da_exponent, 0, 126);
    c.u(5, "da_mantissa_len_minus1", x.da_mantissa_len_minus1);
    c.u_v(x.da_mantissa_len_minus1 + 1U, "da_mantissa", x.da_mantissa);
}

// H.264 I.13.1, depth_representation_info(): the loop over i
template <class Coder>
void code(Coder& c, in<Coder, depth_representation_view>& x, const depth_representation_info& info, std::uint32_t i)
{
    c.ue({"depth_info_view_id", i}, x.depth_info_view_id, 0, 1023);
    if ((info.z_near_flag || info.z_far_flag) && !info.z_axis_equal_flag)
        c.ue({"z_axis_reference_view", i}, x.z_axis_reference_view, 0, 1023);
    if (info.d_min_flag || info.d_max_flag)
        c.ue({"disparity_reference_view", i}, x.disparity_reference_view, 0, 1023);
    if (info.z_near_flag)
        code(c, x.z_near);
    if (info.z_far_flag)
        code(c, x.z_far);
    if (info.d_min_flag)
        code(c, x.d_min);
    if (info.d_max_flag)
        code(c, x.d_max);
}

// H.264 I.13.1
template <class Coder>
void code(Coder& c, in<Coder, depth_representation_info>& x, const sei_context&)
{
    const auto here = c.structure("depth_representation_info");
    c.flag("all_views_equal_flag", x.all_views_equal_flag);
    if (!x.all_views_equal_flag)
        c.ue_bound("num_views_minus1", x.num_views_minus1, 0, depth_representation_info::most_views - 1);
    const std::uint32_t numViews = x.all_views_equal_flag ? 1 : x.num_views_minus1 + 1;
    c.flag("z_near_flag", x.z_near_flag);
    c.flag("z_far_flag", x.z_far_flag);
    if (x.z_near_flag || x.z_far_flag) {
        c.flag("z_axis_equal_flag", x.z_axis_equal_flag);
        if (x.z_axis_equal_flag)
            c.ue("common_z_axis_reference_view", x.common_z_axis_reference_view, 0, 1023);
    }
    c.flag("d_min_flag", x.d_min_flag);
    c.flag("d_max_flag", x.d_max_flag);
    c.ue("depth_representation_type", x.depth_representation_type, 0, 3);
    c.count("depth_info_view_id", x.views, numViews);
    for (std::uint32_t i = 0; i < numViews && c.going(); ++i)
        code(c, x.views[i], x, i);
    if (x.depth_representation_type == 3) {
        c.ue("depth_nonlinear_representation_num_minus1", x.depth_nonlinear_representation_num_minus1, 0, 62);
        const std::uint64_t models = std::uint64_t{x.depth_nonlinear_representation_num_minus1} + 1;
        c.count("depth_nonlinear_representation_model", x.depth_nonlinear_representation_model, models);
        for (std::uint32_t i = 1; i <= models && c.going(); ++i)
            c.ue({"depth_nonlinear_representation_model", i}, x.depth_nonlinear_representation_model[i - 1], 0, 65535);
    }
}

/// The exponent and the mantissa of display i; the names are those of the two elements.
template <class Coder>
void code_display_parameter(Coder& c, label exponent, label mantissa, in<Coder, reference_display_parameter>& x,
                            std::uint32_t prec)
{
    c.u(6, exponent, x.exponent, 0, 62);
    c.u_v_long(mantissa_bits(x.exponent, prec), mantissa, x.mantissa);
}

// H.264 I.13.1
template <class Coder>
void code(Coder& c, in<Coder, three_dimensional_reference_displays_info>& x, const sei_context&)
{
    const auto here = c.structure("three_dimensional_reference_displays_info");
    c.ue("prec_ref_baseline", x.prec_ref_baseline, 0, 31);
    c.ue("prec_ref_display_width", x.prec_ref_display_width, 0, 31);
    c.flag("ref_viewing_distance_flag", x.ref_viewing_distance_flag);
    if (x.ref_viewing_distance_flag)
        c.ue("prec_ref_viewing_dist", x.prec_ref_viewing_dist, 0, 31);
    c.ue_bound("num_ref_displays_minus1", x.num_ref_displays_minus1, 0,
               three_dimensional_reference_displays_info::most_displays - 1);
    const std::uint32_t numRefDisplays = x.num_ref_displays_minus1 + 1;
    c.count("exponent_ref_baseline", x.displays, numRefDisplays);
    for (std::uint32_t i = 0; i < numRefDisplays && c.going(); ++i) {
        auto& display = x.displays[i];
        code_display_parameter(c, {"exponent_ref_baseline", i}, {"mantissa_ref_baseline", i}, display.ref_baseline,
                               x.prec_ref_baseline);
        code_display_parameter(c, {"exponent_ref_display_width", i}, {"mantissa_ref_display_width", i},
                               display.ref_display_width, x.prec_ref_display_width);
        if (x.ref_viewing_distance_flag)
            code_display_parameter(c, {"exponent_ref_viewing_distance", i}, {"mantissa_ref_viewing_distance", i},
                                   display.ref_viewing_distance, x.prec_ref_viewing_dist);
        c.flag({"additional_shift_present_flag", i}, display.additional_shift_present_flag);
        if (display.additional_shift_present_flag)
            c.u(10, {"num_sample_shift_plus512", i}, display.num_sample_shift_plus512);
    }
    c.flag("three_dimensional_reference_displays_extension_flag", x.three_dimensional_reference_displays_extension_flag,
           0, 0);
}

// H.264 I.13.1
template <class Coder>
void code(Coder& c, in<Coder, depth_timing_offset>& x)
{
    const auto here = c.structure("depth_timing_offset");
    c.u(5, "offset_len_minus1", x.offset_len_minus1);
    c.u_v(x.offset_len_minus1 + 1U, "depth_disp_delay_offset_fp", x.depth_disp_delay_offset_fp);
    c.u(6, "depth_disp_delay_offset_dp", x.depth_disp_delay_offset_dp);
}

// H.264 I.13.1; without a subset SPS one offset for each depth view is not read
template <class Coder>
void code(Coder& c, in<Coder, depth_timing>& x, const sei_context& context)
{
    const auto here = c.structure("depth_timing");
    c.flag("per_view_depth_timing_flag", x.per_view_depth_timing_flag);
    if (!c.going())
        return;
    std::uint32_t offsets = 1;
    if (x.per_view_depth_timing_flag) {
        if (context.mvcd_sps == nullptr)
            return c.fail(reason::no_sps, "per_view_depth_timing_flag");
        offsets = NumDepthViews(context.mvcd_sps->seq_parameter_set_mvcd_extension);
    }
    c.count("depth_timing_offset", x.offsets, offsets);
    for (std::uint32_t i = 0; i < offsets && c.going(); ++i)
        code(c, x.offsets[i]);
}

// H.264 I.13.1
template <class Coder>
void code(Coder& c, in<Coder, sei_depth_grid_position>& x)
{
    const auto here = c.structure("depth_grid_position");
    c.u(20, "depth_grid_pos_x_fp", x.depth_grid_pos_x_fp);
    c.u(4, "depth_grid_pos_x_dp", x.depth_grid_pos_x_dp);
    c.flag("depth_grid_pos_x_sign_flag", x.depth_grid_pos_x_sign_flag);
    c.u(20, "depth_grid_pos_y_fp", x.depth_grid_pos_y_fp);
    c.u(4, "depth_grid_pos_y_dp", x.depth_grid_pos_y_dp);
    c.flag("depth_grid_pos_y_sign_flag", x.depth_grid_pos_y_sign_flag);
}

// H.264 I.13.1
template <class Coder>
void code(Coder& c, in<Coder, depth_sampling_info>& x, const sei_context&)
{
    const auto here = c.structure("depth_sampling_info");
    c.u(16, "dttsr_x_mul", x.dttsr_x_mul);
    c.u(4, "dttsr_x_dp", x.dttsr_x_dp);
    c.u(16, "dttsr_y_mul", x.dttsr_y_mul);
    c.u(4, "dttsr_y_dp", x.dttsr_y_dp);
    c.flag("per_view_depth_grid_pos_flag", x.per_view_depth_grid_pos_flag);
    if (x.per_view_depth_grid_pos_flag) {
        c.ue("num_video_plus_depth_views_minus1", x.num_video_plus_depth_views_minus1, 0, 1023);
        c.count("depth_grid_view_id", x.views, std::uint64_t{x.num_video_plus_depth_views_minus1} + 1);
        for (std::uint32_t i = 0; i <= x.num_video_plus_depth_views_minus1 && c.going(); ++i) {
            c.ue({"depth_grid_view_id", i}, x.views[i].depth_grid_view_id, 0, 1023);
            code(c, x.views[i].depth_grid_position);
        }
    } else
        code(c, x.depth_grid_position);
}

// H.264 J.13.1
template <class Coder>
void code(Coder& c, in<Coder, constrained_depth_parameter_set_identifier>& x, const sei_context&)
{
    const auto here = c.structure("constrained_depth_parameter_set_identifier");
    c.ue("max_dps_id", x.max_dps_id);
    c.ue("max_dps_id_diff", x.max_dps_id_diff);
}

} // namespace orv_utils_v4::h264
