/// @file
/// SEI payloads of multiview video with depth and of 3D-AVC: H.264 clauses I.13 and J.13 (H.13 and I.13 in editions
/// that letter the annexes F to I). Payload types 48 and 50 to 54; 49 is in view_scalability_info.h.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

struct sei_message;

/// A view that a nested message applies to.
struct mvcd_nesting_view {
    std::uint16_t sei_view_id = 0;            ///< 0 to 1023
    bool sei_view_applicability_flag = false; ///< to its depth too

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_nesting_view&, const mvcd_nesting_view&);
};

/// A view of the operation point that a nested message applies to.
struct mvcd_nesting_op_view {
    std::uint16_t sei_op_view_id = 0; ///< 0 to 1023
    bool sei_op_depth_flag = false;
    bool sei_op_texture_flag = true;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_nesting_op_view&, const mvcd_nesting_op_view&);
};

/// mvcd_scalable_nesting(), payload type 48: a message that applies to views with depth. Include sei.h where it is
/// used.
struct mvcd_scalable_nesting {
    bool operation_point_flag = false;
    bool all_view_components_in_au_flag = false;
    std::uint32_t num_view_components_minus1 = 0; ///< 0 to 1023
    std::vector<mvcd_nesting_view> views;
    bool sei_op_texture_only_flag = false;
    std::uint32_t num_view_components_op_minus1 = 0; ///< 0 to 1023
    std::vector<mvcd_nesting_op_view> op_views;
    std::uint8_t sei_op_temporal_id = 0; ///< 0 to 7
    std::vector<sei_message> messages;   ///< one

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_scalable_nesting&, const mvcd_scalable_nesting&);
};

/// depth_representation_sei_element(): a number, (-1)^sign * 2^(exponent - 31) * (1 + mantissa / 2^len); with exponent
/// 0
/// (-1)^sign * 2^-(30 + len) * mantissa.
struct depth_representation_sei_element {
    bool da_sign_flag = false;
    std::uint8_t da_exponent = 0;            ///< 0 to 126
    std::uint8_t da_mantissa_len_minus1 = 0; ///< 0 to 31
    std::uint32_t da_mantissa = 0;           ///< of da_mantissa_len_minus1 + 1 bits

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_representation_sei_element&,
                                               const depth_representation_sei_element&);
};

/// The depth of one view: the elements with the index i.
struct depth_representation_view {
    std::uint32_t depth_info_view_id = 0;       ///< 0 to 1023
    std::uint32_t z_axis_reference_view = 0;    ///< 0 to 1023
    std::uint32_t disparity_reference_view = 0; ///< 0 to 1023
    depth_representation_sei_element z_near;    ///< with z_near_flag
    depth_representation_sei_element z_far;     ///< with z_far_flag
    depth_representation_sei_element d_min;     ///< with d_min_flag
    depth_representation_sei_element d_max;     ///< with d_max_flag

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_representation_view&, const depth_representation_view&);
};

/// depth_representation_info(), payload type 50.
struct depth_representation_info {
    static constexpr std::uint32_t most_views = 1024;

    bool all_views_equal_flag = false;
    std::uint32_t num_views_minus1 = 0; ///< 0 to 1023
    bool z_near_flag = false;
    bool z_far_flag = false;
    bool z_axis_equal_flag = false;
    std::uint32_t common_z_axis_reference_view = 0; ///< 0 to 1023
    bool d_min_flag = false;
    bool d_max_flag = false;
    std::uint32_t depth_representation_type = 0; ///< 0 to 3
    std::vector<depth_representation_view> views;
    std::uint32_t depth_nonlinear_representation_num_minus1 = 0;     ///< 0 to 62
    std::vector<std::uint32_t> depth_nonlinear_representation_model; ///< that of i is at i - 1

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_representation_info&, const depth_representation_info&);
};

/// A number without a sign: exponent_… and mantissa_… of its name, as in acquisition_parameter.
struct reference_display_parameter {
    std::uint8_t exponent = 0;  ///< 0 to 62; 63 stands for an unspecified value
    std::uint64_t mantissa = 0; ///< of mantissa_bits() bits

