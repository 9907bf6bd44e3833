// Reads of syntax elements for the parses of the newer interface, one token an element (H.264 clause 7.2).
#pragma once

#include <cstdint>
#include <type_traits>

namespace brenik {

/// The smallest type that holds a field of `Bits` bits; bool for a flag.
template <unsigned char Bits>
using field_of = std::conditional_t<
    Bits == 1, bool,
    std::conditional_t<Bits <= 8, std::uint8_t, std::conditional_t<Bits <= 16, std::uint16_t, std::uint32_t>>>;

/// u(n) with a width the syntax fixes.
template <unsigned char Bits, typename Reader>
field_of<Bits> u(Reader& br) noexcept
{
    static_assert(Bits >= 1 && Bits <= 32);
    constexpr unsigned char widest_get = 25;
    if constexpr (Bits <= widest_get)
        return static_cast<field_of<Bits>>(br.template get<unsigned int>(Bits));
    else
        return br.get_wide(Bits);
}

} // namespace brenik
