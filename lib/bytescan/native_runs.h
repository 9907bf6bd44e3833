// The one choice of how blocks are looked at. On x86-64 the loader makes it (wide_runs.cpp), by what the processor has;
// what is near is looked at with SSE2, without a call.
#pragma once

#include "bytescan/block_runs.h"

#if defined(__SSE2__)
#include "bytescan/block_sse2.h"
#elif defined(__aarch64__)
#include "bytescan/block_neon.h"
#else
#include "bytescan/block_scalar.h"
#endif

namespace brenik::bytescan {

#if defined(__SSE2__)
using native_block = sse2_block;
#elif defined(__aarch64__)
using native_block = neon_block;
#else
using native_block = scalar_block;
#endif

#if defined(__x86_64__) && defined(__GLIBC__)

/// runs_of<…>::find(), copy() and list() with the widest vectors that the machine has.
seen_block find_wide(const unsigned char* p, const unsigned char* fence, third_byte third) noexcept;
std::uint64_t copy_wide(passage& bytes, third_byte third, std::size_t most_written) noexcept;
const unsigned char* list_wide(const unsigned char* p, const unsigned char* fence, third_byte third,
                               row_list& rows) noexcept;

struct native_runs : native_block {
    static seen_block find(const unsigned char* p, const unsigned char* fence, third_byte third) noexcept
    {
        if (const std::uint64_t found = places(p, third); found != 0)
            return {p, found};
        p += block_places;
        return range_size(p, fence) < block_bytes ? seen_block{p, 0} : find_wide(p, fence, third);
    }

    static std::uint64_t copy(passage& bytes, third_byte third, std::size_t most_written) noexcept
    {
        if (!bytes.holds_block(most_written))
            return 0;
        if (const std::uint64_t found = places(bytes.read, third); found != 0)
            return found;
        copy_block(bytes.write, bytes.read);
        bytes.advance(block_places, block_places);
        return bytes.holds_block(most_written) ? copy_wide(bytes, third, most_written) : 0;
    }

    static const unsigned char* list(const unsigned char* p, const unsigned char* fence, third_byte third,
                                     row_list& rows) noexcept
    {
        return list_wide(p, fence, third, rows);
    }
};

#else

using native_runs = runs_of<native_block>;

#endif

} // namespace brenik::bytescan
