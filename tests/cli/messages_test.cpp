// Messages as they reach a user, or do not: a standard error stream that takes none, no memory left, names that hold
// control characters.
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

namespace {

using support::bytes;
using support::run_tool;
using support::sps;
using support::stream_builder;
using support::tool_input;
using support::tool_result;

const bytes broken = stream_builder().junk(5).annexb_unit(sps, {0x42, 0x80});

const std::string hostile =
    "a\x1B[31m\n\x7F\xC2\x9B\xC3\xA9.264"; // what colours, breaks the line and begins a sequence
const std::string shown = "a\\x1b[31m\\n\\x7f\\xc2\\x9b\xC3\xA9.264";

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
    const tool_result listed = run_tool({"inspect", "--nals", "-", "--format", "length4", "--max-unit", "1G"},
                                        {.piped = unit, .repeat = 128, .max_memory = 64 * mebibyte});
    EXPECT_EQ("orv-h264: standard input: offset 0: unit of type 7 that there is no memory for (134217728 bytes)\n",
              listed.err);
    EXPECT_EQ(1, listed.status);
}
#endif

TEST(Messages, ControlCharactersOfANameAreEscaped)
{
    const support::temporary_folder folder;
    const std::string path = folder.write(hostile, broken);
    const tool_result result = run_tool({"info", "--format", "annexb", path});
    EXPECT_NE(std::string::npos, result.out.find(folder.path(shown) + "\nFraming")) << result.out;
    EXPECT_EQ("orv-h264: " + folder.path(shown) + ": offset 0: bytes before the first start code (5 bytes)\n",
              run_tool({"inspect", "--nals", "--format", "annexb", path}).err);
    EXPECT_EQ("orv-h264: " + folder.path(shown) +
                  ": no H.264 stream is recognised; if it is one, name its framing with --format\n",
              run_tool({"info", folder.write(hostile, bytes(9, 1))}).err);
    EXPECT_EQ("orv-h264: " + shown + ": No such file or directory\n", run_tool({"info", hostile}).err);
}

TEST(Messages, ControlCharactersOfAnArgumentAreEscaped)
{
    EXPECT_EQ("orv-h264: there is no subcommand " + shown + "; see orv-h264 --help\n", run_tool({hostile}).err);
    EXPECT_EQ("orv-h264: " + shown + " is one argument too many; see orv-h264 inspect --help\n",
              run_tool({"inspect", "-", hostile}).err);
    EXPECT_EQ("orv-h264: --limit: '" + shown + "' is no number; see orv-h264 frames --help\n",
              run_tool({"frames", "--limit", hostile, "-"}).err);
}

TEST(Messages, JsonKeepsTheNameAsItIs)
{
    const support::temporary_folder folder;
    const std::string path = folder.write(hostile, broken);
    const tool_result result = run_tool({"info", "--json", "--format", "annexb", path});
    EXPECT_EQ(path, nlohmann::json::parse(result.out)["file"]);
}

} // namespace
