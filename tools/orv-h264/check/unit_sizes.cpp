#include "check/unit_sizes.h"

#include <utility>

namespace orv_h264 {

namespace {

/// Prefix units and slices of other layers and views, and the parameter sets of those.
bool is_of_layers(unsigned type)
{
    return type == 14 || type == 15 || type == 16 || type == 20 || type == 21;
}

/// What decoders of Annex A decode pictures from, and filler data (Table 7-1).
bool is_vcl_or_filler(unsigned type)
{
    return (type >= 1 && type <= 5) || type == 12;
}

} // namespace

void unit_sizes::begin(const stream_input& input)
{
    start_codes = input.framing() == h264::framing::annex_b;
    byte_stream = start_codes && input.in_container() == nullptr;
}

// trailing_zero_8bits belong to the unit before them (B.1.1).
void unit_sizes::add(const listed_unit& unit)
{
    const std::uint64_t begin = unit.begin();
    if (byte_stream && !known.empty() && known.back().counts && begin > known.back().end)
        known.back().bytes += static_cast<std::int64_t>(begin - known.back().end);
    known_unit next;
    next.number = unit.place.number;
    next.end = unit.place.offset + unit.place.size;
    next.counts = !is_of_layers(unit.type()) && !unit.in_record;
    layers = layers || is_of_layers(unit.type());
    if (next.counts)
        next.bytes = static_cast<std::int64_t>(start_code_of(unit) + unit.place.size);
    if (next.counts && is_vcl_or_filler(unit.type()))
        next.vcl_bytes = static_cast<std::int64_t>(unit.place.size);
    known.push_back(next);
    if (known.size() > most_units)
        known.pop_front();
}

// B.1.2: a zero_byte stands before parameter sets; what else there may be is not known.
std::size_t unit_sizes::start_code_of(const listed_unit& unit) const
{
    constexpr std::size_t start_code_prefix = 3;
    if (start_codes)
        return unit.framing_size;
    return unit.type() == 7 || unit.type() == 8 ? start_code_prefix + 1 : start_code_prefix;
}

access_unit_bits unit_sizes::take(const h264::access_unit& unit)
{
    const std::uint64_t last = unit.parts.empty() ? 0 : unit.parts.back().place.number;
    while (!known.empty() && known.front().number <= last) {
        carried.byte_stream += 8 * known.front().bytes;
        carried.vcl += 8 * known.front().vcl_bytes;
        known.pop_front();
    }
    return unit.header == nullptr ? access_unit_bits() : std::exchange(carried, {});
}

} // namespace orv_h264
