// seq_parameter_set_data() spelled by hand, which SPS and subset SPS hold; H.264 clause 7.3.2.1.1.
#pragma once

#include "support/literal_unit.h"

namespace literal {

/// Up to seq_parameter_set_id.
inline lines sps_head(unsigned profile_idc, unsigned seq_parameter_set_id)
{
    return {{"profile_idc", u(8), profile_idc},
            {"constraint_set0_flag", u(1), 0},
            {"constraint_set1_flag", u(1), 1},
            {"constraint_set2_flag", u(1), 0},
            {"constraint_set3_flag", u(1), 1},
            {"constraint_set4_flag", u(1), 1},
            {"constraint_set5_flag", u(1), 0},
            {"reserved_zero_2bits", u(2), 0},
            {"level_idc", u(8), 40},
            {"seq_parameter_set_id", ue, seq_parameter_set_id}};
}

/// Of a high profile, without scaling lists.
inline lines sps_chroma(unsigned chroma_format_idc)
{
    return {{"chroma_format_idc", ue, chroma_format_idc},
            {"bit_depth_luma_minus8", ue, 2},
            {"bit_depth_chroma_minus8", ue, 1},
            {"qpprime_y_zero_transform_bypass_flag", u(1), 0},
            {"seq_scaling_matrix_present_flag", u(1), 0}};
}

/// From log2_max_frame_num_minus4 on, with no condition on.
inline lines sps_plain_rest(bool frame_mbs_only_flag = true)
{
    lines rest = {{"log2_max_frame_num_minus4", ue, 3},
                  {"pic_order_cnt_type", ue, 2},
                  {"max_num_ref_frames", ue, 4},
                  {"gaps_in_frame_num_value_allowed_flag", u(1), 0},
                  {"pic_width_in_mbs_minus1", ue, 10},
                  {"pic_height_in_map_units_minus1", ue, 8},
                  {"frame_mbs_only_flag", u(1), frame_mbs_only_flag}};
    if (!frame_mbs_only_flag)
        rest.push_back({"mb_adaptive_frame_field_flag", u(1), 1});
    return join(rest, lines{{"direct_8x8_inference_flag", u(1), 1},
                            {"frame_cropping_flag", u(1), 0},
                            {"vui_parameters_present_flag", u(1), 0}});
}

} // namespace literal
