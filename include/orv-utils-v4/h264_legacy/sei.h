/// @file
/// SEI messages and picture timing for the legacy interface, H.264 clauses 7.3.2.3.1 and D.1.3.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_legacy/sps.h>

#include <cstdint>

/// One SEI message, as h264_sei_read_pair() finds it. The pointers point into the caller's buffer.
struct h264_sei_pair {
    std::uint8_t valid = 0;               ///< 1 when the whole message lies inside the range given
    std::uint32_t payload_type = 0;       ///< the sum of the type bytes read so far
    std::uint32_t payload_size = 0;       ///< the sum of the size bytes read so far
    const unsigned char* start = nullptr; ///< where the message begins
    const unsigned char* data = nullptr;  ///< the first byte of the payload; null until the size is complete
    const unsigned char* fence = nullptr; ///< `data` + `payload_size`, past the range when the message is not valid
};

/// Reads the SEI message that begins at `s`. The byte of the RBSP's trailing bits reads as a message without a size,
/// and ends a walk with `valid` 0.
/// @return where the next message begins; `sf` when there is no whole message
ORV_UTILS_V4_EXPORT const unsigned char* h264_sei_read_pair(h264_sei_pair* pair, const unsigned char* s,
                                                            const unsigned char* sf);

/// What picture timing says of a picture.
struct h264_sei_picture_timing_info {
    std::uint32_t cpb_removal_delay = 0; ///< u(v), cpb_removal_delay_length bits; 0xFFFFFFFF when more than 24
    std::uint32_t dpb_output_delay = 0;  ///< u(v), dpb_output_delay_length bits; 0xFFFFFFFF when more than 24
    std::uint32_t pic_struct = 0;        ///< u(4), H.264 Table D-1
    std::uint32_t field_duration = 0;    ///< how many fields long the picture is shown; 0 for a reserved pic_struct
};

/// Reads the picture timing payload [`s`, `sf`) up to pic_struct, with the stream's SPS. `field_duration` is 2 when
/// pic_struct is not sent. Bits past the payload read as zero.
/// @return 1; 0 for an empty payload
ORV_UTILS_V4_EXPORT int h264_sei_picture_timing_info_parse(h264_sei_picture_timing_info* pt, const unsigned char* s,
                                                           const unsigned char* sf, h264_sps& sps);

/// How many fields long the picture is shown by the first picture timing message of the SEI RBSP [`s`, `sf`); 2 without
/// one.
ORV_UTILS_V4_EXPORT int h264_sei_get_field_duration(h264_sps& sps, const unsigned char* s, const unsigned char* sf);
