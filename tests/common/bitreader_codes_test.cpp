// The bit reader's Exp-Golomb codes and the RBSP trailer.
#include <orv-utils-v4/h2645_common/bitreader.h>

#include "support/bit_writer.h"
#include "support/guarded_buffer.h"
#include "support/literal_bits.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

using brenik::h2645_common_bitreader;
using brenik::h2645_common_malformed_code;
using brenik::h2645_common_more_rbsp_data;
using brenik::h2645_common_skip_rbsp_trailing_bits;
using support::bit_writer;
using support::bytes;
using support::guarded_buffer;

struct opened {
    guarded_buffer buffer;
    h2645_common_bitreader br;

    explicit opened(const bytes& data) : buffer(data), br(buffer.begin(), buffer.end()) {}
    explicit opened(const bit_writer& bits) : opened(bits.bytes()) {}

    opened& skip(unsigned int bits)
    {
        for (; bits > 0; --bits)
            br.get<unsigned int>(1);
        return *this;
    }
};

/// Where the code that `read` met begins; fails the test when it threw nothing.
template <typename Read>
std::size_t malformed_at(Read read)
{
    try {
        read();
    } catch (const h2645_common_malformed_code& malformed) {
        return malformed.bit_position();
    }
    ADD_FAILURE() << "nothing was thrown";
    return SIZE_MAX;
}

} // namespace

TEST(ExpGolomb, TheFirstFourCodes)
{
    const bytes codes = bit_writer().u(1, 0b1).u(3, 0b010).u(3, 0b011).u(5, 0b00100).bytes();
    opened unsigned_codes(codes);
    for (unsigned int expected : {0U, 1U, 2U, 3U})
        EXPECT_EQ(expected, unsigned_codes.br.ue());
    EXPECT_EQ(12U, unsigned_codes.br.bits_consumed());
    opened signed_codes(codes);
    for (int expected : {0, 1, -1, 2})
        EXPECT_EQ(expected, signed_codes.br.se());
    EXPECT_EQ(12U, signed_codes.br.bits_consumed());
}

TEST(ExpGolomb, EveryPrefixLengthAtEveryBitOffset)
{
    for (unsigned int zeros = 0; zeros <= 31; ++zeros) {
        const std::uint32_t smallest = static_cast<std::uint32_t>((std::uint64_t{1} << zeros) - 1);
        const std::uint32_t largest = static_cast<std::uint32_t>((std::uint64_t{2} << zeros) - 2);
        for (unsigned int offset = 0; offset < 8; ++offset) {
            opened o(bit_writer().u(offset, 0x55).ue(smallest).ue(largest).u(3, 5));
            o.skip(offset);
            EXPECT_EQ(smallest, o.br.ue()) << zeros << " zeros at bit " << offset;
            EXPECT_EQ(largest, o.br.ue()) << zeros << " zeros at bit " << offset;
            EXPECT_EQ(offset + 2 * (2 * zeros + 1), o.br.bits_consumed());
            EXPECT_EQ(5U, o.br.get<unsigned int>(3));
        }
    }
}

TEST(ExpGolomb, SignedCodesReachBothEnds)
{
    for (std::int32_t value : {0, 1, -1, 7, -8, 65535, -65536, 2147483646, -2147483646, 2147483647, -2147483647}) {
        opened o(bit_writer().se(value).flag(true));
        EXPECT_EQ(value, o.br.se());
        EXPECT_EQ(1U, o.br.get<unsigned int>(1));
    }
}

TEST(ExpGolomb, ThirtyTwoZerosThrowAlthoughAOneBitFollows)
{
    opened o(bit_writer().u(5, 0x1F).u(32, 0).flag(true).u(32, 0));
    o.skip(5);
    EXPECT_EQ(5U, malformed_at([&] { o.br.ue(); }));
    EXPECT_EQ(37U, o.br.bits_consumed());
    EXPECT_EQ(1U, o.br.get<unsigned int>(1));
}

TEST(ExpGolomb, ThirtyTwoZerosThrowFromTheSignedReadToo)
{
    opened o(bytes(8, 0));
    o.skip(3);
    EXPECT_EQ(3U, malformed_at([&] { o.br.se(); }));
    EXPECT_EQ(35U, o.br.bits_consumed());
}

