#include "command_line/usage_error.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
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

bool stands_before_subcommand(const CLI::App& app, const std::string& word)
{
    const std::vector<std::string> before = app.remaining(false);
    return std::find(before.begin(), before.end(), word) != before.end();
}

std::vector<const CLI::App*> subcommands_of(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App* subcommand) { return !subcommand->get_name().empty(); });
}

/// "info, inspect": the subcommands that have an option; "" when none has it.
std::string owners_of(const CLI::App& app, const std::string& option)
{
    std::string owners;
    for (const CLI::App* const subcommand : subcommands_of(app))
        if (subcommand->get_option_no_throw(option) != nullptr)
            owners += (owners.empty() ? "" : ", ") + subcommand->get_name();
    return owners;
}

std::string unknown_option(const CLI::App& app, const std::string& subcommand, const std::string& word)
{
    const std::string name = word.substr(0, word.find('='));
    const std::string owners = owners_of(app, name);
    if (subcommand.empty())
        return owners.empty() ? fmt::format("there is no option {}", word)
                              : fmt::format("{} has to stand behind a subcommand that has it ({})", name, owners);
    const bool known = app.get_subcommand(subcommand)->get_option_no_throw(name) != nullptr;
    if (known && stands_before_subcommand(app, word))
        return fmt::format("{} has to stand behind {}", name, subcommand);
    if (app.get_option_no_throw(name) != nullptr)
        return fmt::format("{} stands alone, without {}", name, subcommand);
    return owners.empty() ? fmt::format("{} has no option {}", subcommand, word)
                          : fmt::format("{} has no option {} (an option of {})", subcommand, name, owners);
}

/// An option of the subcommand that came more often than it may, or had no value behind it. The parser's text begins
/// with the name of the option.
std::string wrong_count(const CLI::App& subcommand, const CLI::ArgumentMismatch& error)
{
    const std::string text = error.what();
    const std::string name = text.substr(0, text.find(':'));
    const CLI::Option* const option = subcommand.get_option_no_throw(name);
    return option != nullptr && option->count() > 1 ? fmt::format("{} is given more than once", name)
                                                    : fmt::format("{} needs a value", name);
}

std::string reason(const CLI::App& app, const std::string& subcommand, const CLI::ParseError& error)
{
    const std::vector<std::string> unknown = app.remaining(true);
    if (subcommand.empty() && !unknown.empty() && !is_option(unknown.front()))
        return describe_unknown_subcommand(app, unknown.front());
    const auto no_options_behind = std::find(unknown.begin(), unknown.end(), "--");
    const auto option = std::find_if(unknown.begin(), no_options_behind, is_option);
    if (option != no_options_behind)
        return unknown_option(app, subcommand, *option);
    const auto word = std::find_if(unknown.begin(), unknown.end(), [](const std::string& w) { return w != "--"; });
    if (subcommand.empty())
        return word == unknown.end() ? "a subcommand is required" : describe_unknown_subcommand(app, *word);
    if (stands_before_subcommand(app, "--"))
        return fmt::format("-- has to stand behind {}", subcommand);
    if (word != unknown.end())
        return fmt::format("{} is one argument too many", *word);
    if (const auto* const mismatch = dynamic_cast<const CLI::ArgumentMismatch*>(&error))
        return wrong_count(*app.get_subcommand(subcommand), *mismatch);
    return error.what();
}

} // namespace

std::string describe_unknown_subcommand(const CLI::App& app, const std::string& word)
{
    std::error_code unknown;
    if (std::filesystem::is_regular_file(word, unknown))
        return fmt::format("there is no subcommand {}; info tells what a file is", word);
    for (const CLI::App* const subcommand : subcommands_of(app))
        if (subcommand->get_name().starts_with(word) || word.starts_with(subcommand->get_name()))
            return fmt::format("there is no subcommand {} ({}?)", word, subcommand->get_name());
    return fmt::format("there is no subcommand {}", word);
}

std::string describe_usage_error(const CLI::App& app, const CLI::ParseError& error)
{
    const std::string subcommand = subcommand_of(app);
    const std::string program = subcommand.empty() ? app.get_name() : fmt::format("{} {}", app.get_name(), subcommand);
    return fmt::format("{}; see {} --help", reason(app, subcommand, error), program);
}

} // namespace orv_h264
