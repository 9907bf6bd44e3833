/// @file
/// Cutting a stream into frames by the types of its units, frame_num and picture timing: the legacy interface's answer
/// to H.264 clause 7.4.1.2.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_legacy/nal_parser.h>
#include <orv-utils-v4/h264_legacy/sps.h>

#include <cstddef>
#include <cstdint>

/// What h264_common_frame_scan() found of a frame. The pointers point into the caller's input.
struct h264_common_frame_scan_info {
    std::uint8_t complete = 0;       ///< 1 when the frame's end was found
    std::uint8_t need_more_data = 0; ///< 1 when the input ended before the frame's end could be known
    std::uint8_t has_aud = 0;        ///< an access unit delimiter was passed
    std::uint8_t has_sps = 0;        ///< an SPS was passed, and read
    std::uint8_t has_pps = 0;        ///< a PPS was passed
    std::uint8_t has_sei = 0;        ///< an SEI unit was passed
    std::uint8_t has_slice = 0;      ///< a coded slice was passed
    /// How many fields long the frame is shown; 2 unless picture timing says otherwise.
    std::uint32_t field_duration = 0;
    const unsigned char* frame_start = nullptr; ///< the framing of its first unit
    const unsigned char* frame_end = nullptr;   ///< the framing of the unit that begins the next frame
};

/// Bits of the `flags` of h264_common_frame_scan().
enum ORV_UTILS_V4_EXPORT h264_common_frame_scan_flags : std::uint32_t {
    h264_common_frame_scan_split_fields = 1, ///< each field of a pair of fields is a frame of its own
};

/// Finds the frame that begins in [`s`, `sf`) and where it ends. Feed whole units: the end of the input ends a unit.
///
/// When `complete` is set, the frame is [`frame_start`, `frame_end`) and the next call begins at the result. When
/// `need_more_data` is set, the result is `frame_start`: call again from there with more input; at the end of a stream
/// what lies there is its last frame. When neither is set, `out` was too small for a unit (`frame_start` is set) or no
/// unit was found before the frame began.
///
/// Frames end before the SEI, SPS, PPS, AUD, end of sequence or end of stream that follows a slice, or at a slice with
/// another frame_num. The two fields of a frame stay together unless `split_fields` is set.
/// @param info what was found; what it held before does not matter
/// @param sps_updated set when an SPS was read into `sps`; never cleared
/// @param sps the stream's SPS; keep it from call to call
/// @param s where the frame begins
/// @param sf the end of the input
/// @param nal_length_size 0 for Annex B, 1 to 4 for length prefixes
/// @param out room for the RBSP of the largest unit
/// @param out_size the bytes of that room
/// @param flags h264_common_frame_scan_flags; other bits are ignored
/// @return where the next call begins
ORV_UTILS_V4_EXPORT const unsigned char* h264_common_frame_scan(h264_common_frame_scan_info& info, bool& sps_updated,
                                                                h264_sps& sps, const unsigned char* s,
                                                                const unsigned char* sf, int nal_length_size,
                                                                unsigned char* out, std::size_t out_size,
                                                                unsigned int flags);

/// What h264_common_frame_scan() does for each unit of a frame: notes its kind in `info`, reads an SPS into `sps`, and
/// takes the field duration from picture timing. Bits past the payload read as zero.
ORV_UTILS_V4_EXPORT void h264_common_frame_scan_on_NAL(h264_common_frame_scan_info& info, bool& sps_updated,
                                                       h264_sps& sps, h264_nal_parser_state& st);
