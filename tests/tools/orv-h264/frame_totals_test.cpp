#include "frame_totals.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using orv_h264::frame;
using orv_h264::frame_totals;

frame frame_of(bool key)
{
    frame f;
    f.idr = key;
    f.coded_pictures = 1;
    f.size = 100;
    return f;
}

/// A frame for each character, a key frame for K.
frame_totals totals_of(std::string_view frames)
{
    frame_totals totals;
    for (const char c : frames)
        totals.add(frame_of(c == 'K'));
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

TEST(FrameTotals, AddUpFramesPicturesAndBytes)
{
    frame_totals totals = totals_of("K--");
    frame pair = frame_of(false);
    pair.coded_pictures = 2;
    pair.recovery_frame_cnt = 3;
    totals.add(pair);
    EXPECT_EQ(4U, totals.frames());
    EXPECT_EQ(2U, totals.key_frames()) << "a recovery point is one";
    EXPECT_EQ(5U, totals.coded_pictures());
    EXPECT_EQ(400U, totals.bytes());
}

TEST(FrameTotals, TheTimeIsThatOfTheFramesThatHaveOne)
{
    frame_totals totals = totals_of("K");
    EXPECT_FALSE(totals.bit_rate().mean().has_value());
    frame timed = frame_of(false);
    timed.seconds = 0.04;
    totals.add(timed);
    totals.add(timed);
    EXPECT_DOUBLE_EQ(0.08, totals.bit_rate().seconds());
    EXPECT_DOUBLE_EQ(200 * 8 / 0.08, totals.bit_rate().mean().value());
}
