#include "output_sorter.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using orv_h264::output_sorter;
using orv_h264::picture_row;

/// Rows come as output numbers, in decoding order, and go as the numbers of the rows.
class sorted_rows {
public:
    void add(std::optional<std::uint64_t> output_number, std::uint64_t picture, std::size_t units = 1)
    {
        picture_row row;
        row.number = added++;
        row.picture = picture;
        row.output_number = output_number;
        row.units.resize(units);
        sorter.add(std::move(row));
    }
    void add(const std::vector<std::optional<std::uint64_t>>& output_numbers)
    {
        for (const auto& number : output_numbers)
            add(number, added);
    }
    std::vector<std::uint64_t> finish()
    {
        sorter.flush();
        return given;
    }

    std::uint64_t added = 0;
    std::vector<std::uint64_t> given;
    output_sorter sorter{[this](const picture_row& row) { given.push_back(row.number); }};
};

std::vector<std::uint64_t> sorted(const std::vector<std::optional<std::uint64_t>>& output_numbers)
{
    sorted_rows rows;
    rows.add(output_numbers);
    return rows.finish();
}

using numbers = std::vector<std::uint64_t>;

} // namespace

TEST(OutputSorter, RowsGoInOutputOrder)
{
    EXPECT_EQ(numbers(), sorted({}));
    EXPECT_EQ((numbers{0, 1, 2}), sorted({0, 1, 2}));
    EXPECT_EQ((numbers{0, 3, 2, 4, 1}), sorted({0, 4, 2, 1, 3}));
}

TEST(OutputSorter, ARowGoesWhenItsTurnHasCome)
{
    sorted_rows rows;
    rows.add({0, 3, 1});
    EXPECT_EQ((numbers{0}), rows.given) << "behind 1 its second field may come";
    rows.add({2});
    EXPECT_EQ((numbers{0, 2}), rows.given);
    rows.add({4});
    EXPECT_EQ((numbers{0, 2, 3, 1}), rows.given);
}

TEST(OutputSorter, FieldsOfAPictureStayTogether)
{
    sorted_rows rows;
    for (const std::uint64_t picture : {0U, 2U, 1U}) {
        rows.add(picture, picture);
        rows.add(picture, picture);
    }
    EXPECT_EQ((numbers{0, 1, 4, 5, 2, 3}), rows.finish());
}

TEST(OutputSorter, ARowWithoutANumberFollowsTheOneDecodedBefore)
{
    EXPECT_EQ((numbers{0, 1}), sorted({{}, {}}));
    EXPECT_EQ((numbers{0, 1, 5, 2, 3, 4}), sorted({{}, 0, 2, {}, {}, 1}));
}

TEST(OutputSorter, WhatNeverComesIsNotWaitedForBeyondTheBound)
{
    sorted_rows rows;
    rows.add({0}); // number 1 never comes
    for (std::uint64_t i = 0; i < output_sorter::most_held_rows + 10; ++i)
        rows.add(i + 2, i + 1);
    EXPECT_LE(rows.added - rows.given.size(), output_sorter::most_held_rows);
    EXPECT_GT(rows.given.size(), 1U);
    const numbers all = rows.finish();
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(i, all[i]);
}

TEST(OutputSorter, RowsThatAreGoneCountNoMore)
{
    sorted_rows rows;
    constexpr std::uint64_t pairs = 2 * output_sorter::most_held_rows;
    for (std::uint64_t i = 0; i < pairs; ++i) {
        rows.add(2 * i + 1, 2 * i, output_sorter::most_held_units / 100);
        rows.add(2 * i, 2 * i + 1);
    }
    const numbers all = rows.finish();
    ASSERT_EQ(2 * pairs, all.size());
    for (std::uint64_t i = 0; i < pairs; ++i) {
        EXPECT_EQ(2 * i + 1, all[2 * i]);
        EXPECT_EQ(2 * i, all[2 * i + 1]);
    }
}

TEST(OutputSorter, UnitsOfRowsThatAreHeldAreBounded)
{
    sorted_rows rows;
    rows.add({0});
    for (std::uint64_t i = 0; i < 5; ++i)
        rows.add(i + 2, i + 1, output_sorter::most_held_units / 4);
    EXPECT_GE(rows.given.size(), 2U);
    for (std::uint64_t i = 0; i < 5; ++i)
        rows.add({}, 6 + i, output_sorter::most_held_units);
    EXPECT_EQ(11U, rows.given.size()) << "rows without a number neither";
}