TEST(ExpGolomb, AStreamOfZerosThrows)
{
    for (std::size_t size : {0U, 1U, 3U, 4U, 5U, 100U}) {
        opened o(bytes(size, 0));
        EXPECT_EQ(0U, malformed_at([&] { o.br.ue(); })) << size << " bytes";
        EXPECT_EQ(32U, o.br.bits_consumed());
    }
}

TEST(ExpGolomb, ZerosBehindTheEndCountAsTheDatasOwn)
{
    opened o({0x80});
    EXPECT_EQ(0U, o.br.ue());
    EXPECT_EQ(1U, malformed_at([&] { o.br.ue(); }));
    EXPECT_EQ(33U, malformed_at([&] { o.br.ue(); }));
}

TEST(ExpGolomb, ASuffixBehindTheEndReadsAsZeros)
{
    opened o({0x01}); // seven zeros, the marker, and no bit of the suffix
    EXPECT_EQ(127U, o.br.ue());
    EXPECT_EQ(15U, o.br.bits_consumed());
    opened half({0x0B}); // four zeros, the marker, and three of four bits: 011
    EXPECT_EQ(15U + 6U, half.br.ue());
    EXPECT_EQ(9U, half.br.bits_consumed());
}

TEST(MalformedCode, IsARuntimeErrorThatSaysWhatAndWhere)
{
    opened o(bytes(5, 0));
    try {
        o.br.ue();
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string::npos, std::string(error.what()).find("Exp-Golomb"));
        const auto* const malformed = dynamic_cast<const h2645_common_malformed_code*>(&error);
        ASSERT_NE(nullptr, malformed);
        h2645_common_malformed_code copy(77);
        EXPECT_EQ(77U, copy.bit_position());
        copy = *malformed;
        EXPECT_EQ(0U, copy.bit_position());
    }
}

TEST(ExpGolomb, RandomBitsAgreeWithReadingBitByBit)
{
    support::random_source random(2);
    for (int round = 0; round < 3000; ++round) {
        const bytes data = support::zero_heavy_up_to(random, 30);
        opened o(data);
        literal::bit_reader model{data};
        for (int step = 0; step < 12; ++step) {
            const std::size_t code_start = model.position;
            if (support::pick(random, 2) == 0) {
                if (const auto expected = model.ue())
                    ASSERT_EQ(*expected, o.br.ue());
                else
                    ASSERT_EQ(code_start, malformed_at([&] { o.br.ue(); }));
            } else {
                if (const auto expected = model.se())
                    ASSERT_EQ(*expected, o.br.se());
                else
                    ASSERT_EQ(code_start, malformed_at([&] { o.br.se(); }));
            }
            ASSERT_EQ(model.position, o.br.bits_consumed());
        }
    }
}

TEST(MoreRbspData, HoldsBeforeTheStopBitAndNotAtIt)
{
    for (unsigned int syntax_bits = 0; syntax_bits <= 70; ++syntax_bits) {
        bit_writer bits;
        opened o(bits.u(syntax_bits, 0).trailing_bits());
        for (unsigned int position = 0; position < syntax_bits; ++position) {
            EXPECT_TRUE(h2645_common_more_rbsp_data(o.br)) << position << " of " << syntax_bits;
            EXPECT_EQ(position, o.br.bits_consumed());
            o.skip(1);
        }
        EXPECT_FALSE(h2645_common_more_rbsp_data(o.br)) << syntax_bits;
        EXPECT_EQ(syntax_bits, o.br.bits_consumed());
    }
}

TEST(MoreRbspData, AOneBitThatIsNotTheLastIsData)
{
    opened o({0xC0});
    EXPECT_TRUE(h2645_common_more_rbsp_data(o.br));
    o.skip(1);
    EXPECT_FALSE(h2645_common_more_rbsp_data(o.br));
}

TEST(MoreRbspData, TheLastOneBitMayLieFarAhead)
{
    for (std::size_t zeros = 0; zeros <= 40; ++zeros) {
        bytes data(zeros, 0);
        data.push_back(0x01);
        opened o(data);
        EXPECT_TRUE(h2645_common_more_rbsp_data(o.br));
        EXPECT_EQ(0U, o.br.bits_consumed());
    }
}

