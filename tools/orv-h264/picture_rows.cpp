#include "picture_rows.h"

#include "element_text.h"
#include "loss_texts.h"
#include "row_facts.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// The first value outside of its range, and how many there are.
std::string text_of_findings(const h264::access_unit_part& part)
{
    const std::string first = text_of(part.first_finding);
    return part.finding_count == 1 ? first : fmt::format("{}, and {} more", first, part.finding_count - 1);
}

/// The forbidden bit alone, which unit() tells, or missing trailing bits, which the ending says.
bool is_told_otherwise(const h264::access_unit_part& part)
{
    const std::string_view first = part.first_finding.element.name();
    return (part.finding_count == 1 && first == "forbidden_zero_bit") ||
           (part.ending == h264::ending::no_stop_bit && first == "rbsp_stop_one_bit");
}

bool comes_before(const row_problem& a, const row_problem& b)
{
    return a.offset < b.offset;
}

/// Seconds a field, (C-1); 0 : 0 where the SPS does not tell.
h264::ratio tick_of(const h264::access_unit& unit)
{
    if (unit.sps == nullptr)
        return {};
    const h264::ratio rate = h264::field_rate(unit.sps->vui_parameters);
    return {rate.denominator, rate.numerator};
}

bool is_rate(h264::time_source source)
{
    return source == h264::time_source::constant_rate || source == h264::time_source::assumed_rate;
}

} // namespace

void picture_rows::unit(const h264::split_unit& unit)
{
    const bool row_has_ended = end_is_open;
    const std::uint64_t taken = first_fed;
    add_padding(begin_of(unit));
    end = unit.offset + unit.size;
    fed.push_back({begin_of(unit), unit.offset, end, 0});
    if (unit.cut)
        problems.push_back({begin_of(unit), orv_h264::describe_cut(unit)});
    if ((unit.bytes[0] & 0x80) != 0)
        problems.push_back({begin_of(unit), "unit whose header has the forbidden bit set", 0, false});
    constexpr bool not_copied = true; // nobody looks at the bytes of an access unit
    units.push({unit.bytes, unit.size, unit.offset, first_fed + fed.size() - 1}, *this, not_copied);
    if (row_has_ended || first_fed != taken || !problems.empty()) // else nothing has become ready
        tell_ready();
}

void picture_rows::begin_with(std::span<const h264::split_unit> sets)
{
    for (const h264::split_unit& set : sets)
        unit(set);
    units.flush(*this);
    end = 0;
    end_is_open = false;
}

void picture_rows::gap(const h264::split_gap& gap)
{
    add_padding(gap.offset);
    end = gap.offset + gap.size;
    problems.push_back({gap.offset, describe(gap, most_bytes), gap.size});
    tell_ready();
}

void picture_rows::finish(std::uint64_t stream_end)
{
    const bool has_end = end_is_open;
    add_padding(stream_end);
    units.flush(*this);
    pictures.flush(*this);
    if ((has_end || end_is_open) && !waiting.empty())
        waiting.back().row.last = true;
    finished = true;
    end_is_open = false;
    tell_ready();
    tell_problems(0);
}

// The zero bytes in front of what begins here are those of the newest unit.
void picture_rows::add_padding(std::uint64_t offset)
{
    if (!fed.empty())
        fed.back().padding += offset - end;
    else if (end_is_open)
        waiting.back().row.padding += offset - end;
    end_is_open = false;
}

void picture_rows::take(const h264::access_unit& unit)
{
    pictures.take(unit, *this);
    const std::uint64_t behind = unit.parts.back().place.number + 1;
    fed.erase(fed.begin(), fed.begin() + static_cast<std::ptrdiff_t>(behind - first_fed));
    first_fed = behind;
}

