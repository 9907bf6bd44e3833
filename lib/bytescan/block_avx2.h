// What bytescan asks of a block, with AVX2: for functions that are compiled for it, called on machines that have it.
#pragma once

#include "bytescan/block_sse2.h"
#include "bytescan/third_byte.h"

#include <cstdint>

#include <immintrin.h>

namespace brenik::bytescan {

struct avx2_block {
    static constexpr auto first_places = sse2_block::first_places;

    /// Bit i: two zero bytes and one of `third` are at `p` + i. Reads 66 bytes.
    [[gnu::target("avx2")]] static std::uint64_t places(const unsigned char* p, third_byte third) noexcept
    {
        const __m256i low = differences(p, third);
        const __m256i high = differences(p + 32, third);
        if (zeros(_mm256_min_epu8(low, high)) == 0)
            return 0;
        return zeros(low) | zeros(high) << 32;
    }

    /// Whether two zero bytes are at one of the places. Reads 65 bytes.
    [[gnu::target("avx2")]] static bool has_pair(const unsigned char* p) noexcept
    {
        const __m256i low = _mm256_or_si256(load(p), load(p + 1));
        const __m256i high = _mm256_or_si256(load(p + 32), load(p + 33));
        return zeros(_mm256_min_epu8(low, high)) != 0;
    }

    /// Copies 64 bytes; all are read before any is written.
    [[gnu::target("avx2")]] static void copy_block(unsigned char* out, const unsigned char* from) noexcept
    {
        const __m256i low = load(from);
        const __m256i high = load(from + 32);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), low);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 32), high);
    }

private:
    /// Zero where a place is.
    [[gnu::target("avx2")]] static __m256i differences(const unsigned char* p, third_byte third) noexcept
    {
        const __m256i value = _mm256_set1_epi8(static_cast<char>(third.value));
        const __m256i slack = _mm256_set1_epi8(static_cast<char>(third.slack));
        const __m256i third_difference = _mm256_subs_epu8(_mm256_xor_si256(load(p + 2), value), slack);
        return _mm256_or_si256(_mm256_or_si256(load(p), load(p + 1)), third_difference);
    }

    [[gnu::target("avx2")]] static __m256i load(const unsigned char* p) noexcept
    {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }

    [[gnu::target("avx2")]] static std::uint64_t zeros(__m256i bytes) noexcept
    {
        return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(bytes, _mm256_setzero_si256())));
    }
};

} // namespace brenik::bytescan
