#include "bit_rate_meter.h"

#include <algorithm>
#include <cmath>

namespace orv_h264 {

void bit_rate_meter::add(std::uint64_t bytes, h264::exact_time duration, const second_sink& each)
{
    if (!duration || duration.numerator <= 0)
        return;
    const double start = time.value();
    time.add(duration);
    const double end = time.value();
    all_bytes += bytes;

    const double bits = 8.0 * static_cast<double>(bytes);
    const double next_second = std::floor(start) + 1;
    if (end < next_second) {
        second_bits += bits;
        return;
    }
    const double rate = bits * static_cast<double>(duration.denominator) / static_cast<double>(duration.numerator);
    const double complete = second_bits + rate * (next_second - start);
    most = std::max(most, complete);
    if (each)
        each(complete, 1);
    any_second = true;
    const double last_second = std::floor(end);
    if (last_second > next_second) {
        most = std::max(most, rate);
        if (each)
            each(rate, static_cast<std::uint64_t>(last_second - next_second));
    }
    second_bits = rate * (end - last_second);
}

std::optional<double> bit_rate_meter::mean() const noexcept
{
    const double seconds = time.value();
    return seconds > 0 ? std::optional(8.0 * static_cast<double>(all_bytes) / seconds) : std::nullopt;
}

std::optional<double> bit_rate_meter::peak() const noexcept
{
    return any_second ? std::optional(most) : std::nullopt;
}

} // namespace orv_h264
