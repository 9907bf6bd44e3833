/// @file
/// SEI payloads of multiview video coding: H.264 clauses H.13.1 and H.13.2 (G.13 in editions that letter the annex G).
/// Payload types 37, 39, 41 to 44 and 46; 38 is in view_scalability_info.h, 40 in multiview_acquisition_info.h.
#pragma once

#include <orv-utils-v4/h264_syntax/hrd_parameters.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

struct sei_message;

/// mvc_scalable_nesting(), payload type 37: a message that applies to view components. Include sei.h where it is used.
struct mvc_scalable_nesting {
    bool operation_point_flag = false;
    bool all_view_components_in_au_flag = false;
    std::uint32_t num_view_components_minus1 = 0;    ///< 0 to 1023
    std::vector<std::uint16_t> sei_view_id;          ///< 0 to 1023 each
    std::uint32_t num_view_components_op_minus1 = 0; ///< 0 to 1023
    std::vector<std::uint16_t> sei_op_view_id;       ///< 0 to 1023 each
    std::uint8_t sei_op_temporal_id = 0;             ///< 0 to 7
    std::vector<sei_message> messages;               ///< one

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvc_scalable_nesting&, const mvc_scalable_nesting&);
};

/// multiview_scene_info(), payload type 39.
struct multiview_scene_info {
    std::uint32_t max_disparity = 0; ///< 0 to 1023, units of luma samples

    friend ORV_UTILS_V4_EXPORT bool operator==(const multiview_scene_info&, const multiview_scene_info&);
};

/// The view components that are not required where one view is the target.
struct non_required_view_entry {
    std::uint32_t view_order_index = 0; ///< 0 to 1023
    std::uint32_t num_non_required_view_components_minus1 = 0;
    std::vector<std::uint32_t> index_delta_minus1;

    friend ORV_UTILS_V4_EXPORT bool operator==(const non_required_view_entry&, const non_required_view_entry&);
};

/// non_required_view_component(), payload type 41.
struct non_required_view_component {
    static constexpr std::uint32_t most_entries = 1023; ///< one for each view but the first

    std::uint32_t num_info_entries_minus1 = 0; ///< 0 to 1022
    std::vector<non_required_view_entry> entries;

    friend ORV_UTILS_V4_EXPORT bool operator==(const non_required_view_component&, const non_required_view_component&);
};

/// Which of the references of a view in its subset SPS are still used. By j, as there.
struct view_dependency_flags {
    static constexpr std::uint32_t most_references = 15; ///< of a list

    bool anchor_ref_l0_flag[most_references] = {};
    bool anchor_ref_l1_flag[most_references] = {};
    bool non_anchor_ref_l0_flag[most_references] = {};
    bool non_anchor_ref_l1_flag[most_references] = {};

    friend ORV_UTILS_V4_EXPORT bool operator==(const view_dependency_flags&, const view_dependency_flags&);
};

/// view_dependency_change(), payload type 42.
struct view_dependency_change {
    std::uint32_t seq_parameter_set_id = 0; ///< 0 to 31, of a subset SPS
    bool anchor_update_flag = false;
    bool non_anchor_update_flag = false;
    std::vector<view_dependency_flags>
        views; ///< of all views of the subset SPS but the first: that of i is views[i - 1]

    friend ORV_UTILS_V4_EXPORT bool operator==(const view_dependency_change&, const view_dependency_change&);
};

/// operation_points_not_present(), payload type 43.
struct operation_points_not_present {
    std::uint32_t num_operation_points = 0;
    std::vector<std::uint32_t> operation_point_not_present_id; ///< 0 to 65535 each

    friend ORV_UTILS_V4_EXPORT bool operator==(const operation_points_not_present&,
                                               const operation_points_not_present&);
};

/// The timing and the buffers of a temporal layer of the base view with those below it.
struct base_view_temporal_hrd_layer {
    std::uint8_t sei_mvc_temporal_id = 0; ///< 0 to 7
    bool sei_mvc_timing_info_present_flag = false;
    std::uint32_t sei_mvc_num_units_in_tick = 0; ///< above 0
    std::uint32_t sei_mvc_time_scale = 0;        ///< units in a second, above 0
    bool sei_mvc_fixed_frame_rate_flag = false;
    bool sei_mvc_nal_hrd_parameters_present_flag = false;
    hrd_parameters sei_mvc_nal_hrd_parameters; ///< the first hrd_parameters( )
    bool sei_mvc_vcl_hrd_parameters_present_flag = false;
    hrd_parameters sei_mvc_vcl_hrd_parameters; ///< the second one
    bool sei_mvc_low_delay_hrd_flag = false;
    bool sei_mvc_pic_struct_present_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const base_view_temporal_hrd_layer&,
                                               const base_view_temporal_hrd_layer&);
};

/// base_view_temporal_hrd(), payload type 44.
struct base_view_temporal_hrd {
    static constexpr std::uint32_t most_layers = 8;

    std::uint32_t num_of_temporal_layers_in_base_view_minus1 = 0; ///< 0 to 7
    std::vector<base_view_temporal_hrd_layer> layers;

    friend ORV_UTILS_V4_EXPORT bool operator==(const base_view_temporal_hrd&, const base_view_temporal_hrd&);
};

/// multiview_view_position(), payload type 46.
struct multiview_view_position {
    std::uint32_t num_views_minus1 = 0;       ///< 0 to 1023
    std::vector<std::uint32_t> view_position; ///< from the left on
    bool multiview_view_position_extension_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const multiview_view_position&, const multiview_view_position&);
};

} // namespace orv_utils_v4::h264
