#include "report/report_frames.h"

#include "show_rows.h"

#include <algorithm>
#include <utility>

#include <fmt/compile.h>
#include <fmt/format.h>

namespace orv_h264 {

namespace {

template <typename T>
std::string number_or_null(const std::optional<T>& number)
{
    return number ? std::to_string(*number) : "null";
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
        text += fmt::format(FMT_COMPILE("{}[{},{},\"{}\"]"), text.empty() ? "" : ",", first.nal_unit_type, behind - i,
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
        packets->add(row);
}

// page/frames.js has the members in the same order.
std::uint64_t report_frames::kind_of(const picture_row& row)
{
    const std::string duration =
        row.duration ? fmt::format(FMT_COMPILE("[{},{}]"), row.duration.numerator, row.duration.denominator) : "null";
    return kind_list.number_of(fmt::format(
        FMT_COMPILE(R"([{},{},{},{},"{}",{},"{}",{},{},{},{},{},{},{}])"), unit_lists.number_of(unit_list(row)),
        row.layers.empty() ? -1 : signed_of(layer_lists.number_of(layer_list_of(row))), row.coded_pictures,
        row.idr ? 1 : 0, structure_name(row.structure), row.nal_ref_idc, source_name(row.time_source),
        row.field_duration, duration, number_or_null(row.pic_struct), number_or_null(row.sps_id),
        number_or_null(row.pps_id), row.cut ? 1 : 0, row.last ? 1 : 0));
}

/// A page of 90,000 rows has 1.5 MiB, one of 500,000 rows 8 MiB, and what is around them takes some of that.
bool report_frames::has_room(std::size_t around) const
{
    constexpr std::size_t least = std::size_t{3} * 512 * 1024;
    std::size_t bytes = times.size() + unit_lists.size() + layer_lists.size() + kind_list.size();
    bytes += packets ? packets->size() : 0;
    for (const number_column* column : {&kinds, &pictures, &output_numbers, &offsets, &sizes, &gaps, &paddings,
                                        &fillers, &recovery, &frame_nums, &pocs})
        bytes += column->size();
    return bytes * 4 / 3 + around <= std::max(least, static_cast<std::size_t>(count) * 16);
}

json report_frames::take(std::size_t around)
{
    if (count > most_rows || !has_room(around))
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
