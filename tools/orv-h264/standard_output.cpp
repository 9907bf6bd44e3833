#include "standard_output.h"

#include "failed_allocations.h"
#include "system_calls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace orv_h264 {

namespace {

class gathered_output {
public:
    constexpr gathered_output() = default;
    gathered_output(const gathered_output&) = delete;
    gathered_output& operator=(const gathered_output&) = delete;
    ~gathered_output() { flush(); } // what a run has printed that ends with an error

    void put(std::string_view text) noexcept
    {
        if (text.size() > room.size() - used)
            flush();
        if (text.size() > room.size())
            return write(text);
        std::copy(text.begin(), text.end(), room.begin() + used);
        used += text.size();
        if (line_by_line && text.find('\n') != std::string_view::npos)
            flush();
    }

    void flush() noexcept
    {
        write({room.data(), used});
        used = 0;
    }

    void check() const
    {
        if (error != 0)
            throw std::system_error(error, std::generic_category(), "standard output");
    }

    bool line_by_line = false;
    int error = 0; // the first; nothing is written behind what was lost

private:
    void write(std::string_view text) noexcept
    {
        if (error == 0 && !write_all(STDOUT_FILENO, text.data(), text.size()))
            error = errno;
    }

    std::array<char, std::size_t{64}* 1024> room = {};
    std::size_t used = 0;
};

gathered_output output;

} // namespace

void gather_output()
{
    output.line_by_line = ::isatty(STDOUT_FILENO) == 1;
}

void write_output(std::string_view text)
{
    check_allocations();
    output.put(text);
    output.check();
}

void put_output(std::string_view text) noexcept
{
    output.put(text);
}

void flush_output()
{
    output.flush();
    output.check();
}

void close_output()
{
    check_allocations();
    flush_output();
    if (::close(STDOUT_FILENO) != 0)
        output.error = errno;
    output.check();
}

} // namespace orv_h264
