#include "cut/cut_run.h"

#include "access_unit_taker.h"
#include "cut/set_preface.h"
#include "framing.h"
#include "loss_texts.h"

#include <new>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr const char* forbidden_bit = "unit whose header has the forbidden bit set";

} // namespace

cut_run::cut_run(const cut_options& chosen, const cut_range& where_to, stream_input& from, output_file& into)
    : options(chosen),
      range(where_to),
      input(from),
      output(from, into, [this](std::uint64_t offset, const std::string& what) { complain(offset, what); }),
      problems(from.name()),
      shown_progress(from.size()),
      layers(chosen.layers)
{
    access_unit_taker ignores(
        [](const h264::access_unit&) {}); // pictures are told apart with these sets, which belong to none
    for (const h264::split_unit& set : from.record_sets()) {
        sets.push(h264::unit_view{set.bytes, set.size});
        units.push({set.bytes, set.size, 0, 0}, ignores);
    }
    units.flush(ignores);
}

exit_status cut_run::run()
{
    const auto enough = [this] { return where == stretch::behind && seams.is_done(); };
    const bool any = input.read_units(*this, enough);
    if (!enough()) {
        units.flush(*this);
        pictures.flush(*this);
        tell_problems(~std::uint64_t{0}, where == stretch::inside);
        if (where == stretch::inside && last_stayed)
            output.pad(input.bytes_read() - passed);
    }
    shown_progress.clear();
    if (const container_stream* const container = input.in_container())
        for (const container_remark& remark : container->remarks())
            remark.is_problem ? problems.add(remark.offset, remark.text) : problems.note(remark.offset, remark.text);
    if (!any)
        throw refusal(exit_broken_stream, fmt::format("{}: offset {}: {}; nothing is written", input.name(),
                                                      input.bytes_read(), describe_no_unit(input.is_empty())));
    if (!options.target.empty() && !layers.target_seen())
        throw refusal(exit_usage_or_io, fmt::format("{}: there is no {}", input.name(), options.target));
    if (!any_written)
        refuse_nothing();
    output.flush();
    tell_seams();
    if (range.to && where != stretch::behind)
        note(input.bytes_read(), fmt::format("the stream ends before --to {}", range.to->text));
    return problems.status();
}

void cut_run::refuse_nothing() const
{
    std::string why = fmt::format("between --from {} and --to {} there is no unit to write",
                                  range.from ? range.from->text : "the start", range.to ? range.to->text : "the end");
    if (where == stretch::before && range.from)
        why = fmt::format("--from {} is behind the end: there are {} pictures in {} bytes", range.from->text,
                          latest_picture ? *latest_picture + 1 : 0, input.bytes_read());
    throw refusal(exit_usage_or_io, fmt::format("{}: {}", input.name(), why));
}

void cut_run::unit(const h264::split_unit& u)
{
    const std::uint64_t begin = begin_of(u);
    if (u.cut)
        found.push_back({begin, describe_cut(u), false});
    if ((u.bytes[0] & 0x80) != 0)
        found.push_back({begin, forbidden_bit, false});
    fed.push_back({begin, u.offset, u.offset + u.size, begin - passed});
    passed = u.offset + u.size;
    shown_progress.tell(input.packets().shown(u.offset));
    units.push({u.bytes, u.size, u.offset, first_fed + fed.size() - 1}, *this);
}

void cut_run::gap(const h264::split_gap& g)
{
    passed = g.offset + g.size;
    if (g.reason == h264::split_gap_reason::no_memory)
        throw std::bad_alloc();
    constexpr std::size_t most_found = 4096; // without an access unit
    const found_problem problem = {g.offset, describe_with_size(g, input.max_unit()), g.is_unit()};
    if (found.size() < most_found)
        found.push_back(problem);
    else if (g.is_unit())
        found.back() = problem;
}

void cut_run::take(const h264::access_unit& unit)
{
    pictures.take(unit, *this);
    const std::uint64_t behind = unit.parts.back().place.number + 1;
    fed.erase(fed.begin(), fed.begin() + static_cast<std::ptrdiff_t>(behind - first_fed));
    first_fed = behind;
}

void cut_run::access_unit_came(const h264::access_unit& unit, const h264::picture* of)
{
    const std::uint64_t end = fed_of(unit.parts.back()).end;
    move_on(unit, of);
    if (where == stretch::inside) {
        const std::vector<bool> stays = layers.kept(unit, units.sets());
        tell_problems(end, true);
        if (of != nullptr && of->number != latest_picture)
            ++totals.pictures;
        write_unit(unit, stays);
    }
    if (where == stretch::before || !any_written)
        keep_sets(unit);
    if (where == stretch::behind && last_stayed) {
        output.pad(fed_of(unit.parts.front()).zeros);
        last_stayed = false;
    }
    if (where != stretch::inside)
        tell_problems(end, false);
    if (of != nullptr && of->number != latest_picture) {
        latest_picture = of->number;
        latest_offset = fed_of(unit.parts.front()).begin;
    }
}

