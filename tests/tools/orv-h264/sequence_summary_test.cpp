#include "sequence_summary.h"

#include "support/surveyed.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;
using orv_h264::changes_between;
using orv_h264::sequence_summary;
using support::survey_of;

/// Fields are allowed.
seq_parameter_set_data interlaced_sps(bool mbaff = false)
{
    seq_parameter_set_data sps = support::timed_sps();
    sps.pic_order_cnt_type = 0;
    sps.frame_mbs_only_flag = false;
    sps.mb_adaptive_frame_field_flag = mbaff;
    return sps;
}

nal_unit timing_unit(unsigned pic_struct)
{
    pic_timing timing;
    timing.pic_struct = static_cast<std::uint8_t>(pic_struct);
    return unit_of(6, sei_rbsp{{message_of(1, timing)}});
}

/// The one sequence of a stream of IDR pictures, one for each letter: f a frame, t and b fields.
sequence_summary sequence_of(const seq_parameter_set_data& sps, const std::string& pictures)
{
    made_stream stream(sps);
    stream.add_sets();
    std::uint32_t frame_num = 0;
    for (const char c : pictures) {
        made_slice slice = reference(c == 'b' ? frame_num : frame_num++ % 16);
        stream.add(c == 't' ? top(slice) : c == 'b' ? bottom(slice) : slice);
    }
    orv_h264::stream_summary summary = survey_of(stream);
    EXPECT_EQ(1U, summary.sequences.size());
    return summary.sequences.at(0);
}

} // namespace

TEST(SequenceSummary, ScanTypeIsThatOfTheSlices)
{
    struct scan_case {
        const char* pictures;
        bool mbaff;
        const char* scan_type;
        std::uint64_t frames, mbaffs, fields;
    };
    const scan_case cases[] = {
        {"ff", false, "frames, fields allowed", 2, 0, 0},
        {"fff", true, "MBAFF", 0, 3, 0},
        {"tt", false, "interlaced", 0, 0, 2},
        {"tt", true, "interlaced", 0, 0, 2},
        {"ft", false, "PAFF", 1, 0, 1},
        {"ft", true, "PAFF with MBAFF", 0, 1, 1},
    };
    for (const scan_case& c : cases) {
        const sequence_summary made = sequence_of(interlaced_sps(c.mbaff), c.pictures);
        EXPECT_EQ(c.scan_type, scan_type(made));
        EXPECT_EQ(c.frames, made.frame_pictures) << c.pictures;
        EXPECT_EQ(c.mbaffs, made.mbaff_pictures) << c.pictures;
        EXPECT_EQ(c.fields, made.field_pictures) << c.pictures;
    }
    EXPECT_EQ("progressive", scan_type(sequence_of(support::timed_sps(), "f")));
    sequence_summary none;
    EXPECT_EQ("fields allowed", scan_type(none));
    none.sps.frame_mbs_only_flag = true;
    EXPECT_EQ("progressive", scan_type(none));
}

TEST(SequenceSummary, FramesAreProgressiveWherePictureTimingSaysSoOfAll)
{
    struct timing_case {
        std::vector<int> pic_structs; // of the pictures; -1 is none
        const char* scan_type;
    };
    const timing_case cases[] = {
        {{0, 0, 0}, "progressive"},
        {{0, -1, 0}, "frames, fields allowed"},
        {{0, 3, 0}, "frames, fields allowed"},
        {{4}, "frames, fields allowed"},
    };
    for (const timing_case& c : cases) {
        made_stream stream(interlaced_sps());
        stream.add_sets();
        std::uint32_t frame_num = 0;
        for (const int pic_struct : c.pic_structs) {
            if (pic_struct >= 0)
                stream.add(timing_unit(static_cast<unsigned>(pic_struct)));
            stream.add(reference(frame_num++));
        }
        EXPECT_EQ(c.scan_type, scan_type(survey_of(stream).sequences.at(0))) << c.pic_structs.size();
    }
}

TEST(SequenceSummary, AClockTypeTellsMoreThanPicStruct)
{
    const std::pair<unsigned, const char*> cases[] = {
        {0, "progressive"}, {1, "frames, fields allowed"}, {2, "frames, fields allowed"}};
    for (const auto& [ct_type, expected] : cases) {
        pic_timing timing;
        timing.pic_struct = 3;
        timing.timestamps[0].clock_timestamp_flag = true;
        timing.timestamps[0].ct_type = static_cast<std::uint8_t>(ct_type);
        made_stream stream(interlaced_sps());
        stream.add_sets().add(unit_of(6, sei_rbsp{{message_of(1, timing)}})).add(idr());
        EXPECT_EQ(expected, scan_type(survey_of(stream).sequences.at(0))) << ct_type;
    }
}

