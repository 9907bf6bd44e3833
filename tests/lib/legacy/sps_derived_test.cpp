// The cropped size and the field rate of a legacy SPS.
#include "support/legacy_parse.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using support::parsed_legacy_sps;
using support::sps_description;
using support::written;

/// 1920x1080 in 120x68 macroblocks, 4 crop units off the bottom.
sps_description full_hd()
{
    sps_description seq;
    seq.profile_idc = 77;
    seq.pic_width_in_mbs_minus1 = 119;
    seq.pic_height_in_map_units_minus1 = 67;
    seq.frame_cropping_flag = true;
    seq.frame_crop_bottom_offset = 4;
    return seq;
}

/// A cropped picture of 20x30 map units; the offsets are all different.
h264_sps cropped_sps(std::uint32_t chroma_format_idc, std::uint8_t frame_mbs_only_flag)
{
    h264_sps sps;
    sps.pic_width_in_mbps = 20;
    sps.pic_height_in_map_units = 30;
    sps.chroma_format_idc = chroma_format_idc;
    sps.frame_mbs_only_flag = frame_mbs_only_flag;
    sps.frame_cropping_flag = 1;
    sps.frame_crop_left_offset = 1;
    sps.frame_crop_right_offset = 4;
    sps.frame_crop_top_offset = 9;
    sps.frame_crop_bottom_offset = 16;
    return sps;
}

} // namespace

TEST(LegacySpsSize, MainProfileIsCroppedInWholeSamples)
{
    h264_sps sps = parsed_legacy_sps(written(full_hd())).object;
    EXPECT_EQ(1920, sps.get_final_frame_width());
    EXPECT_EQ(1084, sps.get_final_frame_height());
}

TEST(LegacySpsSize, AKeptChromaFormatCounts)
{
    sps_description seq = full_hd();
    seq.profile_idc = 100;
    seq.high_profile_syntax = true;
    h264_sps sps = parsed_legacy_sps(written(seq)).object;
    sps = parsed_legacy_sps(written(full_hd()), sps).object;
    EXPECT_EQ(1080, sps.get_final_frame_height());
}

TEST(LegacySpsSize, TheCropUnitsFollowTheChromaFormatAndTheFields)
{
    struct {
        std::uint32_t format;
        int width_unit;
        int height_unit;
    } const units[] = {{0, 1, 1}, {1, 2, 2}, {2, 2, 1}, {3, 1, 1}, {4, 1, 1}, {0xFFFFFFFF, 1, 1}};
    for (const auto& unit : units)
        for (const bool planes : {false, true})
            for (const int frames : {0, 1}) {
                h264_sps sps = cropped_sps(unit.format, static_cast<std::uint8_t>(frames));
                sps.separate_colour_plane_flag = planes ? 1 : 0;
                const int fields = 2 - frames;
                EXPECT_EQ(320 - unit.width_unit * 5, sps.get_final_frame_width()) << unit.format;
                EXPECT_EQ((480 - unit.height_unit * 25) * fields, sps.get_final_frame_height()) << unit.format;
            }
}

TEST(LegacySpsSize, WithoutTheCroppingFlagOffsetsDoNotCount)
{
    h264_sps sps = cropped_sps(1, 0);
    sps.frame_cropping_flag = 0;
    EXPECT_EQ(320, sps.get_final_frame_width());
    EXPECT_EQ(960, sps.get_final_frame_height());
}

TEST(LegacySpsSize, CropsLargerThanThePictureGiveZero)
{
    for (const std::uint32_t right : {319U, 320U, 321U, 1000U, 16777214U, 33554430U}) {
        h264_sps sps = cropped_sps(0, 1);
        sps.frame_crop_left_offset = 0;
        sps.frame_crop_right_offset = right;
        EXPECT_EQ(right == 319 ? 1 : 0, sps.get_final_frame_width()) << right;
        sps.frame_crop_top_offset = right + 160;
        sps.frame_crop_bottom_offset = 0;
        EXPECT_EQ(right == 319 ? 1 : 0, sps.get_final_frame_height()) << right;
    }
}

