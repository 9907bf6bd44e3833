/// @file
/// The sequence parameter set of the legacy interface, H.264 clauses 7.3.2.1.1, E.1.1 and E.1.2.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/misc/be_bitfields.h>

#include <cstdint>
#include <cstdio>

/// The sample aspect ratios of H.264 Table E-1 by aspect_ratio_idc, numerator and denominator; 0 / 1 for idc 0.
extern ORV_UTILS_V4_EXPORT const std::uint8_t h264_aspect_ratio_stdent_presets[17][2];

/// The fields of an SPS that a media pipeline needs. A flag is 0 or 1. A parse overwrites what the SPS carries and
/// leaves the rest, so that one object can follow the current SPS of a stream; reset() makes it a clean one.
class ORV_UTILS_V4_EXPORT h264_sps {
public:
    std::uint8_t gaps_in_frame_num_value_allowed_flag;
    std::uint8_t qprime_y_zero_transform_bypass_flag; ///< qpprime_y_zero_transform_bypass_flag
    std::uint8_t delta_pic_order_always_zero_flag;
    std::uint8_t seq_scaling_matrix_present_flag;
    std::uint8_t separate_colour_plane_flag;
    std::uint32_t pic_height_in_map_units; ///< pic_height_in_map_units_minus1 + 1, in macroblocks or pairs of them
    std::uint8_t max_pic_order_cnt_lsb;    ///< the base-2 logarithm: log2_max_pic_order_cnt_lsb_minus4 + 4
    std::uint8_t constraint_set0_flag;
    std::uint8_t constraint_set1_flag;
    std::uint8_t constraint_set2_flag;
    std::uint8_t constraint_set3_flag;
    std::uint8_t constraint_set4_flag;
    std::uint8_t constraint_set5_flag;
    std::uint8_t reserved_zero_2bits; ///< as read
    std::uint32_t seq_parameter_set_id;
    std::uint8_t max_num_ref_frames; ///< the low 8 bits
    std::uint8_t pic_order_cnt_type; ///< the low 8 bits
    std::uint32_t chroma_format_idc; ///< not inferred: read for the profiles of parse_sps() alone
    std::uint32_t pic_width_in_mbps; ///< pic_width_in_mbs_minus1 + 1, in macroblocks
    std::uint32_t bit_depth_chroma;  ///< bit_depth_chroma_minus8 + 8, likewise not inferred
    std::uint32_t bit_depth_luma;    ///< bit_depth_luma_minus8 + 8, likewise not inferred
    std::uint8_t log2_max_frame_num; ///< log2_max_frame_num_minus4 + 4, the low 8 bits
    std::uint32_t max_frame_num;     ///< 1 << (log2_max_frame_num modulo 32)
    std::uint8_t profile_idc;
    std::uint8_t level_idc;
    std::uint8_t frame_mbs_only_flag;
    std::uint8_t mb_adaptive_frame_field_flag;
    std::uint8_t direct_8x8_inference_flag;
    std::uint8_t frame_cropping_flag;
    std::uint32_t frame_crop_left_offset; ///< in crop units, as coded
    std::uint32_t frame_crop_right_offset;
    std::uint32_t frame_crop_top_offset;
    std::uint32_t frame_crop_bottom_offset;
    std::uint8_t vui_parameters_present_flag;
    std::uint8_t aspect_ratio_info_present_flag;
    std::uint8_t aspect_ratio_idc;
    std::uint32_t sar_width;  ///< of the sample aspect ratio; kept when the idc is 17 to 254
    std::uint32_t sar_height; ///< likewise
    std::uint8_t overscan_info_present_flag;
    std::uint8_t overscan_info_appropriate_flag; ///< overscan_appropriate_flag
    std::uint8_t video_signal_type_present_flag;
    std::uint8_t video_format;
    std::uint8_t video_full_range_flag;
    std::uint8_t colour_description_present_flag;
    std::uint8_t colour_primaries;
    std::uint8_t transfer_characteristics;
    std::uint8_t matrix_coefficients;
    std::uint8_t chroma_location_info_present_flag;         ///< chroma_loc_info_present_flag
    std::uint32_t chroma_sample_location_type_top_field;    ///< chroma_sample_loc_type_top_field
    std::uint32_t chroma_sample_location_type_bottom_field; ///< chroma_sample_loc_type_bottom_field
    std::uint8_t timing_info_present_flag;
    std::uint32_t num_units_in_ticks; ///< num_units_in_tick
    std::uint32_t time_scale;
    std::uint8_t fixed_frame_rate_flag;
    std::uint8_t nal_hrd_parameters_present_flag;
    std::uint8_t vcl_hrd_parameters_present_flag;
    std::uint8_t low_delay_hrd_flag;
    std::uint8_t pic_struct_present_flag;
    std::uint8_t initial_cpb_removal_delay_length; ///< bits, of the HRD parameters read last
    std::uint8_t cpb_removal_delay_length;         ///< bits, likewise
    std::uint8_t dpb_output_delay_length;          ///< bits, likewise
    std::uint8_t time_offset_length;               ///< bits, likewise

    /// A record of zeros.
    h264_sps();

    /// Sets every field to 0.
    void reset();

    /// Reads seq_parameter_set_data() and, when present, vui_parameters() up to pic_struct_present_flag, from an RBSP
    /// behind its NAL unit header. Fields that are not carried keep their values. The chroma format and the bit depths
    /// are read for profile_idc 100, 110, 122, 244, 44, 83, 86, 118 and 128. Open-ended: behind a damaged SPS it reads
    /// on, so that the bytes there must be readable; h264_common_frame_scan() stops at the unit's end.
    void parse_sps(be_bitfield& bf);

    /// Skips one scaling list of `size` entries behind its present flag.
    void discard_h264_video_scaling_matrix_list_because_nobody_fucking_cares(be_bitfield& bf, unsigned size);

    /// Skips hrd_parameters() but for the four lengths. With more than 32 CPB specifications only their number is read.
    void discard_h264_video_hrd_params_because_nobody_fucking_cares(be_bitfield& bf);

    /// Luma samples across the cropped frame; 0 when the cropping takes away more than there is.
    int get_final_frame_width();

    /// Luma rows of the cropped frame; 0 when the cropping takes away more than there is.
    int get_final_frame_height();

    /// The fields a second as a fraction, time_scale / num_units_in_tick.
    /// @return 1; 0, with `num` and `den` as they were, when the SPS does not tell
    int get_final_field_rate(unsigned& num, unsigned& den);

    /// Prints all fields, a line each, whatever the presence flags say.
    void dump(std::FILE* f);
};
