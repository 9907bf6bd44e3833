// orv-h264 info as a user runs it: the rows, the JSON object, the problems, the exit status.
#include "support/coded_stream.h"
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace {

using nlohmann::json;
using support::bytes;
using support::coded;
using support::coded_sps;
using support::coded_stream;
using support::run_tool;
using support::temporary_file;
using support::tool_result;

tool_result info(const bytes& stream)
{
    return run_tool({"info", "-"}, {.piped = stream});
}

json json_info(const bytes& stream)
{
    return json::parse(run_tool({"info", "--json", "-"}, {.piped = stream}).out);
}

bool has(const tool_result& result, const std::string& lines)
{
    return ("\n" + result.out).find("\n" + lines) != std::string::npos;
}

/// An SPS with everything that info tells.
support::sps_description rich_sps()
{
    support::sps_description seq = coded_sps(true);
    seq.profile_idc = 122;
    seq.high_profile_syntax = true;
    seq.chroma_format_idc = 2;
    seq.bit_depth_luma_minus8 = 2;
    seq.bit_depth_chroma_minus8 = 1;
    seq.mb_adaptive_frame_field_flag = true;
    seq.max_num_ref_frames = 3;
    seq.level_idc = 41;
    seq.frame_cropping_flag = true;
    seq.frame_crop_right_offset = 8;
    seq.frame_crop_bottom_offset = 4;
    support::vui_description& vui = *seq.vui;
    vui.aspect_ratio_info_present_flag = true;
    vui.aspect_ratio_idc = 14;
    vui.video_signal_type_present_flag = true;
    vui.colour_description_present_flag = true;
    vui.colour_primaries = 9;
    vui.transfer_characteristics = 16;
    vui.matrix_coefficients = 3;
    vui.num_units_in_tick = 1001;
    vui.time_scale = 60000;
    vui.fixed_frame_rate_flag = true;
    vui.pic_struct_present_flag = false;
    vui.nal_hrd.emplace();
    vui.nal_hrd->cpbs = {{999, 499, false}, {1999, 999, true}};
    vui.vcl_hrd.emplace();
    return seq;
}

/// Of a stream of less than a second.
json schedule(std::uint64_t bit_rate, std::uint64_t cpb_size, bool cbr)
{
    return {{"bit_rate", bit_rate}, {"cpb_size", cpb_size}, {"cbr", cbr},
            {"seconds", 0},         {"seconds_above", 0},   {"fullest_second", nullptr}};
}

coded_stream rich_stream()
{
    coded_stream stream;
    stream.aud().sets(rich_sps()).encoder("maker 7 - core 1 - more - options: a=1 b=2").idr();
    stream.aud().slice(1, coded::bottom).aud().slice(1, coded::top);
    return stream.aud().slice(2, coded::frame, 40);
}

} // namespace

TEST(Info, TellsWhatAStreamIs)
{
    const coded_stream stream = rich_stream();
    const tool_result result = info(stream);
    EXPECT_EQ("File                  standard input\n"
              "Framing               annexb\n"
              "Size                  " +
                  std::to_string(stream.here()) +
                  " bytes\n"
                  "Codec string          avc1.7A0029\n"
                  "Profile               High 4:2:2\n"
                  "Level                 4.1\n"
                  "Picture size          160x280 (coded 176x288)\n"
                  "Sample aspect ratio   4:3\n"
                  "Display size          213x280 (16:21)\n"
                  "Chroma format         4:2:2\n"
                  "Bit depth             10 bits luma, 9 bits chroma\n"
                  "Scan type             PAFF with MBAFF, bottom field first (2 coded fields, 2 coded frames)\n"
                  "Entropy coding        CAVLC\n"
                  "Reference frames      3\n"
                  "Reorder depth         0 used, 0 inferred\n"
                  "Field rate            59.94006 Hz (60000/1001)\n"
                  "Frame rate            29.97003 Hz (30000/1001), fixed\n"
                  "Colour                limited range; primaries BT.2020; transfer SMPTE ST 2084 (PQ); "
                  "matrix unknown (3)\n"
                  "NAL HRD               64000 bit/s at most, buffer of 8000 bits\n"
                  "NAL HRD               128000 bit/s constant, buffer of 16000 bits\n"
                  "VCL HRD               64 bit/s at most, buffer of 16 bits\n",
              result.out.substr(0, result.out.find("Duration")));
    EXPECT_TRUE(has(result, "Duration              0.100100 s\n")) << result.out;
    EXPECT_TRUE(has(result, "Frames                3, 1 of them key frames\n"
                            "Groups                1 closed, 0 open\n"
                            "Encoder               maker 7 - core 1\n"
                            "Encoder settings      a=1 b=2\n"))
        << result.out;
    EXPECT_TRUE(has(result, "     units       bytes  NAL unit type\n")) << result.out;
    EXPECT_TRUE(has(result, "         4          20   9  Access unit delimiter, access_unit_delimiter_rbsp()\n"))
        << result.out;
    EXPECT_TRUE(has(result, "\n  messages  SEI payload type\n         1    5  user_data_unregistered\n")) << result.out;
    EXPECT_FALSE(has(result, "Problems\n"));
    EXPECT_FALSE(has(result, "Findings\n")) << result.out;
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
}

