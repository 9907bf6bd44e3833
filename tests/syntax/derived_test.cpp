// What follows from parameter sets: sizes, ratios, levels, names, lengths.
#include "support/small_units.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace {

using namespace orv_utils_v4::h264;

seq_parameter_set_data of_level(int level_idc, int profile_idc = 100)
{
    seq_parameter_set_data sps = sps_data();
    sps.profile_idc = static_cast<std::uint8_t>(profile_idc);
    sps.level_idc = static_cast<std::uint8_t>(level_idc);
    return sps;
}

TEST(Derived, SizesCountMacroblocksMapUnitsAndFields)
{
    seq_parameter_set_data sps = sps_data(0, 5, 3);
    EXPECT_EQ(PicWidthInMbs(sps), 5U);
    EXPECT_EQ(PicHeightInMapUnits(sps), 3U);
    EXPECT_EQ(PicSizeInMapUnits(sps), 15U);
    EXPECT_EQ(FrameHeightInMbs(sps), 3U);
    sps.frame_mbs_only_flag = false;
    EXPECT_EQ(FrameHeightInMbs(sps), 6U);
    EXPECT_EQ(PicSizeInMbs(sps, false), 30U);
    EXPECT_EQ(PicSizeInMbs(sps, true), 15U);
    EXPECT_EQ(coded_size(sps).width, 80U);
    EXPECT_EQ(coded_size(sps).height, 96U);
}

TEST(Derived, TheLargestSizesDoNotWrap)
{
    seq_parameter_set_data sps = sps_data();
    sps.pic_width_in_mbs_minus1 = sps.pic_height_in_map_units_minus1 = 0xFFFFFFFE;
    EXPECT_EQ(PicSizeInMapUnits(sps), ~std::uint64_t{0} >> 1); // as large as a range can be
    EXPECT_EQ(coded_size(sps).width, std::uint64_t{0xFFFFFFFF} * 16);
}

struct crop_case {
    std::uint32_t chroma_format_idc;
    bool separate_colour_plane_flag;
    bool frame_mbs_only_flag;
    std::uint64_t unit_x;
    std::uint64_t unit_y;
};

// CropUnitX and CropUnitY: (7-19) to (7-22)
TEST(Derived, CropUnitsFollowTheChromaFormatAndTheFields)
{
    constexpr crop_case cases[] = {
        {0, false, true, 1, 1}, {0, false, false, 1, 2}, {1, false, true, 2, 2}, {1, false, false, 2, 4},
        {2, false, true, 2, 1}, {2, false, false, 2, 2}, {3, false, true, 1, 1}, {3, false, false, 1, 2},
        {3, true, true, 1, 1},  {3, true, false, 1, 2},
    };
    for (const crop_case& c : cases) {
        seq_parameter_set_data sps = sps_data(0, 10, 10);
        sps.chroma_format_idc = c.chroma_format_idc;
        sps.separate_colour_plane_flag = c.separate_colour_plane_flag;
        sps.frame_mbs_only_flag = c.frame_mbs_only_flag;
        sps.frame_crop_left_offset = 1;
        sps.frame_crop_right_offset = 2;
        sps.frame_crop_top_offset = 3;
        sps.frame_crop_bottom_offset = 4;
        EXPECT_EQ(cropped_size(sps).width, coded_size(sps).width - 3 * c.unit_x) << c.chroma_format_idc;
        EXPECT_EQ(cropped_size(sps).height, coded_size(sps).height - 7 * c.unit_y) << c.chroma_format_idc;
    }
}

TEST(Derived, ACropThatLeavesNothingGivesNoSize)
{
    seq_parameter_set_data sps = sps_data(0, 2, 1);
    sps.frame_crop_right_offset = 15;
    EXPECT_EQ(cropped_size(sps).width, 2U);
    EXPECT_EQ(cropped_size(sps).height, 16U);
    sps.frame_crop_right_offset = 16;
    EXPECT_EQ(cropped_size(sps).width, 0U);
    EXPECT_EQ(cropped_size(sps).height, 0U);
    sps.frame_crop_left_offset = sps.frame_crop_right_offset = 0xFFFFFFFE;
    EXPECT_EQ(cropped_size(sps).width, 0U);
}

TEST(Derived, AspectRatiosAreThoseOfTableE1)
{
    constexpr unsigned table[][3] = {{1, 1, 1},     {2, 12, 11}, {3, 10, 11}, {4, 16, 11},  {5, 40, 33},  {6, 24, 11},
                                     {7, 20, 11},   {8, 32, 11}, {9, 80, 33}, {10, 18, 11}, {11, 15, 11}, {12, 64, 33},
                                     {13, 160, 99}, {14, 4, 3},  {15, 3, 2},  {16, 2, 1}};
    vui_parameters vui;
    vui.sar_width = 7;
    vui.sar_height = 5;
    for (const auto& [idc, width, height] : table) {
        vui.aspect_ratio_idc = static_cast<std::uint8_t>(idc);
        EXPECT_EQ(sample_aspect_ratio(vui).numerator, width) << idc;
        EXPECT_EQ(sample_aspect_ratio(vui).denominator, height) << idc;
    }
    for (const int idc : {0, 17, 254}) {
        vui.aspect_ratio_idc = static_cast<std::uint8_t>(idc);
        EXPECT_EQ(sample_aspect_ratio(vui).numerator, 0U) << idc;
        EXPECT_EQ(sample_aspect_ratio(vui).denominator, 0U) << idc;
    }
    vui.aspect_ratio_idc = 255;
    EXPECT_EQ(sample_aspect_ratio(vui).numerator, 7U);
    EXPECT_EQ(sample_aspect_ratio(vui).denominator, 5U);
    vui.sar_height = 0;
    EXPECT_EQ(sample_aspect_ratio(vui).numerator, 0U);
}

