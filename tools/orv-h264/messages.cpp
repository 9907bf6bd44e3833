#include "messages.h"

#include "json_output.h"
#include "terminal.h"

#include <cstdio>

#include <fmt/format.h>

namespace orv_h264 {

void print_error(std::string_view reason)
{
    fmt::print(stderr, "{} {}\n", emphasised(stderr, emphasis::error, "orv-h264:"), reason);
}

void complaints::add(std::uint64_t offset, std::string_view what)
{
    print_error(fmt::format("{}: offset {}: {}", name, offset, what));
    if (also_json)
        print_json(json_problem(offset, what));
    any = true;
}

} // namespace orv_h264
