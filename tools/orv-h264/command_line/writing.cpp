// Those that write a stream as another one, and the one that compares two.
#include "command_line/subcommands.h"
#include "convert.h"
#include "cut/cut.h"
#include "cut/cut_arguments.h"
#include "diff/diff.h"
#include "edit/sps_wishes.h"
#include "help_texts.h"

namespace orv_h264 {

namespace {

/// Throws CLI::ParseError where the options of convert do not go together.
void check_conversion(const convert_options& chosen)
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

/// Throws CLI::ParseError where the options of cut do not go together.
void check_cut(const cut_options& chosen)
{
    if (is_surely_empty(chosen.range))
        throw CLI::ValidationError("--to", "it names the first picture that is not written, behind that of --from");
    if (chosen.json && chosen.out == "-")
        throw CLI::ValidationError("--json", "the standard output is taken by OUT");
}

/// --base, --layer and --view, which stand alone.
void add_layer_choices(CLI::App& cutting, cut_options& chosen)
{
    const auto choose = [&chosen](const char* name, const layer_choice& layers, const std::string& target) {
        if (chosen.layers.is_some())
            throw CLI::ValidationError(name, "one of --base, --layer and --view is enough");
        chosen.layers = layers;
        chosen.target = target;
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

} // namespace

void add_convert(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<convert_options>();
    CLI::App& conversion = *tool.add_subcommand("convert", "Write a stream in another framing");
    add_stream(conversion, "IN", options->stream);
    conversion.add_option("OUT", options->out, "Where it goes; - is the standard output")->type_name("");
    add_framing(conversion, "--to", "The framing to write: annexb, length1, length2, length3 or length4",
                [options](h264::framing framing) { options->to = framing; });
    conversion
        .add_option("--avcc", options->avcc,
                    "Write the decoder configuration record of the stream to FILE; OUT is not needed then")
        ->type_name("FILE");
    conversion
        .add_option("--parameter-sets", options->parameter_sets,
                    "Take parameter sets from the record in FILE for pictures that lack them")
        ->type_name("FILE");
    conversion.parse_complete_callback([options] { check_conversion(*options); });
    conversion.footer(std::string(help_texts::convert) + help_texts::exit_statuses);
    run_with(conversion, chosen, convert, options);
}

void add_cut(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<cut_options>();
    CLI::App& cutting = *tool.add_subcommand("cut", "Write a part of a stream, or one of its layers");
    add_stream(cutting, "IN", options->stream);
    add_file(cutting, "OUT", options->out, "Where it goes; - is the standard output");
    add_parsed(cutting, "--from", "PLACE",
               "The first picture that is written: its number, a time as 12.5s, or a byte offset as @0x1267",
               parse_cut_place, [options](const cut_place& place) { options->range.from = place; });
    add_parsed(cutting, "--to", "PLACE", "The first picture behind it that is not written, named likewise",
               parse_cut_place, [options](const cut_place& place) { options->range.to = place; });
    cutting.add_flag("--key", options->key,
                     "Go back to the IDR picture or recovery point at or before --from, so that decoding can begin");
    add_only(cutting, "Write these NAL units only, and no parameter sets but theirs; may be repeated",
             [options](const std::bitset<32>& types) { options->only = types; });
    add_layer_choices(cutting, *options);
    add_parsed(cutting, "--rate", "N[/D]",
               "Count times in output order at N/D pictures a second, not as the stream tells them",
               editing::parse_rate, [options](h264::ratio rate) { options->rate = rate; });
    cutting.add_flag("--json", options->json, "Print a JSON object about what was written");
    cutting.parse_complete_callback([options] { check_cut(*options); });
    cutting.footer(std::string(help_texts::cut) + help_texts::exit_statuses);
    run_with(cutting, chosen, cut, options);
}

void add_diff(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<diff_options>();
    CLI::App& comparison = *tool.add_subcommand("diff", "Tell what two streams have otherwise");
    add_file(comparison, "A", options->a, "A stream");
    add_file(comparison, "B", options->b, "Another one, which is compared with it");
    add_stream_options(comparison, options->stream);
    comparison
        .add_option_function<std::vector<std::string>>(
            "--ignore",
            [options](const std::vector<std::string>& lists) {
                for (const std::string& list : lists)
                    options->ignored.add(list);
            },
            "Elements, structures and units that may differ: ends of their paths, with * for anything; may be repeated")
        ->allow_extra_args(false)
        ->type_name("PATHS");
    comparison.add_flag("--all", options->all, "List every difference, and not a screen of them");
    comparison.add_flag("--json", options->json, json_object);
    comparison.footer(std::string(help_texts::diff) + help_texts::diff_statuses);
    run_with(comparison, chosen, diff, options);
}

} // namespace orv_h264
