// Exact times, and the times of day of clock timestamps.
#include <orv-utils-v4/h264_syntax/picture_time.h>

#include <limits>
#include <numeric>

namespace orv_utils_v4::h264 {

namespace {

constexpr std::uint64_t most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());

/// a * b, or false where that does not fit.
bool multiply(std::uint64_t a, std::uint64_t b, std::uint64_t& product)
{
    if (b != 0 && a > most / b)
        return false;
    product = a * b;
    return true;
}

} // namespace

exact_time time_after(exact_time start, std::uint64_t count, ratio unit) noexcept
{
    if (!start || unit.denominator == 0 || start.denominator < 0 || unit.denominator > most)
        return {};
    const std::uint64_t common = std::gcd(unit.numerator, unit.denominator);
    const std::uint64_t of_start = static_cast<std::uint64_t>(start.denominator);
    const std::uint64_t of_unit = unit.denominator / common;
    const std::uint64_t shared = std::gcd(of_start, of_unit);
    std::uint64_t denominator = 0;
    std::uint64_t added = 0;
    if (!multiply(of_start, of_unit / shared, denominator) || !multiply(count, unit.numerator / common, added) ||
        !multiply(added, of_start / shared, added))
        return {};
    const bool negative = start.numerator < 0;
    std::uint64_t before =
        negative ? static_cast<std::uint64_t>(-(start.numerator + 1)) + 1 : static_cast<std::uint64_t>(start.numerator);
    if (!multiply(before, of_unit / shared, before) || (!negative && added > most - before))
        return {};
    const std::int64_t sum = static_cast<std::int64_t>(added) +
                             (negative ? -static_cast<std::int64_t>(before) : static_cast<std::int64_t>(before));
    const std::int64_t divisor = std::gcd(sum, static_cast<std::int64_t>(denominator));
    return {sum / divisor, static_cast<std::int64_t>(denominator) / divisor};
}

time_of_day day_clock::next(const clock_timestamp& stamp) noexcept
{
    const bool full = stamp.full_timestamp_flag;
    if (full || stamp.seconds_flag)
        latest.seconds = stamp.seconds_value;
    if (full || stamp.minutes_flag)
        latest.minutes = stamp.minutes_value;
    if (full || stamp.hours_flag)
        latest.hours = stamp.hours_value;
    latest.frames = stamp.n_frames;
    latest.frames_dropped = stamp.cnt_dropped_flag;
    latest.ticks = stamp.time_offset;
    return latest;
}

} // namespace orv_utils_v4::h264
