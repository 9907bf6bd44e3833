// Rules over the times at which pictures are output (H.264 C.2, C.3, D.2.3, E.2.1).
#include "check/hrd_facts.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using enum severity;

verdict output_times_rise(const output_time_facts& f)
{
    if (f.now > f.before)
        return {};
    breach how =
        breach_of("dpb_output_delay", fmt::format("for an output {} ticks before the last one", f.before - f.now),
                  "one behind it");
    if (f.low_delay)
        how.level = warning;
    return how;
}

verdict rate_is_fixed(const output_time_facts& f)
{
    const std::int64_t ticks = f.now - f.before;
    if (!f.fixed_rate || ticks <= 0 || ticks == f.fields_before)
        return {};
    return breach_of("dpb_output_delay", fmt::format("for an output {} ticks behind the last one", ticks),
                     fmt::format("{} with fixed_frame_rate_flag 1", f.fields_before));
}

verdict second_field_comes_later(const field_time_facts& f)
{
    if (f.second > f.first)
        return {};
    return breach_of("dpb_output_delay",
                     fmt::format("for a second field {} ticks before the first", f.first - f.second), "one behind it");
}

verdict no_delay_without_buffer(const picture_buffer_facts& f)
{
    if (!f.buffers_none || f.dpb_output_delay == 0)
        return {};
    return breach_of("dpb_output_delay", f.dpb_output_delay, "0 with max_dec_frame_buffering 0");
}

verdict pictures_fit(const picture_buffer_facts& f)
{
    if (f.frames <= f.room || f.low_delay || f.buffers_none)
        return {};
    return breach_of("dpb_output_delay",
                     fmt::format("{}, with which {} frames are buffered", f.dpb_output_delay, f.frames),
                     fmt::format("one with which {} are", f.room));
}

constexpr rule_over<output_time_facts> time_rules[] = {
    {{"hrd-output-times-rise", error, "D.2.3", "output times are in the order of picture order counts",
      "A display by those times would show pictures in another order than a decoder without them.",
      "dpb_output_delay 0 of a picture that is output behind one to be decoded later"},
     output_times_rise},
    {{"vui-fixed-rate-kept", error, "E.2.1", "with fixed_frame_rate_flag pictures are output at a fixed rate",
      "From picture to picture there are as many ticks as pic_struct tells fields. Players that go by the rate lose "
      "step.",
      "a dpb_output_delay that is 1 too high"},
     rate_is_fixed},
};

constexpr rule_over<field_time_facts> field_rules[] = {
    {{"hrd-second-field-later", error, "D.2.3", "the second field of a non-reference pair is output behind the first",
      "It cannot be shown before it is decoded.", "two fields with one output time"},
     second_field_comes_later},
};

constexpr rule_over<picture_buffer_facts> buffer_rules[] = {
    {{"hrd-no-output-delay-without-buffer", error, "D.2.3", "with max_dec_frame_buffering 0 dpb_output_delay is 0",
      "There is no buffer that a picture could wait in.", "dpb_output_delay 2 in a stream that buffers no frame"},
     no_delay_without_buffer},
    {{"hrd-picture-buffer-fits", warning, "E.2.1", "max_dec_frame_buffering frames are enough for all output times",
      "A decoder with a buffer of that size has no place for a picture that waits so long; one that outputs pictures "
      "when it needs the place shows it earlier.",
      "a dpb_output_delay of 100 pictures"},
     pictures_fit},
};

} // namespace

std::span<const rule_over<output_time_facts>> output_time_rules()
{
    return time_rules;
}

std::span<const rule_over<field_time_facts>> field_time_rules()
{
    return field_rules;
}

std::span<const rule_over<picture_buffer_facts>> picture_buffer_rules()
{
    return buffer_rules;
}

} // namespace orv_h264
