#include "show_syntax.h"

#include "support/bit_writer.h"
#include "support/coded_stream.h"
#include "support/stream_builder.h"
#include "support/walked.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace {

using support::bit_writer;
using support::bytes;

/// The fields of a unit that is walked by itself.
std::string fields_of(unsigned char header, const bytes& rbsp)
{
    orv_h264::stream_walker walker;
    return orv_h264::show_fields(support::walk(walker, header, rbsp));
}

std::vector<std::string> lines_of(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// An SPS of the Main profile: 1920x1080 in field pairs, cropped, 25 frames a second.
bit_writer main_sps()
{
    bit_writer w;
    w.u(8, 77).u(8, 0x40).u(8, 40).ue(0);
    w.ue(0).ue(0).ue(2).ue(4).flag(false).ue(119).ue(33).flag(false).flag(true).flag(true);
    w.flag(true).ue(0).ue(0).ue(0).ue(2);
    w.flag(true).flag(true).u(8, 1).flag(false).flag(true).u(3, 5).flag(false).flag(true).u(24, 0x010101).flag(false);
    return w.flag(true).u(32, 1).u(32, 50).flag(true).flag(false).flag(false).flag(true).flag(false);
}

const std::string main_sps_lines = R"(    profile_idc 77 (Main)
    constraint_set0_flag 0
    constraint_set1_flag 1
    constraint_set2_flag 0
    constraint_set3_flag 0
    constraint_set4_flag 0
    constraint_set5_flag 0
    reserved_zero_2bits 0
    level_idc 40 (4)
    seq_parameter_set_id 0
    log2_max_frame_num_minus4 0
    pic_order_cnt_type 0
    log2_max_pic_order_cnt_lsb_minus4 2
    max_num_ref_frames 4
    gaps_in_frame_num_value_allowed_flag 0
    pic_width_in_mbs_minus1 119
    pic_height_in_map_units_minus1 33
    frame_mbs_only_flag 0
    mb_adaptive_frame_field_flag 1
    direct_8x8_inference_flag 1
    frame_cropping_flag 1
    frame_crop_left_offset 0
    frame_crop_right_offset 0
    frame_crop_top_offset 0
    frame_crop_bottom_offset 2
    vui_parameters_present_flag 1
        aspect_ratio_info_present_flag 1
        aspect_ratio_idc 1 (1:1)
        overscan_info_present_flag 0
        video_signal_type_present_flag 1
        video_format 5 (Unspecified)
        video_full_range_flag 0
        colour_description_present_flag 1
        colour_primaries 1 (BT.709)
        transfer_characteristics 1 (BT.709)
        matrix_coefficients 1 (BT.709)
        chroma_loc_info_present_flag 0
        timing_info_present_flag 1
        num_units_in_tick 1
        time_scale 50
        fixed_frame_rate_flag 1
        nal_hrd_parameters_present_flag 0
        vcl_hrd_parameters_present_flag 0
        pic_struct_present_flag 1
        bitstream_restriction_flag 0
    = cropped size 1920x1080
    = field rate 50 Hz
)";

TEST(ShowSyntax, AnSpsShowsItsFieldsInTheOrderOfTheSyntaxAndWhatFollowsFromThem)
{
    EXPECT_EQ(fields_of(support::sps, main_sps().trailing_bits().bytes()), main_sps_lines);
}

TEST(ShowSyntax, AnSpsWhoseTimingSaysNothingShowsNoFieldRate)
{
    for (const auto& [num_units_in_tick, time_scale] : {std::pair{1U, 0U}, {0U, 50U}, {0U, 0U}}) {
        support::sps_description seq = support::coded_sps(false);
        seq.vui->num_units_in_tick = num_units_in_tick;
        seq.vui->time_scale = time_scale;
        const std::string shown = fields_of(support::sps, support::written_rbsp(seq).made());
        EXPECT_NE(shown.find("time_scale " + std::to_string(time_scale) + "\n"), std::string::npos) << shown;
        EXPECT_EQ(shown.find("field rate"), std::string::npos) << shown;
    }
}

TEST(ShowSyntax, WithoutTrailingBitsAllFieldsAreShown)
{
    EXPECT_EQ(fields_of(support::sps, main_sps().u(8, 0).u(8, 0xFF).bytes()), main_sps_lines);
}

// However a unit is cut, what is shown is what it carried: the first lines of the whole, never a field of zeros.
TEST(ShowSyntax, ACutUnitShowsTheFieldsBeforeTheCutAndNoOthers)
{
    const bytes whole = main_sps().trailing_bits().bytes();
    std::size_t most_lines = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::string shown =
            fields_of(support::sps, bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
        EXPECT_EQ(main_sps_lines.compare(0, shown.size(), shown), 0) << size << " bytes:\n" << shown;
        EXPECT_GE(lines_of(shown).size(), most_lines) << size << " bytes";
        most_lines = lines_of(shown).size();
    }
    EXPECT_GT(most_lines, 35U);
    EXPECT_EQ(fields_of(support::sps, {}), "");
    EXPECT_EQ(fields_of(support::sps, {77}), "    profile_idc 77 (Main)\n");
}

