#include "sequence_summary.h"

#include "support/coded_stream.h"

#include <gtest/gtest.h>

namespace {

using brenik::h264_nal_slice_header;
using orv_h264::sequence_summary;

/// As a stream brings it: written and parsed.
brenik::h264_nal_sps parsed(const support::sps_description& seq)
{
    const support::bytes rbsp = support::written_rbsp(seq).made();
    brenik::h264_nal_sps sps;
    brenik::h2645_common_bitreader br(rbsp.data(), rbsp.data() + rbsp.size());
    EXPECT_TRUE(sps.parse(br));
    return sps;
}

sequence_summary sequence(bool fields_allowed, bool mbaff = false)
{
    sequence_summary made;
    made.sps.frame_mbs_only_flag = !fields_allowed;
    made.sps.mb_adaptive_frame_field_flag = mbaff;
    return made;
}

h264_nal_slice_header slice(bool field = false, bool bottom = false)
{
    h264_nal_slice_header header;
    header.field_pic_flag = field;
    header.bottom_field_flag = bottom;
    return header;
}

struct scan_case {
    bool fields_allowed;
    bool mbaff;
    int frames;
    int fields;
    const char* scan_type;
};

brenik::h264_nal_sei_pic_timing timing(std::uint32_t pic_struct)
{
    brenik::h264_nal_sei_pic_timing made;
    made.pic_struct = static_cast<decltype(made.pic_struct)>(pic_struct);
    return made;
}

} // namespace

TEST(SequenceSummary, ScanTypeIsThatOfTheSlices)
{
    const scan_case cases[] = {
        {false, false, 0, 0, "progressive"},   {false, false, 3, 0, "progressive"},
        {false, true, 3, 0, "progressive"},    {true, false, 0, 0, "fields allowed"},
        {true, true, 0, 0, "fields allowed"},  {true, false, 3, 0, "progressive frames, fields allowed"},
        {true, true, 3, 0, "MBAFF"},           {true, false, 0, 2, "interlaced"},
        {true, true, 0, 2, "interlaced"},      {true, false, 1, 2, "PAFF"},
        {true, true, 1, 2, "PAFF with MBAFF"},
    };
    for (const scan_case& c : cases) {
        sequence_summary made = sequence(c.fields_allowed, c.mbaff);
        for (int i = 0; i < c.frames; ++i)
            add_slice(made, slice(), {});
        for (int i = 0; i < c.fields; ++i)
            add_slice(made, slice(true), {});
        EXPECT_EQ(c.scan_type, orv_h264::scan_type(made));
        EXPECT_EQ(static_cast<std::uint64_t>(c.frames + c.fields), made.pictures()) << c.scan_type;
        EXPECT_EQ(static_cast<std::uint64_t>(c.fields), made.field_pictures) << c.scan_type;
        const bool adaptive = c.mbaff && c.fields_allowed;
        EXPECT_EQ(static_cast<std::uint64_t>(adaptive ? c.frames : 0), made.mbaff_pictures) << c.scan_type;
        EXPECT_EQ(static_cast<std::uint64_t>(adaptive ? 0 : c.frames), made.frame_pictures) << c.scan_type;
    }
}

TEST(SequenceSummary, OnlyTheFirstSliceOfAPrimaryPictureCounts)
{
    sequence_summary made = sequence(true);
    h264_nal_slice_header later = slice(true);
    later.first_mb_in_slice = 1;
    h264_nal_slice_header redundant = slice(true);
    redundant.redundant_pic_cnt = 1;
    h264_nal_slice_header plane = slice(true);
    plane.colour_plane_id = 1;
    for (const h264_nal_slice_header& header : {later, redundant, plane})
        add_slice(made, header, {});
    EXPECT_EQ(0U, made.pictures());
    EXPECT_FALSE(made.top_field_first.has_value());
    EXPECT_TRUE(made.cavlc) << "its entropy coding counts";
}

TEST(SequenceSummary, EntropyCodingIsWhatThePpsOfEachSliceSays)
{
    sequence_summary made = sequence(false);
    brenik::h264_nal_pps pps;
    pps.entropy_coding_mode_flag = true;
    add_slice(made, slice(), pps);
    EXPECT_TRUE(made.cabac);
    EXPECT_FALSE(made.cavlc);
    add_slice(made, slice(), {});
    EXPECT_TRUE(made.cabac);
    EXPECT_TRUE(made.cavlc);
}

TEST(SequenceSummary, TheFirstFieldTellsTheOrder)
{
    for (const bool bottom : {false, true}) {
        sequence_summary made = sequence(true);
        add_slice(made, slice(), {});
        EXPECT_FALSE(made.top_field_first.has_value()) << "a frame does not";
        add_slice(made, slice(true, bottom), {});
        EXPECT_EQ(!bottom, made.top_field_first);
        add_slice(made, slice(true, !bottom), {});
        EXPECT_EQ(!bottom, made.top_field_first);
    }
}

