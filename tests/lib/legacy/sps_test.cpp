// seq_parameter_set_data() of the legacy interface, but for the VUI parameters.
#include "support/legacy_parse.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace {

using support::bit_writer;
using support::difference_of;
using support::element_writer;
using support::end_of;
using support::full_legacy_sps;
using support::high_sps;
using support::open_bits;
using support::parsed_legacy_sps;
using support::sps_description;
using support::written;

/// The fields that are not 0.
std::string set_fields(const h264_sps& seq)
{
    const support::named_values fields = support::fields_of(seq);
    std::string text;
    for (const std::string& name : fields.names->in_order)
        if (fields.at(name).number != 0)
            text += name + ' ' + std::to_string(fields.at(name).number) + ", ";
    return text;
}

/// Skips a list of `size` entries; the bits consumed.
std::size_t skip_list(const bit_writer& writer, unsigned int size)
{
    open_bits open(writer);
    h264_sps sps = support::numbered_sps();
    const support::named_values before = support::fields_of(sps);
    sps.discard_h264_video_scaling_matrix_list_because_nobody_fucking_cares(open.bf, size);
    EXPECT_EQ("", support::difference(before, support::fields_of(sps)));
    return open.consumed();
}

bit_writer list_bits(const std::vector<std::int32_t>& deltas)
{
    bit_writer writer;
    writer.flag(true);
    for (const std::int32_t delta : deltas)
        writer.se(delta);
    return writer;
}

/// Parses an SPS with these lists, and expects its end and what stands behind the lists.
void expect_skipped(std::uint32_t chroma_format_idc, const support::scaling_matrix& lists)
{
    sps_description seq = high_sps(chroma_format_idc);
    seq.scaling_lists = lists;
    seq.log2_max_frame_num_minus4 = 5;
    seq.vui.emplace().pic_struct_present_flag = true;
    const element_writer writer = written(seq);
    const parsed_legacy_sps p(writer);
    EXPECT_EQ(1, p->seq_scaling_matrix_present_flag);
    EXPECT_EQ(9, p->log2_max_frame_num);
    EXPECT_EQ(1, p->pic_struct_present_flag);
    EXPECT_EQ(support::end_of(writer, "vui.pic_struct_present_flag"), p.consumed());
}

} // namespace

TEST(LegacySps, ResetZeroesEveryField)
{
    h264_sps sps = support::numbered_sps();
    for (const support::value& field : support::fields_of(sps).values)
        EXPECT_NE(0, field.number);
    sps.reset();
    EXPECT_EQ("", difference_of(h264_sps(), sps));
}

TEST(LegacySps, EveryElementIsReadIntoItsField)
{
    const element_writer writer = written(full_legacy_sps());
    const parsed_legacy_sps p(writer);
    EXPECT_EQ("gaps_in_frame_num_value_allowed_flag 1, qprime_y_zero_transform_bypass_flag 1, "
              "delta_pic_order_always_zero_flag 1, seq_scaling_matrix_present_flag 1, separate_colour_plane_flag 1, "
              "pic_height_in_map_units 34, constraint_set0_flag 1, constraint_set2_flag 1, constraint_set3_flag 1, "
              "reserved_zero_2bits 2, seq_parameter_set_id 7, max_num_ref_frames 6, pic_order_cnt_type 1, "
              "chroma_format_idc 3, pic_width_in_mbps 120, bit_depth_chroma 12, bit_depth_luma 10, "
              "log2_max_frame_num 13, max_frame_num 8192, profile_idc 244, level_idc 41, "
              "mb_adaptive_frame_field_flag 1, direct_8x8_inference_flag 1, frame_cropping_flag 1, "
              "frame_crop_left_offset 11, frame_crop_right_offset 12, frame_crop_top_offset 13, "
              "frame_crop_bottom_offset 14, vui_parameters_present_flag 1, aspect_ratio_info_present_flag 1, "
              "aspect_ratio_idc 255, sar_width 40000, sar_height 33, overscan_info_present_flag 1, "
              "overscan_info_appropriate_flag 1, video_signal_type_present_flag 1, video_format 2, "
              "video_full_range_flag 1, colour_description_present_flag 1, colour_primaries 9, "
              "transfer_characteristics 16, matrix_coefficients 200, chroma_location_info_present_flag 1, "
              "chroma_sample_location_type_top_field 3, chroma_sample_location_type_bottom_field 4, "
              "timing_info_present_flag 1, num_units_in_ticks 2147483649, time_scale 4294967295, "
              "fixed_frame_rate_flag 1, nal_hrd_parameters_present_flag 1, vcl_hrd_parameters_present_flag 1, "
              "low_delay_hrd_flag 1, pic_struct_present_flag 1, initial_cpb_removal_delay_length 2, "
              "cpb_removal_delay_length 3, dpb_output_delay_length 5, time_offset_length 31, ",
              set_fields(p.object));
    EXPECT_EQ(end_of(writer, "vui.pic_struct_present_flag"), p.consumed());
}