TEST(ShowSyntax, ARefusedCountIsTheLastFieldShown)
{
    bit_writer w;
    w.u(8, 66).u(8, 0).u(8, 11).ue(0).ue(0).ue(1).flag(false).se(-3).se(2).ue(129).u(64, 0xFFFFFFFFFFFFFFFF);
    EXPECT_EQ(lines_of(fields_of(support::sps, w.bytes())).back(), "    num_ref_frames_in_pic_order_cnt_cycle 129");
}

TEST(ShowSyntax, APpsWithoutItsSpsShowsTheTwoIds)
{
    bit_writer w;
    w.ue(5).ue(9).u(40, 0xFFFFFFFFFF);
    EXPECT_EQ(fields_of(support::pps, w.bytes()), "    pic_parameter_set_id 5\n    seq_parameter_set_id 9\n");
}

TEST(ShowSyntax, HrdAndPictureOrderCountCycle)
{
    bit_writer w;
    w.u(8, 66).u(8, 0x10).u(8, 11).ue(0).ue(0).ue(1).flag(false).se(-3).se(2).ue(2).se(7).se(-8).ue(1).flag(true);
    w.ue(0).ue(0).flag(true).flag(true).flag(false).flag(true).u(5, 0).flag(true);
    w.ue(1).u(4, 2).u(4, 3).ue(999).ue(499).flag(true).ue(1999).ue(999).flag(false).u(5, 23).u(5, 22).u(5, 21).u(5, 24);
    w.flag(false).flag(true).flag(false).flag(false).trailing_bits();
    const std::string shown = fields_of(support::sps, w.bytes());
    EXPECT_NE(shown.find("    offset_for_non_ref_pic -3\n    offset_for_top_to_bottom_field 2\n"
                         "    num_ref_frames_in_pic_order_cnt_cycle 2\n"
                         "    offset_for_ref_frame[0] 7\n    offset_for_ref_frame[1] -8\n"),
              std::string::npos);
    EXPECT_NE(shown.find("    level_idc 11 (1b)\n"), std::string::npos);
    EXPECT_NE(shown.find("        nal_hrd_parameters_present_flag 1\n"
                         "            cpb_cnt_minus1 1\n"
                         "            bit_rate_scale 2\n"
                         "            cpb_size_scale 3\n"
                         "            bit_rate_value_minus1[0] 999 (256000 bit/s)\n"
                         "            cpb_size_value_minus1[0] 499 (64000 bits)\n"
                         "            cbr_flag[0] 1\n"
                         "            bit_rate_value_minus1[1] 1999 (512000 bit/s)\n"
                         "            cpb_size_value_minus1[1] 999 (128000 bits)\n"
                         "            cbr_flag[1] 0\n"
                         "            initial_cpb_removal_delay_length_minus1 23\n"
                         "            cpb_removal_delay_length_minus1 22\n"
                         "            dpb_output_delay_length_minus1 21\n"
                         "            time_offset_length 24\n"
                         "        vcl_hrd_parameters_present_flag 0\n"
                         "        low_delay_hrd_flag 1\n"),
              std::string::npos)
        << shown;
    EXPECT_EQ(shown.find("field rate"), std::string::npos) << "no timing was carried";
}

TEST(ShowSyntax, ScalingListsAndCropsOfNothing)
{
    bit_writer w;
    w.u(8, 100).u(8, 0).u(8, 10).ue(0).ue(1).ue(0).ue(0).flag(false).flag(true);
    w.flag(true).se(-8);              // the default list
    w.flag(true).se(2).se(0).se(-10); // 10 10, and nothing more
    w.u(6, 0);                        // six lists absent
    w.ue(0).ue(2).ue(1).flag(false).ue(0).ue(0).flag(true).flag(true).flag(true).ue(4).ue(4).ue(0).ue(0).flag(false);
    const std::string shown = fields_of(support::sps, w.trailing_bits().bytes());
    EXPECT_NE(shown.find("    seq_scaling_matrix_present_flag 1\n"
                         "        seq_scaling_list_present_flag[0] 1\n"
                         "            scaling_list default\n"
                         "        seq_scaling_list_present_flag[1] 1\n"
                         "            scaling_list 10 10 10 10 10 10 10 10 10 10 10 10 10 10 10 10\n"
                         "        seq_scaling_list_present_flag[2] 0\n"),
              std::string::npos)
        << shown;
    EXPECT_NE(shown.find("        seq_scaling_list_present_flag[7] 0\n    log2_max_frame_num_minus4 0\n"),
              std::string::npos);
    EXPECT_NE(shown.find("    = coded size 16x16, cropped to nothing\n"), std::string::npos);
}

/// An SPS of the High profile with every kind of element in front of and behind two scaling lists.
bit_writer sps_with_lists(std::uint32_t chroma_format_idc)
{
    bit_writer w;
    w.u(8, 100).u(8, 0).u(8, 10).ue(0).ue(chroma_format_idc);
    if (chroma_format_idc == 3)
        w.flag(false);
    w.ue(0).ue(0).flag(false).flag(true).flag(true).se(-8).flag(true).se(2).se(0).se(-10);
    w.u(chroma_format_idc == 3 ? 10 : 6, 0);
    w.ue(5).ue(1).flag(true).se(300).se(-300).ue(1).se(77);
    return w.ue(3).flag(false).ue(20).ue(30).flag(true).flag(true).flag(false).flag(false);
}