TEST(MoreRbspData, IsFalseWhenNoOneBitRemains)
{
    opened empty(bytes{});
    EXPECT_FALSE(h2645_common_more_rbsp_data(empty.br));
    opened zeros(bytes(20, 0));
    EXPECT_FALSE(h2645_common_more_rbsp_data(zeros.br));
    opened after_the_stop_bit({0x80, 0, 0, 0, 0, 0});
    EXPECT_FALSE(h2645_common_more_rbsp_data(after_the_stop_bit.skip(1).br));
    opened past_the_end({0xFF});
    EXPECT_FALSE(h2645_common_more_rbsp_data(past_the_end.skip(100).br));
}

TEST(MoreRbspData, ZeroBytesBehindTheStopBitAreNoData)
{
    opened o(support::stream_builder().raw({0x80}).zeros(30));
    EXPECT_FALSE(h2645_common_more_rbsp_data(o.br));
}

TEST(TrailingBits, AreConsumedFromEveryBitOfAByte)
{
    for (unsigned int syntax_bits = 0; syntax_bits <= 40; ++syntax_bits) {
        opened o(bit_writer().u(syntax_bits, 0x5555555555).trailing_bits().u(8, 0xFF));
        o.skip(syntax_bits);
        EXPECT_TRUE(h2645_common_skip_rbsp_trailing_bits(o.br)) << syntax_bits;
        EXPECT_EQ((syntax_bits / 8 + 1) * 8, o.br.bits_consumed());
    }
}

TEST(TrailingBits, AStopBitOfZeroIsMalformedAndConsumedAllTheSame)
{
    for (unsigned int position = 0; position < 8; ++position) {
        opened o(bytes{0x00, 0xFF});
        o.skip(position);
        EXPECT_FALSE(h2645_common_skip_rbsp_trailing_bits(o.br)) << position;
        EXPECT_EQ(8U, o.br.bits_consumed());
    }
}

TEST(TrailingBits, EveryAlignmentBitMustBeZero)
{
    for (unsigned int position = 0; position < 7; ++position)
        for (unsigned int stray = position + 1; stray < 8; ++stray) {
            opened o(bytes{static_cast<unsigned char>(0x80 >> position | 0x80 >> stray)});
            o.skip(position);
            EXPECT_FALSE(h2645_common_skip_rbsp_trailing_bits(o.br)) << position << ", stray bit " << stray;
            EXPECT_EQ(8U, o.br.bits_consumed());
        }
}

TEST(TrailingBits, FurtherBytesAreNotLookedAt)
{
    opened o({0x80, 0xFF, 0xFF});
    EXPECT_TRUE(h2645_common_skip_rbsp_trailing_bits(o.br));
    EXPECT_EQ(8U, o.br.bits_consumed());
}

TEST(TrailingBits, AreMissingBehindTheEnd)
{
    opened empty(bytes{});
    EXPECT_FALSE(h2645_common_skip_rbsp_trailing_bits(empty.br));
    EXPECT_EQ(8U, empty.br.bits_consumed());
    opened read_out({0xFF});
    read_out.skip(8);
    EXPECT_FALSE(h2645_common_skip_rbsp_trailing_bits(read_out.br));
    EXPECT_EQ(16U, read_out.br.bits_consumed());
}

TEST(TrailingBits, ACursorBehindTheFenceIsNoFault)
{
    opened o({0x80});
    o.br.refill();
    EXPECT_GT(o.br.source.cursor, o.br.source.fence);
    EXPECT_TRUE(h2645_common_skip_rbsp_trailing_bits(o.br));
}

TEST(RbspTrailer, RandomBitsAgreeWithReadingBitByBit)
{
    support::random_source random(3);
    for (int round = 0; round < 3000; ++round) {
        const bytes data = support::zero_heavy_up_to(random, 12);
        opened o(data);
        literal::bit_reader model{data};
        for (int step = 0; step < 8; ++step) {
            const auto n = static_cast<unsigned int>(support::pick(random, 20));
            model.get(n);
            o.skip(n);
            ASSERT_EQ(model.more_rbsp_data(), h2645_common_more_rbsp_data(o.br));
            ASSERT_EQ(model.position, o.br.bits_consumed());
            if (n % 4 == 0) {
                ASSERT_EQ(model.skip_rbsp_trailing_bits(), h2645_common_skip_rbsp_trailing_bits(o.br));
            }
            ASSERT_EQ(model.position, o.br.bits_consumed());
        }
    }
}
