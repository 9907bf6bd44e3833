// Valid SEI payloads, damaged in every small way, against the literal parses.
#include "support/literal_sei_parse.h"
#include "support/sei_builder.h"
#include "support/sweep.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using literal::stored_hrd;
using literal::stored_vui;
using support::object_of;
using support::parse_random_bytes;
using support::sweep;

/// `earlier` is left by a parse with the same SPS as the payload's.
template <typename Parses, typename Description>
void sweep_payload(const Parses& parses, const Description& description, const typename Parses::structure& earlier)
{
    sweep<Parses>(parses, support::written(description), earlier).everything();
}

support::pic_timing_parses::structure earlier_timing()
{
    return object_of(support::pic_timing_parses{{{true}, {true}, true}}, support::full_pic_timing());
}

/// Clock timestamps whose time of day has 0 to 3 numbers, all of them, and none at all.
support::pic_timing_description every_timestamp(unsigned int pic_struct)
{
    support::pic_timing_description timing;
    timing.pic_struct = pic_struct;
    timing.timestamps = {{}, {}, {}};
    timing.timestamps[0].seconds_value = 31;
    if (pic_struct == 6) {
        timing.timestamps[1].seconds_value = 41;
        timing.timestamps[1].minutes_value = 42;
        timing.timestamps[2] = {false};
    } else {
        timing.timestamps[1] = support::full_timestamp(1);
        timing.timestamps[1].full_timestamp_flag = false;
    }
    return timing;
}

/// The widths of a description, as the longer ones of two HRD parameters.
stored_vui vui_for(const support::pic_timing_description& timing)
{
    return {{timing.delays.has_value(), 0, 3, timing.time_offset_length},
            {false, 0, static_cast<std::int64_t>(timing.delay_width) - 1, 0},
            timing.pic_struct.has_value()};
}

void sweep_timing(const support::pic_timing_description& timing)
{
    sweep_payload(support::pic_timing_parses{vui_for(timing)}, timing, earlier_timing());
    sweep_payload(support::current_pic_timing_parses{{{4, vui_for(timing)}}, 4}, timing, earlier_timing());
}

} // namespace

TEST(SeiSweep, PicTiming)
{
    sweep_timing(support::full_pic_timing());
    for (const unsigned int pic_struct : {5U, 6U, 8U})
        sweep_timing(every_timestamp(pic_struct));
}

TEST(SeiSweep, PicTimingOfSeveralWidths)
{
    for (const unsigned int width : {4U, 25U, 26U, 32U})
        for (const unsigned int time_offset_length : {0U, 1U, 5U, 31U, 32U}) {
            SCOPED_TRACE(testing::Message() << width << ' ' << time_offset_length);
            support::pic_timing_description timing = every_timestamp(0);
            timing.delay_width = width;
            timing.time_offset_length = time_offset_length;
            timing.delays = {5, 6};
            timing.timestamps.pop_back();
            timing.timestamps.pop_back();
            sweep_timing(timing);
        }
}

TEST(SeiSweep, PicTimingWithoutPicStruct)
{
    support::pic_timing_description timing;
    timing.delays = {0xABCDEF, 0};
    sweep_timing(timing);
}

TEST(SeiSweep, BufferingPeriod)
{
    const stored_hrd three = {true, 2, 23, 24};
    const stored_hrd two = {true, 1, 29, 24};
    support::buffering_period_description both;
    both.nal = support::pairs_from(100, 3);
    both.vcl = support::pairs_from(4000, 2);
    both.vcl_width = 30;
    support::buffering_period_description nal = both;
    nal.seq_parameter_set_id = 1;
    nal.vcl.clear();
    support::buffering_period_description vcl = both;
    vcl.seq_parameter_set_id = 2;
    vcl.nal.clear();
    support::buffering_period_description neither;
    neither.seq_parameter_set_id = 3;
    const support::buffering_period_parses parses{{{0, {three, two, false}},
                                                   {1, {three, {}, true}},
                                                   {2, {{}, two, false}},
                                                   {3, {}},
                                                   {4, {{true, 128}, two, false}},
                                                   {5, {three, {true, 0xFFFFFFFF}, false}},
                                                   {6, {{true, 127, 255}, {true, 127, 0}, false}}}};
    for (const auto& period : {both, nal, vcl, neither})
        sweep_payload(parses, period, object_of(parses, both));
    parse_random_bytes(parses);
    parse_random_bytes(parses, {0x80, 0x40, 0x60, 0x20, 0x28, 0x30, 0x38, 0x10});
}

TEST(SeiSweep, PanScanRect)
{
    const support::pan_scan_rect_parses parses;
    support::pan_scan_rect_description cancelled;
    cancelled.pan_scan_rect_id = 6;
    cancelled.pan_scan_rect_cancel_flag = true;
    for (const auto& pan_scan : {support::pan_scan_of(1), support::pan_scan_of(3), cancelled})
        sweep_payload(parses, pan_scan, object_of(parses, support::pan_scan_of(5)));
    parse_random_bytes(parses);
}

TEST(SeiSweep, RecoveryPoint)
{
    const support::recovery_point_parses parses;
    for (const std::uint32_t recovery_frame_cnt : {0U, 1U, 300U})
        sweep_payload(parses, support::recovery_point_description{recovery_frame_cnt, true, false, 1},
                      object_of(parses, support::recovery_point_description{40, false, true, 2}));
    parse_random_bytes(parses);
}

TEST(SeiSweep, PicTimingOfRandomBytes)
{
    for (const std::int64_t delay_length_minus1 : {0, 24, 31, 32, 254, 255})
        for (const std::int64_t time_offset_length : {0, 1, 24, 32, 33, 255}) {
            const stored_vui vui = {{false, 0, delay_length_minus1, 0}, {true, 0, 0, time_offset_length}, true};
            parse_random_bytes(support::pic_timing_parses{vui});
        }
    parse_random_bytes(support::pic_timing_parses{{{}, {}, true}});
    parse_random_bytes(support::pic_timing_parses{{{}, {}, true}}, {0x38, 0x48, 0x58, 0x68, 0x78, 0x88, 0x98});
    parse_random_bytes(support::pic_timing_parses());
    parse_random_bytes(support::current_pic_timing_parses{{{4, {{true}, {}, true}}}, 4});
    parse_random_bytes(support::current_pic_timing_parses{{{4, {{true}, {}, true}}}, 5});
    parse_random_bytes(support::current_pic_timing_parses{{{4, {{true}, {}, true}}}, {}});
}
