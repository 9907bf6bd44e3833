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

TEST(Sps, ANewSpsIsZeroEmptyAndInvalid)
{
    for (const support::value& field : fields_of(h264_nal_sps{}).values)
        EXPECT_EQ(support::value{}, field);
}

TEST(Sps, EveryElementIsReadIntoItsField)
{
    const auto writer = written_rbsp(full_sps());
    const parsed_sps p(writer);
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->valid);
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
    EXPECT_EQ(244, p->profile_idc);
    EXPECT_TRUE(p->constraint_set0_flag && p->constraint_set2_flag && p->constraint_set3_flag);
    EXPECT_FALSE(p->constraint_set1_flag || p->constraint_set4_flag || p->constraint_set5_flag);
    EXPECT_EQ(2, p->reserved_zero_2bits);
    EXPECT_EQ(41, p->level_idc);
    EXPECT_EQ(7U, p->seq_parameter_set_id);
    EXPECT_EQ(3U, p->chroma_format_idc);
    EXPECT_TRUE(p->separate_colour_plane_flag);
    EXPECT_EQ(2U, p->bit_depth_luma_minus8);
    EXPECT_EQ(4U, p->bit_depth_chroma_minus8);
    EXPECT_TRUE(p->qpprime_y_zero_transform_bypass_flag && p->seq_scaling_matrix_present_flag);
    EXPECT_EQ(9U, p->log2_max_frame_num_minus4);
    EXPECT_EQ(1U, p->pic_order_cnt_type);
    EXPECT_EQ(0U, p->log2_max_pic_order_cnt_lsb_minus4);
    EXPECT_TRUE(p->delta_pic_order_always_zero_flag);
    EXPECT_EQ(-3, p->offset_for_non_ref_pic);
    EXPECT_EQ(5, p->offset_for_top_to_bottom_field);
    EXPECT_EQ(5U, p->num_ref_frames_in_pic_order_cnt_cycle);
    EXPECT_EQ((std::vector<std::int32_t>{2, -7, 2147483647, -2147483647, 0}), p->offset_for_ref_frame);
    EXPECT_EQ(6U, p->max_num_ref_frames);
    EXPECT_TRUE(p->gaps_in_frame_num_value_allowed_flag);
    EXPECT_EQ(119U, p->pic_width_in_mbs_minus1);
    EXPECT_EQ(33U, p->pic_height_in_map_units_minus1);
    EXPECT_FALSE(p->frame_mbs_only_flag);
    EXPECT_TRUE(p->mb_adaptive_frame_field_flag && p->direct_8x8_inference_flag && p->frame_cropping_flag);
    EXPECT_EQ(11U, p->frame_crop_left_offset);
    EXPECT_EQ(12U, p->frame_crop_right_offset);
    EXPECT_EQ(13U, p->frame_crop_top_offset);
    EXPECT_EQ(14U, p->frame_crop_bottom_offset);
    EXPECT_TRUE(p->vui_parameters_present_flag && p->vui.valid);
    EXPECT_EQ(13U, p->vui.max_dec_frame_buffering);
    EXPECT_TRUE(p->high_profile_syntax_present);
    EXPECT_EQ(1U, p->SubWidthC);
    EXPECT_EQ(1U, p->SubHeightC);
}

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

TEST(Sps, BaselineAndMainAre420)
{
    for (const unsigned int profile_idc : {66U, 77U, 88U}) {
        sps_description sps;
        sps.profile_idc = profile_idc;
        const parsed_sps p(written_rbsp(sps));
        EXPECT_TRUE(p.result);
        EXPECT_EQ(1U, p->chroma_format_idc);
        EXPECT_EQ(2U, p->SubWidthC);
        EXPECT_EQ(2U, p->SubHeightC);
        EXPECT_FALSE(p->high_profile_syntax_present);
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

TEST(Sps, OnlyChromaFormat3HasSeparateColourPlanes)
{
    for (const std::uint32_t chroma_format_idc : {0U, 1U, 2U, 3U, 4U}) {
        sps_description sps = high_sps(chroma_format_idc);
        sps.separate_colour_plane_flag = true;
        EXPECT_EQ(chroma_format_idc == 3, parsed_sps(written_rbsp(sps))->separate_colour_plane_flag);
        h264_nal_sps before;
        before.separate_colour_plane_flag = true;
        sps.separate_colour_plane_flag = false;
        EXPECT_EQ(chroma_format_idc != 3, parsed_sps(written_rbsp(sps), before)->separate_colour_plane_flag);
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

TEST(Sps, TypeZeroReadsTheLengthOfThePictureOrderCountOnly)
{
    sps_description sps;
    sps.log2_max_pic_order_cnt_lsb_minus4 = 12;
    const parsed_sps p(written_rbsp(sps));
    EXPECT_EQ(12U, p->log2_max_pic_order_cnt_lsb_minus4);
    EXPECT_EQ(10U, p->pic_width_in_mbs_minus1);
    EXPECT_TRUE(p.result);
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

TEST(Sps, AFieldPictureFlagIsReadWithoutFrameMbsOnly)
{
    for (const bool frame_mbs_only_flag : {false, true})
        for (const bool before : {false, true}) {
            sps_description sps;
            sps.frame_mbs_only_flag = frame_mbs_only_flag;
            sps.mb_adaptive_frame_field_flag = !before;
            h264_nal_sps object;
            object.mb_adaptive_frame_field_flag = before;
            const parsed_sps p(written_rbsp(sps), object);
            EXPECT_TRUE(p.result);
            EXPECT_EQ(frame_mbs_only_flag ? before : !before, p->mb_adaptive_frame_field_flag);
        }
}

TEST(Sps, SingleFlagsAreReadByThemselves)
{
    for (unsigned int flags = 0; flags < 16; ++flags) {
        sps_description sps = high_sps();
        sps.qpprime_y_zero_transform_bypass_flag = (flags & 1) != 0;
        sps.gaps_in_frame_num_value_allowed_flag = (flags & 2) != 0;
        sps.direct_8x8_inference_flag = (flags & 4) != 0;
        sps.pic_order_cnt_type = 1;
        sps.delta_pic_order_always_zero_flag = (flags & 8) != 0;
        const parsed_sps p(written_rbsp(sps));
        EXPECT_EQ((flags & 1) != 0, p->qpprime_y_zero_transform_bypass_flag);
        EXPECT_EQ((flags & 2) != 0, p->gaps_in_frame_num_value_allowed_flag);
        EXPECT_EQ((flags & 4) != 0, p->direct_8x8_inference_flag);
        EXPECT_EQ((flags & 8) != 0, p->delta_pic_order_always_zero_flag);
    }
}

TEST(Sps, ACopyIsDeep)
{
    const h264_nal_sps original = full();
    h264_nal_sps copy = original;
    EXPECT_EQ(fields_of(original), fields_of(copy));
    copy.offset_for_ref_frame[0] = 99;
    copy.scaling_list_4x4[0].values[0] = 99;
    copy.scaling_list_8x8[5].values.clear();
    copy.vui.nal_hrd.bit_rate_value_minus1.clear();
    copy.vui.vcl_hrd.cbr_flag.flip();
    EXPECT_EQ("", difference(fields_of(full()), fields_of(original)));
}
