// What the tests stand on: a guard that does not guard, or a model that models something else, would prove nothing.
#include "support/bit_writer.h"
#include "support/guarded_buffer.h"
#include "support/literal_bits.h"
#include "support/literal_nal.h"
#include "support/stream_builder.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::guarded_buffer;

unsigned char read_byte(const volatile unsigned char* p)
{
    return *p;
}

} // namespace

TEST(GuardedBufferDeathTest, OneReadBehindTheEndEndsTheProcess)
{
    const guarded_buffer buffer(bytes{1, 2, 3});
    EXPECT_EQ(3, read_byte(buffer.end() - 1));
    EXPECT_DEATH(read_byte(buffer.end()), "");
}

TEST(GuardedBufferDeathTest, OneReadBeforeTheStartEndsTheProcess)
{
    const guarded_buffer buffer(bytes{1, 2, 3}, guarded_buffer::touching::start);
    EXPECT_EQ(1, read_byte(buffer.begin()));
    EXPECT_DEATH(read_byte(buffer.begin() - 1), "");
}

TEST(GuardedBufferDeathTest, AnEmptyBufferHasNoByteToRead)
{
    const guarded_buffer buffer(0);
    EXPECT_EQ(buffer.begin(), buffer.end());
    EXPECT_DEATH(read_byte(buffer.begin()), "");
}

TEST(GuardedBuffer, AStrayWriteOnTheOpenSideIsTold)
{
    const guarded_buffer buffer(5000);
    EXPECT_TRUE(buffer.surroundings_untouched());
    buffer.begin()[0] = 0;
    EXPECT_TRUE(buffer.surroundings_untouched());
    buffer.begin()[-1] = 0;
    EXPECT_FALSE(buffer.surroundings_untouched());
}

TEST(BitWriter, CodesAreThoseOfTheStandardsTable)
{
    // H.264 Table 9-2: 1, 010, 011, 00100, 00101; then the trailing bits.
    const support::bit_writer bits = support::bit_writer().ue(0).ue(1).ue(2).ue(3).ue(4).trailing_bits();
    EXPECT_EQ((bytes{0b10100110, 0b01000010, 0b11000000}), bits.bytes());
    EXPECT_EQ(24U, bits.bits());
    EXPECT_EQ(support::bit_writer().ue(2).ue(3).ue(4294967294).bytes(),
              support::bit_writer().se(-1).se(2).se(-2147483647).bytes());
}

TEST(StreamBuilder, UnitsAreFramed)
{
    EXPECT_EQ((bytes{0, 0, 0, 1, 0x67, 9, 0xEE}),
              support::stream_builder().zeros(1).annexb_unit(0x67, {9}).junk(1).made());
    EXPECT_EQ((bytes{0, 0, 2, 0x67, 9}), support::stream_builder().prefixed_unit(3, 0x67, {9}).made());
    EXPECT_EQ(0x65, support::idr_slice);
}

TEST(LiteralReader, FindsAndDecodesAUnit)
{
    literal::nal_reader model;
    model.nalfmt = literal::annexb;
    model.stream = {0x00, 0x00, 0x00, 0x01, 0x67, 0x41, 0x00, 0x00, 0x03, 0x01, 0x00, 0x00, 0x01};
    model.scan(0, model.stream.size());
    EXPECT_TRUE(model.found);
    EXPECT_EQ(1U, model.nal_start);
    EXPECT_EQ(1U, model.zero_count);
    EXPECT_EQ(5U, model.next);
    EXPECT_EQ(10U, model.find_unit_end());
    EXPECT_EQ((bytes{0x41, 0x00, 0x00, 0x01}), model.block_decode(100));
    EXPECT_EQ(bytes{}, model.block_decode(100));
}

TEST(LiteralWriter, WritesTheUnitOfTheReadersExample)
{
    literal::nal_writer model;
    model.nalfmt = literal::annexb;
    model.buffer.resize(10);
    EXPECT_EQ(10U, model.block_encode({0x42, 0x00, 0x00, 0x01}, {3, 7, true}, 1));
    EXPECT_EQ((bytes{0x00, 0x00, 0x00, 0x01, 0x67, 0x42, 0x00, 0x00, 0x03, 0x01}), model.buffer);
}

TEST(LiteralBits, ReadsBitByBit)
{
    literal::bit_reader model{{0xA5, 0xFF}};
    EXPECT_EQ(10U, model.get(4));
    EXPECT_EQ(0U, model.get(1));
    EXPECT_EQ(5U, model.get(3));
    EXPECT_TRUE(model.more_rbsp_data());
    EXPECT_EQ(255U, model.get(8));
    EXPECT_FALSE(model.more_rbsp_data());
    EXPECT_FALSE(model.skip_rbsp_trailing_bits());
}
