// The modification of a reference picture list, H.264 7.3.3.1, alone and in its slice.
#include <orv-utils-v4/h264/nal_slice_header.h>

#include "support/parsed_slice.h"
#include "support/slice_header_fields.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace {

using brenik::h264_nal_slice_header;
using list = h264_nal_slice_header::ref_pic_list_modification_entry_t;
using support::list_modification_description;
using support::parsed_slice;
using support::slice_header_description;
using support::slice_of_type;
using support::with_valid;
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

TEST(ListModification, StepsAreKeptInTheirOrderWithoutTheEnd)
{
    const auto writer = written(of({{0, 3}, {2, 1}, {1, 0}}));
    const parsed_list p(writer);
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->ref_pic_list_modification_flag);
    EXPECT_EQ((pairs{{0, 3}, {2, 1}, {1, 0}}), steps_of(p.object));
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
}

TEST(ListModification, AnEndAtOnceIsAnEmptyList)
{
    const parsed_list p(written(of({})));
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->ref_pic_list_modification_flag);
    EXPECT_TRUE(p->entries.empty());
    EXPECT_EQ(6U, p.consumed());
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

TEST(ListModification, EveryValueIsKept)
{
    for (const std::uint32_t idc : {0U, 1U, 2U})
        for (const std::uint32_t value : {0U, 1U, 3U, 65535U, 2147483647U, 2147483648U, 4294967294U}) {
            const parsed_list p(written(of({{idc, value}, {idc, 5}})));
            EXPECT_TRUE(p.result);
            EXPECT_EQ((pairs{{idc, value}, {idc, 5}}), steps_of(p.object));
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

TEST(ListModification, AMalformedValueThrowsAndItsStepIsNotKept)
{
    for (const std::uint32_t idc : {0U, 1U, 2U}) {
        const auto writer = written(of({{1, 8}, {idc, 9}}));
        const support::element& value = writer.elements()[4];
        ASSERT_EQ("pic_num_value", value.name);
        const support::guarded_buffer buffer(support::with_malformed_code(writer, value));
        brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
        list modification;
        try {
            modification.parse(br);
            ADD_FAILURE() << idc;
        } catch (const brenik::h2645_common_malformed_code& malformed) {
            EXPECT_EQ(value.position, malformed.bit_position());
        }
        EXPECT_TRUE(modification.ref_pic_list_modification_flag);
        EXPECT_EQ((pairs{{1, 8}}), steps_of(modification));
        EXPECT_EQ(value.position + 32, br.bits_consumed());
    }
}

TEST(SliceHeaderLists, ABSliceWithBothFlagsZeroSucceeds)
{
    slice_header_description slice = slice_of_type(1);
    slice.ref_pic_list_modification_l0.steps.reset();
    slice.ref_pic_list_modification_l1.steps.reset();
    const parsed_slice p(slice);
    EXPECT_TRUE(p.result);
    EXPECT_FALSE(p->ref_pic_list_modification_l0.ref_pic_list_modification_flag);
    EXPECT_FALSE(p->ref_pic_list_modification_l1.ref_pic_list_modification_flag);
    EXPECT_EQ(written(slice).size_in_bits(), p.consumed());
}

TEST(SliceHeaderLists, EachListHasItsOwnSteps)
{
    const parsed_slice p(slice_of_type(1));
    EXPECT_TRUE(p.result);
    EXPECT_EQ((pairs{{0, 3}, {2, 1}}), steps_of(p->ref_pic_list_modification_l0));
    EXPECT_EQ((pairs{{1, 9}, {5, 0}, {0, 0}, {2, 6}}), steps_of(p->ref_pic_list_modification_l1));
}

TEST(SliceHeaderLists, EitherListMayBeModifiedAlone)
{
    for (const bool first : {false, true}) {
        slice_header_description slice = slice_of_type(1);
        (first ? slice.ref_pic_list_modification_l1 : slice.ref_pic_list_modification_l0).steps.reset();
        const parsed_slice p(slice);
        EXPECT_TRUE(p.result);
        EXPECT_EQ(first, p->ref_pic_list_modification_l0.ref_pic_list_modification_flag);
        EXPECT_EQ(first ? 2U : 0U, p->ref_pic_list_modification_l0.entries.size());
        EXPECT_EQ(!first, p->ref_pic_list_modification_l1.ref_pic_list_modification_flag);
        EXPECT_EQ(first ? 0U : 4U, p->ref_pic_list_modification_l1.entries.size());
    }
}

TEST(SliceHeaderLists, EntriesOfLaterSlicesAccumulate)
{
    parsed_slice p(slice_of_type(1));
    const parsed_slice again(slice_of_type(6), p.object);
    EXPECT_TRUE(again.result);
    EXPECT_EQ((pairs{{0, 3}, {2, 1}, {0, 3}, {2, 1}}), steps_of(again->ref_pic_list_modification_l0));
    EXPECT_EQ(8U, again->ref_pic_list_modification_l1.entries.size());
}

TEST(SliceHeaderLists, APSliceKeepsTheSecondList)
{
    for (const std::uint32_t type : {0U, 3U}) {
        const parsed_slice p(slice_of_type(type), parsed_slice(slice_of_type(1)).object);
        EXPECT_TRUE(p.result);
        EXPECT_TRUE(p->ref_pic_list_modification_l1.ref_pic_list_modification_flag);
        EXPECT_EQ(4U, p->ref_pic_list_modification_l1.entries.size());
    }
}

TEST(SliceHeaderLists, AFirstListWithoutEndMakesTheSliceInvalid)
{
    for (const std::uint32_t type : {0U, 1U, 3U})
        for (const bool valid : {false, true}) {
            slice_header_description slice = slice_of_type(type);
            slice.ref_pic_list_modification_l0 = of({{0, 3}, {1, 4}}, false);
            auto writer = support::element_writer();
            slice_header_description head = slice;
            head.ref_pic_list_modification_l1.steps.reset();
            write(writer, head);
            writer.u("zeros", 24, 0).u("ones", 32, 0xFFFFFFFF);
            const parsed_slice p(writer, context_of(slice), with_valid<h264_nal_slice_header>(valid));
            EXPECT_FALSE(p.result);
            EXPECT_FALSE(p->valid);
            EXPECT_EQ((pairs{{0, 3}, {1, 4}}), steps_of(p->ref_pic_list_modification_l0));
            EXPECT_FALSE(p->ref_pic_list_modification_l1.ref_pic_list_modification_flag);
            EXPECT_TRUE(p->ref_pic_list_modification_l1.entries.empty());
            EXPECT_EQ(3U, p->num_ref_idx_l0_active_minus1);
        }
}

TEST(SliceHeaderLists, ASecondListWithoutEndMakesTheSliceInvalid)
{
    for (const bool valid : {false, true}) {
        slice_header_description slice = slice_of_type(1);
        slice.ref_pic_list_modification_l1 = of({{2, 3}}, false);
        const parsed_slice p(slice, with_valid<h264_nal_slice_header>(valid));
        EXPECT_FALSE(p.result);
        EXPECT_FALSE(p->valid);
        EXPECT_EQ((pairs{{0, 3}, {2, 1}}), steps_of(p->ref_pic_list_modification_l0));
        EXPECT_EQ((pairs{{2, 3}}), steps_of(p->ref_pic_list_modification_l1));
        EXPECT_EQ(written(slice).size_in_bits(), p.consumed());
    }
}
