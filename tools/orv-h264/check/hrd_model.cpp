#include "check/hrd_model.h"

#include <utility>

namespace orv_h264 {

namespace {

/// cpb_removal_delay is the remainder of a counter of some bits (D.2.3). Within a buffering period it goes up.
std::int64_t counted_on(std::int64_t latest, std::uint32_t delay, unsigned bits)
{
    const std::int64_t modulus = std::int64_t{1} << bits;
    const std::int64_t next = latest - latest % modulus + delay;
    return next <= latest && latest - next > modulus / 2 ? next + modulus : next;
}

} // namespace

std::optional<hrd_delays> delays_of(const h264::buffering_period& period, bool nal, std::uint32_t SchedSelIdx)
{
    const auto& list = nal ? period.nal : period.vcl;
    if (SchedSelIdx >= list.size())
        return {};
    return hrd_delays{list[SchedSelIdx].initial_cpb_removal_delay, list[SchedSelIdx].initial_cpb_removal_delay_offset};
}

const h264::hrd_parameters* any_hrd(const h264::seq_parameter_set_data& sps)
{
    const h264::vui_parameters& vui = sps.vui_parameters;
    if (!sps.vui_parameters_present_flag)
        return nullptr;
    if (vui.nal_hrd_parameters_present_flag)
        return &vui.nal_hrd_parameters;
    return vui.vcl_hrd_parameters_present_flag ? &vui.vcl_hrd_parameters : nullptr;
}

std::optional<hrd_model::parameters> hrd_model::parameters_of(const h264::seq_parameter_set_data* sps)
{
    if (sps == nullptr || any_hrd(*sps) == nullptr)
        return {};
    const h264::vui_parameters& vui = sps->vui_parameters;
    const std::optional<hrd_clock> clock = clock_of(vui);
    if (!clock)
        return {};
    parameters all{*clock, {}, {}, vui.low_delay_hrd_flag};
    if (vui.nal_hrd_parameters_present_flag)
        all.nal = vui.nal_hrd_parameters;
    if (vui.vcl_hrd_parameters_present_flag)
        all.vcl = vui.vcl_hrd_parameters;
    return all;
}

void hrd_model::take(const h264::access_unit& unit, const sei_list& messages, const access_unit_bits& bits,
                     std::uint64_t offset)
{
    const std::optional<parameters> now = parameters_of(unit.sps);
    const auto* const timing = sei_list::payload_of<h264::pic_timing>(messages.find<h264::pic_timing>());
    const auto* const period = sei_list::payload_of<h264::buffering_period>(messages.find<h264::buffering_period>());
    if (!now || timing == nullptr)
        return end();
    if (running() && *active != *now)
        end();
    hrd_access_unit next{unit.number, unit.parts.front().place.number, offset, 0, 0};
    if (running()) {
        const hrd_removal removal = next_removal(*timing);
        listener.timed(next, removal);
        if (period != nullptr && removal.ticks <= removal.before)
            end();
    }
    if (!running() && period != nullptr)
        begin(*now, *period, next);
    next.ticks = latest_ticks();
    if (running())
        arrive(next, bits, period);
}

hrd_removal hrd_model::next_removal(const h264::pic_timing& timing)
{
    const h264::hrd_parameters& hrd = active->nal ? *active->nal : *active->vcl;
    const std::int64_t before = latest_ticks();
    since_period = counted_on(since_period, timing.cpb_removal_delay, hrd.cpb_removal_delay_length_minus1 + 1U);
    return {latest_ticks(), before};
}

void hrd_model::begin(const parameters& now, const h264::buffering_period& period, const hrd_access_unit& unit)
{
    active = now;
    period_ticks = since_period = 0;
    if (now.nal)
        add_buffers(true, *now.nal, period);
    if (now.vcl)
        add_buffers(false, *now.vcl, period);
    if (!running())
        return;
    ++run_count;
    listener.began(unit, buffers);
}

void hrd_model::add_buffers(bool nal, const h264::hrd_parameters& hrd, const h264::buffering_period& period)
{
    for (std::uint32_t i = 0; i < h264::schedule_count(hrd); ++i)
        if (const std::optional<hrd_delays> delays = delays_of(period, nal, i))
            buffers.emplace_back(hrd_schedule{nal, i, h264::BitRate(hrd, i), narrowed(h264::CpbSize(hrd, i)),
                                              hrd.cbr_flag[i], active->low_delay},
                                 active->clock, *delays);
}

void hrd_model::arrive(const hrd_access_unit& unit, const access_unit_bits& bits, const h264::buffering_period* period)
{
    for (coded_picture_buffer& buffer : buffers) {
        const hrd_schedule& schedule = buffer.schedule();
        hrd_access_unit one = unit;
        one.bits = schedule.nal ? bits.byte_stream : bits.vcl;
        const std::optional<hrd_delays> delays =
            period != nullptr ? delays_of(*period, schedule.nal, schedule.SchedSelIdx) : std::nullopt;
        const hrd_delays* const of = delays ? &*delays : nullptr;
        const cpb_arrival how = buffer.arrive(one, of, [&](const cpb_step& step) { listener.removed(schedule, step); });
        listener.arrived(one, schedule, of, how);
    }
    if (period != nullptr) {
        period_ticks += since_period;
        since_period = 0;
    }
}

void hrd_model::end()
{
    for (coded_picture_buffer& buffer : buffers)
        buffer.flush([&](const cpb_step& step) { listener.removed(buffer.schedule(), step); });
    buffers.clear();
}

} // namespace orv_h264
