// The texts of the SEI payloads view_scalability_info() and mvcd_view_scalability_info(), H.264 clauses H.13.1.3 and
// I.13.1.
#pragma once

#include "coders/coder.h"
#include "texts/sei/stream_info.h"
#include "texts/sei_context.h"

#include <orv-utils-v4/h264_syntax/sei/view_scalability_info.h>

namespace orv_utils_v4::h264 {

// H.264 I.13.1
template <class Coder>
void code(Coder& c, in<Coder, mvcd_op_view_info>& x)
{
    const auto here = c.structure("mvcd_op_view_info");
    c.flag("view_info_depth_view_present_flag", x.view_info_depth_view_present_flag);
    if (x.view_info_depth_view_present_flag)
        c.flag("mvcd_depth_view_flag", x.mvcd_depth_view_flag);
    c.flag("view_info_texture_view_present_flag", x.view_info_texture_view_present_flag);
    if (x.view_info_texture_view_present_flag)
        c.flag("mvcd_texture_view_flag", x.mvcd_texture_view_flag);
}

/// Views of operation point i; in mvcd_view_scalability_info() each with its mvcd_op_view_info().
template <class Coder, class Ids, class Infos>
void code_op_views(Coder& c, const char* name, std::uint32_t i, Ids& view_id, Infos& view_info, std::uint64_t views,
                   bool mvcd)
{
    c.count({name, i}, view_id, views);
    c.count({name, i}, view_info, mvcd ? views : 0);
    for (std::uint32_t j = 0; j < views && c.going(); ++j) {
        c.ue({name, i, j}, view_id[j], 0, 1023);
        if (mvcd)
            code(c, view_info[j]);
    }
}

// H.264 H.13.1.3 and I.13.1, from profile_level_info_present_flag[ i ] on
template <class Coder>
void code_flagged_op_info(Coder& c, in<Coder, view_scalability_operation_point>& x, std::uint32_t i, bool mvcd,
                          bool view_dependency_info_present_flag)
{
    if (x.profile_level_info_present_flag)
        c.u(24, {"op_profile_level_idc", i}, x.op_profile_level_idc);
    if (x.bitrate_info_present_flag) {
        c.u(16, {"avg_bitrate", i}, x.avg_bitrate);
        c.u(16, {"max_bitrate", i}, x.max_bitrate);
        c.u(16, {"max_bitrate_calc_window", i}, x.max_bitrate_calc_window);
    }
    if (x.frm_rate_info_present_flag) {
        c.u(2, {"constant_frm_rate_idc", i}, x.constant_frm_rate_idc, 0, 2);
        c.u(16, {"avg_frm_rate", i}, x.avg_frm_rate);
    }
    if (view_dependency_info_present_flag) {
        c.ue({"num_directly_dependent_views", i}, x.num_directly_dependent_views);
        code_op_views(c, "directly_dependent_view_id", i, x.directly_dependent_view_id, x.directly_dependent_view_info,
                      x.num_directly_dependent_views, mvcd);
    } else
        c.ue({"view_dependency_info_src_op_id", i}, x.view_dependency_info_src_op_id, 0, 65535);
    if (x.parameter_sets_info_present_flag)
        code(c, x.parameter_sets, i);
    else
        c.ue({"parameter_sets_info_src_op_id", i}, x.parameter_sets_info_src_op_id, 0, 65535);
    if (x.bitstream_restriction_info_present_flag)
        code(c, x.bitstream_restriction, i);
}

// H.264 H.13.1.3 and I.13.1, the loop over i
template <class Coder>
void code(Coder& c, in<Coder, view_scalability_operation_point>& x, std::uint32_t i, bool mvcd)
{
    c.ue({"operation_point_id", i}, x.operation_point_id, 0, 65535);
    c.u(5, {"priority_id", i}, x.priority_id);
    c.u(3, {"temporal_id", i}, x.temporal_id);
    c.ue({"num_target_output_views_minus1", i}, x.num_target_output_views_minus1, 0, 1023);
    code_op_views(c, "view_id", i, x.view_id, x.view_info, std::uint64_t{x.num_target_output_views_minus1} + 1, mvcd);
    c.flag({"profile_level_info_present_flag", i}, x.profile_level_info_present_flag);
    c.flag({"bitrate_info_present_flag", i}, x.bitrate_info_present_flag);
    c.flag({"frm_rate_info_present_flag", i}, x.frm_rate_info_present_flag);
    const bool one_view = x.num_target_output_views_minus1 == 0;
    if (one_view)
        c.flag({"view_dependency_info_present_flag", i}, x.view_dependency_info_present_flag);
    else
        c.infer(x.view_dependency_info_present_flag, false);
    c.flag({"parameter_sets_info_present_flag", i}, x.parameter_sets_info_present_flag);
    c.flag({"bitstream_restriction_info_present_flag", i}, x.bitstream_restriction_info_present_flag);
    code_flagged_op_info(c, x, i, mvcd, one_view && x.view_dependency_info_present_flag);
}

/// The operation points of either payload.
template <class Coder, class Info>
void code_operation_points(Coder& c, Info& x, bool mvcd)
{
    c.ue_bound("num_operation_points_minus1", x.num_operation_points_minus1, 0,
               view_scalability_info::most_operation_points - 1);
    c.count("operation_point_id", x.operation_points, std::uint64_t{x.num_operation_points_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.num_operation_points_minus1 && c.going(); ++i)
        code(c, x.operation_points[i], i, mvcd);
}

// H.264 H.13.1.3
template <class Coder>
void code(Coder& c, in<Coder, view_scalability_info>& x, const sei_context&)
{
    const auto here = c.structure("view_scalability_info");
    code_operation_points(c, x, false);
}

// H.264 I.13.1
template <class Coder>
void code(Coder& c, in<Coder, mvcd_view_scalability_info>& x, const sei_context&)
{
    const auto here = c.structure("mvcd_view_scalability_info");
    code_operation_points(c, x, true);
}

} // namespace orv_utils_v4::h264
