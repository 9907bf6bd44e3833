// A function in a process of its own: what it prints, how it ends, and that it does not stay.
#include "jobs/child_process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using orv_h264::child_process;

void say(int descriptor, const std::string& text)
{
    EXPECT_EQ(static_cast<ssize_t>(text.size()), write(descriptor, text.data(), text.size()));
}

void finish(child_process& process)
{
    for (orv_h264::child_stream* const stream : {&process.out, &process.err})
        while (stream->descriptor() >= 0)
            stream->read();
    EXPECT_TRUE(process.reap());
    EXPECT_FALSE(process.reap()) << "once";
}

std::string lines_of(orv_h264::child_stream& stream)
{
    std::string lines;
    stream.take_lines([&](std::string_view piece) { lines += piece; });
    return lines;
}

TEST(ChildProcess, GivesWhatItPrintsAndItsStatus)
{
    child_process process([] {
        say(STDOUT_FILENO, "out\n");
        say(STDERR_FILENO, "err\n");
        return 3;
    });
    finish(process);
    EXPECT_EQ("out\n", lines_of(process.out));
    EXPECT_EQ("err\n", lines_of(process.err));
    EXPECT_EQ(3, WEXITSTATUS(process.wait_status()));
}

TEST(ChildProcess, ALineThatIsNotWholeIsKeptBack)
{
    child_process process([] {
        say(STDOUT_FILENO, "first\nsecond\nthi");
        return std::raise(SIGKILL);
    });
    finish(process);
    EXPECT_EQ("first\nsecond\n", lines_of(process.out));
    EXPECT_TRUE(WIFSIGNALED(process.wait_status()));
    EXPECT_EQ(SIGKILL, WTERMSIG(process.wait_status()));
}

TEST(ChildProcess, ALineMayComeInPieces)
{
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    child_process process([&ends] {
        char go = 0;
        for (const char* part : {"be", "gun ", "here\nnext\n"}) {
            say(STDOUT_FILENO, part);
            EXPECT_EQ(1, read(ends[0], &go, 1));
        }
        return 0;
    });
    std::string came;
    for (int i = 0; i < 3; ++i) {
        process.out.read();
        came += lines_of(process.out) + "|";
        say(ends[1], "!");
    }
    EXPECT_EQ("||begun here\nnext\n|", came);
    finish(process);
    close(ends[0]);
    close(ends[1]);
}

TEST(ChildProcess, IsKilledWithTheObject)
{
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    {
        const child_process process([] {
            pause();
            return 0;
        });
        close(ends[1]); // the process has the other end still
    }
    char nothing = 0;
    EXPECT_EQ(0, read(ends[0], &nothing, 1)) << "the end of the pipe: it is gone";
    EXPECT_EQ(-1, waitpid(-1, nullptr, WNOHANG));
    EXPECT_EQ(ECHILD, errno);
    close(ends[0]);
}

} // namespace
