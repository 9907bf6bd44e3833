#include "container/container_check.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

double seconds_of(h264::exact_time time)
{
    return static_cast<double>(time.numerator) / static_cast<double>(time.denominator);
}

/// The stream tells the times itself: they are not counted from a rate that was assumed.
bool is_of_stream(h264::time_source source)
{
    return source == h264::time_source::constant_rate || source == h264::time_source::hrd;
}

} // namespace

h264::exact_time time_of(std::optional<std::int64_t> ticks, container_ratio tick)
{
    if (!ticks || tick.denominator == 0)
        return {};
    const std::int64_t common = std::gcd(*ticks, tick.denominator);
    const std::int64_t denominator = tick.denominator / common;
    const std::int64_t more = std::gcd(tick.numerator, denominator);
    std::int64_t numerator = 0;
    if (__builtin_mul_overflow(*ticks / common, tick.numerator / more, &numerator))
        return {};
    return {numerator, denominator / more};
}

void container_check::add(const picture_row& row)
{
    if (!row.packet)
        return;
    ++count;
    if (row.packet->pts) {
        earliest = std::min(earliest.value_or(*row.packet->pts), *row.packet->pts);
        latest = std::max(latest.value_or(*row.packet->pts), *row.packet->pts);
    }
    add_key(row);
    add_decoding(row);
    add_times(row);
}

void container_check::add_key(const picture_row& row)
{
    if (!row.packet->key)
        return;
    if (!key_count)
        key_count = 0;
    *key_count += *row.packet->key ? 1 : 0;
    if (*row.packet->key && !row.key())
        found.add(row.offset,
                  "marked as a key frame by the container, and neither an IDR picture nor a recovery point");
    if (!*row.packet->key && row.idr)
        found.add(row.offset, "IDR picture that the container does not mark as a key frame");
}

void container_check::add_decoding(const picture_row& row)
{
    const std::optional<std::int64_t> dts = row.packet->dts;
    if (dts && last_dts && *dts <= *last_dts)
        found.add(row.offset, "the container decodes it no later than the picture before");
    if (dts && row.packet->pts && *row.packet->pts < *dts)
        found.add(row.offset, "the container shows it before it is decoded");
    last_dts = dts ? dts : last_dts;
}

void container_check::add_times(const picture_row& row)
{
    const h264::exact_time shown = time_of(row.packet->pts, tick);
    if (!shown || !row.pts || !is_of_stream(row.time_source))
        return;
    const two_times now = {seconds_of(row.pts), seconds_of(shown)};
    if (timed++ == 0) {
        first = lowest = highest = now;
        first_offset = row.offset;
    }
    lowest = {std::min(lowest.stream, now.stream), std::min(lowest.container, now.container)};
    highest = {std::max(highest.stream, now.stream), std::max(highest.container, now.container)};
    if (differ(now.stream - first.stream, now.container - first.container) && shifted++ == 0)
        first_shifted = row.offset;
}

/// By more than the ticks of the container can help.
bool container_check::differ(double stream, double container) const
{
    const double one_tick = static_cast<double>(tick.numerator) / static_cast<double>(tick.denominator);
    return std::abs(stream - container) > 1.5 * one_tick + 1e-6;
}

void container_check::finish()
{
    constexpr double same_rate = 0.002;
    constexpr std::uint64_t fewest_for_a_rate = 8;
    const double of_stream = highest.stream - lowest.stream;
    const double of_container = highest.container - lowest.container;
    if (shifted == 0)
        return;
    const auto steps = static_cast<double>(timed - 1);
    if (timed >= fewest_for_a_rate && differ(of_stream, of_container) &&
        std::abs(of_stream - of_container) > same_rate * of_stream)
        found.add(first_offset,
                  fmt::format("the container shows {:.3f} pictures a second, the stream says {:.3f}",
                              of_container > 0 ? steps / of_container : 0.0, of_stream > 0 ? steps / of_stream : 0.0));
    else
        found.add(first_shifted, fmt::format("{} of {} pictures are shown at other times by the container than the "
                                             "stream says, beside the first of all; this is the first of them",
                                             shifted, timed));
}

} // namespace orv_h264
