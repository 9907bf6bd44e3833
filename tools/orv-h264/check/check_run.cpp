#include "check/check_run.h"

#include "check/general_rules.h"
#include "element_text.h"
#include "loss_texts.h"

#include <orv-utils-v4/h264_syntax/clauses.h>

#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// What older editions allowed is no error.
severity level_of(const element_outside& outside)
{
    constexpr std::int64_t older = 16;
    const std::string_view name = outside.element.name.name();
    const bool vectors = name == "log2_max_mv_length_horizontal" || name == "log2_max_mv_length_vertical";
    return vectors && outside.element.value == older ? severity::warning : severity::error;
}

std::string allowed_text(const h264::traced_element& e)
{
    return e.lowest == e.highest ? fmt::format("{}", e.lowest) : fmt::format("{} to {}", e.lowest, e.highest);
}

} // namespace

h264::visitor* check_run::before(const listed_unit&)
{
    elements.begin();
    return &elements;
}

void check_run::take(const listed_unit& unit, const h264::unit_reading* reading)
{
    elements.end();
    look_at_elements(unit);
    judge(unit_rules(), unit_facts{*reading}, unit);
    look_at_sets(unit, *reading);
    look_at_slice(unit, *reading);
}

void check_run::look_at_elements(const listed_unit& unit)
{
    for (const element_outside& outside : elements.outside) {
        const std::string_view name = outside.element.name.name();
        if (name == "rbsp_stop_one_bit" || name == "rbsp_alignment_zero_bit")
            continue; // unit-ends-with-stop-bit is about them
        violation what{&general_rules::value_in_range, level_of(outside)};
        what.element = text_of(outside.element.name);
        append_value(what.found, outside.element);
        what.allowed = allowed_text(outside.element);
        what.clause = h264::semantics_of(outside.structure);
        locate(what, unit, outside.element.bit);
        to.take(what);
    }
}

void check_run::look_at_sets(const listed_unit& unit, const h264::unit_reading& reading)
{
    if (reading.result.failure)
        return;
    if (const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&reading.unit.rbsp))
        judge(sps_rules(), sps_facts{sps->seq_parameter_set_data}, unit);
    else if (const auto* const subset = std::get_if<h264::subset_seq_parameter_set_rbsp>(&reading.unit.rbsp))
        judge(sps_rules(), sps_facts{subset->seq_parameter_set_data, true}, unit);
    else if (const auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&reading.unit.rbsp))
        if (const h264::seq_parameter_set_data* const of = h264::sps_of(*pps, *reading.context.sets))
            judge(pps_rules(), pps_facts{*pps, *of}, unit);
}

void check_run::look_at_slice(const listed_unit& unit, const h264::unit_reading& reading)
{
    const h264::slice_header* const slice = h264::slice_header_of(reading.unit);
    const bool base = unit.type() == 1 || unit.type() == 2 || unit.type() == 5;
    if (base && slice != nullptr && !reading.result.failure && reading.sps != nullptr && reading.pps != nullptr)
        judge(slice_rules(), slice_facts{reading.unit.header, *slice, *reading.sps, *reading.pps}, unit);
}

template <class Facts>
void check_run::judge(std::span<const rule_over<Facts>> rules, const Facts& facts, const listed_unit& unit)
{
    for (const rule_over<Facts>& one : rules)
        if (const verdict wrong = one.judge(facts))
            tell(one.what, *wrong, unit);
}

void check_run::tell(const rule& broken, const breach& how, const listed_unit& unit)
{
    violation what{&broken, broken.level};
    what.element = how.element;
    what.found = how.found;
    what.allowed = how.allowed;
    what.clause = broken.clause;
    locate(what, unit, how.element.empty() ? std::nullopt : elements.bit_of(how.element));
    to.take(what);
}

void check_run::locate(violation& what, const listed_unit& unit, std::optional<std::uint64_t> bit) const
{
    what.offset = unit.shown();
    what.unit = {unit.place.number, unit.type()};
    if (!bit)
        return;
    h264::byte_map bytes(unit.place.bytes, unit.place.size);
    what.place = {unit.place.offset + bytes(*bit / 8), *bit};
}

void check_run::take_gap(const h264::split_gap& gap)
{
    violation what{&general_rules::every_byte_in_a_unit, severity::error, gap.offset};
    what.found = describe_with_size(gap, most_unit_bytes);
    what.allowed = "none";
    what.clause = general_rules::every_byte_in_a_unit.clause;
    to.take(what);
}

/// The rules tell all of it but what the splitter says of a unit.
void check_run::complain(const listed_unit* unit, std::uint64_t offset, const std::string& what, bool)
{
    static_cast<void>(unit);
    static_cast<void>(offset);
    static_cast<void>(what);
}

} // namespace orv_h264
