#include "input_file.h"

#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv_h264 {

namespace {

/// What the call returns when no signal has broken it off.
template <typename Call>
ssize_t again(Call call)
{
    ssize_t count = 0;
    do
        count = call();
    while (count < 0 && errno == EINTR);
    return count;
}

} // namespace

std::string input_name(const std::string& path)
{
    return path == "-" ? "standard input" : path;
}

input_file::input_file(const std::string& path) : input_file(path, input_name(path)) {}

input_file::input_file(const std::string& path, std::string name)
    : shown_name(std::move(name)), descriptor(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC))
{
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), shown_name);
    from_start = ::lseek(descriptor, 0, SEEK_CUR) == 0;
}

input_file::~input_file()
{
    if (descriptor != STDIN_FILENO)
        ::close(descriptor);
}

std::optional<std::uint64_t> input_file::size() const
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    return static_cast<std::uint64_t>(status.st_size);
}

bool input_file::is_seekable() const
{
    return from_start && size().has_value();
}

std::size_t input_file::read(unsigned char* out, std::size_t size)
{
    const std::size_t count = check(again([&] { return ::read(descriptor, out, size); }), offset);
    offset += count;
    return count;
}

std::size_t input_file::read_at(std::uint64_t from, unsigned char* out, std::size_t size) const
{
    constexpr auto furthest = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
    if (size > furthest || from > furthest - size)
        return 0; // no file is that large
    return check(again([&] { return ::pread(descriptor, out, size, static_cast<off_t>(from)); }), from);
}

std::size_t input_file::check(std::ptrdiff_t count, std::uint64_t at) const
{
    if (count < 0)
        throw std::system_error(errno, std::generic_category(), fmt::format("{}: offset {}", shown_name, at));
    return static_cast<std::size_t>(count);
}

} // namespace orv_h264
