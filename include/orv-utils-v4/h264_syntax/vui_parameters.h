/// @file
/// vui_parameters(), H.264 clause E.1.1.
#pragma once

#include <orv-utils-v4/h264_syntax/hrd_parameters.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// vui_parameters(): how the pictures are to be shown and timed (clauses E.1.1 and E.2.1). A member that was not sent
/// holds what E.2.1 infers.
struct vui_parameters {
    bool aspect_ratio_info_present_flag = false;
    std::uint8_t aspect_ratio_idc = 0; ///< Table E-1; 255 is Extended_SAR
    std::uint16_t sar_width = 0;
    std::uint16_t sar_height = 0;
    bool overscan_info_present_flag = false;
    bool overscan_appropriate_flag = false;
    bool video_signal_type_present_flag = false;
    std::uint8_t video_format = 5; ///< Table E-2
    bool video_full_range_flag = false;
    bool colour_description_present_flag = false;
    std::uint8_t colour_primaries = 2;         ///< Table E-3
    std::uint8_t transfer_characteristics = 2; ///< Table E-4
    std::uint8_t matrix_coefficients = 2;      ///< Table E-5
    bool chroma_loc_info_present_flag = false;
    std::uint32_t chroma_sample_loc_type_top_field = 0;    ///< 0 to 5
    std::uint32_t chroma_sample_loc_type_bottom_field = 0; ///< 0 to 5
    bool timing_info_present_flag = false;
    std::uint32_t num_units_in_tick = 0; ///< above 0
    std::uint32_t time_scale = 0;        ///< units in a second, above 0
    bool fixed_frame_rate_flag = false;
    bool nal_hrd_parameters_present_flag = false;
    hrd_parameters nal_hrd_parameters;
    bool vcl_hrd_parameters_present_flag = false;
    hrd_parameters vcl_hrd_parameters;
    bool low_delay_hrd_flag = true; ///< inferred as 1 - fixed_frame_rate_flag
    bool pic_struct_present_flag = false;
    bool bitstream_restriction_flag = false;
    bool motion_vectors_over_pic_boundaries_flag = true;
    std::uint32_t max_bytes_per_pic_denom = 2;        ///< 0 to 16
    std::uint32_t max_bits_per_mb_denom = 1;          ///< 0 to 16
    std::uint32_t log2_max_mv_length_horizontal = 15; ///< 0 to 15; 16 in older editions
    std::uint32_t log2_max_mv_length_vertical = 15;   ///< 0 to 15; 16 in older editions
    std::uint32_t max_num_reorder_frames = 0;         ///< 0 to max_dec_frame_buffering
    std::uint32_t max_dec_frame_buffering = 0;        ///< max_num_ref_frames to MaxDpbFrames

    friend ORV_UTILS_V4_EXPORT bool operator==(const vui_parameters&, const vui_parameters&);
};

} // namespace orv_utils_v4::h264
