#include "json_output.h"

#include "standard_output.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include <fmt/compile.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

bool stands_for_itself(char c)
{
    return c >= ' ' && c <= '~' && c != '"' && c != '\\';
}

} // namespace

std::string json_line(const json& value)
{
    constexpr int one_line = -1;
    return value.dump(one_line, ' ', false, json::error_handler_t::replace);
}

void print_json(const json& object)
{
    write_output(json_line(object) + '\n');
}

std::string json_text(std::string_view text)
{
    const bool simple = std::all_of(text.begin(), text.end(), stands_for_itself);
    return simple ? std::string(1, '"').append(text) += '"' : json_line(text);
}

std::string hex_digits(std::span<const std::uint8_t> bytes)
{
    return fmt::format("{:02x}", fmt::join(bytes, ""));
}

json json_fraction(std::int64_t numerator, std::int64_t denominator)
{
    const double value = static_cast<double>(numerator) / static_cast<double>(denominator);
    return {{"numerator", numerator}, {"denominator", denominator}, {"value", value}};
}

double rounded(double number, int digits)
{
    const double scale = std::pow(10.0, digits);
    return std::round(number * scale) / scale;
}

json json_head(const char* schema, std::string_view input_name)
{
    constexpr int version = 2;
    return {{"schema", schema}, {"schema_version", version}, {"file", input_name}};
}

json record_of(std::string_view file, const json& record)
{
    json whole = {{"record", record["record"]}, {"file", file}};
    whole.update(record);
    return whole;
}

json json_first_line(const char* schema, std::string_view input_name)
{
    json line = {{"record", "stream"}};
    line.update(json_head(schema, input_name));
    return line;
}

} // namespace orv_h264
