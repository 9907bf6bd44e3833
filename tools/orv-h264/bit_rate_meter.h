// Bit rates of a stream from the sizes and durations of its frames.
#pragma once

#include <cstdint>
#include <optional>

namespace orv_h264 {

class bit_rate_meter {
public:
    /// Takes the next frame; one whose duration is not known counts for nothing.
    void add(std::uint64_t bytes, std::optional<double> seconds);

    /// The time that all frames take together, in decoding order.
    double seconds() const noexcept { return time; }

    /// Bits a second; nothing when no duration was known.
    std::optional<double> mean() const noexcept;

    /// The most bits in a second, of the seconds counted from the start; the bits of a frame are spread over its
    /// duration. Nothing when there is no whole second.
    std::optional<double> peak() const noexcept;

private:
    void close_second() noexcept;

    double time = 0;
    double bits = 0;
    double second_time = 0; // how much of the current second has gone
    double second_bits = 0;
    double most = 0;
    bool any_second = false;
};

} // namespace orv_h264
