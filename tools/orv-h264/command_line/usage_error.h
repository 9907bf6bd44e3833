// What is wrong with a command line, in words that name the way out.
#pragma once

#include <string>

#include <CLI/App.hpp>

namespace orv_h264 {

/// What the tool tells of a command line that `app` could not parse, and where help is.
std::string describe_usage_error(const CLI::App& app, const CLI::ParseError& error);

/// "there is no subcommand X", with the one that may be meant.
std::string describe_unknown_subcommand(const CLI::App& app, const std::string& word);

} // namespace orv_h264
