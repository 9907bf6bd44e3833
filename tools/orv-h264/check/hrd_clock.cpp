#include "check/hrd_clock.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace orv_h264 {

namespace {

constexpr wide_number most = wide_number{1} << 126;

} // namespace

wide_number product(wide_number a, wide_number b) noexcept
{
    wide_number result = 0;
    if (__builtin_mul_overflow(a, b, &result))
        return (a < 0) == (b < 0) ? most : -most;
    return std::clamp(result, -most, most);
}

wide_number sum(wide_number a, wide_number b) noexcept
{
    return std::clamp(std::clamp(a, -most, most) + std::clamp(b, -most, most), -most, most);
}

wide_number floor_of(wide_number a, wide_number b) noexcept
{
    return a / b - (a % b < 0 ? 1 : 0);
}

wide_number ceil_of(wide_number a, wide_number b) noexcept
{
    return a / b + (a % b > 0 ? 1 : 0);
}

std::int64_t narrowed(wide_number a) noexcept
{
    using limits = std::numeric_limits<std::int64_t>;
    return static_cast<std::int64_t>(std::clamp<wide_number>(a, limits::min(), limits::max()));
}

std::optional<hrd_clock> clock_of(const h264::vui_parameters& vui) noexcept
{
    const h264::ratio rate = h264::field_rate(vui);
    if (rate.denominator == 0)
        return {};
    constexpr std::int64_t khz_90 = 90000;
    const std::uint64_t common = std::gcd(rate.numerator, rate.denominator);
    const auto parts = static_cast<std::int64_t>(rate.numerator / common); // of a second, that t_c is a multiple of
    hrd_clock clock;
    clock.second = std::lcm(parts, khz_90);
    clock.tick = static_cast<std::int64_t>(rate.denominator / common) * (clock.second / parts);
    clock.of_90_khz = clock.second / khz_90;
    return clock;
}

wide_number bit_clock::between(const hrd_time& from, wide_number units) const noexcept
{
    return sum(product(sum(units, -from.units), bit_rate), -product(from.bits, clock.second));
}

std::int64_t bit_clock::bits_between(const hrd_time& from, wide_number units) const noexcept
{
    return narrowed(floor_of(between(from, units), clock.second));
}

double bit_clock::seconds(const hrd_time& time) const noexcept
{
    return static_cast<double>(time.units) / static_cast<double>(clock.second) +
           static_cast<double>(time.bits) / static_cast<double>(bit_rate);
}

} // namespace orv_h264
