#include "resize_counted.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <vector>

namespace {

using brenik::resize_counted;
using numbers = std::vector<std::uint32_t>;

/// An array whose resize throws a T.
template <typename T>
struct unsizeable {
    T thrown;
    void resize(std::size_t /*count*/) const { throw thrown; }
};

} // namespace

TEST(ResizeCounted, CountsTo128AreTheNewSize)
{
    for (std::uint64_t count = 0; count <= 128; ++count) {
        numbers array(5, 7);
        EXPECT_TRUE(resize_counted(count, array)) << count;
        EXPECT_EQ(count, array.size());
    }
}

TEST(ResizeCounted, CountsAbove128ChangeNothing)
{
    for (const std::uint64_t count :
         {std::uint64_t{129}, std::uint64_t{256}, std::uint64_t{1} << 32, (std::uint64_t{1} << 32) + 1, UINT64_MAX}) {
        numbers first(5, 7);
        numbers second(2, 8);
        EXPECT_FALSE(resize_counted(count, first, second)) << count;
        EXPECT_EQ(numbers(5, 7), first);
        EXPECT_EQ(numbers(2, 8), second);
    }
}

TEST(ResizeCounted, GrowingAppendsZerosAndShrinkingDropsTheTail)
{
    numbers array = {1, 2, 3};
    std::vector<bool> flags = {true, true};
    EXPECT_TRUE(resize_counted(4, array, flags));
    EXPECT_EQ((numbers{1, 2, 3, 0}), array);
    EXPECT_EQ((std::vector<bool>{true, true, false, false}), flags);
    EXPECT_TRUE(resize_counted(1, array, flags));
    EXPECT_EQ(numbers{1}, array);
    EXPECT_EQ(std::vector<bool>{true}, flags);
}

TEST(ResizeCounted, AnExceptionOfAnyTypeIsFalseAndTheArraysBehindItStayAsTheyWere)
{
    numbers first = {1};
    numbers last = {2};
    const unsizeable<std::bad_alloc> no_memory{};
    const unsizeable<int> number{3};
    const unsizeable<std::length_error> length{std::length_error("too long")};
    EXPECT_FALSE(resize_counted(2, first, no_memory, last));
    EXPECT_FALSE(resize_counted(3, first, number, last));
    EXPECT_EQ(3U, first.size());
    EXPECT_FALSE(resize_counted(4, length, first, last));
    EXPECT_EQ(3U, first.size());
    EXPECT_EQ(numbers{2}, last);
}

TEST(ResizeCounted, NothingGetsOut)
{
    numbers array;
    static_assert(noexcept(resize_counted(1, array)));
    EXPECT_TRUE(resize_counted(1, array));
}
