// The SEI payloads once more, over a reader of single bits and values by name. It shares no code with the libraries;
// the tests and the fuzz entry points hold the real parses against it.
#pragma once

#include "support/literal_parameter_sets.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace literal {

/// What a payload takes from HRD parameters.
struct stored_hrd {
    bool present = false;
    std::int64_t cpb_cnt_minus1 = 0;
    std::int64_t initial_cpb_removal_delay_length_minus1 = 23;
    std::int64_t time_offset_length = 24;
};

/// What a payload takes from an SPS.
struct stored_vui {
    stored_hrd nal;
    stored_hrd vcl;
    bool pic_struct_present_flag = false;
};
using vui_store = std::map<std::int64_t, stored_vui>;

/// The low 32 bits of a field whose width is an 8-bit number.
inline std::int64_t field(const structure& s, std::int64_t width)
{
    return s.bits.get(static_cast<unsigned int>(width % 256));
}

/// A field in two's complement, of 32 bits when it is wider.
inline std::int64_t signed_field(const structure& s, std::int64_t width)
{
    const std::int64_t raw = field(s, width);
    const std::int64_t sign = std::int64_t{1} << (std::min<std::int64_t>(width, 32) - 1);
    return raw >= sign ? raw - 2 * sign : raw;
}

// H.264 D.1.3, of clock timestamp i
inline void clock_timestamp(const structure& s, std::size_t i, std::int64_t time_offset_length)
{
    struct unit {
        const char* flag;
        const char* value;
        unsigned int width;
    };
    static const std::vector<row> head = {{"ct_type", 2},
                                          {"nuit_field_based_flag", 1},
                                          {"counting_type", 5},
                                          {"full_timestamp_flag", 1},
                                          {"discontinuity_flag", 1},
                                          {"cnt_dropped_flag", 1},
                                          {"n_frames", 8}};
    static const std::vector<unit> time_of_day = {
        {"seconds_flag", "seconds_value", 6}, {"minutes_flag", "minutes_value", 6}, {"hours_flag", "hours_value", 5}};
    const auto set = [&](const char* name, std::int64_t number) { return s.array(name)[i] = number; };
    if (set("clock_timestamp_flag", s.bits.get(1)) == 0)
        return;
    for (const row& r : head)
        set(r.name, s.bits.get(r.descriptor));
    const bool full = s.array("full_timestamp_flag")[i] == 1;
    for (const unit& u : time_of_day) {
        if (set(u.flag, full ? 1 : s.bits.get(1)) == 0)
            break;
        set(u.value, s.bits.get(u.width));
    }
    if (time_offset_length > 0)
        set("time_offset", signed_field(s, time_offset_length));
}

// H.264 D.1.3
inline bool pic_timing(const structure& s, const stored_vui& vui)
{
    static const std::vector<std::string_view> members = {"clock_timestamp_flag",
                                                          "ct_type",
                                                          "nuit_field_based_flag",
                                                          "counting_type",
                                                          "full_timestamp_flag",
                                                          "discontinuity_flag",
                                                          "cnt_dropped_flag",
                                                          "seconds_flag",
                                                          "minutes_flag",
                                                          "hours_flag",
                                                          "n_frames",
                                                          "seconds_value",
                                                          "minutes_value",
                                                          "hours_value",
                                                          "time_offset"};
    static const std::map<std::int64_t, std::int64_t> table_d_1 = {{3, 2}, {4, 2}, {5, 3}, {6, 3}, {7, 2}, {8, 3}};
    if (vui.nal.present || vui.vcl.present)
        for (const char* const delay : {"cpb_removal_delay", "dpb_output_delay"})
            s.number(delay) = field(s, 1 + std::max(vui.nal.initial_cpb_removal_delay_length_minus1,
                                                    vui.vcl.initial_cpb_removal_delay_length_minus1));
    if (vui.pic_struct_present_flag) {
        s.number("pic_struct") = s.bits.get(4);
        const auto entry = table_d_1.find(s.number("pic_struct"));
        const std::int64_t count = entry == table_d_1.end() ? 1 : entry->second;
        const structure timestamps = s.nested("timestamps");
        if (!size_records(timestamps, count, members))
            return false;
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            clock_timestamp(timestamps, i, std::max(vui.nal.time_offset_length, vui.vcl.time_offset_length));
    }
    s.number("valid") = 1;
    return true;
}

/// With the SPS under `current`, when there is one.
inline bool pic_timing(const structure& s, const vui_store& store, std::optional<std::int64_t> current)
{
    const auto sps = current ? store.find(*current) : store.end();
    return sps == store.end() ? not_valid(s) : pic_timing(s, sps->second);
}

inline bool initial_delays(const structure& s, const stored_hrd& hrd, const std::string& kind)
{
    const std::string delays = kind + "_initial_cpb_removal_delay";
    const std::string offsets = delays + "_offset";
    if (!hrd.present)
        return true;
    if (!size_arrays(s, hrd.cpb_cnt_minus1 + 1, {delays, offsets}))
        return false;
    for (std::size_t i = 0; i < s.array(delays).size(); ++i)
        for (const std::string_view name : {std::string_view(delays), std::string_view(offsets)})
            s.array(name)[i] = field(s, hrd.initial_cpb_removal_delay_length_minus1 + 1);
    return true;
}

// H.264 D.1.2
inline bool buffering_period(const structure& s, const vui_store& store)
{
    s.number("seq_parameter_set_id") = s.ue();
    const auto sps = store.find(s.number("seq_parameter_set_id"));
    if (sps == store.end())
        return not_valid(s);
    if (!initial_delays(s, sps->second.nal, "nal") || !initial_delays(s, sps->second.vcl, "vcl"))
        return false;
    s.number("valid") = 1;
    return true;
}

// H.264 D.1.4
inline bool pan_scan_rect(const structure& s)
{
    static const std::vector<std::string_view> offsets = {"pan_scan_rect_left_offset", "pan_scan_rect_right_offset",
                                                          "pan_scan_rect_top_offset", "pan_scan_rect_bottom_offset"};
    static const std::vector<row> head = {{"pan_scan_rect_id", ue}, {"pan_scan_rect_cancel_flag", 1}};
    static const std::vector<row> count = {{"pan_scan_cnt_minus1", ue}};
    static const std::vector<row> tail = {{"pan_scan_rect_repetition_period", ue}};
    read(s, head);
    if (s.number("pan_scan_rect_cancel_flag") == 0) {
        read(s, count);
        const structure rects = s.nested("rects");
        if (!size_records(rects, s.number("pan_scan_cnt_minus1") + 1, offsets))
            return false;
        for (std::size_t i = 0; i < rects.array(offsets[0]).size(); ++i)
            for (const std::string_view offset : offsets)
                rects.array(offset)[i] = s.se();
        read(s, tail);
    }
    s.number("valid") = 1;
    return true;
}

// H.264 D.1.8
inline bool recovery_point(const structure& s)
{
    static const std::vector<row> table = {
        {"recovery_frame_cnt", ue}, {"exact_match_flag", 1}, {"broken_link_flag", 1}, {"changing_slice_group_idc", 2}};
    read(s, table);
    s.number("valid") = 1;
    return true;
}

} // namespace literal