TEST(LegacySps, ExactlyNineProfilesTellTheChromaFormat)
{
    const std::set<unsigned int> telling = {100, 110, 122, 244, 44, 83, 86, 118, 128};
    for (unsigned int profile_idc = 0; profile_idc < 256; ++profile_idc) {
        sps_description seq = high_sps(2);
        seq.profile_idc = profile_idc;
        seq.bit_depth_luma_minus8 = 1;
        seq.bit_depth_chroma_minus8 = 2;
        seq.qpprime_y_zero_transform_bypass_flag = true;
        seq.high_profile_syntax = telling.contains(profile_idc);
        const element_writer writer = written(seq);
        const parsed_legacy_sps p(writer);
        EXPECT_EQ(seq.high_profile_syntax ? 2U : 0U, p->chroma_format_idc) << profile_idc;
        EXPECT_EQ(seq.high_profile_syntax ? 9U : 0U, p->bit_depth_luma) << profile_idc;
        EXPECT_EQ(seq.high_profile_syntax ? 10U : 0U, p->bit_depth_chroma) << profile_idc;
        EXPECT_EQ(seq.high_profile_syntax ? 1 : 0, p->qprime_y_zero_transform_bypass_flag) << profile_idc;
        EXPECT_EQ(writer.size_in_bits(), p.consumed()) << profile_idc;
    }
}

TEST(LegacySps, TheNumberOfFramesIsAShiftByFiveBits)
{
    struct {
        std::uint32_t minus4;
        std::uint8_t log2;
        std::uint32_t number;
    } const cases[] = {{0, 4, 16},  {12, 16, 65536},       {27, 31, 2147483648},   {28, 32, 1},
                       {30, 34, 4}, {247, 251, 134217728}, {251, 255, 2147483648}, {252, 0, 1},
                       {253, 1, 2}, {255, 3, 8},           {256, 4, 16},           {16777214, 2, 4}};
    for (const auto& c : cases) {
        sps_description seq;
        seq.log2_max_frame_num_minus4 = c.minus4;
        const parsed_legacy_sps p(written(seq));
        EXPECT_EQ(c.log2, p->log2_max_frame_num) << c.minus4;
        EXPECT_EQ(c.number, p->max_frame_num) << c.minus4;
    }
}

