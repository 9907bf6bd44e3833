#include "command_line/arguments.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <utility>

namespace orv_h264 {

namespace {

const std::map<std::string, h264::framing>& framings()
{
    static const std::map<std::string, h264::framing> by_name = {
        {"annexb", h264::framing::annex_b},   {"length1", h264::framing::length_1},
        {"length2", h264::framing::length_2}, {"length3", h264::framing::length_3},
        {"length4", h264::framing::length_4},
    };
    return by_name;
}

constexpr const char* digits = "0123456789";

/// Digits without the zeros before them, with which the parser would take them for octal.
std::string decimal(const std::string& number)
{
    return number.substr(std::min(number.find_first_not_of('0'), number.size() - 1));
}

std::string limit_of(const std::string& text)
{
    if (text.empty() || text.find_first_not_of(digits) != std::string::npos)
        throw CLI::ValidationError("'" + text + "' is no number");
    return decimal(text);
}

std::string number_of_jobs(const std::string& text)
{
    constexpr std::size_t most_digits = 4;
    std::string number = limit_of(text);
    if (number.size() > most_digits)
        throw CLI::ValidationError("'" + text + "' is too many");
    return number;
}

/// The number of bytes that a text such as 64M means.
std::string size_in_bytes(const std::string& text)
{
    const std::string wrong = "'" + text + "' is no size (for example 500000, 64M or 1G)";
    const std::size_t unit_at = std::min(text.find_first_not_of(digits), text.size());
    const std::string unit = text.substr(unit_at);
    if (unit_at == 0 || unit.find_first_of(digits) != std::string::npos)
        throw CLI::ValidationError(wrong);
    try {
        std::string size = decimal(text.substr(0, unit_at)) + unit;
        CLI::AsSizeValue(false)(size);
        return size;
    } catch (const CLI::ValidationError&) {
        throw CLI::ValidationError(wrong);
    }
}

unsigned track_of(const std::string& text)
{
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number == 0)
        throw CLI::ValidationError("--track", "'" + text + "' is no number of a track, which count from 1");
    return number;
}

/// "A line for each frame, tab-separated".
std::string describe_rows(const char* rows, const char* separator)
{
    return std::string(rows) + ", " + separator + "-separated";
}

} // namespace

CLI::Option* add_framing(CLI::App& app, const char* name, const char* description,
                         const std::function<void(h264::framing)>& take)
{
    return app
        .add_option_function<std::string>(
            name, [take](const std::string& framing) { take(framings().at(framing)); }, description)
        ->check([](const std::string& text) {
            return framings().contains(text)
                       ? ""
                       : "'" + text + "' is no framing (annexb, length1, length2, length3, length4)";
        })
        ->type_name("FRAMING");
}

void add_limit(CLI::App& app, std::uint64_t& limit, const char* description)
{
    app.add_option("--limit", limit, description)->transform(limit_of)->type_name("N");
}

void add_file(CLI::App& app, const char* name, std::string& path, const char* description)
{
    app.add_option(name, path, description)->required()->type_name("");
}

void add_stream_options(CLI::App& app, stream_options& options)
{
    add_framing(app, "--format",
                "The framing: annexb, length1, length2, length3 or length4; without it, it is recognised",
                [&options](h264::framing framing) { options.format = framing; });
    app.add_option_function<std::string>(
           "--track", [&options](const std::string& number) { options.track = track_of(number); },
           "Of a container this track, counted from 1; without it, the first of H.264")
        ->type_name("N");
    app.add_option("--max-unit", options.max_unit,
                   "Report a unit longer than this instead of reading it; K, M and G are powers of 1024")
        ->transform(size_in_bytes)
        ->type_name("BYTES")
        ->default_str("64M");
}

void add_stream(CLI::App& app, const char* name, stream_options& options)
{
    add_file(app, name, options.path, "The stream; - is the standard input");
    add_stream_options(app, options);
}

void add_streams(CLI::App& app, file_set& files, stream_options& options)
{
    app.add_option("FILE", files.paths, "The streams; - is the standard input")->type_name("");
    app.add_option("--files-from", files.list,
                   "Read the files that LIST names, too, a path a line; - is the standard input")
        ->type_name("LIST");
    app.add_flag("-0,--null", files.null_separated, "In LIST a zero byte ends a path, as find -print0 writes it");
    app.add_option("--jobs", files.jobs, "Read so many files at once; 0 is as many as there are processors")
        ->transform(number_of_jobs)
        ->type_name("N")
        ->default_str("1");
    add_stream_options(app, options);
}

void check(const file_set& files)
{
    if (files.paths.empty() && files.list.empty())
        throw CLI::RequiredError("FILE");
    if (files.null_separated && files.list.empty())
        throw CLI::ValidationError("--null", "it tells of the list of --files-from, which is not given");
}

void add_format(CLI::App& app, output_format& format, const char* in_json, const char* in_rows)
{
    const std::pair<const char*, output_format> formats[] = {
        {"--json", output_format::json}, {"--csv", output_format::csv}, {"--tsv", output_format::tsv}};
    for (const auto& [name, value] : formats)
        app.add_flag_callback(
            name,
            [&format, name = name, value = value] {
                if (format != output_format::text)
                    throw CLI::ValidationError(name, "one of --json, --csv and --tsv is enough");
                format = value;
            },
            value == output_format::json  ? std::string(in_json)
            : value == output_format::csv ? describe_rows(in_rows, "comma")
                                          : describe_rows(in_rows, "tab"));
}

void add_only(CLI::App& app, const char* description, const std::function<void(const std::bitset<32>&)>& take)
{
    app.add_option_function<std::vector<std::string>>(
           "--only",
           [take](const std::vector<std::string>& lists) {
               std::bitset<32> types;
               try {
                   for (const std::string& list : lists)
                       types |= parse_type_set(list);
               } catch (const std::invalid_argument& error) {
                   throw CLI::ValidationError("--only", error.what());
               }
               take(types);
           },
           description)
        ->allow_extra_args(false)
        ->type_name("TYPES");
}

CLI::Option* add_each(CLI::App& app, const char* name, const char* type, const char* description,
                      const std::function<void(const std::string&)>& take)
{
    return app
        .add_option_function<std::vector<std::string>>(
            name,
            [name, take](const std::vector<std::string>& texts) {
                try {
                    for (const std::string& text : texts)
                        take(text);
                } catch (const std::invalid_argument& error) {
                    throw CLI::ValidationError(name, error.what());
                }
            },
            description)
        ->allow_extra_args(false)
        ->type_name(type);
}

} // namespace orv_h264
