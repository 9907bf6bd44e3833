#include "bit_rate_meter.h"

#include <algorithm>
#include <cmath>

namespace orv_h264 {

namespace {

// What sums of durations may be off by.
constexpr double rounding = 1e-9;

} // namespace

void bit_rate_meter::add(std::uint64_t bytes, std::optional<double> seconds)
{
    if (!seconds || *seconds <= 0)
        return;
    const double frame_bits = 8.0 * static_cast<double>(bytes);
    const double rate = frame_bits / *seconds;
    time += *seconds;
    bits += frame_bits;

    const double here = std::min(*seconds, 1 - second_time);
    second_time += here;
    second_bits += rate * here;
    if (second_time < 1 - rounding)
        return;
    close_second();
    const double left = std::max(0.0, *seconds - here);
    const double whole_seconds = std::floor(left + rounding);
    if (whole_seconds >= 1)
        most = std::max(most, rate);
    second_time = std::max(0.0, left - whole_seconds);
    second_bits = rate * second_time;
}

std::optional<double> bit_rate_meter::mean() const noexcept
{
    return time > 0 ? std::optional(bits / time) : std::nullopt;
}

std::optional<double> bit_rate_meter::peak() const noexcept
{
    return any_second ? std::optional(most) : std::nullopt;
}

void bit_rate_meter::close_second() noexcept
{
    most = std::max(most, second_bits);
    any_second = true;
}

} // namespace orv_h264
