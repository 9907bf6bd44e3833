#include "row_members.h"

#include "element_text.h"
#include "table_output.h"

#include <string>
#include <type_traits>
#include <vector>

namespace orv_h264 {

namespace {

double fraction_of(h264::exact_time time)
{
    return static_cast<double>(time.numerator) / static_cast<double>(time.denominator);
}

/// Appends values as JSON has them.
class row_values {
public:
    explicit row_values(std::string& to) : out(to) {}

    void put(bool value) { out += value ? "true" : "false"; }
    void put(std::string_view value) { out += json_text(value); }
    template <class Number>
    std::enable_if_t<std::is_integral_v<Number>> put(Number value)
    {
        append_number(out, value);
    }
    void put(h264::slice_kind kind) { put(std::string_view(slice_kind_name(kind))); }
    void put(const row_unit& unit) { put(unit.nal_unit_type); }
    void put(const row_layer& layer) { out += json_of(layer).dump(); }
    void put(h264::exact_time time)
    {
        append_number(out += "{\"numerator\":", time.numerator);
        append_number(out += ",\"denominator\":", time.denominator);
        put_double(out += ",\"value\":", fraction_of(time));
        out += '}';
    }
    static void put_double(std::string& out, double value) { out += json(value).dump(); }

private:
    std::string& out;
};

/// The members of an object in one line.
class row_as_json {
public:
    explicit row_as_json(std::string& to) : out(to), values(to) {}

    template <class Value>
    void member(std::string_view name, const Value& value)
    {
        out.append(before).append(name).append("\":");
        before = ",\"";
        put(value);
    }
    void end() { out += "}\n"; }

private:
    template <class Value>
    void put(const Value& value)
    {
        values.put(value);
    }
    template <class Value>
    void put(const std::optional<Value>& value)
    {
        if (value)
            values.put(*value);
        else
            out += "null";
    }
    void put(h264::exact_time time) { put(time ? std::optional(time) : std::nullopt); }
    template <class List>
    void put_list(const List& list)
    {
        out += '[';
        const char* between = "";
        for (const auto& entry : list) {
            out += between;
            between = ",";
            values.put(entry);
        }
        out += ']';
    }
    void put(const slice_kinds& list) { put_list(list); }
    void put(const std::vector<row_unit>& list) { put_list(list); }
    void put(const std::vector<row_layer>& list) { put_list(list); }

    std::string& out;
    row_values values;
    const char* before = "{\"";
};

/// The same as the cells of a table.
class row_as_cells {
public:
    row_as_cells(std::string& to, output_format format) : out(to), table(format) {}

    template <class Value>
    void member(std::string_view, const Value& value)
    {
        cell.clear();
        put(value);
        append_cell(out, table, cell);
        out += table == output_format::csv ? ',' : '\t';
    }
    void end() { out.back() = '\n'; }

private:
    void put(std::string_view value) { cell += value; }
    template <class Value>
    void put(const Value& value)
    {
        row_values(cell).put(value);
    }
    template <class Value>
    void put(const std::optional<Value>& value)
    {
        if (value)
            put(*value);
    }
    void put(h264::exact_time time)
    {
        if (time)
            row_values::put_double(cell, fraction_of(time));
    }
    void put(h264::slice_kind kind) { cell += slice_kind_name(kind); }
    template <class List>
    void put_list(const List& list)
    {
        for (const auto& entry : list) {
            cell += cell.empty() ? "" : " ";
            put(entry);
        }
    }
    void put(const slice_kinds& list) { put_list(list); }
    void put(const std::vector<row_unit>& list) { put_list(list); }
    void put(const std::vector<row_layer>& list) { put_list(list); }

    std::string& out;
    output_format table;
    std::string cell;
};

/// Their names.
class row_as_names {
public:
    row_as_names(std::string& to, output_format format) : out(to), between(format == output_format::csv ? ',' : '\t') {}

    template <class Value>
    void member(std::string_view name, const Value&)
    {
        out += name;
        out += between;
    }
    void end() { out.back() = '\n'; }

private:
    std::string& out;
    char between;
};

constexpr std::string_view row_record = "frame";

} // namespace

void append_json(std::string& out, const picture_row& row, std::optional<container_ratio> tick, const std::string* file)
{
    row_as_json line(out);
    line.member("record", row_record);
    if (file != nullptr)
        line.member("file", std::string_view(*file));
    tell_row(row, tick, line);
    line.end();
}

void append_columns(std::string& out, output_format table, const picture_row& row, std::optional<container_ratio> tick,
                    const std::string* file)
{
    row_as_cells line(out, table);
    if (file != nullptr)
        line.member("file", std::string_view(cell_of(*file)));
    line.member("record", row_record);
    tell_row(row, tick, line);
    line.end();
}

void append_column_names(std::string& out, output_format table, bool in_container, bool with_file)
{
    row_as_names line(out, table);
    if (with_file)
        line.member("file", 0);
    line.member("record", 0);
    tell_row(picture_row(), in_container ? std::optional(container_ratio()) : std::nullopt, line);
    line.end();
}

} // namespace orv_h264
