#include "trace_json.h"

#include "element_text.h"
#include "json_output.h"
#include "repeated_names.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

/// `used` where there is none of the name.
std::size_t json_members::place_of(std::string_view name) const
{
    std::size_t place = 0;
    while (place < used && all[place].name != name)
        ++place;
    return place;
}

json_members::member& json_members::find(std::string_view name)
{
    const std::size_t place = place_of(name);
    if (place < used)
        return all[place];
    if (used == all.size())
        all.emplace_back();
    member& added = all[used++];
    added.name = name;
    added.text.clear();
    added.end = {};
    added.entries = 0;
    return added;
}

std::size_t json_members::entries_of(std::string_view name) const
{
    const std::size_t place = place_of(name);
    return place < used ? all[place].entries : 0;
}

void json_members::put(std::string_view name, std::string_view value)
{
    find(name).text = value;
}

void json_members::append(std::string_view name, std::string_view value)
{
    member& m = find(name);
    if (m.text.empty())
        m.text = '[';
    else
        m.text.back() = ',';
    m.text.append(value) += ']';
    ++m.entries;
}

void json_members::fill(std::string_view name, std::size_t entries)
{
    for (std::size_t missing = entries_of(name); missing < entries; ++missing)
        append(name, "null");
}

// The text of an array is always complete. To put an entry in, as many lists are opened again as it shares with the
// one before.
void json_members::put_entry(const h264::label& at, std::string_view value)
{
    member& m = find(at.name());
    const unsigned depth = at.depth();
    unsigned shared = 0; // indices that are those of the entry before
    if (!m.text.empty())
        while (shared + 1 < depth && at.index(shared) + 1 == m.end[shared])
            ++shared;
    if (m.text.empty())
        m.text = '[';
    else // all of its lists are closed
        m.text.replace(m.text.size() - (shared + 1), shared + 1, ",");
    for (unsigned i = shared; i < depth; ++i) {
        const std::uint32_t from = i == shared ? m.end[i] : 0;
        for (std::uint32_t missing = from; missing < at.index(i); ++missing)
            m.text += "null,";
        m.end[i] = at.index(i) + 1;
        m.text += i + 1 < depth ? "[" : "";
    }
    m.text.append(value).append(depth, ']');
    ++m.entries;
}

// The names are those of H.264, without anything to escape.
void json_members::append_to(std::string& text) const
{
    text += '{';
    const char* before = "\"";
    for (std::size_t i = 0; i < used; ++i) {
        text.append(before).append(all[i].name).append("\":").append(all[i].text);
        before = ",\"";
    }
    text += '}';
}

void trace_json::open(std::string_view name, std::string_view)
{
    if (++depth <= 1)
        return;
    if (depth > levels.size())
        levels.emplace_back();
    inside().begin(name);
}

void trace_json::close()
{
    if (depth <= 1) {
        --depth;
        return;
    }
    const std::string_view name = inside().name;
    const std::string_view object = text_of(inside());
    --depth;
    if (is_repeated_structure(name))
        inside().fields.append(name, object);
    else
        inside().fields.put(name, object);
}

std::string_view trace_json::text_of(structure& complete)
{
    for (const auto& [name, members] :
         {std::pair("meaning", &complete.meaning), std::pair("derived", &complete.derived),
          std::pair("positions", &complete.positions)}) {
        if (members->empty())
            continue;
        object_text.clear();
        members->append_to(object_text);
        complete.fields.put(name, object_text);
    }
    object_text.clear();
    complete.fields.append_to(object_text);
    return object_text;
}

void trace_json::element(const shown_element& shown)
{
    const h264::traced_element& e = shown.element;
    std::string& value = value_text;
    value.clear();
    if (e.how == h264::coding::st) {
        value = json_text({reinterpret_cast<const char*>(e.bytes), e.size});
    } else if (e.bytes != nullptr) {
        append_hexadecimal(value += '"', e.bytes, e.size);
        value += '"';
    } else {
        append_number(value, e.value);
    }
    put(shown, value);
}

void trace_json::bytes(const shown_element& first, byte_span all)
{
    std::string value = "\"";
    append_hexadecimal(value, all.data(), std::min(all.size(), most_bytes));
    const h264::traced_element& e = first.element;
    h264::traced_element whole = e;
    whole.name = e.name.name();
    put({whole, first.byte, first.words, false}, value += '"');
}

void trace_json::put(const shown_element& shown, std::string_view value)
{
    structure& to = inside();
    const h264::label& name = shown.element.name;
    if (to.fields.entries_of(name.name()) == json_members::most_entries)
        return;
    const auto add = [&](json_members& members, std::string_view text) {
        if (shown.repeated || shown.element.how == h264::coding::f)
            members.append(name.name(), text);
        else if (name.depth() == 0)
            members.put(name.name(), text);
        else
            members.put_entry(name, text);
    };
    add(to.fields, value);
    if (!shown.words.empty()) {
        if (shown.repeated) // those before it may have none
            to.meaning.fill(name.name(), to.fields.entries_of(name.name()) - 1);
        add(to.meaning, json_text(shown.words));
    }
    if (with_positions)
        add(to.positions, fmt::format("[{},{},{}]", shown.byte, shown.element.bit % 8, shown.element.bits));
}

void trace_json::follows(const fact& what)
{
    inside().derived.put(what.name, what.json);
}

std::string trace_json::take()
{
    std::string object(text_of(levels.front()));
    levels.front().begin({});
    return object;
}

} // namespace orv_h264
