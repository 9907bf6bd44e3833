#include "field_printer.h"

#include <bit>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

// H.264 9.1: as many zeros as the number has bits behind its first, then the number.
std::size_t ue_bits(std::uint64_t value)
{
    return 2 * static_cast<std::size_t>(std::bit_width(value + 1)) - 1;
}

// H.264 9.1.1
std::size_t se_bits(std::int64_t value)
{
    return ue_bits(static_cast<std::uint64_t>(value > 0 ? 2 * value - 1 : -2 * value));
}

} // namespace

field_printer::field_printer(std::string& out, std::size_t limit, int first_depth)
    : lines(out), last_bit(limit), depth(first_depth)
{
}

void field_printer::u(unsigned int n, std::string_view name, std::uint64_t value, std::string_view note)
{
    element(n, name, fmt::to_string(value), note);
}

void field_printer::i(unsigned int n, std::string_view name, std::int32_t value)
{
    element(n, name, fmt::to_string(value), "");
}

void field_printer::flag(std::string_view name, bool value)
{
    element(1, name, value ? "1" : "0", "");
}

void field_printer::ue(std::string_view name, std::uint32_t value, std::string_view note)
{
    element(ue_bits(value), name, fmt::to_string(value), note);
}

void field_printer::se(std::string_view name, std::int32_t value)
{
    element(se_bits(value), name, fmt::to_string(value), "");
}

void field_printer::scaling_list(std::string_view name, const brenik::h264_scaling_list& list)
{
    // Different deltas make the same list, so that the bits it took are not known.
    if (last_bit != no_limit)
        last_bit = 0;
    element(0, name, list.useDefaultScalingMatrixFlag ? "default" : fmt::format("{}", fmt::join(list.values, " ")), "");
}

void field_printer::derived(std::string_view text)
{
    if (position <= last_bit)
        line(fmt::format("= {}", text));
}

void field_printer::element(std::size_t bits, std::string_view name, std::string_view value, std::string_view note)
{
    position += bits;
    if (position > last_bit)
        return;
    line(note.empty() ? fmt::format("{} {}", name, value) : fmt::format("{} {} ({})", name, value, note));
}

void field_printer::line(std::string_view text)
{
    constexpr int step = 4;
    fmt::format_to(std::back_inserter(lines), "{:{}}{}\n", "", depth * step, text);
}

} // namespace orv_h264
