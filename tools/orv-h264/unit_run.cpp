#include "unit_run.h"

#include "element_text.h"
#include "loss_texts.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr const char* forbidden_bit = "unit whose header has the forbidden bit set";

} // namespace

void unit_run::begin_units(const stream_input& input)
{
    most_bytes = input.max_unit();
    packets = &input.packets();
    for (const h264::split_unit& set : input.record_sets())
        unit(set);
}

exit_status unit_run::run(stream_input& input)
{
    begin_units(input);
    const bool any = input.read_units(*this, [this] { return enough(); });
    stream.flush(*this);
    if (!any)
        complain(nullptr, input.bytes_read(), describe_no_unit(input.is_empty()), true);
    if (const container_stream* const container = input.in_container())
        for (const container_remark& remark : container->remarks())
            complain(nullptr, remark.offset, remark.text, remark.is_problem);
    return problems.status();
}

listed_unit unit_run::listed(const h264::split_unit& u) const
{
    listed_unit unit = {{u.bytes, u.size, packets->counted(u.offset), units}, u.framing_size};
    if (!packets->is_own(u.offset))
        unit.packet = packets->shown(u.offset);
    unit.in_record = u.offset >= packet_log::record_begin;
    return unit;
}

void unit_run::unit(const h264::split_unit& u)
{
    if (enough())
        return;
    const listed_unit whole = listed(u);
    ++units;
    if (u.cut)
        take_cut(whole, u);
    if (unread()) {
        if ((u.bytes[0] & 0x80U) != 0)
            complain(&whole, whole.shown(), forbidden_bit, true);
        return take(whole, nullptr);
    }
    waiting.push_back(whole);
    stream.push(whole.place, *this);
}

void unit_run::take_cut(const listed_unit& unit, const h264::split_unit& as_split)
{
    complain(&unit, unit.shown(), describe_cut(as_split), true);
}

void unit_run::gap(const h264::split_gap& g)
{
    units += g.is_unit() ? 1 : 0; // it counts, though the stream does not get it
    if (enough())
        return;
    complain(nullptr, packets->shown(g.offset), describe_with_size(g, most_bytes), true);
    h264::split_gap counted = g;
    counted.offset = packets->counted(g.offset);
    take_gap(counted);
}

h264::visitor* unit_run::before(const h264::unit_place& place)
{
    while (waiting.front().place.number < place.number)
        waiting.pop_front();
    return enough() ? nullptr : before(next(place));
}

void unit_run::take(const h264::unit_reading& reading)
{
    if (enough())
        return;
    const listed_unit unit = next(reading.place);
    waiting.pop_front();
    complain_of(unit, reading.result);
    take(unit, &reading);
}

/// The stream hands units on in their order. Its bytes may lie elsewhere by then.
listed_unit unit_run::next(const h264::unit_place& place) const
{
    listed_unit unit = waiting.front();
    unit.place = place;
    return unit;
}

void unit_run::complain_of(const listed_unit& unit, const h264::outcome& result)
{
    const auto complain_here = [&](const std::string& what, bool is_problem) {
        complain(&unit, unit.shown(), what, is_problem);
    };
    for (const h264::finding& finding : result.findings) {
        const std::string_view name = finding.element.name();
        if (result.ending == h264::ending::no_stop_bit &&
            (name == "rbsp_stop_one_bit" || name == "rbsp_alignment_zero_bit"))
            continue;                     // the ending is told once
        if (name == "forbidden_zero_bit") // a network has found bits in it wrong
            complain_here(forbidden_bit, true);
        else
            complain_here(text_of(finding), false);
    }
    if (result.finding_count > result.findings.size())
        complain_here(
            fmt::format("further values outside of their ranges: {}", result.finding_count - result.findings.size()),
            false);
    if (result.failure)
        complain_here(text_of(result.failure), true);
    else if (const std::string_view wrong = text_of(result.ending); !wrong.empty())
        complain_here(std::string(wrong), true);
}

void unit_run::complain(const listed_unit*, std::uint64_t offset, const std::string& what, bool is_problem)
{
    if (is_problem)
        problems.add(offset, what);
    else
        problems.note(offset, what);
}

} // namespace orv_h264
