#include "report_frames.h"

#include "show_rows.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

// What a script can compute with exactly, twice added.
constexpr std::int64_t most_ticks = std::int64_t{1} << 48;
constexpr std::int64_t most_scale = std::int64_t{1} << 40;

std::int64_t signed_of(std::uint64_t number)
{
    return static_cast<std::int64_t>(number);
}

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

template <typename T>
std::string number_or_null(const std::optional<T>& number)
{
    return number ? fmt::format("{}", *number) : "null";
}

/// Runs of units that are alike: [type, how many, slice type].
std::string unit_list(const picture_row& row)
{
    std::string text;
    for (std::size_t i = 0; i < row.units.size();) {
        const row_unit& first = row.units[i];
        std::size_t behind = i;
        while (behind < row.units.size() && row.units[behind].nal_unit_type == first.nal_unit_type &&
               row.units[behind].slice == first.slice)
            ++behind;
        text += fmt::format("{}[{},{},\"{}\"]", text.empty() ? "" : ",", first.nal_unit_type, behind - i,
                            first.slice ? slice_kind_name(*first.slice) : "");
        i = behind;
    }
    return '[' + text + ']';
}

std::string layer_list_of(const picture_row& row)
{
    json layers = json::array();
    for (const row_layer& layer : row.layers)
        layers.push_back(json_of(layer));
    return layers.dump();
}

} // namespace

std::uint64_t text_list::number_of(const std::string& text)
{
    const auto found = numbers.find(text);
    if (found != numbers.end())
        return found->second;
    if (used + text.size() > room)
        return 0;
    used += text.size() + 1;
    const auto added = numbers.emplace(text, numbers.size() + 1).first;
    order.emplace_back(added->first);
    return added->second;
}

json text_list::values() const
{
    json list = json::array({nullptr});
    for (const std::string_view text : order)
        list.push_back(json::parse(text));
    return list;
}

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
    // Steps of pictures that are far from each other could be anything.
    const std::int64_t steps = std::abs(place - output_number) <= 64 ? place - output_number : 0;
    const std::int64_t pace = std::abs(dts_step) < most_ticks / 64 ? dts_step : 0;
    presentation.add_optional(shown ? std::optional(*shown - pts - steps * pace) : shown);
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

void packet_columns::tick_column::add(std::optional<std::int64_t> ticks)
{
    const bool exact = ticks && *ticks <= most_ticks && *ticks >= -most_ticks;
    numbers.add_optional(exact ? std::optional(*ticks - last - step) : std::nullopt);
    if (exact) {
        step = *ticks - last;
        last = *ticks;
    }
}

void packet_columns::add(const std::optional<logged_packet>& packet)
{
    const std::int64_t number = packet ? signed_of(packet->number) : 0;
    numbers.add_optional(packet ? std::optional(number - last_number - 1) : std::nullopt);
    if (!packet) // the others have no entry then
        return;
    last_number = number;
    keys.add(!packet->key ? 0U : *packet->key ? 2U : 1U);
    dts.add(packet->dts);
    pts.add(packet->pts);
    durations.add(static_cast<std::uint64_t>(std::clamp<std::int64_t>(packet->duration, 0, most_ticks)));
}

void packet_columns::write(json& columns)
{
    columns["packet"] = numbers.text();
    columns["container_key"] = keys.text();
    columns["container_dts"] = dts.numbers.text();
    columns["container_pts"] = pts.numbers.text();
    columns["container_duration"] = durations.text();
}

void report_frames::add(const picture_row& row)
{
    if (++count > most_rows)
        return;
    const std::uint64_t kind = kind_of(row);
    kinds.add(kind);
    pictures.add_signed(signed_of(row.picture - row.number));
    offsets.add_signed(signed_of(row.offset - next_offset));
    next_offset = row.offset + row.unit_bytes + row.padding;
    sizes.add(row.size);
    gaps.add(row.size - row.unit_bytes);
    paddings.add(row.padding);
    fillers.add(row.filler);
    recovery.add_optional(row.recovery_frame_cnt);

    const bool known = kind != 0; // else the page does not know of the other two either
    const std::int64_t expected_num = known && row.idr ? 0 : last_frame_num + (last_is_reference ? 1 : 0);
    frame_nums.add_optional(row.frame_num ? std::optional(std::int64_t{*row.frame_num} - expected_num) : std::nullopt);
    last_frame_num = row.frame_num.value_or(expected_num);
    last_is_reference = known && row.nal_ref_idc != 0;

    const std::int64_t place = row.output_number ? signed_of(*row.output_number) : last_output;
    output_numbers.add_optional(row.output_number ? std::optional(place - signed_of(row.number)) : std::nullopt);
    const std::int64_t expected_poc = last_poc + 2 * (place - last_output);
    pocs.add_optional(row.poc ? std::optional(*row.poc - expected_poc) : std::nullopt);
    last_poc = row.poc.value_or(expected_poc);
    last_output = place;
    times.add(row);
    if (packets)
        packets->add(row.packet);
}

// page/frames.js has the members in the same order.
std::uint64_t report_frames::kind_of(const picture_row& row)
{
    const std::string duration =
        row.duration ? fmt::format("[{},{}]", row.duration.numerator, row.duration.denominator) : "null";
    return kind_list.number_of(
        fmt::format("[{},{},{},{},\"{}\",{},\"{}\",{},{},{},{},{},{},{}]", unit_lists.number_of(unit_list(row)),
                    row.layers.empty() ? -1 : signed_of(layer_lists.number_of(layer_list_of(row))), row.coded_pictures,
                    row.idr ? 1 : 0, structure_name(row.structure), row.nal_ref_idc, source_name(row.time_source),
                    row.field_duration, duration, number_or_null(row.pic_struct), number_or_null(row.sps_id),
                    number_or_null(row.pps_id), row.cut ? 1 : 0, row.last ? 1 : 0));
}

/// A page of 90,000 rows has 1.5 MiB, one of 500,000 rows 8 MiB, and what is around them takes some of that.
bool report_frames::has_room() const
{
    constexpr std::size_t around = std::size_t{420} * 1024;
    constexpr std::size_t least = std::size_t{3} * 512 * 1024;
    std::size_t bytes = times.size() + unit_lists.size() + layer_lists.size() + kind_list.size();
    bytes += packets ? packets->size() : 0;
    for (const number_column* column : {&kinds, &pictures, &output_numbers, &offsets, &sizes, &gaps, &paddings,
                                        &fillers, &recovery, &frame_nums, &pocs})
        bytes += column->size();
    return bytes * 4 / 3 + around <= std::max(least, static_cast<std::size_t>(count) * 16);
}

json report_frames::take()
{
    if (count > most_rows || !has_room())
        return nullptr;
    json columns = {{"kind", kinds.text()},           {"picture", pictures.text()}, {"output", output_numbers.text()},
                    {"offset", offsets.text()},       {"size", sizes.text()},       {"gap", gaps.text()},
                    {"padding", paddings.text()},     {"filler", fillers.text()},   {"recovery", recovery.text()},
                    {"frame_num", frame_nums.text()}, {"poc", pocs.text()}};
    times.write(columns);
    if (packets)
        packets->write(columns);
    return {{"tick", packets ? packets->tick_json() : json()},
            {"columns", std::move(columns)},
            {"rounded_times", times.rounded_times()},
            {"kinds", kind_list.values()},
            {"units", unit_lists.values()},
            {"layers", layer_lists.values()}};
}

} // namespace orv_h264
