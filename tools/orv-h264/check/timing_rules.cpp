// Rules over picture timings, and over what the VUI says of times (H.264 D.2.3, E.2.1).
#include "check/hrd_model.h"
#include "check/sei_facts.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using enum severity;

constexpr unsigned frame_doubling = 7;

/// The value, where it is sent and has a meaning.
std::optional<unsigned> pic_struct_of(const message_facts& f)
{
    const unsigned value = f.as<h264::pic_timing>()->pic_struct;
    const bool sent = f.vui().pic_struct_present_flag && f.all.unit.whole;
    return sent && value <= h264::pic_timing::highest_pic_struct ? std::optional(value) : std::nullopt;
}

verdict pic_struct_fits(const message_facts& f)
{
    const std::optional<unsigned> value = pic_struct_of(f);
    const h264::access_unit& unit = f.all.unit;
    if (!value)
        return {};
    if (!unit.field() && (*value == 1 || *value == 2))
        return breach_of("pic_struct", *value, "0 or 3 to 8 of a frame");
    const unsigned of_field = unit.structure == h264::picture_structure::bottom_field ? 2 : 1;
    if (unit.field() && *value != of_field)
        return breach_of("pic_struct", *value,
                         fmt::format("{} of a {} field", of_field, of_field == 1 ? "top" : "bottom"));
    return {};
}

/// Table D-1: which field is shown first, as far as order counts tell.
verdict fields_are_ordered(const message_facts& f)
{
    const std::optional<unsigned> value = pic_struct_of(f);
    if (!value || f.all.unit.field() || f.of == nullptr || !f.of->has_count || *value < 3 || *value > 6)
        return {};
    const std::int64_t top = f.of->count.top;
    const std::int64_t bottom = f.of->count.bottom;
    const bool top_first = *value == 3 || *value == 5;
    if (top_first ? top <= bottom : bottom <= top)
        return {};
    return breach_of("pic_struct", *value, fmt::format("one with the {} field first", top_first ? "bottom" : "top"));
}

verdict repetition_has_fixed_rate(const message_facts& f)
{
    const std::optional<unsigned> value = pic_struct_of(f);
    if (!value || *value < frame_doubling || f.vui().fixed_frame_rate_flag)
        return {};
    return breach_of("pic_struct", *value, "7 and 8 with fixed_frame_rate_flag 1 alone");
}

/// MaxFPS = Ceil( time_scale ÷ num_units_in_tick ).
verdict clock_counts_frames(const message_facts& f)
{
    const h264::pic_timing& timing = *f.as<h264::pic_timing>();
    const h264::ratio rate = h264::field_rate(f.vui());
    if (!f.vui().pic_struct_present_flag || rate.denominator == 0)
        return {};
    const std::uint64_t MaxFPS = (rate.numerator + rate.denominator - 1) / rate.denominator;
    for (unsigned i = 0; i < timing.NumClockTS(); ++i)
        if (timing.timestamps[i].clock_timestamp_flag && timing.timestamps[i].n_frames >= MaxFPS)
            return breach_of("n_frames", timing.timestamps[i].n_frames, fmt::format("below {}", MaxFPS));
    return {};
}

verdict hrd_has_tick(const sps_facts& f)
{
    if (any_hrd(f.sps) == nullptr || f.vui().timing_info_present_flag)
        return {};
    return breach_of("timing_info_present_flag", 0, "1 with HRD parameters");
}

/// 30000/1001 and the like are what video runs at: 29.97 drifts away from it.
verdict rate_is_exact(const sps_facts& f)
{
    const h264::ratio rate = h264::frame_rate(f.vui());
    if (!f.sps.vui_parameters_present_flag || rate.denominator == 0)
        return {};
    constexpr std::uint64_t near = 4000; // so much of the rate away at the most
    for (const std::uint64_t frames : {24U, 30U, 48U, 60U, 120U}) {
        const std::uint64_t told = rate.numerator * 1001;
        const std::uint64_t usual = rate.denominator * 1000 * frames;
        const std::uint64_t off = told > usual ? told - usual : usual - told;
        if (off != 0 && off <= usual / near)
            return breach_of("time_scale", fmt::format("{}/{} frames a second", rate.numerator, rate.denominator),
                             fmt::format("{}/1001, which it is near", frames * 1000));
    }
    return {};
}

constexpr rule_over<message_facts> of_timing[] = {
    {{"sei-pic-struct-fits-picture", error, "D.2.3", "pic_struct is that of a frame or of the field",
      "Displays by pic_struct show the wrong field, or a frame that there is not.", "pic_struct 1 of a frame"},
     pic_struct_fits},
    {{"sei-pic-struct-field-order", warning, "D.2.3", "pic_struct and picture order counts begin with the same field",
      "Motion goes back and forth on an interlaced display.", "pic_struct 4 of a frame whose top field comes first"},
     fields_are_ordered},
    {{"sei-pic-struct-at-fixed-rate", error, "D.2.3", "frames are doubled and tripled at a fixed frame rate",
      "pic_struct 7 and 8 tell for how many frame periods: without a rate there is none.",
      "pic_struct 7 with fixed_frame_rate_flag 0"},
     repetition_has_fixed_rate},
    {{"sei-clock-counts-frames", error, "D.2.3", "n_frames is below the frames of a second",
      "The time of day is in the next second.", "n_frames 60 at 25 frames a second"},
     clock_counts_frames},
};

constexpr rule_over<sps_facts> vui_rules[] = {
    {{"vui-hrd-has-tick", warning, "C.1.2", "HRD parameters come with the clock tick",
      "Delays are counted in ticks: without timing_info_present_flag they are times of nothing.",
      "nal_hrd_parameters_present_flag 1 with timing_info_present_flag 0"},
     hrd_has_tick},
    {{"vui-rate-exact", note, "E.2.1", "a rate that is near N * 1000 / 1001 is that",
      "Rounded to two or three digits it drifts from sound and from other streams.",
      "time_scale 5994, num_units_in_tick 100"},
     rate_is_exact},
};

} // namespace

std::span<const rule_over<message_facts>> picture_timing_rules()
{
    return of_timing;
}

std::span<const rule_over<sps_facts>> vui_time_rules()
{
    return vui_rules;
}

} // namespace orv_h264
