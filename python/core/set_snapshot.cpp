#include "set_snapshot.h"

namespace orv_python {

namespace {

/// Of each id the set that `now` has: the one that is there where it is equal. True where one changed.
template <class Set, std::size_t N>
bool differs(const Set* const (&now)[N], const std::shared_ptr<const Set> (&kept)[N], std::size_t id)
{
    if (now[id] == nullptr || kept[id] == nullptr)
        return (now[id] == nullptr) != (kept[id] == nullptr);
    return !(*now[id] == *kept[id]);
}

template <class Set, std::size_t N>
bool any_differs(const Set* const (&now)[N], const std::shared_ptr<const Set> (&kept)[N])
{
    for (std::size_t id = 0; id < N; ++id)
        if (differs(now, kept, id))
            return true;
    return false;
}

template <class Set, std::size_t N>
void take_set(const Set* const (&now)[N], std::shared_ptr<const Set> (&kept)[N], const Set* (&view)[N], std::size_t id)
{
    if (differs(now, kept, id))
        kept[id] = now[id] == nullptr ? nullptr : std::make_shared<const Set>(*now[id]);
    view[id] = kept[id].get();
}

template <class Set, std::size_t N>
void take_all(const Set* const (&now)[N], std::shared_ptr<const Set> (&kept)[N], const Set* (&view)[N])
{
    for (std::size_t id = 0; id < N; ++id)
        take_set(now, kept, view, id);
}

template <class Set, std::size_t N>
std::shared_ptr<const Set> kept_set(const Set* wanted, const std::shared_ptr<const Set> (&kept)[N],
                                    const Set* const (&now)[N])
{
    for (std::size_t id = 0; wanted != nullptr && id < N; ++id)
        if (now[id] == wanted)
            return kept[id];
    return nullptr;
}

} // namespace

set_snapshot::set_snapshot(const set_snapshot& from) : sets(from.sets)
{
    std::copy(std::begin(from.sps), std::end(from.sps), sps);
    std::copy(std::begin(from.subset_sps), std::end(from.subset_sps), subset_sps);
    std::copy(std::begin(from.pps), std::end(from.pps), pps);
    std::copy(std::begin(from.dps), std::end(from.dps), dps);
}

h264::unit_context kept_context::view() const
{
    h264::unit_context context;
    context.sets = sets == nullptr ? nullptr : &sets->sets;
    context.active_sps = active_sps.get();
    context.active_pps = active_pps.get();
    context.mvcd_sps = mvcd_sps.get();
    context.primary_idr = primary_idr;
    context.partition_a_pps = partition_a_pps;
    return context;
}

// Behind a unit that is a parameter set, one of them may be another one; behind an SPS its PPSs too.
void set_follower::look(const h264::unit_reading& reading)
{
    const h264::parameter_sets& now = *reading.context.sets;
    if (everything)
        follow_all(now);
    else if (pps_to_follow >= 0)
        follow_pps(now, static_cast<std::uint32_t>(pps_to_follow));
    everything = false;
    pps_to_follow = -1;
    const unsigned type = reading.unit.header.nal_unit_type;
    if (const auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&reading.unit.rbsp))
        pps_to_follow = pps->pic_parameter_set_id;
    else
        everything = type == 7 || type == 15 || type == 16;
}

void set_follower::follow_all(const h264::parameter_sets& now)
{
    if (!any_differs(now.sps, snapshot->sps) && !any_differs(now.subset_sps, snapshot->subset_sps) &&
        !any_differs(now.pps, snapshot->pps) && !any_differs(now.dps, snapshot->dps))
        return;
    const auto next = std::make_shared<set_snapshot>(*snapshot);
    take_all(now.sps, next->sps, next->sets.sps);
    take_all(now.subset_sps, next->subset_sps, next->sets.subset_sps);
    take_all(now.pps, next->pps, next->sets.pps);
    take_all(now.dps, next->dps, next->sets.dps);
    snapshot = next;
}

void set_follower::follow_pps(const h264::parameter_sets& now, std::uint32_t id)
{
    if (id >= h264::parameter_sets::pps_ids || !differs(now.pps, snapshot->pps, id))
        return;
    const auto next = std::make_shared<set_snapshot>(*snapshot);
    take_set(now.pps, next->pps, next->sets.pps, id);
    snapshot = next;
}

kept_context set_follower::keep(const h264::unit_context& context) const
{
    kept_context kept;
    kept.sets = snapshot;
    kept.active_sps = keep(context.active_sps, *context.sets);
    kept.active_pps = keep(context.active_pps);
    kept.mvcd_sps = kept_set(context.mvcd_sps, snapshot->subset_sps, context.sets->subset_sps);
    kept.primary_idr = context.primary_idr;
    kept.partition_a_pps = context.partition_a_pps;
    return kept;
}

std::shared_ptr<const h264::seq_parameter_set_data> set_follower::keep(const h264::seq_parameter_set_data* sps,
                                                                       const h264::parameter_sets& now) const
{
    for (std::uint32_t id = 0; sps != nullptr && id < h264::parameter_sets::sps_ids; ++id) {
        if (now.find_sps(id) == sps && snapshot->sps[id] != nullptr)
            return {snapshot->sps[id], &snapshot->sps[id]->seq_parameter_set_data};
        if (now.subset_sps[id] != nullptr && &now.subset_sps[id]->seq_parameter_set_data == sps &&
            snapshot->subset_sps[id] != nullptr)
            return {snapshot->subset_sps[id], &snapshot->subset_sps[id]->seq_parameter_set_data};
    }
    return nullptr;
}

std::shared_ptr<const h264::pic_parameter_set_rbsp> set_follower::keep(const h264::pic_parameter_set_rbsp* pps) const
{
    if (pps == nullptr || pps->pic_parameter_set_id >= h264::parameter_sets::pps_ids)
        return nullptr;
    return snapshot->pps[pps->pic_parameter_set_id];
}

} // namespace orv_python
