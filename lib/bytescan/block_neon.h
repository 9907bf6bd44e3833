// What bytescan asks of a block, with NEON, which every AArch64 has.
#pragma once

#include "bytescan/third_byte.h"

#include <cstdint>

#include <arm_neon.h>

namespace brenik::bytescan {

struct neon_block {
    /// Bit i: two zero bytes and one of `third` are at `p` + i. Reads 66 bytes.
    static std::uint64_t places(const unsigned char* p, third_byte third) noexcept
    {
        const uint8x16_t value = vdupq_n_u8(third.value);
        const uint8x16_t slack = vdupq_n_u8(third.slack);
        // zero where a place is
        const auto differences = [&](int at) {
            const uint8x16_t third_difference = vqsubq_u8(veorq_u8(vld1q_u8(p + at + 2), value), slack);
            return vorrq_u8(vorrq_u8(vld1q_u8(p + at), vld1q_u8(p + at + 1)), third_difference);
        };
        const uint8x16_t d0 = differences(0);
        const uint8x16_t d1 = differences(16);
        const uint8x16_t d2 = differences(32);
        const uint8x16_t d3 = differences(48);
        if (vminvq_u8(vminq_u8(vminq_u8(d0, d1), vminq_u8(d2, d3))) != 0)
            return 0;
        // each byte of 16 gives its bit to one byte of the mask; neighbours are added up three times
        const uint8x16_t pairs_low = vpaddq_u8(bits_of_zeros(d0), bits_of_zeros(d1));
        const uint8x16_t pairs_high = vpaddq_u8(bits_of_zeros(d2), bits_of_zeros(d3));
        const uint8x16_t fours = vpaddq_u8(pairs_low, pairs_high);
        return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(fours, fours)), 0);
    }

    /// The first 16 of places(). Reads 18 bytes.
    static std::uint64_t first_places(const unsigned char* p, third_byte third) noexcept
    {
        const uint8x16_t third_difference =
            vqsubq_u8(veorq_u8(vld1q_u8(p + 2), vdupq_n_u8(third.value)), vdupq_n_u8(third.slack));
        const uint8x16_t differences = vorrq_u8(vorrq_u8(vld1q_u8(p), vld1q_u8(p + 1)), third_difference);
        const uint8x16_t pairs = vpaddq_u8(bits_of_zeros(differences), vdupq_n_u8(0));
        const uint8x16_t fours = vpaddq_u8(pairs, pairs);
        return vgetq_lane_u16(vreinterpretq_u16_u8(vpaddq_u8(fours, fours)), 0);
    }

    /// Whether two zero bytes are at one of the places. Reads 65 bytes.
    static bool has_pair(const unsigned char* p) noexcept
    {
        const auto pair = [&](int at) { return vorrq_u8(vld1q_u8(p + at), vld1q_u8(p + at + 1)); };
        return vminvq_u8(vminq_u8(vminq_u8(pair(0), pair(16)), vminq_u8(pair(32), pair(48)))) == 0;
    }

    /// Copies 64 bytes; all are read before any is written.
    static void copy_block(unsigned char* out, const unsigned char* from) noexcept
    {
        vst1q_u8_x4(out, vld1q_u8_x4(from));
    }

private:
    static uint8x16_t bits_of_zeros(uint8x16_t bytes) noexcept
    {
        constexpr std::uint8_t bit_of_place[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
        return vandq_u8(vceqzq_u8(bytes), vld1q_u8(bit_of_place));
    }
};

} // namespace brenik::bytescan
