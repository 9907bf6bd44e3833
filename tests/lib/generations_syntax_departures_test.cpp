// Where the two interfaces read the same bits otherwise, on purpose.
#include "support/both_generations.h"
#include "support/slice_context.h"

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

/// Both reads of an I slice in a stream whose frame_num has so many bits.
struct both_slices {
    brenik::h264_nal_slice_header newer;
    h264_nal_slice_info legacy;

    explicit both_slices(unsigned int frame_num_width, bool frames_only = true) : width(frame_num_width)
    {
        context.sps.log2_max_frame_num_minus4 = width - 4;
        context.sps.frame_mbs_only_flag = frames_only;
        sps.log2_max_frame_num = static_cast<std::uint8_t>(width);
        sps.frame_mbs_only_flag = frames_only ? 1 : 0;
    }

    void read(const bytes& data)
    {
        const support::guarded_buffer buffer(data);
        brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
        EXPECT_TRUE(newer.parse(br, context.sps_store(), context.pps_store(), context.nal));
        EXPECT_EQ(1, support::parse_slice(legacy, {buffer.begin(), buffer.end()}, sps));
    }

    unsigned int width;
    support::slice_context context;
    h264_sps sps;
};

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

TEST(GenerationsDepart, AReservedAspectRatioClearsTheNewerRatioAndKeepsTheLegacyOne)
{
    both_spss both(sps_with_aspect_ratio(13));
    const support::guarded_buffer buffer(written_rbsp(sps_with_aspect_ratio(17)).made());
    brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
    EXPECT_TRUE(both.newer.parse(br));
    support::parse_fenced(both.legacy, buffer.begin(), buffer.end());
    EXPECT_EQ(0, both.newer.vui.sar_width);
    EXPECT_EQ(0, both.newer.vui.sar_height);
    EXPECT_EQ(160U, both.legacy.sar_width);
    EXPECT_EQ(99U, both.legacy.sar_height);
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

TEST(GenerationsDepart, AFrameNumAbove24BitsIsReadByTheNewerAlone)
{
    both_slices same(24);
    same.read(bit_writer().ue(0).ue(7).ue(0).u(24, 0xFEDCBA).u(8, 0).bytes());
    EXPECT_EQ(0xFEDCBAU, same.newer.frame_num);
    EXPECT_EQ(0xFEDCBAU, same.legacy.frame_num);
    both_slices both(25);
    both.read(bit_writer().ue(0).ue(7).ue(0).u(25, 0x1FEDCBA).u(8, 0).bytes());
    EXPECT_EQ(0x1FEDCBAU, both.newer.frame_num);
    EXPECT_EQ(0xFFFFFFFFU, both.legacy.frame_num);
}

TEST(GenerationsDepart, FieldFlagsThatAreNotSentAreKeptByTheNewerAndClearedByTheLegacy)
{
    both_slices both(4, false);
    both.read(bit_writer().ue(0).ue(7).ue(0).u(4, 9).u(2, 0b11).u(8, 0).bytes());
    EXPECT_TRUE(both.newer.bottom_field_flag);
    EXPECT_EQ(1, both.legacy.bottom_field_flag);
    both.context.sps.frame_mbs_only_flag = true;
    both.sps.frame_mbs_only_flag = 1;
    both.read(bit_writer().ue(0).ue(7).ue(0).u(4, 9).u(8, 0).bytes());
    EXPECT_TRUE(both.newer.field_pic_flag);
    EXPECT_TRUE(both.newer.bottom_field_flag);
    EXPECT_EQ(0, both.legacy.field_pic_flag);
    EXPECT_EQ(0, both.legacy.bottom_field_flag);
}

TEST(GenerationsDepart, AMessageThatIsCutShortIsGivenByTheNewerAlone)
{
    const support::guarded_buffer buffer(bytes{5, 9, 1, 2});
    brenik::h264_nal_sei_reader newer(buffer.begin(), buffer.end());
    EXPECT_TRUE(newer.next_message());
    EXPECT_TRUE(newer.truncated);
    h264_sei_pair pair;
    EXPECT_EQ(buffer.end(), h264_sei_read_pair(&pair, buffer.begin(), buffer.end()));
    EXPECT_EQ(0, pair.valid);
}
