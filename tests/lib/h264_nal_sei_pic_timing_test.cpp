#include <orv-utils-v4/h264/nal_sei_pic_timing.h>

#include "support/parsed_pic_timing.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_nal_sei_pic_timing;
using brenik::h264_nal_sps;
using support::fields_of;
using support::full_pic_timing;
using support::full_timing;
using support::parsed_timing;
using support::pic_timing_description;
using support::timing_sps;
using support::written;

/// A parse with the current SPS of `store`.
support::parsed<h264_nal_sei_pic_timing> parsed_with(const support::sei_sps_store& store, bool valid = false)
{
    return support::parsed<h264_nal_sei_pic_timing>(written(full_pic_timing()), full_timing(valid), store);
}

} // namespace

TEST(PicTiming, EitherHrdBringsTheDelays)
{
    pic_timing_description timing;
    timing.delays = {0x765432, 0x89ABCD};
    for (const bool nal : {false, true})
        for (const bool vcl : {false, true}) {
            const parsed_timing p(written(timing), full_timing(false), support::sps_with({{nal}, {vcl}, false}));
            EXPECT_TRUE(p.result);
            EXPECT_TRUE(p->valid);
            h264_nal_sei_pic_timing expected = full_timing();
            if (nal || vcl) {
                expected.cpb_removal_delay = 0x765432;
                expected.dpb_output_delay = 0x89ABCD;
            }
            EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
            EXPECT_EQ(nal || vcl ? 48U : 0U, p.consumed());
        }
}

TEST(PicTiming, WithoutPicStructTheTimestampsKeepTheirValues)
{
    pic_timing_description timing;
    timing.delays = {1, 2};
    const parsed_timing p(written(timing), full_timing(false), timing_sps(true, false));
    EXPECT_TRUE(p.result);
    h264_nal_sei_pic_timing expected = full_timing();
    expected.cpb_removal_delay = 1;
    expected.dpb_output_delay = 2;
    EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
}

TEST(PicTiming, TheDelaysHaveTheLengthOfTheInitialDelay)
{
    for (unsigned int width = 1; width <= 32; ++width) {
        h264_nal_sps sps = timing_sps(true, false);
        sps.vui.nal_hrd.initial_cpb_removal_delay_length_minus1 = static_cast<std::uint8_t>(width - 1);
        sps.vui.vcl_hrd.initial_cpb_removal_delay_length_minus1 = 0;
        sps.vui.nal_hrd.cpb_removal_delay_length_minus1 = sps.vui.vcl_hrd.cpb_removal_delay_length_minus1 = 31;
        sps.vui.nal_hrd.dpb_output_delay_length_minus1 = sps.vui.vcl_hrd.dpb_output_delay_length_minus1 = 30;
        pic_timing_description timing;
        timing.delay_width = width;
        timing.delays = {0xDEADBEEFU >> (32 - width), 0x87654321U >> (32 - width)};
        const parsed_timing p(written(timing), {}, sps);
        EXPECT_TRUE(p.result);
        EXPECT_EQ(timing.delays->first, p->cpb_removal_delay) << width;
        EXPECT_EQ(timing.delays->second, p->dpb_output_delay) << width;
        EXPECT_EQ(2 * width, p.consumed());
    }
}

TEST(PicTiming, TheLongerInitialDelayCountsWhicheverHrdIsPresent)
{
    pic_timing_description timing;
    timing.delays = {0xFEDCBA, 0x987654};
    for (const bool nal_is_longer : {false, true})
        for (const bool nal_is_present : {false, true}) {
            h264_nal_sps sps = support::sps_with({{nal_is_present}, {!nal_is_present}, false});
            sps.vui.nal_hrd.initial_cpb_removal_delay_length_minus1 = nal_is_longer ? 23 : 15;
            sps.vui.vcl_hrd.initial_cpb_removal_delay_length_minus1 = nal_is_longer ? 15 : 23;
            const parsed_timing p(written(timing), {}, sps);
            EXPECT_EQ(0xFEDCBAU, p->cpb_removal_delay);
            EXPECT_EQ(0x987654U, p->dpb_output_delay);
            EXPECT_EQ(48U, p.consumed());
        }
}

