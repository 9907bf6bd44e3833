#include "edit/edit.h"

#include "command_line/subcommands.h"
#include "help_texts.h"

namespace orv_h264 {

namespace {

using namespace editing;

/// Throws CLI::ParseError where the options of edit do not go together.
void check_edit(const edit_options& chosen)
{
    if (chosen.out.empty() && !chosen.dry_run)
        throw CLI::RequiredError("OUT");
    if (!chosen.plan.any())
        throw CLI::ValidationError("edit", "nothing to edit is given");
    if (chosen.json && chosen.out == "-" && !chosen.dry_run)
        throw CLI::ValidationError("--json", "the standard output is taken by OUT");
}

/// What comes and goes.
void add_units(CLI::App& editing, edit_plan& plan)
{
    add_each(editing, "--delete", "TYPES",
             "Leave out units of these types, for example filler or 14,20, with a condition as --set",
             [&plan](const std::string& text) { plan.deletions.push_back(parse_deletion(text)); });
    add_each(editing, "--insert", "'UNIT WHERE'",
             "Put a unit in: hex:BYTES or file:PATH, then before or after, then unit N, first, idr or picture",
             [&plan](const std::string& text) { plan.insertions.push_back(parse_insertion(text)); });
    add_each(editing, "--remove-sei", "TYPES", "Leave out SEI messages of these payload types, by number or name",
             [&plan](const std::string& text) {
                 for (const std::uint32_t type : parse_payload_types(text))
                     plan.removed_payloads.push_back(type);
             });
    add_each(editing, "--insert-sei", "UUID:TEXT",
             "Put user data into an SEI message before the slices of the first picture",
             [&plan](const std::string& text) { plan.insertions.push_back(parse_sei_insertion(text)); });
    add_parsed(editing, "--sei-at", "PLACE",
               "Put what --insert-sei has before the slices of first, idr or picture: of each of them",
               parse_picture_place, [&plan](const auto& v) { plan.sei_at = v; });
    editing.add_flag("--add-aud", plan.add_aud, "Put an access unit delimiter before each picture that has none");
    editing.add_flag("--remove-aud", plan.remove_aud, "Leave access unit delimiters out");
    editing.add_flag("--remove-filler", plan.remove_filler, "Leave filler data units and filler payload messages out");
    editing.add_flag("--repeat-headers", plan.repeat_headers,
                     "Put the parameter sets in force before each IDR picture that does not carry its own");
}

/// What stands for several elements of sequence parameter sets.
void add_shortcuts(CLI::App& editing, sps_wishes& sps)
{
    add_parsed(editing, "--sar", "W:H", "Sample aspect ratio", parse_sar, [&sps](const auto& v) { sps.sar = v; });
    add_parsed(editing, "--rate", "N/D", "Frames in a second: num_units_in_tick and time_scale", parse_rate,
               [&sps](const auto& v) { sps.rate = v; });
    add_parsed(editing, "--level", "LEVEL",
               "The level, for example 4.1 or 1b; auto is the lowest that Table A-1 allows", parse_level,
               [&sps](const auto& v) { sps.level = v; });
    add_parsed(editing, "--colour", "P:T:M", "Colour primaries, transfer characteristics and matrix, by name or number",
               parse_colour, [&sps](const auto& v) { sps.colour = v; });
    add_parsed(editing, "--crop", "L,T,R,B", "Luma samples to cut off: left, top, right, bottom", parse_crop,
               [&sps](const auto& v) { sps.crop = v; });
    add_parsed(editing, "--full-range", "on|off", "Whether samples use all values: on or off", parse_range,
               [&sps](const auto& v) { sps.full_range = v; });
}

} // namespace

void add_edit(CLI::App& tool, chosen_command& chosen)
{
    const auto options = std::make_shared<edit_options>();
    CLI::App& editing = *tool.add_subcommand("edit", "Change header fields, and prove that nothing else has changed");
    edit_plan& plan = options->plan;
    add_stream(editing, "IN", options->stream);
    editing.add_option("OUT", options->out, "Where it goes; - is the standard output")->type_name("");
    add_each(editing, "--set", "PATH=VALUE",
             "Give the element whose path ends so this value, in every unit that has it; with ' where NAME=VALUE and "
             "...' behind it where these hold; may be repeated",
             [&plan](const std::string& text) { plan.sets.push_back(parse_assignment(text)); });
    add_units(editing, plan);
    add_shortcuts(editing, plan.sps);
    editing.add_flag("--force", plan.force, "Write what makes slice data unreadable or decode otherwise, too");
    editing.add_flag("--dry-run", options->dry_run, "Print the proof, and write nothing; OUT is not needed then");
    editing.add_flag("--json", options->json, "Print the proof as a JSON object");
    editing.parse_complete_callback([options] { check_edit(*options); });
    editing.footer(std::string(help_texts::edit) + help_texts::exit_statuses);
    run_with(editing, chosen, edit_stream, options);
}

} // namespace orv_h264
