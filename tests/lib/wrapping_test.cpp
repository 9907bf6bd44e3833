#include "wrapping.h"

#include <gtest/gtest.h>

#include <cstdint>

using brenik::wrapping_add;
using brenik::wrapping_mul;
using brenik::wrapping_sub;

static_assert(wrapping_add(0xFFFFFFFF, 1) == 0 && noexcept(wrapping_add(0, 0)));
static_assert(wrapping_sub(0, 1) == 0xFFFFFFFF && noexcept(wrapping_sub(0, 0)));
static_assert(wrapping_mul(0x80000000, 2) == 0 && noexcept(wrapping_mul(0, 0)));

TEST(Wrapping, ResultsAreThoseOfArithmeticModulo32Bits)
{
    constexpr std::uint32_t numbers[] = {0,          1,          2,          3,          16,        255,
                                         0x7FFFFFFF, 0x80000000, 0x80000001, 0xFFFFFFFE, 0xFFFFFFFF};
    constexpr std::uint64_t modulus = std::uint64_t{1} << 32;
    for (const std::uint64_t a : numbers)
        for (const std::uint64_t b : numbers) {
            const auto x = static_cast<std::uint32_t>(a);
            const auto y = static_cast<std::uint32_t>(b);
            EXPECT_EQ((a + b) % modulus, wrapping_add(x, y)) << a << ' ' << b;
            EXPECT_EQ((modulus + a - b) % modulus, wrapping_sub(x, y)) << a << ' ' << b;
            EXPECT_EQ(a * b % modulus, wrapping_mul(x, y)) << a << ' ' << b;
        }
}
