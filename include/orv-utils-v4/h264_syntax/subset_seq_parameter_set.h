/// @file
/// The subset sequence parameter set, H.264 clause 7.3.2.1.3, with its extensions for scalable (Annex G), multiview
/// (Annex H), multiview with depth (Annex I) and 3D-AVC (Annex J) video; F to I in older editions.
#pragma once

#include <orv-utils-v4/h264_syntax/bounded_list.h>
#include <orv-utils-v4/h264_syntax/depth_parameter_set.h>
#include <orv-utils-v4/h264_syntax/seq_parameter_set.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// seq_parameter_set_svc_extension(), clauses G.7.3.2.1.4 and G.7.4.2.1.4.
struct seq_parameter_set_svc_extension {
    bool inter_layer_deblocking_filter_control_present_flag = false;
    std::uint8_t extended_spatial_scalability_idc = 0; ///< 0 to 2
    bool chroma_phase_x_plus1_flag = true;
    std::uint8_t chroma_phase_y_plus1 = 1;               ///< 0 to 2
    bool seq_ref_layer_chroma_phase_x_plus1_flag = true; ///< inferred as chroma_phase_x_plus1_flag
    std::uint8_t seq_ref_layer_chroma_phase_y_plus1 = 1; ///< 0 to 2; inferred as chroma_phase_y_plus1
    std::int32_t seq_scaled_ref_layer_left_offset = 0;   ///< -2^15 to 2^15 - 1, as the three below
    std::int32_t seq_scaled_ref_layer_top_offset = 0;
    std::int32_t seq_scaled_ref_layer_right_offset = 0;
    std::int32_t seq_scaled_ref_layer_bottom_offset = 0;
    bool seq_tcoeff_level_prediction_flag = false;
    bool adaptive_tcoeff_level_prediction_flag = false;
    bool slice_header_restriction_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const seq_parameter_set_svc_extension&,
                                               const seq_parameter_set_svc_extension&);
};

/// What the VUI extensions have of each layer or operation point. The names have vui_ext_, vui_mvc_ or vui_mvcd_ before
/// them, the structures not.
struct vui_extension_timing {
    bool timing_info_present_flag = false;
    std::uint32_t num_units_in_tick = 0; ///< above 0
    std::uint32_t time_scale = 0;        ///< above 0
    bool fixed_frame_rate_flag = false;
    bool nal_hrd_parameters_present_flag = false;
    hrd_parameters nal_hrd_parameters;
    bool vcl_hrd_parameters_present_flag = false;
    hrd_parameters vcl_hrd_parameters;
    bool low_delay_hrd_flag = true; ///< inferred as 1 - fixed_frame_rate_flag
    bool pic_struct_present_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const vui_extension_timing&, const vui_extension_timing&);
};

/// An entry of svc_vui_parameters_extension().
struct svc_vui_entry {
    std::uint8_t vui_ext_dependency_id = 0; ///< 0 to 7
    std::uint8_t vui_ext_quality_id = 0;    ///< 0 to 15
    std::uint8_t vui_ext_temporal_id = 0;   ///< 0 to 7
    vui_extension_timing timing;

    friend ORV_UTILS_V4_EXPORT bool operator==(const svc_vui_entry&, const svc_vui_entry&);
};

/// svc_vui_parameters_extension(), clauses G.14.1 and G.14.2.
struct svc_vui_parameters_extension {
    static constexpr std::uint32_t most_entries = 1024;

    std::uint32_t vui_ext_num_entries_minus1 = 0; ///< 0 to 1023
    std::vector<svc_vui_entry> entries;

    friend ORV_UTILS_V4_EXPORT bool operator==(const svc_vui_parameters_extension&,
                                               const svc_vui_parameters_extension&);
};

/// The view components that one view refers to, by view_id.
struct inter_view_references {
    static constexpr std::size_t most_references = 15; ///< of a list
    /// View ids.
    using list = bounded_list<std::uint32_t, most_references>;

