// The bit writer against bits written out by hand, and within its room.
#include "support/guarded_buffer.h"

#include <orv-utils-v4/h264_syntax/bit_writer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace {

using orv_utils_v4::h264::bit_writer;
using support::guarded_buffer;

/// What `write` writes, as zeros and ones.
std::string bits_of(const std::function<void(bit_writer&)>& write)
{
    unsigned char room[64] = {};
    bit_writer to(room, sizeof room);
    write(to);
    std::string bits;
    for (std::uint64_t i = 0; i < to.bits(); ++i)
        bits += static_cast<char>('0' + (room[i / 8] >> (7 - i % 8) & 1));
    return bits;
}

TEST(BitWriter, NumbersHaveTheirWidthMostSignificantBitFirst)
{
    EXPECT_EQ(bits_of([](bit_writer& to) { to.u(0, 1); }), "");
    EXPECT_EQ(bits_of([](bit_writer& to) { to.u(1, 1); }), "1");
    EXPECT_EQ(bits_of([](bit_writer& to) { to.u(5, 6); }), "00110");
    EXPECT_EQ(bits_of([](bit_writer& to) { to.u(12, 0xABC); }), "101010111100");
    EXPECT_EQ(bits_of([](bit_writer& to) { to.u(32, 0x80000001); }), "10000000000000000000000000000001");
}

TEST(BitWriter, BitsAboveTheWidthAreNotWritten)
{
    EXPECT_EQ(bits_of([](bit_writer& to) { to.u(3, 0xFFFFFFF2); }), "010");
    EXPECT_EQ(bits_of([](bit_writer& to) { to.u(8, 0xFFFFFF02); }), "00000010");
}

TEST(BitWriter, EveryWidthAtEveryBitOfAByte)
{
    for (unsigned before = 0; before < 8; ++before) {
        for (unsigned n = 1; n <= 32; ++n) {
            const std::uint32_t value = 0xB5A69C73;
            std::string expected(before, '1');
            for (unsigned i = n; i-- > 0;)
                expected += static_cast<char>('0' + (value >> i & 1));
            EXPECT_EQ(bits_of([=](bit_writer& to) {
                          to.u(before, 0xFF);
                          to.u(n, value);
                      }),
                      expected)
                << before << " " << n;
        }
    }
}

// Table 9-1
TEST(BitWriter, UnsignedExpGolombCodes)
{
    constexpr const char* codes[] = {"1",     "010",   "011",     "00100",   "00101",
                                     "00110", "00111", "0001000", "0001001", "0001010"};
    for (std::uint32_t value = 0; value < 10; ++value)
        EXPECT_EQ(bits_of([=](bit_writer& to) { to.ue(value); }), codes[value]);
    EXPECT_EQ(bits_of([](bit_writer& to) { to.ue(0xFFFFFFFE); }), std::string(31, '0') + std::string(32, '1'));
    EXPECT_EQ(bits_of([](bit_writer& to) { to.ue(0x7FFFFFFF); }), std::string(31, '0') + "1" + std::string(31, '0'));
    EXPECT_EQ(bits_of([](bit_writer& to) { to.ue(0xFFFFFFFF); }), "1");
}

// Table 9-3
TEST(BitWriter, SignedExpGolombCodes)
{
    constexpr const char* codes[] = {"00111", "00101", "011", "1", "010", "00100", "00110"};
    for (std::int32_t value = -3; value <= 3; ++value)
        EXPECT_EQ(bits_of([=](bit_writer& to) { to.se(value); }), codes[value + 3]);
    EXPECT_EQ(bits_of([](bit_writer& to) { to.se(0x7FFFFFFF); }), std::string(31, '0') + std::string(31, '1') + "0");
    EXPECT_EQ(bits_of([](bit_writer& to) { to.se(-0x7FFFFFFF); }), std::string(31, '0') + std::string(32, '1'));
    EXPECT_EQ(bits_of([](bit_writer& to) { to.se(-0x7FFFFFFF - 1); }), "1");
}

TEST(BitWriter, TrailingBitsGoToTheEndOfTheByte)
{
    for (unsigned before = 0; before < 8; ++before) {
        EXPECT_EQ(bits_of([=](bit_writer& to) {
                      to.u(before, 0);
                      to.trailing_bits();
                  }),
                  std::string(before, '0') + "1" + std::string(7 - before, '0'));
    }
}

void write_five_bytes(bit_writer& to)
{
    to.u(32, 0xFFFFFFFF);
    to.u(3, 7);
    to.trailing_bits();
}

TEST(BitWriter, NothingIsWrittenPastTheRoomAndCountingGoesOn)
{
    for (std::size_t room = 0; room <= 6; ++room) {
        const guarded_buffer buffer(room);
        bit_writer to(buffer.begin(), room);
        write_five_bytes(to);
        EXPECT_EQ(to.bits(), 40U);
        EXPECT_EQ(to.bytes(), 5U);
        EXPECT_EQ(to.fits(), room >= 5) << room;
        EXPECT_TRUE(buffer.surroundings_untouched());
        for (std::size_t i = 0; i < std::min<std::size_t>(room, 5); ++i)
            EXPECT_EQ(buffer.begin()[i], i < 4 ? 0xFF : 0xF0);
        if (room == 6) {
            EXPECT_EQ(buffer.begin()[5], guarded_buffer::pattern);
        }
    }
}

TEST(BitWriter, WithoutRoomItCounts)
{
    bit_writer to;
    EXPECT_TRUE(to.fits());
    EXPECT_EQ(to.bytes(), 0U);
    to.u(1, 1);
    EXPECT_EQ(to.bits(), 1U);
    EXPECT_EQ(to.bytes(), 1U);
    EXPECT_FALSE(to.fits());
}

TEST(BitWriter, TheLastByteIsZeroBehindItsBits)
{
    unsigned char room[2] = {0xFF, 0xFF};
    bit_writer to(room, sizeof room);
    to.u(9, 0x1FF);
    EXPECT_EQ(room[1], 0x80);
}

} // namespace
