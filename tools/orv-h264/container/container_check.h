// What a container says of its pictures beside what the stream says itself: which can be begun with, and when they are
// shown.
#pragma once

#include "container/demuxer.h"
#include "picture_rows.h"
#include "problem_list.h"

#include <cstdint>
#include <optional>

namespace orv_h264 {

/// Seconds; not known where there are no ticks, or the fraction has more than 63 bits.
h264::exact_time time_of(std::optional<std::int64_t> ticks, container_ratio tick);

class container_check {
public:
    explicit container_check(container_ratio seconds_a_tick) : tick(seconds_a_tick) {}

    /// The next row in decoding order. What differs is kept as findings.
    void add(const picture_row& row);
    /// There is no further row.
    void finish();

    const problem_list& findings() const noexcept { return found; }

    std::uint64_t packets() const noexcept { return count; }
    /// Marked as places to begin; nothing where the container does not tell.
    std::optional<std::uint64_t> keys() const noexcept { return key_count; }
    /// Of the first and the last picture that the container shows, in ticks.
    std::optional<std::int64_t> first_pts() const noexcept { return earliest; }
    std::optional<std::int64_t> last_pts() const noexcept { return latest; }

private:
    /// A picture that is timed by both, in seconds.
    struct two_times {
        double stream = 0;
        double container = 0;
    };

    void add_key(const picture_row& row);
    void add_decoding(const picture_row& row);
    void add_times(const picture_row& row);
    bool differ(double stream, double container) const;

    container_ratio tick;
    problem_list found;
    std::uint64_t count = 0;
    std::optional<std::uint64_t> key_count;
    std::optional<std::int64_t> earliest;
    std::optional<std::int64_t> latest;
    std::optional<std::int64_t> last_dts;

    std::uint64_t timed = 0; // by both
    two_times first;         // of the pictures, as they are decoded
    two_times lowest;
    two_times highest;
    std::uint64_t first_offset = 0;
    std::uint64_t shifted = 0; // pictures whose times differ
    std::uint64_t first_shifted = 0;
};

} // namespace orv_h264
