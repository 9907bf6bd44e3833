#include "syntax_reads.h"

#include "support/bit_writer.h"
#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>
#include <utility>

namespace {

using brenik::field_of;
using brenik::h2645_common_bitreader;
using support::bit_writer;

template <unsigned char Bits>
constexpr std::uint32_t all_ones = (1U << Bits) - 1;

/// Reads fields of `Bits` bits: all ones, a lone one bit at either end, and the ones behind the data.
template <unsigned char Bits>
void read_fields_of()
{
    SCOPED_TRACE(int{Bits});
    const bit_writer bits =
        bit_writer().u(Bits, all_ones<Bits>).u(Bits, 1).u(Bits, 1U << (Bits - 1)).u(Bits, all_ones<Bits>);
    const support::guarded_buffer buffer(bits.bytes());
    h2645_common_bitreader br(buffer.begin(), buffer.end());
    EXPECT_EQ(all_ones<Bits>, brenik::u<Bits>(br));
    EXPECT_EQ(1U, brenik::u<Bits>(br));
    EXPECT_EQ(1U << (Bits - 1), brenik::u<Bits>(br));
    EXPECT_EQ(3U * Bits, br.bits_consumed());
    EXPECT_EQ(all_ones<Bits>, brenik::u<Bits>(br));
    br.byte_align();
    EXPECT_EQ(0U, brenik::u<Bits>(br));
}

template <unsigned char... Zero>
void read_fields_of_one_to(std::integer_sequence<unsigned char, Zero...>)
{
    (read_fields_of<Zero + 1>(), ...);
}

} // namespace

static_assert(std::is_same_v<bool, field_of<1>>);
static_assert(std::is_same_v<std::uint8_t, field_of<2>>);
static_assert(std::is_same_v<std::uint8_t, field_of<8>>);
static_assert(std::is_same_v<std::uint16_t, field_of<9>>);
static_assert(std::is_same_v<std::uint16_t, field_of<16>>);
static_assert(std::is_same_v<std::uint32_t, field_of<17>>);
static_assert(std::is_same_v<std::uint32_t, field_of<25>>);
static_assert(std::is_same_v<bool, decltype(brenik::u<1>(std::declval<h2645_common_bitreader&>()))>);
static_assert(std::is_same_v<std::uint16_t, decltype(brenik::u<16>(std::declval<h2645_common_bitreader&>()))>);

TEST(SyntaxReads, EveryWidthReadsItsBits)
{
    read_fields_of_one_to(std::make_integer_sequence<unsigned char, 25>());
}