    std::uint32_t num_anchor_refs_l0 = 0; ///< 0 to Min( 15, num_views_minus1 ), as those below
    list anchor_ref_l0;                   ///< 0 to 1023, as those below
    std::uint32_t num_anchor_refs_l1 = 0;
    list anchor_ref_l1;
    std::uint32_t num_non_anchor_refs_l0 = 0;
    list non_anchor_ref_l0;
    std::uint32_t num_non_anchor_refs_l1 = 0;
    list non_anchor_ref_l1;

    friend ORV_UTILS_V4_EXPORT bool operator==(const inter_view_references&, const inter_view_references&);
};

/// The bounds of the lists of views and of operation points, clauses H.7.4.2.1.4, H.14.2, I.7.4.2.1.5 and I.14.2.
struct multiview_bounds {
    static constexpr std::uint32_t most_views = 1024;
    static constexpr std::uint32_t most_level_values = 64;
    static constexpr std::uint32_t most_operation_points = 1024;
};

/// A view of seq_parameter_set_mvc_extension().
struct mvc_view {
    std::uint32_t view_id = 0;        ///< 0 to 1023
    inter_view_references references; ///< of all views but the first

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvc_view&, const mvc_view&);
};

/// An operation point of seq_parameter_set_mvc_extension().
struct mvc_operation_point {
    std::uint8_t applicable_op_temporal_id = 0;              ///< 0 to 7
    std::uint32_t applicable_op_num_target_views_minus1 = 0; ///< 0 to 1023
    std::vector<std::uint32_t> applicable_op_target_view_id; ///< 0 to 1023 each
    std::uint32_t applicable_op_num_views_minus1 = 0;        ///< 0 to 1023

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvc_operation_point&, const mvc_operation_point&);
};

/// A level of seq_parameter_set_mvc_extension() with the operation points that it is for.
struct mvc_level {
    std::uint8_t level_idc = 0;
    std::uint32_t num_applicable_ops_minus1 = 0; ///< 0 to 1023
    std::vector<mvc_operation_point> operation_points;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvc_level&, const mvc_level&);
};

/// seq_parameter_set_mvc_extension(), clauses H.7.3.2.1.4 and H.7.4.2.1.4.
struct seq_parameter_set_mvc_extension {
    std::uint32_t num_views_minus1 = 0;                  ///< 0 to 1023
    std::vector<mvc_view> views;                         ///< by VOIdx
    std::uint32_t num_level_values_signalled_minus1 = 0; ///< 0 to 63
    std::vector<mvc_level> levels;
    std::uint8_t mfc_format_idc = 0; ///< with profile_idc 134, as those below
    bool default_grid_position_flag = false;
    std::uint8_t view0_grid_position_x = 0; ///< sixteenths of a sample; what the default stands for is not filled in
    std::uint8_t view0_grid_position_y = 0;
    std::uint8_t view1_grid_position_x = 0;
    std::uint8_t view1_grid_position_y = 0;
    bool rpu_filter_enabled_flag = false;
    bool rpu_field_processing_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const seq_parameter_set_mvc_extension&,
                                               const seq_parameter_set_mvc_extension&);
};

/// An operation point of mvc_vui_parameters_extension().
struct mvc_vui_operation_point {
    std::uint8_t vui_mvc_temporal_id = 0;                     ///< 0 to 7
    std::uint32_t vui_mvc_num_target_output_views_minus1 = 0; ///< 0 to 1023
    std::vector<std::uint32_t> vui_mvc_view_id;               ///< 0 to 1023 each
    vui_extension_timing timing;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvc_vui_operation_point&, const mvc_vui_operation_point&);
};

/// mvc_vui_parameters_extension(), clauses H.14.1 and H.14.2.
struct mvc_vui_parameters_extension {
    std::uint32_t vui_mvc_num_ops_minus1 = 0; ///< 0 to 1023
    std::vector<mvc_vui_operation_point> operation_points;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvc_vui_parameters_extension&,
                                               const mvc_vui_parameters_extension&);
};

