// The picture size that follows from a sequence parameter set.
#include <orv-utils-v4/h264/nal_sps.h>

#include "support/parsed.h"
#include "support/sps_builder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_nal_sps;
using support::sps_description;
using parsed_sps = support::parsed<h264_nal_sps>;

/// An SPS whose members are set by hand.
h264_nal_sps made(std::uint32_t SubWidthC, std::uint32_t SubHeightC, bool frame_mbs_only_flag)
{
    h264_nal_sps sps;
    sps.SubWidthC = SubWidthC;
    sps.SubHeightC = SubHeightC;
    sps.frame_mbs_only_flag = frame_mbs_only_flag;
    sps.frame_crop_left_offset = 3;
    sps.frame_crop_right_offset = 5;
    sps.frame_crop_top_offset = 7;
    sps.frame_crop_bottom_offset = 11;
    sps.pic_width_in_mbs_minus1 = 44;
    sps.pic_height_in_map_units_minus1 = 17;
    return sps;
}

sps_description full_hd()
{
    sps_description sps;
    sps.profile_idc = 77;
    sps.pic_width_in_mbs_minus1 = 119;
    sps.pic_height_in_map_units_minus1 = 67;
    sps.frame_cropping_flag = true;
    sps.frame_crop_bottom_offset = 4;
    return sps;
}

} // namespace

TEST(SpsSize, FullHdOfFramesIsCroppedTo1080Rows)
{
    const parsed_sps p(support::written_rbsp(full_hd()));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(1920U, p->getPicWidth());
    EXPECT_EQ(1920U, p->getCroppedPicWidth());
    EXPECT_EQ(1088U, p->getPicHeight());
    EXPECT_EQ(8U, p->getCropBottom());
    EXPECT_EQ(1080U, p->getCroppedPicHeight());
    EXPECT_EQ(0U, p->getCropTop());
}

TEST(SpsSize, FullHdOfFieldsHasCropUnitsOfFourRows)
{
    sps_description sps = full_hd();
    sps.frame_mbs_only_flag = false;
    sps.pic_height_in_map_units_minus1 = 33;
    sps.frame_crop_bottom_offset = 2;
    sps.frame_crop_top_offset = 1;
    const parsed_sps p(support::written_rbsp(sps));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(1088U, p->getPicHeight());
    EXPECT_EQ(4U, p->getCropTop());
    EXPECT_EQ(8U, p->getCropBottom());
    EXPECT_EQ(1076U, p->getCroppedPicHeight());
}

TEST(SpsSize, EveryGetterFollowsItsFactors)
{
    for (const std::uint32_t sub_width : {1U, 2U})
        for (const std::uint32_t sub_height : {1U, 2U})
            for (const bool frame_mbs_only_flag : {false, true}) {
                const h264_nal_sps sps = made(sub_width, sub_height, frame_mbs_only_flag);
                const std::uint32_t rows = frame_mbs_only_flag ? 1 : 2;
                EXPECT_EQ(sub_width * 3, sps.getCropLeft());
                EXPECT_EQ(sub_width * 5, sps.getCropRight());
                EXPECT_EQ(sub_height * 7 * rows, sps.getCropTop());
                EXPECT_EQ(sub_height * 11 * rows, sps.getCropBottom());
                EXPECT_EQ(720U, sps.getPicWidth());
                EXPECT_EQ(288U * rows, sps.getPicHeight());
                EXPECT_EQ(720 - sub_width * 8, sps.getCroppedPicWidth());
                EXPECT_EQ((288 - sub_height * 18) * rows, sps.getCroppedPicHeight());
            }
}

TEST(SpsSize, NeitherTheCroppingFlagNorValidIsConsulted)
{
    h264_nal_sps sps = made(2, 2, true);
    for (const bool flag : {false, true}) {
        sps.frame_cropping_flag = sps.valid = flag;
        EXPECT_EQ(6U, sps.getCropLeft());
        EXPECT_EQ(22U, sps.getCropBottom());
        EXPECT_EQ(704U, sps.getCroppedPicWidth());
    }
}

TEST(SpsSize, CropsLargerThanThePictureWrap)
{
    sps_description sps;
    sps.frame_cropping_flag = true;
    sps.frame_crop_left_offset = 80;
    sps.frame_crop_right_offset = 9;
    sps.frame_crop_top_offset = 70;
    sps.frame_crop_bottom_offset = 3;
    const parsed_sps p(support::written_rbsp(sps));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(0xFFFFFFFEU, p->getCroppedPicWidth());
    EXPECT_EQ(0xFFFFFFFEU, p->getCroppedPicHeight());
}

TEST(SpsSize, LargestValuesWrap)
{
    h264_nal_sps sps = made(2, 2, false);
    sps.pic_width_in_mbs_minus1 = 0xFFFFFFFF;
    sps.pic_height_in_map_units_minus1 = 0xFFFFFFFE;
    sps.frame_crop_left_offset = 0x80000001;
    sps.frame_crop_right_offset = 0xFFFFFFFE;
    sps.frame_crop_top_offset = 0x40000003;
    sps.frame_crop_bottom_offset = 0xFFFFFFFE;
    EXPECT_EQ(0U, sps.getPicWidth());
    EXPECT_EQ(0U - 32, sps.getPicHeight());
    EXPECT_EQ(2U, sps.getCropLeft());
    EXPECT_EQ(0U - 4, sps.getCropRight());
    EXPECT_EQ(12U, sps.getCropTop());
    EXPECT_EQ(0U - 8, sps.getCropBottom());
    EXPECT_EQ(2U, sps.getCroppedPicWidth());
    EXPECT_EQ(0U - 36, sps.getCroppedPicHeight());
    sps.pic_width_in_mbs_minus1 = 0x10000000;
    EXPECT_EQ(16U, sps.getPicWidth());
}

TEST(SpsSize, OfANewSpsIsOneMacroblockPair)
{
    const h264_nal_sps sps{};
    EXPECT_EQ(16U, sps.getPicWidth());
    EXPECT_EQ(32U, sps.getPicHeight());
    EXPECT_EQ(16U, sps.getCroppedPicWidth());
    EXPECT_EQ(32U, sps.getCroppedPicHeight());
}
