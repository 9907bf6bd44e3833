#include "names.h"

#include "framing.h"

#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <string>

namespace {

struct profile_case {
    std::uint8_t profile_idc;
    int constraint_set; // the flag that is 1, or -1
    const char* name;
};

brenik::h264_nal_sps sps_of(const profile_case& c)
{
    brenik::h264_nal_sps sps;
    sps.profile_idc = c.profile_idc;
    sps.constraint_set1_flag = c.constraint_set == 1;
    sps.constraint_set3_flag = c.constraint_set == 3;
    sps.constraint_set4_flag = c.constraint_set == 4;
    return sps;
}

TEST(Names, ProfilesAndWhatTheConstraintFlagsMakeOfThem)
{
    const profile_case cases[] = {
        {66, -1, "Baseline"},
        {66, 1, "Constrained Baseline"},
        {77, 1, "Main"},
        {88, -1, "Extended"},
        {100, -1, "High"},
        {100, 4, "Progressive High"},
        {110, -1, "High 10"},
        {110, 3, "High 10 Intra"},
        {122, -1, "High 4:2:2"},
        {122, 3, "High 4:2:2 Intra"},
        {244, -1, "High 4:4:4 Predictive"},
        {244, 3, "High 4:4:4 Intra"},
        {44, -1, "CAVLC 4:4:4 Intra"},
        {83, -1, "Scalable Baseline"},
        {118, -1, "Multiview High"},
        {128, -1, "Stereo High"},
        {1, -1, ""},
    };
    for (const profile_case& c : cases)
        EXPECT_EQ(orv_h264::profile_name(sps_of(c)), c.name) << int{c.profile_idc} << " " << c.constraint_set;
    brenik::h264_nal_sps constrained_high = sps_of({100, 4, ""});
    constrained_high.constraint_set5_flag = true;
    EXPECT_EQ(orv_h264::profile_name(constrained_high), "Constrained High");
}

TEST(Names, LevelsAreTenthsAnd1b)
{
    brenik::h264_nal_sps sps;
    sps.profile_idc = 66;
    sps.level_idc = 40;
    EXPECT_EQ(orv_h264::level_name(sps), "4");
    sps.level_idc = 31;
    EXPECT_EQ(orv_h264::level_name(sps), "3.1");
    sps.level_idc = 11;
    EXPECT_EQ(orv_h264::level_name(sps), "1.1");
    sps.constraint_set3_flag = true;
    EXPECT_EQ(orv_h264::level_name(sps), "1b");
    sps.profile_idc = 100;
    EXPECT_EQ(orv_h264::level_name(sps), "1.1");
    sps.level_idc = 9;
    EXPECT_EQ(orv_h264::level_name(sps), "1b");
}

TEST(Names, NumbersOfTheTables)
{
    EXPECT_EQ(orv_h264::chroma_format_name(0), "monochrome");
    EXPECT_EQ(orv_h264::chroma_format_name(3), "4:4:4");
    EXPECT_EQ(orv_h264::chroma_format_name(4), "");
    EXPECT_EQ(orv_h264::colour_primaries_name(9), "BT.2020");
    EXPECT_EQ(orv_h264::colour_primaries_name(3), "");
    EXPECT_EQ(orv_h264::transfer_characteristics_name(18), "ARIB STD-B67 (HLG)");
    EXPECT_EQ(orv_h264::transfer_characteristics_name(0), "");
    EXPECT_EQ(orv_h264::matrix_coefficients_name(0), "Identity");
    EXPECT_EQ(orv_h264::matrix_coefficients_name(3), "");
}

TEST(Names, SampleAspectRatios)
{
    brenik::h264_vui_parameters vui;
    EXPECT_EQ(orv_h264::sample_aspect_ratio_name(vui), "Unspecified");
    vui.aspect_ratio_idc = 17;
    EXPECT_EQ(orv_h264::sample_aspect_ratio_name(vui), "");
    vui.aspect_ratio_idc = 2;
    vui.sar_width = 12;
    vui.sar_height = 11;
    EXPECT_EQ(orv_h264::sample_aspect_ratio_name(vui), "12:11");
}

TEST(Names, TheCodecStringHasProfileConstraintsAndLevelInHex)
{
    brenik::h264_nal_sps sps;
    sps.profile_idc = 100;
    sps.level_idc = 40;
    EXPECT_EQ(orv_h264::codec_string(sps), "avc1.640028");
    bool* const flags[] = {&sps.constraint_set0_flag, &sps.constraint_set1_flag, &sps.constraint_set2_flag,
                           &sps.constraint_set3_flag, &sps.constraint_set4_flag, &sps.constraint_set5_flag};
    const char* const constraints[] = {"80", "40", "20", "10", "08", "04"};
    for (std::size_t i = 0; i < std::size(flags); ++i) {
        *flags[i] = true;
        EXPECT_EQ(orv_h264::codec_string(sps), std::string("avc1.64") + constraints[i] + "28");
        *flags[i] = false;
    }
    sps.reserved_zero_2bits = 3;
    sps.profile_idc = 9;
    sps.level_idc = 1;
    EXPECT_EQ(orv_h264::codec_string(sps), "avc1.090301");
}

TEST(Names, EveryUnitTypeHasAWord)
{
    std::set<std::string> words;
    for (unsigned int type = 0; type < 32; ++type)
        words.insert(orv_h264::short_unit_name(static_cast<brenik::h264_nal_unit_type>(type)));
    EXPECT_EQ(words.size(), 32U) << "each another";
    EXPECT_TRUE(words.contains("slice IDR"));
    EXPECT_TRUE(words.contains("SPS"));
    EXPECT_TRUE(words.contains("type-24"));
}

TEST(Names, FramingsAreThoseOfTheCommandLine)
{
    EXPECT_EQ(orv_h264::framing_name(orv_h264::h264::framing::annex_b), "annexb");
    EXPECT_EQ(orv_h264::framing_name(orv_h264::h264::framing::length_1), "length1");
    EXPECT_EQ(orv_h264::framing_name(orv_h264::h264::framing::length_4), "length4");
}

} // namespace