/// A view of seq_parameter_set_mvcd_extension().
struct mvcd_view {
    std::uint32_t view_id = 0; ///< 0 to 1023
    bool depth_view_present_flag = false;
    bool texture_view_present_flag = false;
    inter_view_references references; ///< of all depth views but the first view

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_view&, const mvcd_view&);
};

/// A target view of an operation point of seq_parameter_set_mvcd_extension().
struct mvcd_target_view {
    std::uint32_t applicable_op_target_view_id = 0; ///< 0 to 1023
    bool applicable_op_depth_flag = false;
    bool applicable_op_texture_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_target_view&, const mvcd_target_view&);
};

/// An operation point of seq_parameter_set_mvcd_extension().
struct mvcd_operation_point {
    std::uint8_t applicable_op_temporal_id = 0;              ///< 0 to 7
    std::uint32_t applicable_op_num_target_views_minus1 = 0; ///< 0 to 1023
    std::vector<mvcd_target_view> target_views;
    std::uint32_t applicable_op_num_texture_views_minus1 = 0; ///< 0 to 1023
    std::uint32_t applicable_op_num_depth_views = 0;          ///< 0 to 1024

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_operation_point&, const mvcd_operation_point&);
};

/// A level of seq_parameter_set_mvcd_extension() with the operation points that it is for.
struct mvcd_level {
    std::uint8_t level_idc = 0;
    std::uint32_t num_applicable_ops_minus1 = 0; ///< 0 to 1023
    std::vector<mvcd_operation_point> operation_points;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_level&, const mvcd_level&);
};

/// A view of an operation point of mvcd_vui_parameters_extension().
struct mvcd_vui_view {
    std::uint32_t vui_mvcd_view_id = 0; ///< 0 to 1023
    bool vui_mvcd_depth_flag = false;
    bool vui_mvcd_texture_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_vui_view&, const mvcd_vui_view&);
};

/// An operation point of mvcd_vui_parameters_extension().
struct mvcd_vui_operation_point {
    std::uint8_t vui_mvcd_temporal_id = 0;                     ///< 0 to 7
    std::uint32_t vui_mvcd_num_target_output_views_minus1 = 0; ///< 0 to 1023
    std::vector<mvcd_vui_view> views;
    vui_extension_timing timing;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_vui_operation_point&, const mvcd_vui_operation_point&);
};

/// mvcd_vui_parameters_extension(), clauses I.14.1 and I.14.2.
struct mvcd_vui_parameters_extension {
    std::uint32_t vui_mvcd_num_ops_minus1 = 0; ///< 0 to 1023
    std::vector<mvcd_vui_operation_point> operation_points;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_vui_parameters_extension&,
                                               const mvcd_vui_parameters_extension&);
};

/// seq_parameter_set_mvcd_extension(), clauses I.7.3.2.1.5 and I.7.4.2.1.5.
struct seq_parameter_set_mvcd_extension {
    std::uint32_t num_views_minus1 = 0;                  ///< 0 to 1023
    std::vector<mvcd_view> views;                        ///< by VOIdx
    std::uint32_t num_level_values_signalled_minus1 = 0; ///< 0 to 63
    std::vector<mvcd_level> levels;
    bool mvcd_vui_parameters_present_flag = false;
    h264::mvcd_vui_parameters_extension mvcd_vui_parameters_extension;
    bool texture_vui_parameters_present_flag = false;
    h264::mvc_vui_parameters_extension mvc_vui_parameters_extension;

    friend ORV_UTILS_V4_EXPORT bool operator==(const seq_parameter_set_mvcd_extension&,
                                               const seq_parameter_set_mvcd_extension&);
};

/// Where the depth samples of a view lie.
struct depth_grid_position {
    std::uint32_t grid_pos_view_id = 0; ///< 0 to 1023
    std::int32_t grid_pos_x = 0;
    std::int32_t grid_pos_y = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_grid_position&, const depth_grid_position&);
};

