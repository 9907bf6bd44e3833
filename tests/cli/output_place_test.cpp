// Where `convert` puts its output: behind links, under long names, in place of what may not be written.
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

using support::bytes;
using support::read_file;
using support::run_tool;
using support::sps;
using support::stream_builder;
using support::tool_result;

class OutputPlace : public testing::Test {
protected:
    tool_result convert(const std::string& out) { return run_tool({"convert", in, out, "--to", "length4"}); }

    void expect_converted(const std::string& out, const std::string& place)
    {
        const tool_result result = convert(out);
        EXPECT_EQ("", result.err);
        EXPECT_EQ(0, result.status);
        EXPECT_EQ(prefixed, read_file(place));
    }

    void expect_refused(const std::string& out, const std::string& reason)
    {
        const tool_result result = convert(out);
        EXPECT_EQ("orv-h264: " + out + ": " + reason + "\n", result.err);
        EXPECT_EQ(2, result.status);
    }

    const bytes prefixed = stream_builder().prefixed_unit(4, sps, {0x42, 0x80});
    support::temporary_folder folder;
    std::string in = folder.write("in", stream_builder().annexb_unit(sps, {0x42, 0x80}));
};

TEST_F(OutputPlace, ALinkToNothingYetIsWrittenThrough)
{
    const std::string link = folder.path("link");
    const std::string target = folder.path("sub/target");
    fs::create_directory(folder.path("sub"));
    fs::create_symlink("sub/second", link); // relative to the folder of the link
    fs::create_symlink("target", folder.path("sub/second"));
    for (const char* when : {"not there", "there"}) {
        expect_converted(link, target);
        EXPECT_TRUE(fs::is_symlink(link)) << when;
        EXPECT_TRUE(fs::is_symlink(folder.path("sub/second"))) << when;
        EXPECT_FALSE(fs::is_symlink(target)) << when;
    }
    EXPECT_EQ(3, folder.files());
}

TEST_F(OutputPlace, AnAbsoluteLinkToNothingYetIsWrittenThrough)
{
    fs::create_symlink(folder.path("target"), folder.path("link"));
    expect_converted(folder.path("link"), folder.path("target"));
    EXPECT_TRUE(fs::is_symlink(folder.path("link")));
}

TEST_F(OutputPlace, LinksInACircleAreRefused)
{
    fs::create_symlink("second", folder.path("link"));
    fs::create_symlink("link", folder.path("second"));
    expect_refused(folder.path("link"), std::strerror(ELOOP));
    EXPECT_EQ(3, folder.files());
}

TEST_F(OutputPlace, AFileThatNobodyMayWriteIsKept)
{
    const std::string out = folder.write("out", {1, 2, 3});
    fs::create_symlink("out", folder.path("link"));
    chmod(out.c_str(), 0444);
    expect_refused(out, std::strerror(EACCES));
    expect_refused(folder.path("link"), std::strerror(EACCES));
    EXPECT_EQ(bytes({1, 2, 3}), read_file(out));
    EXPECT_EQ(3, folder.files());
}

TEST_F(OutputPlace, TheLongestNameThereIsWorks)
{
    const std::string longest(NAME_MAX, 'x');
    expect_converted(folder.path(longest), folder.path(longest));
    expect_refused(folder.path(longest + "x"), std::strerror(ENAMETOOLONG));
    EXPECT_EQ(2, folder.files());
}

TEST_F(OutputPlace, AFolderThatTakesNoFileIsNamed)
{
    const auto refusal_of = [](const std::string& place) { return "cannot make a file in the folder " + place + ": "; };
    expect_refused(folder.path("no/out"), refusal_of(folder.path("no")) + std::strerror(ENOENT));
    expect_refused("/proc/out", refusal_of("/proc") + std::strerror(ENOENT)); // is there, but takes none
    fs::create_symlink(folder.path("no/out"), folder.path("link"));
    expect_refused(folder.path("link"), refusal_of(folder.path("no")) + std::strerror(ENOENT));
}

TEST_F(OutputPlace, AFolderThatMayNotBeWrittenIsNamed)
{
    const std::string closed = folder.path("closed");
    fs::create_directory(closed);
    if (geteuid() == 0)
        GTEST_SKIP() << "root may write everywhere";
    chmod(closed.c_str(), 0555);
    expect_refused(closed + "/out", "cannot make a file in the folder " + closed + ": " + std::strerror(EACCES));
    chmod(closed.c_str(), 0755);
}

TEST_F(OutputPlace, APipeWithANameIsWrittenAsItComes)
{
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(0, convert(pipe).status);
    bytes came(prefixed.size() + 1);
    const ssize_t count = read(reader, came.data(), came.size());
    close(reader);
    came.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    EXPECT_EQ(prefixed, came);
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(OutputPlace, TheStandardOutputHasANameToo)
{
    fs::create_symlink("/proc/self/fd/1", folder.path("stdout")); // as /dev/stdout is
    const tool_result result = convert(folder.path("stdout"));
    EXPECT_EQ(std::string(prefixed.begin(), prefixed.end()), result.out);
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(fs::is_symlink(folder.path("stdout")));
}

TEST_F(OutputPlace, AnOpenFileWithoutANameIsWrittenAsItComes)
{
    const std::string gone = folder.write("gone", bytes(100, 1));
    const int open_still = open(gone.c_str(), O_RDWR | O_CLOEXEC);
    fs::remove(gone);
    const std::string name = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(open_still);
    fs::create_symlink(name, folder.path("link"));
    expect_converted(folder.path("link"), name);
    EXPECT_EQ(2, folder.files());
    close(open_still);
}

} // namespace
