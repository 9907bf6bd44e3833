#include "output_file.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv_h264 {

namespace {

constexpr std::array<int, 4> ending_signals = {SIGHUP, SIGINT, SIGPIPE, SIGTERM};

// What a signal handler removes: it can read no std::string. The tool writes one file a run.
std::array<char, 4096> unfinished;

void remove_unfinished(int signal_number)
{
    ::unlink(unfinished.data());
    static_cast<void>(::signal(signal_number, SIG_DFL));
    static_cast<void>(::raise(signal_number));
}

// A signal that is ignored stays ignored: nohup ignores SIGHUP for the tool that it starts.
void handle_signals(void (*handler)(int))
{
    for (const int number : ending_signals) {
        struct sigaction now = {};
        if (::sigaction(number, nullptr, &now) != 0 || now.sa_handler != SIG_IGN)
            static_cast<void>(::signal(number, handler));
    }
}

bool is_written_as_it_comes(const std::string& path)
{
    struct stat status = {};
    return path == "-" || (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode));
}

/// The permissions of the file that is replaced, or those of a new one.
mode_t permissions(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) == 0)
        return status.st_mode & 07777U;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666U & ~mask;
}

} // namespace

output_file::output_file(const std::string& path) : shown_name(path == "-" ? "standard output" : path)
{
    if (is_written_as_it_comes(path)) {
        descriptor = path == "-" ? STDOUT_FILENO : ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor < 0)
            fail();
        return;
    }
    std::error_code not_there;
    place = std::filesystem::weakly_canonical(path, not_there).string(); // of a link, the file that it names
    if (not_there)
        place = path;
    open_beside();
}

void output_file::open_beside()
{
    beside = place + ".XXXXXX";
    if (beside.size() >= unfinished.size()) {
        errno = ENAMETOOLONG;
        fail();
    }
    descriptor = ::mkstemp(beside.data());
    if (descriptor < 0) {
        beside.clear();
        fail();
    }
    std::memcpy(unfinished.data(), beside.c_str(), beside.size() + 1);
    handle_signals(remove_unfinished);
    if (::fchmod(descriptor, permissions(place)) != 0)
        fail();
}

output_file::~output_file()
{
    if (descriptor > STDOUT_FILENO)
        ::close(descriptor);
    if (!beside.empty())
        ::unlink(beside.c_str());
}

void output_file::write(std::span<const unsigned char> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            fail();
        bytes = bytes.subspan(static_cast<std::size_t>(count < 0 ? 0 : count));
    }
}

void output_file::commit()
{
    if (beside.empty())
        return;
    const int closed = ::close(descriptor);
    descriptor = -1;
    if (closed != 0 || std::rename(beside.c_str(), place.c_str()) != 0)
        fail();
    handle_signals(SIG_DFL);
    beside.clear();
}

void output_file::fail() const
{
    throw std::system_error(errno, std::generic_category(), shown_name);
}

} // namespace orv_h264
