// Every field of a parsed structure under its name, so that objects, literal models and written elements can be
// compared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace support {

/// A number or a flag, or an array of them.
struct value {
    std::int64_t number = 0;
    std::vector<std::int64_t> entries;

    bool operator==(const value&) const = default;
};

/// A name, and what it stands in: "vui.nal_hrd." and "bit_rate_scale". They are looked up apart, since models do little
/// else.
struct scoped_name {
    scoped_name(std::string_view whole) : name(whole) {}
    scoped_name(const std::string& whole) : name(whole) {}
    scoped_name(const char* whole) : name(whole) {}
    scoped_name(std::string_view prefix, std::string_view last) : scope(prefix), name(last) {}

    bool operator==(std::string_view whole) const
    {
        if (whole.size() != scope.size() + name.size())
            return false;
        // Not by memcmp(): a fuzzer would take note of what is compared.
        for (std::size_t i = 0; i < whole.size(); ++i)
            if (whole[i] != (i < scope.size() ? scope[i] : name[i - scope.size()]))
                return false;
        return true;
    }

    std::string_view scope;
    std::string_view name;
};

/// Of a name as a whole, wherever it is divided.
struct name_hash {
    using is_transparent = void;

    std::size_t operator()(const scoped_name& of) const
    {
        return std::hash<std::string_view>()(of.name.substr(of.name.rfind('.') + 1)) ^
               (of.scope.size() + of.name.size());
    }
};

struct same_name {
    using is_transparent = void;

    bool operator()(const std::string& a, const std::string& b) const { return scoped_name(a) == b; }
    bool operator()(const scoped_name& a, const std::string& b) const { return a == b; }
    bool operator()(const std::string& a, const scoped_name& b) const { return b == a; }
};

/// The names of a structure's fields; nested ones as "vui.nal_hrd.bit_rate_scale".
struct field_names {
    std::vector<std::string> in_order;
    std::unordered_map<std::string, std::size_t, name_hash, same_name> index;

    bool contain(const scoped_name& name) const { return index.find(name) != index.end(); }
    std::size_t place(const scoped_name& name) const
    {
        const auto found = index.find(name);
        if (found == index.end())
            throw std::out_of_range("no field " + std::string(name.scope).append(name.name));
        return found->second;
    }
};

/// The values of a structure's fields.
struct named_values {
    const field_names* names;
    std::vector<value> values;

    value& at(const scoped_name& name) { return values[names->place(name)]; }
    const value& at(const scoped_name& name) const { return values[names->place(name)]; }

    bool operator==(const named_values& other) const { return values == other.values; }
};

/// The fields that differ, with both values; "" when none does.
inline std::string difference(const named_values& expected, const named_values& actual)
{
    std::string text;
    for (std::size_t i = 0; i < expected.values.size(); ++i) {
        const value& e = expected.values[i];
        const value& a = actual.values[i];
        if (e == a)
            continue;
        text += expected.names->in_order[i] + " is " + std::to_string(a.number) + ", not " + std::to_string(e.number);
        if (e.entries.size() != a.entries.size())
            text += ", with " + std::to_string(a.entries.size()) + " entries, not " + std::to_string(e.entries.size());
        else
            for (std::size_t k = 0; k < e.entries.size(); ++k)
                if (e.entries[k] != a.entries[k])
                    text += ", entry " + std::to_string(k) + " is " + std::to_string(a.entries[k]) + ", not " +
                            std::to_string(e.entries[k]);
        text += "; ";
    }
    return text;
}

} // namespace support
