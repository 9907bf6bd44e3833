#include "report/report_frames.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orv_h264::json;
using orv_h264::picture_row;
using orv_h264::report_frames;
using orv_h264::text_list;

/// A row like most: 25 a second, each as large as the one before.
picture_row row_of(std::uint64_t number)
{
    picture_row row;
    row.number = row.picture = number;
    row.output_number = number;
    row.size = row.unit_bytes = 1000;
    row.offset = 1000 * number;
    row.idr = number == 0;
    row.nal_ref_idc = 1;
    row.units = {{5, orv_h264::h264::slice_kind::I}};
    row.coded_pictures = 1;
    row.frame_num = static_cast<std::uint32_t>(number);
    row.poc = 2 * static_cast<std::int64_t>(number);
    row.duration = {1, 25};
    row.dts = row.pts = {static_cast<std::int64_t>(number), 25};
    return row;
}

} // namespace

TEST(ReportFrames, WhatGoesOnAsExpectedTakesAlmostNothing)
{
    report_frames frames;
    for (std::uint64_t number = 0; number < 100000; ++number)
        frames.add(row_of(number));
    EXPECT_LT(frames.take(0).dump().size(), 2000U);
}

TEST(ReportFrames, ARowMoreThanAPageHoldsLeavesNone)
{
    report_frames frames;
    for (std::uint64_t number = 0; number < report_frames::most_rows; ++number)
        frames.add(row_of(number));
    report_frames further = frames;
    EXPECT_FALSE(frames.take(0).is_null());
    further.add(row_of(report_frames::most_rows));
    EXPECT_TRUE(further.take(0).is_null());
}

TEST(ReportFrames, RowsTooUnlikeEachOtherForAPageAreNotKept)
{
    report_frames frames;
    std::uint64_t chosen = 1;
    for (std::uint64_t number = 0; number < 400000; ++number) {
        picture_row row = row_of(number);
        chosen = chosen * 6364136223846793005U + 1442695040888963407U;
        row.offset = chosen >> 20U;
        row.size = chosen >> 24U;
        row.padding = chosen >> 28U;
        row.filler = chosen >> 36U;
        frames.add(row);
    }
    EXPECT_TRUE(frames.take(0).is_null());
}

TEST(ReportFrames, TimesThatAScriptHasNoExactNumbersForAreRounded)
{
    report_frames frames;
    picture_row row = row_of(0);
    row.dts = {4616189618056855551, 2251799812636672};
    row.pts = {1, 2};
    frames.add(row);
    const json times = frames.take(0)["rounded_times"];
    ASSERT_EQ(1U, times.size());
    EXPECT_EQ(0, times[0][0]);
    EXPECT_DOUBLE_EQ(2050.000000955537, times[0][1].get<double>());
    EXPECT_DOUBLE_EQ(0.5, times[0][2].get<double>());
}

TEST(ReportFrames, ATextComesOnceAndOneWithoutRoomIsZero)
{
    text_list list(20);
    EXPECT_EQ(1U, list.number_of("[1,2,3]"));
    EXPECT_EQ(2U, list.number_of("[4]"));
    EXPECT_EQ(1U, list.number_of("[1,2,3]"));
    EXPECT_EQ(0U, list.number_of("[1,2,3,4,5,6]"));
    EXPECT_EQ(3U, list.number_of("[6]"));
    EXPECT_EQ(json::parse("[null,[1,2,3],[4],[6]]"), list.values());
}