TEST(SequenceSummary, WithoutPicStructsTimingSaysNothing)
{
    seq_parameter_set_data sps = timed_sps_data(0, 8);
    sps.frame_mbs_only_flag = false;
    made_stream stream(sps);
    stream.add_sets().add(timing_unit(0)).add(idr());
    EXPECT_EQ("frames, fields allowed", scan_type(survey_of(stream).sequences.at(0)));
}

TEST(SequenceSummary, PicStructsAndFirstFieldsTellTheOrder)
{
    for (unsigned pic_struct = 0; pic_struct <= 8; ++pic_struct) {
        made_stream stream(interlaced_sps());
        stream.add_sets().add(timing_unit(pic_struct)).add(idr());
        const std::optional<bool> first = survey_of(stream).sequences.at(0).top_field_first;
        const bool top_first = pic_struct == 3 || pic_struct == 5;
        const bool bottom_first = pic_struct == 4 || pic_struct == 6;
        EXPECT_EQ(top_first || bottom_first, first.has_value()) << pic_struct;
        EXPECT_EQ(top_first, first.value_or(false)) << pic_struct;
    }
    EXPECT_FALSE(sequence_of(interlaced_sps(), "f").top_field_first.has_value()) << "a frame does not";
    EXPECT_EQ(true, sequence_of(interlaced_sps(), "ft").top_field_first);
    EXPECT_EQ(false, sequence_of(interlaced_sps(), "bt").top_field_first);
}

TEST(SequenceSummary, EntropyCodingIsWhatThePpsOfEachSliceSays)
{
    made_stream stream;
    stream.add_sets().add(idr());
    EXPECT_TRUE(survey_of(stream).sequences.at(0).cavlc);
    EXPECT_FALSE(survey_of(stream).sequences.at(0).cabac);
    stream.pps().entropy_coding_mode_flag = true;
    stream.add_sets().add(reference(1));
    const sequence_summary both = survey_of(stream).sequences.at(0);
    EXPECT_TRUE(both.cavlc);
    EXPECT_TRUE(both.cabac);
}

TEST(SequenceSummary, TheSameSetIsTheSameSequenceWhateverItsId)
{
    const seq_parameter_set_data sps = support::timed_sps();
    seq_parameter_set_data other = sps;
    other.seq_parameter_set_id = 31;
    EXPECT_TRUE(orv_h264::same_sequence(sps, sps));
    EXPECT_TRUE(orv_h264::same_sequence(sps, other));
    other.vui_parameters.max_bits_per_mb_denom = 3;
    EXPECT_FALSE(orv_h264::same_sequence(sps, other));
    EXPECT_FALSE(orv_h264::same_sequence(other, sps));
    other.seq_parameter_set_id = 0;
    EXPECT_FALSE(orv_h264::same_sequence(sps, other));
}