/// seq_parameter_set_3davc_extension(), clauses J.7.3.2.1.6 and J.7.4.2.1.6. Without a depth view only
/// alc_sps_enable_flag and what follows it are sent.
struct seq_parameter_set_3davc_extension {
    std::uint32_t three_dv_acquisition_idc = 0; ///< 3dv_acquisition_idc
    std::vector<std::uint32_t> view_id_3dv;     ///< of each depth view, 0 to 1023
    h264::depth_ranges depth_ranges;            ///< with 3dv_acquisition_idc, as vsp_param
    h264::vsp_param vsp_param;
    bool reduced_resolution_flag = false;
    std::uint32_t depth_pic_width_in_mbs_minus1 = 0; ///< with reduced_resolution_flag, as the five below
    std::uint32_t depth_pic_height_in_map_units_minus1 = 0;
    std::uint32_t depth_hor_mult_minus1 = 0;
    std::uint32_t depth_ver_mult_minus1 = 0;
    std::uint32_t depth_hor_rsh = 0;
    std::uint32_t depth_ver_rsh = 0;
    bool depth_frame_cropping_flag = false;
    std::uint32_t depth_frame_crop_left_offset = 0;
    std::uint32_t depth_frame_crop_right_offset = 0;
    std::uint32_t depth_frame_crop_top_offset = 0;
    std::uint32_t depth_frame_crop_bottom_offset = 0;
    std::uint32_t grid_pos_num_views = 0; ///< 0 to 1024
    std::vector<depth_grid_position> grid_positions;
    bool slice_header_prediction_flag = false;
    bool seq_view_synthesis_flag = false;
    bool alc_sps_enable_flag = false;
    bool enable_rle_skip_flag = false;
    /// Unless AllViewsPairedFlag: of the views with texture in their order, the first view left out.
    std::vector<inter_view_references> texture_references;

    friend ORV_UTILS_V4_EXPORT bool operator==(const seq_parameter_set_3davc_extension&,
                                               const seq_parameter_set_3davc_extension&);
};

/// subset_seq_parameter_set_rbsp(), clause 7.3.2.1.3: NAL unit type 15. Which extensions count is for profile_idc to
/// say.
struct subset_seq_parameter_set_rbsp {
    h264::seq_parameter_set_data seq_parameter_set_data;
    h264::seq_parameter_set_svc_extension seq_parameter_set_svc_extension; ///< profile_idc 83 and 86
    bool svc_vui_parameters_present_flag = false;
    h264::svc_vui_parameters_extension svc_vui_parameters_extension;
    h264::seq_parameter_set_mvc_extension seq_parameter_set_mvc_extension; ///< profile_idc 118, 128 and 134
    bool mvc_vui_parameters_present_flag = false;
    h264::mvc_vui_parameters_extension mvc_vui_parameters_extension;
    h264::seq_parameter_set_mvcd_extension seq_parameter_set_mvcd_extension;   ///< profile_idc 135, 138 and 139
    h264::seq_parameter_set_3davc_extension seq_parameter_set_3davc_extension; ///< profile_idc 139
    bool additional_extension2_flag = false;
    std::vector<bool> additional_extension2_data_flag; ///< each as it was sent

    friend ORV_UTILS_V4_EXPORT bool operator==(const subset_seq_parameter_set_rbsp&,
                                               const subset_seq_parameter_set_rbsp&);
};

/// NumDepthViews, clause I.7.3.2.1.5.
inline std::uint32_t NumDepthViews(const seq_parameter_set_mvcd_extension& x) noexcept
{
    std::uint32_t n = 0;
    for (const mvcd_view& view : x.views)
        n += view.depth_view_present_flag ? 1U : 0U;
    return n;
}

/// AllViewsPairedFlag, clause J.7.4.2.1.6: each view but the first has both texture and depth.
inline bool AllViewsPairedFlag(const seq_parameter_set_mvcd_extension& x) noexcept
{
    for (std::size_t i = 1; i < x.views.size(); ++i) {
        if (!x.views[i].depth_view_present_flag || !x.views[i].texture_view_present_flag)
            return false;
    }
    return true;
}

} // namespace orv_utils_v4::h264
