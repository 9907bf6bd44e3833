// What the frames of a stream add up to.
#pragma once

#include "bit_rate_meter.h"
#include "frame_finder.h"

#include <cstdint>
#include <limits>

namespace orv_h264 {

class frame_totals {
public:
    void add(const frame& f);

    std::uint64_t frames() const noexcept { return count; }
    std::uint64_t key_frames() const noexcept { return keys; }
    /// Coded frames and coded fields.
    std::uint64_t coded_pictures() const noexcept { return coded; }
    std::uint64_t bytes() const noexcept { return size; }
    const bit_rate_meter& bit_rate() const noexcept { return rate; }

    /// How many frames lie from one key frame to the next; only with two key frames.
    struct distance {
        std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
        std::uint64_t most = 0;
        double mean = 0;
    };
    std::optional<distance> key_distance() const;

private:
    void add_key();

    std::uint64_t count = 0;
    std::uint64_t keys = 0;
    std::uint64_t coded = 0;
    std::uint64_t size = 0;
    std::uint64_t first_key = 0;
    std::uint64_t last_key = 0;
    distance between;
    bit_rate_meter rate;
};

} // namespace orv_h264
