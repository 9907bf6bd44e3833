#include "jobs/child_process.h"

#include "system_calls.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orv_h264 {

namespace {

constexpr int status_unattached = 5; // of a process that has nobody to tell anything to

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

void put_in_place_of(int standard, int pipe_end)
{
    if (again([&] { return ::dup2(pipe_end, standard); }) < 0) // it would print where the parent does
        ::_exit(status_unattached);
    ::close(pipe_end);
}

/// In the child: what goes on in it is seen through the pipes alone, and ends with the parent.
void attach(int out, int err, pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(status_unattached);
    put_in_place_of(STDOUT_FILENO, out);
    put_in_place_of(STDERR_FILENO, err);
}

bool wait_for(pid_t process, int& status)
{
    return again([&] { return ::waitpid(process, &status, 0); }) == process;
}

} // namespace

int child_stream::open()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("cannot make a pipe");
    pipe_end = ends[0];
    return ends[1];
}

void child_stream::close()
{
    if (pipe_end >= 0)
        ::close(pipe_end);
    pipe_end = -1;
}

void child_stream::read()
{
    std::array<char, std::size_t{64} * 1024> piece{};
    const ssize_t count = again([&] { return ::read(pipe_end, piece.data(), piece.size()); });
    if (count < 0)
        fail("cannot read from a process");
    if (count > 0)
        kept.add({piece.data(), static_cast<std::size_t>(count)});
    else
        close();
}

void child_stream::take_lines(const std::function<void(std::string_view)>& to)
{
    constexpr std::size_t longest_line = std::size_t{16} * 1024 * 1024;
    kept.take([&](std::string_view piece) {
        const std::size_t last_end = piece.rfind('\n');
        const std::size_t fence = last_end == std::string_view::npos ? 0 : last_end + 1;
        if (fence != 0 || begun.size() > longest_line) {
            begun += piece.substr(0, fence);
            to(begun);
            begun.clear();
        }
        begun += piece.substr(fence);
    });
}

child_process::child_process(const std::function<int()>& run)
{
    const int out_end = out.open();
    int err_end = -1;
    try {
        err_end = err.open();
        const pid_t parent = ::getpid();
        id = ::fork();
        if (id == 0) {
            attach(out_end, err_end, parent);
            out.close(); // descriptors that are left, where there are few, it needs itself
            err.close();
            ::_exit(run());
        }
        if (id < 0)
            fail("cannot start a process");
    } catch (...) {
        ::close(out_end);
        if (err_end >= 0)
            ::close(err_end);
        throw;
    }
    ::close(out_end);
    ::close(err_end);
}

child_process::~child_process()
{
    if (has_ended())
        return;
    ::kill(id, SIGKILL);
    static_cast<void>(wait_for(id, status));
}

bool child_process::reap()
{
    if (has_ended() || out.descriptor() >= 0 || err.descriptor() >= 0)
        return false;
    if (!wait_for(id, status))
        fail("cannot wait for a process");
    id = -1;
    return true;
}

} // namespace orv_h264