TEST(Derived, RatesAreUnspecifiedWhereOnePartIsZero)
{
    vui_parameters vui;
    vui.time_scale = 60000;
    EXPECT_EQ(field_rate(vui).numerator, 0U);
    vui.num_units_in_tick = 0xFFFFFFFF;
    EXPECT_EQ(field_rate(vui).numerator, 60000U);
    EXPECT_EQ(field_rate(vui).denominator, 0xFFFFFFFFU);
    EXPECT_EQ(frame_rate(vui).denominator, 2 * std::uint64_t{0xFFFFFFFF});
    vui.time_scale = 0;
    EXPECT_EQ(frame_rate(vui).denominator, 0U);
}

TEST(Derived, LimitsAreThoseOfTableA1RowByRow)
{
    struct row {
        int level_idc;
        level_limits limits;
    };
    // set from Table A-1 on its own, MaxDpbMbs from the older MaxDPB: 1024 * MaxDPB / 384
    constexpr row table[] = {
        {10, {"1", 1485, 99, 396, 64, 175, 64, 2, 0}},
        {9, {"1b", 1485, 99, 396, 128, 350, 64, 2, 0}},
        {11, {"1.1", 3000, 396, 900, 192, 500, 128, 2, 0}},
        {12, {"1.2", 6000, 396, 2376, 384, 1000, 128, 2, 0}},
        {13, {"1.3", 11880, 396, 2376, 768, 2000, 128, 2, 0}},
        {20, {"2", 11880, 396, 2376, 2000, 2000, 128, 2, 0}},
        {21, {"2.1", 19800, 792, 4752, 4000, 4000, 256, 2, 0}},
        {22, {"2.2", 20250, 1620, 8100, 4000, 4000, 256, 2, 0}},
        {30, {"3", 40500, 1620, 8100, 10000, 10000, 256, 2, 32}},
        {31, {"3.1", 108000, 3600, 18000, 14000, 14000, 512, 4, 16}},
        {32, {"3.2", 216000, 5120, 20480, 20000, 20000, 512, 4, 16}},
        {40, {"4", 245760, 8192, 32768, 20000, 25000, 512, 4, 16}},
        {41, {"4.1", 245760, 8192, 32768, 50000, 62500, 512, 2, 16}},
        {42, {"4.2", 522240, 8704, 34816, 50000, 62500, 512, 2, 16}},
        {50, {"5", 589824, 22080, 110400, 135000, 135000, 512, 2, 16}},
        {51, {"5.1", 983040, 36864, 184320, 240000, 240000, 512, 2, 16}},
        {52, {"5.2", 2073600, 36864, 184320, 240000, 240000, 512, 2, 16}},
        {60, {"6", 4177920, 139264, 696320, 240000, 240000, 8192, 2, 16}},
        {61, {"6.1", 8355840, 139264, 696320, 480000, 480000, 8192, 2, 16}},
        {62, {"6.2", 16711680, 139264, 696320, 800000, 800000, 8192, 2, 16}},
    };
    for (int level_idc = 0; level_idc < 256; ++level_idc) {
        const level_limits* const found = limits_of_level(of_level(level_idc));
        const auto* const known =
            std::find_if(std::begin(table), std::end(table), [=](const row& r) { return r.level_idc == level_idc; });
        ASSERT_EQ(found != nullptr, known != std::end(table)) << level_idc;
        if (found == nullptr)
            continue;
        const level_limits& row = known->limits;
        EXPECT_STREQ(found->name, row.name);
        EXPECT_EQ(found->MaxMBPS, row.MaxMBPS) << row.name;
        EXPECT_EQ(found->MaxFS, row.MaxFS) << row.name;
        EXPECT_EQ(found->MaxDpbMbs, row.MaxDpbMbs) << row.name;
        EXPECT_EQ(found->MaxBR, row.MaxBR) << row.name;
        EXPECT_EQ(found->MaxCPB, row.MaxCPB) << row.name;
        EXPECT_EQ(found->MaxVmvR, row.MaxVmvR) << row.name;
        EXPECT_EQ(found->MinCR, row.MinCR) << row.name;
        EXPECT_EQ(found->MaxMvsPer2Mb, row.MaxMvsPer2Mb) << row.name;
    }
}

