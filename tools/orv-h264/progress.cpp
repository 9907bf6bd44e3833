#include "progress.h"

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
        fmt::print(stderr, "\r{} of {} MiB", done / mebibyte, *whole / mebibyte);
    else
        fmt::print(stderr, "\r{} MiB", done / mebibyte);
}

void progress::clear()
{
    constexpr const char* to_the_end = "\x1B[K";
    if (shown)
        fmt::print(stderr, "\r{}", to_the_end);
    shown = false;
}

} // namespace orv_h264
