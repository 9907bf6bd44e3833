#include "diff/access_unit_feed.h"

#include "framing.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

bool is_slice(unsigned nal_unit_type)
{
    return (nal_unit_type >= 1 && nal_unit_type <= 5) || (nal_unit_type >= 19 && nal_unit_type <= 21);
}

std::uint32_t first_message_of(const h264::nal_unit& unit)
{
    const auto* const sei = std::get_if<h264::sei_rbsp>(&unit.rbsp);
    return sei != nullptr && !sei->sei_messages.empty() ? sei->sei_messages[0].payload_type : 0;
}

} // namespace

aligned_entry compared_access_unit::print() const
{
    fingerprint_maker whole;
    fingerprint_maker slices;
    fingerprint_maker data;
    bool any_slice = false;
    std::uint64_t bits = 0;
    for (const compared_unit& unit : units) {
        whole.add(unit.whole);
        if (!unit.slice)
            continue;
        any_slice = true;
        slices.add(unit.whole);
        data.add(unit.rest);
        bits += unit.rest_bits;
    }
    return {whole.made(), slices.made(), data.made(), any_slice, bits >= telling_bits};
}

access_unit_feed::access_unit_feed(const stream_options& options, bool with_elements)
    : unit_run(input_name(options.path), false), input(options), traced(with_elements)
{
    begin_units(input);
}

std::optional<compared_access_unit> access_unit_feed::next()
{
    while (ready.empty() && !ended) {
        if (input.read_piece(units_in()))
            continue;
        ended = true;
        end_units();
        units.flush(to_ready);
        sums.zeros += input.bytes_read() - std::min(end_of_last, input.bytes_read());
    }
    if (ready.empty())
        return {};
    compared_access_unit first = std::move(ready.front());
    ready.pop_front();
    return first;
}

h264::visitor* access_unit_feed::before(const listed_unit&)
{
    return traced ? &elements : nullptr;
}

void access_unit_feed::take(const listed_unit& unit, const h264::unit_reading* reading)
{
    const h264::unit_place& place = unit.place;
    plain.resize(place.size);
    plain.resize(h264::unescape(place.bytes, place.size, plain.data(), plain.size()));
    compared_unit one;
    one.nal_unit_type = unit.type();
    one.sei_type = first_message_of(reading->unit);
    one.slice = is_slice(one.nal_unit_type);
    one.offset = unit.shown();
    one.whole = fingerprint_of_bits(plain, 0);
    one.rest = fingerprint_of_bits(plain, reading->result.bits);
    one.rest_bits = bits_up_to_last_one(plain, reading->result.bits);
    if (!one.slice && reading->result.ending == h264::ending::sound) {
        one.rest = fingerprint(); // the trailing bits say nothing
        one.rest_bits = 0;
    }
    if (traced)
        one.elements = elements.take();
    if (unit.in_record) {
        record_sets.push_back(std::move(one));
        access_unit_taker ignores([](const h264::access_unit&) {});
        units.push({place.bytes, place.size, 0, 0}, ignores);
        units.flush(ignores);
        return;
    }
    add_framing(unit, plain.size());
    read.push_back(std::move(one));
    constexpr bool not_copied = true; // nobody looks at the bytes of an access unit
    units.push(place, to_ready, not_copied);
}

void access_unit_feed::add_framing(const listed_unit& unit, std::size_t unescaped)
{
    ++sums.units;
    const unsigned prefix = prefix_size_of(input.framing());
    sums.prefix_size = prefix;
    ++(prefix != 0 ? sums.length_prefixes : unit.framing_size == 3 ? sums.short_start_codes : sums.long_start_codes);
    sums.escapes += unit.place.size - unescaped;
    const auto last = std::find_if(plain.rbegin(), plain.rend(), [](unsigned char byte) { return byte != 0; });
    sums.zeros += static_cast<std::uint64_t>(last - plain.rbegin());
    if (input.in_container() == nullptr && unit.begin() > end_of_last)
        sums.zeros += unit.begin() - end_of_last;
    end_of_last = std::max(end_of_last, unit.place.offset + unit.place.size);
}

void access_unit_feed::add(const h264::access_unit& unit)
{
    compared_access_unit made;
    const auto end = read.begin() + static_cast<std::ptrdiff_t>(unit.parts.size());
    made.units.assign(std::move_iterator(read.begin()), std::move_iterator(end));
    read.erase(read.begin(), end);
    made.picture = unit.header != nullptr;
    if (sums.access_units++ == 0)
        add_record_sets(made);
    sums.pictures += made.picture ? 1 : 0;
    ready.push_back(std::move(made));
}

/// Those of the record hold where the stream begins: they are the first access unit's, unless it has them itself.
void access_unit_feed::add_record_sets(compared_access_unit& first)
{
    std::vector<compared_unit> missing;
    for (compared_unit& set : record_sets)
        if (std::none_of(first.units.begin(), first.units.end(),
                         [&](const compared_unit& unit) { return unit.whole == set.whole; }))
            missing.push_back(std::move(set));
    constexpr unsigned delimiter = 9;
    const bool delimited = !first.units.empty() && first.units[0].nal_unit_type == delimiter;
    first.units.insert(first.units.begin() + (delimited ? 1 : 0), std::move_iterator(missing.begin()),
                       std::move_iterator(missing.end()));
}

void access_unit_feed::take_gap(const h264::split_gap& gap)
{
    if (gap.is_unit())
        throw refusal(exit_usage_or_io,
                      fmt::format("{}: offset {}: unit of {} bytes is too large to be compared; see --max-unit",
                                  input.name(), gap.offset, gap.size));
    sums.lost_bytes += gap.size;
    end_of_last = std::max(end_of_last, gap.offset + gap.size);
}

void access_unit_feed::complain(const listed_unit*, std::uint64_t, const std::string&, bool is_problem)
{
    sums.problems += is_problem ? 1 : 0;
}

} // namespace orv_h264
