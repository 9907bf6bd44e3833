// The list of a bounded number of entries.
#include <orv-utils-v4/h264_syntax/bounded_list.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

using orv_utils_v4::h264::bounded_list;

struct pair_of_numbers {
    std::int32_t a;
    std::int16_t b;

    friend bool operator==(const pair_of_numbers&, const pair_of_numbers&) = default;
};
using list = bounded_list<pair_of_numbers, 4>;

TEST(BoundedList, ANewOneIsEmpty)
{
    const list empty;
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(empty.size(), 0U);
    EXPECT_EQ(empty.begin(), empty.end());
    EXPECT_EQ(list::capacity(), 4U);
}

/// A list in memory that was full of ones before.
list* list_over(std::vector<unsigned char>& memory)
{
    memory.assign(sizeof(list) + alignof(list), 0xFF);
    void* place = memory.data();
    std::size_t space = memory.size();
    return new (std::align(alignof(list), sizeof(list), place, space)) list;
}

TEST(BoundedList, EntriesThatComeInAreCleared)
{
    std::vector<unsigned char> memory;
    list& l = *list_over(memory);
    l.resize(2);
    EXPECT_EQ(l[0], (pair_of_numbers{0, 0}));
    EXPECT_EQ(l[1], (pair_of_numbers{0, 0}));
    l[1] = {5, 6};
    l.resize(1);
    l.resize(2);
    EXPECT_EQ(l[1], (pair_of_numbers{0, 0}));
}

TEST(BoundedList, ResizeKeepsTheEntriesThatStay)
{
    list l;
    l.resize(3);
    l[0] = {1, 2};
    l[2] = {3, 4};
    l.resize(4);
    EXPECT_EQ(l[0], (pair_of_numbers{1, 2}));
    EXPECT_EQ(l[2], (pair_of_numbers{3, 4}));
    EXPECT_EQ(&l.back(), &l[3]);
}

TEST(BoundedList, NothingGrowsBeyondTheCapacity)
{
    list l;
    l.resize(~std::size_t{0});
    EXPECT_EQ(l.size(), 4U);
    l.back() = {7, 8};
    l.grow();
    EXPECT_EQ(l.size(), 4U);
    EXPECT_EQ(l.back(), (pair_of_numbers{7, 8}));
    l.clear();
    EXPECT_TRUE(l.empty());
    l.grow();
    EXPECT_EQ(l.size(), 1U);
    EXPECT_EQ(l.back(), (pair_of_numbers{0, 0}));
}

TEST(BoundedList, ACopyHasTheSameEntriesAndIsItsOwn)
{
    list l;
    l.resize(2);
    l[1] = {9, 10};
    list copy(l);
    EXPECT_EQ(copy, l);
    copy[1].a = 11;
    EXPECT_EQ(l[1].a, 9);
    list assigned;
    assigned.resize(4);
    assigned = l;
    EXPECT_EQ(assigned, l);
    list& same = assigned;
    assigned = same;
    EXPECT_EQ(assigned, l);
}

TEST(BoundedList, OnesOfAnotherSizeOrEntryDiffer)
{
    list a;
    list b;
    EXPECT_TRUE(a == b);
    a.resize(1);
    EXPECT_TRUE(a != b);
    b.resize(1);
    EXPECT_TRUE(a == b);
    b[0].b = 1;
    EXPECT_TRUE(a != b);
}

TEST(BoundedList, WhatLiesBehindTheSizeDoesNotCount)
{
    list a;
    list b;
    a.resize(2);
    a[1] = {1, 1};
    a.resize(1);
    b.resize(1);
    EXPECT_EQ(a, b);
}

TEST(BoundedList, ARangeForVisitsTheEntriesInOrder)
{
    bounded_list<std::int16_t, 64> numbers;
    for (int i = 0; i < 5; ++i) {
        numbers.grow();
        numbers.back() = static_cast<std::int16_t>(i * i);
    }
    EXPECT_EQ(std::vector<std::int16_t>(numbers.begin(), numbers.end()), (std::vector<std::int16_t>{0, 1, 4, 9, 16}));
}

} // namespace