TEST(Info, JsonHasTheSameAsNumbers)
{
    const coded_stream stream = rich_stream();
    const json object = json_info(stream);
    EXPECT_EQ("orv-h264/info", object["schema"]);
    EXPECT_EQ(2, object["schema_version"]);
    EXPECT_EQ("standard input", object["file"]);
    EXPECT_EQ("annexb", object["framing"]);
    EXPECT_EQ(stream.here(), object["size"]);
    EXPECT_EQ("maker 7 - core 1", object["encoder"]);
    EXPECT_EQ("a=1 b=2", object["encoder_settings"]);
    for (const char* name : {"problems", "findings", "layers"})
        EXPECT_EQ(json::array(), object[name]) << name;
    EXPECT_EQ(json::array({{{"payload_type", 5}, {"name", "user_data_unregistered"}, {"messages", 1}}}), object["sei"]);
    ASSERT_EQ(1U, object["sequences"].size());
    const json& sequence = object["sequences"][0];
    const json expected = {
        {"offset", 0},
        {"changes", json::array()},
        {"codec", "avc1.7A0029"},
        {"profile_idc", 122},
        {"profile", "High 4:2:2"},
        {"level_idc", 41},
        {"level", "4.1"},
        {"size", {{"width", 160}, {"height", 280}}},
        {"coded_size", {{"width", 176}, {"height", 288}}},
        {"display_size", {{"width", 213}, {"height", 280}}},
        {"sample_aspect_ratio", {{"numerator", 4}, {"denominator", 3}, {"value", 4.0 / 3}}},
        {"chroma_format_idc", 2},
        {"chroma_format", "4:2:2"},
        {"bit_depth_luma", 10},
        {"bit_depth_chroma", 9},
        {"scan_type", "PAFF with MBAFF"},
        {"top_field_first", false},
        {"pictures", 3},
        {"frame_pictures", 0},
        {"mbaff_pictures", 2},
        {"field_pictures", 2},
        {"cabac", false},
        {"cavlc", true},
        {"max_num_ref_frames", 3},
        {"reorder_depth", 0},
        {"max_num_reorder_frames", 0},
        {"max_num_reorder_frames_sent", false},
        {"field_rate", {{"numerator", 60000}, {"denominator", 1001}, {"value", 60000.0 / 1001}}},
        {"frame_rate", {{"numerator", 30000}, {"denominator", 1001}, {"value", 30000.0 / 1001}}},
        {"fixed_frame_rate", true},
        {"nal_hrd", {schedule(64000, 8000, false), schedule(128000, 16000, true)}},
        {"vcl_hrd", json::array({schedule(64, 16, false)})},
    };
    for (const auto& [name, value] : expected.items())
        EXPECT_EQ(value, sequence[name]) << name;
    EXPECT_EQ(expected.size() + 1, sequence.size()) << "and colour";
    const json& colour = sequence["colour"];
    EXPECT_EQ(false, colour["full_range"]);
    EXPECT_EQ("BT.2020", colour["primaries"]);
    EXPECT_EQ(9, colour["colour_primaries"]);
    EXPECT_EQ("SMPTE ST 2084 (PQ)", colour["transfer"]);
    EXPECT_EQ(16, colour["transfer_characteristics"]);
    EXPECT_EQ(nullptr, colour["matrix"]);
    EXPECT_EQ(3, colour["matrix_coefficients"]);
    const json& frames = object["frames"];
    EXPECT_EQ(3, frames["count"]);
    EXPECT_EQ(1, frames["key_frames"]);
    EXPECT_EQ(3, frames["pictures"]);
    EXPECT_EQ(4, frames["coded_pictures"]);
    EXPECT_EQ(3, frames["timed_frames"]);
    EXPECT_EQ(nullptr, frames["key_frame_distance"]);
    EXPECT_EQ(0.1001, frames["seconds"]);
    EXPECT_EQ(nullptr, frames["peak_bit_rate"]);
    EXPECT_EQ(5U, object["nal_units"].size() - 1) << "types 1, 5, 6, 7, 8, 9";
}

