// SEI payloads from a plain description, as the tables of H.264 D.1.2, D.1.3, D.1.4 and D.1.8 write them, but for the
// widths that an SPS tells: these are the description's to say.
#pragma once

#include "support/element_writer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace support {

/// pic_timing(); with `delays` the two delays are written, with `pic_struct` that and the clock timestamps.
struct pic_timing_description {
    struct timestamp {
        bool clock_timestamp_flag = true; ///< what follows is written
        unsigned int ct_type = 0;
        bool nuit_field_based_flag = false;
        unsigned int counting_type = 0;
        bool full_timestamp_flag = false;
        bool discontinuity_flag = false;
        bool cnt_dropped_flag = false;
        unsigned int n_frames = 0;
        std::optional<unsigned int> seconds_value = {};
        std::optional<unsigned int> minutes_value = {};
        std::optional<unsigned int> hours_value = {};
        std::int64_t time_offset = 0;
    };

    std::optional<std::pair<std::uint32_t, std::uint32_t>> delays = {}; ///< CPB removal, DPB output
    unsigned int delay_width = 24;
    std::optional<unsigned int> pic_struct = {};
    std::vector<timestamp> timestamps = {};
    unsigned int time_offset_length = 24;
};

/// The time of day: hours need minutes, minutes need seconds, and a full timestamp has all of them.
inline void write_time_of_day(element_writer& out, const pic_timing_description::timestamp& t, std::size_t i)
{
    if (t.full_timestamp_flag) {
        out.u("timestamps.seconds_value", 6, t.seconds_value.value(), i);
        out.u("timestamps.minutes_value", 6, t.minutes_value.value(), i);
        out.u("timestamps.hours_value", 5, t.hours_value.value(), i);
        return;
    }
    out.flag("timestamps.seconds_flag", t.seconds_value.has_value(), i);
    if (!t.seconds_value)
        return;
    out.u("timestamps.seconds_value", 6, *t.seconds_value, i);
    out.flag("timestamps.minutes_flag", t.minutes_value.has_value(), i);
    if (!t.minutes_value)
        return;
    out.u("timestamps.minutes_value", 6, *t.minutes_value, i);
    out.flag("timestamps.hours_flag", t.hours_value.has_value(), i);
    if (t.hours_value)
        out.u("timestamps.hours_value", 5, *t.hours_value, i);
}

inline void write_timestamp(element_writer& out, const pic_timing_description& timing, std::size_t i)
{
    const pic_timing_description::timestamp& t = timing.timestamps[i];
    out.flag("timestamps.clock_timestamp_flag", t.clock_timestamp_flag, i);
    if (!t.clock_timestamp_flag)
        return;
    out.u("timestamps.ct_type", 2, t.ct_type, i);
    out.flag("timestamps.nuit_field_based_flag", t.nuit_field_based_flag, i);
    out.u("timestamps.counting_type", 5, t.counting_type, i);
    out.flag("timestamps.full_timestamp_flag", t.full_timestamp_flag, i);
    out.flag("timestamps.discontinuity_flag", t.discontinuity_flag, i);
    out.flag("timestamps.cnt_dropped_flag", t.cnt_dropped_flag, i);
    out.u("timestamps.n_frames", 8, t.n_frames, i);
    write_time_of_day(out, t, i);
    // Not by the field's name: the field holds a signed number, these are its low bits.
    if (timing.time_offset_length > 0)
        out.u("time_offset_bits", timing.time_offset_length, static_cast<std::uint64_t>(t.time_offset), i);
}

inline void write(element_writer& out, const pic_timing_description& timing)
{
    if (timing.delays) {
        out.u("cpb_removal_delay", timing.delay_width, timing.delays->first);
        out.u("dpb_output_delay", timing.delay_width, timing.delays->second);
    }
    if (!timing.pic_struct)
        return;
    out.u("pic_struct", 4, *timing.pic_struct);
    for (std::size_t i = 0; i < timing.timestamps.size(); ++i)
        write_timestamp(out, timing, i);
}

/// A full timestamp, every element with a value that no other has where its width allows; `i` varies them.
inline pic_timing_description::timestamp full_timestamp(unsigned int i = 0)
{
    return {true, 1, true, 6 + i, true, true, true, 200 + i, 40 + i, 50 + i, 20 + i, -1000 - std::int64_t{i}};
}

