// Arguments that several subcommands take.
#pragma once

#include "jobs/file_jobs.h"
#include "output_format.h"
#include "stream_input.h"
#include "type_set.h"

#include <bitset>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace orv_h264 {

constexpr const char* json_lines = "Print JSON instead, an object a line";
constexpr const char* json_object = "Print a JSON object instead";

CLI::Option* add_framing(CLI::App& app, const char* name, const char* description,
                         const std::function<void(h264::framing)>& take);
void add_limit(CLI::App& app, std::uint64_t& limit, const char* description);
void add_file(CLI::App& app, const char* name, std::string& path, const char* description);

/// The framing, the track and the largest unit.
void add_stream_options(CLI::App& app, stream_options& options);
/// A stream by its name, and those.
void add_stream(CLI::App& app, const char* name, stream_options& options);
/// FILE..., and what goes with many of them. `options` are those of each.
void add_streams(CLI::App& app, file_set& files, stream_options& options);
/// Throws CLI::ParseError where the files do not go together.
void check(const file_set& files);

/// Adds --json, --csv and --tsv, which stand alone.
void add_format(CLI::App& app, output_format& format, const char* in_json, const char* in_rows);
/// Adds --only TYPES, which may be repeated.
void add_only(CLI::App& app, const char* description, const std::function<void(const std::bitset<32>&)>& take);

/// An option that may be repeated; what `take` throws as std::invalid_argument is told of the option.
CLI::Option* add_each(CLI::App& app, const char* name, const char* type, const char* description,
                      const std::function<void(const std::string&)>& take);

/// An option that `parse` makes a value of, or refuses by std::invalid_argument.
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

} // namespace orv_h264
