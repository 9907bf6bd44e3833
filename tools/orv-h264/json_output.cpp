#include "json_output.h"

#include "standard_output.h"

#include <algorithm>
#include <iterator>

#include <fmt/compile.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

std::string text_of(const json& value)
{
    constexpr int one_line = -1;
    return value.dump(one_line, ' ', false, json::error_handler_t::replace);
}

bool stands_for_itself(char c)
{
    return c >= ' ' && c <= '~' && c != '"' && c != '\\';
}

/// Appends a value; what is not simple, as the JSON library has it.
struct json_writer {
    void operator()(std::uint64_t number) const { fmt::format_to(std::back_inserter(out), FMT_COMPILE("{}"), number); }
    void operator()(std::int64_t number) const { fmt::format_to(std::back_inserter(out), FMT_COMPILE("{}"), number); }
    void operator()(double number) const { out += text_of(number); }
    void operator()(bool yes) const { out += yes ? "true" : "false"; }
    void operator()(std::nullptr_t) const { out += "null"; }

    void operator()(std::string_view text) const
    {
        if (std::all_of(text.begin(), text.end(), stands_for_itself))
            out.append("\"").append(text) += '"';
        else
            out += text_of(text);
    }

    void operator()(std::span<const std::uint8_t> list) const
    {
        fmt::format_to(std::back_inserter(out), "[{}]", fmt::join(list, ","));
    }

    std::string& out;
};

} // namespace

void print_json(const json& object)
{
    write_output(text_of(object) + '\n');
}

void append_json(std::string& out, const field_value& value)
{
    std::visit(json_writer{out}, value);
}

std::string hex_digits(std::span<const std::uint8_t> bytes)
{
    return fmt::format("{:02x}", fmt::join(bytes, ""));
}

json json_head(const char* schema, std::string_view input_name)
{
    constexpr int version = 2;
    return {{"schema", schema}, {"schema_version", version}, {"file", input_name}};
}

json json_first_line(const char* schema, std::string_view input_name)
{
    json line = {{"record", "stream"}};
    line.update(json_head(schema, input_name));
    return line;
}

} // namespace orv_h264
