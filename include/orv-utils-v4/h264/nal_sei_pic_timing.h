/// @file
/// The picture timing SEI message, H.264 clause D.1.3.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/nal_sps.h>
#include <orv-utils-v4/h2645_common/base_store.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstdint>
#include <vector>

namespace brenik {

/// Picture timing, pic_timing() of H.264 clause D.1.3: when a picture leaves the buffers, how its fields are shown, and
/// when it was taken. A parse does not clear the object: fields that the message does not carry keep their values.
class ORV_UTILS_V4_EXPORT h264_nal_sei_pic_timing {
public:
    /// A clock timestamp of the message.
    struct ORV_UTILS_V4_EXPORT timestamp_t {
        bool clock_timestamp_flag = false;  ///< u(1): the rest is sent
        std::uint8_t ct_type = 0;           ///< u(2): 0 progressive, 1 interlaced, 2 unknown
        bool nuit_field_based_flag = false; ///< u(1)
        std::uint8_t counting_type = 0;     ///< u(5), H.264 Table D-3
        bool full_timestamp_flag = false;   ///< u(1): seconds, minutes and hours are sent
        bool discontinuity_flag = false;    ///< u(1)
        bool cnt_dropped_flag = false;      ///< u(1)
        bool seconds_flag = false;          ///< u(1); true with full_timestamp_flag
        bool minutes_flag = false;          ///< u(1); true with full_timestamp_flag
        bool hours_flag = false;            ///< u(1); true with full_timestamp_flag
        std::uint8_t n_frames = 0;          ///< u(8)
        std::uint8_t seconds_value = 0;     ///< u(6), not limited (the standard: 0 to 59)
        std::uint8_t minutes_value = 0;     ///< u(6), not limited (the standard: 0 to 59)
        std::uint8_t hours_value = 0;       ///< u(5), not limited (the standard: 0 to 23)
        std::int32_t time_offset = 0;       ///< i(v), time_offset_length bits, in clock ticks

        /// "progressive", "interlaced", or "?" for another ct_type. Never to be freed.
        const char* ct_type_to_str() const;
    };

    std::uint32_t cpb_removal_delay = 0; ///< u(v), in clock ticks, when the SPS has HRD parameters; see parse()
    std::uint32_t dpb_output_delay = 0;  ///< u(v), likewise
    std::uint8_t pic_struct = 0;         ///< u(4), H.264 Table D-1, with pic_struct_present_flag
    std::vector<timestamp_t> timestamps; ///< NumClockTS() of them, with pic_struct_present_flag
    bool valid = false;                  ///< see parse()

    /// Reads the payload with the SPS that is active. Bits past the end read as zero. Both delays have as many bits as
    /// the longer initial_cpb_removal_delay_length_minus1 of the two HRD parameters says, not the lengths that the
    /// standard has for each; time_offset has the longer time_offset_length. Both HRD parameters count, present or not.
    /// @return true, and `valid` true; false, with `valid` as it was, when memory runs out for the timestamps
    bool parse(h2645_common_bitreader& br, const h264_nal_sps& sps);

    /// The same with the current SPS of the store.
    /// @return false with `valid` false, and nothing read, when there is none; otherwise see the other parse()
    bool parse(h2645_common_bitreader& br, const h2645_common_base_store<h264_nal_sps>& sps_store);

    /// How many clock timestamps pic_struct stands for, H.264 Table D-1: 1 to 3; 1 for a reserved value.
    std::uint32_t NumClockTS() const;

    /// What pic_struct stands for, H.264 Table D-1; "?" for a reserved value. Never to be freed.
    const char* pic_struct_to_str() const;
};

} // namespace brenik
