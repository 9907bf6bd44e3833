#include "command_line/command_line.h"

#include "command_line/subcommands.h"
#include "command_line/usage_error.h"
#include "help_texts.h"
#include "messages.h"
#include "standard_output.h"

#include <orv-utils-v4/version.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace orv_h264 {

namespace {

exit_status print_help(CLI::App& tool, const std::string& wanted)
{
    const std::vector<CLI::App*> named =
        tool.get_subcommands([&](CLI::App* subcommand) { return subcommand->get_name() == wanted; });
    if (named.empty() && !wanted.empty())
        throw refusal(exit_usage_or_io,
                      describe_unknown_subcommand(tool, wanted) + "; see " + tool.get_name() + " --help");
    const CLI::App* const subcommand = named.empty() ? &tool : named.front();
    const std::string name = tool.get_name() + (wanted.empty() ? "" : " " + wanted);
    write_output(tool.get_formatter()->make_help(subcommand, name, CLI::AppFormatMode::Normal));
    return exit_clean;
}

/// The help that the parser has, or the version.
exit_status print_and_exit(const CLI::App& tool, const CLI::ParseError& why)
{
    std::ostringstream text;
    const int status = tool.exit(why, text, text);
    write_output(text.str());
    return static_cast<exit_status>(status);
}

void add_help(CLI::App& tool, chosen_command& chosen)
{
    const auto wanted = std::make_shared<std::string>();
    CLI::App& help = *tool.add_subcommand("help", "Print the help of the tool, or of a subcommand");
    help.add_option("SUBCOMMAND", *wanted, "Whose help; that of the tool without it")->type_name("");
    help.footer(std::string(help_texts::help) + help_texts::exit_statuses);
    help.callback([&tool, &chosen, wanted] { chosen.run = [&tool, wanted] { return print_help(tool, *wanted); }; });
}

} // namespace

exit_status run_command_line(int argc, char** argv)
{
    CLI::App tool("What is in an H.264 stream, without decoding a picture", "orv-h264");
    chosen_command chosen;
    tool.set_version_flag("-V,--version", "orv-h264 " ORV_UTILS_V4_VERSION, "Print the version and exit");
    tool.require_subcommand(1);
    tool.footer(std::string(help_texts::main) + help_texts::exit_statuses);
    for (const auto add : {add_info, add_inspect, add_explain, add_frames, add_report, add_check, add_diff, add_convert,
                           add_cut, add_edit, add_avcc, add_help})
        add(tool, chosen);
    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    if (words.size() > 1 && words[0] == "help" && !words[1].starts_with('-'))
        words.insert(words.begin() + 1, "--"); // the parser would go on with the subcommand
    std::reverse(words.begin(), words.end());  // as it wants them
    try {
        tool.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) // --help and --version
            return print_and_exit(tool, error);
        print_error(describe_usage_error(tool, error));
        return exit_usage_or_io;
    }
    return chosen.run();
}

} // namespace orv_h264
