#include "bit_rate_meter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

struct timed_bytes {
    std::uint64_t bytes;
    std::optional<double> seconds;
};

orv_h264::bit_rate_meter meter_of(const std::vector<timed_bytes>& frames)
{
    orv_h264::bit_rate_meter meter;
    for (const timed_bytes& f : frames)
        meter.add(f.bytes, f.seconds);
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
    const rate_case cases[] = {
        {"nothing", {}, 0, {}, {}},
        {"no duration known", {{1000, {}}, {1000, {}}}, 0, {}, {}},
        {"durations of 0 count for nothing", {{1000, 0.0}}, 0, {}, {}},
        {"less than a second has no peak", {{100, 0.5}}, 0.5, 1600, {}},
        {"one second", {{100, 1.0}}, 1, 800, 800},
        {"two halves", {{100, 0.5}, {300, 0.5}}, 1, 3200, 3200},
        {"the second second is fuller", {{100, 1.0}, {300, 1.0}}, 2, 1600, 2400},
        {"the first is", {{300, 1.0}, {100, 1.0}}, 2, 1600, 2400},
        {"a second that is not whole is not the peak", {{100, 1.0}, {1000, 0.5}}, 1.5, 8800 / 1.5, 800},
        {"a frame is spread over two seconds", {{0, 0.5}, {200, 1.0}, {300, 0.5}}, 2, 2000, 3200},
        {"and over three", {{0, 0.5}, {300, 2.0}, {0, 0.5}}, 3, 800, 1200},
        {"a long frame", {{1000, 10.0}}, 10, 800, 800},
        {"what a long frame leaves", {{1250, 2.5}, {1000, 0.5}}, 3, 6000, 10000},
        {"unknown ones between", {{100, 0.5}, {9999, {}}, {100, 0.5}, {9999, 0.0}}, 1, 1600, 1600},
        {"a frame of no bytes", {{0, 1.0}}, 1, 0, 0},
        {"years", {{8, 1e9}}, 1e9, 64e-9, 64e-9},
    };
    for (const rate_case& c : cases) {
        const orv_h264::bit_rate_meter meter = meter_of(c.frames);
        EXPECT_DOUBLE_EQ(c.seconds, meter.seconds()) << c.name;
        expect_near(c.mean, meter.mean(), c.name);
        expect_near(c.peak, meter.peak(), c.name);
    }
}

TEST(BitRateMeter, RoundingOfSumsLosesNoSecond)
{
    // Durations whose sums are a little off in binary: every second holds `count` frames of 1000 bits.
    for (const unsigned int count : {3U, 7U, 10U, 24U, 25U, 30U, 49U, 50U, 60U, 120U}) {
        for (const unsigned int seconds : {1U, 2U, 10U, 1000U}) {
            const std::vector<timed_bytes> frames(std::size_t{count} * seconds, {125, 1.0 / count});
            expect_near(1000.0 * count, meter_of(frames).peak(), "even frames");
        }
    }
}

TEST(BitRateMeter, RoundingOfWhatALongFrameLeavesLosesNoSecond)
{
    // 1.9 - 0.9 is a little less than 1. The last second is the fullest.
    for (const double first : {0.1, 0.2, 0.3, 0.4, 0.6, 0.7, 0.8, 0.9}) {
        const double long_one = 2.0 - first;
        const auto meter =
            meter_of({{0, first}, {static_cast<std::uint64_t>(std::lround(10000 * long_one)), long_one}});
        expect_near(80000, meter.peak(), "the last second");
    }
}

TEST(BitRateMeter, TheBitsOfTheFullestSecondInAnUnevenStream)
{
    // 24000/1001 frames a second, the second and every 100th after it 10 times as large.
    std::vector<timed_bytes> frames(2400, {1000, 1001.0 / 24000});
    for (std::size_t i = 1; i < frames.size(); i += 100)
        frames[i].bytes = 10000;
    const orv_h264::bit_rate_meter meter = meter_of(frames);
    EXPECT_NEAR(100.1, meter.seconds(), 1e-9);
    expect_near((2376 * 8000.0 + 24 * 80000.0) / 100.1, meter.mean(), "mean");
    // The fullest second has one large frame, and 24000/1001 - 1 small ones.
    expect_near(80000 + (24000.0 / 1001 - 1) * 8000, meter.peak(), "peak");
}
