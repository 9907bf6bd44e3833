#include "show_syntax.h"

#include "support/walked_stream.h"

#include <gtest/gtest.h>

namespace {

using support::bit_writer;
using support::bytes;
using support::sei_rbsp;
using support::stream_builder;

class ShowSei : public testing::Test {
protected:
    std::string shown(const bytes& rbsp) { return orv_h264::show_fields(stream.walk(support::sei, rbsp)); }

    support::walked_stream stream;
};

support::sps_description sps_with(const support::hrd_description& hrd)
{
    support::sps_description seq;
    seq.vui.emplace().nal_hrd = hrd;
    seq.vui->pic_struct_present_flag = true;
    return seq;
}

bytes text(const std::string& characters)
{
    return {characters.begin(), characters.end()};
}

const bytes libx264 = {0xDC, 0x45, 0xE9, 0xBD, 0xE6, 0xD9, 0x48, 0xB7, 0x96, 0x2C, 0xD8, 0x20, 0xD9, 0x23, 0xEE, 0xEF};

bytes user_data(bytes uuid, const bytes& data)
{
    uuid.insert(uuid.end(), data.begin(), data.end());
    return uuid;
}

} // namespace

TEST_F(ShowSei, PayloadsThatAreNotReadAreAShortHexLine)
{
    EXPECT_EQ("    sei_message payloadType 4 (user_data_registered_itu_t_t35), payloadSize 3\n"
              "        payload b5 00 31\n"
              "    sei_message payloadType 55, payloadSize 17\n"
              "        payload 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 ...\n"
              "    sei_message payloadType 3 (filler_payload), payloadSize 0\n",
              shown(sei_rbsp({{4, {0xB5, 0, 0x31}}, {55, bytes(17, 0x11)}, {3, {}}})));
    EXPECT_EQ("    sei_message payloadType 45 (frame_packing_arrangement), payloadSize 16\n"
              "        payload 22 22 22 22 22 22 22 22 22 22 22 22 22 22 22 22\n",
              shown(sei_rbsp({{45, bytes(16, 0x22)}})));
}

TEST_F(ShowSei, ATruncatedMessageSaysSoAndShowsWhatIsThere)
{
    EXPECT_EQ("    sei_message payloadType 4 (user_data_registered_itu_t_t35), payloadSize 200, truncated to 2\n"
              "        payload b5 80\n",
              shown({4, 200, 0xB5, 0x80}));
}

TEST_F(ShowSei, BufferingPeriodOfBothHrds)
{
    support::hrd_description nal = support::hrd_of(2);
    nal.initial_cpb_removal_delay_length_minus1 = 23;
    support::hrd_description vcl = support::hrd_of(1);
    vcl.initial_cpb_removal_delay_length_minus1 = 11;
    support::sps_description seq = sps_with(nal);
    seq.vui->vcl_hrd = vcl;
    stream.walk(seq);
    bit_writer w;
    w.ue(0).u(24, 90000).u(24, 45).u(24, 180000).u(24, 0).u(12, 9).u(12, 4095);
    EXPECT_EQ("    sei_message payloadType 0 (buffering_period), payloadSize 16\n"
              "        seq_parameter_set_id 0\n"
              "        NAL HRD\n"
              "            initial_cpb_removal_delay[0] 90000 (1 s)\n"
              "            initial_cpb_removal_delay_offset[0] 45 (0.0005 s)\n"
              "            initial_cpb_removal_delay[1] 180000 (2 s)\n"
              "            initial_cpb_removal_delay_offset[1] 0 (0 s)\n"
              "        VCL HRD\n"
              "            initial_cpb_removal_delay[0] 9 (0.0001 s)\n"
              "            initial_cpb_removal_delay_offset[0] 4095 (0.0455 s)\n",
              shown(sei_rbsp({{0, w.bytes()}})));
}

TEST_F(ShowSei, BufferingPeriodOfAMissingSpsShowsItsId)
{
    EXPECT_EQ("    sei_message payloadType 0 (buffering_period), payloadSize 2\n"
              "        seq_parameter_set_id 4\n",
              shown(sei_rbsp({{0, {0x28, 0x55}}})));
}

