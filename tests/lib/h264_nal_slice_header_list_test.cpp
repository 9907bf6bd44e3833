// The modification of a reference picture list, H.264 7.3.3.1, alone and in its slice.
#include <orv-utils-v4/h264/nal_slice_header.h>

#include "support/parsed_slice.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace {

using brenik::h264_nal_slice_header;
using list = h264_nal_slice_header::ref_pic_list_modification_entry_t;
using support::list_modification_description;
using support::parsed_slice;
using support::slice_of_type;
using support::written;
using parsed_list = support::parsed<list>;
using pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

pairs steps_of(const list& modification)
{
    pairs steps;
    for (const list::entry& step : modification.entries)
        steps.emplace_back(step.modification_of_pic_nums_idc, step.pic_num_value);
    return steps;
}

list_modification_description of(std::vector<support::modification_step> steps, bool ended = true)
{
    return {std::move(steps), ended};
}

/// A list that an earlier parse left.
list earlier()
{
    return {true, {{1, 70}, {5, 0}}};
}

} // namespace

TEST(ListModification, WithoutItsFlagTheEntriesAreKept)
{
    const parsed_list p(written(list_modification_description()), earlier());
    EXPECT_TRUE(p.result);
    EXPECT_FALSE(p->ref_pic_list_modification_flag);
    EXPECT_EQ((pairs{{1, 70}, {5, 0}}), steps_of(p.object));
    EXPECT_EQ(1U, p.consumed());
}

TEST(ListModification, AnIdcAboveThreeHasNoValue)
{
    for (const std::uint32_t idc : {4U, 5U, 6U, 255U, 256U, 258U, 65536U, 8388606U}) {
        const auto writer = written(of({{idc}, {0, 3}}));
        const parsed_list p(writer);
        EXPECT_TRUE(p.result);
        EXPECT_EQ((pairs{{idc, 0}, {0, 3}}), steps_of(p.object));
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(ListModification, ALaterParseAppendsToTheEntries)
{
    const parsed_list p(written(of({{0, 3}})), earlier());
    EXPECT_TRUE(p.result);
    EXPECT_EQ((pairs{{1, 70}, {5, 0}, {0, 3}}), steps_of(p.object));
}

TEST(ListModification, AListHasAsManyStepsAsAreSent)
{
    std::vector<support::modification_step> steps;
    pairs expected;
    for (std::uint32_t i = 0; i < 5000; ++i) {
        steps.push_back({i % 3, i});
        expected.emplace_back(i % 3, i);
    }
    const parsed_list p(written(of(steps)));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(expected, steps_of(p.object));
}

TEST(ListModification, AListWithoutEndFailsWhereTheDataEnds)
{
    const auto writer = written(of({{0, 3}, {4}}, false));
    const parsed_list p(writer, earlier());
    EXPECT_FALSE(p.result);
    EXPECT_TRUE(p->ref_pic_list_modification_flag);
    EXPECT_EQ((pairs{{1, 70}, {5, 0}, {0, 3}, {4, 0}}), steps_of(p.object));
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
}

TEST(ListModification, TwentyFourZeroBitsEndTheReading)
{
    for (unsigned int zeros = 24; zeros <= 40; ++zeros) {
        auto writer = written(of({{0, 3}}, false));
        const std::size_t end = writer.size_in_bits();
        writer.u("zeros", zeros, 0).u("ones", 40, 0xFFFFFFFFFF);
        const parsed_list p(writer);
        EXPECT_FALSE(p.result) << zeros;
        EXPECT_EQ((pairs{{0, 3}}), steps_of(p.object)) << zeros;
        EXPECT_EQ(end, p.consumed()) << zeros;
    }
}

TEST(ListModification, TwentyThreeZeroBitsBeginACode)
{
    const auto writer = written(of({{8388607}, {16777214}, {2, 4}}));
    const parsed_list p(writer);
    EXPECT_TRUE(p.result);
    EXPECT_EQ((pairs{{8388607, 0}, {16777214, 0}, {2, 4}}), steps_of(p.object));
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
}

TEST(ListModification, ACodeOfTwentyThreeZerosThatTheDataCutsIsRead)
{
    auto writer = written(of({}, false));
    writer.u("zeros", 23, 0).u("one", 1, 1);
    const parsed_list p(writer);
    EXPECT_FALSE(p.result);
    EXPECT_EQ((pairs{{8388607, 0}}), steps_of(p.object));
    EXPECT_EQ(1U + 47, p.consumed());
}

TEST(SliceHeaderLists, EntriesOfLaterSlicesAccumulate)
{
    parsed_slice p(slice_of_type(1));
    const parsed_slice again(slice_of_type(6), p.object);
    EXPECT_TRUE(again.result);
    EXPECT_EQ((pairs{{0, 3}, {2, 1}, {0, 3}, {2, 1}}), steps_of(again->ref_pic_list_modification_l0));
    EXPECT_EQ(8U, again->ref_pic_list_modification_l1.entries.size());
}
