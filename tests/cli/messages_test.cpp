// Messages as they reach a user, or do not: a standard error stream that takes none, no memory left.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using support::bytes;
using support::run_tool;
using support::sps;
using support::stream_builder;
using support::tool_input;
using support::tool_result;

const bytes broken = stream_builder().junk(5).annexb_unit(sps, {0x42, 0x80});

TEST(Messages, AStandardErrorThatTakesNoneChangesNothingElse)
{
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"inspect", "--format", "annexb", "-"},
                                                      {"inspect", "--json", "--format", "annexb", "-"},
                                                      {"frames", "--format", "annexb", "-"},
                                                      {"convert", "--format", "annexb", "--to", "length4", "-", "-"},
                                                      {"avcc", "-"},
                                                      {"info", "nowhere.264"},
                                                      {"info", "--frobnicate"}}) {
        const tool_result told = run_tool(arguments, {.piped = broken});
        EXPECT_NE("", told.err);
        for (const tool_input& how : {tool_input{.piped = broken, .err_path = "/dev/full"},
                                      tool_input{.piped = broken, .closed = {STDERR_FILENO}}}) {
            const tool_result lost = run_tool(arguments, how);
            EXPECT_EQ(told.out, lost.out);
            EXPECT_EQ(told.status, lost.status);
        }
    }
}

#if !defined(ORV_TEST_SANITIZED)
TEST(Messages, NoMemoryIsToldInWords)
{
    constexpr unsigned int mebibyte = 1 << 20;
    bytes unit = stream_builder().prefix(4, 128 * mebibyte).unit(sps, {});
    unit.resize(mebibyte, 0x55);
    const tool_result result =
        run_tool({"convert", "-", "/dev/null", "--format", "length4", "--to", "annexb", "--max-unit", "1G"},
                 {.piped = unit, .repeat = 128, .max_memory = 64 * mebibyte});
    EXPECT_EQ("orv-h264: out of memory\n", result.err);
    EXPECT_EQ(2, result.status);
}
#endif

} // namespace
