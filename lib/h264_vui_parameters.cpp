// H.264 clause E.1.1: video usability information.
#include <orv-utils-v4/h264/vui_parameters.h>

#include "syntax_reads.h"

#include <array>

namespace brenik {

namespace {

constexpr std::uint8_t Extended_SAR = 255;

struct sample_aspect_ratio {
    std::uint16_t width;
    std::uint16_t height;
};

// H.264 Table E-1
constexpr std::array<sample_aspect_ratio, 17> sample_aspect_ratios = {{
    {0, 0},
    {1, 1},
    {12, 11},
    {10, 11},
    {16, 11},
    {40, 33},
    {24, 11},
    {20, 11},
    {32, 11},
    {80, 33},
    {18, 11},
    {15, 11},
    {64, 33},
    {160, 99},
    {4, 3},
    {3, 2},
    {2, 1},
}};

void parse_aspect_ratio(h264_vui_parameters& vui, h2645_common_bitreader& br)
{
    vui.aspect_ratio_idc = u<8>(br);
    if (vui.aspect_ratio_idc == Extended_SAR) {
        vui.extended_sar = true;
        vui.sar_width = u<16>(br);
        vui.sar_height = u<16>(br);
        return;
    }
    const bool in_table = vui.aspect_ratio_idc < sample_aspect_ratios.size();
    const sample_aspect_ratio sar = in_table ? sample_aspect_ratios[vui.aspect_ratio_idc] : sample_aspect_ratio{0, 0};
    vui.sar_width = sar.width;
    vui.sar_height = sar.height;
}

void parse_video_signal_type(h264_vui_parameters& vui, h2645_common_bitreader& br)
{
    vui.video_format = u<3>(br);
    vui.video_full_range_flag = u<1>(br);
    vui.colour_description_present_flag = u<1>(br);
    if (vui.colour_description_present_flag) {
        vui.colour_primaries = u<8>(br);
        vui.transfer_characteristics = u<8>(br);
        vui.matrix_coefficients = u<8>(br);
    }
}

void parse_bitstream_restriction(h264_vui_parameters& vui, h2645_common_bitreader& br)
{
    vui.motion_vectors_over_pic_boundaries_flag = u<1>(br);
    vui.max_bytes_per_pic_denom = br.ue();
    vui.max_bits_per_mb_denom = br.ue();
    vui.log2_max_mv_length_horizontal = br.ue();
    vui.log2_max_mv_length_vertical = br.ue();
    vui.max_num_reorder_frames = br.ue();
    vui.max_dec_frame_buffering = br.ue();
}

} // namespace

// H.264 E.1.1, vui_parameters()
bool h264_vui_parameters::parse(h2645_common_bitreader& br)
{
    aspect_ratio_info_present_flag = u<1>(br);
    if (aspect_ratio_info_present_flag)
        parse_aspect_ratio(*this, br);
    overscan_info_present_flag = u<1>(br);
    if (overscan_info_present_flag)
        overscan_appropriate_flag = u<1>(br);
    video_signal_type_present_flag = u<1>(br);
    if (video_signal_type_present_flag)
        parse_video_signal_type(*this, br);
    chroma_loc_info_present_flag = u<1>(br);
    if (chroma_loc_info_present_flag) {
        chroma_sample_loc_type_top_field = br.ue();
        chroma_sample_loc_type_bottom_field = br.ue();
    }
    timing_info_present_flag = u<1>(br);
    if (timing_info_present_flag) {
        num_units_in_tick = u<32>(br);
        time_scale = u<32>(br);
        fixed_frame_rate_flag = u<1>(br);
    }
    nal_hrd_parameters_present_flag = u<1>(br);
    if (nal_hrd_parameters_present_flag && !nal_hrd.parse(br))
        return valid = false;
    vcl_hrd_parameters_present_flag = u<1>(br);
    if (vcl_hrd_parameters_present_flag && !vcl_hrd.parse(br))
        return valid = false;
    if (nal_hrd_parameters_present_flag || vcl_hrd_parameters_present_flag)
        low_delay_hrd_flag = u<1>(br);
    pic_struct_present_flag = u<1>(br);
    bitstream_restriction_flag = u<1>(br);
    if (bitstream_restriction_flag)
        parse_bitstream_restriction(*this, br);
    return valid = true;
}

const char* h264_vui_parameters::video_format_to_str() const
{
    return h264_video_format_to_str(static_cast<h264_video_format>(video_format));
}

// H.264 Table E-2
const char* h264_video_format_to_str(h264_video_format v)
{
    switch (v) {
    case h264_video_format_component:
        return "Component";
    case h264_video_format_pal:
        return "PAL";
    case h264_video_format_ntsc:
        return "NTSC";
    case h264_video_format_secam:
        return "SECAM";
    case h264_video_format_mac:
        return "MAC";
    case h264_video_format_unspecified:
        return "Unspecified";
    }
    return "?";
}

} // namespace brenik
