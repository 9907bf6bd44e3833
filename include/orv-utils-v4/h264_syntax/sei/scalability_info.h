/// @file
/// The SEI payload scalability_info(), H.264 clauses G.13.1.1 and G.13.2.1 (F.13.1.1 in editions that letter the
/// scalable annex F): what the layers of a scalable stream are, and what each needs.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/sei/stream_info.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// A region of interest of a layer.
struct scalability_info_roi {
    std::uint32_t first_mb_in_roi = 0;
    std::uint32_t roi_width_in_mbs_minus1 = 0;
    std::uint32_t roi_height_in_mbs_minus1 = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const scalability_info_roi&, const scalability_info_roi&);
};

/// What a layer is after a conversion into another profile.
struct scalability_info_rewriting {
    bool rewriting_info_flag = false;
    std::uint32_t rewriting_profile_level_idc = 0; ///< the three bytes from profile_idc to level_idc
    std::uint16_t rewriting_avg_bitrate = 0;       ///< 1000 bit/s
    std::uint16_t rewriting_max_bitrate = 0;       ///< 1000 bit/s

    friend ORV_UTILS_V4_EXPORT bool operator==(const scalability_info_rewriting&, const scalability_info_rewriting&);
};

/// One layer: the elements with the index i.
struct scalability_info_layer {
    std::uint32_t layer_id = 0;   ///< 0 to 2047
    std::uint8_t priority_id = 0; ///< 0 to 63
    bool discardable_flag = false;
    std::uint8_t dependency_id = 0; ///< 0 to 7
    std::uint8_t quality_id = 0;    ///< 0 to 15
    std::uint8_t temporal_id = 0;   ///< 0 to 7
    bool sub_pic_layer_flag = false;
    bool sub_region_layer_flag = false;
    bool iroi_division_info_present_flag = false;
    bool profile_level_info_present_flag = false;
    bool bitrate_info_present_flag = false;
    bool frm_rate_info_present_flag = false;
    bool frm_size_info_present_flag = false;
    bool layer_dependency_info_present_flag = false;
    bool parameter_sets_info_present_flag = false;
    bool bitstream_restriction_info_present_flag = false;
    bool exact_inter_layer_pred_flag = false;
    bool exact_sample_value_match_flag = false;
    bool layer_conversion_flag = false;
    bool layer_output_flag = false;
    std::uint32_t layer_profile_level_idc = 0;          ///< the three bytes from profile_idc to level_idc
    std::uint16_t avg_bitrate = 0;                      ///< 1000 bit/s
    std::uint16_t max_bitrate_layer = 0;                ///< 1000 bit/s
    std::uint16_t max_bitrate_layer_representation = 0; ///< 1000 bit/s
    std::uint16_t max_bitrate_calc_window = 0;          ///< 1/100 s
    std::uint8_t constant_frm_rate_idc = 0;             ///< 0 to 2: not constant, constant, not known
    std::uint16_t avg_frm_rate = 0;                     ///< frames in 256 s
    std::uint32_t frm_width_in_mbs_minus1 = 0;
    std::uint32_t frm_height_in_mbs_minus1 = 0;
    std::uint32_t base_region_layer_id = 0; ///< 0 to 2047
    bool dynamic_rect_flag = false;
    std::uint16_t horizontal_offset = 0; ///< luma samples, as the three below
    std::uint16_t vertical_offset = 0;
    std::uint16_t region_width = 0;
    std::uint16_t region_height = 0;
    std::uint32_t roi_id = 0;
    bool iroi_grid_flag = false;
    std::uint32_t grid_width_in_mbs_minus1 = 0;
    std::uint32_t grid_height_in_mbs_minus1 = 0;
    std::uint32_t num_rois_minus1 = 0;
    std::vector<scalability_info_roi> rois; ///< num_rois_minus1 + 1, where they are sent
    std::uint32_t num_directly_dependent_layers = 0;
    std::vector<std::uint32_t> directly_dependent_layer_id_delta_minus1;
    std::uint32_t layer_dependency_info_src_layer_id_delta = 0;
    required_parameter_sets parameter_sets;
    std::uint32_t parameter_sets_info_src_layer_id_delta = 0;
    bitstream_restriction_info bitstream_restriction;
    std::uint32_t conversion_type_idc = 0; ///< 0 to 2
    scalability_info_rewriting rewriting[2];

    friend ORV_UTILS_V4_EXPORT bool operator==(const scalability_info_layer&, const scalability_info_layer&);
};

/// A priority layer of one dependency_id.
struct scalability_info_priority {
    std::uint32_t pr_id = 0;                ///< 0 to 63
    std::uint32_t pr_profile_level_idc = 0; ///< the three bytes from profile_idc to level_idc
    std::uint16_t pr_avg_bitrate = 0;       ///< 1000 bit/s
    std::uint16_t pr_max_bitrate = 0;       ///< 1000 bit/s

    friend ORV_UTILS_V4_EXPORT bool operator==(const scalability_info_priority&, const scalability_info_priority&);
};

/// The priority layers of one dependency_id.
struct scalability_info_priorities {
    std::uint8_t pr_dependency_id = 0; ///< 0 to 7
    std::uint32_t pr_num_minus1 = 0;   ///< 0 to 63
    std::vector<scalability_info_priority> priorities;

    friend ORV_UTILS_V4_EXPORT bool operator==(const scalability_info_priorities&, const scalability_info_priorities&);
};

/// scalability_info(), payload type 24.
struct scalability_info {
    static constexpr std::uint32_t most_layers = 2048;
    static constexpr std::uint32_t most_dependency_ids = 8;

    bool temporal_id_nesting_flag = false;
    bool priority_layer_info_present_flag = false;
    bool priority_id_setting_flag = false;
    std::uint32_t num_layers_minus1 = 0; ///< 0 to 2047
    std::vector<scalability_info_layer> layers;
    std::uint32_t pr_num_dIds_minus1 = 0;              ///< 0 to 7
    std::vector<scalability_info_priorities> pr_dIds;  ///< where priority_layer_info_present_flag is set
    std::vector<std::uint8_t> priority_id_setting_uri; ///< with the null byte that ends it

    friend ORV_UTILS_V4_EXPORT bool operator==(const scalability_info&, const scalability_info&);
};

} // namespace orv_utils_v4::h264
