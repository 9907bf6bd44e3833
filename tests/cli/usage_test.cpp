// What the tool says of a command line that it cannot use.
#include "support/run_tool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace {

using support::run_tool;
using support::tool_result;

struct wrong_usage {
    std::vector<std::string> arguments;
    const char* message;
};

// Each is refused before the input is looked at: the standard input is empty, which has a message of its own.
const wrong_usage wrong_usages[] = {
    {{}, "a subcommand is required; see orv-h264 --help"},
    {{"frobnicate"}, "there is no subcommand frobnicate; see orv-h264 --help"},
    {{"frobnicate", "--json", "-"}, "there is no subcommand frobnicate; see orv-h264 --help"},
    {{"insp", "-"}, "there is no subcommand insp (inspect?); see orv-h264 --help"},
    {{"information"}, "there is no subcommand information (info?); see orv-h264 --help"},
    {{ORV_TEST_STREAMS "/pulldown32.264"},
     "there is no subcommand " ORV_TEST_STREAMS "/pulldown32.264; info tells what a file is; see orv-h264 --help"},
    {{"--frobnicate"}, "there is no option --frobnicate; see orv-h264 --help"},
    {{"--to", "annexb"}, "--to has to stand behind a subcommand that has it (convert, cut); see orv-h264 --help"},
    {{"--split-fields", "frobnicate"},
     "--split-fields has to stand behind a subcommand that has it (frames); see orv-h264 --help"},
    {{"help", "frobnicate"}, "there is no subcommand frobnicate; see orv-h264 --help"},
    {{"help", "info", "inspect"}, "inspect is one argument too many; see orv-h264 help --help"},
    {{"info"}, "FILE is required; see orv-h264 info --help"},
    {{"info", "--frobnicate", "-"}, "info has no option --frobnicate; see orv-h264 info --help"},
    {{"info", "--frobnicate"}, "info has no option --frobnicate; see orv-h264 info --help"},
    {{"info", "--to", "annexb", "-"}, "info has no option --to (an option of convert, cut); see orv-h264 info --help"},
    {{"convert", "-", "--split-fields", "-"},
     "convert has no option --split-fields (an option of frames); see orv-h264 convert --help"},
    {{"--split-fields", "info", "-"},
     "info has no option --split-fields (an option of frames); see orv-h264 info --help"},
    {{"info", "--version"}, "--version stands alone, without info; see orv-h264 info --help"},
    {{"info", "-", "-V"}, "-V stands alone, without info; see orv-h264 info --help"},
    {{"inspect", "-", "more"}, "more is one argument too many; see orv-h264 inspect --help"},
    {{"info", "--null", "-"},
     "--null: it tells of the list of --files-from, which is not given; see orv-h264 info --help"},
    {{"info", "--jobs", "-1", "-"}, "--jobs: '-1' is no number; see orv-h264 info --help"},
    {{"frames", "--jobs", "10000", "-"}, "--jobs: '10000' is too many; see orv-h264 frames --help"},
    {{"inspect", "--limit"}, "--limit needs a value; see orv-h264 inspect --help"},
    {{"info", "--format"}, "--format needs a value; see orv-h264 info --help"},
    {{"inspect", "--limit", "3", "--limit", "4", "-"}, "--limit is given more than once; see orv-h264 inspect --help"},
    {{"info", "--max-unit", "1K", "--max-unit", "1K", "-"},
     "--max-unit is given more than once; see orv-h264 info --help"},
    {{"info", "--format", "annexb", "-", "--format", "annexb"},
     "--format is given more than once; see orv-h264 info --help"},
    {{"convert", "a", "b", "--to", "annexb", "--to", "annexb"},
     "--to is given more than once; see orv-h264 convert --help"},
    {{"--json", "info", "-"}, "--json has to stand behind info; see orv-h264 info --help"},
    {{"--limit=3", "frames", "-"}, "--limit has to stand behind frames; see orv-h264 frames --help"},
    {{"--limit", "3", "frames", "-"}, "--limit has to stand behind frames; see orv-h264 frames --help"},
    {{"--frobnicate", "info", "-"}, "info has no option --frobnicate; see orv-h264 info --help"},
    {{"--", "info", "-"}, "-- has to stand behind info; see orv-h264 info --help"},
    {{"convert", "--", "-a", "-b"}, "--to is required; see orv-h264 convert --help"},
    {{"convert", "--", "-a", "-b", "--to", "annexb"}, "--to is one argument too many; see orv-h264 convert --help"},
    {{"inspect", "--limit", "-1", "-"}, "--limit: '-1' is no number; see orv-h264 inspect --help"},
    {{"inspect", "--limit", "0x10", "-"}, "--limit: '0x10' is no number; see orv-h264 inspect --help"},
    {{"frames", "--limit", "many", "-"}, "--limit: 'many' is no number; see orv-h264 frames --help"},
    {{"inspect", "--only", "32", "-"},
     "--only: '32' is no NAL unit type (0 to 31, or one of slice, idr, partition, sei, sps, pps, aud, end, filler, "
     "sps-ext, prefix, subset-sps, dps, auxiliary, extension); see orv-h264 inspect --help"},
    {{"inspect", "--max-unit", "x", "-"},
     "--max-unit: 'x' is no size (for example 500000, 64M or 1G); see orv-h264 inspect --help"},
    {{"inspect", "--max-unit", "-5", "-"},
     "--max-unit: '-5' is no size (for example 500000, 64M or 1G); see orv-h264 inspect --help"},
    {{"inspect", "--max-unit", "0x10", "-"},
     "--max-unit: '0x10' is no size (for example 500000, 64M or 1G); see orv-h264 inspect --help"},
    {{"inspect", "--max-unit", "5X", "-"},
     "--max-unit: '5X' is no size (for example 500000, 64M or 1G); see orv-h264 inspect --help"},
    {{"inspect", "--max-unit", "99999999999G", "-"},
     "--max-unit: '99999999999G' is no size (for example 500000, 64M or 1G); see orv-h264 inspect --help"},
    {{"info", "--format", "length5", "-"},
     "--format: 'length5' is no framing (annexb, length1, length2, length3, length4); see orv-h264 info --help"},
    {{"convert", "-", "-"}, "--to is required; see orv-h264 convert --help"},
    {{"convert", "-", "--to", "annexb"}, "OUT is required; see orv-h264 convert --help"},
    {{"convert", "-", "-", "--to", "avcc"},
     "--to: 'avcc' is no framing (annexb, length1, length2, length3, length4); see orv-h264 convert --help"},
};

