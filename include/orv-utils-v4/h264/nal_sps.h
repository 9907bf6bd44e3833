/// @file
/// The sequence parameter set, H.264 clause 7.3.2.1.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/scaling_list.h>
#include <orv-utils-v4/h264/vui_parameters.h>
#include <orv-utils-v4/h2645_common/base_store.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <array>
#include <cstdint>
#include <vector>

namespace brenik {

/// The sequence parameter set: seq_parameter_set_rbsp() of H.264 clause 7.3.2.1. A parse does not clear the object:
/// fields that the unit does not carry keep their values, so use a fresh object for each unit.
class ORV_UTILS_V4_EXPORT h264_nal_sps {
public:
    std::uint8_t profile_idc = 0;           ///< u(8)
    bool constraint_set0_flag = false;      ///< u(1)
    bool constraint_set1_flag = false;      ///< u(1)
    bool constraint_set2_flag = false;      ///< u(1)
    bool constraint_set3_flag = false;      ///< u(1)
    bool constraint_set4_flag = false;      ///< u(1)
    bool constraint_set5_flag = false;      ///< u(1)
    std::uint8_t reserved_zero_2bits = 0;   ///< u(2), as read
    std::uint8_t level_idc = 0;             ///< u(8), ten times the level
    std::uint32_t seq_parameter_set_id = 0; ///< ue(v), not limited (the standard: 0 to 31)
    /// ue(v) in the high profiles (0 monochrome, 1 4:2:0, 2 4:2:2, 3 4:4:4), else set to 1.
    std::uint32_t chroma_format_idc = 0;
    bool separate_colour_plane_flag = false;             ///< u(1), only when chroma_format_idc is 3
    std::uint32_t bit_depth_luma_minus8 = 0;             ///< ue(v), high profiles only
    std::uint32_t bit_depth_chroma_minus8 = 0;           ///< ue(v), high profiles only
    bool qpprime_y_zero_transform_bypass_flag = false;   ///< u(1), high profiles only
    bool seq_scaling_matrix_present_flag = false;        ///< u(1), high profiles only
    std::array<h264_scaling_list, 6> scaling_list_4x4;   ///< lists 0 to 5 of the syntax
    std::array<h264_scaling_list, 6> scaling_list_8x8;   ///< lists 6 to 11; the first 2 unless chroma_format_idc is 3
    std::uint32_t log2_max_frame_num_minus4 = 0;         ///< ue(v)
    std::uint32_t pic_order_cnt_type = 0;                ///< ue(v), not limited (the standard: 0 to 2)
    std::uint32_t log2_max_pic_order_cnt_lsb_minus4 = 0; ///< ue(v), pic_order_cnt_type 0
    bool delta_pic_order_always_zero_flag = false;       ///< u(1), pic_order_cnt_type 1
    std::int32_t offset_for_non_ref_pic = 0;             ///< se(v), pic_order_cnt_type 1
    std::int32_t offset_for_top_to_bottom_field = 0;     ///< se(v), pic_order_cnt_type 1
    /// ue(v), pic_order_cnt_type 1, at most 128 (the standard: 255); stored before it is judged.
    std::uint32_t num_ref_frames_in_pic_order_cnt_cycle = 0;
    std::vector<std::int32_t> offset_for_ref_frame;    ///< se(v) each, one for each frame of the cycle
    std::uint32_t max_num_ref_frames = 0;              ///< ue(v)
    bool gaps_in_frame_num_value_allowed_flag = false; ///< u(1)
    std::uint32_t pic_width_in_mbs_minus1 = 0;         ///< ue(v), in macroblocks of 16 luma samples
    std::uint32_t pic_height_in_map_units_minus1 = 0;  ///< ue(v), in macroblocks, or macroblock pairs
    bool frame_mbs_only_flag = false;                  ///< u(1)
    bool mb_adaptive_frame_field_flag = false;         ///< u(1), only when frame_mbs_only_flag is 0
    bool direct_8x8_inference_flag = false;            ///< u(1)
    bool frame_cropping_flag = false;                  ///< u(1)
    std::uint32_t frame_crop_left_offset = 0;          ///< ue(v), in crop units: see getCropLeft()
    std::uint32_t frame_crop_right_offset = 0;         ///< ue(v)
    std::uint32_t frame_crop_top_offset = 0;           ///< ue(v), in crop units: see getCropTop()
    std::uint32_t frame_crop_bottom_offset = 0;        ///< ue(v)
    bool vui_parameters_present_flag = false;          ///< u(1)
    h264_vui_parameters vui;                           ///< only with vui_parameters_present_flag
    bool valid = false;                                ///< see parse()
    bool high_profile_syntax_present = false; ///< the profile has chroma_format_idc and what follows; never cleared
    std::uint32_t SubWidthC = 0;  ///< luma samples for a chroma sample, across: 2 for 4:2:0 and 4:2:2, else 1
    std::uint32_t SubHeightC = 0; ///< luma samples for a chroma sample, down: 2 for 4:2:0, else 1

    /// Reads the unit from behind its NAL unit header to its trailing bits. Bits past the end read as zero, so that a
    /// cut unit fails at the trailing bits.
    /// @return true, and `valid` true, when the trailing bits are well-formed. False with `valid` false when they are
    ///     not, when a scaling list or the VUI fails; false with `valid` as it was when there are more than 128 frames
    ///     in the picture order count cycle or memory runs out for them. The fields read so far are kept
    /// @throws h2645_common_malformed_code from the bit reader; `valid` stays as it was
    bool parse(h2645_common_bitreader& br);

    /// Luma samples cut off at the left, H.264 7.4.2.1.1. Like all getters, in unsigned arithmetic that wraps at
    /// 2^32, whatever frame_cropping_flag and `valid` say.
    std::uint32_t getCropLeft() const;
    std::uint32_t getCropRight() const;        ///< luma samples cut off at the right
    std::uint32_t getCropTop() const;          ///< luma rows of a frame cut off at the top
    std::uint32_t getCropBottom() const;       ///< luma rows of a frame cut off at the bottom
    std::uint32_t getPicWidth() const;         ///< luma samples across the coded frame
    std::uint32_t getCroppedPicWidth() const;  ///< luma samples across what is shown
    std::uint32_t getPicHeight() const;        ///< luma rows of the coded frame
    std::uint32_t getCroppedPicHeight() const; ///< luma rows of what is shown
};

extern template class ORV_UTILS_V4_EXPORT h2645_common_base_store<h264_nal_sps>;

} // namespace brenik
