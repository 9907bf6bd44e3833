/// @file
/// The slice header and the slice data partitions, H.264 clauses 7.3.3 and 7.3.2.9. Slice data are not read.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/bounded_list.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// slice_type modulo 5, Table 7-6.
enum class slice_kind : std::uint8_t { P, B, I, SP, SI };

/// An entry of ref_pic_list_modification() or ref_pic_list_mvc_modification(), clauses 7.3.3.1 and H.7.3.3.1.1.
struct pic_num_modification {
    std::uint32_t modification_of_pic_nums_idc; ///< 0 to 3, or to 5 in other views; 3 is the last of a list
    std::uint32_t abs_diff_pic_num_minus1;      ///< with 0 and 1
    std::uint32_t long_term_pic_num;            ///< with 2
    std::uint32_t abs_diff_view_idx_minus1;     ///< with 4 and 5

    friend ORV_UTILS_V4_EXPORT bool operator==(const pic_num_modification&, const pic_num_modification&);
};

/// ref_pic_list_modification() of both lists.
struct ref_pic_list_modification {
    /// One for each entry of the list, and the one that ends them.
    static constexpr std::size_t most_modifications = 33;

    bool ref_pic_list_modification_flag_l0 = false;
    bounded_list<pic_num_modification, most_modifications> l0;
    bool ref_pic_list_modification_flag_l1 = false;
    bounded_list<pic_num_modification, most_modifications> l1;

    ref_pic_list_modification() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const ref_pic_list_modification&, const ref_pic_list_modification&);
};

/// The weights of one reference in pred_weight_table(), clause 7.3.3.2. What is not sent holds what is inferred.
struct prediction_weight {
    bool luma_weight_flag;
    std::int32_t luma_weight; ///< -128 to 127
    std::int32_t luma_offset; ///< -128 to 127
    bool chroma_weight_flag;
    std::int32_t chroma_weight[2]; ///< Cb and Cr, -128 to 127
    std::int32_t chroma_offset[2]; ///< -128 to 127

    friend ORV_UTILS_V4_EXPORT bool operator==(const prediction_weight&, const prediction_weight&);
};

/// pred_weight_table(), clause 7.3.3.2.
struct pred_weight_table {
    static constexpr std::size_t most_weights = 32;

    std::uint32_t luma_log2_weight_denom = 0;   ///< 0 to 7
    std::uint32_t chroma_log2_weight_denom = 0; ///< 0 to 7
    bounded_list<prediction_weight, most_weights> l0;
    bounded_list<prediction_weight, most_weights> l1;

    pred_weight_table() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const pred_weight_table&, const pred_weight_table&);
};

/// A memory management control operation, clause 7.4.3.3.
struct marking_operation {
    std::uint32_t memory_management_control_operation; ///< 0 to 6; 0 is the last
    std::uint32_t difference_of_pic_nums_minus1;       ///< with 1 and 3
    std::uint32_t long_term_pic_num;                   ///< with 2
    std::uint32_t long_term_frame_idx;                 ///< with 3 and 6
    std::uint32_t max_long_term_frame_idx_plus1;       ///< with 4

    friend ORV_UTILS_V4_EXPORT bool operator==(const marking_operation&, const marking_operation&);
};

/// dec_ref_pic_marking(), clause 7.3.3.3.
struct dec_ref_pic_marking {
    /// Each of 32 fields is marked as unused and as long-term at most once, and operations 4, 5 and 0 come once.
    static constexpr std::size_t most_operations = 67;

    bool no_output_of_prior_pics_flag = false;
    bool long_term_reference_flag = false;
    bool adaptive_ref_pic_marking_mode_flag = false;
    bounded_list<marking_operation, most_operations> operations;

    dec_ref_pic_marking() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const dec_ref_pic_marking&, const dec_ref_pic_marking&);
};

/// slice_header(), clauses 7.3.3 and 7.4.3. A member that was not sent holds what the standard infers.
struct slice_header {
    std::uint32_t first_mb_in_slice = 0;
    std::uint32_t slice_type = 0;           ///< 0 to 9, Table 7-6
    std::uint32_t pic_parameter_set_id = 0; ///< 0 to 255
    std::uint8_t colour_plane_id = 0;       ///< 0 to 2
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
    std::uint32_t num_ref_idx_l0_active_minus1 = 0; ///< 0 to 31; of the PPS where it is not overridden
    std::uint32_t num_ref_idx_l1_active_minus1 = 0; ///< likewise
    h264::ref_pic_list_modification ref_pic_list_modification;
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

    /// What slice_type stands for; of a value above 9 that of its remainder.
    slice_kind kind() const noexcept { return static_cast<slice_kind>(slice_type % 5); }

    slice_header() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const slice_header&, const slice_header&);
};

/// slice_layer_without_partitioning_rbsp(), clause 7.3.2.8: NAL unit types 1, 5 and 19, before its data.
struct slice_layer_without_partitioning_rbsp {
    h264::slice_header slice_header;

    slice_layer_without_partitioning_rbsp() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const slice_layer_without_partitioning_rbsp&,
                                               const slice_layer_without_partitioning_rbsp&);
};

/// slice_data_partition_a_layer_rbsp(), clause 7.3.2.9.1: NAL unit type 2, before its data.
struct slice_data_partition_a_layer_rbsp {
    h264::slice_header slice_header;
    std::uint32_t slice_id = 0;

    slice_data_partition_a_layer_rbsp() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const slice_data_partition_a_layer_rbsp&,
                                               const slice_data_partition_a_layer_rbsp&);
};

/// slice_data_partition_b_layer_rbsp(), clause 7.3.2.9.2: NAL unit type 3, before its data.
struct slice_data_partition_b_layer_rbsp {
    std::uint32_t slice_id = 0;
    std::uint8_t colour_plane_id = 0;    ///< 0 to 2
    std::uint32_t redundant_pic_cnt = 0; ///< 0 to 127

    friend ORV_UTILS_V4_EXPORT bool operator==(const slice_data_partition_b_layer_rbsp&,
                                               const slice_data_partition_b_layer_rbsp&);
};

/// slice_data_partition_c_layer_rbsp(), clause 7.3.2.9.3: NAL unit type 4, before its data.
struct slice_data_partition_c_layer_rbsp {
    std::uint32_t slice_id = 0;
    std::uint8_t colour_plane_id = 0;    ///< 0 to 2
    std::uint32_t redundant_pic_cnt = 0; ///< 0 to 127

    friend ORV_UTILS_V4_EXPORT bool operator==(const slice_data_partition_c_layer_rbsp&,
                                               const slice_data_partition_c_layer_rbsp&);
};

} // namespace orv_utils_v4::h264
