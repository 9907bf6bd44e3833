#include "table_output.h"

#include "standard_output.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

std::string utf8_of(const json& value)
{
    const auto& text = value.get_ref<const std::string&>();
    const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    return std::all_of(text.begin(), text.end(), is_ascii) ? text : json::parse(json_line(value)).get<std::string>();
}

std::string joined(const json& array)
{
    std::string cell;
    for (const json& value : array) {
        cell += cell.empty() ? "" : " ";
        cell += cell_of(value);
    }
    return cell;
}

void append_csv(std::string& out, std::string_view cell)
{
    if (cell.find_first_of(",\"\r\n") == std::string_view::npos) {
        out += cell;
        return;
    }
    out += '"';
    for (const char c : cell)
        out.append(c == '"' ? 2 : 1, c);
    out += '"';
}

void append_tsv(std::string& out, std::string_view cell)
{
    for (const char c : cell)
        out += c == '\t' || c == '\n' || c == '\r' ? ' ' : c;
}

void print(output_format table, const std::vector<std::string>& cells)
{
    std::string line;
    append_row(line, table, cells);
    write_output(line);
}

void tell_facts_below(const std::string& path, const json& value, const fact_sink& take)
{
    if (!value.is_structured() || value.empty())
        return take(path, value);
    if (value.is_array()) {
        for (std::size_t i = 0; i < value.size(); ++i)
            tell_facts_below(fmt::format("{}[{}]", path, i), value[i], take);
        return;
    }
    for (const auto& [name, member] : value.items())
        tell_facts_below(path.empty() ? name : fmt::format("{}.{}", path, name), member, take);
}

} // namespace

std::string cell_of(const json& value)
{
    if (value.is_null())
        return "";
    if (value.is_string())
        return utf8_of(value);
    if (value.is_array())
        return joined(value);
    if (value.is_object() && value.contains("value"))
        return cell_of(value["value"]);
    return json_line(value);
}

void append_cell(std::string& out, output_format table, std::string_view cell)
{
    table == output_format::csv ? append_csv(out, cell) : append_tsv(out, cell);
}

void append_row(std::string& out, output_format table, const std::vector<std::string>& cells)
{
    const char* between = "";
    for (const std::string& cell : cells) {
        out += between;
        between = table == output_format::csv ? "," : "\t";
        append_cell(out, table, cell);
    }
    out += '\n';
}

void tell_facts(const json& object, const fact_sink& take)
{
    if (!object.empty())
        tell_facts_below("", object, take);
}

void print_facts(output_format table, const json& object)
{
    print(table, {"path", "value"});
    tell_facts(object, [table](const std::string& path, const json& value) { print(table, {path, cell_of(value)}); });
}

void print_fact_names_of_many(output_format table)
{
    print(table, {"file", "path", "value"});
}

void print_facts_of(const std::string& file, output_format table, const json& object)
{
    const std::string cell = cell_of(file);
    tell_facts(object, [&](const std::string& path, const json& value) { print(table, {cell, path, cell_of(value)}); });
}

} // namespace orv_h264
