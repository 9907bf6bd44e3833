#include <orv-utils-v4/h264/vui_parameters.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/vui_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using brenik::h264_vui_parameters;
using support::fields_of;
using support::vui_description;
using support::with_valid;
using support::written;
using parsed_vui = support::parsed<h264_vui_parameters>;

vui_description with_aspect_ratio(unsigned int aspect_ratio_idc, unsigned int width = 0, unsigned int height = 0)
{
    vui_description vui;
    vui.aspect_ratio_info_present_flag = true;
    vui.aspect_ratio_idc = aspect_ratio_idc;
    vui.sar_width = width;
    vui.sar_height = height;
    return vui;
}

h264_vui_parameters full(bool valid = true)
{
    return with_valid(valid, parsed_vui(written(support::full_vui())).object);
}

} // namespace

TEST(Vui, NewParametersAreZeroEmptyAndInvalid)
{
    for (const support::value& field : fields_of(h264_vui_parameters{}).values)
        EXPECT_EQ(support::value{}, field);
}

TEST(Vui, EveryElementIsReadIntoItsField)
{
    const auto writer = written(support::full_vui());
    const parsed_vui p(writer);
    EXPECT_TRUE(p.result);
    EXPECT_EQ(writer.size_in_bits(), p.consumed());
    EXPECT_TRUE(p->aspect_ratio_info_present_flag);
    EXPECT_EQ(255, p->aspect_ratio_idc);
    EXPECT_TRUE(p->extended_sar);
    EXPECT_EQ(40000, p->sar_width);
    EXPECT_EQ(33, p->sar_height);
    EXPECT_TRUE(p->overscan_info_present_flag && p->overscan_appropriate_flag);
    EXPECT_TRUE(p->video_signal_type_present_flag && p->video_full_range_flag && p->colour_description_present_flag);
    EXPECT_EQ(2, p->video_format);
    EXPECT_EQ(9, p->colour_primaries);
    EXPECT_EQ(16, p->transfer_characteristics);
    EXPECT_EQ(200, p->matrix_coefficients);
    EXPECT_TRUE(p->chroma_loc_info_present_flag);
    EXPECT_EQ(3U, p->chroma_sample_loc_type_top_field);
    EXPECT_EQ(4U, p->chroma_sample_loc_type_bottom_field);
    EXPECT_TRUE(p->timing_info_present_flag && p->fixed_frame_rate_flag);
    EXPECT_EQ(2147483649U, p->num_units_in_tick);
    EXPECT_EQ(0xFFFFFFFFU, p->time_scale);
    EXPECT_TRUE(p->nal_hrd_parameters_present_flag && p->nal_hrd.valid);
    EXPECT_EQ(3U, p->nal_hrd.cbr_flag.size());
    EXPECT_EQ(24, p->nal_hrd.time_offset_length);
    EXPECT_TRUE(p->vcl_hrd_parameters_present_flag && p->vcl_hrd.valid);
    EXPECT_EQ(2U, p->vcl_hrd.cbr_flag.size());
    EXPECT_EQ(31, p->vcl_hrd.time_offset_length);
    EXPECT_TRUE(p->low_delay_hrd_flag && p->pic_struct_present_flag);
    EXPECT_TRUE(p->bitstream_restriction_flag && p->motion_vectors_over_pic_boundaries_flag);
    EXPECT_EQ(5U, p->max_bytes_per_pic_denom);
    EXPECT_EQ(6U, p->max_bits_per_mb_denom);
    EXPECT_EQ(10U, p->log2_max_mv_length_horizontal);
    EXPECT_EQ(11U, p->log2_max_mv_length_vertical);
    EXPECT_EQ(12U, p->max_num_reorder_frames);
    EXPECT_EQ(13U, p->max_dec_frame_buffering);
    EXPECT_TRUE(p->valid);
}

