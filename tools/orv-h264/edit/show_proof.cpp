#include "edit/show_proof.h"

#include "framing.h"
#include "json_output.h"
#include "names.h"

#include <fmt/format.h>

namespace orv_h264::editing {

namespace {

const char* plural(std::uint64_t count)
{
    return count == 1 ? "" : "s";
}

const char* word_of(difference_kind kind)
{
    switch (kind) {
    case difference_kind::changed:
        return "changed";
    case difference_kind::added:
        return "added";
    case difference_kind::removed:
        return "removed";
    }
    return "";
}

const char* word_of(difference_cause cause)
{
    switch (cause) {
    case difference_cause::named:
        return "named";
    case difference_cause::implied:
        return "implied";
    case difference_cause::renumbered:
        return "renumbered";
    case difference_cause::forced:
        return "forced";
    case difference_cause::none:
        break;
    }
    return "";
}

std::string shown_value(const changed_elements& row)
{
    if (row.what.bytes)
        return "other bytes";
    if (row.values_differ)
        return "several values";
    if (row.what.kind == difference_kind::changed)
        return fmt::format("{} -> {}", row.what.before, row.what.after);
    return fmt::format("{}", row.what.kind == difference_kind::added ? row.what.after : row.what.before);
}

std::string row_text(const changed_elements& row)
{
    const bool by_itself = row.what.cause != difference_cause::named;
    return fmt::format("{:<8} {} {}{}, {} unit{}, the first {}\n", word_of(row.what.kind), row.what.path,
                       shown_value(row), by_itself ? fmt::format(" ({})", word_of(row.what.cause)) : "", row.units,
                       plural(row.units), row.first_unit);
}

std::string unit_name(unsigned type)
{
    return short_unit_name(static_cast<brenik::h264_nal_unit_type>(type));
}

std::string message_name(std::uint32_t payload_type)
{
    const std::string name = payload_name(payload_type);
    return name.empty() ? fmt::format("payload type {}", payload_type) : name;
}

json units_as_json(const std::map<unsigned, std::uint64_t>& units)
{
    json list = json::array();
    for (const auto& [type, count] : units)
        list.push_back({{"nal_unit_type", type}, {"count", count}});
    return list;
}

json row_as_json(const changed_elements& row)
{
    json object = {{"kind", word_of(row.what.kind)}, {"cause", word_of(row.what.cause)}, {"path", row.what.path}};
    const bool shown = !row.what.bytes && !row.values_differ;
    object["before"] = shown && row.what.kind != difference_kind::added ? json(row.what.before) : json();
    object["after"] = shown && row.what.kind != difference_kind::removed ? json(row.what.after) : json();
    object["units"] = row.units;
    object["first_unit"] = row.first_unit;
    return object;
}

} // namespace

std::string text_of(const proof& shown, bool dry_run)
{
    std::string text;
    for (const changed_elements& row : shown.changes.rows())
        text += row_text(row);
    for (const auto& [type, count] : shown.removed_messages)
        text += fmt::format("deleted  {} message{} {}\n", count, plural(count), message_name(type));
    for (const auto& [type, count] : shown.deleted)
        text += fmt::format("deleted  {} unit{} {}\n", count, plural(count), unit_name(type));
    for (const auto& [type, count] : shown.inserted)
        text += fmt::format("inserted {} unit{} {}\n", count, plural(count), unit_name(type));
    text += fmt::format("{} unit{} copied byte for byte, {} rewritten; {} element{} of them compared, data of {} "
                        "slice{} equal, nothing else has changed\n",
                        shown.copied, plural(shown.copied), shown.rewritten, shown.elements, plural(shown.elements),
                        shown.slices, plural(shown.slices));
    if (shown.bytes_alone != 0)
        text += fmt::format("{} of them cannot be read: compared byte by byte alone\n", shown.bytes_alone);
    if (dry_run)
        text += "nothing is written: --dry-run\n";
    return text;
}

void print_json(const proof& shown, const std::string& input_name, const std::string& out, h264::framing framing,
                bool dry_run)
{
    json object = json_head("orv-h264/edit", input_name);
    object["out"] = dry_run ? json() : json(out);
    object["framing"] = framing_name(framing);
    json changes = json::array();
    for (const changed_elements& row : shown.changes.rows())
        changes.push_back(row_as_json(row));
    object["changes"] = std::move(changes);
    json messages = json::array();
    for (const auto& [type, count] : shown.removed_messages)
        messages.push_back({{"payload_type", type}, {"count", count}});
    object["deleted_messages"] = std::move(messages);
    object["deleted_units"] = units_as_json(shown.deleted);
    object["inserted_units"] = units_as_json(shown.inserted);
    object["copied_units"] = shown.copied;
    object["rewritten_units"] = shown.rewritten;
    object["compared_elements"] = shown.elements;
    object["equal_slices"] = shown.slices;
    object["unreadable_units"] = shown.bytes_alone;
    orv_h264::print_json(object);
}

} // namespace orv_h264::editing
