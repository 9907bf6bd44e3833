// H.264 clauses 7.3.2.1.1, E.1.1 and E.1.2 for the legacy interface: what a pipeline needs of an SPS. It shares nothing
// with the newer SPS parse.
#include <orv-utils-v4/h264_legacy/sps.h>

#include "sps_syntax.h"

#include <cstring>
#include <iterator>
#include <type_traits>

const std::uint8_t h264_aspect_ratio_stdent_presets[17][2] = {
    {0, 1},   {1, 1},   {12, 11}, {10, 11}, {16, 11},  {40, 33}, {24, 11}, {20, 11}, {32, 11},
    {80, 33}, {18, 11}, {15, 11}, {64, 33}, {160, 99}, {4, 3},   {3, 2},   {2, 1},
};

namespace orv_utils_v4::legacy {

namespace {

bool tells_chroma_format(std::uint8_t profile_idc)
{
    switch (profile_idc) {
    case 100:
    case 110:
    case 122:
    case 244:
    case 44:
    case 83:
    case 86:
    case 118:
    case 128:
        return true;
    default:
        return false;
    }
}

void read_high_profile_syntax(h264_sps& sps, const legacy_bits& bits)
{
    sps.chroma_format_idc = bits.ue();
    if (sps.chroma_format_idc == 3)
        sps.separate_colour_plane_flag = bits.u8(1);
    sps.bit_depth_luma = bits.ue() + 8;
    sps.bit_depth_chroma = bits.ue() + 8;
    sps.qprime_y_zero_transform_bypass_flag = bits.u8(1);
    sps.seq_scaling_matrix_present_flag = bits.u8(1);
    if (sps.seq_scaling_matrix_present_flag == 0)
        return;
    const int lists = sps.chroma_format_idc == 3 ? 12 : 8;
    for (int i = 0; i < lists; ++i)
        skip_scaling_list(bits, i < 6 ? 16 : 64);
}

void read_pic_order_cnt(h264_sps& sps, const legacy_bits& bits)
{
    sps.pic_order_cnt_type = static_cast<std::uint8_t>(bits.ue());
    if (sps.pic_order_cnt_type == 0) {
        sps.max_pic_order_cnt_lsb = static_cast<std::uint8_t>(bits.ue() + 4);
    } else if (sps.pic_order_cnt_type == 1) {
        sps.delta_pic_order_always_zero_flag = bits.u8(1);
        bits.ue(); // offset_for_non_ref_pic, as long as an unsigned code
        bits.ue(); // offset_for_top_to_bottom_field
        for (unsigned int cycle = bits.ue(); cycle > 0 && !bits.at_end(); --cycle)
            bits.ue(); // offset_for_ref_frame
    }
}

void read_aspect_ratio(h264_sps& sps, const legacy_bits& bits)
{
    constexpr std::uint8_t Extended_SAR = 255;
    sps.aspect_ratio_idc = bits.u8(8);
    if (sps.aspect_ratio_idc == Extended_SAR) {
        sps.sar_width = bits.u(16);
        sps.sar_height = bits.u(16);
    } else if (sps.aspect_ratio_idc < std::size(h264_aspect_ratio_stdent_presets)) {
        sps.sar_width = h264_aspect_ratio_stdent_presets[sps.aspect_ratio_idc][0];
        sps.sar_height = h264_aspect_ratio_stdent_presets[sps.aspect_ratio_idc][1];
    }
}

void read_video_signal_type(h264_sps& sps, const legacy_bits& bits)
{
    sps.video_format = bits.u8(3);
    sps.video_full_range_flag = bits.u8(1);
    sps.colour_description_present_flag = bits.u8(1);
    if (sps.colour_description_present_flag != 0) {
        sps.colour_primaries = bits.u8(8);
        sps.transfer_characteristics = bits.u8(8);
        sps.matrix_coefficients = bits.u8(8);
    }
}

// H.264 E.1.1, vui_parameters() up to pic_struct_present_flag
void read_vui_parameters(h264_sps& sps, const legacy_bits& bits)
{
    sps.aspect_ratio_info_present_flag = bits.u8(1);
    if (sps.aspect_ratio_info_present_flag != 0)
        read_aspect_ratio(sps, bits);
    sps.overscan_info_present_flag = bits.u8(1);
    if (sps.overscan_info_present_flag != 0)
        sps.overscan_info_appropriate_flag = bits.u8(1);
    sps.video_signal_type_present_flag = bits.u8(1);
    if (sps.video_signal_type_present_flag != 0)
        read_video_signal_type(sps, bits);
    sps.chroma_location_info_present_flag = bits.u8(1);
    if (sps.chroma_location_info_present_flag != 0) {
        sps.chroma_sample_location_type_top_field = bits.ue();
        sps.chroma_sample_location_type_bottom_field = bits.ue();
    }
    sps.timing_info_present_flag = bits.u8(1);
    if (sps.timing_info_present_flag != 0) {
        sps.num_units_in_ticks = bits.u32();
        sps.time_scale = bits.u32();
        sps.fixed_frame_rate_flag = bits.u8(1);
    }
    sps.nal_hrd_parameters_present_flag = bits.u8(1);
    if (sps.nal_hrd_parameters_present_flag != 0)
        read_hrd_lengths(sps, bits);
    sps.vcl_hrd_parameters_present_flag = bits.u8(1);
    if (sps.vcl_hrd_parameters_present_flag != 0)
        read_hrd_lengths(sps, bits);
    if (sps.nal_hrd_parameters_present_flag != 0 || sps.vcl_hrd_parameters_present_flag != 0)
        sps.low_delay_hrd_flag = bits.u8(1);
    sps.pic_struct_present_flag = bits.u8(1);
}

} // namespace

// H.264 7.3.2.1.1.1, scaling_list()
void skip_scaling_list(const legacy_bits& bits, unsigned int size)
{
    if (bits.u(1) == 0)
        return;
    std::uint8_t last_scale = 8;
    for (unsigned int j = 0; j < size; ++j) {
        const auto next_scale = static_cast<std::uint8_t>(last_scale + bits.se());
        if (next_scale == 0)
            return;
        last_scale = next_scale;
    }
}

// H.264 E.1.2, hrd_parameters()
void read_hrd_lengths(h264_sps& sps, const legacy_bits& bits)
{
    constexpr unsigned int most_cpbs = 32;
    const unsigned int cpb_cnt = bits.ue() + 1;
    if (cpb_cnt > most_cpbs)
        return;
    bits.u(8); // bit_rate_scale, cpb_size_scale
    for (unsigned int SchedSelIdx = 0; SchedSelIdx < cpb_cnt; ++SchedSelIdx) {
        bits.ue(); // bit_rate_value_minus1
        bits.ue(); // cpb_size_value_minus1
        bits.u(1); // cbr_flag
    }
    sps.initial_cpb_removal_delay_length = static_cast<std::uint8_t>(bits.u(5) + 1);
    sps.cpb_removal_delay_length = static_cast<std::uint8_t>(bits.u(5) + 1);
    sps.dpb_output_delay_length = static_cast<std::uint8_t>(bits.u(5) + 1);
    sps.time_offset_length = bits.u8(5);
}

// H.264 7.3.2.1.1, seq_parameter_set_data()
void read_seq_parameter_set_data(h264_sps& sps, const legacy_bits& bits)
{
    sps.profile_idc = bits.u8(8);
    sps.constraint_set0_flag = bits.u8(1);
    sps.constraint_set1_flag = bits.u8(1);
    sps.constraint_set2_flag = bits.u8(1);
    sps.constraint_set3_flag = bits.u8(1);
    sps.constraint_set4_flag = bits.u8(1);
    sps.constraint_set5_flag = bits.u8(1);
    sps.reserved_zero_2bits = bits.u8(2);
    sps.level_idc = bits.u8(8);
    sps.seq_parameter_set_id = bits.ue();
    if (tells_chroma_format(sps.profile_idc))
        read_high_profile_syntax(sps, bits);
    sps.log2_max_frame_num = static_cast<std::uint8_t>(bits.ue() + 4);
    sps.max_frame_num = std::uint32_t{1} << sps.log2_max_frame_num % 32;
    read_pic_order_cnt(sps, bits);
    sps.max_num_ref_frames = static_cast<std::uint8_t>(bits.ue());
    sps.gaps_in_frame_num_value_allowed_flag = bits.u8(1);
    sps.pic_width_in_mbps = bits.ue() + 1;
    sps.pic_height_in_map_units = bits.ue() + 1;
    sps.frame_mbs_only_flag = bits.u8(1);
    if (sps.frame_mbs_only_flag == 0)
        sps.mb_adaptive_frame_field_flag = bits.u8(1);
    sps.direct_8x8_inference_flag = bits.u8(1);
    sps.frame_cropping_flag = bits.u8(1);
    if (sps.frame_cropping_flag != 0) {
        sps.frame_crop_left_offset = bits.ue();
        sps.frame_crop_right_offset = bits.ue();
        sps.frame_crop_top_offset = bits.ue();
        sps.frame_crop_bottom_offset = bits.ue();
    }
    sps.vui_parameters_present_flag = bits.u8(1);
    if (sps.vui_parameters_present_flag != 0)
        read_vui_parameters(sps, bits);
}

} // namespace orv_utils_v4::legacy

h264_sps::h264_sps()
{
    reset();
}

void h264_sps::reset()
{
    static_assert(std::is_trivially_copyable_v<h264_sps>);
    std::memset(static_cast<void*>(this), 0, sizeof *this);
}

void h264_sps::parse_sps(be_bitfield& bf)
{
    orv_utils_v4::legacy::read_seq_parameter_set_data(*this, {bf, nullptr});
}

void h264_sps::discard_h264_video_scaling_matrix_list_because_nobody_fucking_cares(be_bitfield& bf, unsigned size)
{
    orv_utils_v4::legacy::skip_scaling_list({bf, nullptr}, size);
}

void h264_sps::discard_h264_video_hrd_params_because_nobody_fucking_cares(be_bitfield& bf)
{
    orv_utils_v4::legacy::read_hrd_lengths(*this, {bf, nullptr});
}
