/// @file
/// The sequence parameter set and its extension for auxiliary pictures, H.264 clauses 7.3.2.1 and 7.3.2.1.2.
#pragma once

#include <orv-utils-v4/h264_syntax/bounded_list.h>
#include <orv-utils-v4/h264_syntax/vui_parameters.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// scaling_list(), clause 7.3.2.1.1.1: the differences as they were sent. scaling_lists.h gives the lists.
struct scaling_list {
    bounded_list<std::int16_t, 64> delta_scale; ///< -128 to 127 each

    friend ORV_UTILS_V4_EXPORT bool operator==(const scaling_list&, const scaling_list&);
};

/// seq_parameter_set_data(), clauses 7.3.2.1.1 and 7.4.2.1.1. A member that was not sent holds what the standard
/// infers.
struct seq_parameter_set_data {
    static constexpr std::uint32_t most_scaling_lists = 12;    ///< 8, or 12 with chroma_format_idc 3
    static constexpr std::uint32_t most_frames_in_cycle = 255; ///< of num_ref_frames_in_pic_order_cnt_cycle

    std::uint8_t profile_idc = 0;
    bool constraint_set0_flag = false;
    bool constraint_set1_flag = false;
    bool constraint_set2_flag = false;
    bool constraint_set3_flag = false;
    bool constraint_set4_flag = false;
    bool constraint_set5_flag = false;
    std::uint8_t reserved_zero_2bits = 0;
    std::uint8_t level_idc = 0;
    std::uint32_t seq_parameter_set_id = 0; ///< 0 to 31
    std::uint32_t chroma_format_idc = 1;    ///< 0 to 3
    bool separate_colour_plane_flag = false;
    std::uint32_t bit_depth_luma_minus8 = 0;   ///< 0 to 6
    std::uint32_t bit_depth_chroma_minus8 = 0; ///< 0 to 6
    bool qpprime_y_zero_transform_bypass_flag = false;
    bool seq_scaling_matrix_present_flag = false;
    bool seq_scaling_list_present_flag[most_scaling_lists] = {};
    scaling_list lists[most_scaling_lists];              ///< scaling_list( ) number i, where its flag is set
    std::uint32_t log2_max_frame_num_minus4 = 0;         ///< 0 to 12
    std::uint32_t pic_order_cnt_type = 0;                ///< 0 to 2
    std::uint32_t log2_max_pic_order_cnt_lsb_minus4 = 0; ///< 0 to 12
    bool delta_pic_order_always_zero_flag = false;
    std::int32_t offset_for_non_ref_pic = 0;
    std::int32_t offset_for_top_to_bottom_field = 0;
    std::uint32_t num_ref_frames_in_pic_order_cnt_cycle = 0; ///< 0 to 255
    std::int32_t offset_for_ref_frame[most_frames_in_cycle] = {};
    std::uint32_t max_num_ref_frames = 0; ///< 0 to MaxDpbFrames
    bool gaps_in_frame_num_value_allowed_flag = false;
    std::uint32_t pic_width_in_mbs_minus1 = 0;
    std::uint32_t pic_height_in_map_units_minus1 = 0;
    bool frame_mbs_only_flag = false;
    bool mb_adaptive_frame_field_flag = false;
    bool direct_8x8_inference_flag = false;
    bool frame_cropping_flag = false;
    std::uint32_t frame_crop_left_offset = 0; ///< crop units, as the three below
    std::uint32_t frame_crop_right_offset = 0;
    std::uint32_t frame_crop_top_offset = 0;
    std::uint32_t frame_crop_bottom_offset = 0;
    bool vui_parameters_present_flag = false;
    h264::vui_parameters vui_parameters;

    friend ORV_UTILS_V4_EXPORT bool operator==(const seq_parameter_set_data&, const seq_parameter_set_data&);
};

/// seq_parameter_set_rbsp(), clause 7.3.2.1: NAL unit type 7.
struct seq_parameter_set_rbsp {
    h264::seq_parameter_set_data seq_parameter_set_data;

    friend ORV_UTILS_V4_EXPORT bool operator==(const seq_parameter_set_rbsp&, const seq_parameter_set_rbsp&);
};

/// seq_parameter_set_extension_rbsp(), clause 7.3.2.1.2: NAL unit type 13, how auxiliary pictures are blended.
struct seq_parameter_set_extension_rbsp {
    std::uint32_t seq_parameter_set_id = 0; ///< 0 to 31
    std::uint32_t aux_format_idc = 0;       ///< 0 to 3
    std::uint32_t bit_depth_aux_minus8 = 0; ///< 0 to 4
    bool alpha_incr_flag = false;
    std::uint32_t alpha_opaque_value = 0;      ///< of bit_depth_aux_minus8 + 9 bits
    std::uint32_t alpha_transparent_value = 0; ///< likewise
    bool additional_extension_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const seq_parameter_set_extension_rbsp&,
                                               const seq_parameter_set_extension_rbsp&);
};

/// ChromaArrayType, clause 7.4.2.1.1: chroma_format_idc, or 0 with separate colour planes.
inline std::uint32_t ChromaArrayType(const seq_parameter_set_data& sps) noexcept
{
    return sps.separate_colour_plane_flag ? 0 : sps.chroma_format_idc;
}

} // namespace orv_utils_v4::h264
