#include "check/hrd_part.h"

namespace orv_h264 {

void hrd_part::unit(const listed_unit& unit, const h264::unit_reading&)
{
    sizes.add(unit);
}

void hrd_part::access_unit(const h264::access_unit& unit, const h264::picture* of)
{
    const access_unit_bits bits = sizes.take(unit);
    if (unit.header == nullptr)
        return;
    const sei_list messages(unit);
    const placed_message period = messages.find<h264::buffering_period>();
    const placed_message timing = messages.find<h264::pic_timing>();
    period_unit = period.unit;
    timing_unit = timing.unit;
    if (of != nullptr && of->findings.has(h264::picture_finding::frame_num_gap))
        model.end(); // the bits of what is lost are, too
    model.take(unit, messages, bits, unit.parts.front().place.offset);
    if (!model.running() && unit.sps != nullptr && any_hrd(*unit.sps) != nullptr)
        ++units_before;
    look_at_sums(unit, sei_list::payload_of<h264::buffering_period>(period));
    if (of != nullptr)
        times.access_unit(unit, *of, sei_list::payload_of<h264::pic_timing>(timing), timing.unit, model);
    if (!unit.parts.empty() && unit.parts.back().header.nal_unit_type == end_of_stream)
        model.end(); // what follows is another stream
}

void hrd_part::decoded(const h264::picture& picture, const h264::reference_marking& marking)
{
    times.decoded(picture, marking);
}

void hrd_part::began(const hrd_access_unit& unit, const std::vector<coded_picture_buffer>&)
{
    log.judge(hrd_start_rules(), hrd_start_facts{units_before}, unit.unit);
    units_before = 0;
}

void hrd_part::timed(const hrd_access_unit&, const hrd_removal& removal)
{
    log.judge(hrd_removal_rules(), hrd_removal_facts{removal}, timing_unit);
}

void hrd_part::arrived(const hrd_access_unit& unit, const hrd_schedule& schedule, const hrd_delays* period,
                       const cpb_arrival& how)
{
    const bool known = schedule.nal ? sizes.is_byte_stream() && !sizes.has_layers() : !sizes.has_layers();
    const hrd_arrival_facts facts{schedule, how, period, known};
    log.judge(hrd_arrival_rules(), facts, unit.unit);
    log.judge(hrd_delay_rules(), facts, period_unit);
}

void hrd_part::look_at_sums(const h264::access_unit& unit, const h264::buffering_period* period)
{
    if (unit.idr)
        latest.reset();
    if (period == nullptr)
        return;
    for (const bool nal : {true, false})
        for (std::uint32_t i = 0; latest && i < h264::hrd_parameters::most_specifications; ++i) {
            const std::optional<hrd_delays> now = delays_of(*period, nal, i);
            const std::optional<hrd_delays> before = delays_of(*latest, nal, i);
            if (now && before)
                log.judge(hrd_period_rules(), hrd_period_facts{i, *now, *before}, period_unit);
        }
    latest = *period;
}

} // namespace orv_h264
