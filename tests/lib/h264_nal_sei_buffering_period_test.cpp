#include <orv-utils-v4/h264/nal_sei_buffering_period.h>

#include "support/literal_sei_parse.h"
#include "support/parsed.h"
#include "support/sei_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using brenik::h264_nal_sei_buffering_period;
using literal::stored_hrd;
using support::buffering_period_description;
using support::fields_of;
using support::pairs_from;
using support::sei_sps_store;
using support::with_valid;
using support::written;
using numbers = std::vector<std::uint32_t>;

/// A store with one SPS.
sei_sps_store store_of(const stored_hrd& nal, const stored_hrd& vcl, std::uint32_t id = 0)
{
    return support::store_with({{id, {nal, vcl, false}}});
}

struct parsed_period : support::parsed<h264_nal_sei_buffering_period> {
    template <typename Written>
    explicit parsed_period(const Written& period, const sei_sps_store& store,
                           const h264_nal_sei_buffering_period& before = {})
        : parsed(period, before, store)
    {
    }
};

/// Three NAL pairs and two VCL pairs of different widths.
buffering_period_description full_period()
{
    buffering_period_description period;
    period.nal = pairs_from(1000000, 3);
    period.vcl = pairs_from(300, 2);
    period.vcl_width = 10;
    return period;
}

sei_sps_store full_store(std::uint32_t id = 0)
{
    return store_of({true, 2, 23, 0}, {true, 1, 9, 0}, id);
}

/// What a parse of full_period() leaves.
h264_nal_sei_buffering_period full(bool valid = true)
{
    return with_valid(valid, parsed_period(written(full_period()), full_store()).object);
}

} // namespace

TEST(BufferingPeriod, AnAbsentHrdReadsNothingAndKeepsItsArrays)
{
    for (const bool nal : {false, true})
        for (const bool vcl : {false, true}) {
            buffering_period_description period;
            if (nal)
                period.nal = pairs_from(5, 1);
            if (vcl)
                period.vcl = pairs_from(7, 1);
            const parsed_period p(written(period), store_of({nal}, {vcl}), full(false));
            EXPECT_TRUE(p.result);
            h264_nal_sei_buffering_period expected = full();
            if (nal) {
                expected.nal_initial_cpb_removal_delay = {5};
                expected.nal_initial_cpb_removal_delay_offset = {6};
            }
            if (vcl) {
                expected.vcl_initial_cpb_removal_delay = {7};
                expected.vcl_initial_cpb_removal_delay_offset = {8};
            }
            EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
            EXPECT_EQ(1U + (nal ? 48 : 0) + (vcl ? 48 : 0), p.consumed());
        }
}

TEST(BufferingPeriod, TheSpsIsFoundUnderAnyIdWhicheverIsCurrent)
{
    for (const std::uint32_t id : {0U, 1U, 31U, 32U, 0xFFFFFFFEU})
        for (const std::uint32_t current : {0U, 7U, sei_sps_store::no_current_id}) {
            buffering_period_description period = full_period();
            period.seq_parameter_set_id = id;
            sei_sps_store store = full_store(id);
            store.insert_or_assign(7, support::sps_with({}));
            store.insert_or_assign(sei_sps_store::no_current_id, support::sps_with({}));
            store.set_current_id(current);
            const parsed_period p(written(period), store);
            EXPECT_TRUE(p.result) << id;
            h264_nal_sei_buffering_period expected = full();
            expected.seq_parameter_set_id = id;
            EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
        }
}

TEST(BufferingPeriod, AnSpsThatIsNotValidIsUsed)
{
    for (const bool valid : {false, true}) {
        brenik::h264_nal_sps sps = full_store().at(0);
        sps.valid = sps.vui.valid = sps.vui.nal_hrd.valid = sps.vui.vcl_hrd.valid = valid;
        sps.vui_parameters_present_flag = valid;
        sei_sps_store store;
        store.insert_or_assign(0, sps);
        const parsed_period p(written(full_period()), store);
        EXPECT_TRUE(p.result);
        EXPECT_EQ("", difference(fields_of(full()), fields_of(p.object)));
    }
}

