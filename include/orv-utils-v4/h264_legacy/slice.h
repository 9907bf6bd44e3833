/// @file
/// The first fields of a slice header for the legacy interface, H.264 clause 7.3.3.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_legacy/nal_parser.h>
#include <orv-utils-v4/h264_legacy/sps.h>

#include <cstdint>

/// The first fields of a slice header, up to bottom_field_flag.
struct h264_nal_slice_info {
    std::uint32_t first_mb_in_slice = 0;    ///< ue(v)
    std::uint32_t slice_type = 0;           ///< ue(v), as coded: 0 to 9
    std::uint32_t pic_parameter_set_id = 0; ///< ue(v)
    std::uint8_t colour_plane_id = 0;       ///< u(2), written with separate_colour_plane_flag alone
    std::uint32_t frame_num = 0;            ///< u(v), log2_max_frame_num bits; 0xFFFFFFFF when they are more than 24
    std::uint8_t field_pic_flag = 0;        ///< u(1); 0 with frame_mbs_only_flag
    std::uint8_t bottom_field_flag = 0;     ///< u(1); 0 without field_pic_flag
};

/// Reads the first fields of the slice that `st` describes, with the stream's SPS. Bits past the payload read as zero.
/// @return 1; 0, with `info` as it was, when there is no payload
ORV_UTILS_V4_EXPORT int h264_slice_parse(h264_nal_slice_info& info, h264_nal_parser_state& st, h264_sps& sps);