TEST(Info, WhatIsNotToldHasNoRowAndIsNull)
{
    const coded_stream stream = coded_stream().sets(coded_sps(false, false)).idr();
    const tool_result result = info(stream);
    for (const char* label :
         {"Sample aspect ratio", "Field rate", "Frame rate", "Colour", "NAL HRD", "VCL HRD", "Duration", "Bit rate",
          "Key-frame distance", "Encoder", "Recovery points", "Changes", "  pictures", "  messages"})
        EXPECT_FALSE(has(result, label)) << label;
    EXPECT_TRUE(has(result, "Scan type             progressive\n"));
    EXPECT_TRUE(has(result, "Bit depth             8 bits\n"));
    const json object = json_info(stream);
    for (const char* name : {"sample_aspect_ratio", "field_rate", "frame_rate", "fixed_frame_rate", "colour", "nal_hrd",
                             "vcl_hrd", "top_field_first"})
        EXPECT_EQ(nullptr, object["sequences"][0][name]) << name;
    for (const char* name : {"seconds", "mean_bit_rate", "peak_bit_rate", "key_frame_distance"})
        EXPECT_EQ(nullptr, object["frames"][name]) << name;
    EXPECT_EQ(nullptr, object["encoder"]);
    EXPECT_EQ(nullptr, object["encoder_settings"]);
    EXPECT_EQ(nullptr, object["groups"]["recovery_frame_cnt_min"]);
}

TEST(Info, ARateThatVariesAndARangeAlone)
{
    support::sps_description seq = coded_sps(false);
    seq.vui->video_signal_type_present_flag = true;
    seq.vui->video_full_range_flag = true;
    const tool_result result = info(coded_stream().sets(seq).idr());
    EXPECT_TRUE(has(result, "Field rate            50 Hz\nFrame rate            25 Hz, not fixed\n")) << result.out;
    EXPECT_TRUE(has(result, "Colour                full range\n")) << result.out;
}

TEST(Info, OfMonochromeTheBitDepthIsThatOfLuma)
{
    support::sps_description seq = coded_sps(false);
    seq.profile_idc = 100;
    seq.high_profile_syntax = true;
    seq.chroma_format_idc = 0;
    seq.bit_depth_chroma_minus8 = 2;
    const tool_result result = info(coded_stream().sets(seq).idr());
    EXPECT_TRUE(has(result, "Chroma format         monochrome\nBit depth             8 bits\n")) << result.out;
}

TEST(Info, CroppingToNothingHasNoDisplaySize)
{
    support::sps_description seq = coded_sps(false);
    seq.frame_cropping_flag = true;
    seq.frame_crop_left_offset = 100;
    const tool_result result = info(coded_stream().sets(seq).idr());
    EXPECT_TRUE(has(result, "Picture size          0x0 (coded 176x144)\nChroma format")) << result.out;
}

TEST(Info, AStreamThatChangesItsSpsIsShownSequenceBySequence)
{
    support::sps_description other = coded_sps(false);
    other.level_idc = 40;
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().slice(1);
    const std::string offset = std::to_string(stream.here());
    stream.sets(other).idr().slice(1);
    const tool_result result = info(stream);
    EXPECT_NE(std::string::npos, result.out.find("\n\nSequence 1 of 2, from offset ")) << result.out;
    EXPECT_TRUE(has(result, "\nSequence 2 of 2, from offset " + offset +
                                ", 2 pictures\nChanges               level\nCodec string          avc1.4D0028\n"))
        << result.out;
    EXPECT_EQ(json::array({"level"}), json_info(stream)["sequences"][1]["changes"]);
    EXPECT_TRUE(has(result, "\nAll sequences\nDuration              0.160000 s\n")) << result.out;
    EXPECT_TRUE(has(result, "Key-frame distance    2 to 2 frames, mean 2\n"));
    EXPECT_EQ((json{{"min", 2}, {"max", 2}, {"mean", 2.0}}), json_info(stream)["frames"]["key_frame_distance"]);
}

