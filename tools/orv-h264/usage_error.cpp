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

/// The subcommand that was asked for, or "".
std::string subcommand_of(const CLI::App& app)
{
    const std::vector<const CLI::App*> chosen =
        app.get_subcommands([](const CLI::App* subcommand) { return subcommand->parsed(); });
    return chosen.empty() ? "" : chosen.front()->get_name();
}

std::string reason(const CLI::App& app, const std::string& subcommand, const CLI::ParseError& error)
{
    const std::vector<std::string> unknown = app.remaining(true);
    const auto option = std::find_if(unknown.begin(), unknown.end(), is_option);
    if (option != unknown.end())
        return subcommand.empty() ? fmt::format("there is no option {}", *option)
                                  : fmt::format("{} has no option {}", subcommand, *option);
    if (subcommand.empty())
        return unknown.empty() ? "a subcommand is required" : fmt::format("there is no subcommand {}", unknown.front());
    if (!unknown.empty())
        return fmt::format("{} is one argument too many", unknown.front());
    return error.what();
}

} // namespace

std::string describe_usage_error(const CLI::App& app, const CLI::ParseError& error)
{
    const std::string subcommand = subcommand_of(app);
    const std::string program = subcommand.empty() ? app.get_name() : fmt::format("{} {}", app.get_name(), subcommand);
    return fmt::format("{}; see {} --help", reason(app, subcommand, error), program);
}

} // namespace orv_h264
