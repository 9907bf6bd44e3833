#include "frame_totals.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using orv_h264::frame_totals;
using orv_h264::picture_row;

picture_row row_of(std::uint64_t picture, bool key)
{
    picture_row row;
    row.picture = picture;
    row.idr = key;
    row.coded_pictures = 1;
    row.size = 100;
    row.unit_bytes = 90;
    row.padding = 15;
    row.filler = 7;
    return row;
}

/// A frame for each character, a key frame for K.
frame_totals totals_of(std::string_view frames)
{
    frame_totals totals;
    std::uint64_t picture = 0;
    for (const char c : frames)
        totals.add(row_of(picture++, c == 'K'));
    return totals;
}

} // namespace

TEST(FrameTotals, OfNoFrameAreZero)
{
    const frame_totals totals;
    EXPECT_EQ(0U, totals.frames());
    EXPECT_EQ(0U, totals.key_frames());
    EXPECT_EQ(0U, totals.bytes());
    EXPECT_FALSE(totals.key_distance().has_value());
    EXPECT_FALSE(totals.bit_rate().mean().has_value());
}

TEST(FrameTotals, KeyDistanceNeedsTwoKeyFrames)
{
    for (const char* frames : {"", "-", "K", "K---", "--K"})
        EXPECT_FALSE(totals_of(frames).key_distance().has_value()) << frames;
}

TEST(FrameTotals, KeyDistanceIsFromOneKeyFrameToTheNext)
{
    struct distance_case {
        const char* frames;
        std::uint64_t least;
        std::uint64_t most;
        double mean;
    };
    const distance_case cases[] = {
        {"KK", 1, 1, 1},           {"K-K", 2, 2, 2},
        {"K--K-K", 2, 3, 2.5},     {"K-K--K----", 2, 3, 2.5},
        {"----K--K", 3, 3, 3},     {"KKK-----K", 1, 6, 8.0 / 3},
        {"-K-----KK-", 1, 6, 3.5}, {"K---K-K---K", 2, 4, 10.0 / 3},
    };
    for (const distance_case& c : cases) {
        const auto distance = totals_of(c.frames).key_distance();
        ASSERT_TRUE(distance.has_value()) << c.frames;
        EXPECT_EQ(c.least, distance->least) << c.frames;
        EXPECT_EQ(c.most, distance->most) << c.frames;
        EXPECT_DOUBLE_EQ(c.mean, distance->mean) << c.frames;
    }
}

TEST(FrameTotals, AddUpRowsPicturesAndBytes)
{
    frame_totals totals = totals_of("K--");
    picture_row pair = row_of(3, false);
    pair.coded_pictures = 2;
    pair.recovery_frame_cnt = 3;
    totals.add(pair);
    EXPECT_EQ(4U, totals.frames());
    EXPECT_EQ(4U, totals.pictures());
    EXPECT_EQ(2U, totals.key_frames()) << "a recovery point is one";
    EXPECT_EQ(5U, totals.coded_pictures());
    EXPECT_EQ(400U, totals.bytes());
    EXPECT_EQ(360U, totals.unit_bytes());
    EXPECT_EQ(60U, totals.padding());
    EXPECT_EQ(28U, totals.filler());
}

TEST(FrameTotals, AKeyPictureOfTwoRowsIsOne)
{
    frame_totals totals;
    for (const std::uint64_t picture : {4U, 4U, 5U, 5U, 6U, 6U})
        totals.add(row_of(picture, picture != 5));
    totals.add(row_of(7, false));
    totals.add(row_of(7, true));
    EXPECT_EQ(8U, totals.frames());
    EXPECT_EQ(4U, totals.pictures());
    EXPECT_EQ(3U, totals.key_frames());
    const auto distance = totals.key_distance();
    ASSERT_TRUE(distance.has_value());
    EXPECT_EQ(1U, distance->least);
    EXPECT_EQ(2U, distance->most);
    EXPECT_EQ(1.5, distance->mean);
}

TEST(FrameTotals, RatesAreOfTheRowsThatAreTimed)
{
    frame_totals totals = totals_of("K");
    EXPECT_FALSE(totals.bit_rate().mean().has_value());
    EXPECT_FALSE(totals.unit_bit_rate().has_value());
    picture_row timed = row_of(1, false);
    timed.duration = {1, 25};
    totals.add(timed);
    timed.picture = 2;
    totals.add(timed);
    EXPECT_EQ(2U, totals.timed_frames());
    EXPECT_EQ(0.08, totals.bit_rate().seconds());
    EXPECT_EQ(2 * (90 + 15) * 8 / 0.08, totals.bit_rate().mean());
    EXPECT_EQ(2 * 90 * 8 / 0.08, totals.unit_bit_rate());
}
