#include "rbsp_decoder.h"

#include "support/walked.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_h264::rbsp_bytes;
using orv_h264::rbsp_decoder;
using support::bytes;
using support::unit_reader;

bytes copy_of(rbsp_bytes rbsp)
{
    return {rbsp.begin(), rbsp.end()};
}

} // namespace

TEST(RbspDecoder, TheWholeIsWhatWasEncoded)
{
    support::random_source random(1);
    for (int round = 0; round < 2000; ++round) {
        const bytes rbsp = support::zero_heavy_up_to(random, 300);
        unit_reader unit(support::idr_slice, rbsp);
        rbsp_decoder decoder;
        EXPECT_EQ(rbsp, copy_of(decoder.whole(*unit)));
        EXPECT_EQ(rbsp, copy_of(decoder.whole(*unit))) << "a second time";
    }
}

TEST(RbspDecoder, TheTrustedPartOfAHeadIsTheStartOfTheWholeWhereverItEnds)
{
    support::random_source random(2);
    for (int round = 0; round < 200; ++round) {
        const bytes rbsp = support::zero_heavy_up_to(random, 60);
        unit_reader unit(support::idr_slice, rbsp);
        rbsp_decoder decoder;
        for (std::size_t most = 0; most <= 100; ++most) {
            const rbsp_decoder::decoded head = decoder.head(*unit, most);
            EXPECT_LE(head.bytes.size(), most);
            ASSERT_LE(head.trusted(), rbsp.size());
            EXPECT_TRUE(std::equal(rbsp.begin(), rbsp.begin() + static_cast<std::ptrdiff_t>(head.trusted()),
                                   head.bytes.begin()));
            if (head.whole)
                EXPECT_EQ(rbsp, copy_of(head.bytes));
            else
                EXPECT_EQ(most, head.bytes.size()) << "a part is a full block";
        }
    }
}

TEST(RbspDecoder, AHeadThatEndsWhereTheUnitEndsInZerosIsNotTrustedThere)
{
    const bytes stream = support::stream_builder().prefixed_unit(1, support::idr_slice, {0x11, 0x22, 0, 0, 1, 0x33});
    const support::guarded_buffer buffer(stream);
    brenik::h264_nal_reader reader(brenik::nalfmt_length1);
    reader.scan(buffer.begin(), buffer.end());
    rbsp_decoder decoder;
    const rbsp_decoder::decoded head = decoder.head(reader, 4);
    EXPECT_EQ((bytes{0x11, 0x22, 0, 0}), copy_of(head.bytes));
    EXPECT_EQ(2U, head.trusted());
    EXPECT_FALSE(head.whole);
    EXPECT_EQ((bytes{0x11, 0x22}), copy_of(decoder.head(reader, 5).bytes)) << "the zeros are no part of the unit";
}

TEST(RbspDecoder, ABlockOfTheUnitsSizeIsEnough)
{
    const bytes rbsp(50, 0x55);
    unit_reader unit(support::idr_slice, rbsp);
    rbsp_decoder decoder;
    EXPECT_FALSE(decoder.head(*unit, 49).whole);
    EXPECT_TRUE(decoder.head(*unit, 50).whole);
    EXPECT_EQ(50U, decoder.head(*unit, 50).trusted());
}

TEST(RbspDecoder, AUnitWithoutAPayloadIsWholeAndEmpty)
{
    unit_reader unit(support::idr_slice, {});
    rbsp_decoder decoder;
    EXPECT_TRUE(decoder.head(*unit, 0).whole);
    EXPECT_TRUE(decoder.head(*unit, 96).whole);
    EXPECT_EQ(0U, decoder.whole(*unit).size());
}
