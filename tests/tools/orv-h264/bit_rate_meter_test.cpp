#include "bit_rate_meter.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using orv_h264::h264::exact_time;

struct timed_bytes {
    std::uint64_t bytes;
    exact_time duration;
};

orv_h264::bit_rate_meter meter_of(const std::vector<timed_bytes>& frames)
{
    orv_h264::bit_rate_meter meter;
    for (const timed_bytes& f : frames)
        meter.add(f.bytes, f.duration);
    return meter;
}

struct rate_case {
    const char* name;
    std::vector<timed_bytes> frames;
    double seconds;
    std::optional<double> mean;
    std::optional<double> peak;
};

void expect_near(std::optional<double> expected, std::optional<double> rate, const char* name)
{
    ASSERT_EQ(expected.has_value(), rate.has_value()) << name;
    if (expected) {
        EXPECT_NEAR(*expected, *rate, 1e-6 * *expected) << name;
    }
}

} // namespace

TEST(BitRateMeter, MeanAndPeakOfFrames)
{
    const exact_time half = {1, 2}, second = {1, 1}, unknown;
    const rate_case cases[] = {
        {"nothing", {}, 0, {}, {}},
        {"no duration known", {{1000, unknown}, {1000, unknown}}, 0, {}, {}},
        {"durations of 0 count for nothing", {{1000, {0, 1}}}, 0, {}, {}},
        {"less than a second has no peak", {{100, half}}, 0.5, 1600, {}},
        {"one second", {{100, second}}, 1, 800, 800},
        {"two halves", {{100, half}, {300, half}}, 1, 3200, 3200},
        {"the second second is fuller", {{100, second}, {300, second}}, 2, 1600, 2400},
        {"the first is", {{300, second}, {100, second}}, 2, 1600, 2400},
        {"a second that is not whole is not the peak", {{100, second}, {1000, half}}, 1.5, 8800 / 1.5, 800},
        {"a frame is spread over two seconds", {{0, half}, {200, second}, {300, half}}, 2, 2000, 3200},
        {"and over three", {{0, half}, {300, {2, 1}}, {0, half}}, 3, 800, 1200},
        {"a long frame", {{1000, {10, 1}}}, 10, 800, 800},
        {"what a long frame leaves", {{1250, {5, 2}}, {1000, half}}, 3, 6000, 10000},
        {"unknown ones between", {{100, half}, {9999, unknown}, {100, half}, {9999, {0, 1}}}, 1, 1600, 1600},
        {"a frame of no bytes", {{0, second}}, 1, 0, 0},
        {"years", {{8, {1000000000, 1}}}, 1e9, 64e-9, 64e-9},
    };
    for (const rate_case& c : cases) {
        const orv_h264::bit_rate_meter meter = meter_of(c.frames);
        EXPECT_DOUBLE_EQ(c.seconds, meter.seconds()) << c.name;
        expect_near(c.mean, meter.mean(), c.name);
        expect_near(c.peak, meter.peak(), c.name);
    }
}

TEST(BitRateMeter, SumsLoseNoSecond)
{
    // Every second holds `count` frames of 1000 bits.
    for (const unsigned int count : {3U, 7U, 10U, 24U, 25U, 30U, 49U, 50U, 60U, 120U}) {
        for (const unsigned int seconds : {1U, 2U, 10U, 1000U}) {
            const std::vector<timed_bytes> frames(std::size_t{count} * seconds, {125, {1, count}});
            EXPECT_EQ(seconds, meter_of(frames).seconds());
            expect_near(1000.0 * count, meter_of(frames).peak(), "even frames");
        }
    }
}

TEST(BitRateMeter, WhatALongFrameLeavesLosesNoSecond)
{
    // The last second is the fullest.
    for (const std::int64_t tenths : {1, 2, 3, 4, 6, 7, 8, 9}) {
        const std::int64_t rest = 20 - tenths;
        const auto meter = meter_of({{0, {tenths, 10}}, {static_cast<std::uint64_t>(1000 * rest), {rest, 10}}});
        expect_near(80000, meter.peak(), "the last second");
    }
}

TEST(BitRateMeter, TheBitsOfTheFullestSecondInAnUnevenStream)
{
    // 24000/1001 frames a second, the second and every 100th after it 10 times as large.
    std::vector<timed_bytes> frames(2400, {1000, {1001, 24000}});
    for (std::size_t i = 1; i < frames.size(); i += 100)
        frames[i].bytes = 10000;
    const orv_h264::bit_rate_meter meter = meter_of(frames);
    EXPECT_NEAR(100.1, meter.seconds(), 1e-9);
    expect_near((2376 * 8000.0 + 24 * 80000.0) / 100.1, meter.mean(), "mean");
    // The fullest second has one large frame, and 24000/1001 - 1 small ones.
    expect_near(80000 + (24000.0 / 1001 - 1) * 8000, meter.peak(), "peak");
}
