#include "field_printer.h"

#include <bit>

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

void field_printer::u(unsigned int n, const element_name& name, std::uint64_t value, std::string_view note)
{
    element(n, name, value, note);
}

void field_printer::i(unsigned int n, const element_name& name, std::int32_t value)
{
    element(n, name, std::int64_t{value}, "");
}

void field_printer::flag(const element_name& name, bool value)
{
    element(1, name, std::uint64_t{value}, "");
}

void field_printer::ue(const element_name& name, std::uint32_t value, std::string_view note)
{
    element(ue_bits(value), name, std::uint64_t{value}, note);
}

void field_printer::se(const element_name& name, std::int32_t value)
{
    element(se_bits(value), name, std::int64_t{value}, "");
}

void field_printer::scaling_list(std::size_t number, const brenik::h264_scaling_list& list)
{
    // Different deltas make the same list, so that the bits it took are not known.
    if (last_bit != no_limit)
        last_bit = 0;
    const deeper indented(*this, {"scaling_lists", number});
    if (list.useDefaultScalingMatrixFlag)
        element(0, "scaling_list", std::string_view("default"), "");
    else
        element(0, "scaling_list", std::span<const std::uint8_t>(list.values), "");
}

void field_printer::words(const element_name& name, std::string_view text, std::string_view note)
{
    sink.element(name, text, note);
}

void field_printer::bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text)
{
    sink.bytes(name, all, text);
}

void field_printer::derived(std::string_view text, std::initializer_list<fact> facts)
{
    if (position <= last_bit)
        sink.derived(text, facts);
}

void field_printer::element(std::size_t bits, const element_name& name, const field_value& value, std::string_view note)
{
    position += bits;
    if (position <= last_bit)
        sink.element(name, value, note);
}

} // namespace orv_h264