TEST(Info, SequencesBeyondTheBoundAreCounted)
{
    support::sps_description seq = coded_sps(false);
    coded_stream stream;
    for (seq.level_idc = 1; seq.level_idc <= 64; ++seq.level_idc)
        stream.sets(seq).idr();
    EXPECT_FALSE(has(info(stream), "Sequences "));
    EXPECT_EQ(0, json_info(stream)["further_sequences"]);
    stream.sets(seq).idr().sets(seq).idr();
    ++seq.level_idc;
    stream.sets(seq).idr();
    EXPECT_TRUE(has(info(stream), "All sequences\nSequences             64 shown, 2 further ones not\n"));
    const json object = json_info(stream);
    EXPECT_EQ(2, object["further_sequences"]);
    EXPECT_EQ(64U, object["sequences"].size());
}

TEST(Info, AFullSecondHasAPeak)
{
    coded_stream stream;
    stream.sets(coded_sps(false));
    for (std::uint32_t i = 0; i < 25; ++i)
        stream.aud().slice(i % 16, coded::frame, 100);
    const std::string rate = std::to_string(8 * stream.here());
    EXPECT_TRUE(has(info(stream), "Duration              1.000000 s\nBit rate              mean " + rate +
                                      " bit/s, peak " + rate + " bit/s\n"));
}

TEST(Info, ProblemsAreMergedByKindWithFirstOffsetAndCount)
{
    coded_stream stream;
    stream.slice(1).slice(2);
    const std::size_t last = 7 + stream.here();
    stream.slice(3).sets(coded_sps(false)).idr();
    const temporary_file file(support::stream_builder().junk(7).raw(stream));
    const tool_result result = run_tool({"info", "--format", "annexb", file.path()});
    const std::string missing = "pic_parameter_set_id 0 at bit 16: names a picture parameter set which is missing";
    EXPECT_TRUE(has(result, "\nProblems\noffset 0: bytes before the first start code, 7 bytes\noffset 7: " + missing +
                                " (3 times, the last at offset " + std::to_string(last) + ")\n"))
        << result.out;
    EXPECT_EQ("", result.err);
    EXPECT_EQ(1, result.status);
    const tool_result as_json = run_tool({"info", "--json", "--format", "annexb", file.path()});
    const auto problem = [](const std::string& message, std::size_t first, std::size_t last_one, int count, int bytes) {
        return json{{"message", message},
                    {"first_offset", first},
                    {"last_offset", last_one},
                    {"count", count},
                    {"bytes", bytes}};
    };
    EXPECT_EQ(json::array({problem("bytes before the first start code", 0, 0, 1, 7), problem(missing, 7, last, 3, 0)}),
              json::parse(as_json.out)["problems"]);
    EXPECT_EQ(1, as_json.status);
}

TEST(Info, FindingsAreToldApartAndLeaveTheStatus)
{
    const coded_stream stream = coded_stream().sets(coded_sps(false)).idr().slice(5);
    const tool_result result = info(stream);
    EXPECT_NE(std::string::npos, result.out.find("\n\nFindings\noffset ")) << result.out;
    EXPECT_FALSE(has(result, "Problems\n"));
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
    const json object = json_info(stream);
    EXPECT_EQ(1U, object["findings"].size());
    EXPECT_EQ(json::array(), object["problems"]);
}

TEST(Info, RecoveryPointsAndGroupsAreTold)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().recovery_point(0).slice(1).recovery_point(7).slice(2);
    const tool_result result = info(stream);
    EXPECT_TRUE(has(result, "Groups                2 closed, 0 open, 1 from a gradual refresh\n"
                            "Recovery points       2, recovery_frame_cnt 0 to 7\n"))
        << result.out;
    EXPECT_EQ((json{{"closed", 2},
                    {"open", 0},
                    {"gradual", 1},
                    {"recovery_points", 2},
                    {"recovery_frame_cnt_min", 0},
                    {"recovery_frame_cnt_max", 7}}),
              json_info(stream)["groups"]);
}

