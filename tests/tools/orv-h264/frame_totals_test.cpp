#include "frame_totals.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using orv_h264::frame;
using orv_h264::frame_totals;

frame frame_of(bool key)
{
    frame f;
    f.units.resize(1);
    f.units[0].nal.nal_unit_type =
        key ? brenik::h264_nal_unit_type_slice_idr : brenik::h264_nal_unit_type_slice_non_idr;
    f.units[0].begins_picture = true;
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

/// A frame of 1000 bytes at 50 fields a second, in which so many pictures begin.
frame timed_frame(std::size_t pictures, bool fields, std::uint32_t field_duration)
{
    frame f;
    f.size = 1000;
    f.field_duration = field_duration;
    f.seconds = field_duration / 50.0;
    f.units.assign(pictures, frame_of(false).units[0]);
    for (auto& unit : f.units)
        unit.field = fields;
    return f;
}

double seconds_of(const frame& f)
{
    frame_totals totals;
    totals.add(f);
    return totals.bit_rate().seconds();
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
    pair.units.push_back(pair.units[0]);
    pair.units[0].field = pair.units[1].field = true;
    totals.add(pair);
    EXPECT_EQ(0U, totals.joined_frames());
    frame joined = frame_of(true);
    joined.units.push_back(joined.units[0]);
    joined.size = 1000;
    joined.seconds = 0.5;
    totals.add(joined);
    EXPECT_EQ(5U, totals.frames());
    EXPECT_EQ(2U, totals.key_frames());
    EXPECT_EQ(6U, totals.pictures()) << "a pair of fields is one";
    EXPECT_EQ(7U, totals.coded_pictures());
    EXPECT_EQ(1U, totals.joined_frames());
    EXPECT_EQ(1400U, totals.bytes());
}

TEST(FrameTotals, AFrameOrAPairOfFieldsLastsAsLongAsTheScanTells)
{
    EXPECT_DOUBLE_EQ(0.04, seconds_of(timed_frame(1, false, 2)));
    EXPECT_DOUBLE_EQ(0.06, seconds_of(timed_frame(1, false, 3)));
    EXPECT_DOUBLE_EQ(0.04, seconds_of(timed_frame(2, true, 2)));
    EXPECT_DOUBLE_EQ(0.02, seconds_of(timed_frame(1, true, 1)));
    EXPECT_DOUBLE_EQ(0, seconds_of(timed_frame(0, false, 2))) << "no slice, no picture";
}

TEST(FrameTotals, EachFurtherPictureOfAJoinedFrameLastsTwoFields)
{
    EXPECT_DOUBLE_EQ(0.12, seconds_of(timed_frame(3, false, 2)));
    EXPECT_DOUBLE_EQ(0.14, seconds_of(timed_frame(3, false, 3)));
    EXPECT_DOUBLE_EQ(0.08, seconds_of(timed_frame(4, true, 2)));
}

TEST(FrameTotals, JoinedPicturesDoNotRaiseTheBitRate)
{
    frame_totals joined;
    frame_totals apart;
    for (int i = 0; i < 100; ++i) {
        joined.add(timed_frame(2, false, 2));
        for (int picture = 0; picture < 2; ++picture) {
            frame half = timed_frame(1, false, 2);
            half.size = 500;
            apart.add(half);
        }
    }
    EXPECT_DOUBLE_EQ(apart.bit_rate().mean().value(), joined.bit_rate().mean().value());
    EXPECT_NEAR(apart.bit_rate().peak().value(), joined.bit_rate().peak().value(), 1e-6);
}

TEST(FrameTotals, AnUnknownOrEmptyDurationStaysSo)
{
    frame unknown = timed_frame(3, false, 2);
    unknown.seconds.reset();
    EXPECT_EQ(0, seconds_of(unknown));
    EXPECT_EQ(0, seconds_of(timed_frame(3, false, 0)));
}

TEST(FrameTotals, KeyDistanceCountsPicturesThatWereJoined)
{
    frame_totals totals;
    totals.add(frame_of(true));
    totals.add(timed_frame(4, false, 2));
    totals.add(frame_of(true));
    EXPECT_EQ(5U, totals.key_distance().value().most);
}
