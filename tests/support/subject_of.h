// Makes a subject of one of the pairs of parses in tests/support. Beside `structure` and the call, a pair may have
//   most_entries            a limit on the entries of arrays that is not 128
//   kept_value(c, element)  the value that a parse stored for an element, where the names do not tell
//   looked_ahead(element)   see subject.h
//   never_throws            that it is one of the legacy interface
#pragma once

#include "support/subject.h"

#include <memory>
#include <utility>

namespace support {

/// Whether a structure says if it is valid; those of the legacy interface do not.
template <typename Structure>
concept has_valid = requires(Structure object)
{
    object.valid = true;
};

inline bit_range all_bits(const element_writer& writer)
{
    return {writer.made().data(), writer.made().data() + writer.made().size()};
}

/// The object that a parse of the structure leaves.
template <typename Parses>
typename Parses::structure left_by(const Parses& parses, const element_writer& writer)
{
    typename Parses::structure object{};
    parses(object, all_bits(writer));
    return object;
}

template <typename Structure>
void set_up(Structure& object, object_state state, const Structure& filled)
{
    if (state == object_state::as_left)
        return;
    const bool fresh = state == object_state::fresh || state == object_state::fresh_and_valid;
    object = fresh ? Structure{} : Structure(filled);
    if constexpr (has_valid<Structure>)
        object.valid = state == object_state::fresh_and_valid || state == object_state::filled_and_valid;
}

template <typename Parses>
std::optional<std::int64_t> kept_value(const Parses& parses, const compared& c, const element& e)
{
    if constexpr (requires { parses.kept_value(c, e); })
        return parses.kept_value(c, e);
    if (!c.after.names->contain(e.name))
        return {};
    const value& field = c.after.at(e.name);
    return field.entries.empty() ? field.number : field.entries.at(e.entry);
}

template <typename Parses>
bool looked_ahead(const Parses& parses, const element& e)
{
    if constexpr (requires { parses.looked_ahead(e); })
        return parses.looked_ahead(e);
    return false;
}

/// `filled` is left by an earlier parse.
template <typename Parses>
subject subject_of(std::string name, const Parses& parses, const element_writer& valid,
                   const typename Parses::structure& filled)
{
    using structure = typename Parses::structure;
    constexpr std::size_t entries = most_entries<Parses>();
    const auto object = std::make_shared<structure>();
    const auto parse = [parses, filled, object](const bit_range& bits, object_state state) {
        set_up(*object, state, filled);
        return parses(*object, bits);
    };
    return {std::move(name),
            valid,
            valid.size_in_bits(),
            {},
            true,
            entries,
            !has_valid<structure>,
            entries > 128,
            parse,
            [parses](const compared& c, const element& e) { return kept_value(parses, c, e); },
            [parses](const element& e) { return looked_ahead(parses, e); }};
}

} // namespace support
