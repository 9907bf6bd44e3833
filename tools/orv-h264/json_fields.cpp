#include "json_fields.h"

#include "json_output.h"

#include <algorithm>
#include <utility>

namespace orv_h264 {

namespace {

std::string& append_entries(std::string& out, const std::vector<std::string>& entries)
{
    char before = '[';
    for (const std::string& entry : entries) {
        (out += before) += entry;
        before = ',';
    }
    return out += ']';
}

} // namespace

void json_fields::members::put(const element_name& name, const field_value& value)
{
    append_json(place(name), value);
}

void json_fields::members::put(const element_name& name, const members& object)
{
    object.append_to(place(name));
}

/// Where the text of a value goes.
std::string& json_fields::members::place(const element_name& name)
{
    auto found = std::find_if(all.begin(), all.end(), [&](const member& m) { return m.name == name.name; });
    if (found == all.end())
        found = all.insert(all.end(), {name.name, "", {}});
    if (name.index && found->entries.size() <= *name.index)
        found->entries.resize(*name.index + 1, "null");
    std::string& value = name.index ? found->entries[*name.index] : found->value;
    value.clear();
    return value;
}

// The names are those of H.264, without anything to escape.
void json_fields::members::append_to(std::string& text) const
{
    text += '{';
    const char* before = "\"";
    for (const member& m : all) {
        text.append(before).append(m.name).append("\":");
        m.entries.empty() ? text.append(m.value) : append_entries(text, m.entries);
        before = ",\"";
    }
    text += '}';
}

json_fields::~json_fields()
{
    finish(inside.back());
    inside.back().fields.append_to(out);
}

void json_fields::element(const element_name& name, const field_value& value, std::string_view note)
{
    inside.back().fields.put(name, value);
    if (!note.empty())
        inside.back().meaning.put(name, note);
}

void json_fields::bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text)
{
    const std::string digits = hex_digits(all.first(std::min(all.size(), most_bytes)));
    element(name, std::string_view(digits), text.substr(0, most_bytes));
}

void json_fields::open(const element_name& name, std::string_view)
{
    inside.push_back({name, {}, {}, {}});
}

void json_fields::close()
{
    finish(inside.back());
    const structure closed = std::move(inside.back());
    inside.pop_back();
    inside.back().fields.put(closed.name, closed.fields);
}

void json_fields::open_entry(const element_name& name)
{
    open(name, "");
}

void json_fields::close_entry()
{
    close();
}

void json_fields::told(const fact& what)
{
    inside.back().fields.put(what.first, what.second);
}

void json_fields::derived(std::string_view, std::initializer_list<fact> facts)
{
    for (const fact& what : facts)
        inside.back().derived.put(what.first, what.second);
}

void json_fields::finish(structure& complete)
{
    if (!complete.meaning.empty())
        complete.fields.put("meaning", complete.meaning);
    if (!complete.derived.empty())
        complete.fields.put("derived", complete.derived);
}

} // namespace orv_h264
