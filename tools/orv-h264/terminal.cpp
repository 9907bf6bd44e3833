#include "terminal.h"

#include <cstdlib>
#include <optional>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

namespace orv_h264 {

namespace {

std::string_view environment(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): the tool has one thread
    return value == nullptr ? "" : value;
}

/// Of the standard output and the standard error stream.
std::optional<std::pair<bool, bool>> remembered;

} // namespace

void remember_terminals()
{
    remembered = {is_capable_terminal(stdout), is_capable_terminal(stderr)};
}

bool is_capable_terminal(std::FILE* stream)
{
    if (remembered && (stream == stdout || stream == stderr))
        return stream == stdout ? remembered->first : remembered->second;
    return ::isatty(::fileno(stream)) == 1 && environment("TERM") != "dumb";
}

emphasis_marks marks_of(std::FILE* stream, emphasis how)
{
    if (!is_capable_terminal(stream) || !environment("NO_COLOR").empty())
        return {};
    return {how == emphasis::error ? "\x1B[1;31m" : "\x1B[1m", "\x1B[0m"};
}

std::string emphasised(std::FILE* stream, emphasis how, std::string_view text)
{
    const emphasis_marks marks = marks_of(stream, how);
    return fmt::format("{}{}{}", marks.begin, text, marks.end);
}

} // namespace orv_h264
