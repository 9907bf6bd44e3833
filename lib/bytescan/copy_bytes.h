// A copy for the stretches between two places of the search, which are mostly short in data full of zeros.
#pragma once

#include <cstddef>
#include <cstring>

namespace brenik::bytescan {

/// Copies `Size` to 2 x `Size` bytes as two blocks that overlap.
template <std::size_t Size>
inline void copy_two_blocks(unsigned char* out, const unsigned char* from, std::size_t count) noexcept
{
    unsigned char head[Size];
    unsigned char tail[Size];
    std::memcpy(head, from, Size);
    std::memcpy(tail, from + count - Size, Size);
    std::memcpy(out, head, Size);
    std::memcpy(out + count - Size, tail, Size);
}

/// Copies `count` bytes; the ranges may overlap, and nothing else is written.
inline void copy_bytes(unsigned char* out, const unsigned char* from, std::size_t count) noexcept
{
    if (count > 64)
        std::memmove(out, from, count);
    else if (count >= 32)
        copy_two_blocks<32>(out, from, count);
    else if (count >= 16)
        copy_two_blocks<16>(out, from, count);
    else if (count >= 8)
        copy_two_blocks<8>(out, from, count);
    else if (count >= 4)
        copy_two_blocks<4>(out, from, count);
    else if (count >= 2)
        copy_two_blocks<2>(out, from, count);
    else if (count == 1)
        *out = *from; // NOLINT(clang-analyzer-core.uninitialized.Assign): it follows no memcpy
}

} // namespace brenik::bytescan