TEST(Info, LayersHaveALineEach)
{
    const unsigned char prefix = support::header_byte(0, 14);
    coded_stream stream;
    stream.sets(coded_sps(false));
    for (const unsigned temporal_id : {0U, 1U, 1U}) {
        stream.unit(prefix, {0x80, 0x80, static_cast<unsigned char>(temporal_id << 5 | 7)});
        stream.slice(0).aud();
    }
    const json layers = json_info(stream)["layers"];
    ASSERT_EQ(2U, layers.size());
    EXPECT_EQ(1, layers[1]["temporal_id"]);
    EXPECT_EQ(nullptr, layers[1]["view_id"]);
    EXPECT_EQ(2, layers[1]["pictures"]);
    EXPECT_EQ(4, layers[1]["units"]);
    EXPECT_EQ("3", layers[1]["level"]);
    EXPECT_EQ(25, layers[1]["frame_rate"]["value"]);
    const std::uint64_t bytes = layers[1]["bytes"];
    EXPECT_EQ(2 * layers[0]["bytes"].get<std::uint64_t>(), bytes);
    EXPECT_EQ(std::llround(8 * static_cast<double>(bytes) / 0.12), layers[1]["bit_rate"]);
    const tool_result result = info(stream);
    EXPECT_NE(std::string::npos, result.out.find("  D0 Q0 T1: Main, level 3, 176x144, 25 Hz\n")) << result.out;
}

TEST(Info, LongSettingsAreShortenedInTextAlone)
{
    const std::string settings(200, 's');
    const coded_stream stream = coded_stream().sets(coded_sps(false)).encoder("a - b - options: " + settings).idr();
    EXPECT_TRUE(has(info(stream), "Encoder settings      " + settings.substr(0, 96) + " ...\n"));
    EXPECT_EQ(settings, json_info(stream)["encoder_settings"]);
}

TEST(Info, PaddingMakesTwoRates)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr();
    const bytes padded = support::stream_builder().raw(stream).zeros(1000);
    EXPECT_TRUE(has(info(padded), "Bit rate              mean " + std::to_string(200 * (stream.here() + 1000)) +
                                      " bit/s (" + std::to_string(200 * stream.here()) + " bit/s without padding)\n"))
        << info(padded).out;
    const json frames = json_info(padded)["frames"];
    EXPECT_EQ(1000, frames["padding"]);
    EXPECT_EQ(200 * stream.here(), frames["unit_bit_rate"]);
}

TEST(Info, TheDurationIsOfWhatIsTimed)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().slice(1).sets(coded_sps(false, false)).idr();
    EXPECT_TRUE(has(info(stream), "Duration              0.080000 s, that of 2 of the 3 frames\n")) << info(stream).out;
    EXPECT_EQ(2, json_info(stream)["frames"]["timed_frames"]);
}

TEST(Info, TablesHaveALineForEachFact)
{
    const coded_stream stream = rich_stream();
    for (const auto& [option, separator] : {std::pair("--csv", ","), std::pair("--tsv", "\t")}) {
        const tool_result result = run_tool({"info", option, "-"}, {.piped = stream});
        EXPECT_EQ(0, result.status);
        for (const auto& [path, value] : {std::pair("path", "value"), std::pair("sequences[0].size.width", "160"),
                                          std::pair("frames.pictures", "3"), std::pair("encoder_settings", "a=1 b=2"),
                                          std::pair("sequences[0].fixed_frame_rate", "true")})
            EXPECT_NE(std::string::npos,
                      ("\n" + result.out).find("\n" + (path + (separator + std::string(value))) + "\n"))
                << path << result.out;
    }
}

TEST(Info, AUnitThatTheInputCutsIsAProblem)
{
    const bytes stream = support::stream_builder().prefix(4, 50).unit(12, {0xFF, 0x80});
    const tool_result result = run_tool({"info", "--format", "length4", "-"}, {.piped = stream});
    EXPECT_TRUE(has(result, "offset 0: unit of 50 bytes runs past the end of the input\n")) << result.out;
    EXPECT_TRUE(has(result, "Framing               length4\n"));
    EXPECT_EQ(1, result.status);
}

TEST(Info, OfNoUnitsItIsShort)
{
    const tool_result result = run_tool({"info", "--format", "annexb", "/dev/null"});
    EXPECT_EQ("File                  /dev/null\n"
              "Framing               annexb\n"
              "Size                  0 bytes\n"
              "Frames                0, 0 of them key frames\n"
              "\n     units       bytes  NAL unit type\n"
              "\nProblems\n"
              "offset 0: no NAL unit found: the input is empty\n",
              result.out);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(json::array(),
              json::parse(run_tool({"info", "--json", "--format", "annexb", "/dev/null"}).out)["sequences"]);
}

