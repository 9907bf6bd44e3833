// vui_parameters() and hrd_parameters() of the legacy SPS.
#include "support/legacy_parse.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using support::bit_writer;
using support::difference_of;
using support::element_writer;
using support::end_of;
using support::hrd_description;
using support::hrd_of;
using support::open_bits;
using support::parsed_legacy_sps;
using support::sps_description;
using support::vui_description;
using support::written;

sps_description sps_of(const vui_description& vui)
{
    sps_description seq;
    seq.vui = vui;
    return seq;
}

/// Parses an SPS with these VUI parameters and expects its end.
h264_sps parse(const vui_description& vui, const h264_sps& before = {})
{
    const element_writer writer = written(sps_of(vui));
    const parsed_legacy_sps p(writer, before);
    EXPECT_EQ(end_of(writer, "vui.pic_struct_present_flag"), p.consumed());
    return p.object;
}

vui_description aspect_ratio(unsigned int idc, unsigned int width = 0, unsigned int height = 0)
{
    vui_description vui;
    vui.aspect_ratio_info_present_flag = true;
    vui.aspect_ratio_idc = idc;
    vui.sar_width = width;
    vui.sar_height = height;
    return vui;
}

hrd_description lengths(unsigned int initial, unsigned int cpb, unsigned int dpb, unsigned int offset)
{
    hrd_description hrd = hrd_of(2);
    hrd.bit_rate_scale = 15;
    hrd.cpb_size_scale = 1;
    hrd.initial_cpb_removal_delay_length_minus1 = initial;
    hrd.cpb_removal_delay_length_minus1 = cpb;
    hrd.dpb_output_delay_length_minus1 = dpb;
    hrd.time_offset_length = offset;
    return hrd;
}

} // namespace

TEST(LegacyVui, EveryAspectRatioIdcHasItsRatio)
{
    const std::uint32_t ratios[17][2] = {{0, 1},   {1, 1},    {12, 11}, {10, 11}, {16, 11}, {40, 33},
                                         {24, 11}, {20, 11},  {32, 11}, {80, 33}, {18, 11}, {15, 11},
                                         {64, 33}, {160, 99}, {4, 3},   {3, 2},   {2, 1}};
    for (unsigned int idc = 0; idc < 17; ++idc) {
        const h264_sps sps = parse(aspect_ratio(idc), support::numbered_sps());
        EXPECT_EQ(idc, sps.aspect_ratio_idc);
        EXPECT_EQ(ratios[idc][0], sps.sar_width) << idc;
        EXPECT_EQ(ratios[idc][1], sps.sar_height) << idc;
        EXPECT_EQ(ratios[idc][0], h264_aspect_ratio_stdent_presets[idc][0]) << idc;
        EXPECT_EQ(ratios[idc][1], h264_aspect_ratio_stdent_presets[idc][1]) << idc;
    }
}

TEST(LegacyVui, ReservedAspectRatiosKeepTheRatio)
{
    const h264_sps before = support::numbered_sps();
    for (unsigned int idc = 17; idc < 255; ++idc) {
        const h264_sps sps = parse(aspect_ratio(idc), before);
        EXPECT_EQ(idc, sps.aspect_ratio_idc);
        EXPECT_EQ(before.sar_width, sps.sar_width) << idc;
        EXPECT_EQ(before.sar_height, sps.sar_height) << idc;
    }
}

TEST(LegacyVui, GroupsThatAreNotSentKeepTheirFields)
{
    const h264_sps before = support::numbered_sps(3);
    const h264_sps sps = parse(vui_description(), before);
    h264_sps expected = parsed_legacy_sps(written(sps_description()), before).object;
    expected.vui_parameters_present_flag = 1;
    expected.aspect_ratio_info_present_flag = expected.overscan_info_present_flag = 0;
    expected.video_signal_type_present_flag = expected.chroma_location_info_present_flag = 0;
    expected.timing_info_present_flag = 0;
    expected.nal_hrd_parameters_present_flag = expected.vcl_hrd_parameters_present_flag = 0;
    expected.pic_struct_present_flag = 0;
    EXPECT_EQ("", difference_of(expected, sps));
}

