#include <orv-utils-v4/h264/nal_sps.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/sps_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <vector>

namespace {

using brenik::h264_nal_sps;
using support::fields_of;
using support::full_sps;
using support::high_sps;
using support::sps_description;
using support::with_valid;
using support::written_rbsp;
using parsed_sps = support::parsed<h264_nal_sps>;

h264_nal_sps full(bool valid = true)
{
    return with_valid(valid, parsed_sps(written_rbsp(full_sps())).object);
}

} // namespace

TEST(Sps, EachConstraintFlagAndEveryReservedValueIsKept)
{
    for (unsigned int bits = 0; bits < 256; ++bits) {
        sps_description sps;
        sps.constraint_set_flags = bits >> 2;
        sps.reserved_zero_2bits = bits & 3;
        const parsed_sps p(written_rbsp(sps));
        EXPECT_TRUE(p.result);
        EXPECT_EQ((bits & 0x80) != 0, p->constraint_set0_flag);
        EXPECT_EQ((bits & 0x40) != 0, p->constraint_set1_flag);
        EXPECT_EQ((bits & 0x20) != 0, p->constraint_set2_flag);
        EXPECT_EQ((bits & 0x10) != 0, p->constraint_set3_flag);
        EXPECT_EQ((bits & 0x08) != 0, p->constraint_set4_flag);
        EXPECT_EQ((bits & 0x04) != 0, p->constraint_set5_flag);
        EXPECT_EQ(bits & 3, p->reserved_zero_2bits);
    }
}

TEST(Sps, ExactlyThirteenProfilesTellTheChromaFormat)
{
    const std::set<unsigned int> high = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135};
    for (unsigned int profile_idc = 0; profile_idc < 256; ++profile_idc) {
        sps_description sps = high_sps(2);
        sps.profile_idc = profile_idc;
        sps.high_profile_syntax = high.contains(profile_idc);
        const auto writer = written_rbsp(sps);
        const parsed_sps p(writer);
        EXPECT_TRUE(p.result) << profile_idc;
        EXPECT_EQ(profile_idc, p->profile_idc);
        EXPECT_EQ(sps.high_profile_syntax, p->high_profile_syntax_present) << profile_idc;
        EXPECT_EQ(sps.high_profile_syntax ? 2U : 1U, p->chroma_format_idc) << profile_idc;
        EXPECT_EQ(sps.high_profile_syntax ? 1U : 2U, p->SubHeightC) << profile_idc;
        EXPECT_EQ(10U, p->pic_width_in_mbs_minus1) << profile_idc;
        EXPECT_EQ(writer.size_in_bits(), p.consumed()) << profile_idc;
    }
}

TEST(Sps, TheChromaFormatSaysTheSubsampling)
{
    struct {
        std::uint32_t chroma_format_idc, SubWidthC, SubHeightC;
    } const cases[] = {{0, 1, 1}, {1, 2, 2}, {2, 2, 1},   {3, 1, 1},     {4, 1, 1},
                       {5, 1, 1}, {9, 1, 1}, {256, 1, 1}, {65537, 1, 1}, {4294967294, 1, 1}};
    for (const auto& c : cases)
        for (const bool separate_colour_plane_flag : {false, true}) {
            sps_description sps = high_sps(c.chroma_format_idc);
            sps.separate_colour_plane_flag = separate_colour_plane_flag;
            h264_nal_sps before;
            before.SubWidthC = before.SubHeightC = 7;
            const parsed_sps p(written_rbsp(sps), before);
            EXPECT_TRUE(p.result) << c.chroma_format_idc;
            EXPECT_EQ(c.chroma_format_idc, p->chroma_format_idc);
            EXPECT_EQ(c.SubWidthC, p->SubWidthC) << c.chroma_format_idc;
            EXPECT_EQ(c.SubHeightC, p->SubHeightC) << c.chroma_format_idc;
        }
}