TEST_F(ShowSei, PictureTimingWithClockTimestamps)
{
    support::hrd_description hrd;
    hrd.time_offset_length = 5;
    stream.walk(sps_with(hrd));
    bit_writer w;
    w.u(24, 100).u(24, 200).u(4, 5);
    w.flag(true).u(2, 1).flag(true).u(5, 4).flag(true).flag(false).flag(true).u(8, 24).u(6, 59).u(6, 8).u(5, 23);
    w.u(5, 31).flag(false);
    w.flag(true).u(2, 3).flag(false).u(5, 0).flag(false).flag(true).flag(false).u(8, 1).flag(true).u(6, 7).flag(false);
    w.u(5, 15);
    EXPECT_EQ("    sei_message payloadType 1 (pic_timing), payloadSize 16\n"
              "        cpb_removal_delay 100\n"
              "        dpb_output_delay 200\n"
              "        pic_struct 5 (Top field, bottom field, top field repeated, in that order)\n"
              "        clock_timestamp_flag[0] 1\n"
              "            ct_type 1 (interlaced)\n"
              "            nuit_field_based_flag 1\n"
              "            counting_type 4\n"
              "            full_timestamp_flag 1\n"
              "            discontinuity_flag 0\n"
              "            cnt_dropped_flag 1\n"
              "            n_frames 24\n"
              "            seconds_value 59\n"
              "            minutes_value 8\n"
              "            hours_value 23\n"
              "            time_offset -1\n"
              "            = 23:08:59:24\n"
              "        clock_timestamp_flag[1] 0\n"
              "        clock_timestamp_flag[2] 1\n"
              "            ct_type 3 (?)\n"
              "            nuit_field_based_flag 0\n"
              "            counting_type 0\n"
              "            full_timestamp_flag 0\n"
              "            discontinuity_flag 1\n"
              "            cnt_dropped_flag 0\n"
              "            n_frames 1\n"
              "            seconds_flag 1\n"
              "            seconds_value 7\n"
              "            minutes_flag 0\n"
              "            time_offset 15\n",
              shown(sei_rbsp({{1, w.bytes()}})));
}

TEST_F(ShowSei, AClockTimestampThatComesPiecemeal)
{
    stream.walk(sps_with({}));
    bit_writer w;
    w.u(24, 1).u(24, 2).u(4, 0).flag(true).u(19, 0).flag(true).u(6, 3).flag(true).u(6, 2).flag(true).u(5, 1).u(24, 0);
    const std::string lines = shown(sei_rbsp({{1, w.bytes()}}));
    EXPECT_EQ("            n_frames 0\n"
              "            seconds_flag 1\n"
              "            seconds_value 3\n"
              "            minutes_flag 1\n"
              "            minutes_value 2\n"
              "            hours_flag 1\n"
              "            hours_value 1\n"
              "            time_offset 0\n"
              "            = 01:02:03:00\n",
              lines.substr(lines.find("            n_frames")));
}

TEST_F(ShowSei, PictureTimingThatDepartsSaysSoAndShowsTheStandardsReading)
{
    support::hrd_description hrd;
    hrd.initial_cpb_removal_delay_length_minus1 = 7;
    hrd.cpb_removal_delay_length_minus1 = 9;
    hrd.dpb_output_delay_length_minus1 = 5;
    hrd.time_offset_length = 0;
    stream.walk(sps_with(hrd));
    bit_writer w;
    w.u(10, 0b1111000010).u(6, 0b110011).u(4, 1).flag(false);
    EXPECT_EQ("    sei_message payloadType 1 (pic_timing), payloadSize 3\n"
              "        cpb_removal_delay 240 (read as 8 bits, in H.264 10)\n"
              "        dpb_output_delay 179 (read as 8 bits, in H.264 6)\n"
              "        pic_struct 1 (Top field)\n"
              "        clock_timestamp_flag[0] 0\n"
              "        = as H.264 reads it\n"
              "            cpb_removal_delay 962\n"
              "            dpb_output_delay 51\n"
              "            pic_struct 1 (Top field)\n"
              "            clock_timestamp_flag[0] 0\n",
              shown(sei_rbsp({{1, w.bytes()}})));
}

