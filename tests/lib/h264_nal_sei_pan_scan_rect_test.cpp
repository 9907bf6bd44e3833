#include <orv-utils-v4/h264/nal_sei_pan_scan_rect.h>

#include "support/literal_sei_parse.h"
#include "support/parsed.h"
#include "support/sei_builder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_nal_sei_pan_scan_rect;
using support::fields_of;
using support::pan_scan_of;
using support::pan_scan_rect_description;
using support::with_valid;
using support::written;
using parsed_pan_scan = support::parsed<h264_nal_sei_pan_scan_rect>;

/// What a parse of `count` rectangles leaves.
h264_nal_sei_pan_scan_rect earlier(std::int32_t count, bool valid = true)
{
    return with_valid(valid, parsed_pan_scan(written(pan_scan_of(count))).object);
}

} // namespace

TEST(PanScanRect, ValuesOutsideTheirRangesAreKept)
{
    pan_scan_rect_description pan_scan;
    pan_scan.pan_scan_rect_id = 0xFFFFFFFE;
    pan_scan.rects = {{2147483647, -2147483647, -2147483647, 2147483647}};
    for (const std::uint32_t period : {16384U, 16385U, 0xFFFFFFFEU}) {
        pan_scan.pan_scan_rect_repetition_period = period;
        const parsed_pan_scan p(written(pan_scan));
        EXPECT_TRUE(p.result);
        EXPECT_EQ(0xFFFFFFFEU, p->pan_scan_rect_id);
        EXPECT_EQ(2147483647, p->rects.at(0).pan_scan_rect_left_offset);
        EXPECT_EQ(-2147483647, p->rects.at(0).pan_scan_rect_right_offset);
        EXPECT_EQ(-2147483647, p->rects.at(0).pan_scan_rect_top_offset);
        EXPECT_EQ(2147483647, p->rects.at(0).pan_scan_rect_bottom_offset);
        EXPECT_EQ(period, p->pan_scan_rect_repetition_period);
    }
}

TEST(PanScanRect, ACancelledOneKeepsTheOtherFields)
{
    for (const bool valid : {false, true}) {
        pan_scan_rect_description pan_scan = pan_scan_of(1);
        pan_scan.pan_scan_rect_id = 4;
        pan_scan.pan_scan_rect_cancel_flag = true;
        const parsed_pan_scan p(written(pan_scan), earlier(2, valid));
        EXPECT_TRUE(p.result);
        h264_nal_sei_pan_scan_rect expected = earlier(2);
        expected.pan_scan_rect_id = 4;
        expected.pan_scan_rect_cancel_flag = true;
        EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
        EXPECT_EQ(6U, p.consumed());
    }
}

TEST(PanScanRect, TheCancelFlagIsClearedByTheNextParse)
{
    h264_nal_sei_pan_scan_rect before = earlier(2);
    before.pan_scan_rect_cancel_flag = true;
    EXPECT_EQ(fields_of(earlier(2)), fields_of(parsed_pan_scan(written(pan_scan_of(2)), before).object));
}

TEST(PanScanRect, EveryCountTo128IsAccepted)
{
    for (std::int32_t count = 1; count <= 128; ++count) {
        const auto writer = written(pan_scan_of(count));
        const parsed_pan_scan p(writer);
        EXPECT_TRUE(p.result) << count;
        ASSERT_EQ(static_cast<std::size_t>(count), p->rects.size());
        EXPECT_EQ(1 + 4 * (count - 1), p->rects.back().pan_scan_rect_left_offset);
        EXPECT_EQ(-4 * count, p->rects.back().pan_scan_rect_bottom_offset);
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(PanScanRect, MoreThan128RectsAreRefusedBehindTheCountAndValidKeepsItsValue)
{
    for (const std::uint32_t cnt_minus1 : {128U, 129U, 255U, 256U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU})
        for (const bool valid : {false, true}) {
            pan_scan_rect_description pan_scan = pan_scan_of(129);
            pan_scan.pan_scan_rect_id = 5;
            pan_scan.pan_scan_cnt_minus1 = cnt_minus1;
            const auto writer = written(pan_scan);
            const parsed_pan_scan p(writer, earlier(2, valid));
            EXPECT_FALSE(p.result) << cnt_minus1;
            h264_nal_sei_pan_scan_rect expected = earlier(2, valid);
            expected.pan_scan_rect_id = 5;
            expected.pan_scan_cnt_minus1 = cnt_minus1;
            EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object))) << cnt_minus1;
            EXPECT_EQ(writer.elements()[3].position, p.consumed());
        }
}