TEST(LegacySpsSize, TheLargestCodedSizesAreExact)
{
    h264_sps sps = cropped_sps(1, 0);
    sps.pic_width_in_mbps = sps.pic_height_in_map_units = 33554431; // 2^25 - 1
    EXPECT_EQ(536870896 - 2 * 5, sps.get_final_frame_width());
    EXPECT_EQ(1073741792 - 4 * 25, sps.get_final_frame_height());
    sps.frame_crop_left_offset = sps.frame_crop_right_offset = 33554430;
    sps.frame_crop_top_offset = sps.frame_crop_bottom_offset = 33554430;
    EXPECT_EQ(536870896 - 134217720, sps.get_final_frame_width());
    EXPECT_EQ(1073741792 - 268435440, sps.get_final_frame_height());
}

TEST(LegacySpsSize, CropsSetByHandLeaveNothingRatherThanWrap)
{
    for (const std::uint32_t offset : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFF00U, 0xFFFFFFFFU}) {
        h264_sps sps;
        sps.pic_width_in_mbps = 120;
        sps.pic_height_in_map_units = 68;
        sps.frame_cropping_flag = 1;
        sps.chroma_format_idc = 1;
        sps.frame_crop_left_offset = sps.frame_crop_bottom_offset = offset;
        EXPECT_EQ(0, sps.get_final_frame_width()) << offset;
        EXPECT_EQ(0, sps.get_final_frame_height()) << offset;
        sps.frame_crop_right_offset = sps.frame_crop_top_offset = offset;
        EXPECT_EQ(0, sps.get_final_frame_width()) << offset;
        EXPECT_EQ(0, sps.get_final_frame_height()) << offset;
    }
}

TEST(LegacySpsSize, SizesSetByHandAreTheirLow32Bits)
{
    struct {
        std::uint32_t macroblocks;
        int width;
        int height_of_fields;
    } const cases[] = {{0x08000000, 0, 0},          {0x07FFFFFF, 2147483632, 0},
                       {0x04000000, 1073741824, 0}, {0x03FFFFFF, 1073741808, 2147483616},
                       {0x10000000, 0, 0},          {0x10000001, 16, 32},
                       {0x18000001, 0, 32},         {0xFFFFFFFF, 0, 0}};
    for (const auto& c : cases) {
        h264_sps sps;
        sps.pic_width_in_mbps = sps.pic_height_in_map_units = c.macroblocks;
        EXPECT_EQ(c.width, sps.get_final_frame_width()) << c.macroblocks;
        EXPECT_EQ(c.height_of_fields, sps.get_final_frame_height()) << c.macroblocks;
        sps.frame_mbs_only_flag = 1;
        EXPECT_EQ(c.width, sps.get_final_frame_height()) << c.macroblocks;
    }
}

TEST(LegacyFieldRate, IsTheTimeScaleOverTheTick)
{
    h264_sps sps;
    sps.timing_info_present_flag = 1;
    sps.time_scale = 60000;
    sps.num_units_in_ticks = 1001;
    unsigned int num = 0;
    unsigned int den = 0;
    EXPECT_EQ(1, sps.get_final_field_rate(num, den));
    EXPECT_EQ(60000U, num);
    EXPECT_EQ(1001U, den);
    sps.time_scale = 0xFFFFFFFF;
    sps.num_units_in_ticks = 0x80000000;
    EXPECT_EQ(1, sps.get_final_field_rate(num, den));
    EXPECT_EQ(0xFFFFFFFFU, num);
    EXPECT_EQ(0x80000000U, den);
}

TEST(LegacyFieldRate, WithoutTimingNothingIsWritten)
{
    for (unsigned int missing = 0; missing < 3; ++missing) {
        h264_sps sps;
        sps.timing_info_present_flag = missing != 0;
        sps.time_scale = missing != 1 ? 50 : 0;
        sps.num_units_in_ticks = missing != 2 ? 1 : 0;
        unsigned int num = 7;
        unsigned int den = 8;
        EXPECT_EQ(0, sps.get_final_field_rate(num, den)) << missing;
        EXPECT_EQ(7U, num);
        EXPECT_EQ(8U, den);
    }
}