TEST_F(ShowSei, ATimestampWithoutHrdParametersDepartsByItsTimeOffset)
{
    support::sps_description seq;
    seq.vui.emplace().pic_struct_present_flag = true;
    stream.walk(seq);
    bit_writer without;
    without.u(4, 2).flag(false);
    EXPECT_EQ("    sei_message payloadType 1 (pic_timing), payloadSize 1\n"
              "        pic_struct 2 (Bottom field)\n"
              "        clock_timestamp_flag[0] 0\n",
              shown(sei_rbsp({{1, without.bytes()}})));
    bit_writer with;
    with.u(4, 2).flag(true).u(19, 0).flag(false).u(24, 9);
    const std::string lines = shown(sei_rbsp({{1, with.bytes()}}));
    EXPECT_EQ(lines.find("time_offset"), lines.rfind("time_offset 9\n")) << lines;
    EXPECT_LT(lines.find("        = as H.264 reads it\n"), lines.find("time_offset")) << lines;
}

TEST_F(ShowSei, ACutMessageShowsTheFieldsBeforeTheCut)
{
    stream.walk(sps_with({})); // each delay has 24 bits
    const std::string period = "    sei_message payloadType 0 (buffering_period), payloadSize ";
    EXPECT_EQ(period + "3\n        seq_parameter_set_id 0\n        NAL HRD\n", shown(sei_rbsp({{0, {0x80, 0, 0}}})));
    EXPECT_EQ(period + "4\n        seq_parameter_set_id 0\n        NAL HRD\n"
                       "            initial_cpb_removal_delay[0] 0 (0 s)\n",
              shown(sei_rbsp({{0, {0x80, 0, 0, 0}}})));
    bit_writer timing;
    timing.u(48, 0).u(4, 0).flag(true).u(19, 0).flag(false).u(15, 0); // time_offset has 24 bits
    const std::string lines = shown(sei_rbsp({{1, timing.bytes()}}));
    EXPECT_NE(std::string::npos, lines.find("seconds_flag 0\n"));
    EXPECT_EQ(std::string::npos, lines.find("time_offset")) << lines;
}

TEST_F(ShowSei, OfTheStandardsReadingTooOnlyWhatIsThereIsShown)
{
    support::hrd_description hrd;
    hrd.initial_cpb_removal_delay_length_minus1 = 3;
    hrd.cpb_removal_delay_length_minus1 = 19;
    hrd.dpb_output_delay_length_minus1 = 19;
    stream.walk(sps_with(hrd));
    EXPECT_EQ("    sei_message payloadType 1 (pic_timing), payloadSize 3\n"
              "        cpb_removal_delay 1 (read as 4 bits, in H.264 20)\n"
              "        dpb_output_delay 2 (read as 4 bits, in H.264 20)\n"
              "        pic_struct 0 (Progressive frame)\n"
              "        clock_timestamp_flag[0] 0\n"
              "        = as H.264 reads it\n"
              "            cpb_removal_delay 73728\n",
              shown(sei_rbsp({{1, {0x12, 0, 0}}})));
}

TEST_F(ShowSei, PictureTimingWithoutAnSpsShowsNothing)
{
    EXPECT_EQ("    sei_message payloadType 1 (pic_timing), payloadSize 2\n", shown(sei_rbsp({{1, {0x11, 0x22}}})));
}

TEST_F(ShowSei, PanScanRectangles)
{
    bit_writer w;
    w.ue(3).flag(false).ue(1).se(1).se(-2).se(3).se(-4).se(50).se(-60).se(70).se(-80).ue(2);
    EXPECT_EQ("    sei_message payloadType 2 (pan_scan_rect), payloadSize 11\n"
              "        pan_scan_rect_id 3\n"
              "        pan_scan_rect_cancel_flag 0\n"
              "        pan_scan_cnt_minus1 1\n"
              "        pan_scan_rect_left_offset[0] 1\n"
              "        pan_scan_rect_right_offset[0] -2\n"
              "        pan_scan_rect_top_offset[0] 3\n"
              "        pan_scan_rect_bottom_offset[0] -4\n"
              "        pan_scan_rect_left_offset[1] 50\n"
              "        pan_scan_rect_right_offset[1] -60\n"
              "        pan_scan_rect_top_offset[1] 70\n"
              "        pan_scan_rect_bottom_offset[1] -80\n"
              "        pan_scan_rect_repetition_period 2\n",
              shown(sei_rbsp({{2, w.bytes()}})));
    EXPECT_EQ("    sei_message payloadType 2 (pan_scan_rect), payloadSize 1\n"
              "        pan_scan_rect_id 0\n"
              "        pan_scan_rect_cancel_flag 1\n",
              shown(sei_rbsp({{2, {0xC0}}})));
}

