#include "check/output_times.h"

#include <algorithm>

namespace orv_h264 {

output_times::timed_frame* output_times::find(std::uint64_t number)
{
    const auto found =
        std::find_if(waiting.begin(), waiting.end(), [number](const timed_frame& one) { return one.number == number; });
    return found == waiting.end() ? nullptr : &*found;
}

// (C-12): t_o,dpb = t_r + t_c * dpb_output_delay, here of nominal removal times.
void output_times::access_unit(const h264::access_unit& unit, const h264::picture& of, const h264::pic_timing* timing,
                               std::uint64_t timing_unit, const hrd_model& model)
{
    if (!model.running() || timing == nullptr || unit.sps == nullptr)
        return;
    const std::int64_t removal = model.latest_ticks();
    const std::int64_t output = removal + timing->dpb_output_delay;
    if (timed_frame* const first = find(of.number)) {
        first->second = output;
        first->removal = removal;
        first->fields = static_cast<std::uint8_t>(first->fields + h264::fields_shown(unit));
        return;
    }
    timed_frame frame;
    frame.number = of.number;
    frame.unit = timing_unit;
    frame.run = model.runs();
    frame.removal = removal;
    frame.first = output;
    frame.delay = timing->dpb_output_delay;
    frame.room = h264::most_buffered_frames(*unit.sps);
    frame.fields = h264::fields_shown(unit);
    frame.fixed_rate = unit.sps->vui_parameters.fixed_frame_rate_flag;
    frame.low_delay = unit.sps->vui_parameters.low_delay_hrd_flag;
    frame.empties = unit.idr && unit.header->dec_ref_pic_marking.no_output_of_prior_pics_flag;
    waiting.push_back(frame);
    if (waiting.size() > most_waiting)
        waiting.pop_front();
}

// C.2.3 and C.2.4: a picture leaves the buffer when it has been output and is used for reference no more. Frames
// without times are not counted.
void output_times::decoded(const h264::picture& picture, const h264::reference_marking& marking)
{
    const timed_frame* const frame = find(picture.number);
    if (frame == nullptr)
        return;
    empty_buffer(*frame, marking);
    if (picture.both_fields && picture.nal_ref_idc == 0 && frame->second)
        log.judge(field_time_rules(), field_time_facts{frame->first, *frame->second}, frame->unit);
    const bool stored = marking.uses(picture.number) || frame->first > frame->removal;
    if (stored)
        buffered.push_back(*frame);
    picture_buffer_facts facts;
    facts.frames = stored ? static_cast<std::uint32_t>(buffered.size()) : 0;
    facts.room = std::max(frame->room, 1U);
    facts.dpb_output_delay = frame->delay;
    facts.buffers_none = frame->room == 0;
    facts.low_delay = frame->low_delay;
    log.judge(picture_buffer_rules(), facts, frame->unit);
    if (buffered.size() > most_waiting)
        buffered.pop_front();
}

void output_times::empty_buffer(const timed_frame& by, const h264::reference_marking& marking)
{
    std::erase_if(buffered, [&](const timed_frame& one) {
        const bool gone = one.run != by.run || by.empties;
        return gone || (std::min(one.first, one.second.value_or(one.first)) <= by.removal && !marking.uses(one.number));
    });
}

void output_times::output(const h264::picture& picture)
{
    const timed_frame* const frame = find(picture.number);
    if (frame == nullptr) {
        shown.reset();
        return;
    }
    const shown_frame now{*frame, picture.sequence, picture.discarded};
    std::erase_if(waiting, [&](const timed_frame& one) { return one.number == picture.number; });
    const auto time_of = [](const shown_frame& one) {
        return std::min(one.what.first, one.what.second.value_or(one.what.first));
    };
    const bool discarded = now.discarded || (shown && shown->discarded);
    if (shown && shown->what.run == now.what.run && (shown->sequence == now.sequence || !discarded)) {
        output_time_facts facts;
        facts.before = time_of(*shown);
        facts.now = time_of(now);
        facts.fields_before = shown->what.fields;
        facts.fixed_rate = shown->what.fixed_rate && now.what.fixed_rate && !discarded && !picture.lone_field();
        facts.low_delay = now.what.low_delay;
        log.judge(output_time_rules(), facts, now.what.unit);
    }
    shown = now;
}

} // namespace orv_h264
