#include "check/coded_picture_buffer.h"

#include <algorithm>

namespace orv_h264 {

coded_picture_buffer::coded_picture_buffer(const hrd_schedule& by, const hrd_clock& clock, const hrd_delays& first)
    : how(by), bits{clock, by.bit_rate}, first_removal(product(first.delay, clock.of_90_khz)), latest(first)
{
}

// C.1.1: with cbr_flag bits come without a pause, (C-2); else not earlier than (C-4) and (C-5) say.
hrd_time coded_picture_buffer::first_bit(wide_number nominal, const hrd_delays* period) const
{
    if (!any || how.cbr)
        return arrived;
    const std::uint64_t ahead =
        period != nullptr ? period->delay : std::uint64_t{latest.delay} + std::uint64_t{latest.offset};
    const wide_number earliest = sum(nominal, -product(ahead, bits.clock.of_90_khz));
    return bits.between(arrived, earliest) > 0 ? hrd_time{earliest, 0} : arrived;
}

// C.1.2: a big picture is removed late with low_delay_hrd_flag, (C-11).
wide_number coded_picture_buffer::removal_of(wide_number nominal) const
{
    const wide_number late = -bits.between(arrived, nominal);
    if (!how.low_delay || late <= 0)
        return nominal;
    const wide_number ticks = ceil_of(late, product(bits.clock.tick, bits.bit_rate));
    return sum(nominal, product(ticks, bits.clock.tick));
}

cpb_arrival coded_picture_buffer::arrive(const hrd_access_unit& unit, const hrd_delays* period,
                                         const step_sink& removed)
{
    cpb_arrival result;
    const wide_number nominal = sum(first_removal, product(unit.ticks, bits.clock.tick));
    if (any && period != nullptr) {
        const wide_number gap = product(bits.between(arrived, nominal), 90000);
        const wide_number parts = product(bits.clock.second, bits.bit_rate);
        result.gap.emplace(narrowed(floor_of(gap, parts)), narrowed(ceil_of(gap, parts)));
    }
    const hrd_time begin = first_bit(nominal, period);
    arrived = {begin.units, narrowed(sum(begin.bits, unit.bits))};
    const wide_number removal = removal_of(nominal);
    result.missing = narrowed(std::max<wide_number>(0, ceil_of(-bits.between(arrived, nominal), bits.clock.second)));
    result.removal_time = bits.seconds({nominal, 0});
    if (period != nullptr)
        latest = *period;
    any = true;
    waiting.push_back({unit, begin, arrived, removal, result.missing > 0 && !how.low_delay});

    // The buffer is fullest directly before a removal, or with the last bit.
    const auto look = [&](std::int64_t full, double when) {
        if (full - how.size <= result.excess)
            return;
        result.excess = full - how.size;
        result.excess_time = when;
    };
    std::int64_t come = 0; // bits of the unit
    while (!waiting.empty() && (bits.between(arrived, waiting.front().removal) <= 0 || waiting.size() > most_waiting)) {
        const wide_number when = waiting.front().removal;
        come = std::clamp(bits.bits_between(begin, when), come, unit.bits);
        look(fullness + come, bits.seconds({when, 0}));
        waiting.back().overflow = result.excess > 0;
        remove_first(fullness + come, removed);
    }
    fullness += unit.bits;
    look(fullness, bits.seconds(arrived));
    if (!waiting.empty())
        waiting.back().overflow = result.excess > 0;
    return result;
}

void coded_picture_buffer::remove_first(std::int64_t before, const step_sink& removed)
{
    const waiting_unit& gone = waiting.front();
    const std::int64_t size = gone.unit.bits;
    fullness -= size;
    removed({gone.unit, bits.seconds(gone.begin), bits.seconds(gone.end), bits.seconds({gone.removal, 0}), before,
             before - size, gone.underflow, gone.overflow});
    waiting.pop_front();
}

void coded_picture_buffer::flush(const step_sink& removed)
{
    while (!waiting.empty())
        remove_first(fullness, removed);
}

} // namespace orv_h264
