// What bytescan asks of a block, with SSE2, which every x86-64 has.
#pragma once

#include "bytescan/third_byte.h"

#include <cstdint>

#include <emmintrin.h>

namespace brenik::bytescan {

struct sse2_block {
    /// Bit i: two zero bytes and one of `third` are at `p` + i. Reads 66 bytes.
    static std::uint64_t places(const unsigned char* p, third_byte third) noexcept
    {
        const __m128i value = _mm_set1_epi8(static_cast<char>(third.value));
        const __m128i slack = _mm_set1_epi8(static_cast<char>(third.slack));
        // zero where a place is
        const auto differences = [&](int at) {
            const __m128i third_difference = _mm_subs_epu8(_mm_xor_si128(load(p + at + 2), value), slack);
            return _mm_or_si128(_mm_or_si128(load(p + at), load(p + at + 1)), third_difference);
        };
        const __m128i d0 = differences(0);
        const __m128i d1 = differences(16);
        const __m128i d2 = differences(32);
        const __m128i d3 = differences(48);
        const __m128i least = _mm_min_epu8(_mm_min_epu8(d0, d1), _mm_min_epu8(d2, d3));
        if (zeros(least) == 0)
            return 0;
        return zeros(d0) | zeros(d1) << 16 | zeros(d2) << 32 | zeros(d3) << 48;
    }

    /// The first 16 of places(). Reads 18 bytes.
    static std::uint64_t first_places(const unsigned char* p, third_byte third) noexcept
    {
        const __m128i value = _mm_set1_epi8(static_cast<char>(third.value));
        const __m128i slack = _mm_set1_epi8(static_cast<char>(third.slack));
        const __m128i third_difference = _mm_subs_epu8(_mm_xor_si128(load(p + 2), value), slack);
        return zeros(_mm_or_si128(_mm_or_si128(load(p), load(p + 1)), third_difference));
    }

    /// Whether two zero bytes are at one of the places. Reads 65 bytes.
    static bool has_pair(const unsigned char* p) noexcept
    {
        const auto pair = [&](int at) { return _mm_or_si128(load(p + at), load(p + at + 1)); };
        return zeros(_mm_min_epu8(_mm_min_epu8(pair(0), pair(16)), _mm_min_epu8(pair(32), pair(48)))) != 0;
    }

    /// Copies 64 bytes; all are read before any is written.
    static void copy_block(unsigned char* out, const unsigned char* from) noexcept
    {
        const __m128i quarters[] = {load(from), load(from + 16), load(from + 32), load(from + 48)};
        for (const __m128i& quarter : quarters) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out), quarter);
            out += 16;
        }
    }

private:
    static __m128i load(const unsigned char* p) noexcept
    {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }

    static std::uint64_t zeros(__m128i bytes) noexcept
    {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128())));
    }
};

} // namespace brenik::bytescan
