// A stream with two SPSs whose delays differ in length: an SEI message that is read with the wrong one has other
// values.
#pragma once

#include "support/small_units.h"
#include "support/stream_units.h"

#include <gtest/gtest.h>

namespace orv_utils_v4::h264 {

constexpr std::uint32_t put_removal_delay = 5;

/// A picture timing whose delays have `delay_bits` bits each: 5 and 3.
inline nal_unit timing_unit()
{
    pic_timing timing;
    timing.cpb_removal_delay = put_removal_delay;
    timing.dpb_output_delay = 3;
    return unit_of(6, sei_rbsp{{message_of(1, timing)}});
}
inline nal_unit period_unit(std::uint32_t sps_id)
{
    buffering_period period;
    period.seq_parameter_set_id = sps_id;
    period.nal.resize(1);
    period.nal[0].initial_cpb_removal_delay = 9;
    return unit_of(6, sei_rbsp{{message_of(0, period)}});
}

/// SPS and PPS 0 with delays of 8 bits, SPS and PPS 1 with delays of 20.
class timed_stream : public pushed_stream {
public:
    timed_stream() = default;
    void push_sets()
    {
        push({sps_unit(timed_sps_data(0, 8)), sps_unit(timed_sps_data(1, 20)), pps_unit(0, 0), pps_unit(1, 1)});
    }
    void push_timing(std::uint32_t sps_id)
    {
        push(timing_unit(), sps_id == 0 ? short_delays.context : long_delays.context);
    }
    void push_period(std::uint32_t sps_id)
    {
        seq_parameter_set_rbsp sps = {timed_sps_data(sps_id, sps_id == 0 ? 8 : 20)};
        parameter_sets sets;
        sets.sps[sps_id] = &sps;
        unit_context context;
        context.sets = &sets;
        push(period_unit(sps_id), context);
    }
    void push_slice(unsigned type, std::uint32_t pps_id)
    {
        small_sets named;
        named.sets.pps[pps_id] = &named.pps;
        push(slice_unit(type, pps_id), named.context);
    }
    /// The latest SEI unit was read soundly, and its picture timing has the delays that were put in.
    void expect_timing_read() const
    {
        for (std::size_t i = readings.size(); i-- > 0;) {
            if (readings[i].nal_unit_type != 6)
                continue;
            EXPECT_FALSE(readings[i].result.failure) << text_of(readings[i].result.failure.why);
            const auto& timing =
                std::get<pic_timing>(std::get<sei_rbsp>(readings[i].unit.rbsp).sei_messages[0].payload);
            EXPECT_EQ(timing.cpb_removal_delay, put_removal_delay);
            EXPECT_EQ(timing.dpb_output_delay, 3U);
            return;
        }
        FAIL() << "no SEI unit was handed on";
    }

private:
    small_sets short_delays{timed_sps_data(0, 8)};
    small_sets long_delays{timed_sps_data(1, 20)};
};

} // namespace orv_utils_v4::h264