TEST_F(ShowSei, PanScanRectanglesAboveTheCapShowTheirNumberLast)
{
    bit_writer w;
    w.ue(3).flag(false).ue(128).u(32, 0xFFFFFFFF);
    EXPECT_EQ("    sei_message payloadType 2 (pan_scan_rect), payloadSize 7\n"
              "        pan_scan_rect_id 3\n"
              "        pan_scan_rect_cancel_flag 0\n"
              "        pan_scan_cnt_minus1 128\n",
              shown(sei_rbsp({{2, w.bytes()}})));
}

TEST_F(ShowSei, RecoveryPoint)
{
    EXPECT_EQ("    sei_message payloadType 6 (recovery_point), payloadSize 1\n"
              "        recovery_frame_cnt 0\n"
              "        exact_match_flag 0\n"
              "        broken_link_flag 1\n"
              "        changing_slice_group_idc 2\n",
              shown(sei_rbsp({{6, {0xB0}}})));
}

TEST_F(ShowSei, UserDataOfAKnownUuidAsText)
{
    EXPECT_EQ("    sei_message payloadType 5 (user_data_unregistered), payloadSize 32\n"
              "        uuid_iso_iec_11578 dc45e9bd-e6d9-48b7-962c-d820d923eeef (libx264 debug info)\n"
              "        user_data \"x264 - core 164\"\n",
              shown(sei_rbsp({{5, user_data(libx264, text(std::string("x264 - core 164\0", 16)))}})));
}

TEST_F(ShowSei, UserDataThatIsNoTextIsHex)
{
    const std::string uuid = "        uuid_iso_iec_11578 01010101-0101-0101-0101-010101010101\n";
    for (const auto& [data, line] :
         std::vector<std::pair<bytes, std::string>>{{{0x1B, 0x5B, 0x32, 0x4A}, "        user_data 1b 5b 32 4a\n"},
                                                    {{0x61, 0, 0x62}, "        user_data 61 00 62\n"},
                                                    {{0x7F}, "        user_data 7f\n"},
                                                    {{0xC3, 0xA9}, "        user_data c3 a9\n"},
                                                    {{0}, "        user_data 00\n"},
                                                    {{}, ""}}) {
        const std::string lines = shown(sei_rbsp({{5, user_data(bytes(16, 1), data)}}));
        EXPECT_EQ(uuid + line, lines.substr(lines.find("        uuid")));
    }
}

TEST_F(ShowSei, LongTextIsCut)
{
    const auto user_data_line = [this](std::size_t size) {
        stream_builder rbsp;
        rbsp.raw({5, 255, 255, 255, 255}).fill(1, static_cast<unsigned char>(size + 16 - 1020));
        const std::string lines = shown(rbsp.raw(libx264).fill(size, 'a').raw({0x80}));
        return lines.substr(lines.find("        user_data \""));
    };
    EXPECT_EQ("        user_data \"" + std::string(1024, 'a') + "\"\n", user_data_line(1024));
    EXPECT_EQ("        user_data \"" + std::string(1024, 'a') + "\" ...\n", user_data_line(1025));
}

TEST_F(ShowSei, UserDataWithoutRoomForAUuidIsHex)
{
    EXPECT_EQ("    sei_message payloadType 5 (user_data_unregistered), payloadSize 3\n"
              "        payload 01 02 03\n",
              shown(sei_rbsp({{5, {1, 2, 3}}})));
    EXPECT_EQ("    sei_message payloadType 5 (user_data_unregistered), payloadSize 0\n", shown(sei_rbsp({{5, {}}})));
}
