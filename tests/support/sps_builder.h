// Sequence parameter sets, and the scaling lists they share with picture parameter sets, from a plain description, as
// the tables of H.264 7.3.2.1.1 and 7.3.2.1.1.1 write them.
#pragma once

#include "support/element_writer.h"
#include "support/vui_builder.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace support {

/// scaling_list(): the deltas that are sent, up to the one that makes nextScale 0.
struct scaling_list_description {
    std::vector<std::int32_t> deltas;
};

inline void write(element_writer& out, const scaling_list_description& list)
{
    for (std::size_t j = 0; j < list.deltas.size(); ++j)
        out.se("delta_scale", list.deltas[j], j);
}

/// The list whose entries are `values`.
inline scaling_list_description list_of(const std::vector<std::uint8_t>& values)
{
    scaling_list_description list;
    int last = 8;
    for (const std::uint8_t value : values) {
        list.deltas.push_back(value - last);
        last = value;
    }
    return list;
}

/// A full list of `size` entries that rise from `first`.
inline scaling_list_description rising_list(std::size_t size, unsigned int first)
{
    std::vector<std::uint8_t> values;
    for (std::size_t i = 0; i < size; ++i)
        values.push_back(static_cast<std::uint8_t>(first + i));
    return list_of(values);
}

/// The lists that are present, 0 to 5 of 16 entries and 6 to 11 of 64.
using scaling_matrix = std::array<std::optional<scaling_list_description>, 12>;

/// Twelve full lists, no two alike.
inline scaling_matrix full_scaling_matrix()
{
    scaling_matrix lists;
    for (unsigned int i = 0; i < 12; ++i)
        lists[i] = rising_list(i < 6 ? 16 : 64, 10 + i);
    return lists;
}

/// The first `count` lists, each behind its present flag; `prefix` makes up their names.
inline void write_scaling_matrix(element_writer& out, const scaling_matrix& lists, std::size_t count,
                                 const std::string& prefix)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = prefix + (i < 6 ? "4x4[" : "8x8[") + std::to_string(i % 6) + "]";
        out.flag((name + ".present").c_str(), lists[i].has_value());
        if (lists[i])
            out.nested(name, *lists[i]);
    }
}

/// seq_parameter_set_data(). A Baseline stream of 176x144 until a test says otherwise.
struct sps_description {
    unsigned int profile_idc = 66;
    unsigned int constraint_set_flags = 0; ///< constraint_set0_flag in the highest of 6 bits
    unsigned int reserved_zero_2bits = 0;
    unsigned int level_idc = 30;
    std::uint32_t seq_parameter_set_id = 0;
    bool high_profile_syntax = false; ///< the profile is one of those that have the following elements
    std::uint32_t chroma_format_idc = 1;
    bool separate_colour_plane_flag = false;
    std::uint32_t bit_depth_luma_minus8 = 0;
    std::uint32_t bit_depth_chroma_minus8 = 0;
    bool qpprime_y_zero_transform_bypass_flag = false;
    std::optional<scaling_matrix> scaling_lists = {};
    std::uint32_t log2_max_frame_num_minus4 = 0;
    std::uint32_t pic_order_cnt_type = 0;
    std::uint32_t log2_max_pic_order_cnt_lsb_minus4 = 0;
    bool delta_pic_order_always_zero_flag = false;
    std::int32_t offset_for_non_ref_pic = 0;
    std::int32_t offset_for_top_to_bottom_field = 0;
    std::optional<std::uint32_t> num_ref_frames_in_pic_order_cnt_cycle = {}; ///< when not what the next field says
    std::vector<std::int32_t> offset_for_ref_frame = {};
    std::uint32_t max_num_ref_frames = 1;
    bool gaps_in_frame_num_value_allowed_flag = false;
    std::uint32_t pic_width_in_mbs_minus1 = 10;
    std::uint32_t pic_height_in_map_units_minus1 = 8;
    bool frame_mbs_only_flag = true;
    bool mb_adaptive_frame_field_flag = false;
    bool direct_8x8_inference_flag = true;
    bool frame_cropping_flag = false;
    std::uint32_t frame_crop_left_offset = 0;
    std::uint32_t frame_crop_right_offset = 0;
    std::uint32_t frame_crop_top_offset = 0;
    std::uint32_t frame_crop_bottom_offset = 0;
    std::optional<vui_description> vui = {};
};

inline void write_high_profile_syntax(element_writer& out, const sps_description& seq)
{
    out.ue("chroma_format_idc", seq.chroma_format_idc);
    if (seq.chroma_format_idc == 3)
        out.flag("separate_colour_plane_flag", seq.separate_colour_plane_flag);
    out.ue("bit_depth_luma_minus8", seq.bit_depth_luma_minus8);
    out.ue("bit_depth_chroma_minus8", seq.bit_depth_chroma_minus8);
    out.flag("qpprime_y_zero_transform_bypass_flag", seq.qpprime_y_zero_transform_bypass_flag);
    out.flag("seq_scaling_matrix_present_flag", seq.scaling_lists.has_value());
    if (seq.scaling_lists)
        write_scaling_matrix(out, *seq.scaling_lists, seq.chroma_format_idc != 3 ? 8 : 12, "scaling_list_");
}

