// Every field of a parsed structure under its name, so that objects, literal models and written elements can be
// compared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace support {

/// A number or a flag, or an array of them.
struct value {
    std::int64_t number = 0;
    std::vector<std::int64_t> entries;

    bool operator==(const value&) const = default;
};

/// The names of a structure's fields; nested ones as "vui.nal_hrd.bit_rate_scale".
struct field_names {
    std::vector<std::string> in_order;
    std::unordered_map<std::string, std::size_t> index;

    bool contain(const std::string& name) const { return index.contains(name); }
};

/// The values of a structure's fields.
struct named_values {
    const field_names* names;
    std::vector<value> values;

    value& at(const std::string& name) { return values[names->index.at(name)]; }
    const value& at(const std::string& name) const { return values[names->index.at(name)]; }

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
