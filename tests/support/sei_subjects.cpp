// SEI payloads of the newer interface, with SPSs of several lengths.
#include "support/subject_of.h"

#include "support/literal_sei_parse.h"
#include "support/sei_builder.h"

#include <cstdint>
#include <optional>

namespace support {

namespace {

/// Clock timestamps whose time of day has 0 to 3 numbers, all of them, and none at all.
pic_timing_description every_timestamp(unsigned int pic_struct)
{
    pic_timing_description timing;
    timing.pic_struct = pic_struct;
    timing.timestamps = {{}, {}, {}};
    timing.timestamps[0].seconds_value = 31;
    if (pic_struct == 6) {
        timing.timestamps[1].seconds_value = 41;
        timing.timestamps[1].minutes_value = 42;
        timing.timestamps[2] = {false};
    } else {
        timing.timestamps[1] = full_timestamp(1);
        timing.timestamps[1].full_timestamp_flag = false;
    }
    return timing;
}

/// The widths of a description, as the longer ones of two HRD parameters.
literal::stored_vui vui_for(const pic_timing_description& timing)
{
    return {{timing.delays.has_value(), 0, 3, timing.time_offset_length},
            {false, 0, static_cast<std::int64_t>(timing.delay_width) - 1, 0},
            timing.pic_struct.has_value()};
}

} // namespace

std::vector<subject> pic_timing_subjects()
{
    const auto filled = left_by(pic_timing_parses{{{true}, {true}, true}}, written(full_pic_timing()));
    std::vector<subject> all;
    const auto add = [&](const std::string& name, const auto& parses, const pic_timing_description& timing,
                         bool read_whole, bool typical) {
        all.push_back(subject_of(name, parses, written(timing), filled));
        all.back().typical = typical;
        if (!read_whole)
            all.back().end.reset();
    };
    const auto add_both = [&](const std::string& name, const pic_timing_description& timing, bool typical = false) {
        add(name, pic_timing_parses{vui_for(timing)}, timing, true, typical);
        add(name + ", stored", current_pic_timing_parses{{{4, vui_for(timing)}}, 4}, timing, true, false);
    };
    add_both("full", full_pic_timing(), true);
    for (const unsigned int pic_struct : {5U, 6U, 8U})
        add_both("pic_struct " + std::to_string(pic_struct), every_timestamp(pic_struct));
    for (const unsigned int width : {4U, 25U, 26U, 32U})
        for (const unsigned int time_offset_length : {0U, 1U, 5U, 31U, 32U}) {
            pic_timing_description timing = every_timestamp(0);
            timing.delay_width = width;
            timing.time_offset_length = time_offset_length;
            timing.delays = {5, 6};
            timing.timestamps.resize(1);
            add_both(std::to_string(width) + " and " + std::to_string(time_offset_length) + " bits", timing);
        }
    pic_timing_description delays;
    delays.delays = {0xABCDEF, 0};
    add_both("delays alone", delays);
    for (const std::int64_t delay_length_minus1 : {0, 24, 31, 32, 254, 255})
        for (const std::int64_t time_offset_length : {0, 1, 24, 32, 33, 255})
            add("lengths " + std::to_string(delay_length_minus1) + " and " + std::to_string(time_offset_length),
                pic_timing_parses{{{false, 0, delay_length_minus1, 0}, {true, 0, 0, time_offset_length}, true}},
                full_pic_timing(), false, false);
    add("pic_struct alone", pic_timing_parses{{{}, {}, true}}, full_pic_timing(), false, false);
    all.back().first_bytes = {0x38, 0x48, 0x58, 0x68, 0x78, 0x88, 0x98};
    add("nothing", pic_timing_parses(), full_pic_timing(), false, false);
    for (const std::optional<std::uint32_t> current : {std::optional<std::uint32_t>(5), {}})
        add("no SPS", current_pic_timing_parses{{{4, {{true}, {}, true}}}, current}, full_pic_timing(), false, false);
    return all;
}

std::vector<subject> buffering_period_subjects()
{
    const literal::stored_hrd three = {true, 2, 23, 24};
    const literal::stored_hrd two = {true, 1, 29, 24};
    const buffering_period_parses parses{{{0, {three, two, false}},
                                          {1, {three, {}, true}},
                                          {2, {{}, two, false}},
                                          {3, {}},
                                          {4, {{true, 128}, two, false}},
                                          {5, {three, {true, 0xFFFFFFFF}, false}},
                                          {6, {{true, 127, 255}, {true, 127, 0}, false}}}};
    buffering_period_description both;
    both.nal = pairs_from(100, 3);
    both.vcl = pairs_from(4000, 2);
    both.vcl_width = 30;
    const auto filled = left_by(parses, written(both));
    std::vector<subject> all;
    for (std::uint32_t id = 0; id < 4; ++id) {
        buffering_period_description period = both;
        period.seq_parameter_set_id = id;
        if (id / 2 == 1)
            period.nal.clear();
        if (id % 2 == 1)
            period.vcl.clear();
        all.push_back(subject_of("SPS " + std::to_string(id), parses, written(period), filled));
        all.back().first_bytes = {0x80, 0x40, 0x60, 0x20, 0x28, 0x30, 0x38, 0x10};
    }
    return all;
}

std::vector<subject> pan_scan_rect_subjects()
{
    pan_scan_rect_description cancelled;
    cancelled.pan_scan_rect_id = 6;
    cancelled.pan_scan_rect_cancel_flag = true;
    const pan_scan_rect_parses parses;
    const auto filled = left_by(parses, written(pan_scan_of(5)));
    return {subject_of("of 1", parses, written(pan_scan_of(1)), filled),
            subject_of("of 3", parses, written(pan_scan_of(3)), filled),
            subject_of("cancelled", parses, written(cancelled), filled)};
}

std::vector<subject> recovery_point_subjects()
{
    const recovery_point_parses parses;
    const auto filled = left_by(parses, written(recovery_point_description{40, false, true, 2}));
    std::vector<subject> all;
    for (const std::uint32_t recovery_frame_cnt : {0U, 1U, 300U})
        all.push_back(subject_of("after " + std::to_string(recovery_frame_cnt), parses,
                                 written(recovery_point_description{recovery_frame_cnt, true, false, 1}), filled));
    return all;
}

} // namespace support
