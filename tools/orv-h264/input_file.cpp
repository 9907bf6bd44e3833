#include "input_file.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv_h264 {

std::string input_name(const std::string& path)
{
    return path == "-" ? "standard input" : path;
}

input_file::input_file(const std::string& path)
    : shown_name(input_name(path)), descriptor(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC))
{
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), shown_name);
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

std::size_t input_file::read(unsigned char* out, std::size_t size)
{
    ssize_t count = 0;
    do
        count = ::read(descriptor, out, size);
    while (count < 0 && errno == EINTR);
    if (count < 0)
        throw std::system_error(errno, std::generic_category(), fmt::format("{}: offset {}", shown_name, offset));
    offset += static_cast<std::uint64_t>(count);
    return static_cast<std::size_t>(count);
}

} // namespace orv_h264
