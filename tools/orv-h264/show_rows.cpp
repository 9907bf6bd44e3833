#include "show_rows.h"

#include "container/show_container.h"
#include "names.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

std::string key_text(const picture_row& row)
{
    if (row.idr)
        return "IDR";
    return row.recovery_frame_cnt ? fmt::format("recovery {}", *row.recovery_frame_cnt) : "-";
}

double seconds_of(h264::exact_time time)
{
    return static_cast<double>(time.numerator) / static_cast<double>(time.denominator);
}

std::string time_text(h264::exact_time time)
{
    return time ? fmt::format("{:.6f}", seconds_of(time)) : "-";
}

/// Units in a row that are alike, and how many they are.
struct repeated_unit {
    std::uint8_t type;
    std::uint64_t count;
};

std::vector<repeated_unit> unit_runs(const picture_row& row)
{
    std::vector<repeated_unit> runs;
    for (const row_unit& u : row.units) {
        if (runs.empty() || runs.back().type != u.nal_unit_type)
            runs.push_back({u.nal_unit_type, 0});
        ++runs.back().count;
    }
    return runs;
}

// Of a row of countless runs or layers this many are shown.
constexpr std::size_t most_shown = 64;

std::string units_text(const picture_row& row)
{
    const std::vector<repeated_unit> runs = unit_runs(row);
    std::string text;
    for (std::size_t i = 0; i < std::min(runs.size(), most_shown); ++i) {
        text += text.empty() ? "" : ", ";
        text += short_unit_name(static_cast<brenik::h264_nal_unit_type>(runs[i].type));
        if (runs[i].count > 1)
            text += fmt::format("*{}", runs[i].count);
    }
    return runs.size() > most_shown ? text + ", ..." : text;
}

std::string layer_text(const row_layer& layer)
{
    const h264::slice_layer& what = layer.what;
    if (layer.scalable)
        return fmt::format("D{}Q{}T{}", what.dependency_id, what.quality_id, what.temporal_id);
    return fmt::format("{}{}", layer.what.depth ? "depth" : "view", what.view_id);
}

/// "  layers D0Q0T1 D1Q0T1"; nothing where there are none.
std::string layers_text(const picture_row& row)
{
    std::string text = row.layers.empty() ? "" : "  layers";
    for (std::size_t i = 0; i < std::min(row.layers.size(), most_shown); ++i)
        text += ' ' + layer_text(row.layers[i]);
    return row.layers.size() > most_shown ? text + " ..." : text;
}

template <typename T>
std::string text_or_dash(const std::optional<T>& value)
{
    return value ? fmt::format("{}", *value) : "-";
}

constexpr const char* columns =
    "{:>7}  {:>7}  {:>11}  {:>9}  {:<10}  {:<5}  {:<6}  {:>9}  {:>6}  {:>3}  {:>11}{}  {:>6}  {}";
constexpr const char* container_column = "  {:>11}";

std::string bit_rate_text(const frame_totals& totals)
{
    const bit_rate_meter& rate = totals.bit_rate();
    if (!rate.mean())
        return "bit rate unknown";
    std::string text = fmt::format("{:.6f} s", rate.seconds());
    if (totals.timed_frames() != totals.frames())
        text += fmt::format(" of {} that are timed", totals.timed_frames());
    text += fmt::format(", mean {:.0f} bit/s", *rate.mean());
    if (totals.padding() != 0)
        text += fmt::format(" ({:.0f} bit/s without padding)", *totals.unit_bit_rate());
    return rate.peak() ? fmt::format("{}, peak {:.0f} bit/s", text, *rate.peak()) : text;
}

template <typename T>
json json_or_null(const std::optional<T>& value)
{
    return value ? json(*value) : json();
}

json json_or_null(h264::exact_time time)
{
    return time ? json_fraction(time.numerator, time.denominator) : json();
}

} // namespace

const char* slice_kind_name(h264::slice_kind kind)
{
    constexpr const char* table_7_6[] = {"P", "B", "I", "SP", "SI"};
    return table_7_6[static_cast<std::size_t>(kind)];
}

const char* structure_name(row_structure structure)
{
    constexpr const char* names[] = {"frame", "MBAFF", "top", "bottom", "fields"};
    return names[static_cast<std::size_t>(structure)];
}

const char* source_name(h264::time_source source)
{
    constexpr const char* names[] = {"none", "assumed_rate", "caller", "constant_rate", "hrd"};
    return names[static_cast<std::size_t>(source)];
}

json json_of(const row_layer& layer)
{
    const h264::slice_layer& what = layer.what;
    if (layer.scalable)
        return {
            {"dependency_id", what.dependency_id}, {"quality_id", what.quality_id}, {"temporal_id", what.temporal_id}};
    return {{"view_id", what.view_id}, {"depth", what.depth}, {"temporal_id", what.temporal_id}};
}

