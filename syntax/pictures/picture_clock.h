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

/// A time that goes on by ticks: as long as they stay the same they are counted, and the fraction is made of the count.
class tick_time {
public:
    explicit tick_time(exact_time start) noexcept : base(start) {}

    /// `count` times `by` later, a tick that is reduced, and known.
    void add(std::uint64_t count, ratio by) noexcept;
    exact_time value() const noexcept;

private:
    exact_time base;
    std::uint64_t ticks = 0; // since then
    ratio tick = {0, 1};
};

class picture_clock {
public:
    /// Tells `times` of a picture that begins with this access unit, as far as decoding order tells them.
    void begin(const access_unit& unit, const timestamp* stamp, picture_times& times) noexcept;
    /// The second field of that picture, whose first one is shown for `fields`; its own times.
    picture_times add_second_field(const access_unit& unit, const timestamp* stamp, std::uint8_t fields,
                                   picture_times& times) noexcept;
    /// The picture is complete, and is shown for `fields`.
    void end(std::uint8_t fields, picture_times& times) noexcept;
    /// The picture, shown for `fields`, is the next one in output order.
    void output(std::uint8_t fields, picture_times& times) noexcept;

private:
    static constexpr std::uint8_t most_fields = 7; // of two fields with timing messages of their own there may be more

    void set_tick(const access_unit& unit) noexcept;
    void take_rate(const access_unit& unit, exact_time decoding, picture_times& times) const noexcept;
    bool take_hrd(const access_unit& unit, picture_times& times) noexcept;
    void take_stamp(const timestamp* stamp, picture_times& times) noexcept;

    ratio sent;        // the tick of the active SPS, in seconds
    ratio tick;        // the same, reduced
    exact_time period; // removal of the access unit with the latest buffering period; unknown where nothing tells it
    bool any_period = false;
    tick_time decoded{{0, 1}}; // when the next picture is decoded, at a constant rate
    tick_time shown{{0, 0}};   // when it is shown, likewise
    bool any_shown = false;
    exact_time durations[most_fields + 1]; // of so many ticks
    unwrapped decoding_stamps;
    unwrapped presentation_stamps;
    bool any_stamp = false;
};

} // namespace orv_utils_v4::h264
