#include <orv-utils-v4/h264/nal_sei_pic_timing.h>

#include "support/parsed_pic_timing.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace {

using brenik::h264_nal_sei_pic_timing;
using brenik::h264_nal_sps;
using support::fields_of;
using support::full_timestamp;
using support::full_timing;
using support::parsed_timing;
using support::pic_timing_description;
using support::timing_sps;
using support::written;
using timestamp_t = h264_nal_sei_pic_timing::timestamp_t;

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
    h264_nal_sps sps = timing_sps(false);
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

TEST(ClockTimestamp, ValuesOutsideTheirRangesAreKept)
{
    pic_timing_description timing;
    timing.pic_struct = 15;
    timing.timestamps = {{true, 3, true, 31, true, true, true, 255, 63, 63, 31, 0}};
    const parsed_timing p(written(timing), {}, timing_sps(false));
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

TEST(ClockTimestamp, ATimestampThatIsNotSentKeepsItsFields)
{
    pic_timing_description timing;
    timing.pic_struct = 5;
    timing.timestamps = {{false}, full_timestamp(7), {false}};
    const parsed_timing p(written(timing), full_timing(false), timing_sps(false));
    h264_nal_sei_pic_timing expected = full_timing();
    expected.timestamps[0].clock_timestamp_flag = expected.timestamps[2].clock_timestamp_flag = false;
    expected.timestamps[1].counting_type = 13;
    expected.timestamps[1].n_frames = 207;
    expected.timestamps[1].seconds_value = 47;
    expected.timestamps[1].minutes_value = 57;
    expected.timestamps[1].hours_value = 27;
    expected.timestamps[1].time_offset = -1007;
    EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
}

TEST(ClockTimestamp, TheTimeOfDayEndsAtTheFirstFlagThatIsClear)
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
            h264_nal_sps sps = timing_sps(false);
            sps.vui.nal_hrd.time_offset_length = sps.vui.vcl_hrd.time_offset_length = 0;
            h264_nal_sei_pic_timing object = full_timing();
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

TEST(ClockTimestamp, ATimeOffsetIsSignExtendedFromItsLength)
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

TEST(ClockTimestamp, TimeOffsetsAbove32BitsAreTheirLow32)
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

TEST(ClockTimestamp, ATimeOffsetOfNoBitsKeepsItsValue)
{
    std::size_t consumed = 1;
    EXPECT_EQ(-77, with_time_offset(0, support::bit_writer().u(32, ~0ULL), consumed, -77).time_offset);
    EXPECT_EQ(0U, consumed);
}

TEST(ClockTimestamp, ANewSpsHasNoTimeOffset)
{
    h264_nal_sps sps;
    sps.vui.pic_struct_present_flag = true;
    const parsed_timing p(head_of_timestamp().flag(false).u(32, ~0ULL), full_timing(), sps);
    EXPECT_EQ(-1000, p->timestamps.at(0).time_offset);
    EXPECT_EQ(head_bits + 1, p.consumed());
}

TEST(ClockTimestamp, TheLongerTimeOffsetCountsWhicheverHrdIsPresent)
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
