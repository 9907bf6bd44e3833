#include <orv-utils-v4/h264/nal_sei_pic_timing.h>

#include "support/literal_sei_parse.h"
#include "support/parsed.h"
#include "support/sei_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

using brenik::h264_nal_sei_pic_timing;
using brenik::h264_nal_sps;
using support::fields_of;
using support::full_pic_timing;
using support::full_timestamp;
using support::pic_timing_description;
using support::with_valid;
using support::written;
using timestamp_t = h264_nal_sei_pic_timing::timestamp_t;

/// An SPS with both HRD parameters and pic_struct; its lengths are those of a new description.
h264_nal_sps full_sps(bool hrd = true, bool pic_struct = true)
{
    return support::sps_with({{hrd}, {hrd}, pic_struct});
}

struct parsed_timing : support::parsed<h264_nal_sei_pic_timing> {
    template <typename Written>
    explicit parsed_timing(const Written& timing, const h264_nal_sei_pic_timing& before = {},
                           const h264_nal_sps& sps = full_sps())
        : parsed(timing, before, sps)
    {
    }
};

/// What a parse of full_pic_timing() leaves.
h264_nal_sei_pic_timing full(bool valid = true)
{
    return with_valid(valid, parsed_timing(written(full_pic_timing())).object);
}

/// The elements before a clock timestamp's time of day, from clock_timestamp_flag on, without full_timestamp_flag.
support::bit_writer head_of_timestamp()
{
    return support::bit_writer().u(4, 0).flag(true).u(2 + 1 + 5, 0).flag(false).u(1 + 1 + 8, 0);
}

constexpr std::size_t head_bits = 4 + 1 + 8 + 1 + 10;

/// A parse of one clock timestamp whose time_offset has `length` bits, all of them from `bits`.
timestamp_t with_time_offset(unsigned int length, const support::bit_writer& bits, std::size_t& consumed,
                             std::int32_t before = 0)
{
    h264_nal_sps sps = full_sps(false);
    sps.vui.nal_hrd.time_offset_length = static_cast<std::uint8_t>(length);
    sps.vui.vcl_hrd.time_offset_length = 0;
    support::bit_writer data = head_of_timestamp().flag(false);
    for (std::size_t i = 0; i < bits.bits(); ++i)
        data.flag((bits.bytes()[i / 8] >> (7 - i % 8) & 1) != 0);
    h264_nal_sei_pic_timing object;
    object.timestamps.resize(1);
    object.timestamps[0].time_offset = before;
    const parsed_timing p(data, object, sps);
    EXPECT_TRUE(p.result);
    consumed = p.consumed() - head_bits - 1;
    return p->timestamps.at(0);
}

} // namespace

TEST(PicTiming, ANewOneIsZeroEmptyAndInvalid)
{
    for (const support::value& field : fields_of(h264_nal_sei_pic_timing{}).values)
        EXPECT_EQ(support::value{}, field);
}

TEST(PicTiming, EveryElementIsReadIntoItsField)
{
    const auto writer = written(full_pic_timing());
    const parsed_timing p(writer);
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->valid);
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
    EXPECT_EQ(0xABCDEFU, p->cpb_removal_delay);
    EXPECT_EQ(0x123456U, p->dpb_output_delay);
    EXPECT_EQ(5, p->pic_struct);
    ASSERT_EQ(3U, p->timestamps.size());
    for (unsigned int i = 0; i < 3; ++i) {
        const timestamp_t& t = p->timestamps[i];
        EXPECT_TRUE(t.clock_timestamp_flag);
        EXPECT_EQ(1, t.ct_type);
        EXPECT_TRUE(t.nuit_field_based_flag);
        EXPECT_EQ(6 + i, t.counting_type);
        EXPECT_TRUE(t.full_timestamp_flag && t.discontinuity_flag && t.cnt_dropped_flag);
        EXPECT_TRUE(t.seconds_flag && t.minutes_flag && t.hours_flag);
        EXPECT_EQ(200 + i, t.n_frames);
        EXPECT_EQ(40 + i, t.seconds_value);
        EXPECT_EQ(50 + i, t.minutes_value);
        EXPECT_EQ(20 + i, t.hours_value);
        EXPECT_EQ(-1000 - static_cast<std::int32_t>(i), t.time_offset);
    }
}

