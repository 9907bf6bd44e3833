#include "output_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv_h264 {

namespace {

constexpr std::array<int, 7> ending_signals = {SIGHUP, SIGINT, SIGPIPE, SIGQUIT, SIGTERM, SIGXCPU, SIGXFSZ};

// What a signal handler removes: it can read no std::string. The tool writes two files a run at the most; an empty name
// is none.
using file_name = std::array<char, PATH_MAX>;
std::array<file_name, 2> unfinished;

void remove_unfinished(int signal_number)
{
    for (const file_name& name : unfinished)
        ::unlink(name.data());
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

bool is_free(const file_name& name)
{
    return name[0] == '\0';
}

/// From now on a signal that ends the tool removes this file.
void note_unfinished(const std::string& path)
{
    file_name* const name = std::find_if(unfinished.begin(), unfinished.end(), is_free);
    if (name == unfinished.end())
        throw std::logic_error("more files than expected");
    path.copy(name->data() + 1, name->size() - 2, 1); // the name is whole before it is one
    (*name)[0] = path[0];
    handle_signals(remove_unfinished);
}

void forget_unfinished(const std::string& path)
{
    for (file_name& name : unfinished)
        if (path == name.data())
            name.fill('\0');
    if (std::all_of(unfinished.begin(), unfinished.end(), is_free))
        handle_signals(SIG_DFL);
}

mode_t permissions_of_a_new_file()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666U & ~mask;
}

/// Of a link the file that it names, which need not be there.
std::filesystem::path end_of_links(std::filesystem::path path)
{
    constexpr int most_links = 40; // as many as Linux follows
    std::error_code no_link;
    for (int links = 0; links < most_links; ++links) {
        const std::filesystem::path next = std::filesystem::read_symlink(path, no_link);
        if (no_link)
            break;
        path = path.parent_path() / next;
    }
    return path;
}

/// False of an open file that was removed, for one.
bool is_at(const std::string& path, const struct stat& file)
{
    struct stat there = {};
    return ::stat(path.c_str(), &there) == 0 && there.st_dev == file.st_dev && there.st_ino == file.st_ino;
}

} // namespace

output_file::output_file(const std::string& path) : output_file()
{
    if (path == "-") {
        shown_name = "standard output";
        descriptor = STDOUT_FILENO;
        return;
    }
    shown_name = path;
    place = end_of_links(path).string();
    descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC); // what is there stays as it is
    if (descriptor >= 0)
        open_instead();
    else if (errno == ENOENT)
        open_beside(permissions_of_a_new_file());
    else
        fail();
}

/// Goes on with the file that is open, or with one that is to replace it.
void output_file::open_instead()
{
    constexpr mode_t anybody_writes = S_IWUSR | S_IWGRP | S_IWOTH;
    struct stat there = {};
    if (::fstat(descriptor, &there) != 0)
        fail();
    if (!S_ISREG(there.st_mode))
        return;
    if ((there.st_mode & anybody_writes) == 0) { // the superuser could open it, but a mark of this kind is meant
        errno = EACCES;
        fail();
    }
    if (is_at(place, there)) {
        ::close(std::exchange(descriptor, -1));
        open_beside(there.st_mode & 07777U);
    } else if (::ftruncate(descriptor, 0) != 0)
        fail();
}

void output_file::open_beside(mode_t permissions)
{
    std::string folder = std::filesystem::path(place).parent_path().string();
    if (folder.empty())
        folder = ".";
    beside = folder + "/.orv-h264-XXXXXX"; // made of no name, which may be as long as any
    descriptor = ::mkstemp(beside.data());
    if (descriptor < 0) {
        const std::error_code reason(errno, std::generic_category());
        beside.clear();
        throw std::system_error(reason, fmt::format("{}: cannot make a file in the folder {}", shown_name, folder));
    }
    note_unfinished(beside);
    if (::fchmod(descriptor, permissions) != 0)
        fail();
}

output_file::~output_file()
{
    if (descriptor > STDOUT_FILENO)
        ::close(descriptor);
    if (beside.empty())
        return;
    ::unlink(beside.c_str());
    forget_unfinished(beside);
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
    forget_unfinished(beside);
    beside.clear();
}

void output_file::fail() const
{
    throw std::system_error(errno, std::generic_category(), shown_name);
}

} // namespace orv_h264
