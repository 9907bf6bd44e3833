#include "text_fields.h"

#include <iterator>

#include <fmt/compile.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

// Of bytes this many are shown, as hex or as text.
constexpr std::size_t most_hex_bytes = 16;
constexpr std::size_t most_text_bytes = 1024;

std::string quoted(std::string_view text)
{
    return fmt::format("\"{}\"{}", text.substr(0, most_text_bytes), text.size() > most_text_bytes ? " ..." : "");
}

/// Appends a value.
struct value_writer {
    void operator()(std::string_view text) const { out += text; }

    void operator()(std::span<const std::uint8_t> list) const
    {
        fmt::format_to(std::back_inserter(out), "{}", fmt::join(list, " "));
    }

    template <typename T>
    void operator()(T value) const
    {
        fmt::format_to(std::back_inserter(out), FMT_COMPILE("{}"), value);
    }

    std::string& out;
};

} // namespace

std::string hex_start(std::span<const std::uint8_t> bytes)
{
    const bool all = bytes.size() <= most_hex_bytes;
    return fmt::format("{:02x}{}", fmt::join(bytes.first(all ? bytes.size() : most_hex_bytes), " "), all ? "" : " ...");
}

void text_fields::element(const element_name& name, const field_value& value, std::string_view note)
{
    begin_line(name);
    std::visit(value_writer{lines}, value);
    if (!note.empty())
        lines.append(" (").append(note) += ')';
    lines += '\n';
}

void text_fields::bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text)
{
    begin_line(name);
    lines.append(text.empty() ? hex_start(all) : quoted(text)) += '\n';
}

void text_fields::open(const element_name&, std::string_view heading)
{
    if (!heading.empty())
        indent().append(heading) += '\n';
    ++depth;
}

void text_fields::close()
{
    --depth;
}

void text_fields::open_entry(const element_name&) {}

void text_fields::close_entry() {}

void text_fields::told(const fact&) {}

void text_fields::derived(std::string_view text, std::initializer_list<fact>)
{
    indent().append("= ").append(text) += '\n';
}

std::string& text_fields::indent()
{
    constexpr std::size_t step = 4;
    return lines.append(depth * step, ' ');
}

void text_fields::begin_line(const element_name& name)
{
    indent() += name.name;
    if (name.index)
        fmt::format_to(std::back_inserter(lines), FMT_COMPILE("[{}]"), *name.index);
    lines += ' ';
}

} // namespace orv_h264
