// What bytescan asks of a block, in plain C++: the vector versions are held against it, and other machines run it.
#pragma once

#include "bytescan/third_byte.h"

#include <cstdint>

namespace brenik::bytescan {

struct scalar_block {
    /// Bit i: two zero bytes and one of `third` are at `p` + i. Reads 66 bytes.
    static std::uint64_t places(const unsigned char* p, third_byte third) noexcept
    {
        std::uint64_t found = 0;
        for (unsigned int i = 0; i < 64; ++i)
            found |= std::uint64_t{is_place(p + i, third)} << i;
        return found;
    }
};

} // namespace brenik::bytescan
