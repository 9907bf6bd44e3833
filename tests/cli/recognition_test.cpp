// What each subcommand makes of an input whose framing is not told.
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::pps;
using support::run_tool;
using support::sps;
using support::stream_builder;
using support::tool_result;

const bytes real_sps = {0x4D, 0x40, 0x0B, 0xEC, 0xA1, 0x82, 0xB6, 0x02, 0x20, 0x00, 0x00,
                        0x03, 0x00, 0x20, 0x00, 0x00, 0x06, 0x51, 0xE2, 0x85, 0x32, 0xC0};
const bytes real_pps = {0xE9, 0x38, 0x64, 0xB2};
const bytes hevc = stream_builder()
                       .annexb_unit(0x40, {1, 0x0C, 1, 0xFF, 0xFF})
                       .annexb_unit(0x42, {1, 1, 1, 0x60})
                       .annexb_unit(0x44, {1, 0xC1, 0x72});
const bytes avi = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'A', 'V', 'I', ' '};
const bytes mp4 = {0, 0, 0, 24, 'f', 't', 'y', 'p', 'i', 's', 'o', 'm'};
const bytes record = stream_builder()
                         .raw({1, 0x4D, 0x40, 0x0B, 0xFF, 0xE1})
                         .prefixed_unit(2, sps, real_sps)
                         .raw({1})
                         .prefixed_unit(2, pps, real_pps);

class Recognition : public testing::TestWithParam<std::string> {
protected:
    tool_result run(const bytes& input, const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments = {GetParam(), "-"};
        if (GetParam() == "convert")
            arguments.insert(arguments.end(), {folder.path("out"), "--to", "length4"});
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run_tool(arguments, {.piped = input});
    }

    void expect_refused(const bytes& input, int status, const std::string& reason)
    {
        const tool_result result = run(input);
        EXPECT_EQ("orv-h264: standard input: " + reason + "\n", result.err);
        EXPECT_EQ("", result.out);
        EXPECT_EQ(status, result.status);
        EXPECT_EQ(0, folder.files());
    }

    support::temporary_folder folder;
};

using RecognitionOfStreams = Recognition;

const auto name_of = [](const auto& subcommand) { return subcommand.param; };
INSTANTIATE_TEST_SUITE_P(Subcommands, Recognition, testing::Values("inspect", "frames", "info", "convert", "avcc"),
                         name_of);
INSTANTIATE_TEST_SUITE_P(Subcommands, RecognitionOfStreams, testing::Values("inspect", "frames", "info", "convert"),
                         name_of);

} // namespace

TEST_P(Recognition, NamesOtherFormatsAndRefusesThemWithStatus3)
{
    const std::string advice = GetParam() == "avcc" ? "" : "; if it is, name its framing with --format";
    expect_refused(hevc, 3, "this is HEVC video, not H.264" + advice);
    expect_refused(avi, 3, "this is AVI; take the H.264 stream out of it first");
    expect_refused({'f', 'L', 'a', 'C', 0, 0, 0, 34}, 3, "this is FLAC audio, not H.264" + advice);
}

TEST_P(RecognitionOfStreams, TheFramingThatIsToldIsTaken)
{
    for (const bytes& input : {hevc, mp4, record}) {
        const tool_result result = run(input, {"--format", "annexb"});
        EXPECT_NE(2, result.status) << result.err;
        EXPECT_NE(3, result.status) << result.err;
        EXPECT_EQ(std::string::npos, result.err.find("this is")) << result.err;
    }
}

TEST_P(RecognitionOfStreams, ARecordIsForAvcc)
{
    expect_refused(record, 2, "this is a decoder configuration record, no stream; orv-h264 avcc shows it");
}

TEST_P(RecognitionOfStreams, WhatIsNotRecognisedMayBeTold)
{
    expect_refused({'t', 'e', 'x', 't', ' ', 't', 'e', 'x', 't'}, 2,
                   "no H.264 stream is recognised; if it is one, name its framing with --format");
}

TEST_P(RecognitionOfStreams, LengthPrefixesAreReadAsIfTheyWereTold)
{
    for (const unsigned int size : {1U, 2U, 3U, 4U}) {
        const bytes stream = stream_builder().prefixed_unit(size, sps, real_sps).prefixed_unit(size, pps, real_pps);
        const tool_result found = run(stream);
        const tool_result told = run(stream, {"--format", "length" + std::to_string(size)});
        EXPECT_EQ(0, found.status) << found.err;
        EXPECT_EQ(told.err, found.err);
        if (GetParam() == "info") // which says how it knows
            continue;
        EXPECT_EQ(told.out, found.out);
    }
}

TEST(RecognitionByAvcc, OfAStreamSaysHowARecordIsMade)
{
    const bytes annexb = stream_builder().annexb_unit(sps, real_sps).annexb_unit(pps, real_pps);
    const bytes length4 = stream_builder().prefixed_unit(4, sps, real_sps).prefixed_unit(4, pps, real_pps);
    for (const auto& [stream, framing] : {std::pair{annexb, "annexb"}, {length4, "length4"}}) {
        const tool_result result = run_tool({"avcc", "-"}, {.piped = stream});
        EXPECT_EQ(std::string("orv-h264: standard input: this is an H.264 stream (") + framing +
                      "), no record; orv-h264 convert --avcc makes one of it\n",
                  result.err);
        EXPECT_EQ(2, result.status);
    }
    EXPECT_EQ(0, run_tool({"avcc", "-"}, {.piped = record}).status);
}
