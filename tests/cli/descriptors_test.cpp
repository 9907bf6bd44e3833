// The tool as a program starts it that has closed some of its standard streams: no file that the tool opens takes the
// place of one.
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using support::bytes;
using support::pps;
using support::read_file;
using support::run_tool;
using support::sps;
using support::stream_builder;
using support::tool_result;

class ClosedDescriptors : public testing::Test {
protected:
    tool_result convert(const std::string& from, const std::string& into, const std::vector<int>& closed)
    {
        return run_tool({"convert", from, into, "--to", "length4", "--format", "annexb"}, {.closed = closed});
    }

    const bytes prefixed = stream_builder().prefixed_unit(4, sps, {0x42, 0x80}).prefixed_unit(4, pps, {0x55, 0x80});
    const bytes before = {1, 2, 3};
    support::temporary_folder folder;
    std::string in = folder.write("in", stream_builder().annexb_unit(sps, {0x42, 0x80}).annexb_unit(pps, {0x55, 0x80}));
    std::string out = folder.write("out", before);
};

} // namespace

TEST_F(ClosedDescriptors, WhoNeedsNoneOfThemConverts)
{
    for (const std::vector<int>& closed : {std::vector<int>{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}}) {
        folder.write("out", before);
        const tool_result result = convert(in, out, closed);
        EXPECT_EQ("", result.err);
        EXPECT_EQ(0, result.status);
        EXPECT_EQ(prefixed, read_file(out));
    }
}

TEST_F(ClosedDescriptors, AnInputThatIsClosedIsRefusedAndTheOutputStays)
{
    const std::pair<const char*, const char*> messages[] = {
        {"-", "orv-h264: standard input: offset 0: Bad file descriptor\n"},
        {"/dev/stdin", "orv-h264: /dev/stdin: offset 0: Is a directory\n"},
    };
    for (const auto& [name, message] : messages) {
        const tool_result result = convert(name, out, {STDIN_FILENO});
        EXPECT_EQ(message, result.err);
        EXPECT_EQ(2, result.status);
        EXPECT_EQ(before, read_file(out));
    }
}

TEST_F(ClosedDescriptors, AnOutputThatIsClosedOrFullIsAnError)
{
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"inspect", "--nals", in},
                                                      {"info", in},
                                                      {"convert", in, "-", "--to", "length4"},
                                                      {"--help"},
                                                      {"--version"}}) {
        const tool_result closed = run_tool(arguments, {.closed = {STDOUT_FILENO}});
        EXPECT_EQ("orv-h264: standard output: Bad file descriptor\n", closed.err) << arguments.front();
        EXPECT_EQ(2, closed.status) << arguments.front();
        const tool_result full = run_tool(arguments, {.out_path = "/dev/full"});
        EXPECT_EQ("orv-h264: standard output: No space left on device\n", full.err) << arguments.front();
        EXPECT_EQ(2, full.status) << arguments.front();
    }
}

TEST_F(ClosedDescriptors, AnOutputThatIsClosedIsAnErrorByAnotherNameToo)
{
    const std::string link = folder.path("stdout"); // as /dev/stdout is
    std::filesystem::create_symlink("/proc/self/fd/1", link);
    const tool_result result = convert(in, link, {STDOUT_FILENO});
    EXPECT_EQ("orv-h264: " + link + ": Is a directory\n", result.err);
    EXPECT_EQ(2, result.status);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
}

TEST_F(ClosedDescriptors, MessagesNeverReachTheOutput)
{
    folder.write("in", stream_builder().junk(5).annexb_unit(sps, {0x42, 0x80}).annexb_unit(pps, {0x55, 0x80}));
    for (const std::vector<int>& closed : {std::vector<int>{2}, {1, 2}, {0, 1, 2}}) {
        folder.write("out", before);
        EXPECT_EQ(1, convert(in, out, closed).status);
        EXPECT_EQ(prefixed, read_file(out));
    }
}