inline void write_pic_order_cnt(element_writer& out, const sps_description& seq)
{
    out.ue("pic_order_cnt_type", seq.pic_order_cnt_type);
    if (seq.pic_order_cnt_type == 0) {
        out.ue("log2_max_pic_order_cnt_lsb_minus4", seq.log2_max_pic_order_cnt_lsb_minus4);
    } else if (seq.pic_order_cnt_type == 1) {
        out.flag("delta_pic_order_always_zero_flag", seq.delta_pic_order_always_zero_flag);
        out.se("offset_for_non_ref_pic", seq.offset_for_non_ref_pic);
        out.se("offset_for_top_to_bottom_field", seq.offset_for_top_to_bottom_field);
        out.ue("num_ref_frames_in_pic_order_cnt_cycle",
               seq.num_ref_frames_in_pic_order_cnt_cycle.value_or(
                   static_cast<std::uint32_t>(seq.offset_for_ref_frame.size())));
        for (std::size_t i = 0; i < seq.offset_for_ref_frame.size(); ++i)
            out.se("offset_for_ref_frame", seq.offset_for_ref_frame[i], i);
    }
}

inline void write(element_writer& out, const sps_description& seq)
{
    out.u("profile_idc", 8, seq.profile_idc);
    for (unsigned int i = 0; i < 6; ++i)
        out.flag(("constraint_set" + std::to_string(i) + "_flag").c_str(),
                 (seq.constraint_set_flags >> (5 - i) & 1) != 0);
    out.u("reserved_zero_2bits", 2, seq.reserved_zero_2bits);
    out.u("level_idc", 8, seq.level_idc);
    out.ue("seq_parameter_set_id", seq.seq_parameter_set_id);
    if (seq.high_profile_syntax)
        write_high_profile_syntax(out, seq);
    out.ue("log2_max_frame_num_minus4", seq.log2_max_frame_num_minus4);
    write_pic_order_cnt(out, seq);
    out.ue("max_num_ref_frames", seq.max_num_ref_frames);
    out.flag("gaps_in_frame_num_value_allowed_flag", seq.gaps_in_frame_num_value_allowed_flag);
    out.ue("pic_width_in_mbs_minus1", seq.pic_width_in_mbs_minus1);
    out.ue("pic_height_in_map_units_minus1", seq.pic_height_in_map_units_minus1);
    out.flag("frame_mbs_only_flag", seq.frame_mbs_only_flag);
    if (!seq.frame_mbs_only_flag)
        out.flag("mb_adaptive_frame_field_flag", seq.mb_adaptive_frame_field_flag);
    out.flag("direct_8x8_inference_flag", seq.direct_8x8_inference_flag);
    out.flag("frame_cropping_flag", seq.frame_cropping_flag);
    if (seq.frame_cropping_flag) {
        out.ue("frame_crop_left_offset", seq.frame_crop_left_offset);
        out.ue("frame_crop_right_offset", seq.frame_crop_right_offset);
        out.ue("frame_crop_top_offset", seq.frame_crop_top_offset);
        out.ue("frame_crop_bottom_offset", seq.frame_crop_bottom_offset);
    }
    out.flag("vui_parameters_present_flag", seq.vui.has_value());
    if (seq.vui)
        out.nested("vui", *seq.vui);
}

/// A stream of a profile that tells its chroma format.
inline sps_description high_sps(std::uint32_t chroma_format_idc = 1)
{
    sps_description seq;
    seq.profile_idc = 100;
    seq.high_profile_syntax = true;
    seq.chroma_format_idc = chroma_format_idc;
    return seq;
}

/// Every element that one SPS can hold, most of them with a value that no other has.
inline sps_description full_sps()
{
    sps_description seq = high_sps(3);
    seq.profile_idc = 244;
    seq.constraint_set_flags = 0b101100;
    seq.reserved_zero_2bits = 2;
    seq.level_idc = 41;
    seq.seq_parameter_set_id = 7;
    seq.separate_colour_plane_flag = true;
    seq.bit_depth_luma_minus8 = 2;
    seq.bit_depth_chroma_minus8 = 4;
    seq.qpprime_y_zero_transform_bypass_flag = true;
    seq.scaling_lists = full_scaling_matrix();
    seq.log2_max_frame_num_minus4 = 9;
    seq.pic_order_cnt_type = 1;
    seq.delta_pic_order_always_zero_flag = true;
    seq.offset_for_non_ref_pic = -3;
    seq.offset_for_top_to_bottom_field = 5;
    seq.offset_for_ref_frame = {2, -7, 2147483647, -2147483647, 0};
    seq.max_num_ref_frames = 6;
    seq.gaps_in_frame_num_value_allowed_flag = true;
    seq.pic_width_in_mbs_minus1 = 119;
    seq.pic_height_in_map_units_minus1 = 33;
    seq.frame_mbs_only_flag = false;
    seq.mb_adaptive_frame_field_flag = true;
    seq.frame_cropping_flag = true;
    seq.frame_crop_left_offset = 11;
    seq.frame_crop_right_offset = 12;
    seq.frame_crop_top_offset = 13;
    seq.frame_crop_bottom_offset = 14;
    seq.vui = full_vui();
    return seq;
}

} // namespace support
