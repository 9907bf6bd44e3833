// The texts of the SEI payloads buffering_period() and pic_timing(), H.264 clauses D.1.2 and D.1.3.
#pragma once

#include "texts/sei/from_sets.h"

#include <orv-utils-v4/h264_syntax/sei/timing.h>

namespace orv_utils_v4::h264 {

// H.264 D.1.2, the delays of one kind of HRD
template <class Coder, class List>
void code_initial_delays(Coder& c, List& list, const hrd_parameters& hrd)
{
    const unsigned length = hrd.initial_cpb_removal_delay_length_minus1 + 1U;
    const std::uint32_t count = specifications(hrd);
    for (std::uint32_t SchedSelIdx = 0; SchedSelIdx < count && c.going(); ++SchedSelIdx) {
        auto& entry = c.entry("initial_cpb_removal_delay", list, SchedSelIdx);
        c.u_v(length, {"initial_cpb_removal_delay", SchedSelIdx}, entry.initial_cpb_removal_delay, 1,
              highest_initial_delay(hrd, SchedSelIdx));
        c.u_v(length, {"initial_cpb_removal_delay_offset", SchedSelIdx}, entry.initial_cpb_removal_delay_offset);
    }
    c.entries_end("initial_cpb_removal_delay", list, count);
}

// H.264 D.1.2
template <class Coder>
void code(Coder& c, in<Coder, buffering_period>& x, const sei_context& context)
{
    const auto here = c.structure("buffering_period");
    c.ue("seq_parameter_set_id", x.seq_parameter_set_id, 0, 31);
    if (!c.going())
        return;
    const seq_parameter_set_data* const sps = context.sets.find_sps(x.seq_parameter_set_id);
    if (sps == nullptr)
        return c.fail(reason::no_sps, "seq_parameter_set_id", x.seq_parameter_set_id);
    if (const hrd_parameters* const nal = nal_hrd(*sps)) // NalHrdBpPresentFlag
        code_initial_delays(c, x.nal, *nal);
    else
        c.entries_end("initial_cpb_removal_delay", x.nal, 0);
    if (const hrd_parameters* const vcl = vcl_hrd(*sps)) // VclHrdBpPresentFlag
        code_initial_delays(c, x.vcl, *vcl);
    else
        c.entries_end("initial_cpb_removal_delay", x.vcl, 0);
}

// H.264 D.1.3, of clock timestamp i
template <class Coder>
void code(Coder& c, in<Coder, clock_timestamp>& x, std::uint32_t i, unsigned time_offset_length)
{
    c.flag({"clock_timestamp_flag", i}, x.clock_timestamp_flag);
    if (!x.clock_timestamp_flag)
        return;
    c.u(2, "ct_type", x.ct_type, 0, 2);
    c.flag("nuit_field_based_flag", x.nuit_field_based_flag);
    c.u(5, "counting_type", x.counting_type, 0, 6);
    c.flag("full_timestamp_flag", x.full_timestamp_flag);
    c.flag("discontinuity_flag", x.discontinuity_flag);
    c.flag("cnt_dropped_flag", x.cnt_dropped_flag);
    c.u(8, "n_frames", x.n_frames);
    if (x.full_timestamp_flag) {
        c.u(6, "seconds_value", x.seconds_value, 0, 59);
        c.u(6, "minutes_value", x.minutes_value, 0, 59);
        c.u(5, "hours_value", x.hours_value, 0, 23);
    } else {
        c.flag("seconds_flag", x.seconds_flag);
        if (x.seconds_flag) {
            c.u(6, "seconds_value", x.seconds_value, 0, 59);
            c.flag("minutes_flag", x.minutes_flag);
            if (x.minutes_flag) {
                c.u(6, "minutes_value", x.minutes_value, 0, 59);
                c.flag("hours_flag", x.hours_flag);
                if (x.hours_flag)
                    c.u(5, "hours_value", x.hours_value, 0, 23);
            }
        }
    }
    if (time_offset_length > 0)
        c.i_v(time_offset_length, "time_offset", x.time_offset);
}

// H.264 D.1.3
template <class Coder>
void code(Coder& c, in<Coder, pic_timing>& x, const sei_context& context)
{
    static constexpr hrd_parameters inferred{}; // E.2.2
    const auto here = c.structure("pic_timing");
    if (context.sps == nullptr)
        return c.fail(reason::no_sps, "cpb_removal_delay");
    const hrd_parameters* const nal = nal_hrd(*context.sps);
    const hrd_parameters* const sent = nal != nullptr ? nal : vcl_hrd(*context.sps);
    const hrd_parameters& hrd = sent != nullptr ? *sent : inferred;
    const bool CpbDpbDelaysPresentFlag = sent != nullptr;
    if (CpbDpbDelaysPresentFlag) {
        c.u_v(hrd.cpb_removal_delay_length_minus1 + 1U, "cpb_removal_delay", x.cpb_removal_delay);
        c.u_v(hrd.dpb_output_delay_length_minus1 + 1U, "dpb_output_delay", x.dpb_output_delay);
    }
    if (context.sps->vui_parameters_present_flag && context.sps->vui_parameters.pic_struct_present_flag) {
        c.u_bound(4, "pic_struct", x.pic_struct, 0, pic_timing::highest_pic_struct);
        for (std::uint32_t i = 0; i < x.NumClockTS() && c.going(); ++i)
            code(c, x.timestamps[i], i, hrd.time_offset_length);
    }
}

} // namespace orv_utils_v4::h264