std::string row_heading(bool in_container)
{
    return fmt::format(columns, "frame", "output", "offset", "size", "key", "types", "struct", "frame_num", "poc",
                       "ref", "time", in_container ? fmt::format(container_column, "container") : "", "fields",
                       "units");
}

std::string text_of(const picture_row& row, std::optional<container_ratio> tick)
{
    const std::string in_container =
        tick ? fmt::format(container_column,
                           time_text(row.packet ? time_of(row.packet->pts, *tick) : h264::exact_time()))
             : "";

    const std::string types = fmt::format("{}", fmt::join(slice_types(row), ","));
    std::string line = fmt::format(columns, row.number, text_or_dash(row.output_number), row.offset, row.size,
                                   key_text(row), types.empty() ? "-" : types, structure_name(row.structure),
                                   text_or_dash(row.frame_num), text_or_dash(row.poc), row.nal_ref_idc,
                                   time_text(row.pts), in_container, row.field_duration, units_text(row));
    line += layers_text(row);
    line += row.cut ? "  (cut)" : "";
    line += row.last ? "  (last)" : "";
    return line;
}

std::string text_of(const frame_totals& totals, bool fields)
{
    std::string text = fields ? fmt::format("{} fields of {} pictures, {} of them key pictures", totals.frames(),
                                            totals.pictures(), totals.key_frames())
                              : fmt::format("{} frames, {} of them key frames", totals.frames(), totals.key_frames());
    text += fmt::format(", {} bytes", totals.bytes());
    if (totals.padding() != 0)
        text += fmt::format(", {} of padding", totals.padding());
    if (totals.filler() != 0)
        text += fmt::format(", {} of filler", totals.filler());
    return text + ", " + bit_rate_text(totals);
}

json json_of(const picture_row& row, std::optional<container_ratio> tick)
{
    json layers = json::array();
    for (const row_layer& layer : row.layers)
        layers.push_back(json_of(layer));
    json units = json::array();
    for (const row_unit& u : row.units)
        units.push_back(u.nal_unit_type);
    json object = {{"record", "frame"},
                   {"number", row.number},
                   {"picture", row.picture},
                   {"output_number", json_or_null(row.output_number)},
                   {"offset", row.offset},
                   {"size", row.size},
                   {"unit_bytes", row.unit_bytes},
                   {"padding", row.padding},
                   {"filler", row.filler},
                   {"key", row.key()},
                   {"idr", row.idr},
                   {"recovery_frame_cnt", json_or_null(row.recovery_frame_cnt)},
                   {"slice_types", slice_types(row)},
                   {"structure", structure_name(row.structure)},
                   {"frame_num", json_or_null(row.frame_num)},
                   {"poc", json_or_null(row.poc)},
                   {"nal_ref_idc", row.nal_ref_idc},
                   {"pts", json_or_null(row.pts)},
                   {"dts", json_or_null(row.dts)},
                   {"time_source", source_name(row.time_source)},
                   {"field_duration", row.field_duration},
                   {"duration", json_or_null(row.duration)},
                   {"pic_struct", json_or_null(row.pic_struct)},
                   {"sps_id", json_or_null(row.sps_id)},
                   {"pps_id", json_or_null(row.pps_id)},
                   {"layers", std::move(layers)},
                   {"coded_pictures", row.coded_pictures},
                   {"nal_unit_types", std::move(units)},
                   {"cut", row.cut},
                   {"last", row.last}};
    if (tick)
        add_packet(object, row.packet, *tick);
    return object;
}

json json_of(const frame_totals& totals)
{
    const bit_rate_meter& rate = totals.bit_rate();
    const auto rounded_or_null = [](std::optional<double> value, int digits) {
        return value ? json(rounded(*value, digits)) : json();
    };
    return {{"record", "summary"},
            {"frames", totals.frames()},
            {"pictures", totals.pictures()},
            {"key_frames", totals.key_frames()},
            {"coded_pictures", totals.coded_pictures()},
            {"bytes", totals.bytes()},
            {"unit_bytes", totals.unit_bytes()},
            {"padding", totals.padding()},
            {"filler", totals.filler()},
            {"timed_frames", totals.timed_frames()},
            {"seconds", rate.mean() ? json(rounded(rate.seconds(), 9)) : json()},
            {"mean_bit_rate", rounded_or_null(rate.mean(), 3)},
            {"unit_bit_rate", rounded_or_null(totals.unit_bit_rate(), 3)},
            {"peak_bit_rate", rounded_or_null(rate.peak(), 3)}};
}

std::vector<std::string> slice_types(const picture_row& row)
{
    std::vector<std::string> types;
    for (const row_unit& u : row.units) {
        const std::string type = u.slice ? slice_kind_name(*u.slice) : "";
        if (!type.empty() && std::find(types.begin(), types.end(), type) == types.end())
            types.push_back(type);
    }
    return types;
}

} // namespace orv_h264
