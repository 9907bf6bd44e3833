/// @file
/// The picture parameter set, H.264 clause 7.3.2.2.
#pragma once

#include <orv-utils-v4/h264_syntax/seq_parameter_set.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// pic_parameter_set_rbsp(), clauses 7.3.2.2 and 7.4.2.2: NAL unit type 8. A member that was not sent holds what the
/// standard infers.
struct pic_parameter_set_rbsp {
    static constexpr std::uint32_t most_slice_groups = 8; ///< of all profiles (Annex A)

    std::uint32_t pic_parameter_set_id = 0; ///< 0 to 255
    std::uint32_t seq_parameter_set_id = 0; ///< 0 to 31
    bool entropy_coding_mode_flag = false;  ///< CABAC
    bool bottom_field_pic_order_in_frame_present_flag = false;
    std::uint32_t num_slice_groups_minus1 = 0; ///< 0 to 7
    std::uint32_t slice_group_map_type = 0;    ///< 0 to 6
    std::uint32_t run_length_minus1[most_slice_groups] = {};
    std::uint32_t top_left[most_slice_groups] = {};
    std::uint32_t bottom_right[most_slice_groups] = {};
    bool slice_group_change_direction_flag = false;
    std::uint32_t slice_group_change_rate_minus1 = 0;
    std::uint32_t pic_size_in_map_units_minus1 = 0;
    std::vector<std::uint8_t> slice_group_id; ///< pic_size_in_map_units_minus1 + 1; never more than the unit has bits
    std::uint32_t num_ref_idx_l0_default_active_minus1 = 0; ///< 0 to 31
    std::uint32_t num_ref_idx_l1_default_active_minus1 = 0; ///< 0 to 31
    bool weighted_pred_flag = false;
    std::uint8_t weighted_bipred_idc = 0;    ///< 0 to 2
    std::int32_t pic_init_qp_minus26 = 0;    ///< -(26 + QpBdOffsetY) to 25
    std::int32_t pic_init_qs_minus26 = 0;    ///< -26 to 25
    std::int32_t chroma_qp_index_offset = 0; ///< -12 to 12
    bool deblocking_filter_control_present_flag = false;
    bool constrained_intra_pred_flag = false;
    bool redundant_pic_cnt_present_flag = false;
    bool transform_8x8_mode_sent = false; ///< more_rbsp_data() behind redundant_pic_cnt_present_flag; no element
    bool transform_8x8_mode_flag = false;
    bool pic_scaling_matrix_present_flag = false;
    bool pic_scaling_list_present_flag[seq_parameter_set_data::most_scaling_lists] = {};
    scaling_list lists[seq_parameter_set_data::most_scaling_lists]; ///< scaling_list( ) number i, where its flag is set
    std::int32_t second_chroma_qp_index_offset = 0;                 ///< inferred as chroma_qp_index_offset

    friend ORV_UTILS_V4_EXPORT bool operator==(const pic_parameter_set_rbsp&, const pic_parameter_set_rbsp&);
};

} // namespace orv_utils_v4::h264
