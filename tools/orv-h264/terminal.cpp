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
