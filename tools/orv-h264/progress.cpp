#include "progress.h"

#include "messages.h"
#include "terminal.h"

#include <cstdio>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr std::uint64_t mebibyte = std::uint64_t{1024} * 1024;
constexpr std::uint64_t step = 4 * mebibyte;

} // namespace

progress::progress(std::optional<std::uint64_t> size) : whole(size), wanted(is_capable_terminal(stderr)) {}

void progress::tell(std::uint64_t done)
{
    if (!wanted || done < next_step)
        return;
    next_step = done + step;
    shown = true;
    if (whole)
        write_message(fmt::format("\r{} of {} MiB", done / mebibyte, *whole / mebibyte));
    else
        write_message(fmt::format("\r{} MiB", done / mebibyte));
}

void progress::clear()
{
    if (shown)
        write_message("\r\x1B[K"); // to the end of the line
    shown = false;
}

} // namespace orv_h264
