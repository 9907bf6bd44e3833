// The parses of both interfaces over the same bits: an SPS with what the legacy record holds of it by the newer one's
// account, and slices and SEI messages that are read with it.
#pragma once

#include "support/legacy_parse.h"

#include <orv-utils-v4/h264.h>

#include <cstdint>

namespace support {

/// Both parses of an RBSP into new objects.
struct both_spss {
    brenik::h264_nal_sps newer;
    bool newer_result = false;
    h264_sps legacy;

    explicit both_spss(const bytes& rbsp)
    {
        const guarded_buffer buffer(rbsp);
        parse_fenced(legacy, buffer.begin(), buffer.end());
        brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
        newer_result = newer.parse(br);
    }

    explicit both_spss(const sps_description& seq) : both_spss(written_rbsp(seq).made()) {}
};

/// Whether a value of the element, or an entry of it, is coded with 24 zeros or more.
inline bool is_long(const std::string& name, const value& field)
{
    const std::int64_t first = name.rfind("offset_for", 0) == 0 ? 8388608 : 16777215;
    const auto reaches = [first](std::int64_t number) { return number >= first || number <= -first; };
    return reaches(field.number) || std::any_of(field.entries.begin(), field.entries.end(), reaches);
}

/// Why the two parses part within the SPS, so that what follows is not the same; null when they do not.
inline const char* parting(const brenik::h264_nal_sps& seq)
{
    const brenik::h264_vui_parameters& vui = seq.vui;
    for (const unsigned int profile_idc : {134U, 135U, 138U, 139U})
        if (seq.profile_idc == profile_idc)
            return "its profile is not among the nine of the legacy interface";
    if (seq.pic_order_cnt_type > 255)
        return "its picture order count type has more than a byte";
    if ((vui.nal_hrd_parameters_present_flag && vui.nal_hrd.cpb_cnt_minus1 > 31) ||
        (vui.vcl_hrd_parameters_present_flag && vui.vcl_hrd.cpb_cnt_minus1 > 31))
        return "it has more than 32 CPBs";
    const named_values fields = fields_of(seq);
    for (const std::string& name : fields.names->in_order)
        if (name != "vui.num_units_in_tick" && name != "vui.time_scale" && is_long(name, fields.at(name)))
            return "it has a code of 24 zeros or more";
    return nullptr;
}

/// Departure: the legacy interface infers neither chroma format nor bit depths.
inline void expect_chroma(h264_sps& legacy, const brenik::h264_nal_sps& seq)
{
    if (!seq.high_profile_syntax_present)
        return;
    legacy.chroma_format_idc = seq.chroma_format_idc;
    legacy.separate_colour_plane_flag = seq.separate_colour_plane_flag ? 1 : 0;
    legacy.bit_depth_luma = seq.bit_depth_luma_minus8 + 8;
    legacy.bit_depth_chroma = seq.bit_depth_chroma_minus8 + 8;
    legacy.qprime_y_zero_transform_bypass_flag = seq.qpprime_y_zero_transform_bypass_flag ? 1 : 0;
    legacy.seq_scaling_matrix_present_flag = seq.seq_scaling_matrix_present_flag ? 1 : 0;
}

inline void expect_lengths(h264_sps& legacy, const brenik::h264_hrd_parameters& hrd)
{
    legacy.initial_cpb_removal_delay_length =
        static_cast<std::uint8_t>(hrd.initial_cpb_removal_delay_length_minus1 + 1);
    legacy.cpb_removal_delay_length = static_cast<std::uint8_t>(hrd.cpb_removal_delay_length_minus1 + 1);
    legacy.dpb_output_delay_length = static_cast<std::uint8_t>(hrd.dpb_output_delay_length_minus1 + 1);
    legacy.time_offset_length = hrd.time_offset_length;
}

/// Departure: the ratio of aspect_ratio_idc 0 is 0:0 there and 0/1 here.
inline void expect_vui(h264_sps& legacy, const brenik::h264_vui_parameters& vui)
{
    legacy.aspect_ratio_info_present_flag = vui.aspect_ratio_info_present_flag ? 1 : 0;
    legacy.aspect_ratio_idc = vui.aspect_ratio_idc;
    legacy.sar_width = vui.sar_width;
    legacy.sar_height = vui.aspect_ratio_info_present_flag && vui.aspect_ratio_idc == 0 ? 1 : vui.sar_height;
    legacy.overscan_info_present_flag = vui.overscan_info_present_flag ? 1 : 0;
    legacy.overscan_info_appropriate_flag = vui.overscan_appropriate_flag ? 1 : 0;
    legacy.video_signal_type_present_flag = vui.video_signal_type_present_flag ? 1 : 0;
    legacy.video_format = vui.video_format;
    legacy.video_full_range_flag = vui.video_full_range_flag ? 1 : 0;
    legacy.colour_description_present_flag = vui.colour_description_present_flag ? 1 : 0;
    legacy.colour_primaries = vui.colour_primaries;
    legacy.transfer_characteristics = vui.transfer_characteristics;
    legacy.matrix_coefficients = vui.matrix_coefficients;
    legacy.chroma_location_info_present_flag = vui.chroma_loc_info_present_flag ? 1 : 0;
    legacy.chroma_sample_location_type_top_field = vui.chroma_sample_loc_type_top_field;
    legacy.chroma_sample_location_type_bottom_field = vui.chroma_sample_loc_type_bottom_field;
    legacy.timing_info_present_flag = vui.timing_info_present_flag ? 1 : 0;
    legacy.num_units_in_ticks = vui.num_units_in_tick;
    legacy.time_scale = vui.time_scale;
    legacy.fixed_frame_rate_flag = vui.fixed_frame_rate_flag ? 1 : 0;
    legacy.nal_hrd_parameters_present_flag = vui.nal_hrd_parameters_present_flag ? 1 : 0;
    legacy.vcl_hrd_parameters_present_flag = vui.vcl_hrd_parameters_present_flag ? 1 : 0;
    legacy.low_delay_hrd_flag = vui.low_delay_hrd_flag ? 1 : 0;
    legacy.pic_struct_present_flag = vui.pic_struct_present_flag ? 1 : 0;
    if (vui.vcl_hrd_parameters_present_flag)
        expect_lengths(legacy, vui.vcl_hrd);
    else if (vui.nal_hrd_parameters_present_flag)
        expect_lengths(legacy, vui.nal_hrd);
}

/// What a new legacy record holds after the SPS that `seq` was parsed from.
inline h264_sps legacy_of(const brenik::h264_nal_sps& seq)
{
    h264_sps legacy;
    legacy.profile_idc = seq.profile_idc;
    legacy.constraint_set0_flag = seq.constraint_set0_flag ? 1 : 0;
    legacy.constraint_set1_flag = seq.constraint_set1_flag ? 1 : 0;
    legacy.constraint_set2_flag = seq.constraint_set2_flag ? 1 : 0;
    legacy.constraint_set3_flag = seq.constraint_set3_flag ? 1 : 0;
    legacy.constraint_set4_flag = seq.constraint_set4_flag ? 1 : 0;
    legacy.constraint_set5_flag = seq.constraint_set5_flag ? 1 : 0;
    legacy.reserved_zero_2bits = seq.reserved_zero_2bits;
    legacy.level_idc = seq.level_idc;
    legacy.seq_parameter_set_id = seq.seq_parameter_set_id;
    expect_chroma(legacy, seq);
    legacy.log2_max_frame_num = static_cast<std::uint8_t>(seq.log2_max_frame_num_minus4 + 4);
    legacy.max_frame_num = 1U << legacy.log2_max_frame_num % 32;
    legacy.pic_order_cnt_type = static_cast<std::uint8_t>(seq.pic_order_cnt_type);
    if (seq.pic_order_cnt_type == 0)
        legacy.max_pic_order_cnt_lsb = static_cast<std::uint8_t>(seq.log2_max_pic_order_cnt_lsb_minus4 + 4);
    legacy.delta_pic_order_always_zero_flag = seq.delta_pic_order_always_zero_flag ? 1 : 0;
    legacy.max_num_ref_frames = static_cast<std::uint8_t>(seq.max_num_ref_frames);
    legacy.gaps_in_frame_num_value_allowed_flag = seq.gaps_in_frame_num_value_allowed_flag ? 1 : 0;
    legacy.pic_width_in_mbps = seq.pic_width_in_mbs_minus1 + 1;
    legacy.pic_height_in_map_units = seq.pic_height_in_map_units_minus1 + 1;
    legacy.frame_mbs_only_flag = seq.frame_mbs_only_flag ? 1 : 0;
    legacy.mb_adaptive_frame_field_flag = seq.mb_adaptive_frame_field_flag ? 1 : 0;
    legacy.direct_8x8_inference_flag = seq.direct_8x8_inference_flag ? 1 : 0;
    legacy.frame_cropping_flag = seq.frame_cropping_flag ? 1 : 0;
    legacy.frame_crop_left_offset = seq.frame_crop_left_offset;
    legacy.frame_crop_right_offset = seq.frame_crop_right_offset;
    legacy.frame_crop_top_offset = seq.frame_crop_top_offset;
    legacy.frame_crop_bottom_offset = seq.frame_crop_bottom_offset;
    legacy.vui_parameters_present_flag = seq.vui_parameters_present_flag ? 1 : 0;
    if (seq.vui_parameters_present_flag)
        expect_vui(legacy, seq.vui);
    return legacy;
}

/// What the legacy record says otherwise, but for the departures above.
inline std::string difference(const both_spss& both)
{
    return difference(fields_of(legacy_of(both.newer)), fields_of(both.legacy));
}

/// What the two say otherwise of one slice.
inline std::string difference(const brenik::h264_nal_slice_header& newer, const h264_nal_slice_info& legacy)
{
    h264_nal_slice_info expected{newer.first_mb_in_slice, newer.slice_type, newer.pic_parameter_set_id};
    expected.colour_plane_id = newer.colour_plane_id;
    expected.frame_num = newer.frame_num;
    expected.field_pic_flag = newer.field_pic_flag ? 1 : 0;
    expected.bottom_field_flag = newer.bottom_field_flag ? 1 : 0;
    return difference_of(expected, legacy);
}

/// Departure: the newer parse takes the length of the initial delay for both delays.
inline bool same_widths(const brenik::h264_nal_sps& seq, const h264_sps& legacy)
{
    const brenik::h264_vui_parameters& vui = seq.vui;
    if (!vui.nal_hrd_parameters_present_flag && !vui.vcl_hrd_parameters_present_flag)
        return true;
    const unsigned int width = 1U + std::max(vui.nal_hrd.initial_cpb_removal_delay_length_minus1,
                                             vui.vcl_hrd.initial_cpb_removal_delay_length_minus1);
    return width <= 24 && width == legacy.cpb_removal_delay_length && width == legacy.dpb_output_delay_length;
}

/// What the two say otherwise of a picture timing that is not empty.
inline std::string timing_difference(const brenik::h264_nal_sps& seq, h264_sps legacy_seq, const h264_sei_pair& pair)
{
    brenik::h264_nal_sei_pic_timing newer;
    brenik::h2645_common_bitreader br(pair.data, pair.fence);
    h264_sei_picture_timing_info legacy;
    if (!newer.parse(br, seq) || h264_sei_picture_timing_info_parse(&legacy, pair.data, pair.fence, legacy_seq) != 1)
        return "a picture timing is not read by both";
    const h264_sei_picture_timing_info expected{newer.cpb_removal_delay, newer.dpb_output_delay, newer.pic_struct,
                                                legacy.field_duration};
    return difference_of(expected, legacy);
}

/// What the two say otherwise of the messages of an RBSP. `payload(pair)` tells more of each.
template <typename Payload>
std::string messages_difference(unsigned char* start, unsigned char* fence, Payload payload)
{
    brenik::h264_nal_sei_reader newer(start, fence);
    const unsigned char* p = start;
    h264_sei_pair pair;
    while (newer.next_message() && !newer.truncated) {
        p = h264_sei_read_pair(&pair, p, fence);
        if (pair.valid != 1 || pair.payload_type != static_cast<std::uint32_t>(newer.payloadType) ||
            pair.payload_size != newer.payloadSize || pair.start != newer.message || pair.data != newer.payload ||
            pair.fence != newer.payload_fence)
            return "a message is another in the legacy interface";
        if (std::string text = payload(pair); !text.empty())
            return text;
    }
    return h264_sei_read_pair(&pair, p, fence) == fence && pair.valid == 0 ? "" : "the legacy interface goes on";
}

} // namespace support
