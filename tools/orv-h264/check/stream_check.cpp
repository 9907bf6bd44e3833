#include "check/stream_check.h"

#include "check/container_part.h"
#include "check/facts.h"
#include "check/general_rules.h"
#include "check/profile_part.h"
#include "element_text.h"
#include "loss_texts.h"

#include <orv-utils-v4/h264_syntax/clauses.h>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// A rule of its own is about the element.
bool is_ruled_otherwise(const h264::traced_element& e)
{
    constexpr std::int64_t older = 16; // which older editions allowed
    const std::string_view name = e.name.name();
    if (name == "log2_max_mv_length_horizontal" || name == "log2_max_mv_length_vertical")
        return e.value == older;
    return name == "rbsp_stop_one_bit" || name == "rbsp_alignment_zero_bit";
}

std::string allowed_text(const h264::traced_element& e)
{
    return e.lowest == e.highest ? fmt::format("{}", e.lowest) : fmt::format("{} to {}", e.lowest, e.highest);
}

} // namespace

stream_check::stream_check(const std::string& name, std::uint64_t most_unit_bytes, violation_sink& sink,
                           std::span<const delivery_profile> profiles)
    : unit_run(name, false), most_bytes(most_unit_bytes), log(sink), parts(make_check_parts(log))
{
    for (const delivery_profile& profile : profiles)
        parts.push_back(std::make_unique<profile_part>(log, profile));
}

void stream_check::look_at(stream_input& input)
{
    for (const std::unique_ptr<check_part>& part : parts)
        part->begin(input);
    begin_units(input);
    container_part container(input, units_in());
    if (!input.read_units(container))
        log.tell_at(general_rules::some_unit, input.bytes_read(), {"", describe_no_unit(input.is_empty()), "a unit"});
    end_units();
    access_units.flush(to_pictures);
    pictures.flush(*this);
    for (const std::unique_ptr<check_part>& part : parts)
        part->end();
    container.finish(input, log);
    log.release_all();
}

h264::visitor* stream_check::before(const listed_unit& unit)
{
    elements.begin(unit);
    return &elements;
}

void stream_check::take(const listed_unit& unit, const h264::unit_reading* reading)
{
    log.begin({{unit.place.number, unit.type()}, unit.shown(), elements.end()});
    look_at_elements(unit.place.number);
    log.judge(unit_rules(), unit_facts{*reading}, unit.place.number);
    look_at_sets(unit, *reading);
    look_at_slice(unit, *reading);
    for (const std::unique_ptr<check_part>& part : parts)
        part->unit(unit, *reading);
    access_units.push(unit.place, to_pictures);
}

void stream_check::look_at_elements(std::uint64_t unit)
{
    for (const element_outside& outside : elements.outside) {
        const h264::traced_element& e = outside.element;
        if (is_ruled_otherwise(e))
            continue;
        breach how{text_of(e.name), "", allowed_text(e)};
        append_value(how.found, e);
        log.tell_of_element(general_rules::value_in_range, unit, std::move(how), h264::semantics_of(outside.structure));
    }
}

void stream_check::look_at_sets(const listed_unit& unit, const h264::unit_reading& reading)
{
    const std::uint64_t number = unit.place.number;
    if (reading.result.failure)
        return;
    if (const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&reading.unit.rbsp))
        log.judge(sps_rules(), sps_facts{sps->seq_parameter_set_data}, number);
    else if (const auto* const subset = std::get_if<h264::subset_seq_parameter_set_rbsp>(&reading.unit.rbsp))
        log.judge(sps_rules(), sps_facts{subset->seq_parameter_set_data, true}, number);
    else if (const auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&reading.unit.rbsp))
        if (const h264::seq_parameter_set_data* const of = h264::sps_of(*pps, *reading.context.sets))
            log.judge(pps_rules(), pps_facts{*pps, *of}, number);
}

void stream_check::look_at_slice(const listed_unit& unit, const h264::unit_reading& reading)
{
    const h264::slice_header* const slice = h264::slice_header_of(reading.unit);
    const bool base = unit.type() == 1 || unit.type() == 2 || unit.type() == 5;
    if (base && slice != nullptr && !reading.result.failure && reading.sps != nullptr && reading.pps != nullptr)
        log.judge(slice_rules(), slice_facts{reading.unit.header, *slice, *reading.sps, *reading.pps},
                  unit.place.number);
}

void stream_check::take_cut(const listed_unit& unit, const h264::split_unit& as_split)
{
    log.tell_at(general_rules::unit_whole, unit.shown(), {"", describe_cut(as_split), "all of it"});
}

void stream_check::take_gap(const h264::split_gap& gap)
{
    const rule& broken = gap.is_unit() ? general_rules::unit_taken : general_rules::every_byte_in_a_unit;
    log.tell_at(broken, gap.offset, {"", describe_with_size(gap, most_bytes), "none"});
}

/// The rules have told all the rest.
void stream_check::complain(const listed_unit*, std::uint64_t, const std::string&, bool) {}

void stream_check::access_unit_came(const h264::access_unit& unit, const h264::picture* of)
{
    for (const std::unique_ptr<check_part>& part : parts)
        part->access_unit(unit, of);
    if (!unit.parts.empty())
        log.release(unit.parts.back().place.number + 1);
}

void stream_check::decoded(const h264::picture& picture)
{
    for (const std::unique_ptr<check_part>& part : parts)
        part->decoded(picture, pictures.marking());
}

void stream_check::output(const h264::picture& picture)
{
    for (const std::unique_ptr<check_part>& part : parts)
        part->output(picture);
}

} // namespace orv_h264
