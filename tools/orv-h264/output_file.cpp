#include "output_file.h"

#include "failed_allocations.h"
#include "nameless_file.h"
#include "signals_held.h"
#include "system_calls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv_h264 {

namespace {

// What a signal handler removes: it can read no std::string. The tool writes two files a run at the most; an empty name
// is none.
using file_name = std::array<char, PATH_MAX>;
std::array<file_name, 2> unfinished;

void remove_unfinished(int signal_number)
{
    remove_unfinished_files();
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
    const auto noted =
        std::find_if(unfinished.begin(), unfinished.end(), [&](const file_name& name) { return path == name.data(); });
    if (noted == unfinished.end())
        return;
    noted->fill('\0');
    if (std::all_of(unfinished.begin(), unfinished.end(), is_free))
        handle_signals(SIG_DFL);
}

mode_t permissions_of_a_new_file()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666U & ~mask;
}

/// Of a link the file that it names, which need not be there. What hides whether there is a link is not taken for none,
/// or the link would be replaced.
std::filesystem::path end_of_links(std::filesystem::path path, std::error_code& failed)
{
    constexpr int most_links = 40; // as many as Linux follows
    for (int links = 0; links < most_links; ++links) {
        const std::filesystem::path next = std::filesystem::read_symlink(path, failed);
        if (failed)
            break;
        path = path.parent_path() / next;
    }
    if (failed == std::errc::invalid_argument || failed == std::errc::no_such_file_or_directory)
        failed.clear();
    return path;
}

/// False of an open file that was removed, for one; nothing, with errno, where that cannot be told.
std::optional<bool> is_at(const std::string& path, const struct stat& file)
{
    struct stat there = {};
    if (::stat(path.c_str(), &there) == 0)
        return there.st_dev == file.st_dev && there.st_ino == file.st_ino;
    return errno == ENOENT || errno == ENOTDIR ? std::optional(false) : std::nullopt;
}

} // namespace

void remove_unfinished_files() noexcept
{
    for (const file_name& name : unfinished)
        if (!is_free(name))
            ::unlink(name.data());
}

output_file::output_file(const std::string& path) : output_file(path, path == "-" ? "standard output" : path) {}

output_file::output_file(const std::string& path, std::string name) : output_file()
{
    shown_name = std::move(name);
    if (path == "-") {
        descriptor = STDOUT_FILENO;
        return;
    }
    std::error_code hidden;
    place = end_of_links(path, hidden).string();
    if (hidden)
        throw std::system_error(hidden, shown_name);
    descriptor = again([&] { return ::open(path.c_str(), O_WRONLY | O_CLOEXEC); }); // what is there stays as it is
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
    const std::optional<bool> has_name = is_at(place, there);
    if (!has_name)
        fail();
    if (*has_name) {
        ::close(std::exchange(descriptor, -1));
        open_beside(there.st_mode & 07777U);
    } else if (again([&] { return ::ftruncate(descriptor, 0); }) != 0)
        fail();
}

void output_file::open_beside(mode_t permissions)
{
    folder = std::filesystem::path(place).parent_path().string();
    if (folder.empty())
        folder = ".";
    descriptor = open_linkable(folder);
    readable = path_of(descriptor);
    if (descriptor < 0 || ::access(readable.c_str(), F_OK) != 0) // by that path it gets its name
        open_named();
    if (again([&] { return ::fchmod(descriptor, permissions); }) != 0)
        fail();
}

void output_file::open_named()
{
    if (descriptor >= 0)
        ::close(descriptor);
    std::string name;
    const signals_held until_it_is_noted;
    descriptor = again([&] {
        name = folder + "/.orv-h264-XXXXXX"; // made of no other name, which may be as long as any
        return ::mkostemp(name.data(), O_CLOEXEC);
    });
    if (descriptor < 0) {
        const std::error_code reason(errno, std::generic_category());
        throw std::system_error(reason, fmt::format("{}: cannot make a file in the folder {}", shown_name, folder));
    }
    note_unfinished(name);
    readable = beside = std::move(name);
}

/// No call puts a file without a name where another one is: it gets one that is free.
void output_file::give_name()
{
    std::string name;
    int result = -1;
    for (unsigned number = 0; result != 0; ++number) {
        name = fmt::format("{}/.orv-h264-{}-{}", folder, ::getpid(), number);
        result = again([&] { return ::linkat(AT_FDCWD, readable.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW); });
        if (result != 0 && errno != EEXIST)
            fail();
    }
    beside = std::move(name);
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
    if (!write_all(descriptor, bytes.data(), bytes.size()))
        fail();
}

void output_file::commit()
{
    check_allocations();
    if (readable.empty())
        return;
    const signals_held until_it_is_there; // no handler knows the name that it gets now
    if (beside.empty())
        give_name();
    const int closed = ::close(std::exchange(descriptor, -1));
    if (closed != 0 || std::rename(beside.c_str(), place.c_str()) != 0) {
        const int reason = errno;
        ::unlink(beside.c_str()); // before signals come again
        errno = reason;
        fail();
    }
    forget_unfinished(beside);
    beside.clear();
    readable.clear();
}

void output_file::fail() const
{
    throw std::system_error(errno, std::generic_category(), shown_name);
}

} // namespace orv_h264