void picture_rows::access_unit_came(const h264::access_unit& unit, const h264::picture* of)
{
    to.access_unit_came(unit);
    std::vector<row_problem> found = problems_of(unit);
    if (of == nullptr)
        return keep(std::move(found));
    picture_row& row = row_of(unit, *of).row;
    add_facts(row, unit);
    add_units(row, unit);
    if (of->has_count && of->count.in_range())
        row.poc =
            split && unit.structure == h264::picture_structure::bottom_field ? of->count.bottom : of->count.lower();
    take_problems(row, std::move(found));
    if (unit.findings.has(h264::picture_finding::limit_reached))
        take_problems(row, {{row.offset, describe_cut(row)}});
}

picture_rows::waiting_row& picture_rows::row_of(const h264::access_unit& unit, const h264::picture& of)
{
    const bool second_field = !split && !waiting.empty() && waiting.back().row.picture == of.number;
    if (second_field)
        return waiting.back();
    waiting_row& added = waiting.emplace_back();
    added.row.picture = of.number;
    added.row.offset = fed_of(unit.parts.front()).begin;
    added.header = fed_of(unit.parts.front()).header;
    added.tick = tick_of(unit);
    added.own = pictures.latest_times();
    return added;
}

void picture_rows::add_units(picture_row& row, const h264::access_unit& unit)
{
    row.units.reserve(row.units.size() + unit.parts.size());
    for (const h264::access_unit_part& part : unit.parts) {
        const fed_unit& where = fed_of(part);
        row.units.push_back(unit_of(part));
        row.unit_bytes += where.end - where.begin;
        row.padding += where.padding;
        row.filler += filler_of(part, where.end - where.begin);
    }
    row.size = fed_of(unit.parts.back()).end - row.offset;
    waiting_units += unit.parts.size();
    end_is_open = unit.parts.back().place.number + 1 == first_fed + fed.size();
}

/// Failures of its units, wrong endings and values outside of their ranges; what is odd about an access unit without a
/// picture.
std::vector<row_problem> picture_rows::problems_of(const h264::access_unit& unit) const
{
    std::vector<row_problem> found;
    for (const h264::access_unit_part& part : unit.parts) {
        if (part.finding_count > 0 && !is_told_otherwise(part))
            found.push_back({fed_of(part).begin, text_of_findings(part), 0, true});
        if (part.failure)
            found.push_back({fed_of(part).begin, text_of(part.failure)});
        else if (const std::string_view wrong = text_of(part.ending); !wrong.empty())
            found.push_back({fed_of(part).begin, std::string(wrong)});
    }
    if (unit.header == nullptr)
        for (std::string& text : texts_of(unit.findings))
            found.push_back({fed_of(unit.parts.front()).begin, std::move(text), 0, true});
    return found;
}

