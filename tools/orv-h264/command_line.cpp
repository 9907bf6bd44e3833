#include "command_line.h"

#include "avcc.h"
#include "check/check.h"
#include "check/show_hrd.h"
#include "convert.h"
#include "cut/cut.h"
#include "cut/cut_arguments.h"
#include "diff/diff.h"
#include "edit/edit.h"
#include "explain.h"
#include "frames.h"
#include "help_texts.h"
#include "info.h"
#include "inspect.h"
#include "messages.h"
#include "report.h"
#include "standard_output.h"
#include "type_set.h"
#include "usage_error.h"

#include <orv-utils-v4/version.h>

#include <algorithm>
#include <bitset>
#include <charconv>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

namespace orv_h264 {

namespace {

namespace h264 = orv_utils_v4::h264;

const std::map<std::string, h264::framing>& framings()
{
    static const std::map<std::string, h264::framing> by_name = {
        {"annexb", h264::framing::annex_b},   {"length1", h264::framing::length_1},
        {"length2", h264::framing::length_2}, {"length3", h264::framing::length_3},
        {"length4", h264::framing::length_4},
    };
    return by_name;
}

CLI::Option* add_framing(CLI::App& app, const char* name, const char* description,
                         const std::function<void(h264::framing)>& take)
{
    return app
        .add_option_function<std::string>(
            name, [take](const std::string& framing) { take(framings().at(framing)); }, description)
        ->check([](const std::string& text) {
            return framings().contains(text)
                       ? ""
                       : "'" + text + "' is no framing (annexb, length1, length2, length3, length4)";
        })
        ->type_name("FRAMING");
}

constexpr const char* json_lines = "Print JSON instead, an object a line";
constexpr const char* json_object = "Print a JSON object instead";

constexpr const char* digits = "0123456789";

/// Digits without the zeros before them, with which the parser would take them for octal.
std::string decimal(const std::string& number)
{
    return number.substr(std::min(number.find_first_not_of('0'), number.size() - 1));
}

std::string limit_of(const std::string& text)
{
    if (text.empty() || text.find_first_not_of(digits) != std::string::npos)
        throw CLI::ValidationError("'" + text + "' is no number");
    return decimal(text);
}

std::string number_of_jobs(const std::string& text)
{
    constexpr std::size_t most_digits = 4;
    std::string number = limit_of(text);
    if (number.size() > most_digits)
        throw CLI::ValidationError("'" + text + "' is too many");
    return number;
}

void add_limit(CLI::App& app, std::uint64_t& limit, const char* description)
{
    app.add_option("--limit", limit, description)->transform(limit_of)->type_name("N");
}

/// The number of bytes that a text such as 64M means.
std::string size_in_bytes(const std::string& text)
{
    const std::string wrong = "'" + text + "' is no size (for example 500000, 64M or 1G)";
    const std::size_t unit_at = std::min(text.find_first_not_of(digits), text.size());
    const std::string unit = text.substr(unit_at);
    if (unit_at == 0 || unit.find_first_of(digits) != std::string::npos)
        throw CLI::ValidationError(wrong);
    try {
        std::string size = decimal(text.substr(0, unit_at)) + unit;
        CLI::AsSizeValue(false)(size);
        return size;
    } catch (const CLI::ValidationError&) {
        throw CLI::ValidationError(wrong);
    }
}

void add_file(CLI::App& app, const char* name, std::string& path, const char* description)
{
    app.add_option(name, path, description)->required()->type_name("");
}

unsigned track_of(const std::string& text)
{
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number == 0)
        throw CLI::ValidationError("--track", "'" + text + "' is no number of a track, which count from 1");
    return number;
}

void add_stream_options(CLI::App& app, stream_options& options)
{
    add_framing(app, "--format",
                "The framing: annexb, length1, length2, length3 or length4; without it, it is recognised",
                [&options](h264::framing framing) { options.format = framing; });
    app.add_option_function<std::string>(
           "--track", [&options](const std::string& number) { options.track = track_of(number); },
           "Of a container this track, counted from 1; without it, the first of H.264")
        ->type_name("N");
    app.add_option("--max-unit", options.max_unit,
                   "Report a unit longer than this instead of reading it; K, M and G are powers of 1024")
        ->transform(size_in_bytes)
        ->type_name("BYTES")
        ->default_str("64M");
}

void add_stream(CLI::App& app, const char* name, stream_options& options)
{
    add_file(app, name, options.path, "The stream; - is the standard input");
    add_stream_options(app, options);
}

/// FILE..., and what goes with many of them. `options` are those of each.
void add_streams(CLI::App& app, file_set& files, stream_options& options)
{
    app.add_option("FILE", files.paths, "The streams; - is the standard input")->type_name("");
    app.add_option("--files-from", files.list,
                   "Read the files that LIST names, too, a path a line; - is the standard input")
        ->type_name("LIST");
    app.add_flag("-0,--null", files.null_separated, "In LIST a zero byte ends a path, as find -print0 writes it");
    app.add_option("--jobs", files.jobs, "Read so many files at once; 0 is as many as there are processors")
        ->transform(number_of_jobs)
        ->type_name("N")
        ->default_str("1");
    add_stream_options(app, options);
}

/// Throws CLI::ParseError where the files do not go together.
void check(const file_set& files)
{
    if (files.paths.empty() && files.list.empty())
        throw CLI::RequiredError("FILE");
    if (files.null_separated && files.list.empty())
        throw CLI::ValidationError("--null", "it tells of the list of --files-from, which is not given");
}

/// "A line for each frame, tab-separated".
std::string describe_rows(const char* rows, const char* separator)
{
    return std::string(rows) + ", " + separator + "-separated";
}

/// Adds --json, --csv and --tsv, which stand alone.
void add_format(CLI::App& app, output_format& format, const char* json, const char* rows)
{
    const std::pair<const char*, output_format> formats[] = {
        {"--json", output_format::json}, {"--csv", output_format::csv}, {"--tsv", output_format::tsv}};
    for (const auto& [name, value] : formats)
        app.add_flag_callback(
            name,
            [&format, name = name, value = value] {
                if (format != output_format::text)
                    throw CLI::ValidationError(name, "one of --json, --csv and --tsv is enough");
                format = value;
            },
            value == output_format::json  ? std::string(json)
            : value == output_format::csv ? describe_rows(rows, "comma")
                                          : describe_rows(rows, "tab"));
}

/// Adds --json, --sarif and --junit, which stand alone.
void add_check_format(CLI::App& app, check_format& format)
{
    const std::tuple<const char*, check_format, const char*> formats[] = {
        {"--json", check_format::json_lines, json_lines},
        {"--sarif", check_format::sarif, "Print SARIF 2.1.0 instead"},
        {"--junit", check_format::junit, "Print JUnit instead, a test case for each rule"}};
    for (const auto& [name, value, description] : formats)
        app.add_flag_callback(
            name,
            [&format, name = name, value = value] {
                if (format != check_format::text)
                    throw CLI::ValidationError(name, "one of --json, --sarif and --junit is enough");
                format = value;
            },
            description);
}

/// Throws CLI::ParseError where the options of convert do not go together.
void check(const convert_options& chosen)
{
    const bool wants_stream = !chosen.out.empty() || chosen.to || chosen.avcc.empty();
    if (wants_stream && chosen.out.empty())
        throw CLI::RequiredError("OUT");
    if (wants_stream && !chosen.to)
        throw CLI::RequiredError("--to");
    if (!chosen.avcc.empty() && chosen.to == h264::framing::length_3)
        throw CLI::ValidationError("--avcc", "a record tells length prefixes of 1, 2 and 4 bytes, not of 3");
    if (!chosen.avcc.empty() && chosen.avcc == chosen.out)
        throw CLI::ValidationError("--avcc", "the record needs another place than OUT");
    if (chosen.parameter_sets == "-" && chosen.stream.path == "-")
        throw CLI::ValidationError("--parameter-sets", "the standard input is taken by IN");
}

void add_only(CLI::App& app, const char* description, const std::function<void(const std::bitset<32>&)>& take)
{
    app.add_option_function<std::vector<std::string>>(
           "--only",
           [take](const std::vector<std::string>& lists) {
               std::bitset<32> types;
               try {
                   for (const std::string& list : lists)
                       types |= parse_type_set(list);
               } catch (const std::invalid_argument& error) {
                   throw CLI::ValidationError("--only", error.what());
               }
               take(types);
           },
           description)
        ->allow_extra_args(false)
        ->type_name("TYPES");
}
/// An option that may be repeated; what `take` throws as std::invalid_argument is told of the option.
CLI::Option* add_each(CLI::App& app, const char* name, const char* description,
                      const std::function<void(const std::string&)>& take)
{
    return app
        .add_option_function<std::vector<std::string>>(
            name,
            [name, take](const std::vector<std::string>& texts) {
                try {
                    for (const std::string& text : texts)
                        take(text);
                } catch (const std::invalid_argument& error) {
                    throw CLI::ValidationError(name, error.what());
                }
            },
            description)
        ->allow_extra_args(false);
}

/// Likewise, of one that stands once.
CLI::Option* add_parsed(CLI::App& app, const char* name, const char* description,
                        const std::function<void(const std::string&)>& take)
{
    return app.add_option_function<std::string>(
        name,
        [name, take](const std::string& text) {
            try {
                take(text);
            } catch (const std::invalid_argument& error) {
                throw CLI::ValidationError(name, error.what());
            }
        },
        description);
}

/// Throws CLI::ParseError where the options of edit do not go together.
void check(const edit_options& chosen)
{
    if (chosen.out.empty() && !chosen.dry_run)
        throw CLI::RequiredError("OUT");
    if (!chosen.plan.any())
        throw CLI::ValidationError("edit", "nothing to edit is given");
    if (chosen.json && chosen.out == "-" && !chosen.dry_run)
        throw CLI::ValidationError("--json", "the standard output is taken by OUT");
}

constexpr const char* json_lines = "Print JSON instead, an object a line";
constexpr const char* json_object = "Print a JSON object instead";

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

/// An argument that `parse` makes a value of, or refuses by std::invalid_argument.
template <typename Parse, typename Take>
CLI::Option* add_parsed(CLI::App& app, const char* name, const char* type, const char* description, Parse parse,
                        Take take)
{
    return app
        .add_option_function<std::string>(
            name,
            [name, parse, take](const std::string& text) {
                try {
                    take(parse(text));
                } catch (const std::invalid_argument& error) {
                    throw CLI::ValidationError(name, error.what());
                }
            },
            description)
        ->type_name(type);
}

/// Throws CLI::ParseError where the options of cut do not go together.
void check(const cut_options& chosen)
{
    if (is_surely_empty(chosen.range))
        throw CLI::ValidationError("--to", "it names the first picture that is not written, behind that of --from");
    if (chosen.json && chosen.out == "-")
        throw CLI::ValidationError("--json", "the standard output is taken by OUT");
}

/// The subcommands, their options, and the one that was chosen.
struct command_line {
    command_line();

