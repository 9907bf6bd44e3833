#include "usage_error.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

bool is_option(std::string_view word)
{
    return word.size() > 1 && word.front() == '-';
}

/// What was asked for: the tool, or the subcommand of it.
std::string program_of(const CLI::App& app)
{
    const std::vector<const CLI::App*> chosen =
        app.get_subcommands([](const CLI::App* subcommand) { return subcommand->parsed(); });
    return chosen.empty() ? app.get_name() : fmt::format("{} {}", app.get_name(), chosen.front()->get_name());
}

std::string reason(const CLI::App& app, const std::string& program, const CLI::ParseError& error)
{
    const std::vector<std::string> unknown = app.remaining(true);
    const auto option = std::find_if(unknown.begin(), unknown.end(), is_option);
    if (option != unknown.end())
        return fmt::format("{} has no option {}", program, *option);
    if (program == app.get_name())
        return unknown.empty() ? "a subcommand is required" : fmt::format("there is no subcommand {}", unknown.front());
    if (!unknown.empty())
        return fmt::format("{} is one argument too many", unknown.front());
    return error.what();
}

} // namespace

std::string describe_usage_error(const CLI::App& app, const CLI::ParseError& error)
{
    const std::string program = program_of(app);
    return fmt::format("{}; see {} --help", reason(app, program, error), program);
}

} // namespace orv_h264
