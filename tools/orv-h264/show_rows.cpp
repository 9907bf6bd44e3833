#include "show_rows.h"

#include "container/show_container.h"
#include "element_text.h"
#include "names.h"

#include <algorithm>
#include <vector>

#include <fmt/compile.h>
#include <fmt/format.h>

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

// Of a row of countless runs or layers this many are shown.
constexpr std::size_t most_shown = 64;

/// Units that are alike and follow one another are told together, with how many they are.
std::string units_text(const picture_row& row)
{
    std::string text;
    std::size_t runs = 0;
    for (auto unit = row.units.begin(); unit != row.units.end(); ++runs) {
        if (runs == most_shown)
            return text + ", ...";
        const std::uint8_t type = unit->nal_unit_type;
        const auto behind =
            std::find_if(unit, row.units.end(), [type](const row_unit& u) { return u.nal_unit_type != type; });
        text += text.empty() ? "" : ", ";
        text += short_unit_name(static_cast<brenik::h264_nal_unit_type>(type));
        if (behind - unit > 1)
            append_number(text += '*', behind - unit);
        unit = behind;
    }
    return text;
}

/// "P,B"
std::string types_text(const picture_row& row)
{
    std::string text;
    for (const h264::slice_kind kind : slice_types(row))
        text.append(text.empty() ? "" : ",").append(slice_kind_name(kind));
    return text;
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
    return value ? std::to_string(*value) : "-";
}

constexpr auto columns =
    FMT_COMPILE("{:>7}  {:>7}  {:>11}  {:>9}  {:<10}  {:<5}  {:<6}  {:>9}  {:>6}  {:>3}  {:>11}{}  {:>6}  {}");
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

    const std::string types = types_text(row);
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

slice_kinds slice_types(const picture_row& row)
{
    slice_kinds kinds;
    for (const row_unit& u : row.units)
        if (u.slice && std::find(kinds.begin(), kinds.end(), *u.slice) == kinds.end()) {
            kinds.grow();
            kinds.back() = *u.slice;
        }
    return kinds;
}

} // namespace orv_h264
