/// @file
/// The slices and prefix units of layers and views, NAL unit types 14, 20 and 21: H.264 clauses 7.3.2.12, 7.3.2.13,
/// G.7.3.3.4 and J.7.3.3.4. Slice data are not read.
#pragma once

#include <orv-utils-v4/h264_syntax/bounded_list.h>
#include <orv-utils-v4/h264_syntax/slice_header.h>

#include <cstdint>
#include <variant>
#include <vector>

namespace orv_utils_v4::h264 {

/// A memory management control operation on base pictures, clause G.7.4.3.5.
struct base_marking_operation {
    std::uint32_t memory_management_base_control_operation; ///< 0 to 2; 0 is the last
    std::uint32_t difference_of_base_pic_nums_minus1;       ///< with 1
    std::uint32_t long_term_base_pic_num;                   ///< with 2

    friend ORV_UTILS_V4_EXPORT bool operator==(const base_marking_operation&, const base_marking_operation&);
};

/// dec_ref_base_pic_marking(), clause G.7.3.3.5.
struct dec_ref_base_pic_marking {
    /// Each of 32 fields is marked as unused at most once, and operation 0 comes once.
    static constexpr std::size_t most_operations = 33;

    bool adaptive_ref_base_pic_marking_mode_flag = false;
    bounded_list<base_marking_operation, most_operations> operations;

    dec_ref_base_pic_marking() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const dec_ref_base_pic_marking&, const dec_ref_base_pic_marking&);
};

/// slice_header_in_scalable_extension(), clauses G.7.3.3.4 and G.7.4.3.4. A member that was not sent holds what the
/// standard infers, unless that comes from the slice of another layer.
struct slice_header_in_scalable_extension {
    std::uint32_t first_mb_in_slice = 0;
    std::uint32_t slice_type = 0;           ///< 0 to 2 or 5 to 7: EP, EB and EI, Table G-1
    std::uint32_t pic_parameter_set_id = 0; ///< 0 to 255
    std::uint8_t colour_plane_id = 0;       ///< 0 to 2
    std::uint32_t frame_num = 0;
    bool field_pic_flag = false;
    bool bottom_field_flag = false;
    std::uint32_t idr_pic_id = 0; ///< 0 to 65535
    std::uint32_t pic_order_cnt_lsb = 0;
    std::int32_t delta_pic_order_cnt_bottom = 0;
    std::int32_t delta_pic_order_cnt[2] = {};
    std::uint32_t redundant_pic_cnt = 0;      ///< 0 to 127
    bool direct_spatial_mv_pred_flag = false; ///< sent with quality_id 0 alone, as those up to dec_ref_base_pic_marking
    bool num_ref_idx_active_override_flag = false;
    std::uint32_t num_ref_idx_l0_active_minus1 = 0; ///< 0 to 31; of the PPS where it is not overridden
    std::uint32_t num_ref_idx_l1_active_minus1 = 0; ///< likewise
    h264::ref_pic_list_modification ref_pic_list_modification;
    bool base_pred_weight_table_flag = false;
    h264::pred_weight_table pred_weight_table;
    h264::dec_ref_pic_marking dec_ref_pic_marking;
    bool store_ref_base_pic_flag = false;
    h264::dec_ref_base_pic_marking dec_ref_base_pic_marking;
    std::uint32_t cabac_init_idc = 0; ///< 0 to 2
    std::int32_t slice_qp_delta = 0;
    std::uint32_t disable_deblocking_filter_idc = 0; ///< 0 to 6
    std::int32_t slice_alpha_c0_offset_div2 = 0;     ///< -6 to 6
    std::int32_t slice_beta_offset_div2 = 0;         ///< -6 to 6
    std::uint32_t slice_group_change_cycle = 0;
    std::uint32_t ref_layer_dq_id = 0; ///< 0 to DQId - 1; inferred as DQId - 1 with quality_id above 0
    std::uint32_t disable_inter_layer_deblocking_filter_idc = 0; ///< 0 to 6
    std::int32_t inter_layer_slice_alpha_c0_offset_div2 = 0;     ///< -6 to 6
    std::int32_t inter_layer_slice_beta_offset_div2 = 0;         ///< -6 to 6
    bool constrained_intra_resampling_flag = false;
    bool ref_layer_chroma_phase_x_plus1_flag = true; ///< of the subset SPS where it is not sent, as those below
    std::uint8_t ref_layer_chroma_phase_y_plus1 = 1; ///< 0 to 2
    std::int32_t scaled_ref_layer_left_offset = 0;   ///< -2^15 to 2^15 - 1, as the three below
    std::int32_t scaled_ref_layer_top_offset = 0;
    std::int32_t scaled_ref_layer_right_offset = 0;
    std::int32_t scaled_ref_layer_bottom_offset = 0;
    bool slice_skip_flag = false;
    std::uint32_t num_mbs_in_slice_minus1 = 0;
    bool adaptive_base_mode_flag = false;
    bool default_base_mode_flag = false;
    bool adaptive_motion_prediction_flag = false;
    bool default_motion_prediction_flag = false;
    bool adaptive_residual_prediction_flag = false;
    bool default_residual_prediction_flag = false;
    bool tcoeff_level_prediction_flag = false;
    std::uint8_t scan_idx_start = 0; ///< 0 to 15
    std::uint8_t scan_idx_end = 15;  ///< 0 to 15

