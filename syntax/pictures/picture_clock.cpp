#include "picture_clock.h"

#include <orv-utils-v4/h264_syntax/output_order.h>

#include <numeric>

namespace orv_utils_v4::h264 {

namespace {

/// The clock tick t_c in seconds (C-1); 0 : 0 where it is unknown.
ratio tick_of(const access_unit& unit)
{
    if (unit.sps == nullptr)
        return {};
    const ratio rate = field_rate(unit.sps->vui_parameters);
    return {rate.denominator, rate.numerator};
}

/// initial_cpb_removal_delay of the first alternative.
std::uint32_t first_delay(const buffering_period& period)
{
    const auto& delays = period.nal.empty() ? period.vcl : period.nal;
    return delays.empty() ? 0 : delays[0].initial_cpb_removal_delay;
}

exact_time reduced(std::int64_t ticks, std::uint32_t clock)
{
    if (clock == 0)
        return {};
    const std::int64_t divisor = std::gcd(ticks % clock, std::int64_t{clock}); // of -2^63 there is no magnitude
    return {ticks / divisor, clock / divisor};
}

constexpr exact_time beginning = {0, 1};

bool same(const ratio& a, const ratio& b)
{
    return a.numerator == b.numerator && a.denominator == b.denominator;
}

} // namespace

void tick_time::add(std::uint64_t count, ratio by) noexcept
{
    if (!same(by, tick)) {
        base = value();
        ticks = 0;
        tick = by;
    }
    ticks += count;
}

// From 0 on, what the count has in common with the denominator is all that can be reduced.
exact_time tick_time::value() const noexcept
{
    constexpr std::uint64_t plain = std::uint64_t{1} << 31; // a product of two numbers below it fits
    if (base.numerator != 0 || base.denominator != 1 || ticks >= plain || tick.numerator >= plain)
        return time_after(base, ticks, tick);
    const std::uint64_t common = std::gcd(ticks, tick.denominator);
    return {static_cast<std::int64_t>(ticks / common * tick.numerator),
            static_cast<std::int64_t>(tick.denominator / common)};
}

std::uint8_t fields_shown(const access_unit& unit) noexcept
{
    constexpr std::uint8_t table_e_6[pic_timing::highest_pic_struct + 1] = {2, 1, 1, 2, 2, 3, 3, 4, 6};
    const bool may_be_told = unit.sps != nullptr && unit.sps->vui_parameters.pic_struct_present_flag;
    const auto* const timing = may_be_told ? unit.message<pic_timing>() : nullptr;
    if (timing != nullptr && timing->pic_struct <= pic_timing::highest_pic_struct)
        return table_e_6[timing->pic_struct];
    return unit.field() ? 1 : 2;
}

exact_time field_presentation(const picture& picture, unsigned field) noexcept
{
    const exact_time& whole = picture.times.duration;
    const std::uint64_t fields = picture.fields_shown;
    constexpr std::uint64_t most = ~std::uint64_t{0};
    if (field >= fields || !whole || static_cast<std::uint64_t>(whole.denominator) > most / fields)
        return {};
    return time_after(
        picture.times.presentation, field,
        {static_cast<std::uint64_t>(whole.numerator), static_cast<std::uint64_t>(whole.denominator) * fields});
}

std::int64_t unwrapped::next(std::int64_t value, unsigned bits) noexcept
{
    constexpr std::int64_t far = std::int64_t{1} << 62; // stamps of a damaged stream begin again before they overflow
    if (bits < 62) {
        const std::int64_t mask = (std::int64_t{1} << bits) - 1;
        const std::int64_t ahead = ((value & mask) - (latest & mask)) & mask;
        const bool goes_on = any && latest > -far && latest < far;
        value = goes_on ? latest + (ahead <= mask / 2 ? ahead : ahead - mask - 1) : value & mask;
    }
    any = true;
    latest = value;
    return value;
}

void picture_clock::begin(const access_unit& unit, const timestamp* stamp, picture_times& times) noexcept
{
    set_tick(unit);
    if (tick.denominator != 0 && !any_shown) { // one that waits for as many others as may be reordered is shown in time
        shown = tick_time(beginning);
        shown.add(2 * std::uint64_t{most_reordered_frames(*unit.sps)}, tick);
        any_shown = true;
    }
    if (!take_hrd(unit, times) && tick.denominator != 0)
        take_rate(unit, decoded.value(), times);
    take_stamp(stamp, times);
}

void picture_clock::take_rate(const access_unit& unit, exact_time decoding, picture_times& times) const noexcept
{
    const bool constant = unit.sps->vui_parameters.fixed_frame_rate_flag;
    times.source = constant ? time_source::constant_rate : time_source::assumed_rate;
    times.decoding = decoding;
}

void picture_clock::set_tick(const access_unit& unit) noexcept
{
    const ratio now = tick_of(unit);
    if (same(now, sent))
        return;
    sent = tick = now;
    if (tick.denominator == 0)
        return;
    const std::uint64_t common = std::gcd(tick.numerator, tick.denominator);
    tick = {tick.numerator / common, tick.denominator / common};
    for (std::uint8_t fields = 0; fields <= most_fields; ++fields)
        durations[fields] = time_after(beginning, fields, tick);
}

picture_times picture_clock::add_second_field(const access_unit& unit, const timestamp* stamp, std::uint8_t fields,
                                              picture_times& times) noexcept
{
    picture_times of_field;
    if (!take_hrd(unit, of_field) && tick.denominator != 0)
        take_rate(unit, time_after(decoded.value(), fields, tick), of_field);
    if (!times.presentation_stamp)
        take_stamp(stamp, times);
    return of_field;
}

// C.1.2: the first access unit is removed when the initial delay is over, which takes no picture timing; delays count
// from the removal of the access unit with the buffering period before. C.2.2: the output from the removal. Behind a
// period whose access unit does not tell its own delay there is nothing to count from.
bool picture_clock::take_hrd(const access_unit& unit, picture_times& times) noexcept
{
    if (tick.denominator == 0 || timing_hrd(unit.sps->vui_parameters) == nullptr)
        return false;
    const auto* const timing = unit.message<pic_timing>();
    const auto* const begun = unit.message<buffering_period>();
    exact_time removal;
    if (any_period && timing != nullptr)
        removal = time_after(period, timing->cpb_removal_delay, tick);
    else if (!any_period && begun != nullptr)
        removal = time_after(beginning, first_delay(*begun), {1, 90000});
    if (begun != nullptr) {
        period = removal;
        any_period = true;
    }
    if (timing == nullptr || !removal)
        return false;
    times.source = time_source::hrd;
    times.decoding = removal;
    times.presentation = time_after(removal, timing->dpb_output_delay, tick);
    return true;
}

// Where the caller has timestamps, a rate that the stream does not keep to says nothing.
void picture_clock::take_stamp(const timestamp* stamp, picture_times& times) noexcept
{
    any_stamp = any_stamp || stamp != nullptr;
    if (stamp != nullptr) {
        times.presentation_stamp = reduced(presentation_stamps.next(stamp->presentation, stamp->bits), stamp->clock);
        if (stamp->has_decoding)
            times.decoding_stamp = reduced(decoding_stamps.next(stamp->decoding, stamp->bits), stamp->clock);
    }
    if (!any_stamp || times.source > time_source::caller)
        return;
    times.source = times.presentation_stamp ? time_source::caller : time_source::none;
    times.decoding = times.decoding_stamp;
    times.presentation = times.presentation_stamp;
}

void picture_clock::end(std::uint8_t fields, picture_times& times) noexcept
{
    if (tick.denominator == 0)
        return;
    times.duration = fields <= most_fields ? durations[fields] : time_after(beginning, fields, tick);
    decoded.add(fields, tick);
}

// The rate may have changed since the picture was decoded.
void picture_clock::output(std::uint8_t fields, picture_times& times) noexcept
{
    if (times.source == time_source::constant_rate || times.source == time_source::assumed_rate)
        times.presentation = shown.value();
    if (tick.denominator != 0 && fields <= most_fields && times.duration == durations[fields])
        shown.add(fields, tick);
    else if (times.duration)
        shown = tick_time(time_after(shown.value(), 1,
                                     {static_cast<std::uint64_t>(times.duration.numerator),
                                      static_cast<std::uint64_t>(times.duration.denominator)}));
}

} // namespace orv_utils_v4::h264
