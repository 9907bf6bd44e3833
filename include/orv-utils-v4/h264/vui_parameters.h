/// @file
/// Video usability information, H.264 clause E.1.1.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/hrd_parameters.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstdint>

namespace brenik {

/// video_format, H.264 Table E-2.
enum ORV_UTILS_V4_EXPORT h264_video_format : std::uint8_t {
    h264_video_format_component = 0,
    h264_video_format_pal = 1,
    h264_video_format_ntsc = 2,
    h264_video_format_secam = 3,
    h264_video_format_mac = 4,
    h264_video_format_unspecified = 5,
};

/// The name of a video format; "?" for any value above 5. Never null, never to be freed.
ORV_UTILS_V4_EXPORT const char* h264_video_format_to_str(h264_video_format v);

/// Video usability information: vui_parameters() of H.264 clause E.1.1. A group whose present flag is 0 leaves its
/// fields as they were.
class ORV_UTILS_V4_EXPORT h264_vui_parameters {
public:
    bool aspect_ratio_info_present_flag = false; ///< u(1)
    std::uint8_t aspect_ratio_idc = 0;           ///< u(8), H.264 Table E-1
    bool extended_sar = false;                   ///< set when aspect_ratio_idc is 255, never cleared
    std::uint16_t sar_width = 0;             ///< of Table E-1, or u(16) for aspect_ratio_idc 255; 0 for 0 and 17 to 254
    std::uint16_t sar_height = 0;            ///< likewise
    bool overscan_info_present_flag = false; ///< u(1)
    bool overscan_appropriate_flag = false;  ///< u(1)
    bool video_signal_type_present_flag = false;           ///< u(1)
    std::uint8_t video_format = 0;                         ///< u(3), a value of h264_video_format; 6 and 7 are reserved
    bool video_full_range_flag = false;                    ///< u(1)
    bool colour_description_present_flag = false;          ///< u(1)
    std::uint8_t colour_primaries = 0;                     ///< u(8), H.264 Table E-3
    std::uint8_t transfer_characteristics = 0;             ///< u(8), H.264 Table E-4
    std::uint8_t matrix_coefficients = 0;                  ///< u(8), H.264 Table E-5
    bool chroma_loc_info_present_flag = false;             ///< u(1)
    std::uint32_t chroma_sample_loc_type_top_field = 0;    ///< ue(v)
    std::uint32_t chroma_sample_loc_type_bottom_field = 0; ///< ue(v)
    bool timing_info_present_flag = false;                 ///< u(1)
    std::uint32_t num_units_in_tick = 0; ///< u(32), units of 1 / time_scale seconds in a tick, that is in a field
    std::uint32_t time_scale = 0;        ///< u(32), units in a second
    bool fixed_frame_rate_flag = false;  ///< u(1)
    bool nal_hrd_parameters_present_flag = false;         ///< u(1)
    h264_hrd_parameters nal_hrd;                          ///< the HRD parameters of the NAL HRD
    bool vcl_hrd_parameters_present_flag = false;         ///< u(1)
    h264_hrd_parameters vcl_hrd;                          ///< the HRD parameters of the VCL HRD
    bool low_delay_hrd_flag = false;                      ///< u(1), only with HRD parameters
    bool pic_struct_present_flag = false;                 ///< u(1)
    bool bitstream_restriction_flag = false;              ///< u(1)
    bool motion_vectors_over_pic_boundaries_flag = false; ///< u(1)
    std::uint32_t max_bytes_per_pic_denom = 0;            ///< ue(v)
    std::uint32_t max_bits_per_mb_denom = 0;              ///< ue(v)
    std::uint32_t log2_max_mv_length_horizontal = 0;      ///< ue(v)
    std::uint32_t log2_max_mv_length_vertical = 0;        ///< ue(v)
    std::uint32_t max_num_reorder_frames = 0;             ///< ue(v)
    std::uint32_t max_dec_frame_buffering = 0;            ///< ue(v)
    bool valid = false; ///< the latest parse ended well; false when HRD parameters failed

    /// Reads the structure, without trailing bits. Bits past the end read as zero; no value is limited.
    /// @return false, with `valid` false and the fields read so far kept, when HRD parameters fail
    /// @throws h2645_common_malformed_code from the bit reader; `valid` stays as it was
    bool parse(h2645_common_bitreader& br);

    /// The name of `video_format`.
    const char* video_format_to_str() const;
};

} // namespace brenik
