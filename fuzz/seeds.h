// The seeds that are written rather than found: every file of seeds/TARGET that has a name. What a fuzzer found is
// called by its hash, 40 hexadecimal digits.
#pragma once

#include "support/stream_builder.h"

#include <map>
#include <string>

namespace fuzz {

using support::bytes;
using support::stream_builder;

using seeds = std::map<std::string, bytes>;
using seed_table = std::map<std::string, seeds>; ///< by the names of the targets

inline bytes behind(const bytes& head, const bytes& data)
{
    return stream_builder().raw(head).raw(data);
}

/// The data behind its head, in which every byte has values that matter to counts, flags, ids and widths.
inline void add_heads(seeds& to, const std::string& name, const bytes& head, const bytes& data)
{
    for (std::size_t i = 0; i < head.size(); ++i)
        for (const int value : {0, 1, 2, 4, 5, 7, 13, 21, 25, 33, 53, 128, 129, 255}) {
            bytes other = head;
            other[i] = static_cast<unsigned char>(value);
            to[name + "_byte_" + std::to_string(i) + "_is_" + std::to_string(value)] = behind(other, data);
        }
}

void add_bit_seeds(seed_table& to);
void add_unit_seeds(seed_table& to);
void add_structure_seeds(seed_table& to);
void add_picture_seeds(seed_table& to);
void add_text_seeds(seed_table& to);

} // namespace fuzz
