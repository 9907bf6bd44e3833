// Bit rates of a stream from the sizes and durations of its frames. Durations add up exactly; rates are made of doubles
// that are rounded once each.
#pragma once

#include "exact_sum.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace orv_h264 {

class bit_rate_meter {
public:
    /// Takes seconds that are alike, counted from the start: the bits of each, and how many.
    using second_sink = std::function<void(double bits, std::uint64_t count)>;

    /// Takes the next frame; one whose duration is not known, or 0, counts for nothing. Seconds that it completes go to
    /// `each`.
    void add(std::uint64_t bytes, h264::exact_time duration, const second_sink& each = {});

    /// The time that all frames take together, in decoding order.
    double seconds() const noexcept { return time.value(); }

    /// Bits a second; nothing when no duration was known.
    std::optional<double> mean() const noexcept;

    /// The most bits in a second, of the seconds counted from the start; the bits of a frame are spread over its
    /// duration. Nothing when there is no whole second.
    std::optional<double> peak() const noexcept;

private:
    exact_sum time;
    std::uint64_t all_bytes = 0;
    double second_bits = 0; // of the second that goes on
    double most = 0;
    bool any_second = false;
};

} // namespace orv_h264