TEST(ShowSyntax, ACutUnitWithScalingListsShowsNothingThatItDidNotCarry)
{
    const bytes whole = sps_with_lists(1).trailing_bits().bytes();
    const std::string whole_lines = fields_of(support::sps, whole);
    EXPECT_NE(whole_lines.find("    offset_for_non_ref_pic 300\n"), std::string::npos) << whole_lines;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::string shown =
            fields_of(support::sps, bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
        EXPECT_EQ(whole_lines.compare(0, shown.size(), shown), 0) << size << " bytes:\n" << shown;
    }
}

/// The fields of a PPS behind an SPS of that chroma format: `start` up to its slice groups, and the bits of its tail.
std::string fields_of_pps(std::uint32_t chroma_format_idc, const bit_writer& start, const std::vector<bool>& tail)
{
    orv_h264::stream_walker walker;
    const bytes sps = sps_with_lists(chroma_format_idc).trailing_bits().bytes();
    EXPECT_EQ(support::problem_of(support::walk(walker, support::sps, sps)), "");
    bit_writer w = start;
    w.ue(0).ue(0).flag(false).u(2, 0).se(0).se(0).se(0).u(3, 0);
    for (const bool bit : tail)
        w.flag(bit);
    const orv_h264::walked_unit unit = support::walk(walker, support::pps, w.trailing_bits().bytes());
    EXPECT_EQ(support::problem_of(unit), "");
    return orv_h264::show_fields(unit);
}

bit_writer pps_start(std::uint32_t num_slice_groups_minus1)
{
    bit_writer w;
    return w.ue(0).ue(0).flag(false).flag(false).ue(num_slice_groups_minus1);
}

TEST(ShowSyntax, EachSliceGroupMapTypeShowsItsOwnFields)
{
    const auto between = [](const bit_writer& start) {
        const std::string lines = fields_of_pps(1, start, {});
        const std::size_t first = lines.find("    slice_group_map_type");
        return lines.substr(first, lines.find("    num_ref_idx_l0_default_active_minus1") - first);
    };
    EXPECT_EQ(between(pps_start(1).ue(0).ue(7).ue(8)),
              "    slice_group_map_type 0\n    run_length_minus1[0] 7\n    run_length_minus1[1] 8\n");
    EXPECT_EQ(between(pps_start(1).ue(1)), "    slice_group_map_type 1\n");
    EXPECT_EQ(between(pps_start(1).ue(2).ue(3).ue(4)),
              "    slice_group_map_type 2\n    top_left[0] 3\n    bottom_right[0] 4\n");
    for (std::uint32_t type = 3; type <= 5; ++type)
        EXPECT_EQ(between(pps_start(1).ue(type).flag(true).ue(9)),
                  "    slice_group_map_type " + std::to_string(type) +
                      "\n    slice_group_change_direction_flag 1\n    slice_group_change_rate_minus1 9\n");
    EXPECT_EQ(between(pps_start(2).ue(6).ue(1).u(2, 2).u(2, 1)),
              "    slice_group_map_type 6\n    pic_size_in_map_units_minus1 1\n"
              "    slice_group_id[0] 2\n    slice_group_id[1] 1\n");
    EXPECT_EQ(between(pps_start(1).ue(6).ue(0).u(2, 1)),
              "    slice_group_map_type 6\n    pic_size_in_map_units_minus1 0\n"
              "    slice_group_id[0] 1 (read as 2 bits, in H.264 1)\n");
    EXPECT_EQ(between(pps_start(1).ue(7)), "    slice_group_map_type 7\n");
}

TEST(ShowSyntax, ThePpsShowsAsManyScalingListFlagsAsItHas)
{
    const auto flags = [](std::uint32_t chroma_format_idc, bool transform_8x8, std::size_t lists) {
        std::vector<bool> tail = {transform_8x8, true};
        tail.insert(tail.end(), lists, false);
        tail.push_back(true); // second_chroma_qp_index_offset 0
        const std::vector<std::string> lines = lines_of(fields_of_pps(chroma_format_idc, pps_start(0), tail));
        EXPECT_EQ(lines.back(), "    second_chroma_qp_index_offset 0");
        return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
            return line.find("pic_scaling_list_present_flag") != std::string::npos;
        });
    };
    EXPECT_EQ(flags(1, false, 6), 6);
    EXPECT_EQ(flags(1, true, 8), 8);
    EXPECT_EQ(flags(3, true, 12), 12);
    EXPECT_EQ(flags(3, false, 6), 6);
}

TEST(ShowSyntax, UnitsWithoutReadSyntaxShowNothing)
{
    EXPECT_EQ(fields_of(support::header_byte(0, 12), bytes(20, 0xFF)), "");
}

} // namespace
