#include "exact_sum.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using orv_h264::exact_sum;
using orv_h264::h264::exact_time;

exact_sum sum_of(exact_time time, std::uint64_t times)
{
    exact_sum sum;
    for (std::uint64_t i = 0; i < times; ++i)
        sum.add(time);
    return sum;
}

} // namespace

TEST(ExactSum, OfNothingIsZero)
{
    EXPECT_EQ(0, exact_sum().value());
}

TEST(ExactSum, DoesNotDrift)
{
    EXPECT_EQ(1001, sum_of({1001, 30000}, 30000).value());
    EXPECT_EQ(100000, sum_of({1, 10}, 1000000).value());
    EXPECT_EQ(1.0 / 3, sum_of({1, 3}, 1).value());
}

TEST(ExactSum, AddsTimesOfSeveralRates)
{
    exact_sum sum = sum_of({1, 24}, 7);
    sum.add({1001, 30000});
    sum.add({17, 24});
    sum.add({28999, 30000});
    EXPECT_EQ(2, sum.value());
}

TEST(ExactSum, KeepsWholeSecondsOfLongTimes)
{
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    exact_sum sum = sum_of({most, most}, 5);
    sum.add({std::int64_t{1} << 40, 1});
    EXPECT_EQ(5.0 + static_cast<double>(std::int64_t{1} << 40), sum.value());
}

TEST(ExactSum, RoundsWhatHasNoCommonDenominatorOf62Bits)
{
    // Three primes of 31 bits and more: no two of 2^31 - 1, 2^32 - 5 and 2^32 - 17 share a divisor.
    const std::vector<exact_time> times = {{1, 2147483647}, {1, 4294967291}, {1, 4294967279}};
    exact_sum sum;
    double expected = 0;
    for (int i = 0; i < 1000; ++i) {
        sum.add(times[static_cast<std::size_t>(i) % 3]);
        expected += 1.0 / static_cast<double>(times[static_cast<std::size_t>(i) % 3].denominator);
    }
    EXPECT_NEAR(expected, sum.value(), 1e-12 * expected);
}
