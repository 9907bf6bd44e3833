// Messages as they reach a user, or do not: a standard error stream that takes none.
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

} // namespace