    void add_inspect();
    void add_explain();
    void add_frames();
    void add_info();
    void add_report();
    void add_check();
    void add_convert();
    void add_cut();
    void add_layer_choices(CLI::App& cutting);
    void add_diff();
    void add_avcc();
    void add_edit();
    void add_edit_shortcuts(CLI::App& editing);
    void add_edit_units(CLI::App& editing);
    void add_help();
    exit_status print_help();
    exit_status run_check();

    template <typename Options>
    void run_with(CLI::App& subcommand, exit_status (*command)(const Options&), const Options& options)
    {
        subcommand.callback([this, command, &options] { chosen = [command, &options] { return command(options); }; });
    }

    template <typename Options>
    void run_over(CLI::App& subcommand, exit_status (*command)(const file_set&, const Options&), const file_set& files,
                  const Options& options)
    {
        subcommand.parse_complete_callback([&files] { check(files); });
        subcommand.callback([this, command, &files, &options] {
            chosen = [command, &files, &options] { return command(files, options); };
        });
    }

    CLI::App app{"What is in an H.264 stream, without decoding a picture", "orv-h264"};
    inspect_options inspect_chosen;
    explain_options explain_chosen;
    frames_options frames_chosen;
    file_set frames_files;
    info_options info_chosen;
    file_set info_files;
    report_options report_chosen;
    check_options check_chosen;
    file_set check_files;
    bool list_rules_wanted = false;
    bool hrd_wanted = false;
    std::string rule_wanted; // to be explained
    convert_options convert_chosen;
    cut_options cut_chosen;
    diff_options diff_chosen;
    avcc_options avcc_chosen;
    edit_options edit_chosen;
    std::string help_wanted; // of this subcommand
    std::function<exit_status()> chosen;
};

command_line::command_line()
{
    app.set_version_flag("-V,--version", "orv-h264 " ORV_UTILS_V4_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(std::string(help_texts::main) + help_texts::exit_statuses);
    add_info();
    add_inspect();
    add_explain();
    add_frames();
    add_report();
    add_check();
    add_convert();
    add_cut();
    add_diff();
    add_edit();
    add_avcc();
    add_help();
}

void command_line::add_inspect()
{
    CLI::App& inspection = *app.add_subcommand("inspect", "Show what a stream holds, unit by unit");
    add_stream(inspection, "FILE", inspect_chosen.stream);
    inspection.add_flag("--nals", inspect_chosen.nals, "Units only, without their fields");
    add_limit(inspection, inspect_chosen.limit, "Stop after N units shown");
    add_only(inspection, "Show these NAL units only, for example 7,8 or 1-5 or sps,pps,idr; may be repeated",
             [this](const std::bitset<32>& types) { inspect_chosen.only = types; });
    inspection.add_flag("--positions", inspect_chosen.positions,
                        "Show every element, with its byte, bit and number of bits before it");
    inspection.add_flag("--long-names", inspect_chosen.long_names, "Name the units as H.264 does");
    add_format(inspection, inspect_chosen.format, json_lines, "A line for each syntax element");
    inspection.parse_complete_callback([this] {
        if (is_table(inspect_chosen.format) && inspect_chosen.nals)
            throw CLI::ValidationError("--nals", "not together with --csv or --tsv");
    });
    inspection.footer(std::string(help_texts::inspect) + help_texts::exit_statuses);
    run_with(inspection, inspect, inspect_chosen);
}

void command_line::add_explain()
{
    CLI::App& explanation = *app.add_subcommand("explain", "Tell what a byte or bit of a stream belongs to");
    add_stream(explanation, "FILE", explain_chosen.stream);
    explanation
        .add_option_function<std::string>(
            "OFFSET", [this](const std::string& text) { take_place(text, explain_chosen); },
            "The byte, counted from 0, in decimal or behind 0x in hexadecimal; with :BIT a bit of it, 0 the most "
            "significant")
        ->required()
        ->type_name("");
    add_format(explanation, explain_chosen.format, json_object, "A line for each fact");
    explanation.footer(std::string(help_texts::explain) + help_texts::exit_statuses);
    run_with(explanation, explain, explain_chosen);
}

void command_line::add_frames()
{
    CLI::App& table = *app.add_subcommand("frames", "List the frames of a stream");
    add_streams(table, frames_files, frames_chosen.stream);
    table.add_flag("--fields,--split-fields", frames_chosen.split_fields, "Show each field by itself");
    table.add_flag("--output-order", frames_chosen.output_order,
                   "Show frames in output order, not as they are decoded");
    add_limit(table, frames_chosen.limit, "Stop after N frames");
    add_format(table, frames_chosen.format, json_lines, "A line for each frame");
    table.footer(std::string(help_texts::frames) + help_texts::many_files + help_texts::exit_statuses);
    run_over(table, frames_of_files, frames_files, frames_chosen);
}

void command_line::add_info()
{
    CLI::App& summary = *app.add_subcommand("info", "Tell what a stream is");
    add_streams(summary, info_files, info_chosen.stream);
    add_format(summary, info_chosen.format, json_object, "A line for each fact");
    summary.footer(std::string(help_texts::info) + help_texts::many_files + help_texts::exit_statuses);
    run_over(summary, info_of_files, info_files, info_chosen);
}

void command_line::add_report()
{
    CLI::App& page = *app.add_subcommand("report", "Write a page about a stream, for a browser");
    add_stream(page, "FILE", report_chosen.stream);
    page.add_option("-o,--output", report_chosen.out,
                    "Where the page goes, report.html where this is not given; - is the standard output")
        ->type_name("FILE")
        ->default_str("");
    page.footer(std::string(help_texts::report) + help_texts::exit_statuses);
    run_with(page, report, report_chosen);
}

void command_line::add_check()
{
    CLI::App& checking = *app.add_subcommand("check", "Tell what a stream breaks of the standard");
    add_streams(checking, check_files, check_chosen.stream);
    add_check_format(checking, check_chosen.format);
    checking
        .add_option("--ignore", check_chosen.ignore, "Pass this rule over; a * at the end stands for all that begin so")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("RULES");
    checking.add_option("--only", check_chosen.only, "Look with these rules alone")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("RULES");
    checking
        .add_option("--profile", check_chosen.profiles,
                    "Look with the requirements of a delivery profile too: disc, low-latency, streaming, or a file")
        ->allow_extra_args(false)
        ->type_name("NAME");
    add_limit(checking, check_chosen.limit, "Show N violations of a rule, and count the others");
    checking.add_flag("--hrd", hrd_wanted,
                      "Show how full the buffers of the hypothetical reference decoder are instead");
    checking.add_flag("--rules", list_rules_wanted, "List the rules instead, in the order of their clauses");
    checking.add_option("--explain", rule_wanted, "Tell of this rule instead")->type_name("RULE");
    checking.footer(std::string(help_texts::check) + help_texts::many_files + help_texts::exit_statuses);
    checking.parse_complete_callback([this] {
        if (hrd_wanted && check_chosen.format > check_format::json_lines)
            throw CLI::ValidationError("--hrd", "not together with --sarif or --junit");
        if (!list_rules_wanted && rule_wanted.empty())
            check(check_files);
    });
    checking.callback([this] { chosen = [this] { return run_check(); }; });
}

exit_status command_line::run_check()
{
    if (list_rules_wanted)
        return list_rules(check_chosen.format);
    if (!rule_wanted.empty())
        return explain_rule(rule_wanted, check_chosen.format);
    if (hrd_wanted)
        return show_hrd_of_files(check_files, {check_chosen.stream, check_chosen.format == check_format::json_lines});
    return check_of_files(check_files, check_chosen);
}

void command_line::add_convert()
{
    CLI::App& conversion = *app.add_subcommand("convert", "Write a stream in another framing");
    add_stream(conversion, "IN", convert_chosen.stream);
    conversion.add_option("OUT", convert_chosen.out, "Where it goes; - is the standard output")->type_name("");
    add_framing(conversion, "--to", "The framing to write: annexb, length1, length2, length3 or length4",
                [this](h264::framing framing) { convert_chosen.to = framing; });
    conversion
        .add_option("--avcc", convert_chosen.avcc,
                    "Write the decoder configuration record of the stream to FILE; OUT is not needed then")
        ->type_name("FILE");
    conversion
        .add_option("--parameter-sets", convert_chosen.parameter_sets,
                    "Take parameter sets from the record in FILE for pictures that lack them")
        ->type_name("FILE");
    conversion.parse_complete_callback([this] { check(convert_chosen); });
    conversion.footer(std::string(help_texts::convert) + help_texts::exit_statuses);
    run_with(conversion, convert, convert_chosen);
}

/// --base, --layer and --view, which stand alone.
void command_line::add_layer_choices(CLI::App& cutting)
{
    const auto choose = [this](const char* name, const layer_choice& layers, const std::string& target) {
        if (cut_chosen.layers.is_some())
            throw CLI::ValidationError(name, "one of --base, --layer and --view is enough");
        cut_chosen.layers = layers;
        cut_chosen.target = target;
    };
    cutting.add_flag_callback(
        "--base", [choose] { choose("--base", layer_choice::of_base(), ""); }, "Write the base layer or view alone");
    add_parsed(cutting, "--layer", "D[,Q[,T]]",
               "Write what this layer of a scalable stream needs: dependency_id, quality_id, temporal_id", parse_layer,
               [choose](const layer_target& target) {
                   choose("--layer", layer_choice::of_layer(target),
                          "layer of dependency_id " + std::to_string(target.dependency_id));
               });
    add_parsed(cutting, "--view", "ID", "Write what this view of a multiview stream needs, by its view_id", parse_view,
               [choose](std::uint16_t view_id) {
                   choose("--view", layer_choice::of_view(view_id), "view of view_id " + std::to_string(view_id));
               });
}

void command_line::add_cut()
{
    CLI::App& cutting = *app.add_subcommand("cut", "Write a part of a stream, or one of its layers");
    add_stream(cutting, "IN", cut_chosen.stream);
    add_file(cutting, "OUT", cut_chosen.out, "Where it goes; - is the standard output");
    add_parsed(cutting, "--from", "PLACE",
               "The first picture that is written: its number, a time as 12.5s, or a byte offset as @0x1267",
               parse_cut_place, [this](const cut_place& place) { cut_chosen.range.from = place; });
    add_parsed(cutting, "--to", "PLACE", "The first picture behind it that is not written, named likewise",
               parse_cut_place, [this](const cut_place& place) { cut_chosen.range.to = place; });
    cutting.add_flag("--key", cut_chosen.key,
                     "Go back to the IDR picture or recovery point at or before --from, so that decoding can begin");
    add_only(cutting, "Write these NAL units only, and no parameter sets but theirs; may be repeated",
             [this](const std::bitset<32>& types) { cut_chosen.only = types; });
    add_layer_choices(cutting);
    add_parsed(cutting, "--rate", "N[/D]",
               "Count times in output order at N/D pictures a second, not as the stream tells them", parse_rate,
               [this](h264::ratio rate) { cut_chosen.rate = rate; });
    cutting.add_flag("--json", cut_chosen.json, "Print a JSON object about what was written");
    cutting.parse_complete_callback([this] { check(cut_chosen); });
    cutting.footer(std::string(help_texts::cut) + help_texts::exit_statuses);
    run_with(cutting, cut, cut_chosen);
}

void command_line::add_diff()
{
    CLI::App& comparison = *app.add_subcommand("diff", "Tell what two streams have otherwise");
    add_file(comparison, "A", diff_chosen.a, "A stream");
    add_file(comparison, "B", diff_chosen.b, "Another one, which is compared with it");
    add_stream_options(comparison, diff_chosen.stream);
    comparison
        .add_option_function<std::vector<std::string>>(
            "--ignore",
            [this](const std::vector<std::string>& lists) {
                for (const std::string& list : lists)
                    diff_chosen.ignored.add(list);
            },
            "Elements, structures and units that may differ: ends of their paths, with * for anything; may be repeated")
        ->allow_extra_args(false)
        ->type_name("PATHS");
    comparison.add_flag("--all", diff_chosen.all, "List every difference, and not a screen of them");
    comparison.add_flag("--json", diff_chosen.json, json_object);
    comparison.footer(std::string(help_texts::diff) + help_texts::diff_statuses);
    run_with(comparison, diff, diff_chosen);
void command_line::add_edit()
{
    CLI::App& editing = *app.add_subcommand("edit", "Change header fields, and prove that nothing else has changed");
    edit_plan& plan = edit_chosen.plan;
    add_stream(editing, "IN", edit_chosen.stream);
    editing.add_option("OUT", edit_chosen.out, "Where it goes; - is the standard output")->type_name("");
    add_each(editing, "--set",
             "Give the element whose path ends so this value, in every unit that has it; with ' where NAME=VALUE and "
             "...' behind it where these hold; may be repeated",
             [&plan](const std::string& text) { plan.sets.push_back(parse_assignment(text)); })
        ->type_name("PATH=VALUE");
    add_edit_units(editing);
    add_edit_shortcuts(editing);
    editing.add_flag("--force", plan.force, "Write what makes slice data unreadable or decode otherwise, too");
    editing.add_flag("--dry-run", edit_chosen.dry_run, "Print the proof, and write nothing; OUT is not needed then");
    editing.add_flag("--json", edit_chosen.json, "Print the proof as a JSON object");
    editing.parse_complete_callback([this] { check(edit_chosen); });
    editing.footer(std::string(help_texts::edit) + help_texts::exit_statuses);
    run_with(editing, edit_stream, edit_chosen);
}

/// What comes and goes.
void command_line::add_edit_units(CLI::App& editing)
{
    edit_plan& plan = edit_chosen.plan;
    add_each(editing, "--delete",
             "Leave out units of these types, for example filler or 14,20, with a condition as --set",
             [&plan](const std::string& text) { plan.deletions.push_back(parse_deletion(text)); })
        ->type_name("TYPES");
    add_each(editing, "--insert",
             "Put a unit in: hex:BYTES or file:PATH, then before or after, then unit N, first, idr or picture",
             [&plan](const std::string& text) { plan.insertions.push_back(parse_insertion(text)); })
        ->type_name("'UNIT WHERE'");
    add_each(editing, "--remove-sei", "Leave out SEI messages of these payload types, by number or name",
             [&plan](const std::string& text) {
                 for (const std::uint32_t type : parse_payload_types(text))
                     plan.removed_payloads.push_back(type);
             })
        ->type_name("TYPES");
    add_each(editing, "--insert-sei", "Put user data into an SEI message before the slices of the first picture",
             [&plan](const std::string& text) { plan.insertions.push_back(parse_sei_insertion(text)); })
        ->type_name("UUID:TEXT");
    add_parsed(editing, "--sei-at",
               "Put what --insert-sei has before the slices of first, idr or picture: of each of them",
               [&plan](const std::string& text) { plan.sei_at = parse_picture_place(text); })
        ->type_name("PLACE");
    editing.add_flag("--add-aud", plan.add_aud, "Put an access unit delimiter before each picture that has none");
    editing.add_flag("--remove-aud", plan.remove_aud, "Leave access unit delimiters out");
    editing.add_flag("--remove-filler", plan.remove_filler, "Leave filler data units and filler payload messages out");
    editing.add_flag("--repeat-headers", plan.repeat_headers,
                     "Put the parameter sets in force before each IDR picture that does not carry its own");
}

/// What stands for several elements of sequence parameter sets.
void command_line::add_edit_shortcuts(CLI::App& editing)
{
    sps_wishes& sps = edit_chosen.plan.sps;
    add_parsed(editing, "--sar", "Sample aspect ratio", [&sps](const std::string& text) {
        sps.sar = parse_sar(text);
    })->type_name("W:H");
    add_parsed(editing, "--rate", "Frames in a second: num_units_in_tick and time_scale",
               [&sps](const std::string& text) { sps.rate = parse_rate(text); })
        ->type_name("N/D");
    add_parsed(editing, "--level", "The level, for example 4.1 or 1b; auto is the lowest that Table A-1 allows",
               [&sps](const std::string& text) { sps.level = parse_level(text); })
        ->type_name("LEVEL");
    add_parsed(editing, "--colour", "Colour primaries, transfer characteristics and matrix, by name or number",
               [&sps](const std::string& text) { sps.colour = parse_colour(text); })
        ->type_name("P:T:M");
    add_parsed(editing, "--crop", "Luma samples to cut off: left, top, right, bottom", [&sps](const std::string& text) {
        sps.crop = parse_crop(text);
    })->type_name("L,T,R,B");
    add_parsed(editing, "--full-range", "Whether samples use all values: on or off", [&sps](const std::string& text) {
        sps.full_range = parse_range(text);
    })->type_name("on|off");
}

void command_line::add_avcc()
{
    CLI::App& record = *app.add_subcommand("avcc", "Show an AVC decoder configuration record");
    add_file(record, "FILE", avcc_chosen.path, "The record; - is the standard input");
    add_format(record, avcc_chosen.format, json_object, "A line for each fact");
    record.footer(std::string(help_texts::avcc) + help_texts::exit_statuses);
    run_with(record, avcc, avcc_chosen);
}

void command_line::add_help()
{
    CLI::App& help = *app.add_subcommand("help", "Print the help of the tool, or of a subcommand");
    help.add_option("SUBCOMMAND", help_wanted, "Whose help; that of the tool without it")->type_name("");
    help.footer(std::string(help_texts::help) + help_texts::exit_statuses);
    help.callback([this] { chosen = [this] { return print_help(); }; });
}

exit_status command_line::print_help()
{
    const std::vector<CLI::App*> named =
        app.get_subcommands([this](CLI::App* subcommand) { return subcommand->get_name() == help_wanted; });
    if (named.empty() && !help_wanted.empty())
        throw refusal(exit_usage_or_io,
                      describe_unknown_subcommand(app, help_wanted) + "; see " + app.get_name() + " --help");
    const CLI::App* const subcommand = named.empty() ? &app : named.front();
    const std::string name = app.get_name() + (help_wanted.empty() ? "" : " " + help_wanted);
    write_output(app.get_formatter()->make_help(subcommand, name, CLI::AppFormatMode::Normal));
    return exit_clean;
}

} // namespace

exit_status run_command_line(int argc, char** argv)
{
    command_line line;
    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    if (words.size() > 1 && words[0] == "help" && !words[1].starts_with('-'))
        words.insert(words.begin() + 1, "--"); // the parser would go on with the subcommand
    std::reverse(words.begin(), words.end());  // as it wants them
    try {
        line.app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) // --help and --version
            return static_cast<exit_status>(line.app.exit(error));
        print_error(describe_usage_error(line.app, error));
        return exit_usage_or_io;
    }
    return line.chosen();
}

} // namespace orv_h264
