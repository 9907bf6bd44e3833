#include "json_fields.h"

#include "json_output.h"

#include <algorithm>
#include <string>
#include <type_traits>
#include <utility>

namespace orv_h264 {

namespace {

json& place(json& object, const element_name& name)
{
    json& member = object[std::string(name.name)];
    if (!name.index)
        return member;
    while (member.size() <= *name.index)
        member.push_back(nullptr);
    return member[*name.index];
}

json json_of(const field_value& value)
{
    return std::visit(
        [](const auto& held) -> json {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::span<const std::uint8_t>>)
                return std::vector<std::uint8_t>(held.begin(), held.end());
            else
                return held;
        },
        value);
}

} // namespace

void json_fields::element(const element_name& name, const field_value& value, std::string_view note)
{
    place(*inside.back().object, name) = json_of(value);
    if (!note.empty())
        place(inside.back().meaning, name) = note;
}

void json_fields::bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text)
{
    const std::string digits = hex_digits(all.first(std::min(all.size(), most_bytes)));
    element(name, std::string_view(digits), text.substr(0, most_bytes));
}

void json_fields::open(const element_name& name, std::string_view)
{
    json& member = place(*inside.back().object, name);
    member = json::object();
    inside.push_back({&member, {}, {}});
}

void json_fields::close()
{
    structure& closed = inside.back();
    if (!closed.meaning.is_null())
        (*closed.object)["meaning"] = std::move(closed.meaning);
    if (!closed.derived.is_null())
        (*closed.object)["derived"] = std::move(closed.derived);
    inside.pop_back();
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
    (*inside.back().object)[what.first] = json_of(what.second);
}

void json_fields::derived(std::string_view, std::initializer_list<fact> facts)
{
    for (const fact& what : facts)
        inside.back().derived[what.first] = json_of(what.second);
}

} // namespace orv_h264