TEST(SequenceSummary, WhatChangesHasAWord)
{
    using changer = void (*)(seq_parameter_set_data&);
    const std::pair<changer, std::vector<std::string>> cases[] = {
        {[](auto&) {}, {}},
        {[](auto& sps) { sps.seq_parameter_set_id = 3; }, {}},
        {[](auto& sps) { sps.profile_idc = 100; }, {"profile"}},
        {[](auto& sps) { sps.level_idc = 31; }, {"level"}},
        {[](auto& sps) { sps.pic_width_in_mbs_minus1 = 8; }, {"picture size"}},
        {[](auto& sps) { sps.frame_cropping_flag = true, sps.frame_crop_left_offset = 1; }, {"picture size"}},
        {[](auto& sps) { sps.vui_parameters.sar_width = sps.vui_parameters.sar_height = 1; }, {"sample aspect ratio"}},
        {[](auto& sps) { sps.bit_depth_chroma_minus8 = 1; }, {"sample format"}},
        {[](auto& sps) { sps.frame_mbs_only_flag = false; }, {"picture size", "scan type"}},
        {[](auto& sps) { sps.vui_parameters.time_scale = 60; }, {"frame rate"}},
        {[](auto& sps) { sps.vui_parameters.time_scale = sps.vui_parameters.num_units_in_tick = 0; }, {"frame rate"}},
        {[](auto& sps) { sps.vui_parameters.matrix_coefficients = 1; }, {"colour"}},
        {[](auto& sps) { sps.vui_parameters.nal_hrd_parameters_present_flag = true; }, {"HRD"}},
        {[](auto& sps) { sps.max_num_ref_frames = 2; }, {"reference frames"}},
        {[](auto& sps) { sps.pic_order_cnt_type = 0; }, {"reorder depth"}},
        {[](auto& sps) { sps.log2_max_frame_num_minus4 = 1; }, {"other elements"}},
        {[](auto& sps) { sps.level_idc = 31, sps.max_num_ref_frames = 2; }, {"level", "reference frames"}},
    };
    for (const auto& [change, expected] : cases) {
        seq_parameter_set_data after = support::timed_sps();
        after.vui_parameters.aspect_ratio_info_present_flag = true;
        after.vui_parameters.aspect_ratio_idc = 255;
        const seq_parameter_set_data before = after;
        change(after);
        EXPECT_EQ(expected, changes_between(before, after));
    }
}

TEST(SequenceSummary, LevelsHaveNamesAndOthersNumbers)
{
    const std::tuple<int, int, bool, const char*> cases[] = {
        {77, 30, false, "3"},   {77, 41, false, "4.1"}, {77, 11, true, "1b"},  {100, 9, false, "1b"},
        {100, 11, true, "1.1"}, {77, 0, false, "0"},    {77, 7, false, "0.7"}, {77, 255, false, "25.5"},
    };
    for (const auto& [profile_idc, level_idc, constraint_set3_flag, name] : cases) {
        seq_parameter_set_data sps = sps_data();
        sps.profile_idc = static_cast<std::uint8_t>(profile_idc);
        sps.level_idc = static_cast<std::uint8_t>(level_idc);
        sps.constraint_set3_flag = constraint_set3_flag;
        EXPECT_EQ(name, orv_h264::level_name(sps)) << profile_idc;
    }
}

TEST(SequenceSummary, RatiosAreInLowestTermsAndNothingWhereTheyAreNotTold)
{
    const auto rate = orv_h264::known({60000, 2002});
    ASSERT_TRUE(rate.has_value());
    EXPECT_EQ(30000U, rate->numerator);
    EXPECT_EQ(1001U, rate->denominator);
    EXPECT_FALSE(orv_h264::known({0, 0}).has_value());
    EXPECT_FALSE(orv_h264::known({0, 1}).has_value());
}

TEST(SequenceSummary, TheDisplaySizeHasSquareSamples)
{
    seq_parameter_set_data sps = sps_data(0, 11, 9);
    EXPECT_EQ(176U, orv_h264::display_size(sps).width);
    sps.frame_cropping_flag = true;
    sps.frame_crop_left_offset = 1;
    sps.frame_crop_right_offset = 2;
    sps.frame_crop_top_offset = 7;
    sps.vui_parameters.aspect_ratio_idc = 255;
    sps.vui_parameters.sar_width = 4;
    sps.vui_parameters.sar_height = 3;
    EXPECT_EQ(227U, orv_h264::display_size(sps).width) << "170 * 4 / 3 is 226.67";
    EXPECT_EQ(130U, orv_h264::display_size(sps).height);
    sps.frame_crop_left_offset = 1000;
    EXPECT_EQ(0U, orv_h264::display_size(sps).width);
}

TEST(SequenceSummary, TheReorderDepthIsSentOrInferred)
{
    seq_parameter_set_data sps = support::timed_sps();
    EXPECT_EQ(0U, orv_h264::promised_reorder_depth(sps).frames) << "picture order count type 2";
    sps.pic_order_cnt_type = 0;
    EXPECT_EQ(MaxDpbFrames(sps), orv_h264::promised_reorder_depth(sps).frames);
    EXPECT_FALSE(orv_h264::promised_reorder_depth(sps).sent);
    sps.vui_parameters.bitstream_restriction_flag = true;
    sps.vui_parameters.max_num_reorder_frames = 2;
    EXPECT_EQ(2U, orv_h264::promised_reorder_depth(sps).frames);
    EXPECT_TRUE(orv_h264::promised_reorder_depth(sps).sent);
}
