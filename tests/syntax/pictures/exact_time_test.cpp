// Exact times, the clock of a day, and wraps of timestamps.
#include "support/shown_time.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace orv_utils_v4::h264;

constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
constexpr exact_time unknown;

TEST(ExactTime, IsAddedExactlyAndReduced)
{
    struct sum {
        exact_time start;
        std::uint64_t count;
        ratio unit;
        exact_time result;
    };
    const sum table[] = {
        {{0, 1}, 0, {1, 25}, {0, 1}},
        {{0, 1}, 50, {1, 25}, {2, 1}},
        {{1, 3}, 1, {1, 6}, {1, 2}},
        {{1, 2}, 3, {1001, 60000}, {11001, 20000}},
        {{1, 90000}, 1, {1001, 60000}, {601, 36000}},
        {{-1, 2}, 1, {1, 2}, {0, 1}},
        {{-3, 2}, 1, {1, 4}, {-5, 4}},
        {{7, 5}, 4, {0, 9}, {7, 5}},
        {{0, 1}, 3, {4, 6}, {2, 1}},
        {{0, 1}, 1, {~std::uint64_t{0} / 3 * 3, 3}, {static_cast<std::int64_t>(~std::uint64_t{0} / 3), 1}},
        {{highest - 1, 1}, 1, {1, 1}, {highest, 1}},
        {{-highest, 1}, 1, {1, 1}, {1 - highest, 1}},
    };
    for (const sum& s : table)
        EXPECT_EQ(time_after(s.start, s.count, s.unit), s.result);
}

TEST(ExactTime, OfWhatIsUnknownOrDoesNotFitIsUnknown)
{
    EXPECT_EQ(time_after(unknown, 1, {1, 25}), unknown);
    EXPECT_EQ(time_after({0, 1}, 1, {}), unknown);
    EXPECT_EQ(time_after({0, 1}, 1, {5, 0}), unknown);
    EXPECT_EQ(time_after({1, -2}, 1, {1, 2}), unknown);
    EXPECT_EQ(time_after({highest, 1}, 1, {1, 1}), unknown);
    EXPECT_EQ(time_after({1, highest}, 1, {1, highest - 1}), unknown);
    EXPECT_EQ(time_after({0, 1}, ~std::uint64_t{0}, {1, 1}), unknown);
    EXPECT_EQ(time_after({0, 1}, 2, {~std::uint64_t{0}, 1}), unknown);
    EXPECT_EQ(time_after({0, 1}, 1, {1, ~std::uint64_t{0}}), unknown);
    EXPECT_EQ(time_after({std::numeric_limits<std::int64_t>::min(), 1}, 1, {1, 1}), unknown);
    EXPECT_FALSE(unknown);
    EXPECT_TRUE((exact_time{0, 1}));
}

// A film of a day at 29.97 frames a second does not drift.
TEST(ExactTime, DoesNotDrift)
{
    exact_time at = {0, 1};
    for (int frame = 0; frame < 30 * 1001; ++frame)
        at = time_after(at, 2, {1001, 60000});
    EXPECT_EQ(at, (exact_time{1002001, 1000}));
}

clock_timestamp full(std::uint8_t hours, std::uint8_t minutes, std::uint8_t seconds, std::uint8_t frames)
{
    clock_timestamp stamp;
    stamp.clock_timestamp_flag = stamp.full_timestamp_flag = true;
    stamp.hours_value = hours;
    stamp.minutes_value = minutes;
    stamp.seconds_value = seconds;
    stamp.n_frames = frames;
    return stamp;
}

clock_timestamp partial(bool hours, bool minutes, bool seconds)
{
    clock_timestamp stamp;
    stamp.clock_timestamp_flag = true;
    stamp.hours_flag = hours;
    stamp.minutes_flag = minutes;
    stamp.seconds_flag = seconds;
    stamp.hours_value = hours ? 7 : 0;
    stamp.minutes_value = minutes ? 8 : 0;
    stamp.seconds_value = seconds ? 9 : 0;
    stamp.n_frames = 3;
    stamp.cnt_dropped_flag = true;
    stamp.time_offset = -4;
    return stamp;
}

std::string text_of(const time_of_day& t)
{
    return std::to_string(t.hours) + ":" + std::to_string(t.minutes) + ":" + std::to_string(t.seconds) + ":" +
           std::to_string(t.frames) + (t.frames_dropped ? " dropped " : " ") + std::to_string(t.ticks);
}

TEST(DayClock, CarriesOverWhatIsNotSent)
{
    struct carried {
        bool hours, minutes, seconds;
        const char* time;
    };
    const carried table[] = {{false, false, false, "11:22:33:3 dropped -4"},
                             {false, false, true, "11:22:9:3 dropped -4"},
                             {false, true, true, "11:8:9:3 dropped -4"},
                             {true, true, true, "7:8:9:3 dropped -4"}};
    for (const carried& c : table) {
        day_clock clock;
        EXPECT_EQ(text_of(clock.next(full(11, 22, 33, 44))), "11:22:33:44 0");
        EXPECT_EQ(text_of(clock.next(partial(c.hours, c.minutes, c.seconds))), c.time);
        EXPECT_EQ(text_of(clock.next(partial(false, false, false))), c.time);
        EXPECT_EQ(text_of(clock.next(full(0, 0, 0, 0))), "0:0:0:0 0");
    }
}

TEST(DayClock, BeginsAtMidnight)
{
    EXPECT_EQ(text_of(day_clock().next(partial(false, false, true))), "0:0:9:3 dropped -4");
}

} // namespace
