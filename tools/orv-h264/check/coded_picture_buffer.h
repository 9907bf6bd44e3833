// A coded picture buffer of the hypothetical reference decoder, as one schedule fills it (H.264 C.1.1, C.1.2, C.3).
#pragma once

#include "check/hrd_clock.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

namespace orv_h264 {

/// A schedule of hrd_parameters().
struct hrd_schedule {
    bool nal = true; ///< of the NAL HRD; else of the VCL HRD
    std::uint32_t SchedSelIdx = 0;
    std::uint64_t bit_rate = 0; ///< BitRate[ SchedSelIdx ]
    std::int64_t size = 0;      ///< CpbSize[ SchedSelIdx ]
    bool cbr = false;           ///< cbr_flag[ SchedSelIdx ]
    bool low_delay = false;     ///< low_delay_hrd_flag
};

/// An access unit as the buffer gets it.
struct hrd_access_unit {
    std::uint64_t number = 0;
    std::uint64_t unit = 0;   ///< the number of its first one
    std::uint64_t offset = 0; ///< where that begins, for a person
    std::int64_t ticks = 0;   ///< of t_c from the removal of access unit 0 to its nominal removal
    std::int64_t bits = 0;    ///< b( n )
};

/// What stands in a buffering period for one schedule.
struct hrd_delays {
    std::uint32_t delay = 0;  ///< initial_cpb_removal_delay
    std::uint32_t offset = 0; ///< initial_cpb_removal_delay_offset
};

/// What comes of an access unit by the time that its last bit has arrived.
struct cpb_arrival {
    std::int64_t missing = 0; ///< bits that are not there at the nominal removal: the buffer underflows
    std::int64_t excess = 0;  ///< bits above CpbSize while it arrives: the buffer overflows
    double removal_time = 0;  ///< nominal, in seconds
    double excess_time = 0;   ///< when there are most of these
    /// Of a buffering period that begins on the way: Floor( Δt_g,90 ) and Ceil( Δt_g,90 ), (C-15).
    std::optional<std::pair<std::int64_t, std::int64_t>> gap = {};
};

/// An access unit that was removed.
struct cpb_step {
    hrd_access_unit unit;
    double arrival_begin = 0; ///< t_ai, seconds behind that of access unit 0
    double arrival_end = 0;   ///< t_af
    double removal = 0;       ///< t_r
    std::int64_t before = 0;  ///< fullness in bits directly before
    std::int64_t after = 0;   ///< below 0 where the last bits are still to come
    bool underflow = false;
    bool overflow = false; ///< while it arrived
};

class coded_picture_buffer {
public:
    using step_sink = std::function<void(const cpb_step&)>;

    /// From access unit 0 on.
    coded_picture_buffer(const hrd_schedule& by, const hrd_clock& clock, const hrd_delays& first);

    const hrd_schedule& schedule() const noexcept { return how; }

    /// The next access unit arrives, with the delays of its buffering period where one begins with it. What is removed
    /// by then goes to `removed`.
    cpb_arrival arrive(const hrd_access_unit& unit, const hrd_delays* period, const step_sink& removed);
    /// The stream has ended: all that is left is removed.
    void flush(const step_sink& removed);

private:
    struct waiting_unit {
        hrd_access_unit unit;
        hrd_time begin;
        hrd_time end;
        wide_number removal = 0; // in units of the clock
        bool underflow = false;
        bool overflow = false;
    };

    /// More wait in the buffer of a broken stream alone: the oldest go.
    static constexpr std::size_t most_waiting = 8192;

    hrd_time first_bit(wide_number nominal, const hrd_delays* period) const;
    wide_number removal_of(wide_number nominal) const;
    void remove_first(std::int64_t before, const step_sink& removed);

    hrd_schedule how;
    bit_clock bits;
    wide_number first_removal; // of access unit 0
    hrd_delays latest;
    hrd_time arrived; // the last bit so far
    std::int64_t fullness = 0;
    bool any = false;
    std::deque<waiting_unit> waiting;
};

} // namespace orv_h264
