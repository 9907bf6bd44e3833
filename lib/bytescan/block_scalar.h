// What bytescan asks of a block, in plain C++: the vector versions are held against it, and other machines run it.
#pragma once

#include "bytescan/third_byte.h"

#include <cstdint>
#include <cstring>

namespace brenik::bytescan {

struct scalar_block {
    /// Bit i: two zero bytes and one of `third` are at `p` + i. Reads 66 bytes.
    static std::uint64_t places(const unsigned char* p, third_byte third) noexcept { return places_of<64>(p, third); }

    /// The first 16 of places(). Reads 18 bytes.
    static std::uint64_t first_places(const unsigned char* p, third_byte third) noexcept
    {
        return places_of<16>(p, third);
    }

    /// Whether two zero bytes are at one of the places. Reads 65 bytes.
    static bool has_pair(const unsigned char* p) noexcept
    {
        for (unsigned int i = 0; i < 64; ++i)
            if (p[i] == 0 && p[i + 1] == 0)
                return true;
        return false;
    }

    /// Copies 64 bytes; all are read before any is written.
    static void copy_block(unsigned char* out, const unsigned char* from) noexcept { std::memmove(out, from, 64); }

private:
    template <unsigned int Count>
    static std::uint64_t places_of(const unsigned char* p, third_byte third) noexcept
    {
        std::uint64_t found = 0;
        for (unsigned int i = 0; i < Count; ++i)
            found |= std::uint64_t{is_place(p + i, third)} << i;
        return found;
    }
};

} // namespace brenik::bytescan