TEST(Vui, EveryFlagInsideAGroupIsReadByItself)
{
    for (unsigned int flags = 0; flags < 64; ++flags) {
        vui_description vui = support::full_vui();
        vui.overscan_appropriate_flag = (flags & 1) != 0;
        vui.video_full_range_flag = (flags & 2) != 0;
        vui.fixed_frame_rate_flag = (flags & 4) != 0;
        vui.low_delay_hrd_flag = (flags & 8) != 0;
        vui.pic_struct_present_flag = (flags & 16) != 0;
        vui.motion_vectors_over_pic_boundaries_flag = (flags & 32) != 0;
        const parsed_vui p(written(vui));
        EXPECT_EQ(vui.overscan_appropriate_flag, p->overscan_appropriate_flag);
        EXPECT_EQ(vui.video_full_range_flag, p->video_full_range_flag);
        EXPECT_EQ(vui.fixed_frame_rate_flag, p->fixed_frame_rate_flag);
        EXPECT_EQ(vui.low_delay_hrd_flag, p->low_delay_hrd_flag);
        EXPECT_EQ(vui.pic_struct_present_flag, p->pic_struct_present_flag);
        EXPECT_EQ(vui.motion_vectors_over_pic_boundaries_flag, p->motion_vectors_over_pic_boundaries_flag);
    }
}

TEST(Vui, AGroupThatIsNotSentKeepsItsFields)
{
    const auto writer = written(vui_description());
    EXPECT_EQ(9U, writer.size_in_bits());
    const parsed_vui p(writer, full());
    EXPECT_TRUE(p.result);
    EXPECT_EQ(9U, p.consumed());
    h264_vui_parameters expected = full();
    expected.aspect_ratio_info_present_flag = expected.overscan_info_present_flag = false;
    expected.video_signal_type_present_flag = expected.chroma_loc_info_present_flag = false;
    expected.timing_info_present_flag = expected.nal_hrd_parameters_present_flag = false;
    expected.vcl_hrd_parameters_present_flag = expected.pic_struct_present_flag = false;
    expected.bitstream_restriction_flag = false;
    EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
}

TEST(Vui, ColoursThatAreNotSentKeepTheirValues)
{
    vui_description vui = support::full_vui();
    vui.colour_description_present_flag = false;
    const parsed_vui p(written(vui), full());
    EXPECT_FALSE(p->colour_description_present_flag);
    EXPECT_EQ(9, p->colour_primaries);
    EXPECT_EQ(16, p->transfer_characteristics);
    EXPECT_EQ(200, p->matrix_coefficients);
}

TEST(Vui, EveryAspectRatioIdcHasItsRatio)
{
    // H.264 Table E-1
    static constexpr unsigned int table[][2] = {{0, 0},   {1, 1},    {12, 11}, {10, 11}, {16, 11}, {40, 33},
                                                {24, 11}, {20, 11},  {32, 11}, {80, 33}, {18, 11}, {15, 11},
                                                {64, 33}, {160, 99}, {4, 3},   {3, 2},   {2, 1}};
    for (unsigned int idc = 0; idc <= 254; ++idc) {
        const auto writer = written(with_aspect_ratio(idc));
        h264_vui_parameters before;
        before.sar_width = before.sar_height = 77;
        const parsed_vui p(writer, before);
        EXPECT_TRUE(p.result);
        EXPECT_EQ(idc, p->aspect_ratio_idc);
        EXPECT_EQ(idc <= 16 ? table[idc][0] : 0, p->sar_width) << idc;
        EXPECT_EQ(idc <= 16 ? table[idc][1] : 0, p->sar_height) << idc;
        EXPECT_FALSE(p->extended_sar) << idc;
        EXPECT_EQ(17U, p.consumed()) << idc;
    }
}

TEST(Vui, ReservedAspectRatiosAreZeroToZero)
{
    for (const unsigned int idc : {17U, 100U, 254U}) {
        const parsed_vui p(written(with_aspect_ratio(idc)));
        EXPECT_EQ(0, p->sar_width);
        EXPECT_EQ(0, p->sar_height);
    }
}

