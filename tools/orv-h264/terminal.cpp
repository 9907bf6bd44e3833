#include "terminal.h"

#include <cstdlib>

#include <fmt/format.h>
#include <unistd.h>

namespace orv_h264 {

namespace {

std::string_view environment(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): the tool has one thread
    return value == nullptr ? "" : value;
}

} // namespace

bool is_capable_terminal(std::FILE* stream)
{
    return ::isatty(::fileno(stream)) == 1 && environment("TERM") != "dumb";
}

std::string emphasised(std::FILE* stream, emphasis how, std::string_view text)
{
    if (!is_capable_terminal(stream) || !environment("NO_COLOR").empty())
        return std::string(text);
    return fmt::format("\x1B[{}m{}\x1B[0m", how == emphasis::error ? "1;31" : "1", text);
}

} // namespace orv_h264
