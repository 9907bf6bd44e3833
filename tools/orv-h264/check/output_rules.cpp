// Rules over the order of output (H.264 C.4, E.2.1).
#include "check/output_facts.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

verdict reordering_keeps_to_limit(const decoded_order_facts& f)
{
    const h264::vui_parameters& vui = f.sps.vui_parameters;
    if (!vui.bitstream_restriction_flag || f.later <= vui.max_num_reorder_frames || f.later <= f.told)
        return {};
    return breach{"", fmt::format("{} frames before it are output behind it", f.later),
                  fmt::format("at most max_num_reorder_frames {}", vui.max_num_reorder_frames)};
}

verdict buffer_holds_what_waits(const output_facts& f)
{
    if (!f.before || f.picture.count.lower() >= *f.before)
        return {};
    const h264::vui_parameters& vui = f.sps.vui_parameters;
    return breach{"",
                  fmt::format("PicOrderCnt {} comes when {} has been output, for room in the buffer",
                              f.picture.count.lower(), *f.before),
                  fmt::format("output in time with {} {}",
                              vui.bitstream_restriction_flag ? "max_dec_frame_buffering" : "MaxDpbFrames",
                              h264::most_buffered_frames(f.sps))};
}

verdict picture_is_output(const output_facts& f)
{
    if (!f.first_dropped)
        return {};
    return breach{"", "dropped: no_output_of_prior_pics_flag of the next IDR picture is 1", "output"};
}

verdict buffer_stays_the_same(const new_sequence_facts& f)
{
    const h264::picture_size one = h264::coded_size(f.before);
    const h264::picture_size other = h264::coded_size(f.sps);
    const std::uint32_t frames = h264::most_buffered_frames(f.before);
    const std::uint32_t others = h264::most_buffered_frames(f.sps);
    if (f.header.dec_ref_pic_marking.no_output_of_prior_pics_flag ||
        (one.width == other.width && one.height == other.height && frames == others))
        return {};
    return breach{"",
                  fmt::format("{}x{} and a buffer of {} behind {}x{} and {}", other.width, other.height, others,
                              one.width, one.height, frames),
                  "the same size and buffer, for all pictures before it to be output"};
}

verdict delay_is_told(const sps_order_facts& f)
{
    const std::uint32_t frames = h264::most_buffered_frames(f.sps);
    if (f.sps.vui_parameters.bitstream_restriction_flag || f.reordered || frames == 0 || f.pictures <= frames)
        return {};
    return breach{"", fmt::format("none: {} frames may wait before the first one is output", frames),
                  "max_num_reorder_frames 0, as no picture is reordered"};
}

using enum severity;

constexpr rule_over<decoded_order_facts> of_decoded[] = {
    {{"output-reordering-in-limit", error, "E.2.1", "no more frames than max_num_reorder_frames wait for a later one",
      "Decoders output a picture as soon as so many wait: those behind it come out of order, or are dropped.",
      "max_num_reorder_frames 0 in a stream with B pictures"},
     reordering_keeps_to_limit},
};

constexpr rule_over<output_facts> of_output[] = {
    {{"output-picture-shown", note, "C.4.4", "every picture is output",
      "no_output_of_prior_pics_flag 1 lets decoders drop what waits at an IDR picture.",
      "no_output_of_prior_pics_flag 1 at an IDR picture behind others"},
     picture_is_output},
    {{"output-buffer-suffices", error, "C.4.5.3",
      "pictures wait in the buffer until those before them have been output",
      "What is used for reference and what waits is more than max_dec_frame_buffering, or MaxDpbFrames of the level "
      "where it is not sent: a decoder has to output a picture too early.",
      "max_dec_frame_buffering 1 with two pictures that wait for a third one"},
     buffer_holds_what_waits},
};

constexpr rule_over<new_sequence_facts> of_sequences[] = {
    {{"output-survives-new-buffer", note, "C.4.4", "an IDR picture with another size or buffer drops no picture",
      "A decoder may infer no_output_of_prior_pics_flag 1 there, and not output what waits.",
      "an IDR picture of 640x480 behind pictures of 320x240"},
     buffer_stays_the_same},
};

constexpr rule_over<sps_order_facts> of_delay[] = {
    {{"output-delay-told", note, "E.2.1", "a stream that does not reorder its pictures says so",
      "Without bitstream_restriction_flag decoders hold back as many frames as their buffer has before they output the "
      "first one.",
      "an SPS without a VUI in a stream of I and P pictures"},
     delay_is_told},
};

} // namespace

std::span<const rule_over<decoded_order_facts>> decoded_order_rules()
{
    return of_decoded;
}

std::span<const rule_over<output_facts>> output_rules()
{
    return of_output;
}

std::span<const rule_over<new_sequence_facts>> new_sequence_rules()
{
    return of_sequences;
}

std::span<const rule_over<sps_order_facts>> sps_order_rules()
{
    return of_delay;
}

} // namespace orv_h264
