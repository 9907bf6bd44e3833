#include "messages.h"

#include "json_output.h"
#include "printable.h"
#include "system_calls.h"
#include "terminal.h"

#include <cstdio>
#include <iterator>

#include <fmt/format.h>
#include <unistd.h>

namespace orv_h264 {

void write_message(std::string_view text)
{
    static_cast<void>(write_all(STDERR_FILENO, text.data(), text.size()));
}

void print_error(std::string_view reason)
{
    const emphasis_marks marks = marks_of(stderr, emphasis::error);
    fmt::memory_buffer line; // one that holds a short reason without an allocation, for when there is no memory left
    fmt::format_to(std::back_inserter(line), "{}orv-h264:{} {}\n", marks.begin, marks.end, printable(reason));
    write_message({line.data(), line.size()});
}

void complaints::add(std::uint64_t offset, std::string_view what)
{
    tell("problem", offset, what);
    any = true;
}

void complaints::note(std::uint64_t offset, std::string_view what)
{
    tell("finding", offset, what);
}

void complaints::tell(const char* record, std::uint64_t offset, std::string_view what) const
{
    print_error(fmt::format("{}: offset {}: {}", name, offset, what));
    if (!also_json)
        return;
    const json line = {{"record", record}, {"offset", offset}, {"message", what}};
    print_json(among_many ? record_of(name, line) : line);
}

} // namespace orv_h264
