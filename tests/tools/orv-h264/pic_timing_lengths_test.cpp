#include "pic_timing_lengths.h"

#include "support/bit_writer.h"
#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using orv_h264::library_lengths;
using orv_h264::parse_by_standard;
using orv_h264::standard_lengths;

brenik::h264_hrd_parameters hrd_of(unsigned char initial, unsigned char cpb, unsigned char dpb, unsigned char offset)
{
    brenik::h264_hrd_parameters hrd;
    hrd.initial_cpb_removal_delay_length_minus1 = initial;
    hrd.cpb_removal_delay_length_minus1 = cpb;
    hrd.dpb_output_delay_length_minus1 = dpb;
    hrd.time_offset_length = offset;
    return hrd;
}

std::size_t time_of_day_bits(const brenik::h264_nal_sei_pic_timing::timestamp_t& t)
{
    if (t.full_timestamp_flag)
        return 6 + 6 + 5;
    return 1 + (t.seconds_flag ? 7U : 0U) + (t.minutes_flag ? 7U : 0U) + (t.hours_flag ? 5U : 0U);
}

void expect_lengths(const orv_h264::pic_timing_lengths& lengths, int cpb, int dpb, int offset)
{
    EXPECT_EQ(cpb, lengths.cpb_removal_delay);
    EXPECT_EQ(dpb, lengths.dpb_output_delay);
    EXPECT_EQ(offset, lengths.time_offset);
}

} // namespace

TEST(PicTimingLengths, TheStandardHasThoseOfTheNalHrdAndElseOfTheVclHrd)
{
    brenik::h264_vui_parameters vui;
    vui.nal_hrd = hrd_of(1, 2, 3, 4);
    vui.vcl_hrd = hrd_of(5, 6, 7, 8);
    expect_lengths(standard_lengths(vui), 24, 24, 24);
    vui.vcl_hrd_parameters_present_flag = true;
    expect_lengths(standard_lengths(vui), 7, 8, 8);
    vui.nal_hrd_parameters_present_flag = true;
    expect_lengths(standard_lengths(vui), 3, 4, 4);
}

TEST(PicTimingLengths, TheLibraryHasTheLongestInitialDelayOfBothPresentOrNot)
{
    brenik::h264_vui_parameters vui;
    vui.nal_hrd = hrd_of(1, 2, 3, 14);
    vui.vcl_hrd = hrd_of(5, 6, 7, 8);
    expect_lengths(library_lengths(vui), 6, 6, 14);
    vui.nal_hrd_parameters_present_flag = true;
    expect_lengths(library_lengths(vui), 6, 6, 14);
    std::swap(vui.nal_hrd, vui.vcl_hrd);
    expect_lengths(library_lengths(vui), 6, 6, 14);
}

// The library itself is the judge of what is said of it.
TEST(PicTimingLengths, TheLibraryReadsAsManyBits)
{
    for (unsigned char initial = 0; initial < 32; ++initial)
        for (const bool delays : {false, true}) {
            brenik::h264_nal_sps sps;
            sps.vui.nal_hrd = hrd_of(initial, 9, 9, 5);
            sps.vui.nal_hrd_parameters_present_flag = delays;
            sps.vui.pic_struct_present_flag = true;
            const support::guarded_buffer data(std::vector<unsigned char>(20, 0x11));
            brenik::h2645_common_bitreader br(data.begin(), data.end());
            brenik::h264_nal_sei_pic_timing timing;
            ASSERT_TRUE(timing.parse(br, sps));
            const auto lengths = library_lengths(sps.vui);
            std::size_t expected = 4;
            if (delays)
                expected += std::size_t{lengths.cpb_removal_delay} + lengths.dpb_output_delay;
            for (const auto& t : timing.timestamps)
                expected += t.clock_timestamp_flag ? 20 + time_of_day_bits(t) + lengths.time_offset : 1;
            EXPECT_EQ(expected, br.bits_consumed());
        }
}

TEST(PicTimingLengths, ParseByStandardReadsEachFieldWithItsLength)
{
    brenik::h264_vui_parameters vui;
    vui.nal_hrd = hrd_of(18, 9, 6, 5);
    vui.vcl_hrd = hrd_of(30, 30, 30, 30);
    vui.nal_hrd_parameters_present_flag = true;
    vui.pic_struct_present_flag = true;
    support::bit_writer w;
    w.u(10, 513).u(7, 99).u(4, 3).flag(false).flag(true);
    w.u(2, 1).flag(true).u(5, 4).flag(true).flag(false).flag(false).u(8, 24).u(6, 59).u(6, 58).u(5, 23).u(5, 31);
    const support::guarded_buffer data(w.bytes());
    brenik::h2645_common_bitreader br(data.begin(), data.end());
    brenik::h264_nal_sei_pic_timing timing;
    EXPECT_TRUE(parse_by_standard(timing, br, vui));
    EXPECT_EQ(w.bits(), br.bits_consumed());
    EXPECT_EQ(513U, timing.cpb_removal_delay);
    EXPECT_EQ(99U, timing.dpb_output_delay);
    ASSERT_EQ(2U, timing.timestamps.size());
    EXPECT_EQ(23, timing.timestamps[1].hours_value);
    EXPECT_EQ(-1, timing.timestamps[1].time_offset);
}

TEST(PicTimingLengths, WithoutHrdParametersTheTimeOffsetHas24Bits)
{
    brenik::h264_vui_parameters vui;
    vui.pic_struct_present_flag = true;
    support::bit_writer w;
    w.u(4, 0).flag(true).u(2, 0).u(9, 0).u(8, 0).flag(false).u(24, 0xFFFFFE);
    const support::guarded_buffer data(w.bytes());
    brenik::h2645_common_bitreader br(data.begin(), data.end());
    brenik::h264_nal_sei_pic_timing timing;
    EXPECT_TRUE(parse_by_standard(timing, br, vui));
    EXPECT_EQ(w.bits(), br.bits_consumed());
    EXPECT_EQ(-2, timing.timestamps.at(0).time_offset);
    EXPECT_EQ(0U, timing.cpb_removal_delay);
}
