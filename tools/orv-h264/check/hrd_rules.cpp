// Rules over the coded picture buffer of the hypothetical reference decoder (H.264 C.1, C.3, D.2.2).
#include "check/hrd_facts.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using enum severity;

std::string schedule_name(const hrd_schedule& schedule)
{
    return fmt::format("{} HRD, schedule {}", schedule.nal ? "NAL" : "VCL", schedule.SchedSelIdx);
}

std::string delay_element(const hrd_schedule& schedule)
{
    return fmt::format("initial_cpb_removal_delay[{}]", schedule.SchedSelIdx);
}

verdict begins_with_period(const hrd_start_facts& f)
{
    if (f.units_before == 0)
        return {};
    return breach_of("", fmt::format("{} access units before it", f.units_before), "none");
}

verdict removal_times_rise(const hrd_removal_facts& f)
{
    if (f.removal.ticks > f.removal.before)
        return {};
    return breach_of("cpb_removal_delay",
                     fmt::format("for a removal {} ticks before the last one", f.removal.before - f.removal.ticks),
                     "one behind it");
}

verdict is_there_in_time(const hrd_arrival_facts& f)
{
    if (f.arrival.missing == 0 || f.schedule.low_delay)
        return {};
    return breach_of("",
                     fmt::format("{}: {} bits missing at {:.6f} s", schedule_name(f.schedule), f.arrival.missing,
                                 f.arrival.removal_time),
                     "all bits there at the removal");
}

verdict has_room(const hrd_arrival_facts& f)
{
    if (f.arrival.excess == 0 || !f.bits_known)
        return {};
    return breach_of("",
                     fmt::format("{}: {} bits too many at {:.6f} s", schedule_name(f.schedule), f.arrival.excess,
                                 f.arrival.excess_time),
                     fmt::format("{} bits in the buffer", f.schedule.size));
}

verdict period_may_begin_here(const hrd_arrival_facts& f)
{
    if (f.period == nullptr || !f.arrival.gap || f.period->delay <= f.arrival.gap->second)
        return {};
    return breach_of(delay_element(f.schedule), fmt::format("{} of the {}", f.period->delay, schedule_name(f.schedule)),
                     fmt::format("at most {}", f.arrival.gap->second));
}

verdict constant_rate_is_kept(const hrd_arrival_facts& f)
{
    if (f.period == nullptr || !f.arrival.gap || !f.schedule.cbr || !f.bits_known ||
        f.period->delay >= f.arrival.gap->first)
        return {};
    return breach_of(delay_element(f.schedule), fmt::format("{} of the {}", f.period->delay, schedule_name(f.schedule)),
                     fmt::format("at least {}", f.arrival.gap->first));
}

verdict sum_stays(const hrd_period_facts& f)
{
    const std::uint64_t now = std::uint64_t{f.now.delay} + f.now.offset;
    const std::uint64_t before = std::uint64_t{f.before.delay} + f.before.offset;
    if (now == before)
        return {};
    return breach_of(fmt::format("initial_cpb_removal_delay_offset[{}]", f.SchedSelIdx),
                     fmt::format("that makes {} with the delay", now), fmt::format("{} as before", before));
}

constexpr rule_over<hrd_start_facts> start_rules[] = {
    {{"hrd-begins-with-period", note, "C.1", "a stream with HRD parameters begins with a buffering period",
      "The decoder of Annex C begins with one; what comes before it is not looked at.",
      "a recording that begins amid a buffering period"},
     begins_with_period},
};

constexpr rule_over<hrd_removal_facts> removal_rules[] = {
    {{"hrd-removal-times-rise", error, "C.1.2", "each access unit is removed from the buffer behind the one before",
      "A picture cannot be decoded before those that come before it. Streams that were joined without new timing do "
      "so.",
      "cpb_removal_delay 4 twice in a buffering period"},
     removal_times_rise},
};

constexpr rule_over<hrd_arrival_facts> arrival_rules[] = {
    {{"hrd-underflow", error, "C.3", "an access unit has arrived in whole when it is removed",
      "At the bit rate of the schedule the decoder waits for bits, and the picture comes too late.",
      "a picture larger than what the buffer holds"},
     is_there_in_time},
    {{"hrd-overflow", error, "C.3", "the buffer holds all bits that have arrived and are not removed",
      "A decoder with a buffer of CpbSize loses bits. Without filler data, small pictures do it at a constant rate.",
      "a CBR stream whose filler data were taken out"},
     has_room},
};

constexpr rule_over<hrd_arrival_facts> delay_rules[] = {
    {{"hrd-period-delay-allowed", error, "C.3",
      "initial_cpb_removal_delay is no longer than from the last bit before the period to the removal",
      "A decoder that begins there would remove pictures later than one that began before: (C-16).",
      "a long picture before a buffering period"},
     period_may_begin_here},
    {{"hrd-constant-rate-kept", error, "C.3",
      "with cbr_flag, initial_cpb_removal_delay is no shorter than from the last bit before the period to the removal",
      "There are fewer bits than a constant rate brings in that time: (C-17).",
      "a filler data unit taken out of a CBR stream"},
     constant_rate_is_kept},
};

constexpr rule_over<hrd_period_facts> period_rules[] = {
    {{"hrd-delay-sum-constant", error, "D.2.2",
      "initial_cpb_removal_delay and its offset have the same sum all through a sequence",
      "It tells how early bits may be sent: their senders reckon with one time.",
      "an offset that stays where the delay goes up"},
     sum_stays},
};

} // namespace

std::span<const rule_over<hrd_start_facts>> hrd_start_rules()
{
    return start_rules;
}

std::span<const rule_over<hrd_removal_facts>> hrd_removal_rules()
{
    return removal_rules;
}

std::span<const rule_over<hrd_arrival_facts>> hrd_arrival_rules()
{
    return arrival_rules;
}

std::span<const rule_over<hrd_arrival_facts>> hrd_delay_rules()
{
    return delay_rules;
}

std::span<const rule_over<hrd_period_facts>> hrd_period_rules()
{
    return period_rules;
}

} // namespace orv_h264