    /// EP, EB and EI as P, B and I. Types 3, 4, 8 and 9 are none of them.
    slice_kind kind() const noexcept { return static_cast<slice_kind>(slice_type % 5); }

    slice_header_in_scalable_extension() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const slice_header_in_scalable_extension&,
                                               const slice_header_in_scalable_extension&);
};

/// slice_header_in_3davc_extension(), clauses J.7.3.3.4 and J.7.4.3.4. With pre_slice_header_src above 0 most elements
/// are those of another slice and not sent; they hold what a slice_header does without them.
struct slice_header_in_3davc_extension {
    std::uint32_t first_mb_in_slice = 0;
    std::uint32_t slice_type = 0;                 ///< 0 to 9, Table 7-6
    std::uint32_t pic_parameter_set_id = 0;       ///< 0 to 255
    std::uint8_t pre_slice_header_src = 0;        ///< 0 to 3; 0: from nowhere, all is sent
    std::uint8_t pre_ref_lists_src = 0;           ///< 0 to 3; with pre_slice_header_src above 0, as the two below
    std::uint8_t pre_pred_weight_table_src = 0;   ///< 0 to 3
    std::uint8_t pre_dec_ref_pic_marking_src = 0; ///< 0 to 3
    std::uint8_t colour_plane_id = 0;             ///< 0 to 2
    std::uint32_t frame_num = 0;
    bool field_pic_flag = false;
    bool bottom_field_flag = false;
    std::uint32_t idr_pic_id = 0; ///< 0 to 65535
    std::uint32_t pic_order_cnt_lsb = 0;
    std::int32_t delta_pic_order_cnt_bottom = 0;
    std::int32_t delta_pic_order_cnt[2] = {};
    std::uint32_t redundant_pic_cnt = 0; ///< 0 to 127
    bool direct_spatial_mv_pred_flag = false;
    bool num_ref_idx_active_override_flag = false;
    std::uint32_t num_ref_idx_l0_active_minus1 = 0;            ///< 0 to 31; of the PPS where it is not overridden
    std::uint32_t num_ref_idx_l1_active_minus1 = 0;            ///< likewise
    h264::ref_pic_list_modification ref_pic_list_modification; ///< ref_pic_list_mvc_modification()
    h264::pred_weight_table pred_weight_table;
    h264::dec_ref_pic_marking dec_ref_pic_marking;
    std::uint32_t cabac_init_idc = 0; ///< 0 to 2
    std::int32_t slice_qp_delta = 0;
    bool sp_for_switch_flag = false;
    std::int32_t slice_qs_delta = 0;
    std::uint32_t disable_deblocking_filter_idc = 0; ///< 0 to 2
    std::int32_t slice_alpha_c0_offset_div2 = 0;     ///< -6 to 6
    std::int32_t slice_beta_offset_div2 = 0;         ///< -6 to 6
    std::uint32_t slice_group_change_cycle = 0;
    bool depth_weighted_pred_flag = false;
    bool dmvp_flag = false;
    bool slice_vsp_flag = false;
    std::uint32_t dps_id = 0; ///< 0 to 63; 0 stands for what the SPS has

    /// What slice_type stands for; of a value above 9 that of its remainder.
    slice_kind kind() const noexcept { return static_cast<slice_kind>(slice_type % 5); }

    slice_header_in_3davc_extension() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const slice_header_in_3davc_extension&,
                                               const slice_header_in_3davc_extension&);
};

/// slice_layer_extension_rbsp(), clause 7.3.2.13: NAL unit types 20 and 21, before its data.
struct slice_layer_extension_rbsp {
    /// Which one the NAL unit header says: slice_header in other views, unless they are of 3D-AVC.
    std::variant<slice_header, slice_header_in_scalable_extension, slice_header_in_3davc_extension> header;

    slice_layer_extension_rbsp() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const slice_layer_extension_rbsp&, const slice_layer_extension_rbsp&);
};

/// prefix_nal_unit_svc(), clause G.7.3.2.12.1.
struct prefix_nal_unit_svc {
    bool store_ref_base_pic_flag = false; ///< with nal_ref_idc above 0, as the two below
    h264::dec_ref_base_pic_marking dec_ref_base_pic_marking;
    bool additional_prefix_nal_unit_extension_flag = false;
    bool trailing_bits_sent = false; ///< with nal_ref_idc 0: the RBSP is not empty; no element
    std::vector<bool> additional_prefix_nal_unit_extension_data_flag; ///< each as it was sent

    prefix_nal_unit_svc() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const prefix_nal_unit_svc&, const prefix_nal_unit_svc&);
};

/// prefix_nal_unit_rbsp(), clause 7.3.2.12: NAL unit type 14. Without svc_extension_flag it is empty.
struct prefix_nal_unit_rbsp {
    h264::prefix_nal_unit_svc prefix_nal_unit_svc;

    prefix_nal_unit_rbsp() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const prefix_nal_unit_rbsp&, const prefix_nal_unit_rbsp&);
};

} // namespace orv_utils_v4::h264
