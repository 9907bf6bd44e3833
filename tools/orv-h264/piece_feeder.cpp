#include "piece_feeder.h"

#include "framing.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr unsigned int start_code_size = 3;
constexpr std::size_t smallest_scan = 4; // a start code and a header byte: what an Annex B scan looks at together

bool is_zero(unsigned char byte)
{
    return byte == 0;
}

std::string describe_too_large(const gap& g)
{
    const auto type = static_cast<unsigned int>(g.nal.nal_unit_type);
    if (g.stated_length == 0)
        return fmt::format("unit of type {} longer than the limit of {} bytes", type, g.limit);
    return fmt::format("unit of type {} whose declared length of {} bytes is above the limit of {}", type,
                       g.stated_length, g.limit);
}

} // namespace

bool holds_a_unit(const gap& g)
{
    return g.reason == gap_reason::forbidden_bit || g.reason == gap_reason::too_large;
}

std::string describe_with_size(const gap& g)
{
    return g.size == 0 ? describe(g) : fmt::format("{} ({} bytes)", describe(g), g.size);
}

std::string describe_cut(const unit& u)
{
    return fmt::format("unit of {} bytes runs past the end of the input", u.stated_length);
}

std::string describe(const gap& g)
{
    switch (g.reason) {
    case gap_reason::before_first_unit:
        return "bytes before the first start code";
    case gap_reason::forbidden_bit:
        return "unit whose header has the forbidden bit set";
    case gap_reason::no_header:
        return "start code with nothing behind it";
    case gap_reason::early_stop:
        return "bytes behind a place where the unit's decoding stops";
    case gap_reason::too_large:
        return describe_too_large(g);
    case gap_reason::zero_length:
        return "length prefix of 0";
    case gap_reason::cut_prefix:
        return "input ends inside a length prefix or right behind it";
    case gap_reason::no_unit:
        return g.offset == 0 ? "no NAL unit found: the input is empty" : "no NAL unit found";
    }
    return "";
}

piece_feeder::piece_feeder(input_window input, brenik::h2645_common_nalfmt nalfmt, std::size_t largest_unit)
    : window(std::move(input)), nal_reader(nalfmt), max_unit(largest_unit)
{
}

fed_item piece_feeder::next()
{
    const fed_item item = next_found();
    const auto* const g = std::get_if<gap>(&item);
    unit_seen = unit_seen || std::holds_alternative<unit>(item) || (g != nullptr && holds_a_unit(*g));
    if (std::holds_alternative<end_of_input>(item) && !std::exchange(unit_seen, true))
        return gap{gap_reason::no_unit, window.offset()};
    return item;
}

fed_item piece_feeder::next_found()
{
    window.drop(std::exchange(handed_on, 0));
    return nal_reader.nalfmt == brenik::nalfmt_annexb ? next_annexb() : next_length_prefixed();
}

fed_item piece_feeder::next_annexb()
{
    for (;;) {
        window.fill(smallest_scan);
        nal_reader.scan(window.start(), window.fence());
        if (!nal_reader.found) {
            if (window.at_end())
                return end_annexb();
            take_between(nal_reader.next);
            window.read_more();
            continue;
        }
        take_between(nal_reader.nal_start);
        const unsigned int zero_byte = zero_run > 0 ? 1 : 0;
        const std::uint64_t unit_offset = window.offset() - zero_byte;
        if (open)
            return close_gap(unit_offset);

        unsigned char* const unit_end = find_annexb_unit_end();
        if (static_cast<std::size_t>(unit_end - nal_reader.nal_header) <= max_unit) {
            nal_reader.scan(window.start(), unit_end);
            return hand_on(zero_byte + start_code_size, unit_end);
        }
        open_gap(gap_reason::too_large, unit_offset);
        take_between(nal_reader.payload);
    }
}

fed_item piece_feeder::end_annexb()
{
    take_between(window.fence());
    if (!open)
        return end_of_input{};
    if (open->reason == gap_reason::forbidden_bit && open->offset + start_code_size == window.offset())
        open->reason = gap_reason::no_header;
    return close_gap(window.offset());
}

// Goes on reading until the unit ends, or is too large for sure. Each byte is searched once: the last two of a range
// without an end may begin one.
unsigned char* piece_feeder::find_annexb_unit_end()
{
    unsigned char* end = nal_reader.find_unit_end();
    while (end == window.fence() && !window.at_end()) {
        const auto payload_size = static_cast<std::size_t>(end - nal_reader.payload);
        const std::size_t searched = payload_size - std::min<std::size_t>(payload_size, 2);
        if (searched >= max_unit)
            break;
        window.read_more();
        nal_reader.scan(window.start(), window.fence());
        nal_reader.decode_ptr += searched;
        end = nal_reader.find_unit_end();
    }
    return end;
}