TEST(SequenceSummary, PicStructsThatNameAnOrderTellIt)
{
    for (std::uint32_t pic_struct = 0; pic_struct < 16; ++pic_struct) {
        sequence_summary made = sequence(true);
        add_pic_timing(made, timing(pic_struct));
        const bool top_first = pic_struct == 3 || pic_struct == 5;
        const bool bottom_first = pic_struct == 4 || pic_struct == 6;
        EXPECT_EQ(top_first || bottom_first, made.top_field_first.has_value()) << pic_struct;
        if (made.top_field_first) {
            EXPECT_EQ(top_first, *made.top_field_first) << pic_struct;
        }
    }
}

TEST(SequenceSummary, WhatTellsTheOrderFirstHolds)
{
    sequence_summary made = sequence(true);
    add_pic_timing(made, timing(3));
    add_pic_timing(made, timing(4));
    add_slice(made, slice(true, true), {});
    EXPECT_EQ(true, made.top_field_first);
    sequence_summary other = sequence(true);
    add_slice(other, slice(true, true), {});
    add_pic_timing(other, timing(3));
    EXPECT_EQ(false, other.top_field_first);
}

TEST(SequenceSummary, ChromaFormatIs420WhereTheProfileDoesNotSendIt)
{
    EXPECT_EQ(1U, orv_h264::chroma_format_of(parsed({})));
    support::sps_description seq;
    seq.profile_idc = 100;
    seq.high_profile_syntax = true;
    for (const std::uint32_t idc : {0U, 1U, 2U, 3U}) {
        seq.chroma_format_idc = idc;
        EXPECT_EQ(idc, orv_h264::chroma_format_of(parsed(seq)));
    }
}

TEST(SequenceSummary, FieldRateIsTicksASecondInLowestTerms)
{
    struct rate_case {
        std::uint32_t num_units_in_tick;
        std::uint32_t time_scale;
        std::uint64_t numerator;
        std::uint64_t denominator;
    };
    const rate_case cases[] = {
        {1, 50, 50, 1},
        {1001, 60000, 60000, 1001},
        {1000, 50000, 50, 1},
        {2, 1, 1, 2},
        {0xFFFFFFFF, 0xFFFFFFFE, 0xFFFFFFFE, 0xFFFFFFFF},
    };
    for (const rate_case& c : cases) {
        support::sps_description seq = support::coded_sps(false);
        seq.vui->num_units_in_tick = c.num_units_in_tick;
        seq.vui->time_scale = c.time_scale;
        const auto rate = orv_h264::field_rate(parsed(seq));
        ASSERT_TRUE(rate.has_value());
        EXPECT_EQ(c.numerator, rate->numerator);
        EXPECT_EQ(c.denominator, rate->denominator);
    }
}

TEST(SequenceSummary, NoFieldRateIsTold)
{
    EXPECT_FALSE(orv_h264::field_rate(parsed({})).has_value()) << "no VUI";
    support::sps_description seq = support::coded_sps(false);
    seq.vui->timing_info_present_flag = false;
    EXPECT_FALSE(orv_h264::field_rate(parsed(seq)).has_value());
    seq = support::coded_sps(false);
    seq.vui->num_units_in_tick = 0;
    EXPECT_FALSE(orv_h264::field_rate(parsed(seq)).has_value());
    seq = support::coded_sps(false);
    seq.vui->time_scale = 0;
    EXPECT_FALSE(orv_h264::field_rate(parsed(seq)).has_value());
}

TEST(SequenceSummary, ThePresenceFlagsDecideNotWhatIsLeftInTheFields)
{
    brenik::h264_nal_sps sps = parsed(support::coded_sps(false));
    sps.vui.sar_width = sps.vui.sar_height = 3;
    sps.vui.aspect_ratio_info_present_flag = true;
    ASSERT_TRUE(orv_h264::field_rate(sps).has_value());
    ASSERT_TRUE(orv_h264::sample_aspect_ratio(sps).has_value());
    sps.vui_parameters_present_flag = false;
    EXPECT_FALSE(orv_h264::field_rate(sps).has_value());
    EXPECT_FALSE(orv_h264::sample_aspect_ratio(sps).has_value());
    sps.vui_parameters_present_flag = true;
    sps.vui.timing_info_present_flag = false;
    sps.vui.aspect_ratio_info_present_flag = false;
    EXPECT_FALSE(orv_h264::field_rate(sps).has_value());
    EXPECT_FALSE(orv_h264::sample_aspect_ratio(sps).has_value());
}

TEST(SequenceSummary, HalfOfARateIsInLowestTerms)
{
    EXPECT_EQ(25U, orv_h264::half({50, 1}).numerator);
    EXPECT_EQ(1U, orv_h264::half({50, 1}).denominator);
    EXPECT_EQ(30000U, orv_h264::half({60000, 1001}).numerator);
    EXPECT_EQ(1001U, orv_h264::half({60000, 1001}).denominator);
    EXPECT_EQ(25U, orv_h264::half({25, 1}).numerator);
    EXPECT_EQ(2U, orv_h264::half({25, 1}).denominator);
    EXPECT_DOUBLE_EQ(12.5, orv_h264::half({25, 1}).value());
}

