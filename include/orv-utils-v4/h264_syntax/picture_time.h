/// @file
/// Times of pictures: exact fractions of a second, from timing messages and HRD parameters (H.264 clauses C.1.2, C.2.2
/// and D.2.3), from a constant rate (E.2.1), or from timestamps of the caller.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/derived.h>
#include <orv-utils-v4/h264_syntax/sei/timing.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// Seconds as a reduced fraction; a denominator of 0 stands for an unknown time.
struct exact_time {
    std::int64_t numerator = 0;
    std::int64_t denominator = 0;

    /// It is known.
    explicit operator bool() const noexcept { return denominator != 0; }
};

/// Equal times, or both unknown.
inline bool operator==(const exact_time& a, const exact_time& b) noexcept
{
    return a.numerator == b.numerator && a.denominator == b.denominator;
}

/// `start` and `count` times `unit` seconds; unknown where one of them is, or the sum does not fit 64 bits.
ORV_UTILS_V4_EXPORT exact_time time_after(exact_time start, std::uint64_t count, ratio unit) noexcept;

/// Where the times of a picture come from.
enum class time_source : std::uint8_t {
    none,          ///< nothing tells them
    assumed_rate,  ///< num_units_in_tick and time_scale, without a promise of the stream that they are kept to
    caller,        ///< timestamps that came with the bytes
    constant_rate, ///< fixed_frame_rate_flag
    hrd,           ///< buffering periods and picture timing
};

/// Times of a picture, the best that are known: those of the last time_source that tells them.
struct picture_times {
    time_source source = time_source::none;
    exact_time decoding;           ///< of its first access unit: its removal from the coded picture buffer
    exact_time presentation;       ///< its output; from a rate it is told with the output
    exact_time duration;           ///< as many fields as it is shown
    exact_time decoding_stamp;     ///< the caller's, its wraps undone; or unknown
    exact_time presentation_stamp; ///< likewise
};

/// A timestamp of a container or a network packet. It is that of the first access unit that begins in its piece.
struct timestamp {
    std::int64_t presentation = 0;
    std::int64_t decoding = 0; ///< where `has_decoding`
    bool has_decoding = false;
    std::uint32_t clock = 90000; ///< units in a second, above 0
    std::uint8_t bits = 64;      ///< 33 (MPEG-2 systems) and 32 (RTP) begin again at 0
};

/// A time of day (D.2.3, Table D-3), as far as timestamps have told it so far.
struct time_of_day {
    std::uint8_t hours = 0;
    std::uint8_t minutes = 0;
    std::uint8_t seconds = 0;
    std::uint32_t frames = 0;    ///< n_frames
    bool frames_dropped = false; ///< cnt_dropped_flag
    std::int32_t ticks = 0;      ///< time_offset: clock ticks to be added
};

/// Carries what a clock timestamp does not send over from the one before it.
class ORV_UTILS_V4_EXPORT day_clock {
public:
    /// The time of the next timestamp of the stream, one with clock_timestamp_flag.
    time_of_day next(const clock_timestamp& stamp) noexcept;

private:
    time_of_day latest;
};

} // namespace orv_utils_v4::h264