TEST(PicTiming, SingleElementsOfATimestampAreReadByThemselves)
{
    for (unsigned int i = 0; i < 64; ++i) {
        pic_timing_description timing;
        timing.pic_struct = 0;
        pic_timing_description::timestamp t = full_timestamp();
        t.nuit_field_based_flag = (i & 1) != 0;
        t.discontinuity_flag = (i & 2) != 0;
        t.cnt_dropped_flag = (i & 4) != 0;
        t.full_timestamp_flag = (i & 8) != 0;
        t.ct_type = i / 16;
        t.counting_type = i % 32;
        timing.timestamps = {t};
        const parsed_timing p(written(timing), {}, full_sps(false));
        const timestamp_t& read = p->timestamps.at(0);
        EXPECT_EQ((i & 1) != 0, read.nuit_field_based_flag) << i;
        EXPECT_EQ((i & 2) != 0, read.discontinuity_flag) << i;
        EXPECT_EQ((i & 4) != 0, read.cnt_dropped_flag) << i;
        EXPECT_EQ((i & 8) != 0, read.full_timestamp_flag) << i;
        EXPECT_EQ(i / 16, read.ct_type) << i;
        EXPECT_EQ(i % 32, read.counting_type) << i;
    }
}

TEST(PicTiming, ValuesOutsideTheirRangesAreKept)
{
    pic_timing_description timing;
    timing.pic_struct = 15;
    timing.timestamps = {{true, 3, true, 31, true, true, true, 255, 63, 63, 31, 0}};
    const parsed_timing p(written(timing), {}, full_sps(false));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(15, p->pic_struct);
    ASSERT_EQ(1U, p->timestamps.size());
    EXPECT_EQ(3, p->timestamps[0].ct_type);
    EXPECT_EQ(31, p->timestamps[0].counting_type);
    EXPECT_EQ(255, p->timestamps[0].n_frames);
    EXPECT_EQ(63, p->timestamps[0].seconds_value);
    EXPECT_EQ(63, p->timestamps[0].minutes_value);
    EXPECT_EQ(31, p->timestamps[0].hours_value);
}

TEST(PicTiming, EitherHrdBringsTheDelays)
{
    pic_timing_description timing;
    timing.delays = {0x765432, 0x89ABCD};
    for (const bool nal : {false, true})
        for (const bool vcl : {false, true}) {
            const parsed_timing p(written(timing), full(false), support::sps_with({{nal}, {vcl}, false}));
            EXPECT_TRUE(p.result);
            EXPECT_TRUE(p->valid);
            h264_nal_sei_pic_timing expected = full();
            if (nal || vcl) {
                expected.cpb_removal_delay = 0x765432;
                expected.dpb_output_delay = 0x89ABCD;
            }
            EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
            EXPECT_EQ(nal || vcl ? 48U : 0U, p.consumed());
        }
}

TEST(PicTiming, WithoutHrdTheFirstFourBitsArePicStruct)
{
    const parsed_timing p(support::bit_writer().u(4, 9).flag(false).u(48, ~0ULL), full(false), full_sps(false));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(9, p->pic_struct);
    EXPECT_EQ(0xABCDEFU, p->cpb_removal_delay);
    EXPECT_EQ(0x123456U, p->dpb_output_delay);
    EXPECT_EQ(5U, p.consumed());
}

TEST(PicTiming, WithoutPicStructTheTimestampsKeepTheirValues)
{
    pic_timing_description timing;
    timing.delays = {1, 2};
    const parsed_timing p(written(timing), full(false), full_sps(true, false));
    EXPECT_TRUE(p.result);
    h264_nal_sei_pic_timing expected = full();
    expected.cpb_removal_delay = 1;
    expected.dpb_output_delay = 2;
    EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
}

