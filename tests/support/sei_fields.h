// The fields of the SEI payloads by name, member by member; records of an array as one array for each of their members.
#pragma once

#include "support/parameter_set_fields.h"

#include <orv-utils-v4/h264/nal_sei_buffering_period.h>
#include <orv-utils-v4/h264/nal_sei_pan_scan_rect.h>
#include <orv-utils-v4/h264/nal_sei_pic_timing.h>
#include <orv-utils-v4/h264/nal_sei_recovery_point.h>

#include <cstdint>
#include <vector>

namespace support {

/// Shows a visitor one member of every record.
template <typename Visitor, typename Record, typename Member>
void each_record(Visitor& visit, const char* name, const std::vector<Record>& records, Member Record::*member)
{
    std::vector<std::int64_t> column;
    column.reserve(records.size());
    for (const Record& record : records)
        column.push_back(static_cast<std::int64_t>(record.*member));
    visit(name, column);
}

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_nal_sei_pic_timing& timing)
{
    using record = brenik::h264_nal_sei_pic_timing::timestamp_t;
    const auto& t = timing.timestamps;
    visit("cpb_removal_delay", timing.cpb_removal_delay);
    visit("dpb_output_delay", timing.dpb_output_delay);
    visit("pic_struct", timing.pic_struct);
    each_record(visit, "timestamps.clock_timestamp_flag", t, &record::clock_timestamp_flag);
    each_record(visit, "timestamps.ct_type", t, &record::ct_type);
    each_record(visit, "timestamps.nuit_field_based_flag", t, &record::nuit_field_based_flag);
    each_record(visit, "timestamps.counting_type", t, &record::counting_type);
    each_record(visit, "timestamps.full_timestamp_flag", t, &record::full_timestamp_flag);
    each_record(visit, "timestamps.discontinuity_flag", t, &record::discontinuity_flag);
    each_record(visit, "timestamps.cnt_dropped_flag", t, &record::cnt_dropped_flag);
    each_record(visit, "timestamps.seconds_flag", t, &record::seconds_flag);
    each_record(visit, "timestamps.minutes_flag", t, &record::minutes_flag);
    each_record(visit, "timestamps.hours_flag", t, &record::hours_flag);
    each_record(visit, "timestamps.n_frames", t, &record::n_frames);
    each_record(visit, "timestamps.seconds_value", t, &record::seconds_value);
    each_record(visit, "timestamps.minutes_value", t, &record::minutes_value);
    each_record(visit, "timestamps.hours_value", t, &record::hours_value);
    each_record(visit, "timestamps.time_offset", t, &record::time_offset);
    visit("valid", timing.valid);
}

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_nal_sei_buffering_period& period)
{
    visit("seq_parameter_set_id", period.seq_parameter_set_id);
    visit("nal_initial_cpb_removal_delay", period.nal_initial_cpb_removal_delay);
    visit("nal_initial_cpb_removal_delay_offset", period.nal_initial_cpb_removal_delay_offset);
    visit("vcl_initial_cpb_removal_delay", period.vcl_initial_cpb_removal_delay);
    visit("vcl_initial_cpb_removal_delay_offset", period.vcl_initial_cpb_removal_delay_offset);
    visit("valid", period.valid);
}

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_nal_sei_pan_scan_rect& pan_scan)
{
    using record = brenik::h264_nal_sei_pan_scan_rect::rect;
    visit("pan_scan_rect_id", pan_scan.pan_scan_rect_id);
    visit("pan_scan_rect_cancel_flag", pan_scan.pan_scan_rect_cancel_flag);
    visit("pan_scan_cnt_minus1", pan_scan.pan_scan_cnt_minus1);
    each_record(visit, "rects.pan_scan_rect_left_offset", pan_scan.rects, &record::pan_scan_rect_left_offset);
    each_record(visit, "rects.pan_scan_rect_right_offset", pan_scan.rects, &record::pan_scan_rect_right_offset);
    each_record(visit, "rects.pan_scan_rect_top_offset", pan_scan.rects, &record::pan_scan_rect_top_offset);
    each_record(visit, "rects.pan_scan_rect_bottom_offset", pan_scan.rects, &record::pan_scan_rect_bottom_offset);
    visit("pan_scan_rect_repetition_period", pan_scan.pan_scan_rect_repetition_period);
    visit("valid", pan_scan.valid);
}

template <typename Visitor>
void each_field(Visitor& visit, const brenik::h264_nal_sei_recovery_point& recovery)
{
    visit("recovery_frame_cnt", recovery.recovery_frame_cnt);
    visit("changing_slice_group_idc", recovery.changing_slice_group_idc);
    visit("exact_match_flag", recovery.exact_match_flag);
    visit("broken_link_flag", recovery.broken_link_flag);
    visit("valid", recovery.valid);
}

} // namespace support
