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

TEST(Vui, ALaterParseLeavesExtendedSarSet)
{
    const parsed_vui extended(written(with_aspect_ratio(255, 4, 3)));
    const parsed_vui later(written(with_aspect_ratio(1)), extended.object);
    EXPECT_EQ(1, later->aspect_ratio_idc);
    EXPECT_EQ(1, later->sar_width);
    EXPECT_EQ(1, later->sar_height);
    EXPECT_TRUE(later->extended_sar);
}

TEST(Vui, LargeValuesAreStoredAsRead)
{
    const auto writer = written(support::full_vui());
    for (const support::element& e : writer.elements()) {
        const bool of_an_hrd = e.name.find("hrd.") != std::string::npos;
        if ((e.how != support::descriptor::ue || of_an_hrd) && e.name != "video_format")
            continue;
        const std::int64_t largest = e.name == "video_format" ? 7 : 4294967294;
        const parsed_vui p(support::with_element(writer, e, largest));
        EXPECT_TRUE(p.result) << e.name;
        EXPECT_EQ(largest, fields_of(p.object).at(e.name).number) << e.name;
    }
}

TEST(Vui, ItsVideoFormatHasTheNameOfTheNumber)
{
    for (unsigned int format = 0; format < 256; ++format) {
        h264_vui_parameters vui;
        vui.video_format = static_cast<std::uint8_t>(format);
        EXPECT_STREQ(h264_video_format_to_str(static_cast<brenik::h264_video_format>(format)),
                     vui.video_format_to_str());
    }
}
