// orv-h264 inspect as a user runs it: the lines, the messages, the exit status.
#include "support/run_tool.h"
#include "support/stream_builder.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>

namespace {

using support::aud;
using support::bytes;
using support::forbidden;
using support::pps;
using support::run_tool;
using support::sps;
using support::stream_builder;
using support::temporary_file;
using support::tool_result;

const bytes small = {0x11, 0x22, 0x33};
constexpr unsigned char filler = support::header_byte(3, 12);

/// A sound RBSP of filler data.
bytes filler_bytes(std::size_t size)
{
    bytes rbsp(size, 0xFF);
    rbsp.back() = 0x80;
    return rbsp;
}

const bytes three_units = stream_builder()
                              .zeros(1)
                              .annexb_unit(aud, {0x50})
                              .zeros(1)
                              .annexb_unit(sps, {0x11, 0, 0, 3, 1})
                              .annexb_unit(filler, filler_bytes(300));

const std::string aud_line = "offset          0  framing 4  length        2  rbsp        1  nal_ref_idc 0  type  9  "
                             "AUD\n";
const std::string sps_line = "offset          6  framing 4  length        6  rbsp        4  nal_ref_idc 3  type  7  "
                             "SPS\n";
const std::string filler_line = "offset         16  framing 3  length      301  rbsp      300  nal_ref_idc 3  type 12  "
                                "filler\n";

TEST(Inspect, NalsShowsALineForEachUnit)
{
    const temporary_file file(three_units);
    const tool_result result = run_tool({"inspect", "--nals", file.path()});
    EXPECT_EQ(result.out, aud_line + sps_line + filler_line);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(Inspect, WithoutNalsTheFieldsStandUnderTheUnit)
{
    const temporary_file file(stream_builder().zeros(1).annexb_unit(aud, {0x50}).annexb_unit(filler, filler_bytes(3)));
    const tool_result result = run_tool({"inspect", file.path()});
    EXPECT_EQ(result.out.rfind(aud_line + "    primary_pic_type 2 (I, P, B)\noffset ", 0), 0U) << result.out;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(Inspect, AUnitThatDoesNotParseIsReportedAndShownAsFarAsItGoes)
{
    const temporary_file file(three_units);
    const tool_result result = run_tool({"inspect", file.path()});
    EXPECT_NE(result.out.find(sps_line + "    seq_parameter_set_data\n        profile_idc 17\n"), std::string::npos);
    EXPECT_NE(result.out.find("        level_idc 0 (0)\n" + filler_line), std::string::npos) << result.out;
    EXPECT_EQ(result.err, "orv-h264: " + file.path() + ": offset 6: seq_parameter_set_id at bit 32: the unit ends\n");
    EXPECT_EQ(result.status, 1);
}

TEST(Inspect, WhatStandsBehindAScalingListIsShownThoughTheUnitFailsLater)
{
    // profile_idc 100, level_idc 30, id 0, 4:2:0, 8 bits, a matrix whose first list is the default one, the others
    // none, log2_max_frame_num_minus4 0, type 2, and the end
    const temporary_file file(stream_builder().annexb_unit(sps, {100, 0, 30, 0xAD, 0x84, 0x40, 0x58}));
    const tool_result result = run_tool({"inspect", file.path()});
    EXPECT_NE(result.out.find("        scaling_list\n            delta_scale[0] -8\n            = the default list\n"),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("        log2_max_frame_num_minus4 "), std::string::npos) << result.out;
    EXPECT_EQ(result.status, 1);
}

TEST(Inspect, ARealStreamShowsItsSliceHeadersAndSeiMessages)
{
    const std::string path = ORV_TEST_STREAMS "/pulldown32.264";
    const tool_result result = run_tool({"inspect", "--only", "1-6", "--limit", "3", path});
    const std::string user_data =
        "    sei_message payloadType 5 (user_data_unregistered), payloadSize 680\n"
        "        uuid_iso_iec_11578 dc45e9bd-e6d9-48b7-962c-d820d923eeef (libx264 debug info)\n"
        "        user_data_payload_byte[0] to [663] \"x264 - core 164 ";
    const std::string timing = "    sei_message payloadType 1 (pic_timing), payloadSize 1\n"
                               "        pic_struct 5 (Top field, bottom field, top field repeated, in that order)\n"
                               "        clock_timestamp_flag[0] 0\n"
                               "        clock_timestamp_flag[1] 0\n"
                               "        clock_timestamp_flag[2] 0\n";
    const std::string slice = "slice IDR\n"
                              "    slice_header\n"
                              "        first_mb_in_slice 0\n"
                              "        slice_type 7 (I)\n"
                              "        pic_parameter_set_id 0\n"
                              "        frame_num 0\n"
                              "        idr_pic_id 0\n"
                              "        pic_order_cnt_lsb 0\n"
                              "        dec_ref_pic_marking\n"
                              "            no_output_of_prior_pics_flag 0\n"
                              "            long_term_reference_flag 0\n"
                              "        slice_qp_delta 0\n"
                              "        disable_deblocking_filter_idc 0 (on)\n"
                              "        slice_alpha_c0_offset_div2 0\n"
                              "        slice_beta_offset_div2 0\n"
                              "    = IDR picture\n"
                              "    = stands on PPS 0 and SPS 0\n";
    EXPECT_NE(result.out.find(user_data), std::string::npos) << result.out;
    EXPECT_NE(result.out.find(timing), std::string::npos) << result.out;
    EXPECT_NE(result.out.find(slice), std::string::npos) << result.out;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(Inspect, PositionsStandBeforeEveryElement)
{
    const temporary_file file(three_units);
    const tool_result result = run_tool({"inspect", "--positions", "--only", "aud", file.path()});
    EXPECT_EQ(result.out, aud_line + "          4.0     1    forbidden_zero_bit 0\n"
                                     "          4.1     2    nal_ref_idc 0\n"
                                     "          4.3     5    nal_unit_type 9\n"
                                     "          5.0     3    primary_pic_type 2 (I, P, B)\n"
                                     "                       rbsp_trailing_bits\n"
                                     "          5.3     1        rbsp_stop_one_bit 1\n"
                                     "          5.4     1        rbsp_alignment_zero_bit 0\n"
                                     "          5.5     1        rbsp_alignment_zero_bit 0\n"
                                     "          5.6     1        rbsp_alignment_zero_bit 0\n"
                                     "          5.7     1        rbsp_alignment_zero_bit 0\n");
}

TEST(Inspect, LongNamesOnRequest)
{
    const temporary_file file(three_units);
    const tool_result result = run_tool({"inspect", "--nals", "--long-names", "--only", "7", file.path()});
    EXPECT_NE(result.out.find("  Sequence parameter set, seq_parameter_set_rbsp()\n"), std::string::npos) << result.out;
}

TEST(Inspect, AFindingIsToldAndTheStatusStays)
{
    const temporary_file file(stream_builder().annexb_unit(sps, {77, 3, 30, 0xFF, 0xFF, 0xFF}));
    const tool_result result = run_tool({"inspect", "--json", "--limit", "1", file.path()});
    EXPECT_NE(result.err.find(": offset 0: reserved_zero_2bits 3 at bit 22: outside of 0 to 0\n"), std::string::npos);
    EXPECT_NE(result.out.find(R"({"record":"finding","offset":0,)"), std::string::npos) << result.out;
    const temporary_file sound(stream_builder().annexb_unit(aud, {0x30}).annexb_unit(support::header_byte(0, 24), {1}));
    EXPECT_EQ(run_tool({"inspect", sound.path()}).status, 0);
}

TEST(Inspect, EachProblemOfAnSeiUnitIsReportedWithTheOffsetOfTheUnit)
{
    const temporary_file file(
        stream_builder().zeros(1).annexb_unit(aud, {0x50}).annexb_unit(6, {6, 1, 0x01, 1, 1, 0x55, 0x80}));
    const tool_result result = run_tool({"inspect", "--only", "9", file.path()});
    EXPECT_EQ(result.err, "orv-h264: " + file.path() + ": offset 6: recovery_frame_cnt at bit 24: the payload ends\n");
    EXPECT_EQ(result.status, 1);
}

TEST(Inspect, ASliceBeforeItsParameterSetsIsReported)
{
    const tool_result result = run_tool({"inspect", "--limit", "1", ORV_TEST_STREAMS "/broken_cut.264"});
    EXPECT_NE(result.err.find(": offset 215: pic_parameter_set_id 0 at bit 14: names a picture parameter set which is "
                              "missing\n"),
              std::string::npos)
        << result.err;
    EXPECT_NE(result.out.find("    pic_parameter_set_id 0\n"), std::string::npos) << result.out;
    EXPECT_EQ(result.out.find("frame_num"), std::string::npos) << result.out;
    EXPECT_EQ(result.status, 1);
}

TEST(Inspect, BeyondTheLimitNothingIsReported)
{
    const temporary_file file(stream_builder().raw(three_units).annexb_unit(support::forbidden, small));
    EXPECT_EQ(run_tool({"inspect", "--limit", "1", file.path()}).err, "");
    EXPECT_EQ(run_tool({"inspect", "--limit", "1", file.path()}).status, 0);
    EXPECT_EQ(run_tool({"inspect", file.path()}).status, 1);
}

TEST(Inspect, AProblemOfAUnitThatIsNotShownIsReportedAllTheSame)
{
    const temporary_file file(three_units);
    const tool_result result = run_tool({"inspect", "--only", "9", file.path()});
    EXPECT_EQ(result.out, aud_line + "    primary_pic_type 2 (I, P, B)\n");
    EXPECT_NE(result.err, "");
    EXPECT_EQ(result.status, 1);
}

TEST(Inspect, ADelimiterWithoutTrailingBitsIsBroken)
{
    const temporary_file file(stream_builder().annexb_unit(aud, {0x40}));
    const tool_result result = run_tool({"inspect", file.path()});
    EXPECT_NE(result.out.find("    primary_pic_type 2 (I, P, B)\n"), std::string::npos);
    EXPECT_EQ(result.err, "orv-h264: " + file.path() + ": offset 0: the stop bit is missing\n");
    EXPECT_EQ(result.status, 1);
}

TEST(Inspect, DashIsTheStandardInput)
{
    const tool_result result = run_tool({"inspect", "--nals", "-"}, {.piped = three_units});
    EXPECT_EQ(result.out, aud_line + sps_line + filler_line);
    EXPECT_EQ(result.status, 0);
}

TEST(Inspect, LimitStopsAfterThatManyUnits)
{
    const temporary_file file(three_units);
    EXPECT_EQ(run_tool({"inspect", "--nals", "--limit", "2", file.path()}).out, aud_line + sps_line);
    EXPECT_EQ(run_tool({"inspect", "--nals", "--limit", "0", file.path()}).out, "");
}

TEST(Inspect, OnlyShowsTheTypesNamedAndLimitCountsThose)
{
    const temporary_file file(three_units);
    EXPECT_EQ(run_tool({"inspect", "--nals", "--only", "7,12", file.path()}).out, sps_line + filler_line);
    EXPECT_EQ(run_tool({"inspect", "--nals", "--only", "6-8,12", "--limit", "1", file.path()}).out, sps_line);
    EXPECT_EQ(run_tool({"inspect", "--nals", "--only", "sps", "--only", "filler", file.path()}).out,
              sps_line + filler_line);
}

TEST(Inspect, FormatReadsLengthPrefixes)
{
    for (std::size_t k = 1; k <= 4; ++k) {
        const temporary_file file(stream_builder().prefixed_unit(k, sps, small).prefixed_unit(k, pps, small));
        const tool_result result =
            run_tool({"inspect", "--nals", "--format", "length" + std::to_string(k), file.path()});
        EXPECT_NE(result.out.find("framing " + std::to_string(k)), std::string::npos);
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 2);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.status, 0);
    }
}

/// The lines without what the framing changes: their offset and its size.
std::string without_framing(const std::string& lines)
{
    static const std::regex framing("offset +[0-9]+  framing [0-9]");
    return std::regex_replace(lines, framing, "");
}

TEST(Inspect, AStreamShowsTheSameUnitsBehindLengthPrefixes)
{
    const std::string name = ORV_TEST_STREAMS "/main_bpyramid_weighted";
    const tool_result annexb = run_tool({"inspect", "--nals", name + ".264"});
    const tool_result length4 = run_tool({"inspect", "--nals", "--format", "length4", name + ".length4"});
    EXPECT_EQ(without_framing(length4.out), without_framing(annexb.out));
    EXPECT_EQ(length4.err, "");
    EXPECT_EQ(length4.status, 0);
    EXPECT_EQ(run_tool({"inspect", "--nals", name + ".length4"}).out, length4.out) << "recognised";
}

TEST(Inspect, FormatAnnexBSkipsTheRecognition)
{
    const temporary_file file(stream_builder().junk(10));
    const tool_result result = run_tool({"inspect", "--nals", "--format", "annexb", file.path()});
    EXPECT_EQ(result.err, "orv-h264: " + file.path() + ": offset 0: bytes before the first start code (10 bytes)\n" +
                              "orv-h264: " + file.path() + ": offset 10: no NAL unit found\n");
    EXPECT_EQ(result.status, 1);
}

TEST(Inspect, WhatIsNotRecognisedNeedsAFormat)
{
    for (const bytes& stream : {bytes(4, 0xEE), bytes(50, 0xEE)}) {
        const temporary_file file(stream);
        const tool_result result = run_tool({"inspect", "--nals", file.path()});
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "orv-h264: " + file.path() +
                                  ": no H.264 stream is recognised; if it is one, name its framing with --format\n");
        EXPECT_EQ(result.status, 2);
    }
}

TEST(Inspect, AContainerThatIsNotReadIsRecognised)
{
    const temporary_file file(stream_builder().raw({'R', 'I', 'F', 'F', 0, 0, 0, 0, 'A', 'V', 'I', ' '}).zeros(16));
    const tool_result result = run_tool({"inspect", "--nals", file.path()});
    EXPECT_EQ(result.err, "orv-h264: " + file.path() + ": this is AVI; take the H.264 stream out of it first\n");
    EXPECT_EQ(result.status, 3);
}

TEST(Inspect, BytesOfNoUnitAreReportedAndReadingGoesOn)
{
    const temporary_file file(stream_builder().annexb_unit(forbidden, small).annexb_unit(sps, small));
    const tool_result result = run_tool({"inspect", "--nals", file.path()});
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 2);
    EXPECT_EQ(result.err, "orv-h264: " + file.path() + ": offset 0: unit whose header has the forbidden bit set\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(run_tool({"inspect", file.path()}).err.find(result.err), 0U);
}

TEST(Inspect, AUnitBeyondTheEndIsShownAsFarAsItGoesAndReported)
{
    const tool_result result = run_tool({"inspect", "--nals", "--format", "length4", "-"},
                                        {.piped = stream_builder().prefix(4, 100).unit(sps, small)});
    EXPECT_NE(result.out.find("offset          0  framing 4  length        4  rbsp        3"), std::string::npos);
    EXPECT_EQ(result.err, "orv-h264: standard input: offset 0: unit of 100 bytes runs past the end of the input\n");
    EXPECT_EQ(result.status, 1);
}

TEST(Inspect, AUnitThatDeclaresMoreThanMaxUnitIsReportedWithItsDeclaredLengthAndTheLimit)
{
    const bytes stream = stream_builder().prefix(4, 1869836800).unit(sps, small);
    const tool_result result = run_tool({"inspect", "--format", "length4", "-"}, {.piped = stream});
    EXPECT_EQ(result.err,
              "orv-h264: standard input: offset 0: unit of type 7 whose declared length of 1869836800 bytes "
              "is above the limit of 67108864 (8 bytes)\n");
    EXPECT_EQ(result.status, 1);
}

TEST(Inspect, AUnitAboveMaxUnitIsReportedAndReadingGoesOn)
{
    const temporary_file file(three_units);
    const tool_result result = run_tool({"inspect", "--nals", "--max-unit", "300", file.path()});
    EXPECT_EQ(result.out, aud_line + sps_line);
    EXPECT_EQ(result.err, "orv-h264: " + file.path() +
                              ": offset 16: unit of type 12 longer than the limit of 300 bytes (304 bytes)\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(run_tool({"inspect", "--nals", "--max-unit", "1K", file.path()}).status, 0);
}

TEST(Inspect, AFileThatCannotBeReadIsTwoAndSaysWhy)
{
    EXPECT_EQ(run_tool({"inspect", "/nonexistent"}).err, "orv-h264: /nonexistent: No such file or directory\n");
    EXPECT_EQ(run_tool({"inspect", "/nonexistent"}).status, 2);
    EXPECT_EQ(run_tool({"inspect", "/"}).err, "orv-h264: /: offset 0: Is a directory\n");
    EXPECT_EQ(run_tool({"inspect", "/"}).status, 2);
}

TEST(Inspect, OutputThatCannotBeWrittenIsTwo)
{
    const temporary_file file(three_units);
    const tool_result result = run_tool({"inspect", "--nals", file.path()}, {.out_path = "/dev/full"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("No space left on device"), std::string::npos);
}

TEST(Inspect, HelpNamesEveryOptionAndTheExitStatus)
{
    const tool_result result = run_tool({"inspect", "--help"});
    EXPECT_EQ(result.status, 0);
    for (const char* word :
         {"FILE", "--nals", "--limit", "--only", "--format", "--max-unit", "Examples:", "Exit status:"})
        EXPECT_NE(result.out.find(word), std::string::npos) << word;
}

TEST(Inspect, VersionIsPrinted)
{
    const tool_result result = run_tool({"--version"});
    EXPECT_EQ(result.out, "orv-h264 " ORV_TEST_VERSION "\n");
    EXPECT_EQ(result.status, 0);
}

#if !defined(ORV_TEST_SANITIZED)
TEST(Inspect, LongInputIsReadInBoundedMemory)
{
    // 512 MiB through a pipe, with 64 MiB of address space: zero padding, units that just fit, and what is no unit.
    constexpr std::size_t block = 1 << 20;
    for (const int value : {0x00, 0x55}) {
        const bytes start = stream_builder().annexb_unit(sps, small).fill(block - 7, static_cast<unsigned char>(value));
        const tool_result result = run_tool({"inspect", "--nals", "--format", "annexb", "--max-unit", "1M", "-"},
                                            {.piped = start, .repeat = 512, .max_memory = std::size_t{64} << 20});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 512);
    }
    const tool_result result =
        run_tool({"inspect", "--nals", "--format", "annexb", "--max-unit", "1M", "-"},
                 {.piped = bytes(block, 0x55), .repeat = 512, .max_memory = std::size_t{64} << 20});
    EXPECT_EQ(result.err, "orv-h264: standard input: offset 0: bytes before the first start code (536870912 bytes)\n"
                          "orv-h264: standard input: offset 536870912: no NAL unit found\n");
    EXPECT_EQ(result.status, 1);
}
#endif

class InspectStream : public testing::TestWithParam<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, InspectStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

TEST_P(InspectStream, FileAndPipeShowTheSame)
{
    const tool_result from_file = run_tool({"inspect", "--nals", GetParam().string()});
    const tool_result from_pipe = run_tool({"inspect", "--nals", "-"}, {.piped = support::read_file(GetParam())});
    EXPECT_EQ(from_file.out, from_pipe.out);
    EXPECT_EQ(from_file.status, from_pipe.status);
    EXPECT_EQ(from_file.status, support::is_broken(GetParam()) ? 1 : 0) << from_file.err;
    EXPECT_NE(from_file.out, "");
}

/// The match of each line of `text`, all of which have the form of `pattern`.
std::vector<std::smatch> matches(const std::string& text, const std::regex& pattern)
{
    std::vector<std::smatch> found;
    auto line = text.begin();
    while (line != text.end()) {
        const auto line_end = std::find(line, text.end(), '\n');
        std::smatch match;
        EXPECT_TRUE(std::regex_match(line, line_end, match, pattern)) << std::string(line, line_end);
        found.push_back(match);
        line = std::next(line_end);
    }
    return found;
}

// What the lines say, put side by side, is the file: only zero bytes and reported gaps lie between.
TEST_P(InspectStream, OffsetsAndLengthsTileTheFile)
{
    const bytes stream = support::read_file(GetParam());
    const tool_result result = run_tool({"inspect", "--nals", GetParam().string()});
    std::vector<bool> told(stream.size(), false);
    const auto tell = [&](std::size_t offset, std::size_t size) {
        ASSERT_LE(offset + size, stream.size());
        for (std::size_t i = offset; i < offset + size; ++i) {
            ASSERT_FALSE(told[i]) << "byte " << i << " is told of twice";
            told[i] = true;
        }
    };
    const std::regex unit("offset +([0-9]+)  framing ([0-9])  length +([0-9]+) .*");
    for (const std::smatch& line : matches(result.out, unit))
        tell(std::stoul(line[1]), std::stoul(line[2]) + std::stoul(line[3]));
    const std::regex message(".*: offset ([0-9]+): .*(?:\\(([0-9]+) bytes\\)|forbidden bit set)");
    for (const std::smatch& line : matches(result.err, message))
        if (line[2].matched)
            tell(std::stoul(line[1]), std::stoul(line[2]));
    for (std::size_t i = 0; i < stream.size(); ++i)
        ASSERT_TRUE(told[i] || stream[i] == 0) << "byte " << i << " is told of nowhere";
}

} // namespace