TEST(Sps, FieldsThatAreNotSentKeepTheirValues)
{
    const parsed_sps p(written_rbsp(sps_description()), full());
    EXPECT_TRUE(p.result);
    h264_nal_sps expected = full();
    expected.profile_idc = 66;
    expected.constraint_set0_flag = expected.constraint_set2_flag = expected.constraint_set3_flag = false;
    expected.reserved_zero_2bits = 0;
    expected.level_idc = 30;
    expected.seq_parameter_set_id = 0;
    expected.chroma_format_idc = 1;
    expected.SubWidthC = expected.SubHeightC = 2;
    expected.log2_max_frame_num_minus4 = 0;
    expected.pic_order_cnt_type = 0;
    expected.max_num_ref_frames = 1;
    expected.gaps_in_frame_num_value_allowed_flag = false;
    expected.pic_width_in_mbs_minus1 = 10;
    expected.pic_height_in_map_units_minus1 = 8;
    expected.frame_mbs_only_flag = true;
    expected.frame_cropping_flag = false;
    expected.vui_parameters_present_flag = false;
    EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
    EXPECT_TRUE(p->high_profile_syntax_present);
}

TEST(Sps, OtherTypesReadNothingForThePictureOrderCount)
{
    for (const std::uint32_t type : {2U, 3U, 5U, 255U, 256U, 4294967294U}) {
        sps_description sps;
        sps.pic_order_cnt_type = type;
        h264_nal_sps before;
        before.log2_max_pic_order_cnt_lsb_minus4 = 3;
        before.offset_for_ref_frame = {4};
        const auto writer = written_rbsp(sps);
        const parsed_sps p(writer, before);
        EXPECT_TRUE(p.result) << type;
        EXPECT_EQ(type, p->pic_order_cnt_type);
        EXPECT_EQ(3U, p->log2_max_pic_order_cnt_lsb_minus4);
        EXPECT_EQ(std::vector<std::int32_t>{4}, p->offset_for_ref_frame);
        EXPECT_EQ(10U, p->pic_width_in_mbs_minus1);
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(Sps, APictureOrderCountCycleOfUpTo128FramesIsAccepted)
{
    for (const std::size_t count : {0U, 1U, 2U, 127U, 128U}) {
        sps_description sps;
        sps.pic_order_cnt_type = 1;
        for (std::size_t i = 0; i < count; ++i)
            sps.offset_for_ref_frame.push_back(static_cast<std::int32_t>(i) * 7 - 400);
        const auto writer = written_rbsp(sps);
        const parsed_sps p(writer, full(false));
        EXPECT_TRUE(p.result) << count;
        EXPECT_TRUE(p->valid) << count;
        EXPECT_EQ(count, p->num_ref_frames_in_pic_order_cnt_cycle);
        EXPECT_EQ(sps.offset_for_ref_frame, p->offset_for_ref_frame) << count;
        EXPECT_EQ(writer.size_in_bits(), p.consumed()) << count;
    }
}

TEST(Sps, APictureOrderCountCycleAbove128IsRefusedAndValidKeepsItsValue)
{
    for (const std::uint32_t count : {129U, 255U, 256U, 0x80000000U, 0xFFFFFFFEU})
        for (const bool valid : {false, true}) {
            sps_description sps;
            sps.pic_order_cnt_type = 1;
            sps.offset_for_non_ref_pic = 70;
            sps.num_ref_frames_in_pic_order_cnt_cycle = count;
            sps.offset_for_ref_frame = std::vector<std::int32_t>(129, 1);
            sps.max_num_ref_frames = 3;
            const auto writer = written_rbsp(sps);
            const parsed_sps p(writer, full(valid));
            EXPECT_FALSE(p.result) << count;
            EXPECT_EQ(valid, p->valid) << count;
            EXPECT_EQ(count, p->num_ref_frames_in_pic_order_cnt_cycle);
            EXPECT_EQ(full().offset_for_ref_frame, p->offset_for_ref_frame);
            EXPECT_EQ(70, p->offset_for_non_ref_pic);
            EXPECT_EQ(2U, p->SubWidthC);
            EXPECT_EQ(full().max_num_ref_frames, p->max_num_ref_frames);
            for (const support::element& e : writer.elements())
                if (e.name == "offset_for_ref_frame" && e.entry == 0) {
                    EXPECT_EQ(e.position, p.consumed()) << count;
                }
        }
}