/// Both delays, and three full timestamps.
inline pic_timing_description full_pic_timing()
{
    pic_timing_description timing;
    timing.delays = {0xABCDEF, 0x123456};
    timing.pic_struct = 5;
    timing.timestamps = {full_timestamp(0), full_timestamp(1), full_timestamp(2)};
    return timing;
}

/// buffering_period(): a delay and an offset for each SchedSelIdx of the HRD parameters that there are.
struct buffering_period_description {
    using pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

    std::uint32_t seq_parameter_set_id = 0;
    pairs nal = {};
    pairs vcl = {};
    unsigned int nal_width = 24;
    unsigned int vcl_width = 24;
};

inline void write(element_writer& out, const buffering_period_description& period)
{
    out.ue("seq_parameter_set_id", period.seq_parameter_set_id);
    for (std::size_t i = 0; i < period.nal.size(); ++i) {
        out.u("nal_initial_cpb_removal_delay", period.nal_width, period.nal[i].first, i);
        out.u("nal_initial_cpb_removal_delay_offset", period.nal_width, period.nal[i].second, i);
    }
    for (std::size_t i = 0; i < period.vcl.size(); ++i) {
        out.u("vcl_initial_cpb_removal_delay", period.vcl_width, period.vcl[i].first, i);
        out.u("vcl_initial_cpb_removal_delay_offset", period.vcl_width, period.vcl[i].second, i);
    }
}

/// `count` pairs from `first` on, each number its own.
inline buffering_period_description::pairs pairs_from(std::uint32_t first, std::uint32_t count)
{
    buffering_period_description::pairs made;
    for (std::uint32_t i = 0; i < count; ++i)
        made.emplace_back(first + 2 * i, first + 2 * i + 1);
    return made;
}

/// pan_scan_rect()
struct pan_scan_rect_description {
    struct rect {
        std::int32_t left = 0;
        std::int32_t right = 0;
        std::int32_t top = 0;
        std::int32_t bottom = 0;
    };

    std::uint32_t pan_scan_rect_id = 0;
    bool pan_scan_rect_cancel_flag = false;
    std::optional<std::uint32_t> pan_scan_cnt_minus1 = {}; ///< when it is not what `rects` says
    std::vector<rect> rects = {{}};
    std::uint32_t pan_scan_rect_repetition_period = 0;
};

inline void write(element_writer& out, const pan_scan_rect_description& pan_scan)
{
    out.ue("pan_scan_rect_id", pan_scan.pan_scan_rect_id);
    out.flag("pan_scan_rect_cancel_flag", pan_scan.pan_scan_rect_cancel_flag);
    if (pan_scan.pan_scan_rect_cancel_flag)
        return;
    out.ue("pan_scan_cnt_minus1",
           pan_scan.pan_scan_cnt_minus1.value_or(static_cast<std::uint32_t>(pan_scan.rects.size() - 1)));
    for (std::size_t i = 0; i < pan_scan.rects.size(); ++i) {
        out.se("rects.pan_scan_rect_left_offset", pan_scan.rects[i].left, i);
        out.se("rects.pan_scan_rect_right_offset", pan_scan.rects[i].right, i);
        out.se("rects.pan_scan_rect_top_offset", pan_scan.rects[i].top, i);
        out.se("rects.pan_scan_rect_bottom_offset", pan_scan.rects[i].bottom, i);
    }
    out.ue("pan_scan_rect_repetition_period", pan_scan.pan_scan_rect_repetition_period);
}

/// `count` rectangles, each offset its own.
inline pan_scan_rect_description pan_scan_of(std::int32_t count)
{
    pan_scan_rect_description pan_scan;
    pan_scan.pan_scan_rect_id = 300;
    pan_scan.rects.clear();
    for (std::int32_t i = 0; i < count; ++i)
        pan_scan.rects.push_back({1 + 4 * i, -2 - 4 * i, 3 + 4 * i, -4 - 4 * i});
    pan_scan.pan_scan_rect_repetition_period = 20000;
    return pan_scan;
}

/// recovery_point()
struct recovery_point_description {
    std::uint32_t recovery_frame_cnt = 0;
    bool exact_match_flag = false;
    bool broken_link_flag = false;
    unsigned int changing_slice_group_idc = 0;
};

inline void write(element_writer& out, const recovery_point_description& recovery)
{
    out.ue("recovery_frame_cnt", recovery.recovery_frame_cnt);
    out.flag("exact_match_flag", recovery.exact_match_flag);
    out.flag("broken_link_flag", recovery.broken_link_flag);
    out.u("changing_slice_group_idc", 2, recovery.changing_slice_group_idc);
}

} // namespace support