TEST(LegacySps, TypeOneIsReadAndItsOffsetsDropped)
{
    for (const std::size_t frames : {0U, 1U, 128U, 129U, 255U, 256U, 1000U}) {
        sps_description seq;
        seq.pic_order_cnt_type = 1;
        seq.delta_pic_order_always_zero_flag = true;
        seq.offset_for_non_ref_pic = -8388607;
        seq.offset_for_top_to_bottom_field = 8388607;
        for (std::size_t i = 0; i < frames; ++i)
            seq.offset_for_ref_frame.push_back(static_cast<std::int32_t>(i * 17 % 4001) - 2000);
        seq.max_num_ref_frames = 9;
        const element_writer writer = written(seq);
        const parsed_legacy_sps p(writer);
        EXPECT_EQ(1, p->delta_pic_order_always_zero_flag);
        EXPECT_EQ(0, p->max_pic_order_cnt_lsb);
        EXPECT_EQ(9, p->max_num_ref_frames);
        EXPECT_EQ(11U, p->pic_width_in_mbps);
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(LegacySps, OtherTypesReadNothingForThePictureOrderCount)
{
    for (const std::uint32_t type : {2U, 3U, 255U, 258U}) {
        sps_description seq;
        seq.pic_order_cnt_type = type;
        const element_writer writer = written(seq);
        const parsed_legacy_sps p(writer);
        EXPECT_EQ(type % 256, p->pic_order_cnt_type);
        EXPECT_EQ(0, p->max_pic_order_cnt_lsb);
        EXPECT_EQ(1, p->max_num_ref_frames);
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(LegacySps, TheLowByteOfTheTypeSaysWhatFollows)
{
    // profile, flags and level; the id, log2_max_frame_num_minus4, and a type whose low byte is 0 or 1
    support::bit_writer zero;
    zero.u(8, 66).u(8, 0).u(8, 30).ue(0).ue(0).ue(256).ue(5).ue(2).flag(true).ue(10).ue(8).u(3, 0b110).flag(false);
    const parsed_legacy_sps p(zero.bytes());
    EXPECT_EQ(0, p->pic_order_cnt_type);
    EXPECT_EQ(9, p->max_pic_order_cnt_lsb);
    EXPECT_EQ(2, p->max_num_ref_frames);
    EXPECT_EQ(zero.bits(), p.consumed());

    support::bit_writer one;
    one.u(8, 66).u(8, 0).u(8, 30).ue(0).ue(0).ue(257).flag(true).se(-5).se(6).ue(2).se(70).se(-80);
    one.ue(3).flag(true).ue(10).ue(8).u(3, 0b110).flag(false);
    const parsed_legacy_sps q(one.bytes());
    EXPECT_EQ(1, q->pic_order_cnt_type);
    EXPECT_EQ(1, q->delta_pic_order_always_zero_flag);
    EXPECT_EQ(3, q->max_num_ref_frames);
    EXPECT_EQ(one.bits(), q.consumed());
}

TEST(LegacySps, TheNumberOfReferenceFramesIsItsLowByte)
{
    for (const std::uint32_t frames : {0U, 16U, 255U, 256U, 259U, 16777214U}) {
        sps_description seq;
        seq.max_num_ref_frames = frames;
        EXPECT_EQ(frames % 256, parsed_legacy_sps(written(seq))->max_num_ref_frames);
    }
}

TEST(LegacySps, LargeValuesAreStoredAsRead)
{
    sps_description seq = high_sps(16777214);
    seq.seq_parameter_set_id = 16777213;
    seq.bit_depth_luma_minus8 = 16777212;
    seq.bit_depth_chroma_minus8 = 16777211;
    seq.pic_width_in_mbs_minus1 = 16777210;
    seq.pic_height_in_map_units_minus1 = 16777209;
    seq.frame_cropping_flag = true;
    seq.frame_crop_left_offset = 16777208;
    seq.frame_crop_right_offset = 16777207;
    seq.frame_crop_top_offset = 16777206;
    seq.frame_crop_bottom_offset = 16777205;
    const parsed_legacy_sps p(written(seq));
    EXPECT_EQ("pic_height_in_map_units is 16777210, not 9; seq_parameter_set_id is 16777213, not 0; "
              "chroma_format_idc is 16777214, not 1; pic_width_in_mbps is 16777211, not 11; "
              "bit_depth_chroma is 16777219, not 8; bit_depth_luma is 16777220, not 8; "
              "frame_cropping_flag is 1, not 0; frame_crop_left_offset is 16777208, not 0; "
              "frame_crop_right_offset is 16777207, not 0; frame_crop_top_offset is 16777206, not 0; "
              "frame_crop_bottom_offset is 16777205, not 0; ",
              difference_of(parsed_legacy_sps(written(high_sps())).object, p.object));
}

TEST(LegacySps, FieldsThatAreNotSentKeepTheirValues)
{
    const h264_sps before = support::numbered_sps(3);
    const element_writer writer = written(sps_description());
    const parsed_legacy_sps p(writer, before);
    // What every SPS carries, and the logarithm of picture order count type 0.
    h264_sps expected = before;
    expected.profile_idc = 66;
    expected.constraint_set0_flag = expected.constraint_set1_flag = expected.constraint_set2_flag = 0;
    expected.constraint_set3_flag = expected.constraint_set4_flag = expected.constraint_set5_flag = 0;
    expected.reserved_zero_2bits = 0;
    expected.level_idc = 30;
    expected.seq_parameter_set_id = 0;
    expected.log2_max_frame_num = 4;
    expected.max_frame_num = 16;
    expected.pic_order_cnt_type = 0;
    expected.max_pic_order_cnt_lsb = 4;
    expected.max_num_ref_frames = 1;
    expected.gaps_in_frame_num_value_allowed_flag = 0;
    expected.pic_width_in_mbps = 11;
    expected.pic_height_in_map_units = 9;
    expected.frame_mbs_only_flag = expected.direct_8x8_inference_flag = 1;
    expected.frame_cropping_flag = 0;
    expected.vui_parameters_present_flag = 0;
    EXPECT_EQ("", difference_of(expected, p.object));
}

TEST(LegacySps, ALongerPrefixIsReadAs24Zeros)
{
    // Of the code with 24 zeros before its one bit, the one bit is the first of 24 bits behind the prefix.
    sps_description seq;
    seq.seq_parameter_set_id = 16777215;
    const element_writer writer = written(seq);
    const parsed_legacy_sps p(writer);
    EXPECT_EQ(16777215U + 0x800000U, p->seq_parameter_set_id);

    support::bit_writer zeros;
    zeros.u(8, 66).u(8, 0).u(8, 30).u(48, 0);
    zeros.ue(0).ue(2).ue(3).flag(true).ue(10).ue(8).u(3, 0b110).flag(false);
    const parsed_legacy_sps q(zeros.bytes());
    EXPECT_EQ(16777215U, q->seq_parameter_set_id);
    EXPECT_EQ(3, q->max_num_ref_frames);
    EXPECT_EQ(zeros.bits(), q.consumed());
}

TEST(LegacyScalingLists, FormatThreeHasTwelveAndTheOthersEight)
{
    for (const std::uint32_t format : {0U, 1U, 2U, 3U, 4U}) {
        expect_skipped(format, {});
        expect_skipped(format, support::full_scaling_matrix());
        for (std::size_t only = 0; only < 12; ++only) {
            support::scaling_matrix lists;
            lists[only] = support::rising_list(only < 6 ? 16 : 64, 20);
            expect_skipped(format, lists);
        }
    }
}

TEST(LegacyScalingLists, AListThatIsNotSentIsOneBit)
{
    for (const unsigned int size : {0U, 1U, 16U, 64U, 0xFFFFFFFFU})
        EXPECT_EQ(1U, skip_list(bit_writer().flag(false).u(40, 0xFFFFFFFFFF), size));
}

TEST(LegacyScalingLists, AListHasADeltaForEveryEntry)
{
    for (const unsigned int size : {1U, 2U, 16U, 64U, 100U}) {
        const bit_writer writer = list_bits(std::vector<std::int32_t>(size, 3));
        EXPECT_EQ(writer.bits(), skip_list(bit_writer(writer).u(32, 0xFFFFFFFF), size));
    }
}

TEST(LegacyScalingLists, AScaleOfZeroEndsTheList)
{
    const std::vector<std::vector<std::int32_t>> ending = {
        {-8}, {248}, {-264}, {8388600}, {1, -9}, {5, 243}, {1, 1, 1, 1, -12}, {247, 1}, {-7, -1}, {-9, -255}};
    for (const auto& deltas : ending) {
        const bit_writer writer = list_bits(deltas);
        EXPECT_EQ(writer.bits(), skip_list(bit_writer(writer).u(40, 0xFFFFFFFFFF), 16)) << deltas.size();
    }
}

TEST(LegacyScalingLists, ScalesAreTakenModulo256)
{
    // 8 + 255 is 7, and 7 - 263 is 0; 8 - 200 is 64, and 64 - 64 is 0.
    for (const auto& deltas : {std::vector<std::int32_t>{255, -263}, {-200, -64}, {-9, 1}, {100, 148}}) {
        const bit_writer writer = list_bits(deltas);
        EXPECT_EQ(writer.bits(), skip_list(bit_writer(writer).u(40, 0xFFFFFFFFFF), 64));
    }
}
