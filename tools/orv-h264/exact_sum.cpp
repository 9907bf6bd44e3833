#include "exact_sum.h"

#include <numeric>

namespace orv_h264 {

void exact_sum::add(h264::exact_time time) noexcept
{
    const auto ticks = static_cast<std::uint64_t>(time.numerator);
    const auto rate = static_cast<std::uint64_t>(time.denominator);
    if (!share_denominator(rate)) {
        rounded += static_cast<double>(numerator) / static_cast<double>(denominator);
        numerator = 0;
        denominator = rate;
    }
    whole += ticks / rate;
    numerator += ticks % rate * (denominator / rate);
    if (numerator >= denominator) {
        numerator -= denominator;
        ++whole;
    }
}

/// Makes the denominator a multiple of `other`; false, with nothing changed, where that has too many bits.
bool exact_sum::share_denominator(std::uint64_t other) noexcept
{
    constexpr std::uint64_t most = std::uint64_t{1} << 62;
    const std::uint64_t factor = other / std::gcd(denominator, other);
    if (factor == 0 || denominator > most / factor)
        return false;
    denominator *= factor;
    numerator *= factor;
    return true;
}

double exact_sum::value() const noexcept
{
    const double fraction = static_cast<double>(numerator) / static_cast<double>(denominator);
    return static_cast<double>(whole) + (fraction + rounded);
}

} // namespace orv_h264
