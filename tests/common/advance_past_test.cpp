#include <orv-utils-v4/h2645_common/advance_past.h>

#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <cstdint>

using brenik::advance_past;
using brenik::range_size;

TEST(AdvancePast, StepsWithinARangeAsOrdinaryArithmeticDoes)
{
    unsigned char bytes[8] = {};
    EXPECT_EQ(bytes, advance_past(bytes, 0));
    EXPECT_EQ(bytes + 8, advance_past(bytes, 8));
}

TEST(AdvancePast, StepsOutOfTheRangeByElements)
{
    const support::guarded_buffer buffer(4);
    const auto end = reinterpret_cast<std::uintptr_t>(buffer.end());
    EXPECT_EQ(end + 0xFFFFFFFFU, reinterpret_cast<std::uintptr_t>(advance_past(buffer.end(), 0xFFFFFFFFU)));
    std::uint32_t words[2] = {};
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(words) + 20, reinterpret_cast<std::uintptr_t>(advance_past(words, 5)));
}

TEST(AdvancePast, StepsFromANullPointer)
{
    const unsigned char* const nowhere = nullptr;
    EXPECT_EQ(4U, reinterpret_cast<std::uintptr_t>(advance_past(nowhere, 4)));
}

TEST(RangeSize, IsTheDistanceOfAWellFormedRange)
{
    const unsigned char bytes[8] = {};
    EXPECT_EQ(8U, range_size(bytes, bytes + 8));
    EXPECT_EQ(1U, range_size(bytes + 7, bytes + 8));
    EXPECT_EQ(0U, range_size(bytes + 8, bytes + 8));
}

TEST(RangeSize, IsZeroForAFenceBeforeTheStart)
{
    const unsigned char bytes[8] = {};
    EXPECT_EQ(0U, range_size(bytes + 1, bytes));
    EXPECT_EQ(0U, range_size(advance_past(bytes, 100), bytes + 8));
}

TEST(RangeSize, IsZeroForTwoNullPointers)
{
    EXPECT_EQ(0U, range_size(nullptr, nullptr));
}
