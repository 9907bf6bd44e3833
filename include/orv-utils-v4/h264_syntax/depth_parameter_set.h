/// @file
/// The depth parameter set and the structures that it shares with the SPS of 3D-AVC, H.264 clause J.7.3.2.13
/// (I.7.3.2.13 in older editions). Values are kept as they were sent: differences to another parameter set stay
/// differences.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// The value for one view in 3dv_acquisition_element().
struct three_dv_value {
    bool sign0 = false;          ///< as the two below with a predDirection of 2
    std::uint8_t exponent0 = 0;  ///< 0 to 127
    std::uint32_t mantissa0 = 0; ///< of mantissa_len_minus1 + 1 bits
    bool skip_flag = false;      ///< as the four below with another predDirection
    bool sign1 = false;
    bool exponent_skip_flag = false;
    std::uint8_t exponent1 = 0; ///< 0 to 127
    std::int32_t mantissa_diff = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const three_dv_value&, const three_dv_value&);
};

/// 3dv_acquisition_element(), clause J.7.3.2.13.2.
struct three_dv_acquisition_element {
    bool element_equal_flag = false;
    std::uint8_t mantissa_len_minus1 = 0; ///< 0 to 31
    std::vector<three_dv_value> values;   ///< of each view, or one with element_equal_flag

    friend ORV_UTILS_V4_EXPORT bool operator==(const three_dv_acquisition_element&,
                                               const three_dv_acquisition_element&);
};

/// depth_ranges(), clause J.7.3.2.13.1.
struct depth_ranges {
    bool z_near_flag = false;
    bool z_far_flag = false;
    three_dv_acquisition_element z_near; ///< with z_near_flag
    three_dv_acquisition_element z_far;  ///< with z_far_flag

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_ranges&, const depth_ranges&);
};

/// What vsp_param() has of two views i and j, j < i.
struct view_disparity {
    std::int32_t disparity_diff_wji = 0;
    std::int32_t disparity_diff_oji = 0;
    std::int32_t disparity_diff_wij = 0;
    std::int32_t disparity_diff_oij = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const view_disparity&, const view_disparity&);
};

/// vsp_param(), clause J.7.3.2.13.3.
struct vsp_param {
    std::vector<view_disparity> pairs; ///< (i, j): (1, 0), (2, 0), (2, 1), (3, 0) and so on

    friend ORV_UTILS_V4_EXPORT bool operator==(const vsp_param&, const vsp_param&);
};

/// depth_parameter_set_rbsp(), clause J.7.3.2.13: NAL unit type 16.
struct depth_parameter_set_rbsp {
    static constexpr std::uint32_t most_views = 1024;

    std::uint32_t depth_parameter_set_id = 0; ///< 1 to 63; 0 stands for what the SPS has
    std::uint32_t pred_direction = 0;         ///< 0 to 2: from two other sets, from one, from none
    std::uint32_t ref_dps_id0 = 0;            ///< 0 to 63
    std::uint32_t ref_dps_id1 = 0;            ///< 0 to 63
    std::uint8_t pred_weight0 = 0;            ///< 0 to 63, of 64
    std::uint32_t num_depth_views_minus1 = 0; ///< 0 to 1023
    h264::depth_ranges depth_ranges;
    bool vsp_param_flag = false;
    h264::vsp_param vsp_param;
    bool depth_param_additional_extension_flag = false;
    std::uint32_t nonlinear_depth_representation_num = 0;
    std::vector<std::uint32_t> nonlinear_depth_representation_model; ///< from index 1 on: the first is number 1
    std::vector<bool> depth_param_additional_extension_data_flag;    ///< each as it was sent

    friend ORV_UTILS_V4_EXPORT bool operator==(const depth_parameter_set_rbsp&, const depth_parameter_set_rbsp&);
};

} // namespace orv_utils_v4::h264
