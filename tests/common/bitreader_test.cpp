#include <orv-utils-v4/h2645_common/bitreader.h>

#include "support/bit_writer.h"
#include "support/guarded_buffer.h"
#include "support/literal_bits.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

using brenik::h2645_common_bitreader;
using support::bytes;
using support::guarded_buffer;

/// A reader of bytes that end at an unmapped page.
struct opened {
    guarded_buffer buffer;
    h2645_common_bitreader br;

    explicit opened(const bytes& data) : buffer(data), br(buffer.begin(), buffer.end()) {}

    unsigned int get(unsigned char n) { return br.get<unsigned int>(n); }
    /// How far the cursor stands behind the fence; negative while bytes are unread.
    std::ptrdiff_t cursor_past_fence() const
    {
        return static_cast<std::ptrdiff_t>(reinterpret_cast<std::uintptr_t>(br.source.cursor) -
                                           reinterpret_cast<std::uintptr_t>(br.source.fence));
    }
};

/// No byte twice, so that a byte skipped or read again shows.
const bytes counted = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xFE, 0xDC, 0xBA, 0x98};

} // namespace

TEST(BitReader, ANewReaderHasLoadedNothing)
{
    const opened o({1, 2, 3});
    EXPECT_EQ(0U, o.br.reservoir.bits);
    EXPECT_EQ(32, o.br.reservoir.empty_count);
    EXPECT_EQ(o.buffer.begin(), o.br.source.start);
    EXPECT_EQ(o.buffer.begin(), o.br.source.cursor);
    EXPECT_EQ(o.buffer.end(), o.br.source.fence);
    EXPECT_EQ(0U, o.br.bits_consumed());
}

TEST(BitReader, GetTakesTheFirstBitAsTheMostSignificant)
{
    opened o({0xA5, 0xFF});
    EXPECT_EQ(10U, o.get(4));
    EXPECT_EQ(0U, o.get(1));
    EXPECT_EQ(5U, o.get(3));
    EXPECT_EQ(255U, o.get(8));
    EXPECT_EQ(16U, o.br.bits_consumed());
}

TEST(BitReader, AnEmptyRangeReadsAsZerosAndTheCursorGoesFourBytesBehindTheFence)
{
    opened o({});
    EXPECT_EQ(0U, o.get(25));
    EXPECT_EQ(4, o.cursor_past_fence());
    EXPECT_EQ(25U, o.br.bits_consumed());
}

TEST(BitReader, TwoNullPointersAreAnEmptyRange)
{
    h2645_common_bitreader br(nullptr, nullptr);
    EXPECT_EQ(0U, br.get<unsigned int>(25));
    EXPECT_EQ(0U, br.get<unsigned int>(25));
    EXPECT_EQ(50U, br.bits_consumed());
    EXPECT_FALSE(brenik::h2645_common_more_rbsp_data(br));
    EXPECT_FALSE(brenik::h2645_common_skip_rbsp_trailing_bits(br));
    EXPECT_EQ(nullptr, br.source.start);
}

TEST(BitReader, TwentyFiveBitsAreWholeAfterEveryOffset)
{
    for (unsigned char offset = 1; offset <= 25; ++offset) {
        opened o(counted);
        literal::bit_reader model{counted};
        EXPECT_EQ(model.get(offset), o.get(offset)) << "offset " << int{offset};
        EXPECT_EQ(model.get(25), o.get(25)) << "offset " << int{offset};
        EXPECT_EQ(model.get(25), o.get(25)) << "offset " << int{offset};
    }
}

TEST(BitReader, GetLoadsWholeBytesUntilTwentyFiveBitsAreValid)
{
    opened o(counted);
    o.get(1);
    EXPECT_EQ(o.buffer.begin() + 4, o.br.source.cursor);
    EXPECT_EQ(1, o.br.reservoir.empty_count);
    EXPECT_EQ(0x01234567U << 1, o.br.reservoir.bits);
    o.get(6);
    EXPECT_EQ(7, o.br.reservoir.empty_count);
    o.get(1); // still 25 valid bits: nothing is loaded
    EXPECT_EQ(o.buffer.begin() + 4, o.br.source.cursor);
    EXPECT_EQ(8, o.br.reservoir.empty_count);
    o.get(1);
    EXPECT_EQ(o.buffer.begin() + 5, o.br.source.cursor);
    EXPECT_EQ(1, o.br.reservoir.empty_count);
}

TEST(BitReader, TheLastByteIsFollowedByZeros)
{
    opened o({0xFF});
    EXPECT_EQ(0x1FE0000U, o.get(25));
    EXPECT_EQ(3, o.cursor_past_fence());
    EXPECT_EQ(0U, o.get(25));
    EXPECT_EQ(50U, o.br.bits_consumed());
}

TEST(BitReader, ACursorLongBehindTheFenceStaysThere)
{
    opened o({0xFF});
    for (int i = 0; i < 1000; ++i)
        o.get(8);
    EXPECT_EQ(8000U, o.br.bits_consumed());
    EXPECT_EQ(0U, o.get(25));
}

