#include <orv-utils-v4/h264/nal_sei_recovery_point.h>

#include "support/literal_sei_parse.h"
#include "support/parsed.h"
#include "support/sei_builder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_nal_sei_recovery_point;
using support::recovery_point_description;
using support::with_valid;
using support::written;
using parsed_recovery = support::parsed<h264_nal_sei_recovery_point>;

/// An object in which a field has a value of its own.
h264_nal_sei_recovery_point earlier(bool valid)
{
    return with_valid(valid, parsed_recovery(written(recovery_point_description{77, true, true, 3})).object);
}

} // namespace

TEST(RecoveryPoint, TheByteB0IsABrokenLinkAndIdcTwo)
{
    const parsed_recovery p(support::bytes{0xB0});
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->valid);
    EXPECT_EQ(0U, p->recovery_frame_cnt);
    EXPECT_FALSE(p->exact_match_flag);
    EXPECT_TRUE(p->broken_link_flag);
    EXPECT_EQ(2, p->changing_slice_group_idc);
    EXPECT_EQ(5U, p.consumed());
}

TEST(RecoveryPoint, EveryElementIsReadIntoItsField)
{
    for (const std::uint32_t recovery_frame_cnt : {0U, 1U, 65535U, 65536U, 0xFFFFFFFEU})
        for (unsigned int i = 0; i < 16; ++i)
            for (const bool valid : {false, true}) {
                const auto writer =
                    written(recovery_point_description{recovery_frame_cnt, (i & 1) != 0, (i & 2) != 0, i / 4});
                const parsed_recovery p(writer, earlier(valid));
                EXPECT_TRUE(p.result);
                EXPECT_TRUE(p->valid);
                EXPECT_EQ(recovery_frame_cnt, p->recovery_frame_cnt);
                EXPECT_EQ((i & 1) != 0, p->exact_match_flag);
                EXPECT_EQ((i & 2) != 0, p->broken_link_flag);
                EXPECT_EQ(i / 4, p->changing_slice_group_idc);
                EXPECT_EQ(writer.size_in_bits(), p.consumed());
            }
}
