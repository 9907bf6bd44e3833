#include "check/output_part.h"

#include "check/unit_of_picture.h"

#include <algorithm>

namespace orv_h264 {

namespace {

using h264::picture_finding;

/// Pictures, or references to them, are missing there.
bool is_short_of_pictures(const h264::picture& picture)
{
    const picture_finding losses[] = {picture_finding::no_parameter_sets,   picture_finding::slice_damaged,
                                      picture_finding::first_slice_missing, picture_finding::frame_num_gap,
                                      picture_finding::too_many_frames,     picture_finding::no_such_reference,
                                      picture_finding::limit_reached};
    return std::any_of(std::begin(losses), std::end(losses),
                       [&](picture_finding f) { return picture.findings.has(f); });
}

} // namespace

void output_part::access_unit(const h264::access_unit& unit, const h264::picture* of)
{
    if (of == nullptr || unit.sps == nullptr || !unit.whole) {
        missing = true;
        all_known = false;
        return;
    }
    if (of->access_unit == unit.number)
        begin_picture(unit, *of);
    if (is_short_of_pictures(*of)) {
        missing = true;
        all_known = open.back().all_known = false;
    }
}

void output_part::begin_picture(const h264::access_unit& unit, const h264::picture& of)
{
    const std::uint64_t slice = first_slice_of(unit);
    const sps_entry before = latest;
    latest = sets.find(*unit.sps, slice, [this](const known_sps<order_of_sps>& gone) { judge_sps(gone); });
    ++latest->more.pictures;
    if (unit.idr || (unit.nal_ref_idc != 0 && h264::has_operation_5(*unit.header))) {
        missing = false;
        all_known = true;
    }
    if (unit.idr && before != nullptr)
        log.judge(new_sequence_rules(), new_sequence_facts{before->sps, latest->sps, *unit.header}, slice);
    open.push_back({of.number, slice, all_known, latest});
    if (open.size() > most_open)
        open.pop_front();
}

void output_part::decoded(const h264::picture& picture, const h264::reference_marking&)
{
    const open_picture* const entry = find(picture.number);
    if (entry == nullptr || !picture.has_count)
        return;
    const std::uint32_t later = later_than(picture);
    order_of_sps& order = entry->sps->more;
    order.reordered = order.reordered || later != 0;
    if (missing)
        return;
    log.judge(decoded_order_rules(), decoded_order_facts{entry->sps->sps, later, order.told}, entry->unit);
    order.told = std::max(order.told, later);
}

/// How many of its sequence are output behind it, and decoded before.
std::uint32_t output_part::later_than(const h264::picture& picture)
{
    if (picture.sequence != sequence)
        highest.clear();
    sequence = picture.sequence;
    const auto place = std::lower_bound(highest.begin(), highest.end(), picture.count.lower(), std::greater<>());
    const auto later = static_cast<std::uint32_t>(place - highest.begin());
    highest.insert(place, picture.count.lower());
    highest.resize(std::min(highest.size(), decoded_order_facts::most_later));
    return later;
}

void output_part::output(const h264::picture& picture)
{
    const open_picture* const entry = find(picture.number);
    if (entry == nullptr || !picture.has_count) {
        shown = {};
        return;
    }
    output_facts facts{entry->sps->sps, picture, {}, picture.discarded && dropped != picture.sequence};
    if (shown && shown->sequence == picture.sequence && shown->all_known && entry->all_known)
        facts.before = shown->count;
    log.judge(output_rules(), facts, entry->unit);
    shown = shown_picture{picture.sequence, picture.count.lower(), entry->all_known};
    if (picture.discarded)
        dropped = picture.sequence;
}

void output_part::end()
{
    for (const sps_entry& one : sets)
        judge_sps(*one);
}

void output_part::judge_sps(const known_sps<order_of_sps>& of)
{
    log.judge(sps_order_rules(), sps_order_facts{of.sps, of.more.pictures, of.more.reordered}, of.unit);
}

const output_part::open_picture* output_part::find(std::uint64_t picture) const
{
    const auto found = std::find_if(open.begin(), open.end(), [picture](const auto& o) { return o.number == picture; });
    return found == open.end() ? nullptr : &*found;
}

} // namespace orv_h264