TEST(PicTiming, LengthsThatAreNoneOfAStreamsOwn)
{
    // 8 bits wide: 255 + 1 is 0. Above 32 bits all are consumed and the low 32 kept.
    h264_nal_sps sps = timing_sps(true, false);
    sps.vui.vcl_hrd.initial_cpb_removal_delay_length_minus1 = 255;
    const parsed_timing none(support::bit_writer().u(64, ~0ULL), full_timing(), sps);
    EXPECT_TRUE(none.result);
    EXPECT_EQ(0U, none->cpb_removal_delay);
    EXPECT_EQ(0U, none->dpb_output_delay);
    EXPECT_EQ(0U, none.consumed());
    for (const unsigned int width : {33U, 50U, 51U, 255U}) {
        sps.vui.vcl_hrd.initial_cpb_removal_delay_length_minus1 = static_cast<std::uint8_t>(width - 1);
        const auto data =
            support::bit_writer().u(width - 32, ~0ULL).u(32, 0x13579BDF).u(width - 32, ~0ULL).u(32, 0x2468ACE0);
        const parsed_timing p(data, {}, sps);
        EXPECT_EQ(0x13579BDFU, p->cpb_removal_delay) << width;
        EXPECT_EQ(0x2468ACE0U, p->dpb_output_delay) << width;
        EXPECT_EQ(2 * width, p.consumed());
    }
}

TEST(PicTiming, TheNumberOfTimestampsFollowsPicStruct)
{
    static constexpr unsigned int counts[] = {1, 1, 1, 2, 2, 3, 3, 2, 3, 1, 1, 1, 1, 1, 1, 1};
    for (unsigned int pic_struct = 0; pic_struct < 16; ++pic_struct) {
        const parsed_timing p(support::bit_writer().u(4, pic_struct), {}, timing_sps(false));
        EXPECT_TRUE(p.result);
        EXPECT_EQ(pic_struct, p->pic_struct);
        EXPECT_EQ(counts[pic_struct], p->NumClockTS()) << pic_struct;
        EXPECT_EQ(counts[pic_struct], p->timestamps.size()) << pic_struct;
        EXPECT_EQ(4 + counts[pic_struct], p.consumed()) << pic_struct;
    }
    h264_nal_sei_pic_timing object;
    for (unsigned int pic_struct = 16; pic_struct <= 255; ++pic_struct) {
        object.pic_struct = static_cast<std::uint8_t>(pic_struct);
        EXPECT_EQ(1U, object.NumClockTS()) << pic_struct;
    }
}

TEST(PicTiming, WithoutACurrentSpsNothingIsReadAndItIsNotValid)
{
    support::sei_sps_store empty;
    support::sei_sps_store none_current;
    none_current.insert_or_assign(0, timing_sps());
    support::sei_sps_store another = none_current;
    another.set_current_id(1);
    for (const support::sei_sps_store& store : {empty, none_current, another})
        for (const bool valid : {false, true}) {
            const auto p = parsed_with(store, valid);
            EXPECT_FALSE(p.result);
            EXPECT_EQ("", difference(fields_of(full_timing(false)), fields_of(p.object)));
            EXPECT_EQ(0U, p.consumed());
        }
}

TEST(PicTiming, AnSpsUnderTheIdThatStandsForNoneIsNeverUsed)
{
    support::sei_sps_store store;
    store.insert_or_assign(support::sei_sps_store::no_current_id, timing_sps());
    store.set_current_id(support::sei_sps_store::no_current_id);
    const auto p = parsed_with(store, true);
    EXPECT_FALSE(p.result);
    EXPECT_FALSE(p->valid);
    EXPECT_EQ(0U, p.consumed());
}

TEST(PicTiming, TheCurrentSpsIsUsedAmongOthers)
{
    for (const std::uint32_t id : {0U, 1U, 31U, 32U, 0xFFFFFFFEU}) {
        support::sei_sps_store store;
        for (const std::uint32_t other : {0U, 1U, 5U, 0xFFFFFFFEU})
            store.insert_or_assign(other, timing_sps(false, false));
        store.insert_or_assign(id, timing_sps());
        store.set_current_id(id);
        const auto p = parsed_with(store);
        EXPECT_TRUE(p.result);
        EXPECT_EQ("", difference(fields_of(full_timing()), fields_of(p.object))) << id;
    }
}

TEST(PicTiming, AnSpsThatIsNotValidIsUsed)
{
    for (const bool valid : {false, true}) {
        h264_nal_sps sps = timing_sps();
        sps.valid = sps.vui.valid = sps.vui.nal_hrd.valid = sps.vui.vcl_hrd.valid = valid;
        sps.vui_parameters_present_flag = valid;
        support::sei_sps_store store;
        store.insert_or_assign(3, sps);
        store.set_current_id(3);
        const auto p = parsed_with(store);
        EXPECT_TRUE(p.result);
        EXPECT_EQ("", difference(fields_of(full_timing()), fields_of(p.object)));
        EXPECT_EQ("", difference(fields_of(full_timing()),
                                 fields_of(parsed_timing(written(full_pic_timing()), full_timing(false), sps).object)));
    }
}