// A.3.1 and A.3.2: level_idc 11 with constraint_set3_flag in the three old profiles, level_idc 9 in the others
TEST(Derived, LevelOneBIsToldInTwoWays)
{
    for (const int profile_idc : {66, 77, 88, 100, 110, 122, 244, 44, 118, 128}) {
        seq_parameter_set_data sps = of_level(11, profile_idc);
        EXPECT_STREQ(limits_of_level(sps)->name, "1.1") << profile_idc;
        sps.constraint_set3_flag = true;
        EXPECT_STREQ(limits_of_level(sps)->name,
                     profile_idc == 66 || profile_idc == 77 || profile_idc == 88 ? "1b" : "1.1")
            << profile_idc;
        sps.level_idc = 9;
        EXPECT_STREQ(limits_of_level(sps)->name, "1b") << profile_idc;
    }
}

TEST(Derived, DpbFramesAreThoseThatTheLevelHolds)
{
    seq_parameter_set_data sps = sps_data(0, 22, 18); // CIF in level 3: 8100 / 396
    EXPECT_EQ(MaxDpbFrames(sps), 16U);
    sps = sps_data(0, 45, 36);
    EXPECT_EQ(MaxDpbFrames(sps), 5U);
    sps.frame_mbs_only_flag = false;
    EXPECT_EQ(MaxDpbFrames(sps), 2U);
    sps.pic_width_in_mbs_minus1 = 0xFFFFFFFE;
    EXPECT_EQ(MaxDpbFrames(sps), 0U);
    sps.level_idc = 99;
    EXPECT_EQ(MaxDpbFrames(sps), 16U);
}

TEST(Derived, NothingIsReorderedInTheIntraProfilesAlone)
{
    const auto inferred = [](int profile_idc, bool constraint_set3_flag) {
        seq_parameter_set_data sps = sps_data(0, 45, 36);
        sps.profile_idc = static_cast<std::uint8_t>(profile_idc);
        sps.constraint_set3_flag = constraint_set3_flag;
        return inferred_reorder_frames(sps);
    };
    for (const int profile_idc : {44, 86, 100, 110, 122, 244}) {
        EXPECT_EQ(inferred(profile_idc, false), 5U) << profile_idc;
        EXPECT_EQ(inferred(profile_idc, true), 0U) << profile_idc;
    }
    for (const int profile_idc : {66, 77, 88, 83, 118, 128, 138})
        EXPECT_EQ(inferred(profile_idc, true), 5U) << profile_idc;
}

TEST(Derived, MaxFrameNumAndTheLengthsFollowTheirLogarithms)
{
    seq_parameter_set_data sps = sps_data();
    EXPECT_EQ(MaxFrameNum(sps), 16U);
    sps.log2_max_frame_num_minus4 = 12;
    sps.log2_max_pic_order_cnt_lsb_minus4 = 5;
    EXPECT_EQ(MaxFrameNum(sps), 65536U);
    EXPECT_EQ(frame_num_bits(sps), 16U);
    EXPECT_EQ(pic_order_cnt_lsb_bits(sps), 9U);
    sps.log2_max_frame_num_minus4 = 0xFFFFFFFE;
    EXPECT_EQ(MaxFrameNum(sps), std::uint64_t{1} << 32);
    EXPECT_EQ(frame_num_bits(sps), std::uint64_t{0xFFFFFFFE} + 4);
}

TEST(Derived, TheRateAndTheSizeOfAScheduleAreScaledAndDoNotWrap)
{
    hrd_parameters hrd;
    hrd.cpb_cnt_minus1 = 1;
    hrd.bit_rate_scale = 2;
    hrd.cpb_size_scale = 3;
    hrd.bit_rate_value_minus1[0] = 999;
    hrd.cpb_size_value_minus1[0] = 499;
    hrd.bit_rate_value_minus1[1] = hrd.cpb_size_value_minus1[1] = 0xFFFFFFFE;
    EXPECT_EQ(schedule_count(hrd), 2U);
    EXPECT_EQ(BitRate(hrd, 0), 256000U);
    EXPECT_EQ(CpbSize(hrd, 0), 64000U);
    hrd.bit_rate_scale = hrd.cpb_size_scale = 15;
    EXPECT_EQ(BitRate(hrd, 1), std::uint64_t{0xFFFFFFFF} << 21);
    EXPECT_EQ(CpbSize(hrd, 1), std::uint64_t{0xFFFFFFFF} << 19);
    hrd.cpb_cnt_minus1 = 0xFFFFFFFF;
    EXPECT_EQ(schedule_count(hrd), 32U) << "no more than there is room for";
}

TEST(Derived, TimingTakesTheNalHrdBeforeThatOfTheVcl)
{
    vui_parameters vui;
    EXPECT_EQ(timing_hrd(vui), nullptr);
    vui.vcl_hrd_parameters_present_flag = true;
    EXPECT_EQ(timing_hrd(vui), &vui.vcl_hrd_parameters);
    vui.nal_hrd_parameters_present_flag = true;
    EXPECT_EQ(timing_hrd(vui), &vui.nal_hrd_parameters);
}

} // namespace
