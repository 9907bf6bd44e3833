#include <orv-utils-v4/h264/nal_aud.h>

#include "support/bit_writer.h"
#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

#include <gtest/gtest.h>

namespace {

using brenik::h264_nal_aud;
using support::bit_writer;
using support::bytes;

/// A delimiter after a parse of bytes that end at an unmapped page.
struct parsed {
    support::guarded_buffer buffer;
    brenik::h2645_common_bitreader br;
    h264_nal_aud aud;
    bool result;

    explicit parsed(const bytes& rbsp, unsigned char bits_before = 0, const h264_nal_aud& before = {})
        : buffer(rbsp), br(buffer.begin(), buffer.end()), aud(before)
    {
        br.get_wide(bits_before);
        result = aud.parse(br);
    }
};

} // namespace

TEST(Aud, TheOneByteDelimiterParses)
{
    const parsed p({0x50});
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p.aud.valid);
    EXPECT_EQ(2, p.aud.primary_pic_type);
    EXPECT_EQ(8U, p.br.bits_consumed());
}

TEST(Aud, EveryPrimaryPicTypeParses)
{
    for (unsigned int type = 0; type < 8; ++type) {
        const parsed p(bit_writer().u(3, type).trailing_bits().bytes());
        EXPECT_TRUE(p.result) << type;
        EXPECT_EQ(type, p.aud.primary_pic_type);
    }
}

TEST(Aud, AMissingStopBitFailsAfterTheFieldWasRead)
{
    const parsed p({0x40}, 0, {7, true});
    EXPECT_FALSE(p.result);
    EXPECT_FALSE(p.aud.valid);
    EXPECT_EQ(2, p.aud.primary_pic_type);
    EXPECT_EQ(8U, p.br.bits_consumed());
}

TEST(Aud, AStrayBitBehindTheStopBitFails)
{
    for (unsigned int stray = 0; stray < 4; ++stray) {
        const parsed p(bit_writer().u(3, 5).flag(true).u(4, 1U << stray).bytes());
        EXPECT_FALSE(p.result) << stray;
        EXPECT_FALSE(p.aud.valid);
        EXPECT_EQ(5, p.aud.primary_pic_type);
    }
}

TEST(Aud, AnEmptyRbspReadsZeroAndFailsAtTheTrailingBits)
{
    const parsed p({}, 0, {7, true});
    EXPECT_FALSE(p.result);
    EXPECT_FALSE(p.aud.valid);
    EXPECT_EQ(0, p.aud.primary_pic_type);
    EXPECT_EQ(8U, p.br.bits_consumed());
}

TEST(Aud, BytesBehindTheTrailingBitsStayUnread)
{
    const parsed p({0x50, 0xFF});
    EXPECT_TRUE(p.result);
    EXPECT_EQ(8U, p.br.bits_consumed());
}

TEST(Aud, ParseBeginsAtTheNextByteBoundary)
{
    for (unsigned char bits_before = 0; bits_before <= 8; ++bits_before) {
        const parsed p(bits_before == 0 ? bytes{0x50, 0xFF} : bytes{0xFF, 0x50}, bits_before);
        EXPECT_TRUE(p.result) << int{bits_before};
        EXPECT_EQ(2, p.aud.primary_pic_type) << int{bits_before};
        EXPECT_EQ(bits_before == 0 ? 8U : 16U, p.br.bits_consumed());
    }
}

TEST(Aud, ASecondParseReplacesTheFirst)
{
    const parsed p(bit_writer().u(3, 0).trailing_bits().bytes(), 0, {7, false});
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p.aud.valid);
    EXPECT_EQ(0, p.aud.primary_pic_type);
}
