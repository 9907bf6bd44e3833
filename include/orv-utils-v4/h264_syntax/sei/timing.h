/// @file
/// SEI payloads of H.264 Annex D: when pictures leave the buffers and what clock they show (0 and 1).
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/bounded_list.h>
#include <orv-utils-v4/h264_syntax/hrd_parameters.h>

#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

/// The first delays of one schedule in buffering_period(), in units of a 90 kHz clock.
struct initial_cpb_removal {
    std::uint32_t initial_cpb_removal_delay;
    std::uint32_t initial_cpb_removal_delay_offset;

    friend ORV_UTILS_V4_EXPORT bool operator==(const initial_cpb_removal&, const initial_cpb_removal&);
};

/// buffering_period(), clauses D.1.2 and D.2.2: payload 0. The SPS that it names tells how many entries there are.
struct buffering_period {
    std::uint32_t seq_parameter_set_id = 0;                                     ///< 0 to 31
    bounded_list<initial_cpb_removal, hrd_parameters::most_specifications> nal; ///< with NalHrdBpPresentFlag
    bounded_list<initial_cpb_removal, hrd_parameters::most_specifications> vcl; ///< with VclHrdBpPresentFlag

    friend ORV_UTILS_V4_EXPORT bool operator==(const buffering_period&, const buffering_period&);
};

/// A clock timestamp of pic_timing(). Where a value is not sent, that of the timestamp before it holds (D.2.3).
struct clock_timestamp {
    bool clock_timestamp_flag = false;
    std::uint8_t ct_type = 0; ///< 0 to 2, Table D-2
    bool nuit_field_based_flag = false;
    std::uint8_t counting_type = 0; ///< 0 to 6, Table D-3
    bool full_timestamp_flag = false;
    bool discontinuity_flag = false;
    bool cnt_dropped_flag = false;
    std::uint8_t n_frames = 0;
    bool seconds_flag = false;
    std::uint8_t seconds_value = 0; ///< 0 to 59
    bool minutes_flag = false;
    std::uint8_t minutes_value = 0; ///< 0 to 59
    bool hours_flag = false;
    std::uint8_t hours_value = 0; ///< 0 to 23
    std::int32_t time_offset = 0; ///< clock ticks; of time_offset_length bits

    friend ORV_UTILS_V4_EXPORT bool operator==(const clock_timestamp&, const clock_timestamp&);
};

/// pic_timing(), clauses D.1.3 and D.2.3: payload 1. The SPS tells which of its elements are there.
struct pic_timing {
    static constexpr std::size_t most_timestamps = 3;
    static constexpr std::uint8_t highest_pic_struct = 8; ///< those above it are reserved

    std::uint32_t cpb_removal_delay = 0; ///< clock ticks
    std::uint32_t dpb_output_delay = 0;  ///< clock ticks
    std::uint8_t pic_struct = 0;         ///< 0 to 8, Table D-1
    clock_timestamp timestamps[most_timestamps];

    /// NumClockTS, Table D-1; 0 for a reserved pic_struct.
    unsigned NumClockTS() const noexcept
    {
        constexpr std::uint8_t table_d_1[highest_pic_struct + 1] = {1, 1, 1, 2, 2, 3, 3, 2, 3};
        return pic_struct <= highest_pic_struct ? table_d_1[pic_struct] : 0U;
    }

    friend ORV_UTILS_V4_EXPORT bool operator==(const pic_timing&, const pic_timing&);
};

} // namespace orv_utils_v4::h264
