// The legacy SPS as text, to the letter.
#include "support/legacy_parse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

using support::parsed_legacy_sps;
using support::sps_description;
using support::written;

std::string dumped(h264_sps sps)
{
    char* memory = nullptr;
    std::size_t size = 0;
    std::FILE* const stream = open_memstream(&memory, &size);
    sps.dump(stream);
    EXPECT_EQ(0, std::fclose(stream));
    std::string text(memory, size);
    std::free(memory); // NOLINT(cppcoreguidelines-no-malloc): open_memstream's
    return text;
}

std::string line(const std::string& text, const std::string& label)
{
    std::istringstream lines(text);
    for (std::string one; std::getline(lines, one);)
        if (one.rfind(label + ": ", 0) == 0)
            return one;
    return "";
}

// A field's number is its place in memory, less one where two share a line.
constexpr const char* numbered_text = "profile_idc: 0x18\n"
                                      "constraint_set0_flag: 8\n"
                                      "constraint_set1_flag: 9\n"
                                      "constraint_set2_flag: 10\n"
                                      "constraint_set3_flag: 11\n"
                                      "constraint_set4_flag: 12\n"
                                      "constraint_set5_flag: 13\n"
                                      "reserved_zero_2bits: 14\n"
                                      "level_idc: 0x19\n"
                                      "seq_parameter_set_id: 0x0f\n"
                                      "chroma_format_idc: 0x12\n"
                                      "separate_colour_plane_flag: 5\n"
                                      "bit_depth_luma: 21\n"
                                      "bit_depth_chroma: 20\n"
                                      "qprime_y_zero_transform_bypass_flag: 2\n"
                                      "seq_scaling_matrix_present_flag: 4\n"
                                      "log2_max_frame_num: 22\n"
                                      "max_frame_num: 23\n"
                                      "pic_order_cnt_type: 17\n"
                                      "max_pic_order_cnt_lsb: 7\n"
                                      "delta_pic_order_always_zero_flag: 3\n"
                                      "max_num_ref_frames: 16\n"
                                      "gaps_in_frame_num_value_allowed_flag: 1\n"
                                      "pic_width_in_mbps: 19\n"
                                      "pic_height_in_map_units: 6\n"
                                      "frame_mbs_only_flag: 26\n"
                                      "mb_adaptive_frame_field_flag: 27\n"
                                      "direct_8x8_inference_flag: 28\n"
                                      "frame_cropping_flag: 29\n"
                                      "frame_crop_left_offset: 30\n"
                                      "frame_crop_right_offset: 31\n"
                                      "frame_crop_top_offset: 32\n"
                                      "frame_crop_bottom_offset: 33\n"
                                      "vui_parameters_present_flag: 34\n"
                                      "aspect_ratio_info_present_flag: 35\n"
                                      "aspect_ratio_idc: 0x24\n"
                                      "aspect_ratio: 37 / 38\n"
                                      "overscan_info_present_flag: 39\n"
                                      "overscan_info_appropriate_flag: 40\n"
                                      "video_signal_type_present_flag: 41\n"
                                      "video_format: 42\n"
                                      "video_full_range_flag: 43\n"
                                      "colour_description_present_flag: 44\n"
                                      "colour_primaries: 0x2d\n"
                                      "transfer_characteristics: 0x2e\n"
                                      "matrix_coefficients: 0x2f\n"
                                      "chroma_location_info_present_flag: 48\n"
                                      "chroma_sample_location_type_top_field: 49\n"
                                      "chroma_sample_location_type_bottom_field: 50\n"
                                      "timing_info_present_flag: 51\n"
                                      "num_units_in_ticks: 52\n"
                                      "time_scale: 53\n"
                                      "fixed_frame_rate_flag: 54\n"
                                      "nal_hrd_parameters_present_flag: 55\n"
                                      "vcl_hrd_parameters_present_flag: 56\n"
                                      "low_delay_hrd_flag: 57\n"
                                      "pic_struct_present_flag: 58\n"
                                      "initial_cpb_removal_delay_length: 59\n"
                                      "cpb_removal_delay_length: 60\n"
                                      "dpb_output_delay_length: 61\n"
                                      "time_offset_length: 62\n";

} // namespace

TEST(LegacySpsDump, EveryFieldHasItsLine)
{
    const std::string text = dumped(support::numbered_sps());
    EXPECT_EQ(numbered_text, text);
    EXPECT_EQ(61, std::count(text.begin(), text.end(), '\n'));
}

TEST(LegacySpsDump, TheLargestValuesAreUnsigned)
{
    h264_sps sps;
    sps.seq_parameter_set_id = sps.chroma_format_idc = 0xFFFFFFFF;
    sps.num_units_in_ticks = sps.time_scale = sps.sar_width = sps.sar_height = 0xFFFFFFFF;
    sps.profile_idc = sps.pic_order_cnt_type = 255;
    const std::string text = dumped(sps);
    EXPECT_EQ("profile_idc: 0xff", line(text, "profile_idc"));
    EXPECT_EQ("seq_parameter_set_id: 0xffffffff", line(text, "seq_parameter_set_id"));
    EXPECT_EQ("chroma_format_idc: 0xffffffff", line(text, "chroma_format_idc"));
    EXPECT_EQ("pic_order_cnt_type: 255", line(text, "pic_order_cnt_type"));
    EXPECT_EQ("num_units_in_ticks: 4294967295", line(text, "num_units_in_ticks"));
    EXPECT_EQ("time_scale: 4294967295", line(text, "time_scale"));
    EXPECT_EQ("aspect_ratio: 4294967295 / 4294967295", line(text, "aspect_ratio"));
}

TEST(LegacySpsDump, AStreamThatCannotBeWrittenIsNoMatter)
{
    std::FILE* const closed_for_writing = std::fopen("/dev/null", "r");
    ASSERT_NE(nullptr, closed_for_writing);
    h264_sps sps = support::numbered_sps();
    sps.dump(closed_for_writing);
    EXPECT_EQ(0, std::fclose(closed_for_writing));
    EXPECT_EQ(numbered_text, dumped(sps));
}
