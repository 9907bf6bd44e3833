#include "report/report_trace.h"

#include "element_text.h"
#include "names.h"
#include "trace_lines.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

void report_trace::begin()
{
    inside.clear();
    rows.clear();
    messages.clear();
    message_depth = 0;
}

// What is shown says itself what it is: the outermost structure, a message and its payload have no heading.
void report_trace::open(std::string_view structure, std::string_view heading)
{
    const bool is_message = structure == "sei_message";
    const bool nested = message_depth != 0;
    const bool named = inside.empty() || is_message || (structure == "sei_payload" && inside.size() == message_depth);
    inside.push_back({named ? "" : std::string(heading), named});
    if (is_message && !nested) {
        message_depth = inside.size();
        messages.emplace_back();
        rows.clear();
    }
}

void report_trace::close()
{
    if (inside.size() == message_depth) {
        messages.back().rows = std::exchange(rows, {});
        message_depth = 0;
    }
    inside.pop_back();
}

void report_trace::element(const shown_element& shown)
{
    const h264::traced_element& e = shown.element;
    std::string name;
    append_label(name, e.name);
    add_headings();
    add({inside.size(), name, value_text(e), shown.words, shown.byte});
}

void report_trace::bytes(const shown_element& first, byte_span all)
{
    std::string name;
    append_label(name, first.element.name);
    if (all.size() > 1)
        name += fmt::format(" to [{}]", first.element.name.index(first.element.name.depth() - 1) + all.size() - 1);
    add_headings();
    add({inside.size(), name, value_text(all), first.words, first.byte});
}

void report_trace::follows(const fact& what)
{
    // The heading of a message tells it before the payload opens.
    if (what.name == "payloadType" && message_depth != 0 && inside.size() == message_depth) {
        messages.back().payload_type = static_cast<std::uint32_t>(std::stoul(what.json));
        messages.back().payload_type_name = payload_name(messages.back().payload_type);
    }
    if (what.text.empty())
        return;
    add_headings();
    add({inside.size(), "=", what.text});
}

void report_trace::add_headings()
{
    std::size_t depth = 0;
    for (open_structure& structure : inside) {
        ++depth;
        if (!std::exchange(structure.printed, true))
            add({depth - 1, structure.heading});
    }
}

void report_trace::add(json row)
{
    if (rows.size() < most_rows)
        rows.push_back(std::move(row));
    else if (rows.size() == most_rows)
        rows.push_back(json{0, "=", "further elements are not shown"});
}

std::vector<json> report_trace::take()
{
    return std::exchange(rows, {});
}

std::vector<report_trace::message> report_trace::take_messages()
{
    if (message_depth != 0 && !messages.empty()) // it was cut
        messages.back().rows = std::exchange(rows, {});
    message_depth = 0;
    return std::exchange(messages, {});
}

} // namespace orv_h264
