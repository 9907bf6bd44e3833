#include "cut/range_finder.h"

#include "container/container_check.h"
#include "cut/exact_order.h"

#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr std::uint64_t nowhere = ~std::uint64_t{0}; // behind the last picture

} // namespace

range_finder::range_finder(const cut_range& asked, bool key, std::optional<h264::ratio> rate)
    : places(asked), back_to_key(key), frame_rate(rate)
{
}

cut_range range_finder::find(stream_input& input)
{
    if (input.in_container() != nullptr)
        tick = input.in_container()->track().tick;
    picture_rows rows(false, input.max_unit(), *this, &input.packets());
    rows.begin_with(input.record_sets());
    input.read_units(rows, [this] { return is_done(); });
    if (!is_done())
        rows.finish(input.bytes_read());
    const auto is_time = [](const std::optional<cut_place>& place) {
        return place && place->what == cut_place::kind::time;
    };
    if ((is_time(places.from) || is_time(places.to)) && !any_time)
        throw refusal(exit_usage_or_io,
                      fmt::format("{}: nothing tells when its pictures are shown; name them by number, or give --rate",
                                  input.name()));
    // What was not found lies behind the end.
    const auto picture = [](std::optional<std::uint64_t> number, const std::optional<cut_place>& asked) {
        return cut_place{cut_place::kind::picture, number.value_or(nowhere), {}, asked ? asked->text : ""};
    };
    cut_range found;
    if (places.from || back_to_key)
        found.from = picture(found_from, places.from);
    if (places.to)
        found.to = picture(found_to, places.to);
    return found;
}

void range_finder::row(picture_row&& row)
{
    if (row.key() && !found_from)
        last_key = row.picture;
    const bool any_from = found_from.has_value();
    if (!any_from && (!places.from || is_at(row, *places.from))) {
        from_key = !back_to_key || last_key.has_value();
        found_from = back_to_key ? last_key.value_or(row.picture) : row.picture;
    }
    if (places.to && !found_to && is_at(row, *places.to))
        found_to = row.picture;
}

bool range_finder::is_at(const picture_row& row, const cut_place& place)
{
    switch (place.what) {
    case cut_place::kind::picture:
        return row.picture >= place.number;
    case cut_place::kind::offset:
        return row.offset >= place.number;
    case cut_place::kind::time:
        break;
    }
    const h264::exact_time time = time_of_row(row);
    any_time = any_time || time;
    return time && !is_before(time, place.time);
}

h264::exact_time range_finder::time_of_row(const picture_row& row) const
{
    if (frame_rate && !row.output_number)
        return {};
    if (frame_rate)
        return h264::time_after({0, 1}, *row.output_number, {frame_rate->denominator, frame_rate->numerator});
    if (tick && row.packet)
        if (const h264::exact_time time = time_of(row.packet->pts, *tick))
            return time;
    return row.pts;
}

} // namespace orv_h264
