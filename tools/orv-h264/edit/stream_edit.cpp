#include "edit/stream_edit.h"

#include "access_unit_taker.h"
#include "element_text.h"
#include "framing.h"
#include "loss_texts.h"

#include <algorithm>
#include <array>
#include <new>

#include <fmt/format.h>

namespace orv_h264::editing {

namespace {

bool is_slice(const h264::access_unit_part& part)
{
    return part.role >= h264::unit_role::primary && part.role <= h264::unit_role::layer;
}

bool is_picture(const h264::access_unit& unit)
{
    return std::any_of(unit.parts.begin(), unit.parts.end(), is_slice);
}

/// Table 7-5: the lowest primary_pic_type that allows slices of these kinds.
unsigned primary_pic_type_of(std::uint8_t slice_kinds)
{
    constexpr unsigned P = 1U << static_cast<unsigned>(h264::slice_kind::P);
    constexpr unsigned B = 1U << static_cast<unsigned>(h264::slice_kind::B);
    constexpr unsigned I = 1U << static_cast<unsigned>(h264::slice_kind::I);
    constexpr unsigned SP = 1U << static_cast<unsigned>(h264::slice_kind::SP);
    constexpr unsigned SI = 1U << static_cast<unsigned>(h264::slice_kind::SI);
    constexpr std::array<unsigned, 8> allowed = {I,       I | P,  I | P | B,       SI,
                                                 SI | SP, I | SI, I | SI | P | SP, I | SI | P | SP | B};
    const auto fits = [&](unsigned kinds) { return (slice_kinds & ~kinds) == 0; };
    return static_cast<unsigned>(std::find_if(allowed.begin(), allowed.end() - 1, fits) - allowed.begin());
}

} // namespace

stream_edit::stream_edit(const edit_plan& with, stream_input& from, const std::string& path, output_file& to)
    : plan(with),
      input(from),
      raw_input(path, from.name()),
      output(from.in_container() != nullptr ? h264::framing::annex_b : from.framing(), &to),
      problems(from.name()),
      shown_progress(from.size()),
      editor(with, from.name(),
             [this](std::uint64_t offset, const std::string& what) { complain(offset, what, false); }),
      inserted(with.insertions.size())
{
}

exit_status stream_edit::run()
{
    take_record_sets();
    const bool any = input.read_units(*this);
    pictures.flush(*this);
    rethrow();
    if (!sources.empty()) // what is not handed back could not be kept
        throw std::bad_alloc();
    shown_progress.clear();
    if (const container_stream* const container = input.in_container())
        for (const container_remark& remark : container->remarks())
            complain(remark.offset, remark.text, remark.is_problem);
    if (!any)
        stop(exit_broken_stream, input.bytes_read(), describe_no_unit(input.is_empty()));
    if (input.in_container() == nullptr)
        write_between(passed, input.bytes_read(), gap_open);
    output.flush();
    editor.finish();
    for (std::size_t i = 0; i < inserted.size(); ++i)
        if (!inserted[i])
            throw refusal(exit_usage_or_io, fmt::format("'{}': the stream has no such place", plan.insertions[i].text));
    return problems.status();
}

/// They are edited like units of the stream, and come before the pictures that lack them.
void stream_edit::take_record_sets()
{
    access_unit_taker ignores(
        [](const h264::access_unit&) {}); // pictures are told apart with these sets, which belong to none
    for (const h264::split_unit& set : input.record_sets()) {
        const h264::unit_place place = {set.bytes, set.size, input.packets().shown(set.offset), count++};
        pictures.push(place, ignores);
        read_unit(place);
        rethrow();
        const edited_unit& now = edited.back();
        done.add(unit_fate::deleted, {});
        if (now.fate != unit_fate::deleted)
            keep_set(now.fate == unit_fate::rewritten ? std::span(now.bytes) : std::span(set.bytes, set.size));
        edited.clear();
    }
    pictures.flush(ignores);
}

void stream_edit::unit(const h264::split_unit& u)
{
    const std::uint64_t begin = input.packets().shown(begin_of(u));
    if (u.cut)
        complain(begin, describe_cut(u));
    if ((u.bytes[0] & 0x80) != 0)
        complain(begin, "unit whose header has the forbidden bit set");
    sources.emplace(count, unit_source{passed, u.offset, u.framing_size, gap_open || u.cut});
    gap_open = false;
    passed = u.offset + u.size;
    shown_progress.tell(input.packets().shown(u.offset));
    pictures.push({u.bytes, u.size, begin, count++}, *this);
}

void stream_edit::gap(const h264::split_gap& g)
{
    if (g.reason == h264::split_gap_reason::no_memory)
        throw std::bad_alloc();
    if (g.is_unit() && input.in_container() != nullptr) // a copy without it would be none
        stop(exit_broken_stream, g.offset, describe_with_size(g, input.max_unit()));
    count += g.is_unit() ? 1 : 0;
    gap_open = true;
    complain(input.packets().shown(g.offset), describe_with_size(g, input.max_unit()));
}

void stream_edit::take(const h264::access_unit& picture)
{
    edited.clear();
    made.clear();
    for (const h264::access_unit_part& part : picture.parts) {
        if (part.failure)
            complain(part.place.offset, text_of(part.failure));
        read_unit(part.place);
    }
    units.flush(*this);
    rethrow();
    picture_units leaving;
    for (std::size_t i = 0; i < picture.parts.size(); ++i) {
        const h264::access_unit_part& part = picture.parts[i];
        const edited_unit& now = edited.at(i);
        const bool is_new = now.fate == unit_fate::rewritten;
        leaving.push_back(
            {now.fate, &part, is_new ? std::span(now.bytes) : std::span(part.place.bytes, part.place.size)});
        if (part.role == h264::unit_role::parameter_set && now.fate != unit_fate::deleted)
            keep_set(leaving.back().bytes);
    }
    if (is_picture(picture)) {
        put_headers(leaving, picture);
        put_delimiter(leaving, picture);
    }
    put_insertions(leaving, picture);
    any_picture = any_picture || is_picture(picture);
    ++picture_count;
    write(leaving);
}

// A sink of readings may not throw.
void stream_edit::take(const h264::unit_reading& reading)
{
    try {
        if (!failed)
            edited.push_back(editor.take(reading, reading.place.number, picture_count));
    } catch (...) {
        failed = std::current_exception();
    }
}

void stream_edit::read_unit(const h264::unit_place& place)
{
    units.push(place, *this);
}

void stream_edit::rethrow() const
{
    if (failed)
        std::rethrow_exception(failed);
}

void stream_edit::keep_set(std::span<const unsigned char> bytes)
{
    if (!plan.repeat_headers && input.in_container() == nullptr)
        return;
    if (sets.push(h264::unit_view{bytes.data(), bytes.size()}) == h264::set_arrival::no_memory)
        throw std::bad_alloc();
}

/// All parameter sets in force, before an IDR picture that does not carry what it needs, instead of its own.
void stream_edit::put_headers(picture_units& leaving, const h264::access_unit& picture)
{
    const bool wanted = plan.repeat_headers || input.in_container() != nullptr;
    if (!wanted || (!picture.idr && any_picture))
        return;
    std::vector<h264::unit_view> views;
    for (const leaving_unit& u : leaving)
        if (u.fate != unit_fate::deleted)
            views.push_back({u.bytes.data(), u.bytes.size()});
    if (h264::carries_its_sets(views.data(), views.size()))
        return;
    for (leaving_unit& u : leaving)
        if (u.part->role == h264::unit_role::parameter_set)
            u.fate = unit_fate::deleted;
    std::size_t place = leaving[0].part->role == h264::unit_role::delimiter ? 1 : 0;
    for (const h264::unit_view& set : sets.all())
        put_at(leaving, place++, {set.bytes, set.size});
}

void stream_edit::put_delimiter(picture_units& leaving, const h264::access_unit& picture)
{
    const bool has_one = std::any_of(leaving.begin(), leaving.end(), [](const leaving_unit& u) {
        return u.part != nullptr && u.part->role == h264::unit_role::delimiter && u.fate != unit_fate::deleted;
    });
    if (!plan.add_aud || has_one || picture.header == nullptr)
        return;
    constexpr unsigned char type = 9;
    constexpr unsigned stop_bit = 0x10; // behind the three bits
    made.push_back({type, static_cast<unsigned char>(primary_pic_type_of(picture.slice_kinds) << 5U | stop_bit)});
    put_at(leaving, 0, made.back());
}

void stream_edit::put_at(picture_units& leaving, std::size_t place, std::span<const unsigned char> bytes)
{
    leaving.insert(leaving.begin() + static_cast<std::ptrdiff_t>(place), {unit_fate::inserted, nullptr, bytes});
}

/// Behind the last unit that is to come before it.
std::size_t stream_edit::place_in_picture(const picture_units& leaving, const unit_insertion& insertion) const
{
    const auto role_is = [](const leaving_unit& u, h264::unit_role role) {
        return u.part != nullptr && u.part->role == role;
    };
    const auto begins_slices = [&](const leaving_unit& u) {
        return role_is(u, h264::unit_role::prefix) || (u.part != nullptr && is_slice(*u.part));
    };
    if (insertion.before_slices)
        return static_cast<std::size_t>(std::find_if(leaving.begin(), leaving.end(), begins_slices) - leaving.begin());
    if (!insertion.behind) // a delimiter stays the first
        return !leaving.empty() && !leaving[0].bytes.empty() && (leaving[0].bytes[0] & 0x1FU) == 9 ? 1 : 0;
    std::size_t place = leaving.size();
    while (place > 0 && role_is(leaving[place - 1], h264::unit_role::end))
        --place;
    return place;
}

void stream_edit::put_insertions(picture_units& leaving, const h264::access_unit& picture)
{
    for (std::size_t i = 0; i < plan.insertions.size(); ++i) {
        const unit_insertion& insertion = plan.insertions[i];
        if (insertion.at == edit_place::unit) {
            const auto at = std::find_if(leaving.begin(), leaving.end(), [&](const leaving_unit& u) {
                return u.part != nullptr && u.part->place.number == insertion.number;
            });
            if (at == leaving.end())
                continue;
            put_at(leaving, static_cast<std::size_t>(at - leaving.begin()) + (insertion.behind ? 1 : 0),
                   insertion.unit);
        } else {
            const edit_place wanted = insertion.before_slices ? plan.sei_at : insertion.at;
            const bool here = is_picture(picture) &&
                              (wanted == edit_place::picture || (wanted == edit_place::idr_picture && picture.idr) ||
                               (wanted == edit_place::first_picture && !any_picture));
            if (!here)
                continue;
            put_at(leaving, place_in_picture(leaving, insertion), insertion.unit);
        }
        inserted[i] = true;
    }
}

void stream_edit::write(const picture_units& leaving)
{
    bool first_went = false; // the unit that the picture began with, and its zero_byte (B.1.2)
    bool any = false;
    for (auto at = leaving.begin(); at != leaving.end(); ++at) {
        const leaving_unit& u = *at;
        done.add(u.fate, u.bytes);
        if (u.part == nullptr)
            write_before_insertion(
                std::find_if(at, leaving.end(), [](const leaving_unit& l) { return l.part != nullptr; }),
                leaving.end());
        if (u.fate == unit_fate::deleted && !any && u.part != nullptr)
            first_went = first_went || sources.at(u.part->place.number).framing_size == 4;
        write_unit(u, !any && first_went && output.framing() == h264::framing::annex_b ? 4 : 0);
        any = any || u.fate != unit_fate::deleted;
    }
}

/// Bytes that are no unit's, before the unit that follows an inserted one, would become a part of that.
void stream_edit::write_before_insertion(picture_units::const_iterator next, picture_units::const_iterator end)
{
    if (next == end || input.in_container() != nullptr)
        return;
    unit_source& source = sources.at(next->part->place.number);
    if (!source.raw)
        return;
    const std::uint64_t framing = source.offset - source.framing_size;
    write_between(source.behind_last, framing, true);
    source.behind_last = framing;
}

void stream_edit::write_unit(const leaving_unit& u, unsigned least_start_code)
{
    if (u.part == nullptr)
        return write_framed(u.bytes, h264::framing::annex_b, 4, 0);
    const std::uint64_t offset = u.part->place.offset;
    const auto place = sources.find(u.part->place.number);
    const unit_source source = place->second;
    sources.erase(place);
    if (input.in_container() != nullptr) {
        if (u.fate != unit_fate::deleted)
            write_framed(u.bytes, u.fate == unit_fate::copied ? input.framing() : h264::framing::annex_b, 4, offset);
        return;
    }
    const std::uint64_t framing = source.offset - source.framing_size;
    write_between(source.behind_last, framing, source.raw);
    if (u.fate == unit_fate::deleted)
        return;
    if (u.fate == unit_fate::copied && source.raw && source.framing_size >= least_start_code) {
        write_between(framing, source.offset, true); // the length of a unit that is cut tells more
        return output.put_raw(u.bytes);
    }
    write_framed(u.bytes, h264::framing::annex_b, std::max(source.framing_size, least_start_code), offset);
}

void stream_edit::write_framed(std::span<const unsigned char> bytes, h264::framing from, unsigned start_code_size,
                               std::uint64_t offset)
{
    switch (output.write(bytes, from, start_code_size)) {
    case unit_written::as_it_is:
        return;
    case unit_written::escaped:
        return complain(offset, "start code inside the unit: an emulation-prevention byte is put into it");
    case unit_written::shorter:
        return complain(offset, "unit ends in 00, which start codes cannot carry: left out");
    case unit_written::left_out:
        stop(exit_broken_stream, offset, "unit of one byte 00, which start codes cannot carry");
    case unit_written::too_long:
        stop(exit_usage_or_io, offset,
             fmt::format("unit of {} bytes does not fit behind a length of {}", bytes.size(),
                         framing_name(output.framing())));
    }
}

/// Zero bytes; or what stands there, whatever it is.
void stream_edit::write_between(std::uint64_t begin, std::uint64_t end, bool raw)
{
    if (!raw)
        return output.pad(end - begin);
    std::array<unsigned char, 65536> block;
    while (begin < end) {
        const std::size_t wanted = std::min<std::uint64_t>(end - begin, block.size());
        const std::size_t count_read = raw_input.read_at(begin, block.data(), wanted);
        if (count_read == 0)
            stop(exit_usage_or_io, begin, "the input has become shorter");
        output.put_raw({block.data(), count_read});
        begin += count_read;
    }
}

void stream_edit::complain(std::uint64_t offset, const std::string& what, bool is_problem)
{
    shown_progress.clear();
    if (is_problem)
        problems.add(offset, what);
    else
        problems.note(offset, what);
}

void stream_edit::stop(exit_status status, std::uint64_t offset, const std::string& why)
{
    throw refusal(status, fmt::format("{}: offset {}: {}; nothing is written", input.name(), offset, why));
}

} // namespace orv_h264::editing
