// VUI and HRD parameters from a plain description, as the tables of H.264 E.1.1 and E.1.2 write them.
#pragma once

#include "support/element_writer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace support {

/// hrd_parameters()
struct hrd_description {
    struct cpb {
        std::uint32_t bit_rate_value_minus1 = 0;
        std::uint32_t cpb_size_value_minus1 = 0;
        bool cbr_flag = false;
    };

    std::optional<std::uint32_t> cpb_cnt_minus1 = {}; ///< when it is not what `cpbs` says
    unsigned int bit_rate_scale = 0;
    unsigned int cpb_size_scale = 0;
    std::vector<cpb> cpbs = {{}};
    unsigned int initial_cpb_removal_delay_length_minus1 = 23;
    unsigned int cpb_removal_delay_length_minus1 = 23;
    unsigned int dpb_output_delay_length_minus1 = 23;
    unsigned int time_offset_length = 24;
};

inline void write(element_writer& out, const hrd_description& hrd)
{
    out.ue("cpb_cnt_minus1", hrd.cpb_cnt_minus1.value_or(static_cast<std::uint32_t>(hrd.cpbs.size() - 1)));
    out.u("bit_rate_scale", 4, hrd.bit_rate_scale);
    out.u("cpb_size_scale", 4, hrd.cpb_size_scale);
    for (std::size_t i = 0; i < hrd.cpbs.size(); ++i) {
        out.ue("bit_rate_value_minus1", hrd.cpbs[i].bit_rate_value_minus1, i);
        out.ue("cpb_size_value_minus1", hrd.cpbs[i].cpb_size_value_minus1, i);
        out.flag("cbr_flag", hrd.cpbs[i].cbr_flag, i);
    }
    out.u("initial_cpb_removal_delay_length_minus1", 5, hrd.initial_cpb_removal_delay_length_minus1);
    out.u("cpb_removal_delay_length_minus1", 5, hrd.cpb_removal_delay_length_minus1);
    out.u("dpb_output_delay_length_minus1", 5, hrd.dpb_output_delay_length_minus1);
    out.u("time_offset_length", 5, hrd.time_offset_length);
}

/// HRD parameters with `count` CPBs, each with values of its own.
inline hrd_description hrd_of(std::uint32_t count)
{
    hrd_description hrd;
    hrd.cpbs.clear();
    for (std::uint32_t i = 0; i < count; ++i)
        hrd.cpbs.push_back({1000 + i, 5 * i, i % 3 == 1});
    return hrd;
}

/// vui_parameters(); a group is written when its flag is set.
struct vui_description {
    bool aspect_ratio_info_present_flag = false;
    unsigned int aspect_ratio_idc = 0;
    unsigned int sar_width = 0;
    unsigned int sar_height = 0;
    bool overscan_info_present_flag = false;
    bool overscan_appropriate_flag = false;
    bool video_signal_type_present_flag = false;
    unsigned int video_format = 5;
    bool video_full_range_flag = false;
    bool colour_description_present_flag = false;
    unsigned int colour_primaries = 2;
    unsigned int transfer_characteristics = 2;
    unsigned int matrix_coefficients = 2;
    bool chroma_loc_info_present_flag = false;
    std::uint32_t chroma_sample_loc_type_top_field = 0;
    std::uint32_t chroma_sample_loc_type_bottom_field = 0;
    bool timing_info_present_flag = false;
    std::uint32_t num_units_in_tick = 1001;
    std::uint32_t time_scale = 60000;
    bool fixed_frame_rate_flag = false;
    std::optional<hrd_description> nal_hrd = {};
    std::optional<hrd_description> vcl_hrd = {};
    bool low_delay_hrd_flag = false;
    bool pic_struct_present_flag = false;
    bool bitstream_restriction_flag = false;
    bool motion_vectors_over_pic_boundaries_flag = true;
    std::uint32_t max_bytes_per_pic_denom = 2;
    std::uint32_t max_bits_per_mb_denom = 1;
    std::uint32_t log2_max_mv_length_horizontal = 16;
    std::uint32_t log2_max_mv_length_vertical = 16;
    std::uint32_t max_num_reorder_frames = 0;
    std::uint32_t max_dec_frame_buffering = 0;
};

inline void write_video_signal_type(element_writer& out, const vui_description& vui)
{
    out.u("video_format", 3, vui.video_format);
    out.flag("video_full_range_flag", vui.video_full_range_flag);
    out.flag("colour_description_present_flag", vui.colour_description_present_flag);
    if (vui.colour_description_present_flag) {
        out.u("colour_primaries", 8, vui.colour_primaries);
        out.u("transfer_characteristics", 8, vui.transfer_characteristics);
        out.u("matrix_coefficients", 8, vui.matrix_coefficients);
    }
}

