// A legacy SPS as text, a line for each field.
#include <orv-utils-v4/h264_legacy/sps.h>

// Labels that are not the standard's names are the fields' own.
// NOLINTNEXTLINE(readability-make-member-function-const): the signature is the interface
void h264_sps::dump(std::FILE* f)
{
    const auto decimal = [f](const char* label, std::uint32_t value) {
        static_cast<void>(std::fprintf(f, "%s: %u\n", label, static_cast<unsigned int>(value)));
    };
    const auto hex = [f](const char* label, std::uint32_t value) {
        static_cast<void>(std::fprintf(f, "%s: 0x%02x\n", label, static_cast<unsigned int>(value)));
    };
    hex("profile_idc", profile_idc);
    decimal("constraint_set0_flag", constraint_set0_flag);
    decimal("constraint_set1_flag", constraint_set1_flag);
    decimal("constraint_set2_flag", constraint_set2_flag);
    decimal("constraint_set3_flag", constraint_set3_flag);
    decimal("constraint_set4_flag", constraint_set4_flag);
    decimal("constraint_set5_flag", constraint_set5_flag);
    decimal("reserved_zero_2bits", reserved_zero_2bits);
    hex("level_idc", level_idc);
    hex("seq_parameter_set_id", seq_parameter_set_id);
    hex("chroma_format_idc", chroma_format_idc);
    decimal("separate_colour_plane_flag", separate_colour_plane_flag);
    decimal("bit_depth_luma", bit_depth_luma);
    decimal("bit_depth_chroma", bit_depth_chroma);
    decimal("qprime_y_zero_transform_bypass_flag", qprime_y_zero_transform_bypass_flag);
    decimal("seq_scaling_matrix_present_flag", seq_scaling_matrix_present_flag);
    decimal("log2_max_frame_num", log2_max_frame_num);
    decimal("max_frame_num", max_frame_num);
    decimal("pic_order_cnt_type", pic_order_cnt_type);
    decimal("max_pic_order_cnt_lsb", max_pic_order_cnt_lsb);
    decimal("delta_pic_order_always_zero_flag", delta_pic_order_always_zero_flag);
    decimal("max_num_ref_frames", max_num_ref_frames);
    decimal("gaps_in_frame_num_value_allowed_flag", gaps_in_frame_num_value_allowed_flag);
    decimal("pic_width_in_mbps", pic_width_in_mbps);
    decimal("pic_height_in_map_units", pic_height_in_map_units);
    decimal("frame_mbs_only_flag", frame_mbs_only_flag);
    decimal("mb_adaptive_frame_field_flag", mb_adaptive_frame_field_flag);
    decimal("direct_8x8_inference_flag", direct_8x8_inference_flag);
    decimal("frame_cropping_flag", frame_cropping_flag);
    decimal("frame_crop_left_offset", frame_crop_left_offset);
    decimal("frame_crop_right_offset", frame_crop_right_offset);
    decimal("frame_crop_top_offset", frame_crop_top_offset);
    decimal("frame_crop_bottom_offset", frame_crop_bottom_offset);
    decimal("vui_parameters_present_flag", vui_parameters_present_flag);
    decimal("aspect_ratio_info_present_flag", aspect_ratio_info_present_flag);
    hex("aspect_ratio_idc", aspect_ratio_idc);
    static_cast<void>(std::fprintf(f, "aspect_ratio: %u / %u\n", static_cast<unsigned int>(sar_width),
                                   static_cast<unsigned int>(sar_height)));
    decimal("overscan_info_present_flag", overscan_info_present_flag);
    decimal("overscan_info_appropriate_flag", overscan_info_appropriate_flag);
    decimal("video_signal_type_present_flag", video_signal_type_present_flag);
    decimal("video_format", video_format);
    decimal("video_full_range_flag", video_full_range_flag);
    decimal("colour_description_present_flag", colour_description_present_flag);
    hex("colour_primaries", colour_primaries);
    hex("transfer_characteristics", transfer_characteristics);
    hex("matrix_coefficients", matrix_coefficients);
    decimal("chroma_location_info_present_flag", chroma_location_info_present_flag);
    decimal("chroma_sample_location_type_top_field", chroma_sample_location_type_top_field);
    decimal("chroma_sample_location_type_bottom_field", chroma_sample_location_type_bottom_field);
    decimal("timing_info_present_flag", timing_info_present_flag);
    decimal("num_units_in_ticks", num_units_in_ticks);
    decimal("time_scale", time_scale);
    decimal("fixed_frame_rate_flag", fixed_frame_rate_flag);
    decimal("nal_hrd_parameters_present_flag", nal_hrd_parameters_present_flag);
    decimal("vcl_hrd_parameters_present_flag", vcl_hrd_parameters_present_flag);
    decimal("low_delay_hrd_flag", low_delay_hrd_flag);
    decimal("pic_struct_present_flag", pic_struct_present_flag);
    decimal("initial_cpb_removal_delay_length", initial_cpb_removal_delay_length);
    decimal("cpb_removal_delay_length", cpb_removal_delay_length);
    decimal("dpb_output_delay_length", dpb_output_delay_length);
    decimal("time_offset_length", time_offset_length);
}
