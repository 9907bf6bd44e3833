// What the rows of a stream add up to.
#pragma once

#include "bit_rate_meter.h"
#include "picture_rows.h"

#include <cstdint>
#include <limits>

namespace orv_h264 {

class frame_totals {
public:
    /// Takes the next row; two fields of a picture come one after the other.
    void add(const picture_row& row);

    /// Rows: frames, or fields.
    std::uint64_t frames() const noexcept { return row_count; }
    std::uint64_t pictures() const noexcept { return picture_count; }
    /// Pictures that decoding can begin with.
    std::uint64_t key_frames() const noexcept { return key_count; }
    /// Coded frames and coded fields.
    std::uint64_t coded_pictures() const noexcept { return coded; }

    // As in picture_row.
    std::uint64_t bytes() const noexcept { return size; }
    std::uint64_t unit_bytes() const noexcept { return of_units; }
    std::uint64_t padding() const noexcept { return of_padding; }
    std::uint64_t filler() const noexcept { return of_filler; }

    /// Rows whose duration is known: the rates are made of these.
    std::uint64_t timed_frames() const noexcept { return timed; }
    /// Of units and padding.
    const bit_rate_meter& bit_rate() const noexcept { return rate; }
    /// The mean of the units alone, bits a second.
    std::optional<double> unit_bit_rate() const noexcept;

    /// How many pictures lie from one key picture to the next; only with two of them.
    struct distance {
        std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
        std::uint64_t most = 0;
        double mean = 0;
    };
    std::optional<distance> key_distance() const;

private:
    void add_key();

    std::uint64_t row_count = 0;
    std::uint64_t picture_count = 0;
    std::uint64_t latest = 0; // picture, its number
    bool latest_is_key = false;
    std::uint64_t key_count = 0;
    std::uint64_t coded = 0;
    std::uint64_t size = 0;
    std::uint64_t of_units = 0;
    std::uint64_t of_padding = 0;
    std::uint64_t of_filler = 0;
    std::uint64_t timed = 0;
    std::uint64_t timed_unit_bytes = 0;
    std::uint64_t first_key = 0;
    std::uint64_t last_key = 0;
    distance between;
    bit_rate_meter rate;
};

} // namespace orv_h264