/// Into the stretch that the access unit is the first of, if it is.
void cut_run::move_on(const h264::access_unit& unit, const h264::picture* of)
{
    const std::uint64_t begin = input.packets().shown(fed_of(unit.parts.front()).begin);
    const bool second_field = of != nullptr && of->number == latest_picture;
    if (where == stretch::before && (!range.from || is_at(*range.from, unit, of))) {
        where = stretch::inside;
        last_stayed = !range.from;
        totals.first_offset = begin;
    }
    if (where != stretch::inside)
        return;
    if (range.to && is_at(*range.to, unit, of)) {
        where = stretch::behind;
        seams.end(of != nullptr ? of->number : latest_picture.value_or(0) + 1, begin, second_field && any_written);
    } else if (of != nullptr && !totals.first_picture) {
        totals.first_picture = of->number;
        if (range.from) // else the stream begins as it does
            seams.begin(of->number, begin, unit, second_field);
        else
            seams.begin_with_stream(of->number);
    }
}

bool cut_run::is_at(const cut_place& place, const h264::access_unit& unit, const h264::picture* of) const
{
    if (place.what == cut_place::kind::offset)
        return input.packets().shown(fed_of(unit.parts.front()).begin) >= place.number;
    return place.number == 0 || (of != nullptr && of->number >= place.number);
}

void cut_run::write_unit(const h264::access_unit& unit, const std::vector<bool>& stays)
{
    set_preface preface;
    const bool first = !any_written && std::find(stays.begin(), stays.end(), true) != stays.end();
    if (first && !options.only)
        preface = make_preface(sets, unit, layers, units.sets());
    const std::uint64_t before = totals.units;
    for (std::size_t i = 0; i < unit.parts.size(); ++i) {
        if (i == preface.before_sequence_sets)
            write_sets(preface.sequence_sets);
        if (i == preface.before_picture_sets)
            write_sets(preface.picture_sets);
        const unsigned type = unit.parts[i].header.nal_unit_type;
        write_part(unit.parts[i], stays[i] && (!options.only || options.only->test(type)));
    }
    totals.access_units += totals.units != before ? 1 : 0;
}

void cut_run::write_part(const h264::access_unit_part& part, bool stays)
{
    const fed_unit& place = fed_of(part);
    if (last_stayed)
        output.pad(place.zeros);
    last_stayed = stays;
    totals.units += stays ? 1 : 0;
    totals.left_out += stays ? 0 : 1;
    any_written = any_written || stays;
    if (stays)
        output.write({part.place.bytes, part.place.size}, input.packets().shown(place.begin),
                     static_cast<unsigned>(place.header - place.begin));
}

void cut_run::write_sets(const std::vector<h264::unit_view>& more)
{
    for (const h264::unit_view& set : more)
        output.write({set.bytes, set.size}, totals.first_offset, 4);
    totals.sets_added += more.size();
}

void cut_run::keep_sets(const h264::access_unit& unit)
{
    using h264::set_arrival;
    for (const h264::access_unit_part& part : unit.parts) {
        const set_arrival arrival = sets.push(part.place);
        if (arrival == set_arrival::no_memory)
            throw std::bad_alloc();
        if (arrival == set_arrival::damaged || arrival == set_arrival::too_long)
            complain(input.packets().shown(fed_of(part).begin),
                     "parameter set that cannot be read is not kept for what is cut out behind it");
    }
}

void cut_run::decoded(const h264::picture& picture)
{
    seams.add(picture, input.packets().shown(latest_offset));
}

/// Those before the fence; what is not written is not told.
void cut_run::tell_problems(std::uint64_t fence, bool written)
{
    for (; !found.empty() && found.front().offset < fence; found.pop_front()) {
        const found_problem& problem = found.front();
        const std::uint64_t shown = input.packets().shown(problem.offset);
        if (written && problem.lost_unit)
            throw refusal(exit_broken_stream,
                          fmt::format("{}: offset {}: {}; nothing is written", input.name(), shown, problem.text));
        if (written)
            complain(shown, problem.text);
    }
}

void cut_run::tell_seams()
{
    if (!options.only)
        for (const seam_note& seam : seams.notes())
            note(seam.offset, seam.text);
}

void cut_run::note(std::uint64_t offset, const std::string& text)
{
    shown_progress.clear();
    problems.note(offset, text);
    other_notes.push_back({offset, text});
}

void cut_run::complain(std::uint64_t offset, const std::string& what)
{
    shown_progress.clear();
    problems.add(offset, what);
}

json cut_run::summary() const
{
    json object = json_head("orv-h264/cut", input.name());
    object["out"] = options.out;
    object["framing"] = framing_name(output.framing());
    object["first_offset"] = totals.first_offset;
    object["first_picture"] = totals.first_picture ? json(*totals.first_picture) : json();
    object["pictures"] = totals.pictures;
    object["access_units"] = totals.access_units;
    object["units"] = totals.units;
    object["units_left_out"] = totals.left_out;
    object["parameter_sets_added"] = totals.sets_added;
    object["bytes"] = output.bytes();
    json notes = json::array();
    for (const seam_note& n : other_notes)
        notes.push_back({{"offset", n.offset}, {"message", n.text}});
    object["notes"] = notes;
    return object;
}

} // namespace orv_h264