TEST(LegacyVui, AnSpsWithoutVuiKeepsTheTimingOfTheOneBefore)
{
    vui_description vui;
    vui.timing_info_present_flag = true;
    h264_sps sps = parse(vui);
    sps = parsed_legacy_sps(written(sps_description()), sps).object;
    EXPECT_EQ(0, sps.vui_parameters_present_flag);
    EXPECT_EQ(1, sps.timing_info_present_flag);
    unsigned int num = 0;
    unsigned int den = 0;
    EXPECT_EQ(1, sps.get_final_field_rate(num, den));
    EXPECT_EQ(60000U, num);
    EXPECT_EQ(1001U, den);
}

TEST(LegacyVui, NothingBehindPicStructIsRead)
{
    for (const bool restriction : {false, true}) {
        vui_description vui;
        vui.pic_struct_present_flag = true;
        vui.bitstream_restriction_flag = restriction;
        EXPECT_EQ(1, parse(vui).pic_struct_present_flag);
    }
}

TEST(LegacyVui, TheLengthsAreThoseOfTheLastHrd)
{
    vui_description vui;
    vui.nal_hrd = lengths(0, 1, 2, 3);
    h264_sps sps = parse(vui);
    EXPECT_EQ(1, sps.initial_cpb_removal_delay_length);
    EXPECT_EQ(2, sps.cpb_removal_delay_length);
    EXPECT_EQ(3, sps.dpb_output_delay_length);
    EXPECT_EQ(3, sps.time_offset_length);
    vui.vcl_hrd = lengths(28, 29, 31, 30);
    sps = parse(vui);
    EXPECT_EQ(29, sps.initial_cpb_removal_delay_length);
    EXPECT_EQ(30, sps.cpb_removal_delay_length);
    EXPECT_EQ(32, sps.dpb_output_delay_length);
    EXPECT_EQ(30, sps.time_offset_length);
}

TEST(LegacyVui, AnHrdOf33CpbsIsLeftBehindItsCount)
{
    const h264_sps before = support::numbered_sps();
    vui_description vui;
    vui.nal_hrd = hrd_of(33);
    const element_writer writer = written(sps_of(vui));
    const parsed_legacy_sps p(writer, before);
    // What follows the count is read as the VCL flag, low_delay_hrd_flag and pic_struct_present_flag: the first bits of
    // the scales, which are 0.
    EXPECT_EQ(1, p->nal_hrd_parameters_present_flag);
    EXPECT_EQ(0, p->vcl_hrd_parameters_present_flag);
    EXPECT_EQ(before.cpb_removal_delay_length, p->cpb_removal_delay_length);
    EXPECT_EQ(end_of(writer, "vui.nal_hrd.cpb_cnt_minus1") + 3, p.consumed());
}

TEST(LegacyHrd, EveryCountTo32IsReadAndDropped)
{
    for (std::uint32_t count = 1; count <= 32; ++count) {
        hrd_description hrd = hrd_of(count);
        hrd.bit_rate_scale = 9;
        hrd.cpb_size_scale = 6;
        hrd.initial_cpb_removal_delay_length_minus1 = 11;
        hrd.cpb_removal_delay_length_minus1 = 12;
        hrd.dpb_output_delay_length_minus1 = 13;
        hrd.time_offset_length = 14;
        const element_writer writer = written(hrd);
        open_bits open(writer.made());
        h264_sps sps = support::numbered_sps();
        h264_sps expected = sps;
        expected.initial_cpb_removal_delay_length = 12;
        expected.cpb_removal_delay_length = 13;
        expected.dpb_output_delay_length = expected.time_offset_length = 14;
        sps.discard_h264_video_hrd_params_because_nobody_fucking_cares(open.bf);
        EXPECT_EQ("", difference_of(expected, sps));
        EXPECT_EQ(writer.size_in_bits(), open.consumed());
    }
}

TEST(LegacyHrd, MoreThan32CpbsReadTheCountAlone)
{
    for (const std::uint32_t minus1 : {32U, 33U, 127U, 16777214U}) {
        bit_writer writer;
        writer.ue(minus1);
        const std::size_t bits = writer.bits();
        open_bits open(writer.u(60, 0x123456789ABCDEF));
        h264_sps sps = support::numbered_sps();
        sps.discard_h264_video_hrd_params_because_nobody_fucking_cares(open.bf);
        EXPECT_EQ("", difference_of(support::numbered_sps(), sps));
        EXPECT_EQ(bits, open.consumed()) << minus1;
    }
}
