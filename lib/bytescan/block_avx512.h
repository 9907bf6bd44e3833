// What bytescan asks of a block, with AVX-512 (BW): for functions that are compiled for it, called on machines that
// have it.
#pragma once

#include "bytescan/block_sse2.h"
#include "bytescan/third_byte.h"

#include <cstdint>

#include <immintrin.h>

namespace brenik::bytescan {

struct avx512_block {
    static constexpr auto first_places = sse2_block::first_places;

    /// Bit i: two zero bytes and one of `third` are at `p` + i. Reads 66 bytes.
    [[gnu::target("avx512bw")]] static std::uint64_t places(const unsigned char* p, third_byte third) noexcept
    {
        const __m512i value = _mm512_set1_epi8(static_cast<char>(third.value));
        const __m512i slack = _mm512_set1_epi8(static_cast<char>(third.slack));
        const __m512i pairs = _mm512_or_si512(_mm512_loadu_si512(p), _mm512_loadu_si512(p + 1));
        const __m512i third_difference = _mm512_xor_si512(_mm512_loadu_si512(p + 2), value);
        std::uint64_t found =
            _mm512_mask_testn_epi8_mask(_mm512_cmple_epu8_mask(third_difference, slack), pairs, pairs);
        asm("" : "+r"(found)); // NOLINT(hicpp-no-assembler): else g++ counts on in registers for masks, which are slow
        return found;
    }

    /// Whether two zero bytes are at one of the places. Reads 65 bytes.
    [[gnu::target("avx512bw")]] static bool has_pair(const unsigned char* p) noexcept
    {
        const __m512i pairs = _mm512_or_si512(_mm512_loadu_si512(p), _mm512_loadu_si512(p + 1));
        return _mm512_testn_epi8_mask(pairs, pairs) != 0;
    }

    /// Copies 64 bytes; all are read before any is written.
    [[gnu::target("avx512bw")]] static void copy_block(unsigned char* out, const unsigned char* from) noexcept
    {
        _mm512_storeu_si512(out, _mm512_loadu_si512(from));
    }
};

} // namespace brenik::bytescan
