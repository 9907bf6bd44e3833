#include <orv-utils-v4/h264/hrd_parameters.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/vui_builder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_hrd_parameters;
using support::hrd_description;
using support::hrd_of;
using support::with_valid;
using parsed_hrd = support::parsed<h264_hrd_parameters>;

h264_hrd_parameters earlier(std::uint32_t count, bool valid)
{
    return with_valid(valid, parsed_hrd(support::written(hrd_of(count))).object);
}

} // namespace

TEST(Hrd, EveryCountTo128IsAccepted)
{
    for (std::uint32_t count = 1; count <= 128; ++count) {
        const auto writer = support::written(hrd_of(count));
        const parsed_hrd p(writer);
        EXPECT_TRUE(p.result) << count;
        ASSERT_EQ(count, p->bit_rate_value_minus1.size());
        ASSERT_EQ(count, p->cpb_size_value_minus1.size());
        ASSERT_EQ(count, p->cbr_flag.size());
        EXPECT_EQ(1000 + count - 1, p->bit_rate_value_minus1.back());
        EXPECT_EQ(5 * (count - 1), p->cpb_size_value_minus1.back());
        EXPECT_EQ((count - 1) % 3 == 1, p->cbr_flag.back());
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(Hrd, Count129AndAboveIsRefusedAfterThreeFieldsAndValidKeepsItsValue)
{
    for (const std::uint32_t cpb_cnt_minus1 : {128U, 129U, 255U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU})
        for (const bool valid : {false, true}) {
            hrd_description hrd = hrd_of(2);
            hrd.cpb_cnt_minus1 = cpb_cnt_minus1;
            hrd.bit_rate_scale = 5;
            hrd.cpb_size_scale = 6;
            const auto writer = support::written(hrd);
            const h264_hrd_parameters before = earlier(3, valid);
            const parsed_hrd p(writer, before);
            EXPECT_FALSE(p.result) << cpb_cnt_minus1;
            EXPECT_EQ(valid, p->valid) << cpb_cnt_minus1;
            h264_hrd_parameters expected = before;
            expected.cpb_cnt_minus1 = cpb_cnt_minus1;
            expected.bit_rate_scale = 5;
            expected.cpb_size_scale = 6;
            EXPECT_EQ("", difference(support::fields_of(expected), support::fields_of(p.object)));
            EXPECT_EQ(writer.elements()[3].position, p.consumed());
        }
}