    friend ORV_UTILS_V4_EXPORT bool operator==(const reference_display_parameter&, const reference_display_parameter&);
};

/// A display and a viewer that the views were made for.
struct reference_display {
    reference_display_parameter ref_baseline;
    reference_display_parameter ref_display_width;
    reference_display_parameter ref_viewing_distance; ///< with ref_viewing_distance_flag
    bool additional_shift_present_flag = false;
    std::uint16_t num_sample_shift_plus512 = 512; ///< 0 to 1023

    friend ORV_UTILS_V4_EXPORT bool operator==(const reference_display&, const reference_display&);
};

/// three_dimensional_reference_displays_info(), payload type 51.
struct three_dimensional_reference_displays_info {
    static constexpr std::uint32_t most_displays = 32;

    std::uint32_t prec_ref_baseline = 0;      ///< 0 to 31
    std::uint32_t prec_ref_display_width = 0; ///< 0 to 31
    bool ref_viewing_distance_flag = false;
    std::uint32_t prec_ref_viewing_dist = 0;   ///< 0 to 31
    std::uint32_t num_ref_displays_minus1 = 0; ///< 0 to 31
    std::vector<reference_display> displays;
    bool three_dimensional_reference_displays_extension_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const three_dimensional_reference_displays_info&,
                                               const three_dimensional_reference_displays_info&);
};

/// depth_timing_offset(): how much later the depth is to be shown.
struct depth_timing_offset {
    std::uint8_t offset_len_minus1 = 0;           ///< 0 to 31
    std::uint32_t depth_disp_delay_offset_fp = 0; ///< of offset_len_minus1 + 1 bits
    std::uint8_t depth_disp_delay_offset_dp = 0;  ///< 0 to 63; the offset is fp / 2^dp

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_timing_offset&, const depth_timing_offset&);
};

/// depth_timing(), payload type 52.
struct depth_timing {
    bool per_view_depth_timing_flag = false;
    std::vector<depth_timing_offset> offsets; ///< one, or with the flag one for each depth view

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_timing&, const depth_timing&);
};

/// depth_grid_position() of depth_sampling_info().
struct sei_depth_grid_position {
    std::uint32_t depth_grid_pos_x_fp = 0; ///< of 20 bits; the position is fp / 2^dp
    std::uint8_t depth_grid_pos_x_dp = 0;  ///< 0 to 15
    bool depth_grid_pos_x_sign_flag = false;
    std::uint32_t depth_grid_pos_y_fp = 0; ///< of 20 bits
    std::uint8_t depth_grid_pos_y_dp = 0;  ///< 0 to 15
    bool depth_grid_pos_y_sign_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const sei_depth_grid_position&, const sei_depth_grid_position&);
};

/// Where the depth samples of a view lie.
struct depth_sampling_view {
    std::uint32_t depth_grid_view_id = 0; ///< 0 to 1023
    sei_depth_grid_position depth_grid_position;

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_sampling_view&, const depth_sampling_view&);
};

/// depth_sampling_info(), payload type 53.
struct depth_sampling_info {
    std::uint16_t dttsr_x_mul = 0;
    std::uint8_t dttsr_x_dp = 0; ///< 0 to 15; the ratio of sample rates is mul / 2^dp
    std::uint16_t dttsr_y_mul = 0;
    std::uint8_t dttsr_y_dp = 0; ///< 0 to 15
    bool per_view_depth_grid_pos_flag = false;
    std::uint32_t num_video_plus_depth_views_minus1 = 0; ///< 0 to 1023
    std::vector<depth_sampling_view> views;              ///< with the flag
    sei_depth_grid_position depth_grid_position;         ///< without it

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_sampling_info&, const depth_sampling_info&);
};

/// constrained_depth_parameter_set_identifier(), payload type 54.
struct constrained_depth_parameter_set_identifier {
    std::uint32_t max_dps_id = 0;
    std::uint32_t max_dps_id_diff = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const constrained_depth_parameter_set_identifier&,
                                               const constrained_depth_parameter_set_identifier&);
};

} // namespace orv_utils_v4::h264