void picture_rows::keep(std::vector<row_problem> found)
{
    problems.insert(problems.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
    std::stable_sort(problems.begin(), problems.end(), comes_before);
}

/// Those that were found, and those that wait and lie before the end of the row.
void picture_rows::take_problems(picture_row& row, std::vector<row_problem> found)
{
    const auto behind = std::find_if(problems.begin(), problems.end(),
                                     [&](const row_problem& p) { return p.offset >= row.offset + row.size; });
    found.insert(found.begin(), problems.begin(), behind);
    problems.erase(problems.begin(), behind);
    waiting_units += found.size();
    row.problems.insert(row.problems.end(), std::make_move_iterator(found.begin()),
                        std::make_move_iterator(found.end()));
    std::stable_sort(row.problems.begin(), row.problems.end(), comes_before);
}

void picture_rows::decoded(const h264::picture& picture)
{
    waiting_row* first = nullptr;
    for (auto w = waiting.rbegin(); w != waiting.rend() && w->row.picture == picture.number; ++w) {
        w->complete = true;
        first = &*w;
    }
    if (first == nullptr)
        return;
    std::vector<row_problem> found;
    for (const std::string& text : texts_of(picture.findings))
        found.push_back({first->row.offset, fmt::format("picture {}: {}", picture.number, text), 0, true});
    take_problems(first->row, std::move(found));
    set_times(picture);
}

void picture_rows::output(const h264::picture& picture)
{
    const std::uint64_t number = output_count;
    output_count += picture.discarded ? 0 : 1;
    for (auto [w, fence] = rows_of(picture.number); w != fence; ++w) {
        w->settled = true;
        if (!picture.discarded)
            w->row.output_number = number;
    }
    if (!picture.discarded)
        set_times(picture);
}

/// The rows of a picture that wait. They wait in the order of their pictures.
std::pair<picture_rows::row_place, picture_rows::row_place> picture_rows::rows_of(std::uint64_t picture)
{
    const auto before = [](const waiting_row& w, std::uint64_t number) { return w.row.picture < number; };
    const row_place first = std::lower_bound(waiting.begin(), waiting.end(), picture, before);
    row_place fence = first;
    while (fence != waiting.end() && fence->row.picture == picture)
        ++fence;
    return {first, fence};
}

/// Of two rows, the second has the times of its own picture timing; else the one whose field is output second is shown
/// behind the other.
void picture_rows::set_times(const h264::picture& picture)
{
    const auto [first, fence] = rows_of(picture.number);
    for (auto w = first; w != fence; ++w) {
        w->row.time_source = picture.times.source;
        w->row.duration = h264::time_after({0, 1}, w->row.field_duration, w->tick);
        w->row.dts = picture.times.decoding;
        w->row.pts = picture.times.presentation;
    }
    if (fence - first != 2)
        return;
    const row_place second = first + 1;
    if (second->own.source == h264::time_source::hrd) {
        second->row.time_source = second->own.source;
        second->row.dts = second->own.decoding;
        second->row.pts = second->own.presentation;
        return;
    }
    second->row.dts = is_rate(picture.times.source)
                          ? h264::time_after(picture.times.decoding, first->row.field_duration, first->tick)
                          : h264::exact_time();
    const bool in_order = first->row.poc <= second->row.poc;
    const waiting_row& shown_first = in_order ? *first : *second;
    (in_order ? second : first)->row.pts =
        h264::time_after(picture.times.presentation, shown_first.row.field_duration, shown_first.tick);
}

bool picture_rows::next_is_ready() const
{
    if (waiting.empty() || !waiting.front().complete || (end_is_open && waiting.size() == 1))
        return false;
    return waiting.front().settled || finished || waits_for_too_long();
}

bool picture_rows::waits_for_too_long() const
{
    return waiting.back().row.picture - waiting.front().row.picture >= most_waiting_pictures ||
           waiting_units > most_waiting_units || problems.size() > most_waiting_problems;
}

void picture_rows::tell_ready()
{
    while (next_is_ready())
        tell_next();
    tell_problems(most_waiting_problems);
}

/// All but so many.
void picture_rows::tell_problems(std::size_t kept)
{
    for (; problems.size() > kept; problems.pop_front()) {
        problems.front().offset = shown(problems.front().offset);
        to.problem(problems.front());
    }
}

void picture_rows::tell_next()
{
    picture_row row = std::move(waiting.front().row);
    row.given_up = !waiting.front().settled && !finished;
    const std::uint64_t header = waiting.front().header;
    waiting.pop_front();
    waiting_units -= row.units.size() + row.problems.size();
    row.number = row_count++;
    place_in_file(row, header);
    to.row(std::move(row));
}

// The packet has the time of the first picture that begins in it, ISO/IEC 13818-1 2.4.3.7.
void picture_rows::place_in_file(picture_row& row, std::uint64_t header)
{
    row.in_stream = row.offset;
    row.offset = shown(row.offset);
    for (row_problem& problem : row.problems)
        problem.offset = shown(problem.offset);
    const logged_packet* const packet = packets != nullptr ? packets->find(header) : nullptr;
    if (packet != nullptr && packet->number != last_packet)
        row.packet = *packet;
    if (packet != nullptr)
        last_packet = packet->number;
}

} // namespace orv_h264
