#include "standard_output.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <unistd.h>

namespace orv_h264 {

namespace {

[[noreturn]] void fail()
{
    throw std::system_error(errno, std::generic_category(), "standard output");
}

} // namespace

void gather_output()
{
    static std::array<char, std::size_t{64} * 1024> gathered;
    if (::isatty(STDOUT_FILENO) == 0)
        static_cast<void>(std::setvbuf(stdout, gathered.data(), _IOFBF, gathered.size()));
}

void write_output(std::string_view text)
{
    if (std::ferror(stdout) != 0 || std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        fail();
}

void put_output(std::string_view text) noexcept
{
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stdout));
}

void flush_output()
{
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) // std::cout flushes too, and tells nobody
        fail();
}

} // namespace orv_h264
