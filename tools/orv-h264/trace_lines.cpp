#include "trace_lines.h"

#include "element_text.h"
#include "standard_output.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include <fmt/compile.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

// Of bytes this many are shown, as hex or as text.
constexpr std::size_t most_hex_bytes = 16;
constexpr std::size_t most_text_bytes = 1024;

/// What the bytes say where they are text, the zero that ends a string aside.
std::optional<std::string_view> text_in(byte_span bytes)
{
    const byte_span string = bytes.first(bytes.size() - (!bytes.empty() && bytes.back() == 0 ? 1 : 0));
    const auto stands_for_itself = [](unsigned char c) { return c >= ' ' && c <= '~'; };
    if (!std::all_of(string.begin(), string.end(), stands_for_itself))
        return std::nullopt;
    return std::string_view(reinterpret_cast<const char*>(string.data()), string.size());
}

std::string shown_bytes(byte_span bytes)
{
    const std::optional<std::string_view> text = text_in(bytes);
    if (!text)
        return hex_start(bytes);
    return fmt::format("\"{}\"{}", text->substr(0, most_text_bytes), text->size() > most_text_bytes ? " ..." : "");
}

/// 8-4-4-4-12 hex digits.
std::string uuid_text(byte_span bytes)
{
    std::string text = fmt::format("{:02x}", fmt::join(bytes, ""));
    for (const std::size_t dash : {20U, 16U, 12U, 8U})
        text.insert(dash, 1, '-');
    return text;
}

} // namespace

std::string value_text(byte_span bytes)
{
    return bytes.size() == 1 ? std::to_string(bytes.front()) : shown_bytes(bytes);
}

std::string value_text(const h264::traced_element& element)
{
    if (element.how == h264::coding::st)
        return shown_bytes({element.bytes, element.size});
    if (element.name.name() == std::string_view("uuid_iso_iec_11578"))
        return uuid_text({element.bytes, element.size});
    std::string text;
    append_value(text, element);
    return text;
}

std::string hex_start(byte_span bytes)
{
    const bool all = bytes.size() <= most_hex_bytes;
    return fmt::format("{:02x}{}", fmt::join(bytes.first(all ? bytes.size() : most_hex_bytes), " "), all ? "" : " ...");
}

// The unit's line names the outermost structures, the heading of an SEI message its payload.
void trace_lines::open(std::string_view structure, std::string_view heading)
{
    const bool is_payload = structure == "sei_payload";
    const bool named = inside.empty() || inside.back().is_payload || structure == "sei_message";
    inside.push_back({named ? "" : std::string(heading), is_payload, named});
    if (is_payload)
        print_headings();
}

void trace_lines::close()
{
    inside.pop_back();
}

void trace_lines::element(const shown_element& shown)
{
    const h264::traced_element& e = shown.element;
    begin_line(shown);
    append_label(text, e.name);
    text += ' ';
    if (e.bytes == nullptr && e.how != h264::coding::st) // most of them
        append_value(text, e);
    else
        text += value_text(e);
    end_line(shown.words);
}

void trace_lines::bytes(const shown_element& first, byte_span all)
{
    begin_line(first);
    append_label(text, first.element.name);
    if (all.size() > 1)
        fmt::format_to(std::back_inserter(text), " to [{}]",
                       first.element.name.index(first.element.name.depth() - 1) + all.size() - 1);
    text += ' ';
    text += value_text(all);
    end_line(first.words);
}

void trace_lines::follows(const fact& what)
{
    if (what.text.empty())
        return;
    print_headings();
    if (with_positions)
        text.append(position_width, ' ');
    indent().append("= ").append(what.text) += '\n';
}

void trace_lines::print_headings()
{
    std::size_t steps = 1;
    for (open_structure& structure : inside) {
        if (!structure.printed) {
            if (with_positions)
                text.append(position_width, ' ');
            indent(steps).append(structure.heading) += '\n';
            structure.printed = true;
        }
        steps += structure.heading.empty() ? 0 : 1;
    }
}

std::string& trace_lines::indent(std::size_t steps)
{
    constexpr std::size_t step = 4;
    return text.append(steps * step, ' ');
}

std::string& trace_lines::indent()
{
    const auto with_line = std::count_if(inside.begin(), inside.end(),
                                         [](const open_structure& structure) { return !structure.heading.empty(); });
    return indent(static_cast<std::size_t>(with_line) + 1);
}

void trace_lines::begin_line(const shown_element& shown)
{
    constexpr std::size_t enough = std::size_t{256} * 1024;
    if (text.size() >= enough) {
        put_output(text);
        text.clear();
    }
    print_headings();
    if (with_positions)
        fmt::format_to(std::back_inserter(text), FMT_COMPILE("{:>11}.{} {:>5}"), shown.byte, shown.element.bit % 8,
                       shown.element.bits);
    indent();
}

void trace_lines::end_line(std::string_view words)
{
    if (!words.empty())
        text.append(" (").append(words) += ')';
    text += '\n';
}

} // namespace orv_h264
