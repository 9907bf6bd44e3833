#include "check/access_unit_check.h"

#include <algorithm>
#include <set>
#include <utility>

namespace orv_h264 {

namespace {

using h264::unit_role;

/// The first slice of the primary coded picture whose header was read.
const sent_slice* first_of(const h264::access_unit& unit, const sent_slices& slices)
{
    for (const h264::access_unit_part& part : unit.parts) {
        const sent_slice* const slice = part.role == unit_role::primary ? slices.find(part.place.number) : nullptr;
        if (slice != nullptr && slice->has_header)
            return slice;
    }
    return nullptr;
}

unsigned planes_of(const h264::access_unit& unit, const sent_slices& slices)
{
    unsigned planes = 0;
    for (const h264::access_unit_part& part : unit.parts) {
        const sent_slice* const slice = part.role == unit_role::primary ? slices.find(part.place.number) : nullptr;
        if (slice != nullptr && slice->has_header && slice->first_mb_in_slice == 0)
            planes |= 1U << (slice->colour_plane_id & 3U);
    }
    return planes;
}

/// The unit that a breach of the whole is one of: its first primary slice, else its first slice, else its first unit.
std::uint64_t blamed(const access_unit_facts& facts)
{
    const auto first = [&](auto is_meant) {
        const std::vector<h264::access_unit_part>& parts = facts.of.parts;
        const auto found = std::find_if(parts.begin(), parts.end(), is_meant);
        return found == parts.end() ? parts.begin() : found;
    };
    const auto is_primary = [](const h264::access_unit_part& p) { return p.role == unit_role::primary; };
    const auto is_slice = [](const h264::access_unit_part& p) {
        return p.role >= unit_role::primary && p.role <= unit_role::layer;
    };
    if (facts.before.stream_ended)
        return facts.of.parts.front().place.number;
    return (facts.of.header != nullptr ? first(is_primary) : first(is_slice))->place.number;
}

} // namespace

void access_unit_check::unit(const listed_unit&, const h264::unit_reading& reading)
{
    slices.add(reading);
}

void access_unit_check::access_unit(const h264::access_unit& unit, const h264::picture*)
{
    if (unit.parts.empty() || unit.findings.has(h264::picture_finding::limit_reached))
        return;
    const sent_slice* const first = first_of(unit, slices);
    const access_unit_facts facts{unit, before, first, planes_of(unit, slices)};
    log.judge(access_unit_rules(), facts, blamed(facts));
    for (std::size_t i = 0; i < unit.parts.size(); ++i) {
        const ordered_unit_facts ordered{unit, i, slices, before};
        log.judge(unit_order_rules(), ordered, unit.parts[i].place.number);
        log.judge(slice_order_rules(), ordered, unit.parts[i].place.number);
    }
    look_at_slices(unit);
    go_on(unit, first);
}

/// Of each coded picture, which redundant_pic_cnt tells apart.
void access_unit_check::look_at_slices(const h264::access_unit& unit)
{
    const sent_slice* first = nullptr;
    const sent_slice* last = nullptr;
    std::set<std::pair<unsigned, std::uint32_t>> begun;
    for (const h264::access_unit_part& part : unit.parts) {
        const bool meant = part.role == unit_role::primary || part.role == unit_role::redundant;
        const sent_slice* const slice = meant ? slices.find(part.place.number) : nullptr;
        if (slice == nullptr || !slice->has_header)
            continue;
        if (last == nullptr || slice->redundant_pic_cnt != last->redundant_pic_cnt) {
            first = slice;
            begun.clear();
        }
        const bool again = !begun.insert({slice->colour_plane_id, slice->first_mb_in_slice}).second;
        if (first != slice)
            log.judge(picture_slice_rules(), picture_slice_facts{unit, *first, *last, *slice, again}, slice->unit);
        last = slice;
    }
}

void access_unit_check::go_on(const h264::access_unit& unit, const sent_slice* first)
{
    if (unit.header != nullptr) {
        before.any_picture = true;
        before.sequence_ended = false;
        before.first_slice = first == nullptr ? sent_slice() : *first;
    }
    before.stream_ended = false;
    for (const h264::access_unit_part& part : unit.parts) {
        if (part.role == unit_role::primary)
            before.last_macroblock = part.first_mb_in_slice;
        before.sequence_ended = before.sequence_ended || part.header.nal_unit_type == 10;
        if (part.header.nal_unit_type == 11)
            before = {false, false, true, {}, 0};
    }
    slices.drop_before(unit.parts.back().place.number + 1);
}

} // namespace orv_h264