namespace {

support::sps_description with_sar(unsigned int idc, unsigned int width = 0, unsigned int height = 0)
{
    support::sps_description seq;
    seq.vui.emplace();
    seq.vui->aspect_ratio_info_present_flag = true;
    seq.vui->aspect_ratio_idc = idc;
    seq.vui->sar_width = width;
    seq.vui->sar_height = height;
    return seq;
}

} // namespace

TEST(SequenceSummary, SampleAspectRatioComesFromTheTableOrIsSent)
{
    const auto table = orv_h264::sample_aspect_ratio(parsed(with_sar(2)));
    ASSERT_TRUE(table.has_value());
    EXPECT_EQ(12U, table->numerator);
    EXPECT_EQ(11U, table->denominator);
    const auto sent = orv_h264::sample_aspect_ratio(parsed(with_sar(255, 40, 30)));
    ASSERT_TRUE(sent.has_value());
    EXPECT_EQ(4U, sent->numerator);
    EXPECT_EQ(3U, sent->denominator);
    for (const auto& seq : {with_sar(0), with_sar(17), with_sar(254), with_sar(255, 0, 1), with_sar(255, 1, 0)})
        EXPECT_FALSE(orv_h264::sample_aspect_ratio(parsed(seq)).has_value()) << seq.vui->aspect_ratio_idc;
}

TEST(SequenceSummary, SizesAreCroppedAndMadeSquare)
{
    support::sps_description seq = with_sar(255, 4, 3);
    seq.frame_cropping_flag = true;
    seq.frame_crop_left_offset = 1;
    seq.frame_crop_right_offset = 2;
    seq.frame_crop_top_offset = 3;
    seq.frame_crop_bottom_offset = 1;
    const brenik::h264_nal_sps sps = parsed(seq);
    EXPECT_EQ(170U, orv_h264::cropped_size(sps).width);
    EXPECT_EQ(136U, orv_h264::cropped_size(sps).height);
    EXPECT_EQ(227U, orv_h264::display_size(sps).width) << "170 * 4 / 3 is 226.67";
    EXPECT_EQ(136U, orv_h264::display_size(sps).height);
}

TEST(SequenceSummary, WithoutASampleAspectRatioTheDisplaySizeIsTheCroppedSize)
{
    const brenik::h264_nal_sps sps = parsed({});
    EXPECT_EQ(176U, orv_h264::display_size(sps).width);
    EXPECT_EQ(144U, orv_h264::display_size(sps).height);
}

TEST(SequenceSummary, CroppingToNothingLeaves0x0)
{
    struct crop_case {
        std::uint32_t left, right, top, bottom;
        bool nothing;
    };
    // 176x144, in units of 2x2.
    const crop_case cases[] = {
        {44, 43, 0, 0, false},
        {44, 44, 0, 0, true},
        {88, 0, 0, 0, true},
        {0, 89, 0, 0, true},
        {0, 0, 36, 35, false},
        {0, 0, 36, 36, true},
        {0, 0, 0, 72, true},
        {0, 0, 73, 0, true},
        {1, 1, 1, 1, false},
        {200, 200, 0, 0, true},
        {0x3FFFFFFF, 1, 0, 0, true},
        {0x3FFFFFFF, 0x40000001, 0, 0, true},
        {0, 0, 0x3FFFFFFF, 0x40000001, true},
    };
    for (const crop_case& c : cases) {
        support::sps_description seq = with_sar(255, 4, 3);
        seq.frame_cropping_flag = true;
        seq.frame_crop_left_offset = c.left;
        seq.frame_crop_right_offset = c.right;
        seq.frame_crop_top_offset = c.top;
        seq.frame_crop_bottom_offset = c.bottom;
        const orv_h264::picture_size size = orv_h264::cropped_size(parsed(seq));
        EXPECT_EQ(c.nothing, size.width == 0) << c.left << " " << c.right << " " << c.top << " " << c.bottom;
        EXPECT_EQ(c.nothing, size.height == 0);
        EXPECT_EQ(c.nothing, orv_h264::display_size(parsed(seq)).width == 0);
    }
}

TEST(SequenceSummary, ASchedulesBitRateAndBufferAreScaled)
{
    support::hrd_description hrd;
    hrd.bit_rate_scale = 2;
    hrd.cpb_size_scale = 3;
    hrd.cpbs = {{999, 499, false}, {0xFFFFFFFE, 0xFFFFFFFE, true}};
    support::sps_description seq;
    seq.vui.emplace();
    seq.vui->nal_hrd = hrd;
    const auto schedules = orv_h264::schedules_of(parsed(seq).vui.nal_hrd);
    ASSERT_EQ(2U, schedules.size());
    EXPECT_EQ(256000U, schedules[0].bit_rate);
    EXPECT_EQ(64000U, schedules[0].size);
    EXPECT_FALSE(schedules[0].constant);
    EXPECT_EQ(std::uint64_t{0xFFFFFFFF} << 8, schedules[1].bit_rate);
    EXPECT_EQ(std::uint64_t{0xFFFFFFFF} << 7, schedules[1].size);
    EXPECT_TRUE(schedules[1].constant);
    EXPECT_TRUE(orv_h264::schedules_of({}).empty());
}
