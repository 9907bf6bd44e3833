#include "report/report_times.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace orv_h264 {

namespace {

// What a script can compute with exactly, twice added.
constexpr std::int64_t most_ticks = std::int64_t{1} << 48;
constexpr std::int64_t most_scale = std::int64_t{1} << 40;

/// In parts of a second; nothing where that is not a whole number, or too large.
std::optional<std::int64_t> in_parts(h264::exact_time time, std::int64_t scale)
{
    if (!time || scale % time.denominator != 0)
        return {};
    const std::int64_t factor = scale / time.denominator;
    if (time.numerator > most_ticks / factor || time.numerator < -most_ticks / factor)
        return {};
    return time.numerator * factor;
}

json seconds_or_null(h264::exact_time time)
{
    return time ? json(static_cast<double>(time.numerator) / static_cast<double>(time.denominator)) : json();
}

std::int64_t common_multiple(std::int64_t a, std::int64_t b)
{
    const std::int64_t part = b / std::gcd(a, b);
    return a > most_scale / part ? std::numeric_limits<std::int64_t>::max() : a * part;
}

std::int64_t parts_of(h264::exact_time time)
{
    return time ? time.denominator : 1;
}

/// Ticks that a script can compute with.
std::optional<std::int64_t> exact(std::optional<std::int64_t> ticks)
{
    return ticks && *ticks <= most_ticks && *ticks >= -most_ticks ? ticks : std::nullopt;
}

/// From one picture to another that stands so many places further in output order; those far from each other could be
/// anything.
std::int64_t expected_step(std::int64_t places, std::int64_t pace)
{
    return std::abs(places) <= 64 && std::abs(pace) < most_ticks / 64 ? places * pace : 0;
}

} // namespace

// Decoding times are expected to go on as they did, presentation times to follow the output numbers at the same pace.
void time_columns::add(const picture_row& row)
{
    const std::int64_t needed = common_multiple(parts_of(row.dts), parts_of(row.pts));
    if (needed <= most_scale && scale % needed != 0) {
        const std::int64_t common = common_multiple(scale, needed);
        use_scale(common <= most_scale ? common : needed);
    }
    scales.add(static_cast<std::uint64_t>(scale));
    const auto now = in_parts(row.dts, scale);
    decoding.add_optional(now ? std::optional(*now - dts - dts_step) : now);
    if (now) {
        dts_step = *now - dts;
        dts = *now;
    }
    const auto shown = in_parts(row.pts, scale);
    const std::int64_t place = signed_of(row.output_number.value_or(static_cast<std::uint64_t>(output_number)));
    presentation.add_optional(shown ? std::optional(*shown - pts - expected_step(place - output_number, dts_step))
                                    : shown);
    pts = shown.value_or(pts);
    if ((row.dts && !now) || (row.pts && !shown))
        if (rounded.size() < most_rounded)
            rounded.push_back({row.number, seconds_or_null(row.dts), seconds_or_null(row.pts)});
    output_number = place;
}

void time_columns::use_scale(std::int64_t parts)
{
    scale = parts;
    dts = dts_step = pts = 0;
}

void time_columns::write(json& columns)
{
    columns["scale"] = scales.text();
    columns["dts"] = decoding.text();
    columns["pts"] = presentation.text();
}

void packet_columns::add(const picture_row& row)
{
    if (!row.packet) { // it has no entry in the other columns then
        numbers.add_optional({});
        return;
    }
    const logged_packet& packet = *row.packet;
    numbers.add_optional(signed_of(packet.number) - number - 1);
    number = signed_of(packet.number);
    keys.add(!packet.key ? 0U : *packet.key ? 2U : 1U);
    const auto decoded = exact(packet.dts);
    decoding.add_optional(decoded ? std::optional(*decoded - dts - dts_step) : decoded);
    if (decoded) {
        dts_step = *decoded - dts;
        dts = *decoded;
    }
    const auto shown = exact(packet.pts);
    const std::int64_t place = signed_of(row.output_number.value_or(static_cast<std::uint64_t>(output_number)));
    presentation.add_optional(shown ? std::optional(*shown - pts - expected_step(place - output_number, dts_step))
                                    : shown);
    pts = shown.value_or(pts);
    output_number = place;
    durations.add(static_cast<std::uint64_t>(std::clamp<std::int64_t>(packet.duration, 0, most_ticks)));
}

void packet_columns::write(json& columns)
{
    columns["packet"] = numbers.text();
    columns["container_key"] = keys.text();
    columns["container_dts"] = decoding.text();
    columns["container_pts"] = presentation.text();
    columns["container_duration"] = durations.text();
}

} // namespace orv_h264