TEST(Vui, AnExtendedRatioIsReadFromTheStream)
{
    const parsed_vui p(written(with_aspect_ratio(255, 4, 3)));
    EXPECT_EQ(4, p->sar_width);
    EXPECT_EQ(3, p->sar_height);
    EXPECT_TRUE(p->extended_sar);
    EXPECT_EQ(17U + 32, p.consumed());
    const parsed_vui largest(written(with_aspect_ratio(255, 65535, 32768)));
    EXPECT_EQ(65535, largest->sar_width);
    EXPECT_EQ(32768, largest->sar_height);
}

TEST(Vui, ALaterParseLeavesExtendedSarSet)
{
    const parsed_vui extended(written(with_aspect_ratio(255, 4, 3)));
    const parsed_vui later(written(with_aspect_ratio(1)), extended.object);
    EXPECT_EQ(1, later->aspect_ratio_idc);
    EXPECT_EQ(1, later->sar_width);
    EXPECT_EQ(1, later->sar_height);
    EXPECT_TRUE(later->extended_sar);
}

TEST(Vui, TimingHasAllThirtyTwoBits)
{
    for (const std::uint32_t number : {0U, 1U, 1001U, 60000U, 0x7FFFFFFFU, 2147483649U, 0xFFFFFFFFU, 0xA5A5A5A5U}) {
        vui_description vui;
        vui.timing_info_present_flag = true;
        vui.num_units_in_tick = number;
        vui.time_scale = ~number;
        const parsed_vui p(written(vui));
        EXPECT_EQ(number, p->num_units_in_tick);
        EXPECT_EQ(~number, p->time_scale);
        EXPECT_EQ(9U + 65, p.consumed());
    }
}

TEST(Vui, LowDelayIsReadWithEitherHrd)
{
    for (unsigned int hrds = 0; hrds < 4; ++hrds) {
        vui_description vui;
        vui.low_delay_hrd_flag = true;
        vui.pic_struct_present_flag = true;
        if ((hrds & 1) != 0)
            vui.nal_hrd = support::hrd_of(1);
        if ((hrds & 2) != 0)
            vui.vcl_hrd = support::hrd_of(2);
        const auto writer = written(vui);
        const parsed_vui p(writer);
        EXPECT_TRUE(p.result);
        EXPECT_EQ(hrds != 0, p->low_delay_hrd_flag) << hrds;
        EXPECT_TRUE(p->pic_struct_present_flag) << hrds;
        EXPECT_EQ((hrds & 1) != 0, p->nal_hrd.valid);
        EXPECT_EQ((hrds & 2) != 0, p->vcl_hrd.valid);
        EXPECT_EQ((hrds & 1) != 0 ? 1U : 0U, p->nal_hrd.cbr_flag.size());
        EXPECT_EQ((hrds & 2) != 0 ? 2U : 0U, p->vcl_hrd.cbr_flag.size());
        EXPECT_EQ(writer.size_in_bits(), p.consumed());
    }
}

TEST(Vui, LowDelayKeepsItsValueWithoutHrd)
{
    for (const bool before : {false, true}) {
        h264_vui_parameters vui;
        vui.low_delay_hrd_flag = before;
        EXPECT_EQ(before, parsed_vui(written(vui_description()), vui)->low_delay_hrd_flag);
    }
}

TEST(Vui, AFailedHrdMakesItInvalidAndEndsTheParse)
{
    for (const bool nal : {false, true})
        for (const bool valid : {false, true}) {
            vui_description vui = support::full_vui();
            (nal ? vui.nal_hrd : vui.vcl_hrd)->cpb_cnt_minus1 = 128;
            const auto writer = written(vui);
            h264_vui_parameters before;
            before.valid = before.nal_hrd.valid = before.vcl_hrd.valid = valid;
            const parsed_vui p(writer, before);
            EXPECT_FALSE(p.result);
            EXPECT_FALSE(p->valid);
            EXPECT_EQ(nal ? valid : true, p->nal_hrd.valid);
            EXPECT_EQ(valid, p->vcl_hrd.valid);
            EXPECT_EQ(128U, (nal ? p->nal_hrd : p->vcl_hrd).cpb_cnt_minus1);
            EXPECT_EQ(2147483649U, p->num_units_in_tick);
            EXPECT_TRUE(p->nal_hrd_parameters_present_flag);
            EXPECT_EQ(!nal, p->vcl_hrd_parameters_present_flag);
            EXPECT_FALSE(p->pic_struct_present_flag);
            const std::string last = nal ? "nal_hrd.cpb_size_scale" : "vcl_hrd.cpb_size_scale";
            for (const support::element& e : writer.elements())
                if (e.name == last) {
                    EXPECT_EQ(e.position + 4, p.consumed());
                }
        }
}

