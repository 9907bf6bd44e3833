// The arguments of each subcommand.
#pragma once

#include "command_line/arguments.h"
#include "exit_status.h"

#include <functional>
#include <memory>

namespace orv_h264 {

/// What the user wants to be run.
struct chosen_command {
    std::function<exit_status()> run;
};

// Each adds a subcommand, which sets what is chosen when the user has named it.
void add_info(CLI::App& tool, chosen_command& chosen);
void add_inspect(CLI::App& tool, chosen_command& chosen);
void add_explain(CLI::App& tool, chosen_command& chosen);
void add_frames(CLI::App& tool, chosen_command& chosen);
void add_report(CLI::App& tool, chosen_command& chosen);
void add_check(CLI::App& tool, chosen_command& chosen);
void add_convert(CLI::App& tool, chosen_command& chosen);
void add_cut(CLI::App& tool, chosen_command& chosen);
void add_edit(CLI::App& tool, chosen_command& chosen);
void add_diff(CLI::App& tool, chosen_command& chosen);
void add_avcc(CLI::App& tool, chosen_command& chosen);

/// The subcommand runs this with its options.
template <typename Options>
void run_with(CLI::App& subcommand, chosen_command& chosen, exit_status (*command)(const Options&),
              const std::shared_ptr<Options>& options)
{
    subcommand.callback([&chosen, command, options] { chosen.run = [command, options] { return command(*options); }; });
}

/// Likewise, over files.
template <typename Options>
void run_over(CLI::App& subcommand, chosen_command& chosen, exit_status (*command)(const file_set&, const Options&),
              const std::shared_ptr<file_set>& files, const std::shared_ptr<Options>& options)
{
    subcommand.parse_complete_callback([files] { check(*files); });
    subcommand.callback([&chosen, command, files, options] {
        chosen.run = [command, files, options] { return command(*files, *options); };
    });
}

} // namespace orv_h264
