#include "input_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace {

using orv_h264::input_window;

/// Counts up from 0, `size` bytes in all, at most `piece` a read.
orv_h264::read_function counting(std::size_t size, std::size_t piece)
{
    return [=, at = std::size_t{0}](unsigned char* out, std::size_t room) mutable {
        const std::size_t count = std::min({room, piece, size - at});
        for (std::size_t i = 0; i < count; ++i)
            out[i] = static_cast<unsigned char>(at++);
        return count;
    };
}

TEST(InputWindow, StartsEmptyAndNotAtTheEnd)
{
    input_window window(counting(10, 10), 4);
    EXPECT_EQ(window.size(), 0U);
    EXPECT_EQ(window.offset(), 0U);
    EXPECT_FALSE(window.at_end());
}

TEST(InputWindow, ReadMoreAppendsAtMostOnePiece)
{
    input_window window(counting(10, 10), 4);
    window.read_more();
    EXPECT_EQ(window.size(), 4U);
    window.read_more();
    EXPECT_EQ(window.size(), 8U);
    EXPECT_EQ(window.start()[7], 7);
}

TEST(InputWindow, TheEndIsSeenByTheReadThatGivesNothing)
{
    input_window window(counting(4, 10), 4);
    window.read_more();
    EXPECT_FALSE(window.at_end());
    window.read_more();
    EXPECT_TRUE(window.at_end());
    EXPECT_EQ(window.size(), 4U);
}

TEST(InputWindow, NothingIsReadBehindTheEnd)
{
    int reads = 0;
    input_window window([&](unsigned char*, std::size_t) { return ++reads, std::size_t{0}; });
    window.read_more();
    window.read_more();
    window.fill(100);
    EXPECT_EQ(reads, 1);
}

TEST(InputWindow, FillReadsUntilEnoughIsThereOrTheInputEnds)
{
    input_window window(counting(20, 1), 4);
    window.fill(7);
    EXPECT_EQ(window.size(), 7U);
    window.fill(100);
    EXPECT_EQ(window.size(), 20U);
    EXPECT_TRUE(window.at_end());
}

TEST(InputWindow, DroppedBytesCountInTheOffsetAndTheOthersStay)
{
    constexpr std::size_t size = 1000;
    input_window window(counting(size, 13), 17);
    std::size_t at = 0;
    while (at < size) {
        window.fill(29);
        const std::size_t count = std::min<std::size_t>(11, window.size());
        for (std::size_t i = 0; i < window.size(); ++i)
            ASSERT_EQ(window.start()[i], static_cast<unsigned char>(at + i));
        window.drop(count);
        at += count;
        ASSERT_EQ(window.offset(), at);
    }
}

TEST(InputWindow, WhatTheReadThrowsPasses)
{
    input_window window([](unsigned char*, std::size_t) -> std::size_t { throw std::runtime_error("disk"); });
    EXPECT_THROW(window.read_more(), std::runtime_error);
}

} // namespace
