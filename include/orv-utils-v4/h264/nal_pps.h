/// @file
/// The picture parameter set, H.264 clause 7.3.2.2.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/nal_sps.h>
#include <orv-utils-v4/h264/scaling_list.h>
#include <orv-utils-v4/h2645_common/base_store.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <array>
#include <cstdint>
#include <vector>

namespace brenik {

/// The picture parameter set: pic_parameter_set_rbsp() of H.264 clause 7.3.2.2. A parse does not clear the object:
/// fields that the unit does not carry keep their values, so use a fresh object for each unit.
class ORV_UTILS_V4_EXPORT h264_nal_pps {
public:
    bool valid = false;                                        ///< see parse()
    std::uint32_t pic_parameter_set_id = 0;                    ///< ue(v), not limited (the standard: 0 to 255)
    std::uint32_t seq_parameter_set_id = 0;                    ///< ue(v), names a valid SPS of the store
    bool entropy_coding_mode_flag = false;                     ///< u(1): 0 CAVLC, 1 CABAC
    bool bottom_field_pic_order_in_frame_present_flag = false; ///< u(1)
    std::uint32_t num_slice_groups_minus1 = 0;                 ///< ue(v)
    std::uint32_t slice_group_map_type = 0;                    ///< ue(v), only with more than one slice group
    std::vector<std::uint32_t> run_length_minus1;              ///< map type 0: ue(v) for each slice group, at most 128
    std::vector<std::uint32_t> top_left;                       ///< map type 2: ue(v) for each slice group but the last
    std::vector<std::uint32_t> bottom_right;                   ///< map type 2: likewise
    bool slice_group_change_direction_flag = false;            ///< u(1), map types 3 to 5
    std::uint32_t slice_group_change_rate_minus1 = 0;          ///< ue(v), map types 3 to 5
    std::uint32_t num_ref_idx_l0_default_active_minus1 = 0;    ///< ue(v)
    std::uint32_t num_ref_idx_l1_default_active_minus1 = 0;    ///< ue(v)
    bool weighted_pred_flag = false;                           ///< u(1)
    std::uint8_t weighted_bipred_idc = 0;                      ///< u(2)
    std::int32_t pic_init_qp_minus26 = 0;                      ///< se(v)
    std::int32_t pic_init_qs_minus26 = 0;                      ///< se(v)
    std::int32_t chroma_qp_index_offset = 0;                   ///< se(v)
    bool deblocking_filter_control_present_flag = false;       ///< u(1)
    bool constrained_intra_pred_flag = false;                  ///< u(1)
    bool redundant_pic_cnt_present_flag = false;               ///< u(1)
    bool more_rbsp_data_present = false;            ///< the unit carries the following three fields and the lists
    bool transform_8x8_mode_flag = false;           ///< u(1)
    bool pic_scaling_matrix_present_flag = false;   ///< u(1)
    std::int32_t second_chroma_qp_index_offset = 0; ///< se(v); when not carried, chroma_qp_index_offset is meant
    std::uint32_t pic_size_in_map_units_minus1 = 0; ///< map type 6: ue(v), at most 127
    std::vector<std::uint32_t> slice_group_id;      ///< map type 6: one for each map unit
    std::array<h264_scaling_list, 6> pic_scaling_list_4x4; ///< lists 0 to 5 of the syntax
    std::array<h264_scaling_list, 6> pic_scaling_list_8x8; ///< lists 6 to 11; 2 or 6 with transform_8x8_mode_flag

    /// Reads the unit from behind its NAL unit header to its trailing bits, with the SPS that it names. Bits past the
    /// end read as zero.
    /// @return true, and `valid` true, when the trailing bits are well-formed. False with `valid` false when they are
    ///     not, when the SPS is absent or not valid (nothing is read behind the two ids), or when a scaling list fails;
    ///     false with `valid` as it was when there are more than 128 entries in a slice group array or memory runs out
    ///     for them. The fields read so far are kept
    /// @throws h2645_common_malformed_code from the bit reader; `valid` stays as it was
    bool parse(h2645_common_bitreader& br, const h2645_common_base_store<h264_nal_sps>& sps_store);
};

extern template class ORV_UTILS_V4_EXPORT h2645_common_base_store<h264_nal_pps>;

} // namespace brenik