TEST(Usage, WhatIsWrongIsNamedWithTheHelpToReadAndTheStatusIsTwo)
{
    for (const wrong_usage& wrong : wrong_usages) {
        const tool_result result = run_tool(wrong.arguments);
        EXPECT_EQ(result.err, std::string("orv-h264: ") + wrong.message + "\n");
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.status, 2);
    }
}

TEST(Usage, HelpComesWithoutWhatIsRequired)
{
    for (const char* subcommand : {"info", "inspect", "frames", "convert", "avcc"})
        for (const char* help : {"-h", "--help"}) {
            const tool_result result = run_tool({subcommand, help});
            EXPECT_NE(result.out.find(std::string("Usage: orv-h264 ") + subcommand), std::string::npos) << result.out;
            EXPECT_EQ(result.err, "");
            EXPECT_EQ(result.status, 0);
        }
}

TEST(Usage, HelpIsASubcommandToo)
{
    EXPECT_EQ(run_tool({"--help"}).out, run_tool({"help"}).out);
    for (const char* subcommand : {"info", "inspect", "frames", "convert", "avcc", "help"}) {
        const tool_result result = run_tool({"help", subcommand});
        EXPECT_EQ(run_tool({subcommand, "--help"}).out, result.out);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.status, 0);
    }
}

TEST(Usage, TheVersionHasAShortOption)
{
    const tool_result result = run_tool({"-V"});
    EXPECT_EQ("orv-h264 " ORV_TEST_VERSION "\n", result.out);
    EXPECT_EQ(run_tool({"--version"}).out, result.out);
    EXPECT_EQ(0, result.status);
}

TEST(Usage, ASizeMayHaveASuffix)
{
    for (const char* size : {"1000", "1K", "64M", "1G", "2kb", "3MiB"}) {
        const tool_result result = run_tool({"inspect", "--max-unit", size, "-"});
        EXPECT_EQ(result.err, "orv-h264: standard input: offset 0: no NAL unit found: the input is empty\n") << size;
    }
}

TEST(Usage, ANumberIsDecimalWithZerosBeforeItToo)
{
    support::stream_builder delimiters;
    for (int i = 0; i < 20; ++i)
        delimiters.annexb_unit(support::aud, {0x10});
    const auto count_lines = [](const std::string& text) { return std::count(text.begin(), text.end(), '\n'); };
    for (const auto& [limit, lines] : {std::pair{"010", 10}, {"08", 8}, {"0", 0}, {"00", 0}, {"0012", 12}, {"3", 3}})
        EXPECT_EQ(lines, count_lines(run_tool({"inspect", "--nals", "--limit", limit, "-"}, {.piped = delimiters}).out))
            << limit;
    const support::bytes unit_of_ten = support::stream_builder().annexb_unit(support::sps, support::bytes(9, 0x55));
    for (const auto& [most, status] : {std::pair{"010", 0}, {"09", 1}, {"000K", 1}, {"01K", 0}})
        EXPECT_EQ(status, run_tool({"inspect", "--nals", "--max-unit", most, "-"}, {.piped = unit_of_ten}).status)
            << most;
}

TEST(Usage, ArgumentsBehindTwoDashesAreNamesOfFiles)
{
    EXPECT_EQ("orv-h264: -a: No such file or directory\n",
              run_tool({"convert", "--to", "annexb", "--", "-a", "-b"}).err);
}

} // namespace
