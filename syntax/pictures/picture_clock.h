// The times of pictures in decoding order (clauses C.1.2 and C.2.2 of H.264), in output order at a constant rate
// (E.2.1), and those of the caller. Fractions are added exactly.
#pragma once

#include <orv-utils-v4/h264_syntax/picture.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// Counters of some bits that begin again at 0, told without their wraps: each lies as near to the one before as it
/// can.
class unwrapped {
public:
    std::int64_t next(std::int64_t value, unsigned bits) noexcept;

private:
    std::int64_t latest = 0;
    bool any = false;
};

class picture_clock {
public:
    /// Tells `times` of a picture that begins with this access unit, as far as decoding order tells them.
    void begin(const access_unit& unit, const timestamp* stamp, picture_times& times) noexcept;
    /// The second field of that picture.
    void add_second_field(const access_unit& unit, const timestamp* stamp, picture_times& times) noexcept;
    /// The picture is complete, and is shown for `fields`.
    void end(std::uint8_t fields, picture_times& times) noexcept;
    /// The picture is the next one in output order.
    void output(picture_times& times) noexcept;

private:
    bool take_hrd(const access_unit& unit, picture_times& times) noexcept;
    void take_stamp(const timestamp* stamp, picture_times& times) noexcept;

    ratio tick;                  // of the active SPS, in seconds
    exact_time period;           // removal of the access unit with the latest buffering period
    exact_time decoded = {0, 1}; // when the next picture is decoded, at a constant rate
    exact_time shown;            // when it is shown, likewise
    bool any_shown = false;
    exact_time duration; // of so many fields at this tick, which most pictures have in common
    std::uint8_t shown_fields = 0;
    ratio shown_tick;
    unwrapped decoding_stamps;
    unwrapped presentation_stamps;
    bool any_stamp = false;
};

} // namespace orv_utils_v4::h264
