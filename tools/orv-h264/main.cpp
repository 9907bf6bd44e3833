// orv-h264: the argument table. Each subcommand is a file of its own; every syntax element is read by the library.
#include "exit_status.h"
#include "inspect.h"
#include "type_set.h"

#include <cerrno>
#include <cstdio>
#include <exception>
#include <map>
#include <stdexcept>
#include <string>
#include <system_error>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace {

using orv_h264::exit_status;

const char* const inspect_footer =
    "Each line tells of one NAL unit: the byte offset of its framing, the size of the framing, its length from\n"
    "the header byte to where decoding stops, the size of its RBSP, nal_ref_idc, type and name. Without --nals, the\n"
    "fields of delimiters, parameter sets, slice headers and SEI messages stand indented below their unit, under\n"
    "their H.264 names, what they mean in brackets, and what follows from them behind =. Slice headers go as far as\n"
    "the modification of the reference picture lists. SEI payloads that are not read show their first bytes.\n"
    "What does not parse, and what belongs to no unit and is not zero padding, is reported on the standard error\n"
    "stream with its byte offset; reading goes on.\n"
    "\n"
    "Examples:\n"
    "  orv-h264 inspect movie.264\n"
    "  orv-h264 inspect --only 7,8 movie.264\n"
    "  orv-h264 inspect --only 1-5 --limit 30 movie.264\n"
    "  orv-h264 inspect --nals --only 6-9 --limit 20 movie.264\n"
    "  camera | orv-h264 inspect --nals --format annexb -\n"
    "\n"
    "Exit status: 0 nothing is wrong, 1 the stream is broken somewhere, 2 usage or input and output,\n"
    "3 the input is recognised but not supported.";

void add_inspect(CLI::App& app, orv_h264::inspect_options& options)
{
    static const std::map<std::string, brenik::h2645_common_nalfmt> framings = {
        {"annexb", brenik::nalfmt_annexb},   {"length1", brenik::nalfmt_length1}, {"length2", brenik::nalfmt_length2},
        {"length3", brenik::nalfmt_length3}, {"length4", brenik::nalfmt_length4},
    };
    CLI::App* inspect = app.add_subcommand("inspect", "Show what a stream holds, unit by unit");
    inspect->add_option("FILE", options.path, "The stream; - is the standard input")->required();
    inspect->add_flag("--nals", options.nals, "Units only, without their fields");
    inspect->add_option("--limit", options.limit, "Stop after N units shown")->type_name("N");
    inspect
        ->add_option_function<std::string>(
            "--only",
            [&options](const std::string& text) {
                try {
                    options.only = orv_h264::parse_type_set(text);
                } catch (const std::invalid_argument& error) {
                    throw CLI::ValidationError("--only", error.what());
                }
            },
            "Show these NAL unit types only, for example 7,8 or 1-5")
        ->type_name("TYPES");
    inspect
        ->add_option_function<std::string>(
            "--format", [&options](const std::string& name) { options.format = framings.at(name); },
            "The framing: annexb, length1, length2, length3 or length4; without it, Annex B is recognised")
        ->check(CLI::IsMember(framings).description(""))
        ->type_name("FRAMING");
    inspect
        ->add_option("--max-unit", options.max_unit,
                     "Report a unit longer than this instead of reading it; K, M and G are powers of 1024")
        ->transform(CLI::AsSizeValue(false).description(""))
        ->type_name("BYTES")
        ->default_str("64M");
    inspect->footer(inspect_footer);
}

exit_status run(int argc, char** argv)
{
    CLI::App app("What is in an H.264 stream, without decoding a picture", "orv-h264");
    app.set_version_flag("--version", "orv-h264 " ORV_UTILS_V4_VERSION);
    app.require_subcommand(1);
    orv_h264::inspect_options inspect_options;
    add_inspect(app, inspect_options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? orv_h264::exit_clean : orv_h264::exit_usage_or_io;
    }
    return orv_h264::inspect(inspect_options);
}

void flush_output()
{
    if (std::fflush(stdout) != 0)
        throw std::system_error(errno, std::generic_category(), "standard output");
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const exit_status status = run(argc, argv);
        flush_output();
        return status;
    } catch (const std::exception& error) {
        fmt::print(stderr, "orv-h264: {}\n", error.what());
        return orv_h264::exit_usage_or_io;
    }
}
