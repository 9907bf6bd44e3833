#include "json_output.h"

#include "standard_output.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

void print_json(const json& object)
{
    constexpr int one_line = -1;
    std::string line = object.dump(one_line, ' ', false, json::error_handler_t::replace);
    write_output(line += '\n');
}

std::string hex_digits(std::span<const std::uint8_t> bytes)
{
    return fmt::format("{:02x}", fmt::join(bytes, ""));
}

json json_head(const char* schema, std::string_view input_name)
{
    constexpr int version = 1;
    return {{"schema", schema}, {"schema_version", version}, {"file", input_name}};
}

json json_first_line(const char* schema, std::string_view input_name)
{
    json line = {{"record", "stream"}};
    line.update(json_head(schema, input_name));
    return line;
}

json json_problem(std::uint64_t offset, std::string_view message)
{
    return {{"record", "problem"}, {"offset", offset}, {"message", message}};
}

} // namespace orv_h264
