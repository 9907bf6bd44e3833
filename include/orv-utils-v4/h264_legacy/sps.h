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
    std::uint8_t gaps_in_frame_num_value_allowed_flag; ///< u(1)
    std::uint8_t qprime_y_zero_transform_bypass_flag;  ///< u(1), qpprime_y_zero_transform_bypass_flag; profiles of
                                                       ///< parse_sps() alone
    std::uint8_t delta_pic_order_always_zero_flag;     ///< u(1), pic_order_cnt_type 1
    std::uint8_t seq_scaling_matrix_present_flag;      ///< u(1), profiles of parse_sps() alone; the lists are skipped
    std::uint8_t separate_colour_plane_flag;           ///< u(1), chroma_format_idc 3
    std::uint32_t pic_height_in_map_units; ///< ue(v) + 1, in macroblocks, or pairs of them without frame_mbs_only_flag
    std::uint8_t max_pic_order_cnt_lsb;    ///< ue(v) + 4: the base-2 logarithm, pic_order_cnt_type 0
    std::uint8_t constraint_set0_flag;     ///< u(1)
    std::uint8_t constraint_set1_flag;     ///< u(1)
    std::uint8_t constraint_set2_flag;     ///< u(1)
    std::uint8_t constraint_set3_flag;     ///< u(1)
    std::uint8_t constraint_set4_flag;     ///< u(1)
    std::uint8_t constraint_set5_flag;     ///< u(1)
    std::uint8_t reserved_zero_2bits;      ///< u(2), as read
    std::uint32_t seq_parameter_set_id;    ///< ue(v), not limited
    std::uint8_t max_num_ref_frames;       ///< ue(v), the low 8 bits
    std::uint8_t pic_order_cnt_type;       ///< ue(v), the low 8 bits
    std::uint32_t chroma_format_idc;       ///< ue(v), profiles of parse_sps() alone, and not inferred
    std::uint32_t pic_width_in_mbps;       ///< ue(v) + 1, in macroblocks
    std::uint32_t bit_depth_chroma;        ///< ue(v) + 8, profiles of parse_sps() alone, and not inferred
    std::uint32_t bit_depth_luma;          ///< ue(v) + 8, profiles of parse_sps() alone, and not inferred
    std::uint8_t log2_max_frame_num;       ///< ue(v) + 4, the low 8 bits
    std::uint32_t max_frame_num;           ///< 1 << (log2_max_frame_num modulo 32)
    std::uint8_t profile_idc;              ///< u(8)
    std::uint8_t level_idc;                ///< u(8), ten times the level
    std::uint8_t frame_mbs_only_flag;      ///< u(1)
    std::uint8_t mb_adaptive_frame_field_flag;           ///< u(1), without frame_mbs_only_flag
    std::uint8_t direct_8x8_inference_flag;              ///< u(1)
    std::uint8_t frame_cropping_flag;                    ///< u(1)
    std::uint32_t frame_crop_left_offset;                ///< ue(v), in crop units
    std::uint32_t frame_crop_right_offset;               ///< ue(v)
    std::uint32_t frame_crop_top_offset;                 ///< ue(v), in crop units
    std::uint32_t frame_crop_bottom_offset;              ///< ue(v)
    std::uint8_t vui_parameters_present_flag;            ///< u(1): the fields below are read
    std::uint8_t aspect_ratio_info_present_flag;         ///< u(1)
    std::uint8_t aspect_ratio_idc;                       ///< u(8), H.264 Table E-1
    std::uint32_t sar_width;                             ///< of the sample aspect ratio; kept when the idc is 17 to 254
    std::uint32_t sar_height;                            ///< likewise
    std::uint8_t overscan_info_present_flag;             ///< u(1)
    std::uint8_t overscan_info_appropriate_flag;         ///< u(1), overscan_appropriate_flag
    std::uint8_t video_signal_type_present_flag;         ///< u(1)
    std::uint8_t video_format;                           ///< u(3), H.264 Table E-2
    std::uint8_t video_full_range_flag;                  ///< u(1)
    std::uint8_t colour_description_present_flag;        ///< u(1)
    std::uint8_t colour_primaries;                       ///< u(8), H.264 Table E-3
    std::uint8_t transfer_characteristics;               ///< u(8), H.264 Table E-4
    std::uint8_t matrix_coefficients;                    ///< u(8), H.264 Table E-5
    std::uint8_t chroma_location_info_present_flag;      ///< u(1), chroma_loc_info_present_flag
    std::uint32_t chroma_sample_location_type_top_field; ///< ue(v), chroma_sample_loc_type_top_field
    std::uint32_t chroma_sample_location_type_bottom_field; ///< ue(v), chroma_sample_loc_type_bottom_field
    std::uint8_t timing_info_present_flag;                  ///< u(1)
    std::uint32_t num_units_in_ticks;                       ///< u(32), num_units_in_tick
    std::uint32_t time_scale;                               ///< u(32)
    std::uint8_t fixed_frame_rate_flag;                     ///< u(1)
    std::uint8_t nal_hrd_parameters_present_flag;           ///< u(1)
    std::uint8_t vcl_hrd_parameters_present_flag;           ///< u(1)
    std::uint8_t low_delay_hrd_flag;                        ///< u(1), with HRD parameters
    std::uint8_t pic_struct_present_flag;                   ///< u(1)
    std::uint8_t initial_cpb_removal_delay_length;          ///< u(5) + 1, bits, of the HRD parameters read last
    std::uint8_t cpb_removal_delay_length;                  ///< u(5) + 1, bits, likewise
    std::uint8_t dpb_output_delay_length;                   ///< u(5) + 1, bits, likewise
    std::uint8_t time_offset_length;                        ///< u(5), bits, likewise

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