TEST(BufferingPeriod, EveryWidthOfAnHrdIsItsOwn)
{
    for (unsigned int width = 1; width <= 32; ++width) {
        const unsigned int other = 33 - width;
        buffering_period_description period;
        period.nal = {{0xDEADBEEFU >> (32 - width), 0x87654321U >> (32 - width)}};
        period.vcl = {{0xCAFEF00DU >> (32 - other), 0xFFFFFFFEU >> (32 - other)}};
        period.nal_width = width;
        period.vcl_width = other;
        const auto writer = written(period);
        const parsed_period p(writer, store_of({true, 0, width - 1}, {true, 0, other - 1}));
        EXPECT_TRUE(p.result);
        EXPECT_EQ(numbers{period.nal[0].first}, p->nal_initial_cpb_removal_delay) << width;
        EXPECT_EQ(numbers{period.nal[0].second}, p->nal_initial_cpb_removal_delay_offset) << width;
        EXPECT_EQ(numbers{period.vcl[0].first}, p->vcl_initial_cpb_removal_delay) << width;
        EXPECT_EQ(numbers{period.vcl[0].second}, p->vcl_initial_cpb_removal_delay_offset) << width;
        EXPECT_EQ(1 + 2 * width + 2 * other, p.consumed());
    }
}

TEST(BufferingPeriod, WidthsThatAreNoneOfAStreamsOwn)
{
    // 8 bits wide: 255 + 1 is 0. Above 32 bits all are consumed and the low 32 kept.
    const support::bit_writer ones = support::bit_writer().u(64, ~0ULL);
    const parsed_period none(ones, store_of({true, 1, 255}, {}), full());
    EXPECT_TRUE(none.result);
    EXPECT_EQ((numbers{0, 0}), none->nal_initial_cpb_removal_delay);
    EXPECT_EQ((numbers{0, 0}), none->nal_initial_cpb_removal_delay_offset);
    EXPECT_EQ(1U, none.consumed());
    for (const unsigned int width : {33U, 51U, 255U}) {
        const auto data = support::bit_writer().ue(0).u(width - 32, ~0ULL).u(32, 17).u(width - 32, ~0ULL).u(32, 18);
        const parsed_period p(data, store_of({}, {true, 0, width - 1}));
        EXPECT_EQ(numbers{17}, p->vcl_initial_cpb_removal_delay) << width;
        EXPECT_EQ(numbers{18}, p->vcl_initial_cpb_removal_delay_offset) << width;
        EXPECT_EQ(1 + 2 * width, p.consumed());
    }
}

TEST(BufferingPeriod, EveryCountTo128IsAccepted)
{
    for (std::uint32_t count = 1; count <= 128; ++count) {
        buffering_period_description period;
        period.nal = pairs_from(1000, count);
        period.vcl = pairs_from(5000, 129 - count);
        const auto writer = written(period);
        const parsed_period p(writer, store_of({true, count - 1}, {true, 128 - count}));
        EXPECT_TRUE(p.result);
        ASSERT_EQ(count, p->nal_initial_cpb_removal_delay.size());
        ASSERT_EQ(count, p->nal_initial_cpb_removal_delay_offset.size());
        ASSERT_EQ(129 - count, p->vcl_initial_cpb_removal_delay.size());
        ASSERT_EQ(129 - count, p->vcl_initial_cpb_removal_delay_offset.size());
        EXPECT_EQ(1000 + 2 * (count - 1), p->nal_initial_cpb_removal_delay.back());
        EXPECT_EQ(5001 + 2 * (128 - count), p->vcl_initial_cpb_removal_delay_offset.back());
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(BufferingPeriod, MoreThan128NalCpbsAreRefusedAndValidKeepsItsValue)
{
    for (const std::uint32_t cpb_cnt_minus1 : {128U, 129U, 255U, 256U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
        for (const bool valid : {false, true}) {
            const parsed_period p(written(full_period()), store_of({true, cpb_cnt_minus1}, {true}), full(valid));
            EXPECT_FALSE(p.result) << cpb_cnt_minus1;
            EXPECT_EQ("", difference(fields_of(full(valid)), fields_of(p.object))) << cpb_cnt_minus1;
            EXPECT_EQ(1U, p.consumed());
        }
}

TEST(BufferingPeriod, MoreThan128VclCpbsAreRefusedBehindTheNalPairs)
{
    for (const std::uint32_t cpb_cnt_minus1 : {128U, 129U, 0x80000000U, 0xFFFFFFFFU})
        for (const bool valid : {false, true}) {
            buffering_period_description period;
            period.nal = pairs_from(40, 1);
            const parsed_period p(written(period), store_of({true}, {true, cpb_cnt_minus1}), full(valid));
            EXPECT_FALSE(p.result) << cpb_cnt_minus1;
            h264_nal_sei_buffering_period expected = full(valid);
            expected.nal_initial_cpb_removal_delay = {40};
            expected.nal_initial_cpb_removal_delay_offset = {41};
            EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object))) << cpb_cnt_minus1;
            EXPECT_EQ(1U + 48, p.consumed());
        }
}

TEST(BufferingPeriod, TheCountOfAnAbsentHrdDoesNotMatter)
{
    EXPECT_TRUE(parsed_period(written(buffering_period_description()), store_of({false, 128}, {false, 128})).result);
}
