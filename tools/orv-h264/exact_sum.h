// Seconds added up without drift: a whole number and a fraction over the common denominator of what was added.
#pragma once

#include <orv-utils-v4/h264_syntax/picture_time.h>

#include <cstdint>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// Exact as long as the common denominator has 62 bits. When a time comes with which it has more, what was added so far
/// is rounded, once.
class exact_sum {
public:
    /// Adds a known time that is not negative.
    void add(h264::exact_time time) noexcept;

    /// The sum, rounded once.
    double value() const noexcept;

private:
    bool share_denominator(std::uint64_t other) noexcept;

    std::uint64_t whole = 0;
    std::uint64_t numerator = 0; // below the denominator
    std::uint64_t denominator = 1;
    double rounded = 0; // fractions of other denominators
};

} // namespace orv_h264
