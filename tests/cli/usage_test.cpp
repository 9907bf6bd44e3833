// What the tool says of a command line that it cannot use.
#include "support/run_tool.h"

#include <gtest/gtest.h>

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
    {{"frobnicate", "--json", "-"}, "there is no option --json; see orv-h264 --help"},
    {{"--frobnicate"}, "there is no option --frobnicate; see orv-h264 --help"},
    {{"info"}, "FILE is required; see orv-h264 info --help"},
    {{"info", "--frobnicate", "-"}, "info has no option --frobnicate; see orv-h264 info --help"},
    {{"info", "--frobnicate"}, "info has no option --frobnicate; see orv-h264 info --help"},
    {{"info", "--to", "annexb", "-"}, "info has no option --to; see orv-h264 info --help"},
    {{"info", "-", "more"}, "more is one argument too many; see orv-h264 info --help"},
    {{"inspect", "--limit"}, "--limit: 1 required N missing; see orv-h264 inspect --help"},
    {{"inspect", "--limit", "-1", "-"}, "--limit: '-1' is no number; see orv-h264 inspect --help"},
    {{"frames", "--limit", "many", "-"}, "--limit: 'many' is no number; see orv-h264 frames --help"},
    {{"inspect", "--only", "32", "-"}, "--only: '32' is no NAL unit type (0 to 31); see orv-h264 inspect --help"},
    {{"inspect", "--max-unit", "x", "-"},
     "--max-unit: 'x' is no size (for example 500000, 64M or 1G); see orv-h264 inspect --help"},
    {{"inspect", "--max-unit", "-5", "-"},
     "--max-unit: '-5' is no size (for example 500000, 64M or 1G); see orv-h264 inspect --help"},
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

TEST(Usage, ASizeMayHaveASuffix)
{
    for (const char* size : {"1000", "1K", "64M", "1G", "2kb", "3MiB"}) {
        const tool_result result = run_tool({"inspect", "--max-unit", size, "-"});
        EXPECT_EQ(result.err, "orv-h264: standard input: offset 0: no NAL unit found: the input is empty\n") << size;
    }
}

} // namespace
