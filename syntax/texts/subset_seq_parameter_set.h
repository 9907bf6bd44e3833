// The text of the subset sequence parameter set, H.264 clause 7.3.2.1.3, and of the scalable extension in it (Annex G).
// texts/multiview_parameter_sets.h has the extensions of Annexes H to J.
#pragma once

#include "coders/coder.h"
#include "texts/multiview_parameter_sets.h"
#include "texts/parameter_sets.h"
#include "texts/vui_extension.h"

#include <orv-utils-v4/h264_syntax/subset_seq_parameter_set.h>

namespace orv_utils_v4::h264 {

// H.264 G.7.3.2.1.4
template <class Coder>
void code(Coder& c, in<Coder, seq_parameter_set_svc_extension>& x, std::uint32_t ChromaArrayType)
{
    constexpr std::int64_t lowest_offset = -32768;
    constexpr std::int64_t highest_offset = 32767;
    const auto here = c.structure("seq_parameter_set_svc_extension");
    c.flag("inter_layer_deblocking_filter_control_present_flag", x.inter_layer_deblocking_filter_control_present_flag);
    c.u(2, "extended_spatial_scalability_idc", x.extended_spatial_scalability_idc, 0, 2);
    if (ChromaArrayType == 1 || ChromaArrayType == 2)
        c.flag("chroma_phase_x_plus1_flag", x.chroma_phase_x_plus1_flag);
    if (ChromaArrayType == 1)
        c.u(2, "chroma_phase_y_plus1", x.chroma_phase_y_plus1, 0, 2);
    if (x.extended_spatial_scalability_idc == 1 && ChromaArrayType > 0) {
        c.flag("seq_ref_layer_chroma_phase_x_plus1_flag", x.seq_ref_layer_chroma_phase_x_plus1_flag);
        c.u(2, "seq_ref_layer_chroma_phase_y_plus1", x.seq_ref_layer_chroma_phase_y_plus1, 0, 2);
    } else {
        c.infer(x.seq_ref_layer_chroma_phase_x_plus1_flag, x.chroma_phase_x_plus1_flag);
        c.infer(x.seq_ref_layer_chroma_phase_y_plus1, x.chroma_phase_y_plus1);
    }
    if (x.extended_spatial_scalability_idc == 1) {
        c.se("seq_scaled_ref_layer_left_offset", x.seq_scaled_ref_layer_left_offset, lowest_offset, highest_offset);
        c.se("seq_scaled_ref_layer_top_offset", x.seq_scaled_ref_layer_top_offset, lowest_offset, highest_offset);
        c.se("seq_scaled_ref_layer_right_offset", x.seq_scaled_ref_layer_right_offset, lowest_offset, highest_offset);
        c.se("seq_scaled_ref_layer_bottom_offset", x.seq_scaled_ref_layer_bottom_offset, lowest_offset, highest_offset);
    }
    c.flag("seq_tcoeff_level_prediction_flag", x.seq_tcoeff_level_prediction_flag);
    if (x.seq_tcoeff_level_prediction_flag)
        c.flag("adaptive_tcoeff_level_prediction_flag", x.adaptive_tcoeff_level_prediction_flag);
    c.flag("slice_header_restriction_flag", x.slice_header_restriction_flag);
}

// H.264 G.14.1
template <class Coder>
void code(Coder& c, in<Coder, svc_vui_parameters_extension>& x)
{
    constexpr vui_extension_names names = {"vui_ext_timing_info_present_flag",
                                           "vui_ext_num_units_in_tick",
                                           "vui_ext_time_scale",
                                           "vui_ext_fixed_frame_rate_flag",
                                           "vui_ext_nal_hrd_parameters_present_flag",
                                           "vui_ext_vcl_hrd_parameters_present_flag",
                                           "vui_ext_low_delay_hrd_flag",
                                           "vui_ext_pic_struct_present_flag"};
    const auto here = c.structure("svc_vui_parameters_extension");
    c.ue_bound("vui_ext_num_entries_minus1", x.vui_ext_num_entries_minus1, 0,
               svc_vui_parameters_extension::most_entries - 1);
    c.count("vui_ext_dependency_id", x.entries, std::uint64_t{x.vui_ext_num_entries_minus1} + 1);
    for (std::uint32_t i = 0; i <= x.vui_ext_num_entries_minus1 && c.going(); ++i) {
        auto& entry = x.entries[i];
        c.u(3, {"vui_ext_dependency_id", i}, entry.vui_ext_dependency_id);
        c.u(4, {"vui_ext_quality_id", i}, entry.vui_ext_quality_id);
        c.u(3, {"vui_ext_temporal_id", i}, entry.vui_ext_temporal_id);
        code_vui_extension_timing(c, names, entry.timing, i);
    }
}

// H.264 7.3.2.1.3
template <class Coder>
void code(Coder& c, in<Coder, subset_seq_parameter_set_rbsp>& x)
{
    const auto here = c.structure("subset_seq_parameter_set_rbsp");
    code(c, x.seq_parameter_set_data);
    const std::uint8_t profile_idc = x.seq_parameter_set_data.profile_idc;
    if (profile_idc == 83 || profile_idc == 86) {
        code(c, x.seq_parameter_set_svc_extension, ChromaArrayType(x.seq_parameter_set_data));
        c.flag("svc_vui_parameters_present_flag", x.svc_vui_parameters_present_flag);
        if (x.svc_vui_parameters_present_flag)
            code(c, x.svc_vui_parameters_extension);
    } else if (profile_idc == 118 || profile_idc == 128 || profile_idc == 134) {
        c.f(1, "bit_equal_to_one", 1);
        code(c, x.seq_parameter_set_mvc_extension, x.seq_parameter_set_data);
        c.flag("mvc_vui_parameters_present_flag", x.mvc_vui_parameters_present_flag);
        if (x.mvc_vui_parameters_present_flag)
            code(c, x.mvc_vui_parameters_extension);
    } else if (profile_idc == 138 || profile_idc == 135) {
        c.f(1, "bit_equal_to_one", 1);
        code(c, x.seq_parameter_set_mvcd_extension);
    } else if (profile_idc == 139) {
        c.f(1, "bit_equal_to_one", 1);
        code(c, x.seq_parameter_set_mvcd_extension);
        code(c, x.seq_parameter_set_3davc_extension, x.seq_parameter_set_mvcd_extension, x.seq_parameter_set_data);
    }
    c.flag("additional_extension2_flag", x.additional_extension2_flag);
    if (x.additional_extension2_flag)
        c.flags_left("additional_extension2_data_flag", x.additional_extension2_data_flag);
    rbsp_trailing_bits(c);
}

} // namespace orv_utils_v4::h264
