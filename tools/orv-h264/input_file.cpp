#include "input_file.h"

#include "system_calls.h"

#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv_h264 {

std::string input_name(const std::string& path)
{
    return path == "-" ? "standard input" : path;
}

input_file::input_file(const std::string& path) : input_file(path, input_name(path)) {}

input_file::input_file(std::string name, int opened) : shown_name(std::move(name)), descriptor(opened) {}

// What cannot be asked is not taken for a pipe: of a pipe a container may be read in another way.
input_file::input_file(const std::string& path, std::string name)
    : input_file(std::move(name),
                 path == "-" ? STDIN_FILENO : again([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }))
{
    struct stat status = {};
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0)
        throw std::system_error(errno, std::generic_category(), shown_name);
    if (S_ISREG(status.st_mode))
        regular_bytes = static_cast<std::uint64_t>(status.st_size);
    const off_t position = ::lseek(descriptor, 0, SEEK_CUR);
    if (position < 0 && errno != ESPIPE)
        check(position, 0);
    from_start = position == 0;
}

input_file::~input_file()
{
    if (descriptor > STDIN_FILENO)
        ::close(descriptor);
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
    std::size_t done = 0;
    for (std::size_t count = 1; count != 0 && done < size; done += count) {
        const auto at = static_cast<off_t>(from + done);
        count = check(again([&] { return ::pread(descriptor, out + done, size - done, at); }), from + done);
    }
    return done;
}

std::size_t input_file::check(std::ptrdiff_t count, std::uint64_t at) const
{
    if (count < 0)
        throw std::system_error(errno, std::generic_category(), fmt::format("{}: offset {}", shown_name, at));
    return static_cast<std::size_t>(count);
}

} // namespace orv_h264