inline void write_bitstream_restriction(element_writer& out, const vui_description& vui)
{
    out.flag("motion_vectors_over_pic_boundaries_flag", vui.motion_vectors_over_pic_boundaries_flag);
    out.ue("max_bytes_per_pic_denom", vui.max_bytes_per_pic_denom);
    out.ue("max_bits_per_mb_denom", vui.max_bits_per_mb_denom);
    out.ue("log2_max_mv_length_horizontal", vui.log2_max_mv_length_horizontal);
    out.ue("log2_max_mv_length_vertical", vui.log2_max_mv_length_vertical);
    out.ue("max_num_reorder_frames", vui.max_num_reorder_frames);
    out.ue("max_dec_frame_buffering", vui.max_dec_frame_buffering);
}

inline void write(element_writer& out, const vui_description& vui)
{
    out.flag("aspect_ratio_info_present_flag", vui.aspect_ratio_info_present_flag);
    if (vui.aspect_ratio_info_present_flag) {
        out.u("aspect_ratio_idc", 8, vui.aspect_ratio_idc);
        if (vui.aspect_ratio_idc == 255)
            out.u("sar_width", 16, vui.sar_width).u("sar_height", 16, vui.sar_height);
    }
    out.flag("overscan_info_present_flag", vui.overscan_info_present_flag);
    if (vui.overscan_info_present_flag)
        out.flag("overscan_appropriate_flag", vui.overscan_appropriate_flag);
    out.flag("video_signal_type_present_flag", vui.video_signal_type_present_flag);
    if (vui.video_signal_type_present_flag)
        write_video_signal_type(out, vui);
    out.flag("chroma_loc_info_present_flag", vui.chroma_loc_info_present_flag);
    if (vui.chroma_loc_info_present_flag) {
        out.ue("chroma_sample_loc_type_top_field", vui.chroma_sample_loc_type_top_field);
        out.ue("chroma_sample_loc_type_bottom_field", vui.chroma_sample_loc_type_bottom_field);
    }
    out.flag("timing_info_present_flag", vui.timing_info_present_flag);
    if (vui.timing_info_present_flag) {
        out.u("num_units_in_tick", 32, vui.num_units_in_tick);
        out.u("time_scale", 32, vui.time_scale);
        out.flag("fixed_frame_rate_flag", vui.fixed_frame_rate_flag);
    }
    out.flag("nal_hrd_parameters_present_flag", vui.nal_hrd.has_value());
    if (vui.nal_hrd)
        out.nested("nal_hrd", *vui.nal_hrd);
    out.flag("vcl_hrd_parameters_present_flag", vui.vcl_hrd.has_value());
    if (vui.vcl_hrd)
        out.nested("vcl_hrd", *vui.vcl_hrd);
    if (vui.nal_hrd || vui.vcl_hrd)
        out.flag("low_delay_hrd_flag", vui.low_delay_hrd_flag);
    out.flag("pic_struct_present_flag", vui.pic_struct_present_flag);
    out.flag("bitstream_restriction_flag", vui.bitstream_restriction_flag);
    if (vui.bitstream_restriction_flag)
        write_bitstream_restriction(out, vui);
}

/// Every group and both HRDs, every element with a value that no other has where its width allows.
inline vui_description full_vui()
{
    vui_description vui;
    vui.aspect_ratio_info_present_flag = true;
    vui.aspect_ratio_idc = 255;
    vui.sar_width = 40000;
    vui.sar_height = 33;
    vui.overscan_info_present_flag = true;
    vui.overscan_appropriate_flag = true;
    vui.video_signal_type_present_flag = true;
    vui.video_format = 2;
    vui.video_full_range_flag = true;
    vui.colour_description_present_flag = true;
    vui.colour_primaries = 9;
    vui.transfer_characteristics = 16;
    vui.matrix_coefficients = 200;
    vui.chroma_loc_info_present_flag = true;
    vui.chroma_sample_loc_type_top_field = 3;
    vui.chroma_sample_loc_type_bottom_field = 4;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 2147483649;
    vui.time_scale = 0xFFFFFFFF;
    vui.fixed_frame_rate_flag = true;
    vui.nal_hrd = hrd_of(3);
    vui.vcl_hrd = hrd_of(2);
    vui.vcl_hrd->bit_rate_scale = 7;
    vui.vcl_hrd->cpb_size_scale = 9;
    vui.vcl_hrd->initial_cpb_removal_delay_length_minus1 = 1;
    vui.vcl_hrd->cpb_removal_delay_length_minus1 = 2;
    vui.vcl_hrd->dpb_output_delay_length_minus1 = 4;
    vui.vcl_hrd->time_offset_length = 31;
    vui.low_delay_hrd_flag = true;
    vui.pic_struct_present_flag = true;
    vui.bitstream_restriction_flag = true;
    vui.max_bytes_per_pic_denom = 5;
    vui.max_bits_per_mb_denom = 6;
    vui.log2_max_mv_length_horizontal = 10;
    vui.log2_max_mv_length_vertical = 11;
    vui.max_num_reorder_frames = 12;
    vui.max_dec_frame_buffering = 13;
    return vui;
}

} // namespace support
