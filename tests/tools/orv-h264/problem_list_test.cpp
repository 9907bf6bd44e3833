#include "problem_list.h"

#include <gtest/gtest.h>

using orv_h264::problem_list;

TEST(ProblemList, IsEmptyAtFirst)
{
    EXPECT_TRUE(problem_list().kinds().empty());
}

TEST(ProblemList, ProblemsThatDifferInNumbersAreOfAKind)
{
    problem_list problems;
    problems.add(10, "slice 3 of 12 is missing");
    problems.add(20, "slice 400 of 5 is missing");
    problems.add(5, "slice 6 of 7 is missing");
    ASSERT_EQ(1U, problems.kinds().size());
    EXPECT_EQ("slice 3 of 12 is missing", problems.kinds()[0].message);
    EXPECT_EQ(10U, problems.kinds()[0].first_offset);
    EXPECT_EQ(5U, problems.kinds()[0].last_offset) << "of the one that came last";
    EXPECT_EQ(3U, problems.kinds()[0].count);
    EXPECT_EQ(0U, problems.kinds()[0].bytes);
}

TEST(ProblemList, WhatElseDiffersIsAnotherKind)
{
    problem_list problems;
    problems.add(1, "slice 3 is missing");
    problems.add(2, "slice 3 is missin");
    problems.add(3, "slice is missing");
    problems.add(4, "slice 3 4 is missing");
    problems.add(5, "slice is missing 3");
    ASSERT_EQ(5U, problems.kinds().size());
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(i + 1, problems.kinds()[i].first_offset);
}

TEST(ProblemList, BytesAddUp)
{
    problem_list problems;
    problems.add(1, "junk", 10);
    problems.add(50, "junk", 200);
    problems.add(60, "other");
    EXPECT_EQ(210U, problems.kinds()[0].bytes);
    EXPECT_EQ(0U, problems.kinds()[1].bytes);
}

namespace {

/// A message whose kind is its own: `i` in letters.
std::string message(std::size_t i)
{
    return std::string("kind ") + static_cast<char>('a' + i / 26) + static_cast<char>('a' + i % 26);
}

} // namespace

TEST(ProblemList, KindsBeyondTheBoundAreOneMore)
{
    problem_list problems;
    for (std::size_t i = 0; i < problem_list::most_kinds; ++i)
        problems.add(i, message(i));
    ASSERT_EQ(problem_list::most_kinds, problems.kinds().size());
    for (std::size_t i = problem_list::most_kinds; i < 3 * problem_list::most_kinds; ++i)
        problems.add(i, message(i), 2);
    problems.add(1000, message(3));
    ASSERT_EQ(problem_list::most_kinds + 1, problems.kinds().size());
    const orv_h264::problem_kind& further = problems.kinds().back();
    EXPECT_EQ("further problems", further.message);
    EXPECT_EQ(problem_list::most_kinds, further.first_offset);
    EXPECT_EQ(3 * problem_list::most_kinds - 1, further.last_offset);
    EXPECT_EQ(2 * problem_list::most_kinds, further.count);
    EXPECT_EQ(4 * problem_list::most_kinds, further.bytes);
    EXPECT_EQ(2U, problems.kinds()[3].count) << "a kind that is known still counts";
    EXPECT_EQ("kind cl", problems.kinds()[problem_list::most_kinds - 1].message) << "64 fit";
}

TEST(ProblemList, AKindIsALine)
{
    EXPECT_EQ("offset 7: junk", orv_h264::describe({"junk", 7, 7, 1, 0}));
    EXPECT_EQ("offset 7: junk, 12 bytes", orv_h264::describe({"junk", 7, 7, 1, 12}));
    EXPECT_EQ("offset 7: junk (2 times, the last at offset 90)", orv_h264::describe({"junk", 7, 90, 2, 0}));
    EXPECT_EQ("offset 7: junk, 12 bytes (3 times, the last at offset 90)", orv_h264::describe({"junk", 7, 90, 3, 12}));
}