TEST(Vui, LargeValuesAreStoredAsRead)
{
    vui_description vui = support::full_vui();
    vui.video_format = 7;
    vui.chroma_sample_loc_type_top_field = 4294967294;
    vui.chroma_sample_loc_type_bottom_field = 4294967293;
    vui.max_bytes_per_pic_denom = 4294967292;
    vui.max_bits_per_mb_denom = 4294967291;
    vui.log2_max_mv_length_horizontal = 4294967290;
    vui.log2_max_mv_length_vertical = 4294967289;
    vui.max_num_reorder_frames = 4294967288;
    vui.max_dec_frame_buffering = 4294967287;
    const parsed_vui p(written(vui));
    EXPECT_TRUE(p.result);
    EXPECT_EQ(7, p->video_format);
    EXPECT_EQ(4294967294U, p->chroma_sample_loc_type_top_field);
    EXPECT_EQ(4294967293U, p->chroma_sample_loc_type_bottom_field);
    EXPECT_EQ(4294967292U, p->max_bytes_per_pic_denom);
    EXPECT_EQ(4294967291U, p->max_bits_per_mb_denom);
    EXPECT_EQ(4294967290U, p->log2_max_mv_length_horizontal);
    EXPECT_EQ(4294967289U, p->log2_max_mv_length_vertical);
    EXPECT_EQ(4294967288U, p->max_num_reorder_frames);
    EXPECT_EQ(4294967287U, p->max_dec_frame_buffering);
}

TEST(Vui, AnEmptyRangeReadsAsNoGroup)
{
    const parsed_vui p(support::bytes{}, full(false));
    EXPECT_TRUE(p.result);
    EXPECT_TRUE(p->valid);
    EXPECT_FALSE(p->timing_info_present_flag);
    EXPECT_EQ(9U, p.consumed());
}

TEST(Vui, AMalformedCodeThrowsAndValidKeepsItsValue)
{
    const auto writer = written(support::full_vui());
    for (const support::element& e : writer.elements()) {
        if (e.how == support::descriptor::u)
            continue;
        for (const bool valid : {false, true}) {
            const support::guarded_buffer buffer(support::with_malformed_code(writer, e));
            brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
            h264_vui_parameters vui = with_valid<h264_vui_parameters>(valid);
            EXPECT_THROW(vui.parse(br), brenik::h2645_common_malformed_code) << e.name;
            EXPECT_EQ(valid, vui.valid) << e.name;
            EXPECT_EQ(40000, vui.sar_width) << e.name;
            EXPECT_EQ(e.position + 32, br.bits_consumed()) << e.name;
        }
    }
}

TEST(Vui, EveryVideoFormatHasItsName)
{
    static constexpr const char* names[] = {"Component", "PAL", "NTSC", "SECAM", "MAC", "Unspecified"};
    for (unsigned int format = 0; format < 256; ++format) {
        const char* const expected = format < 6 ? names[format] : "?";
        EXPECT_STREQ(expected, h264_video_format_to_str(static_cast<brenik::h264_video_format>(format))) << format;
        h264_vui_parameters vui;
        vui.video_format = static_cast<std::uint8_t>(format);
        EXPECT_STREQ(expected, vui.video_format_to_str()) << format;
    }
}

TEST(Vui, ACopyIsDeep)
{
    const h264_vui_parameters original = full();
    h264_vui_parameters copy = original;
    copy.nal_hrd.bit_rate_value_minus1[0] = 1;
    copy.vcl_hrd.cbr_flag.clear();
    EXPECT_EQ("", difference(fields_of(full()), fields_of(original)));
}
