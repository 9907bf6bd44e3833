// What the fuzz entry points of parsed structures share.
#pragma once

#include "input.h"

#include "support/literal_parse.h"

namespace fuzz {

/// Parses `bits` into `object`, both ways, and ends the process unless both do the same.
template <typename Parses>
support::compared expect_same(const Parses& parses, typename Parses::structure& object, const support::bit_range& bits)
{
    support::compared c = parses(object, bits);
    expect_none(support::fault_of(c, support::most_entries<Parses>()));
    return c;
}

/// One object, and structures that are parsed into it one after another. The input has for each a byte of options, of
/// which bit 0 clears `valid` before and bits 1 to 6 say the first bit, a length byte, and the data. The object in the
/// end.
template <typename Parses>
typename Parses::structure expect_same_in_a_row(input& from, const Parses& parses)
{
    typename Parses::structure object;
    for (bool more = true; more;) {
        const unsigned char options = from.byte();
        const std::size_t length = from.byte();
        const exact_block block = from.block(length);
        more = block.size() != 0;
        if ((options & 1) != 0)
            object.valid = false;
        expect_same(parses, object, {block.begin(), block.end(), static_cast<unsigned char>(options / 2 % 64)});
    }
    return object;
}

} // namespace fuzz
