#include "frames.h"

#include "frame_finder.h"
#include "frame_totals.h"
#include "framing.h"
#include "json_output.h"
#include "messages.h"
#include "names.h"
#include "stream_walker.h"
#include "terminal.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

const char* key_text(const frame& f)
{
    return f.idr ? "IDR" : f.key() ? "recovery" : "-";
}

/// H.264 Table 7-6.
const char* slice_kind_name(h264::slice_kind kind)
{
    constexpr const char* table_7_6[] = {"P", "B", "I", "SP", "SI"};
    return table_7_6[static_cast<std::size_t>(kind)];
}

/// The slice types of the frame, each once, as they come.
std::vector<std::string> slice_types(const frame& f)
{
    std::vector<std::string> types;
    for (const frame_unit& u : f.units) {
        const std::string type = u.slice ? slice_kind_name(*u.slice) : "";
        if (!type.empty() && std::find(types.begin(), types.end(), type) == types.end())
            types.push_back(type);
    }
    return types;
}

/// The types of units in a row that are alike, and how many they are.
struct unit_run {
    brenik::h264_nal_unit_type type;
    std::uint64_t count;
};

std::vector<unit_run> unit_runs(const frame& f)
{
    std::vector<unit_run> runs;
    for (const frame_unit& u : f.units) {
        if (runs.empty() || runs.back().type != u.type)
            runs.push_back({u.type, 0});
        ++runs.back().count;
    }
    return runs;
}

// Of a frame of countless runs this many are shown.
constexpr std::size_t most_runs = 64;

std::string units_text(const frame& f)
{
    const std::vector<unit_run> runs = unit_runs(f);
    std::string text;
    for (std::size_t i = 0; i < std::min(runs.size(), most_runs); ++i) {
        text += text.empty() ? "" : " ";
        text += short_unit_name(runs[i].type);
        if (runs[i].count > 1)
            text += fmt::format("*{}", runs[i].count);
    }
    return runs.size() > most_runs ? text + " ..." : text;
}

constexpr const char* row = "{:>8}  {:>12}  {:>10}  {:<8}  {:<5}  {:>6}  {:>10}  {}";

void print_heading()
{
    const std::string line = fmt::format(row, "frame", "offset", "size", "key", "types", "fields", "seconds", "units");
    fmt::print("{}\n", emphasised(stdout, emphasis::strong, line));
}

void print_frame(std::uint64_t number, const frame& f)
{
    const std::string types = fmt::format("{}", fmt::join(slice_types(f), ","));
    const std::string line =
        fmt::format(row, number, f.offset, f.size, key_text(f), types.empty() ? "-" : types, f.field_duration,
                    f.seconds ? fmt::format("{:.6f}", *f.seconds) : "-", units_text(f));
    fmt::print("{}{}{}\n", line, f.cut ? "  (cut)" : "", f.last ? "  (last)" : "");
}

std::string bit_rate_text(const bit_rate_meter& rate)
{
    if (!rate.mean())
        return "bit rate unknown";
    const std::string mean = fmt::format("{:.6f} s, mean {:.0f} bit/s", rate.seconds(), *rate.mean());
    return rate.peak() ? fmt::format("{}, peak {:.0f} bit/s", mean, *rate.peak()) : mean;
}

void print_totals(const frame_totals& totals)
{
    fmt::print("{} frames, {} of them key frames, {} bytes, {}\n", totals.frames(), totals.key_frames(), totals.bytes(),
               bit_rate_text(totals.bit_rate()));
}

json frame_json(std::uint64_t number, const frame& f)
{
    json units = json::array();
    for (const frame_unit& u : f.units)
        units.push_back(static_cast<unsigned int>(u.type));
    json object = {{"record", "frame"},
                   {"number", number},
                   {"offset", f.offset},
                   {"size", f.size},
                   {"key", f.key()},
                   {"idr", f.idr},
                   {"recovery_frame_cnt", nullptr},
                   {"poc", nullptr},
                   {"output_number", nullptr},
                   {"slice_types", slice_types(f)},
                   {"coded_pictures", f.coded_pictures},
                   {"field_duration", f.field_duration},
                   {"seconds", nullptr},
                   {"nal_unit_types", std::move(units)},
                   {"cut", f.cut},
                   {"last", f.last}};
    if (f.recovery_frame_cnt)
        object["recovery_frame_cnt"] = *f.recovery_frame_cnt;
    if (f.poc)
        object["poc"] = *f.poc;
    if (f.output_number)
        object["output_number"] = *f.output_number;
    if (f.seconds)
        object["seconds"] = *f.seconds;
    return object;
}

json totals_json(const frame_totals& totals)
{
    json object = {
        {"record", "summary"},     {"frames", totals.frames()},   {"key_frames", totals.key_frames()},
        {"joined_frames", 0},      {"pictures", totals.frames()}, {"coded_pictures", totals.coded_pictures()},
        {"bytes", totals.bytes()}, {"seconds", nullptr},          {"mean_bit_rate", nullptr},
        {"peak_bit_rate", nullptr}};
    const bit_rate_meter& rate = totals.bit_rate();
    if (rate.mean()) {
        object["seconds"] = rate.seconds();
        object["mean_bit_rate"] = *rate.mean();
    }
    if (rate.peak())
        object["peak_bit_rate"] = *rate.peak();
    return object;
}

class frame_list {
public:
    frame_list(const frames_options& chosen, stream_input& from)
        : options(chosen),
          feeder(from.feeder()),
          problems(from.name(), chosen.format == output_format::json),
          finder(chosen.split_fields)
    {
    }

    exit_status run()
    {
        while (totals.frames() < options.limit && take(feeder.next()))
            show_found();
        if (options.format == output_format::json)
            print_json(totals_json(totals));
        else
            print_totals(totals);
        return problems.status();
    }

private:
    /// False at the end of the input, when the last frames have been shown.
    bool take(const fed_item& item)
    {
        if (const auto* const u = std::get_if<unit>(&item)) {
            take_unit(*u);
        } else if (const auto* const g = std::get_if<gap>(&item)) {
            problems.add(g->offset, describe_with_size(*g));
        } else {
            finder.finish();
            show_found();
            return false;
        }
        return true;
    }

    void take_unit(const unit& u)
    {
        brenik::h264_nal_reader& reader = feeder.reader();
        if (u.cut)
            problems.add(u.offset, describe_cut(u));
        const walked_unit walked = walker.walk(reader);
        for (const std::string& problem : problems_of(walked))
            problems.add(u.offset, problem);
        finder.add(u, {reader.nal_header, static_cast<std::size_t>(u.length)});
    }

    void show_found()
    {
        frame f;
        while (totals.frames() < options.limit && finder.next(f)) {
            if (f.cut)
                problems.add(f.offset, describe_cut(f));
            show(f);
        }
    }

    void show(const frame& f)
    {
        if (options.format == output_format::json)
            print_json(frame_json(totals.frames(), f));
        else
            print_frame(totals.frames(), f);
        totals.add(f);
    }

    const frames_options& options;
    piece_feeder& feeder;
    complaints problems;
    stream_walker walker;
    frame_finder finder;
    frame_totals totals;
};

} // namespace

exit_status frames(const frames_options& options)
{
    stream_input input(options.stream);
    if (options.format == output_format::json) {
        json head = json_first_line("orv-h264/frames", input.name());
        head["framing"] = framing_name(input.framing());
        head["split_fields"] = options.split_fields;
        print_json(head);
    } else {
        print_heading();
    }
    return frame_list(options, input).run();
}

} // namespace orv_h264
