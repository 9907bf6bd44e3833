// Streams with buffering periods, picture timing and a clock tick, made picture by picture.
#pragma once

#include "support/made_stream.h"

#include <optional>

namespace orv_utils_v4::h264 {

/// Times of a picture as its SEI messages send them.
struct sent_times {
    std::optional<std::uint32_t> initial_delay; ///< of a buffering period, in units of a 90 kHz clock
    std::optional<std::uint32_t> removal_delay; ///< of a picture timing, in ticks; none: without one
    std::uint32_t output_delay = 0;
    std::uint8_t pic_struct = 0;
};

class timed_pictures_stream : public made_stream {
public:
    /// A clock tick of `num_units_in_tick` / `time_scale`; with HRD parameters and pic_struct or without.
    timed_pictures_stream(std::uint32_t num_units_in_tick, std::uint32_t time_scale, bool hrd)
        : made_stream(sps_of(num_units_in_tick, time_scale, hrd))
    {
        add_sets();
    }
    made_stream& add_timed(const sent_times& times, const made_slice& slice)
    {
        sei_rbsp sei;
        if (times.initial_delay) {
            buffering_period period;
            period.nal.resize(1);
            period.nal[0].initial_cpb_removal_delay = *times.initial_delay;
            sei.sei_messages.push_back(message_of(0, period));
        }
        if (times.removal_delay) {
            pic_timing timing;
            timing.cpb_removal_delay = *times.removal_delay;
            timing.dpb_output_delay = times.output_delay;
            timing.pic_struct = times.pic_struct;
            sei.sei_messages.push_back(message_of(1, timing));
        }
        if (!sei.sei_messages.empty())
            add(unit_of(6, sei));
        return add(slice);
    }

private:
    static seq_parameter_set_data sps_of(std::uint32_t num_units_in_tick, std::uint32_t time_scale, bool hrd)
    {
        seq_parameter_set_data sps = hrd ? timed_sps_data(0, 24) : sps_data();
        sps.pic_order_cnt_type = 0;
        sps.log2_max_pic_order_cnt_lsb_minus4 = 4;
        sps.frame_mbs_only_flag = false;
        sps.max_num_ref_frames = 4;
        vui_parameters& vui = sps.vui_parameters;
        sps.vui_parameters_present_flag = true;
        vui.timing_info_present_flag = true;
        vui.num_units_in_tick = num_units_in_tick;
        vui.time_scale = time_scale;
        vui.pic_struct_present_flag = true;
        vui.bitstream_restriction_flag = true;
        vui.log2_max_mv_length_horizontal = 10;
        vui.log2_max_mv_length_vertical = 10;
        vui.max_dec_frame_buffering = 4;
        vui.max_num_reorder_frames = 1;
        return sps;
    }
};

} // namespace orv_utils_v4::h264
