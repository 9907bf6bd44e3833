#include "report/report_content.h"

#include "container/show_container.h"
#include "names.h"
#include "show_info.h"
#include "show_rows.h"

#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

json slices_json(const stream_summary& summary)
{
    json list = json::array();
    for (std::size_t kind = 0; kind < summary.slices.size(); ++kind)
        if (const stream_summary::type_count& count = summary.slices[kind]; count.units > 0)
            list.push_back({{"type", slice_kind_name(static_cast<h264::slice_kind>(kind))},
                            {"units", count.units},
                            {"bytes", count.bytes}});
    return list;
}

json references_json(const stream_summary& summary)
{
    json list = json::array();
    for (const layer_summary& layer : summary.layers.layers())
        list.push_back(layer.references);
    return list;
}

json container_json(const std::vector<container_comparison>& checks)
{
    json list = json::array();
    for (const container_comparison& check : checks)
        list.push_back(
            {{"what", check.what}, {"container", check.container}, {"stream", check.stream}, {"agrees", check.agrees}});
    return list;
}

json unit_names()
{
    json names = json::array();
    for (unsigned type = 0; type < 32; ++type)
        names.push_back(short_unit_name(static_cast<brenik::h264_nal_unit_type>(type)));
    return names;
}

} // namespace

report_content::report_content(const stream_input& input)
    : survey(input.framing(), input.max_unit(), &input.packets(), this), units(input), buffer(input)
{
    survey.begin_with(input.record_sets());
    if (const container_stream* const from = input.in_container()) {
        survey.summary.container.emplace(from->track().tick);
        frames.expect_packets(from->track().tick);
    }
}

void report_content::unit(const h264::split_unit& unit)
{
    survey.unit(unit);
    units.sink().unit(unit);
    buffer.sink().unit(unit);
}

void report_content::gap(const h264::split_gap& gap)
{
    survey.gap(gap);
    units.sink().gap(gap);
    buffer.sink().gap(gap);
}

void report_content::finish(const stream_input& input)
{
    survey.finish(input.bytes_read());
    units.finish();
    buffer.finish();
    if (const container_stream* const from = input.in_container())
        finish_container(*from);
}

void report_content::finish_container(const container_stream& from)
{
    stream_summary& summary = survey.summary;
    container_check& times = *summary.container;
    times.finish();
    summary.problems.add(from.problems);
    summary.findings.add(from.findings);
    summary.findings.add(times.findings());
    for (const container_remark& remark : from.remarks())
        add_place({remark.offset, remark.text, 0, !remark.is_problem}, nullptr);
    container.push_back({"Pictures", fmt::format("{} packets that pictures begin in", times.packets()),
                         fmt::format("{}", summary.frames.pictures()), times.packets() == summary.frames.pictures()});
    if (times.keys())
        container.push_back({"Key frames", fmt::format("{} marked", *times.keys()),
                             fmt::format("{}", summary.frames.key_frames()),
                             *times.keys() == summary.frames.key_frames()});
    for (const problem_kind& kind : times.findings().kinds()) {
        container.push_back({"Finding", describe(kind), "", false});
        add_place({kind.first_offset, describe_without_offset(kind), 0, true}, nullptr);
    }
}

void report_content::row(picture_row&& row)
{
    if (row.given_up && given_up++ == 0)
        first_given_up = row.number;
    for (const row_problem& problem : row.problems)
        add_place(problem, row.number);
    frames.add(row);
    aggregates.add(row);
    ++rows;
}

void report_content::add_place(const row_problem& problem, const json& frame)
{
    json& places = problem.finding ? finding_places : problem_places;
    if (places.size() < most_places)
        places.push_back({problem.offset, problem.message, problem.bytes, frame});
}

json report_content::page_data(const stream_input& input)
{
    json data = {{"info", info_json(input, survey.summary)}};
    data["framing_recognised"] = input.framing_recognised();
    data["frame_count"] = rows;
    data["most_frames"] = report_frames::most_rows;
    data["pictures"] = aggregates.pictures();
    data["slices"] = slices_json(survey.summary);
    data["layer_references"] = references_json(survey.summary);
    data["unit_names"] = unit_names();
    data["without_output_number"] = {{"count", given_up}, {"first", first_given_up}};
    data["problems"] = problem_places;
    data["findings"] = finding_places;
    data["container"] = container_json(container);
    data["container_facts"] = json::array();
    if (const container_stream* const from = input.in_container()) {
        data["container_facts"].push_back({"Container", text_of(*from)});
        for (const auto& [name, text] : lines_of(*from, *survey.summary.container))
            data["container_facts"].push_back({name, text});
    }
    data["buffer"] = buffer.page_data();
    data["parameter_sets"] = units.parameter_sets();
    data["further_parameter_sets"] = units.further_sets();
    data["messages"] = units.messages();
    constexpr std::size_t page_bytes = std::size_t{160} * 1024; // the files of the page
    data["frames"] = frames.take(page_bytes + json_line(data).size());
    data["stretches"] = data["frames"].is_null() ? aggregates.stretches() : json();
    return data;
}

} // namespace orv_h264