TEST(BitReader, GetWideReadsEveryWidthAndKeepsTheLow32Bits)
{
    for (unsigned int width = 0; width <= 255; ++width) {
        support::random_source random(width);
        bytes data(40);
        for (unsigned char& byte : data)
            byte = static_cast<unsigned char>(random());
        opened o(data);
        literal::bit_reader model{data};
        EXPECT_EQ(model.get(width), o.br.get_wide(static_cast<unsigned char>(width))) << "width " << width;
        EXPECT_EQ(width, o.br.bits_consumed());
        EXPECT_EQ(model.get(7), o.get(7)) << "after width " << width;
    }
}

TEST(BitReader, GetWideOfNothingReadsNothing)
{
    opened o({0xFF});
    EXPECT_EQ(0U, o.br.get_wide(0));
    EXPECT_EQ(o.buffer.begin(), o.br.source.cursor);
    EXPECT_EQ(32, o.br.reservoir.empty_count);
}

TEST(BitReader, Peek24ShowsTheNextBitsAndConsumesNothing)
{
    opened o(counted);
    EXPECT_EQ(0x012345U, o.br.peek24());
    EXPECT_EQ(0U, o.br.bits_consumed());
    o.get(4);
    EXPECT_EQ(0x123456U, o.br.peek24());
    EXPECT_EQ(4U, o.br.bits_consumed());
    EXPECT_EQ(1U, o.get(4));
}

TEST(BitReader, Peek24ReadsZerosBehindTheFence)
{
    opened o({0xFF, 0x81});
    o.get(8);
    EXPECT_EQ(0x810000U, o.br.peek24());
    o.get(8);
    EXPECT_EQ(0U, o.br.peek24());
}

TEST(BitReader, ByteAlignDiscardsUpToTheBoundary)
{
    for (unsigned char consumed = 0; consumed <= 24; ++consumed) {
        opened o(counted);
        if (consumed != 0)
            o.get(consumed);
        const unsigned int boundary = (consumed + 7U) / 8 * 8;
        EXPECT_EQ(boundary - consumed, o.br.bits_to_byte_boundary());
        o.br.byte_align();
        EXPECT_EQ(boundary, o.br.bits_consumed()) << "after " << int{consumed} << " bits";
        EXPECT_EQ(counted[boundary / 8], o.get(8)) << "after " << int{consumed} << " bits";
    }
}

TEST(BitReader, ByteAlignRightAfterLoadingDiscardsNothing)
{
    opened o(counted);
    o.br.refill();
    o.br.byte_align();
    EXPECT_EQ(0U, o.br.bits_consumed());
    EXPECT_EQ(0x01234567U, o.br.reservoir.bits);
}

TEST(BitReader, ByteAlignRefillsFirst)
{
    opened o(counted);
    o.br.byte_align();
    EXPECT_EQ(o.buffer.begin() + 4, o.br.source.cursor);
    EXPECT_EQ(0, o.br.reservoir.empty_count);
}

TEST(BitReader, ACopyIsASecondReaderAtTheSameBit)
{
    opened o(counted);
    o.get(4);
    h2645_common_bitreader copy = o.br;
    EXPECT_EQ(0x12U, copy.get<unsigned int>(8));
    EXPECT_EQ(12U, copy.bits_consumed());
    EXPECT_EQ(4U, o.br.bits_consumed());
    EXPECT_EQ(0x12U, o.get(8));
}

TEST(BitReader, RandomOperationsAgreeWithReadingBitByBit)
{
    support::random_source random(1);
    for (int round = 0; round < 3000; ++round) {
        const bytes data = support::zero_heavy_up_to(random, 40);
        opened o(data);
        literal::bit_reader model{data};
        for (int step = 0; step < 20; ++step) {
            const auto n = static_cast<unsigned char>(1 + support::pick(random, 25));
            std::size_t loaded = (model.position + 32 - o.br.reservoir.empty_count) / 8;
            loaded = std::max(loaded, (model.position + 25 + 7) / 8);
            switch (support::pick(random, 3)) {
            case 0:
                ASSERT_EQ(model.get(n), o.get(n));
                break;
            case 1:
                ASSERT_EQ(model.peek(24), o.br.peek24());
                break;
            default:
                model.byte_align();
                o.br.byte_align();
            }
            ASSERT_EQ(model.position, o.br.bits_consumed());
            ASSERT_EQ(static_cast<std::ptrdiff_t>(loaded) - static_cast<std::ptrdiff_t>(data.size()),
                      o.cursor_past_fence());
            const unsigned int valid_bits = 32U - o.br.reservoir.empty_count;
            ASSERT_EQ(8 * loaded - model.position, valid_bits);
            ASSERT_EQ(std::uint64_t{model.peek(valid_bits)} << o.br.reservoir.empty_count, o.br.reservoir.bits);
        }
    }
}
