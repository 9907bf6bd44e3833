// Where the two interfaces read the same bits otherwise, on purpose.
#include "support/both_generations.h"

#include <orv-utils-v4/h264.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using support::bit_writer;
using support::both_spss;
using support::bytes;
using support::high_sps;
using support::sps_description;

sps_description sps_with_cpbs(std::uint32_t count)
{
    sps_description seq;
    seq.vui.emplace().nal_hrd = support::hrd_of(count);
    seq.vui->nal_hrd->cpb_removal_delay_length_minus1 = 9;
    return seq;
}

sps_description sps_with_aspect_ratio(unsigned int idc)
{
    sps_description seq;
    seq.vui.emplace().aspect_ratio_info_present_flag = true;
    seq.vui->aspect_ratio_idc = idc;
    return seq;
}

} // namespace

TEST(GenerationsDepart, ThirteenProfilesAndNineTellTheChromaFormat)
{
    for (const unsigned int profile_idc : {138U, 139U, 134U, 135U}) {
        sps_description seq = high_sps(2);
        seq.profile_idc = profile_idc;
        const both_spss both(seq);
        EXPECT_TRUE(both.newer.high_profile_syntax_present);
        EXPECT_EQ(2U, both.newer.chroma_format_idc);
        EXPECT_EQ(0U, both.legacy.chroma_format_idc);
        EXPECT_EQ(2 + 4, both.legacy.log2_max_frame_num) << "the code of the chroma format";
    }
    for (const unsigned int profile_idc : {100U, 110U, 122U, 244U, 44U, 83U, 86U, 118U, 128U}) {
        sps_description seq = high_sps(2);
        seq.profile_idc = profile_idc;
        EXPECT_EQ("", difference(both_spss(seq)));
    }
}

TEST(GenerationsDepart, ACycleOf129FramesIsRefusedByTheNewerAlone)
{
    sps_description seq;
    seq.pic_order_cnt_type = 1;
    seq.offset_for_ref_frame.assign(128, -2);
    const both_spss same(seq);
    EXPECT_TRUE(same.newer_result);
    EXPECT_EQ("", difference(same));
    seq.offset_for_ref_frame.push_back(3);
    const both_spss both(seq);
    EXPECT_FALSE(both.newer_result);
    EXPECT_EQ(11U, both.legacy.pic_width_in_mbps);
    EXPECT_EQ(9U, both.legacy.pic_height_in_map_units);
}

TEST(GenerationsDepart, AnHrdOf33CpbsIsReadByTheNewerAlone)
{
    const both_spss same(sps_with_cpbs(32));
    EXPECT_EQ(10, same.legacy.cpb_removal_delay_length);
    EXPECT_EQ("", difference(same));
    const both_spss both(sps_with_cpbs(33));
    EXPECT_TRUE(both.newer_result);
    EXPECT_EQ(9, both.newer.vui.nal_hrd.cpb_removal_delay_length_minus1);
    EXPECT_EQ(0, both.legacy.cpb_removal_delay_length);
}

TEST(GenerationsDepart, CodesOf24ZerosHaveOtherValues)
{
    sps_description seq;
    seq.max_num_ref_frames = 3;
    seq.pic_height_in_map_units_minus1 = 16777214;
    EXPECT_EQ("", difference(both_spss(seq)));
    seq.pic_height_in_map_units_minus1 = 16777215;
    const both_spss both(seq);
    EXPECT_EQ(16777215U, both.newer.pic_height_in_map_units_minus1);
    EXPECT_EQ(16777216U + 0x800000U, both.legacy.pic_height_in_map_units);
}

TEST(GenerationsDepart, ThirtyTwoZerosThrowInTheNewerAlone)
{
    const bytes data = bit_writer().u(8, 66).u(8, 0).u(8, 30).u(48, 0).u(8, 0xFF).bytes();
    EXPECT_THROW(both_spss{data}, brenik::h2645_common_malformed_code);
    support::open_bits open(data);
    h264_sps sps;
    sps.parse_sps(open.bf);
    EXPECT_EQ(16777215U, sps.seq_parameter_set_id);
}

TEST(GenerationsDepart, OnlyTheNewerInfersTheChromaFormatAndHasDepthsLessEight)
{
    const both_spss both(sps_description{});
    EXPECT_EQ(1U, both.newer.chroma_format_idc);
    EXPECT_EQ(0U, both.newer.bit_depth_luma_minus8);
    EXPECT_EQ(0U, both.legacy.chroma_format_idc);
    EXPECT_EQ(0U, both.legacy.bit_depth_luma);
    EXPECT_EQ(0U, both.legacy.bit_depth_chroma);
}

TEST(GenerationsDepart, SizesOfProfilesWithoutAChromaFormatAreCroppedInOtherUnits)
{
    sps_description seq;
    seq.frame_cropping_flag = true;
    seq.frame_crop_right_offset = 3;
    seq.frame_crop_bottom_offset = 4;
    both_spss both(seq);
    EXPECT_EQ(176U - 6, both.newer.getCroppedPicWidth());
    EXPECT_EQ(144U - 8, both.newer.getCroppedPicHeight());
    EXPECT_EQ(176 - 3, both.legacy.get_final_frame_width());
    EXPECT_EQ(144 - 4, both.legacy.get_final_frame_height());
}

TEST(GenerationsDepart, TheUnspecifiedAspectRatioIsZeroToZeroAndZeroToOne)
{
    const both_spss both(sps_with_aspect_ratio(0));
    EXPECT_EQ(0, both.newer.vui.sar_width);
    EXPECT_EQ(0, both.newer.vui.sar_height);
    EXPECT_EQ(0U, both.legacy.sar_width);
    EXPECT_EQ(1U, both.legacy.sar_height);
}

TEST(GenerationsDepart, TheDelaysOfAPictureTimingHaveOtherLengths)
{
    sps_description seq;
    seq.vui.emplace().nal_hrd.emplace();
    seq.vui->nal_hrd->initial_cpb_removal_delay_length_minus1 = 15;
    seq.vui->nal_hrd->cpb_removal_delay_length_minus1 = 7;
    seq.vui->nal_hrd->dpb_output_delay_length_minus1 = 3;
    seq.vui->pic_struct_present_flag = true;
    both_spss both(seq);
    const support::guarded_buffer buffer(bytes{0x12, 0x3, 0x56, 0x78, 0x90});
    brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
    brenik::h264_nal_sei_pic_timing newer;
    EXPECT_TRUE(newer.parse(br, both.newer));
    EXPECT_EQ(0x1203U, newer.cpb_removal_delay);
    EXPECT_EQ(0x5678U, newer.dpb_output_delay);
    EXPECT_EQ(9, newer.pic_struct);
    h264_sei_picture_timing_info legacy;
    EXPECT_EQ(1, h264_sei_picture_timing_info_parse(&legacy, buffer.begin(), buffer.end(), both.legacy));
    EXPECT_EQ(0x12U, legacy.cpb_removal_delay);
    EXPECT_EQ(0U, legacy.dpb_output_delay);
    EXPECT_EQ(3U, legacy.pic_struct);
}
