#include "check/number_check.h"

#include <algorithm>

namespace orv_h264 {

namespace {

using h264::picture_finding;
using h264::picture_structure;

/// What is told of the picture of an access unit; `of` is what it is part of.
numbered_picture numbered_of(const h264::access_unit& unit, const h264::picture& of)
{
    numbered_picture picture;
    picture.known = unit.whole && unit.sps != nullptr && of.has_count;
    picture.reference = unit.nal_ref_idc != 0;
    picture.idr = unit.idr;
    picture.resets = picture.reference && h264::has_operation_5(*unit.header);
    picture.second_field = of.both_fields;
    picture.structure = unit.structure;
    picture.frame_num = unit.header->frame_num;
    if (unit.structure == picture_structure::top_field)
        picture.count = of.count.top;
    else
        picture.count = unit.structure == picture_structure::bottom_field ? of.count.bottom : of.count.lower();
    return picture;
}

std::uint64_t first_primary_of(const h264::access_unit& unit)
{
    const auto is_primary = [](const h264::access_unit_part& p) { return p.role == h264::unit_role::primary; };
    return std::find_if(unit.parts.begin(), unit.parts.end(), is_primary)->place.number;
}

} // namespace

void number_check::access_unit(const h264::access_unit& unit, const h264::picture* of)
{
    if (unit.header == nullptr || of == nullptr)
        return;
    const std::uint64_t slice = first_primary_of(unit);
    first_slices.emplace(of->number, slice);
    if (first_slices.size() > most_units)
        first_slices.erase(first_slices.begin());
    const numbered_picture picture = numbered_of(unit, *of);
    if (picture.known)
        look_at_number(unit, picture, slice);
    go_on(unit, picture);
}

void number_check::look_at_number(const h264::access_unit& unit, const numbered_picture& picture, std::uint64_t slice)
{
    const bool whole = !unit.findings.has(picture_finding::first_slice_missing);
    const numbering_facts facts{*unit.sps, picture, last, last_but_one, PrevRefFrameNum, whole};
    log.judge(numbering_rules(), facts, slice);
    repeats = facts.repeats_last() || !whole;
    const std::uint64_t step = facts.step().value_or(1);
    if (picture.idr || picture.resets)
        sure = true;
    else if (step > 1 && !unit.sps->gaps_in_frame_num_value_allowed_flag)
        sure = false;
    if (!picture.reference && step != 0) // what is inferred for a gap is before it
        PrevRefFrameNum = static_cast<std::uint32_t>((picture.frame_num + h264::MaxFrameNum(*unit.sps) - 1) %
                                                     h264::MaxFrameNum(*unit.sps));
}

void number_check::go_on(const h264::access_unit& unit, const numbered_picture& picture)
{
    last_but_one = last;
    last = picture;
    if (!picture.known) {
        PrevRefFrameNum.reset();
        sure = false;
    } else if (picture.reference) {
        PrevRefFrameNum = picture.number_behind();
    }
    if (unit.parts.back().header.nal_unit_type == 11) {
        last = last_but_one = {};
        PrevRefFrameNum.reset();
    }
}

void number_check::decoded(const h264::picture& picture, const h264::reference_marking&)
{
    if (picture.sequence != sequence)
        counts.clear();
    sequence = picture.sequence;
    count_facts facts{picture, {}, false};
    if (picture.has_count && sure && !repeats) {
        const count_list::meeting met = counts.add(picture);
        facts.shared = met.shared;
        facts.parted = met.parted;
    }
    log.judge(count_rules(), facts, first_slices.at(picture.number));
}

void number_check::output(const h264::picture& picture)
{
    const std::uint64_t missing = missing_before(picture);
    const auto slice = first_slices.find(picture.number);
    if (slice != first_slices.end())
        log.judge(output_step_rules(), output_step_facts{picture, missing}, slice->second);
}

/// Where the steps so far were the same, and this one is some of them.
std::uint64_t number_check::missing_before(const h264::picture& picture)
{
    const bool goes_on = output_count && picture.sequence == output_sequence && picture.has_count;
    const std::int64_t step = goes_on ? picture.count.lower() - *output_count : 0;
    output_sequence = picture.sequence;
    output_count = picture.has_count ? std::optional(picture.count.lower()) : std::nullopt;
    if (!goes_on)
        return 0;
    const bool told = equal_steps >= enough_steps && step > output_step && step % output_step == 0;
    const std::uint64_t missing = told ? static_cast<std::uint64_t>(step / output_step) - 1 : 0;
    if (step == output_step && step > 0)
        ++equal_steps;
    else if (!told) {
        output_step = step;
        equal_steps = step > 0 ? 1 : 0;
    }
    return missing;
}

} // namespace orv_h264
