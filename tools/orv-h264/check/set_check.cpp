#include "check/set_check.h"

#include <algorithm>

namespace orv_h264 {

namespace {

using h264::unit_role;

bool is_primary(const h264::access_unit_part& part)
{
    return part.role == unit_role::primary;
}

template <class Set>
const Set* set_of(const h264::access_unit_part& part)
{
    return part.content == nullptr || part.failure ? nullptr : std::get_if<Set>(&part.content->rbsp);
}

} // namespace

void set_check::unit(const listed_unit& unit, const h264::unit_reading& reading)
{
    log.judge(naming_rules(), naming_facts{reading}, unit.place.number);
}

void set_check::access_unit(const h264::access_unit& unit, const h264::picture*)
{
    if (unit.header == nullptr) {
        for (const h264::access_unit_part& part : unit.parts)
            keep_extension(part);
        return;
    }
    const auto first = std::find_if(unit.parts.begin(), unit.parts.end(), is_primary);
    const auto last = std::find_if(unit.parts.rbegin(), unit.parts.rend(), is_primary).base();
    for (auto part = unit.parts.begin(); part != unit.parts.end(); ++part) {
        if (part == first)
            activate(unit, part->place.number);
        look_at_sps(*part, unit.idr && part < first);
        keep_extension(*part);
        if (part > first && part < last)
            look_at_pps(unit, *part);
    }
    look_at_auxiliary(unit, first->place.number);
    if (unit.parts.back().header.nal_unit_type == 11)
        active.reset();
}

void set_check::look_at_sps(const h264::access_unit_part& part, bool may_change)
{
    const auto* const set = set_of<h264::seq_parameter_set_rbsp>(part);
    if (set == nullptr || !active)
        return;
    const h264::seq_parameter_set_data& sps = set->seq_parameter_set_data;
    const std::uint32_t id = sps.seq_parameter_set_id;
    const bool differs = id == active->seq_parameter_set_id && sps != *active;
    log.judge(set_content_rules(), set_content_facts{true, id, differs, may_change}, part.place.number);
    if (differs)
        active = sps;
}

void set_check::look_at_pps(const h264::access_unit& of, const h264::access_unit_part& part)
{
    const auto* const pps = set_of<h264::pic_parameter_set_rbsp>(part);
    if (pps == nullptr || of.pps == nullptr || pps->pic_parameter_set_id != of.pps->pic_parameter_set_id)
        return;
    const set_content_facts facts{false, pps->pic_parameter_set_id, *pps != *of.pps, false};
    log.judge(set_content_rules(), facts, part.place.number);
}

void set_check::look_at_auxiliary(const h264::access_unit& unit, std::uint64_t first_slice) const
{
    const auto auxiliary = std::find_if(unit.parts.begin(), unit.parts.end(),
                                        [](const h264::access_unit_part& p) { return p.role == unit_role::auxiliary; });
    const bool sent = auxiliary != unit.parts.end();
    if (!aux_format_idc)
        return;
    log.judge(auxiliary_rules(), auxiliary_facts{*aux_format_idc, sent}, sent ? auxiliary->place.number : first_slice);
}

/// Whether an SPS that comes again without its extension takes it away is not told.
void set_check::keep_extension(const h264::access_unit_part& part)
{
    if (const auto* const extension = set_of<h264::seq_parameter_set_extension_rbsp>(part)) {
        if (extension->seq_parameter_set_id < h264::parameter_sets::sps_ids)
            aux_formats[extension->seq_parameter_set_id] = extension->aux_format_idc;
    } else if (const auto* const sps = set_of<h264::seq_parameter_set_rbsp>(part)) {
        const std::uint32_t id = sps->seq_parameter_set_data.seq_parameter_set_id;
        if (id < h264::parameter_sets::sps_ids && aux_formats[id] != 0U)
            aux_formats[id].reset();
    }
}

void set_check::activate(const h264::access_unit& unit, std::uint64_t first_slice)
{
    if (unit.sps == nullptr)
        return;
    const std::uint32_t id = unit.sps->seq_parameter_set_id;
    if (active)
        log.judge(activation_rules(), activation_facts{unit.idr, id, active->seq_parameter_set_id}, first_slice);
    if (active && !unit.idr && id == active->seq_parameter_set_id)
        return;
    active = *unit.sps;
    aux_format_idc = id < h264::parameter_sets::sps_ids ? aux_formats[id] : std::nullopt;
}

} // namespace orv_h264
