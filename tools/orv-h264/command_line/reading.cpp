// Those that read a stream and show what it is.
#include "avcc.h"
#include "command_line/subcommands.h"
#include "explain.h"
#include "frames.h"
#include "help_texts.h"
#include "info.h"
#include "inspect.h"
#include "report.h"

#include <charconv>

namespace orv_h264 {

namespace {

std::uint64_t offset_of(const std::string& text)
{
    const bool hexadecimal = text.starts_with("0x");
    const char* const begin = text.data() + (hexadecimal ? 2 : 0);
    const char* const end = text.data() + text.size();
    std::uint64_t offset = 0;
    const auto [stop, error] = std::from_chars(begin, end, offset, hexadecimal ? 16 : 10);
    if (error != std::errc() || stop != end)
        throw CLI::ValidationError("OFFSET", "'" + text + "' is no offset (for example 4711 or 0x1267)");
    return offset;
}

/// Takes OFFSET or OFFSET:BIT.
void take_place(const std::string& text, explain_options& to)
{
    const std::size_t colon = text.find(':');
    to.offset = offset_of(text.substr(0, colon));
    if (colon == std::string::npos)
        return;
    const std::string bit = text.substr(colon + 1);
    if (bit.size() != 1 || bit[0] < '0' || bit[0] > '7')
        throw CLI::ValidationError("OFFSET", "'" + bit + "' is no bit of a byte (0 to 7)");
    to.bit = static_cast<unsigned>(bit[0] - '0');
}

} // namespace

void add_inspect(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<inspect_options>();
    CLI::App& inspection = *tool.add_subcommand("inspect", "Show what a stream holds, unit by unit");
    add_stream(inspection, "FILE", options->stream);
    inspection.add_flag("--nals", options->nals, "Units only, without their fields");
    add_limit(inspection, options->limit, "Stop after N units shown");
    add_only(inspection, "Show these NAL units only, for example 7,8 or 1-5 or sps,pps,idr; may be repeated",
             [options](const std::bitset<32>& types) { options->only = types; });
    inspection.add_flag("--positions", options->positions,
                        "Show every element, with its byte, bit and number of bits before it");
    inspection.add_flag("--long-names", options->long_names, "Name the units as H.264 does");
    add_format(inspection, options->format, json_lines, "A line for each syntax element");
    inspection.parse_complete_callback([options] {
        if (is_table(options->format) && options->nals)
            throw CLI::ValidationError("--nals", "not together with --csv or --tsv");
    });
    inspection.footer(std::string(help_texts::inspect) + help_texts::exit_statuses);
    run_with(inspection, chosen, inspect, options);
}

void add_explain(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<explain_options>();
    CLI::App& explanation = *tool.add_subcommand("explain", "Tell what a byte or bit of a stream belongs to");
    add_stream(explanation, "FILE", options->stream);
    explanation
        .add_option_function<std::string>(
            "OFFSET", [options](const std::string& text) { take_place(text, *options); },
            "The byte, counted from 0, in decimal or behind 0x in hexadecimal; with :BIT a bit of it, 0 the most "
            "significant")
        ->required()
        ->type_name("");
    add_format(explanation, options->format, json_object, "A line for each fact");
    explanation.footer(std::string(help_texts::explain) + help_texts::exit_statuses);
    run_with(explanation, chosen, explain, options);
}

void add_frames(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<frames_options>();
    const auto files = std::make_shared<file_set>();
    CLI::App& table = *tool.add_subcommand("frames", "List the frames of a stream");
    add_streams(table, *files, options->stream);
    table.add_flag("--fields,--split-fields", options->split_fields, "Show each field by itself");
    table.add_flag("--output-order", options->output_order, "Show frames in output order, not as they are decoded");
    add_limit(table, options->limit, "Stop after N frames");
    add_format(table, options->format, json_lines, "A line for each frame");
    table.footer(std::string(help_texts::frames) + help_texts::many_files + help_texts::exit_statuses);
    run_over(table, chosen, frames_of_files, files, options);
}

void add_info(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<info_options>();
    const auto files = std::make_shared<file_set>();
    CLI::App& summary = *tool.add_subcommand("info", "Tell what a stream is");
    add_streams(summary, *files, options->stream);
    add_format(summary, options->format, json_object, "A line for each fact");
    summary.footer(std::string(help_texts::info) + help_texts::many_files + help_texts::exit_statuses);
    run_over(summary, chosen, info_of_files, files, options);
}

void add_report(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<report_options>();
    CLI::App& page = *tool.add_subcommand("report", "Write a page about a stream, for a browser");
    add_stream(page, "FILE", options->stream);
    page.add_option("-o,--output", options->out,
                    "Where the page goes, report.html where this is not given; - is the standard output")
        ->type_name("FILE")
        ->default_str("");
    page.footer(std::string(help_texts::report) + help_texts::exit_statuses);
    run_with(page, chosen, report, options);
}

void add_avcc(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<avcc_options>();
    CLI::App& record = *tool.add_subcommand("avcc", "Show an AVC decoder configuration record");
    add_file(record, "FILE", options->path, "The record; - is the standard input");
    add_format(record, options->format, json_object, "A line for each fact");
    record.footer(std::string(help_texts::avcc) + help_texts::exit_statuses);
    run_with(record, chosen, avcc, options);
}

} // namespace orv_h264
