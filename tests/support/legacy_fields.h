// The fields of the legacy interface's records by name, member by member, in the order of memory.
#pragma once

#include "support/parameter_set_fields.h"

#include <orv-utils-v4/h264_legacy/sei.h>
#include <orv-utils-v4/h264_legacy/slice.h>
#include <orv-utils-v4/h264_legacy/sps.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace support {

/// An SPS, constant or not, so that a visitor may also write.
template <typename Visitor, typename Sps>
requires std::is_same_v<std::remove_const_t<Sps>, h264_sps>
void each_field(Visitor& visit, Sps& seq)
{
    visit("gaps_in_frame_num_value_allowed_flag", seq.gaps_in_frame_num_value_allowed_flag);
    visit("qprime_y_zero_transform_bypass_flag", seq.qprime_y_zero_transform_bypass_flag);
    visit("delta_pic_order_always_zero_flag", seq.delta_pic_order_always_zero_flag);
    visit("seq_scaling_matrix_present_flag", seq.seq_scaling_matrix_present_flag);
    visit("separate_colour_plane_flag", seq.separate_colour_plane_flag);
    visit("pic_height_in_map_units", seq.pic_height_in_map_units);
    visit("max_pic_order_cnt_lsb", seq.max_pic_order_cnt_lsb);
    visit("constraint_set0_flag", seq.constraint_set0_flag);
    visit("constraint_set1_flag", seq.constraint_set1_flag);
    visit("constraint_set2_flag", seq.constraint_set2_flag);
    visit("constraint_set3_flag", seq.constraint_set3_flag);
    visit("constraint_set4_flag", seq.constraint_set4_flag);
    visit("constraint_set5_flag", seq.constraint_set5_flag);
    visit("reserved_zero_2bits", seq.reserved_zero_2bits);
    visit("seq_parameter_set_id", seq.seq_parameter_set_id);
    visit("max_num_ref_frames", seq.max_num_ref_frames);
    visit("pic_order_cnt_type", seq.pic_order_cnt_type);
    visit("chroma_format_idc", seq.chroma_format_idc);
    visit("pic_width_in_mbps", seq.pic_width_in_mbps);
    visit("bit_depth_chroma", seq.bit_depth_chroma);
    visit("bit_depth_luma", seq.bit_depth_luma);
    visit("log2_max_frame_num", seq.log2_max_frame_num);
    visit("max_frame_num", seq.max_frame_num);
    visit("profile_idc", seq.profile_idc);
    visit("level_idc", seq.level_idc);
    visit("frame_mbs_only_flag", seq.frame_mbs_only_flag);
    visit("mb_adaptive_frame_field_flag", seq.mb_adaptive_frame_field_flag);
    visit("direct_8x8_inference_flag", seq.direct_8x8_inference_flag);
    visit("frame_cropping_flag", seq.frame_cropping_flag);
    visit("frame_crop_left_offset", seq.frame_crop_left_offset);
    visit("frame_crop_right_offset", seq.frame_crop_right_offset);
    visit("frame_crop_top_offset", seq.frame_crop_top_offset);
    visit("frame_crop_bottom_offset", seq.frame_crop_bottom_offset);
    visit("vui_parameters_present_flag", seq.vui_parameters_present_flag);
    visit("aspect_ratio_info_present_flag", seq.aspect_ratio_info_present_flag);
    visit("aspect_ratio_idc", seq.aspect_ratio_idc);
    visit("sar_width", seq.sar_width);
    visit("sar_height", seq.sar_height);
    visit("overscan_info_present_flag", seq.overscan_info_present_flag);
    visit("overscan_info_appropriate_flag", seq.overscan_info_appropriate_flag);
    visit("video_signal_type_present_flag", seq.video_signal_type_present_flag);
    visit("video_format", seq.video_format);
    visit("video_full_range_flag", seq.video_full_range_flag);
    visit("colour_description_present_flag", seq.colour_description_present_flag);
    visit("colour_primaries", seq.colour_primaries);
    visit("transfer_characteristics", seq.transfer_characteristics);
    visit("matrix_coefficients", seq.matrix_coefficients);
    visit("chroma_location_info_present_flag", seq.chroma_location_info_present_flag);
    visit("chroma_sample_location_type_top_field", seq.chroma_sample_location_type_top_field);
    visit("chroma_sample_location_type_bottom_field", seq.chroma_sample_location_type_bottom_field);
    visit("timing_info_present_flag", seq.timing_info_present_flag);
    visit("num_units_in_ticks", seq.num_units_in_ticks);
    visit("time_scale", seq.time_scale);
    visit("fixed_frame_rate_flag", seq.fixed_frame_rate_flag);
    visit("nal_hrd_parameters_present_flag", seq.nal_hrd_parameters_present_flag);
    visit("vcl_hrd_parameters_present_flag", seq.vcl_hrd_parameters_present_flag);
    visit("low_delay_hrd_flag", seq.low_delay_hrd_flag);
    visit("pic_struct_present_flag", seq.pic_struct_present_flag);
    visit("initial_cpb_removal_delay_length", seq.initial_cpb_removal_delay_length);
    visit("cpb_removal_delay_length", seq.cpb_removal_delay_length);
    visit("dpb_output_delay_length", seq.dpb_output_delay_length);
    visit("time_offset_length", seq.time_offset_length);
}

template <typename Visitor>
void each_field(Visitor& visit, const h264_nal_slice_info& slice)
{
    visit("first_mb_in_slice", slice.first_mb_in_slice);
    visit("slice_type", slice.slice_type);
    visit("pic_parameter_set_id", slice.pic_parameter_set_id);
    visit("colour_plane_id", slice.colour_plane_id);
    visit("frame_num", slice.frame_num);
    visit("field_pic_flag", slice.field_pic_flag);
    visit("bottom_field_flag", slice.bottom_field_flag);
}

/// The pointers count from the start of the message; -1 for null.
template <typename Visitor>
void each_field(Visitor& visit, const h264_sei_pair& pair)
{
    const auto offset = [&](const unsigned char* p) {
        const auto distance = reinterpret_cast<std::uintptr_t>(p) - reinterpret_cast<std::uintptr_t>(pair.start);
        return p == nullptr ? std::int64_t{-1} : static_cast<std::int64_t>(distance);
    };
    visit("valid", pair.valid);
    visit("payload_type", pair.payload_type);
    visit("payload_size", pair.payload_size);
    visit("data", offset(pair.data));
    visit("fence", offset(pair.fence));
}

template <typename Visitor>
void each_field(Visitor& visit, const h264_sei_picture_timing_info& timing)
{
    visit("cpb_removal_delay", timing.cpb_removal_delay);
    visit("dpb_output_delay", timing.dpb_output_delay);
    visit("pic_struct", timing.pic_struct);
    visit("field_duration", timing.field_duration);
}

/// What differs between two records.
template <typename Record>
std::string difference_of(const Record& expected, const Record& actual)
{
    return difference(fields_of(expected), fields_of(actual));
}

/// Gives every member the number behind that of the one before.
struct field_numberer {
    unsigned int last = 0;

    template <typename Member>
    void operator()(const char* /*name*/, Member& member)
    {
        member = static_cast<Member>(++last);
    }
};

/// An SPS whose fields are `first`, `first` + 1 and so on, in the order of memory.
inline h264_sps numbered_sps(unsigned int first = 1)
{
    h264_sps seq;
    field_numberer numberer{first - 1};
    each_field(numberer, seq);
    return seq;
}

} // namespace support