fed_item piece_feeder::next_length_prefixed()
{
    const unsigned int prefix_size = static_cast<unsigned int>(nal_reader.nalfmt);
    take_between(window.start() + std::exchange(behind_unit, 0));
    if (open)
        return close_gap(window.offset());

    for (;;) {
        nal_reader.scan(window.start(), window.fence());
        const bool too_large = nal_reader.found && nal_reader.nal_length > max_unit;
        if (nal_reader.incomplete && !too_large && !window.at_end()) {
            window.read_more();
            continue;
        }
        if (nal_reader.gave_up && nal_reader.nal_length == 0) {
            if (!open)
                open_gap(gap_reason::zero_length, window.offset());
            window.drop(prefix_size);
            continue;
        }
        if (open)
            return close_gap(window.offset());
        if (too_large)
            return skip(gap_reason::too_large, std::uint64_t{prefix_size} + nal_reader.nal_length);
        if (nal_reader.gave_up)
            return skip(gap_reason::forbidden_bit, std::uint64_t{prefix_size} + nal_reader.nal_length);
        if (!nal_reader.found)
            return window.size() > 0 ? skip(gap_reason::cut_prefix, window.size()) : end_of_input{};
        return hand_on(prefix_size, nal_reader.find_unit_end());
    }
}

fed_item piece_feeder::hand_on(unsigned int framing_size, const unsigned char* unit_end)
{
    unit u;
    const auto header_at = static_cast<std::uint64_t>(nal_reader.nal_header - window.start());
    u.offset = window.offset() + header_at - framing_size;
    u.framing_size = framing_size;
    u.length = static_cast<std::uint64_t>(unit_end - nal_reader.nal_header);
    u.stated_length = nal_reader.nal_length;
    u.cut = nal_reader.incomplete;
    handed_on = static_cast<std::size_t>(unit_end - window.start());
    behind_unit = static_cast<std::size_t>(nal_reader.decode_fence - unit_end);
    zero_run = 0;
    any_unit = true;
    return u;
}

// A gap of `size` bytes, or of as many as there are, read past without being kept.
fed_item piece_feeder::skip(gap_reason reason, std::uint64_t size)
{
    gap skipped{reason, window.offset(), 0, nal_reader.nal, nal_reader.nal_length, max_unit};
    while (skipped.size < size) {
        window.fill(1);
        if (window.size() == 0)
            break;
        const std::uint64_t count = std::min<std::uint64_t>(size - skipped.size, window.size());
        window.drop(static_cast<std::size_t>(count));
        skipped.size += count;
    }
    return skipped;
}

void piece_feeder::open_gap(gap_reason reason, std::uint64_t offset)
{
    open = gap{reason, offset, 0, nal_reader.nal, 0, max_unit};
}

fed_item piece_feeder::close_gap(std::uint64_t end_offset)
{
    gap closed = *std::exchange(open, std::nullopt);
    closed.size = end_offset - closed.offset;
    return closed;
}

// Drops the bytes up to `fence`, which belong to no unit: zero padding until the first byte that is not zero, which
// opens a gap, together with the two zeros of a start code.
void piece_feeder::take_between(unsigned char* fence)
{
    unsigned char* p = window.start();
    if (!open) {
        p = std::find_if_not(p, fence, is_zero);
        zero_run += static_cast<std::uint64_t>(p - window.start());
        if (p != fence) {
            const bool start_code = nal_reader.nalfmt == brenik::nalfmt_annexb && zero_run >= 2 && *p == 1;
            const bool with_zeros = zero_run >= 2 && *p <= 2;
            open_gap(start_code ? gap_reason::forbidden_bit
                     : any_unit ? gap_reason::early_stop
                                : gap_reason::before_first_unit,
                     window.offset() + static_cast<std::uint64_t>(p - window.start()) - (with_zeros ? 2 : 0));
        }
    }
    const auto last = std::find_if_not(std::reverse_iterator(fence), std::reverse_iterator(p), is_zero).base();
    if (last != p)
        zero_run = 0;
    zero_run += static_cast<std::uint64_t>(fence - last);
    window.drop(static_cast<std::size_t>(fence - window.start()));
}

} // namespace orv_h264