TEST(PicTiming, TheDelaysHaveTheLengthOfTheInitialDelay)
{
    for (unsigned int width = 1; width <= 32; ++width) {
        h264_nal_sps sps = full_sps(true, false);
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
    h264_nal_sps sps = full_sps(true, false);
    sps.vui.vcl_hrd.initial_cpb_removal_delay_length_minus1 = 255;
    const parsed_timing none(support::bit_writer().u(64, ~0ULL), full(), sps);
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
        const parsed_timing p(support::bit_writer().u(4, pic_struct), {}, full_sps(false));
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

TEST(PicTiming, ATimestampThatIsNotSentKeepsItsFields)
{
    pic_timing_description timing;
    timing.pic_struct = 5;
    timing.timestamps = {{false}, full_timestamp(7), {false}};
    const parsed_timing p(written(timing), full(false), full_sps(false));
    h264_nal_sei_pic_timing expected = full();
    expected.timestamps[0].clock_timestamp_flag = expected.timestamps[2].clock_timestamp_flag = false;
    expected.timestamps[1].counting_type = 13;
    expected.timestamps[1].n_frames = 207;
    expected.timestamps[1].seconds_value = 47;
    expected.timestamps[1].minutes_value = 57;
    expected.timestamps[1].hours_value = 27;
    expected.timestamps[1].time_offset = -1007;
    EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
}

TEST(PicTiming, FewerTimestampsDropTheLastAndKeepTheFieldsOfTheOthers)
{
    const parsed_timing p(support::bit_writer().u(4, 3), full(), full_sps(false));
    EXPECT_TRUE(p.result);
    h264_nal_sei_pic_timing expected = full();
    expected.pic_struct = 3;
    expected.timestamps.pop_back();
    expected.timestamps[0].clock_timestamp_flag = expected.timestamps[1].clock_timestamp_flag = false;
    EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
}

TEST(PicTiming, MoreTimestampsAreAppendedAsZeros)
{
    const parsed_timing fewer(support::bit_writer().u(4, 0), full(), full_sps(false));
    const parsed_timing p(support::bit_writer().u(4, 8), fewer.object, full_sps(false));
    h264_nal_sei_pic_timing expected = fewer.object;
    expected.pic_struct = 8;
    expected.timestamps.resize(3);
    EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
    EXPECT_EQ(40, p->timestamps[0].seconds_value);
    EXPECT_EQ(0, p->timestamps[1].seconds_value);
}

TEST(PicTiming, AFullTimestampSetsTheThreeFlags)
{
    for (const bool before : {false, true}) {
        h264_nal_sei_pic_timing object;
        object.timestamps.resize(1);
        object.timestamps[0].seconds_flag = object.timestamps[0].minutes_flag = object.timestamps[0].hours_flag =
            before;
        pic_timing_description timing;
        timing.pic_struct = 1;
        timing.timestamps = {full_timestamp()};
        const parsed_timing p(written(timing), object, full_sps(false));
        EXPECT_TRUE(p->timestamps[0].seconds_flag && p->timestamps[0].minutes_flag && p->timestamps[0].hours_flag);
    }
}

TEST(PicTiming, TheTimeOfDayEndsAtTheFirstFlagThatIsClear)
{
    // The flags that are sent, and how many bits the time of day takes then.
    static constexpr std::size_t widths[] = {1, 1 + 6 + 1, 1 + 6 + 1 + 6 + 1, 1 + 6 + 1 + 6 + 1 + 5};
    for (unsigned int sent = 0; sent <= 3; ++sent)
        for (const bool before : {false, true}) {
            pic_timing_description::timestamp t;
            t.seconds_value = sent > 0 ? std::optional<unsigned int>(11) : std::nullopt;
            t.minutes_value = sent > 1 ? std::optional<unsigned int>(22) : std::nullopt;
            t.hours_value = sent > 2 ? std::optional<unsigned int>(30) : std::nullopt;
            pic_timing_description timing;
            timing.pic_struct = 0;
            timing.timestamps = {t};
            timing.time_offset_length = 0;
            h264_nal_sps sps = full_sps(false);
            sps.vui.nal_hrd.time_offset_length = sps.vui.vcl_hrd.time_offset_length = 0;
            h264_nal_sei_pic_timing object = full();
            timestamp_t& old = object.timestamps[0];
            old.seconds_flag = old.minutes_flag = old.hours_flag = before;
            const parsed_timing p(written(timing), object, sps);
            const timestamp_t& read = p->timestamps.at(0);
            EXPECT_EQ(sent > 0, read.seconds_flag);
            EXPECT_EQ(sent > 0 ? sent > 1 : before, read.minutes_flag) << sent;
            EXPECT_EQ(sent > 1 ? sent > 2 : before, read.hours_flag) << sent;
            EXPECT_EQ(sent > 0 ? 11 : 40, read.seconds_value) << sent;
            EXPECT_EQ(sent > 1 ? 22 : 50, read.minutes_value) << sent;
            EXPECT_EQ(sent > 2 ? 30 : 20, read.hours_value) << sent;
            EXPECT_EQ(head_bits + widths[sent], p.consumed()) << sent;
        }
}

TEST(PicTiming, ATimeOffsetIsSignExtendedFromItsLength)
{
    std::size_t consumed = 0;
    for (unsigned int length = 1; length <= 32; ++length) {
        const std::uint64_t sign = 1ULL << (length - 1);
        const auto most = static_cast<std::int64_t>(sign) - 1;
        for (const std::int64_t value : {std::int64_t{0}, std::int64_t{-1}, most, -most - 1, most / 3, -most / 3}) {
            const auto bits = support::bit_writer().u(length, static_cast<std::uint64_t>(value)).u(8, 0xA5);
            EXPECT_EQ(value, with_time_offset(length, bits, consumed, 77).time_offset) << length;
            EXPECT_EQ(length, consumed);
        }
    }
    EXPECT_EQ(-1, with_time_offset(5, support::bit_writer().u(5, 31), consumed).time_offset);
    EXPECT_EQ(15, with_time_offset(5, support::bit_writer().u(5, 15), consumed).time_offset);
}

TEST(PicTiming, TimeOffsetsAbove32BitsAreTheirLow32)
{
    std::size_t consumed = 0;
    for (const unsigned int length : {33U, 50U, 64U, 255U})
        for (const bool first : {false, true}) {
            const auto start = support::bit_writer().flag(first).u(length - 33, 0);
            EXPECT_EQ(0x01234567,
                      with_time_offset(length, support::bit_writer(start).u(32, 0x01234567), consumed).time_offset);
            EXPECT_EQ(length, consumed);
            EXPECT_EQ(std::numeric_limits<std::int32_t>::min(),
                      with_time_offset(length, support::bit_writer(start).u(32, 0x80000000), consumed).time_offset);
        }
}

TEST(PicTiming, ATimeOffsetOfNoBitsKeepsItsValue)
{
    std::size_t consumed = 1;
    EXPECT_EQ(-77, with_time_offset(0, support::bit_writer().u(32, ~0ULL), consumed, -77).time_offset);
    EXPECT_EQ(0U, consumed);
}

TEST(PicTiming, ANewSpsHasNoTimeOffset)
{
    h264_nal_sps sps;
    sps.vui.pic_struct_present_flag = true;
    const parsed_timing p(head_of_timestamp().flag(false).u(32, ~0ULL), full(), sps);
    EXPECT_EQ(-1000, p->timestamps.at(0).time_offset);
    EXPECT_EQ(head_bits + 1, p.consumed());
}

TEST(PicTiming, TheLongerTimeOffsetCountsWhicheverHrdIsPresent)
{
    pic_timing_description timing;
    timing.pic_struct = 0;
    timing.time_offset_length = 20;
    timing.timestamps = {full_timestamp()};
    for (const bool nal_is_longer : {false, true})
        for (unsigned int present = 0; present < 4; ++present) {
            timing.delays.reset();
            if (present != 0)
                timing.delays = {3, 4};
            h264_nal_sps sps = support::sps_with({{present % 2 == 1}, {present >= 2}, true});
            sps.vui.nal_hrd.time_offset_length = nal_is_longer ? 20 : 6;
            sps.vui.vcl_hrd.time_offset_length = nal_is_longer ? 6 : 20;
            const auto writer = written(timing);
            const parsed_timing p(writer, {}, sps);
            EXPECT_EQ(-1000, p->timestamps.at(0).time_offset) << present;
            EXPECT_EQ(writer.size_in_bits(), p.consumed());
        }
}

TEST(PicTiming, BitsPastTheEndAreZeros)
{
    const auto writer = written(full_pic_timing());
    for (std::size_t length = 0; length <= writer.size_in_bits(); ++length) {
        const support::bytes cut = support::first_bits(writer.made(), length);
        support::bytes padded = cut;
        padded.resize(cut.size() + 80);
        const parsed_timing p(cut);
        const parsed_timing q(padded);
        EXPECT_TRUE(p.result);
        EXPECT_EQ("", difference(fields_of(q.object), fields_of(p.object))) << length;
        EXPECT_EQ(q.consumed(), p.consumed()) << length;
    }
}

TEST(PicTiming, AnEmptyPayloadIsOneTimestampThatIsNotSent)
{
    const parsed_timing p(support::bytes{}, full(false));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(0U, p->cpb_removal_delay);
    EXPECT_EQ(0, p->pic_struct);
    ASSERT_EQ(1U, p->timestamps.size());
    EXPECT_FALSE(p->timestamps[0].clock_timestamp_flag);
    EXPECT_EQ(40, p->timestamps[0].seconds_value);
}

TEST(PicTiming, EveryPicStructHasItsText)
{
    static const std::vector<std::string> texts = {"Progressive frame",
                                                   "Top field",
                                                   "Bottom field",
                                                   "Top field, bottom field, in that order",
                                                   "Bottom field, top field, in that order",
                                                   "Top field, bottom field, top field repeated, in that order",
                                                   "Bottom field, top field, bottom field repeated, in that order",
                                                   "Frame doubling",
                                                   "Frame tripling"};
    h264_nal_sei_pic_timing object;
    for (unsigned int pic_struct = 0; pic_struct <= 255; ++pic_struct) {
        object.pic_struct = static_cast<std::uint8_t>(pic_struct);
        EXPECT_EQ(pic_struct < texts.size() ? texts[pic_struct] : "?", object.pic_struct_to_str()) << pic_struct;
    }
}

TEST(PicTiming, EveryCtTypeHasItsText)
{
    timestamp_t t;
    for (unsigned int ct_type = 0; ct_type <= 255; ++ct_type) {
        t.ct_type = static_cast<std::uint8_t>(ct_type);
        const std::string text = ct_type == 0 ? "progressive" : ct_type == 1 ? "interlaced" : "?";
        EXPECT_EQ(text, t.ct_type_to_str()) << ct_type;
    }
}

namespace {

/// A parse with the current SPS of `store`.
support::parsed<h264_nal_sei_pic_timing> parsed_with(const support::sei_sps_store& store, bool valid = false)
{
    return support::parsed<h264_nal_sei_pic_timing>(written(full_pic_timing()), full(valid), store);
}

} // namespace

TEST(PicTiming, WithoutACurrentSpsNothingIsReadAndItIsNotValid)
{
    support::sei_sps_store empty;
    support::sei_sps_store none_current;
    none_current.insert_or_assign(0, full_sps());
    support::sei_sps_store another = none_current;
    another.set_current_id(1);
    for (const support::sei_sps_store& store : {empty, none_current, another})
        for (const bool valid : {false, true}) {
            const auto p = parsed_with(store, valid);
            EXPECT_FALSE(p.result);
            EXPECT_EQ("", difference(fields_of(full(false)), fields_of(p.object)));
            EXPECT_EQ(0U, p.consumed());
        }
}

TEST(PicTiming, AnSpsUnderTheIdThatStandsForNoneIsNeverUsed)
{
    support::sei_sps_store store;
    store.insert_or_assign(support::sei_sps_store::no_current_id, full_sps());
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
            store.insert_or_assign(other, full_sps(false, false));
        store.insert_or_assign(id, full_sps());
        store.set_current_id(id);
        const auto p = parsed_with(store);
        EXPECT_TRUE(p.result);
        EXPECT_EQ("", difference(fields_of(full()), fields_of(p.object))) << id;
    }
}

TEST(PicTiming, AnSpsThatIsNotValidIsUsed)
{
    for (const bool valid : {false, true}) {
        h264_nal_sps sps = full_sps();
        sps.valid = sps.vui.valid = sps.vui.nal_hrd.valid = sps.vui.vcl_hrd.valid = valid;
        sps.vui_parameters_present_flag = valid;
        support::sei_sps_store store;
        store.insert_or_assign(3, sps);
        store.set_current_id(3);
        const auto p = parsed_with(store);
        EXPECT_TRUE(p.result);
        EXPECT_EQ("", difference(fields_of(full()), fields_of(p.object)));
        EXPECT_EQ("", difference(fields_of(full()),
                                 fields_of(parsed_timing(written(full_pic_timing()), full(false), sps).object)));
    }
}
