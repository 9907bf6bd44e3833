#include "json_output.h"

#include <cstdio>

#include <fmt/format.h>

namespace orv_h264 {

void print_json(const json& object)
{
    constexpr int one_line = -1;
    fmt::print("{}\n", object.dump(one_line, ' ', false, json::error_handler_t::replace));
}

json json_head(const char* schema, std::string_view input_name)
{
    constexpr int version = 1;
    return {{"schema", schema}, {"schema_version", version}, {"file", input_name}};
}

json json_problem(std::uint64_t offset, std::string_view message)
{
    return {{"record", "problem"}, {"offset", offset}, {"message", message}};
}

} // namespace orv_h264