TEST(Info, WhatCannotBeReadEndsIt)
{
    EXPECT_EQ(2, run_tool({"info", "/nonexistent/stream.264"}).status);
    const temporary_file junk(bytes(50, 0xEE));
    EXPECT_EQ(2, run_tool({"info", junk.path()}).status);
    EXPECT_EQ("", run_tool({"info", junk.path()}).out);
    const temporary_file avi(
        support::stream_builder().raw({'R', 'I', 'F', 'F', 0, 0, 0, 0, 'A', 'V', 'I', ' '}).zeros(16));
    EXPECT_EQ(3, run_tool({"info", avi.path()}).status);
    EXPECT_EQ(2, run_tool({"info", "--limit", "3", junk.path()}).status) << "an option of others";
    const temporary_file file(rich_stream());
    EXPECT_EQ(2, run_tool({"info", file.path()}, {.out_path = "/dev/full"}).status);
}

TEST(Info, HelpNamesEveryOptionAndTheExitStatus)
{
    const tool_result result = run_tool({"info", "--help"});
    EXPECT_EQ(0, result.status);
    for (const char* word : {"FILE", "--format", "--max-unit", "--json", "--csv", "--tsv", "Examples:", "Exit status:"})
        EXPECT_NE(std::string::npos, result.out.find(word)) << word;
}

#if !defined(ORV_TEST_SANITIZED)
TEST(Info, LongInputIsReadInBoundedMemory)
{
    // 512 MiB through a pipe, with 96 MiB of address space: frames of 1 MiB, each with problems.
    coded_stream stream;
    stream.aud().sets(coded_sps(false)).idr(coded::frame, std::size_t{1} << 20).unit(support::sei, {1});
    const tool_result result = run_tool({"info", "--format", "annexb", "-"},
                                        {.piped = stream, .repeat = 512, .max_memory = std::size_t{96} << 20});
    EXPECT_TRUE(has(result, "Frames                512, 512 of them key frames\n")) << result.out << result.err;
    EXPECT_EQ(1, result.status) << result.err;
}

TEST(Info, AFrameWithoutEndIsAProblemAndNoMore)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).slice(3);
    while (stream.here() < std::size_t{1} << 20)
        stream.filler(1);
    const tool_result result = run_tool({"info", "--format", "annexb", "-"},
                                        {.piped = stream, .repeat = 24, .max_memory = std::size_t{160} << 20});
    EXPECT_NE(std::string::npos, result.out.find("\nProblems\n")) << result.out << result.err;
    EXPECT_EQ(1, result.status);
}
#endif

namespace {

class InfoStream : public testing::TestWithParam<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, InfoStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

} // namespace

TEST_P(InfoStream, FileAndPipeTellTheSame)
{
    for (const std::string command : {"info", "frames"}) {
        const tool_result from_file = run_tool({command, GetParam().string()});
        const tool_result from_pipe = run_tool({command, "-"}, {.piped = support::read_file(GetParam())});
        const auto behind_name = [](const std::string& text) { return text.substr(text.find('\n')); };
        EXPECT_EQ(behind_name(from_file.out), behind_name(from_pipe.out));
        EXPECT_EQ(run_tool({"inspect", GetParam().string()}).status, from_file.status) << from_file.err;
        EXPECT_TRUE(from_file.status == 1 || !support::is_broken(GetParam()));
        EXPECT_EQ(from_file.status, from_pipe.status);
    }
}

TEST_P(InfoStream, FramesAreThoseThatFramesShows)
{
    const json object = json::parse(run_tool({"info", "--json", GetParam().string()}).out);
    const std::string lines = run_tool({"frames", "--json", GetParam().string()}).out;
    const json summary = json::parse(lines.substr(lines.rfind('\n', lines.size() - 2) + 1));
    const json& frames = object["frames"];
    EXPECT_EQ(summary["frames"], frames["count"]);
    for (const auto& [name, value] : summary.items()) {
        if (name != "record" && name != "frames") {
            EXPECT_EQ(value, frames[name]) << name;
        }
    }
    std::size_t units = 0;
    for (const json& type : object["nal_units"])
        units += type["units"].get<std::size_t>();
    const std::string inspected = run_tool({"inspect", "--nals", GetParam().string()}).out;
    EXPECT_EQ(static_cast<std::size_t>(std::count(inspected.begin(), inspected.end(), '\n')), units);
}
