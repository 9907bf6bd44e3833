#include "jobs/child_process.h"

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

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// In the child: what goes on in it is seen through the pipes alone, and ends with the parent.
void attach(int out, int err, pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(EXIT_FAILURE);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    ::close(out);
    ::close(err);
}

void wait_for(pid_t process, int& status)
{
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR)
        ;
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
    ssize_t count = 0;
    do
        count = ::read(pipe_end, piece.data(), piece.size());
    while (count < 0 && errno == EINTR);
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
    wait_for(id, status);
}

bool child_process::reap()
{
    if (has_ended() || out.descriptor() >= 0 || err.descriptor() >= 0)
        return false;
    wait_for(id, status);
    id = -1;
    return true;
}

} // namespace orv_h264
