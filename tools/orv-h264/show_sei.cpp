#include "names.h"
#include "pic_timing_lengths.h"
#include "show_structures.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

using timestamp_t = brenik::h264_nal_sei_pic_timing::timestamp_t;

bool is_text(rbsp_bytes bytes)
{
    return !bytes.empty() &&
           std::all_of(bytes.begin(), bytes.end(), [](unsigned char c) { return c >= ' ' && c <= '~'; });
}

/// What the bytes say where they are text (the zero that ends a string aside), or "".
std::string_view text_of(rbsp_bytes bytes)
{
    const rbsp_bytes string = bytes.first(bytes.size() - (!bytes.empty() && bytes.back() == 0 ? 1 : 0));
    return is_text(string) ? std::string_view(reinterpret_cast<const char*>(string.data()), string.size()) : "";
}

/// 8-4-4-4-12 hex digits.
std::string uuid_text(const iso_iec_11578_uuid& uuid)
{
    std::string text = fmt::format("{:02x}", fmt::join(uuid.bytes, ""));
    for (const std::size_t dash : {20U, 16U, 12U, 8U})
        text.insert(dash, 1, '-');
    return text;
}

std::string in_seconds(std::uint32_t ticks_90khz)
{
    return fmt::format("{:.6g} s", ticks_90khz / 90000.0);
}

void show_delays(field_printer& p, const char* name, const char* heading, const brenik::h264_hrd_parameters& hrd,
                 const std::vector<std::uint32_t>& delays, const std::vector<std::uint32_t>& offsets)
{
    const unsigned int length = hrd.initial_cpb_removal_delay_length_minus1 + 1U;
    const field_printer::deeper indented(p, name, heading);
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        p.u(length, {"initial_cpb_removal_delay", i}, delays[i], in_seconds(delays[i]));
        p.u(length, {"initial_cpb_removal_delay_offset", i}, offsets[i], in_seconds(offsets[i]));
    }
}

// H.264 D.1.2, buffering_period()
void show(field_printer& p, const brenik::h264_nal_sei_buffering_period& period, const walked_message& message)
{
    p.ue("seq_parameter_set_id", period.seq_parameter_set_id);
    if (message.sps == nullptr)
        return;
    const brenik::h264_vui_parameters& vui = message.sps->vui;
    if (vui.nal_hrd_parameters_present_flag)
        show_delays(p, "nal_hrd", "NAL HRD", vui.nal_hrd, period.nal_initial_cpb_removal_delay,
                    period.nal_initial_cpb_removal_delay_offset);
    if (vui.vcl_hrd_parameters_present_flag)
        show_delays(p, "vcl_hrd", "VCL HRD", vui.vcl_hrd, period.vcl_initial_cpb_removal_delay,
                    period.vcl_initial_cpb_removal_delay_offset);
}

void show_time_of_day(field_printer& p, const timestamp_t& t)
{
    if (!t.full_timestamp_flag)
        p.flag("seconds_flag", t.seconds_flag);
    if (!t.seconds_flag)
        return;
    p.u(6, "seconds_value", t.seconds_value);
    if (!t.full_timestamp_flag)
        p.flag("minutes_flag", t.minutes_flag);
    if (!t.minutes_flag)
        return;
    p.u(6, "minutes_value", t.minutes_value);
    if (!t.full_timestamp_flag)
        p.flag("hours_flag", t.hours_flag);
    if (t.hours_flag)
        p.u(5, "hours_value", t.hours_value);
}

void show_timestamp(field_printer& p, std::size_t number, const timestamp_t& t, unsigned int time_offset_length)
{
    const field_printer::deeper indented(p, {"clock_timestamp", number});
    p.u(2, "ct_type", t.ct_type, t.ct_type_to_str());
    p.flag("nuit_field_based_flag", t.nuit_field_based_flag);
    p.u(5, "counting_type", t.counting_type);
    p.flag("full_timestamp_flag", t.full_timestamp_flag);
    p.flag("discontinuity_flag", t.discontinuity_flag);
    p.flag("cnt_dropped_flag", t.cnt_dropped_flag);
    p.u(8, "n_frames", t.n_frames);
    show_time_of_day(p, t);
    if (time_offset_length > 0)
        p.i(time_offset_length, "time_offset", t.time_offset);
    if (t.hours_flag) {
        const std::string time =
            fmt::format("{:02}:{:02}:{:02}:{:02}", t.hours_value, t.minutes_value, t.seconds_value, t.n_frames);
        p.derived(time, {{"time", std::string_view(time)}});
    }
}

std::string length_note(unsigned int read, unsigned int standard)
{
    return read == standard ? "" : fmt::format("read as {} bits, in H.264 {}", read, standard);
}

// H.264 D.1.3, pic_timing()
void show(field_printer& p, const brenik::h264_nal_sei_pic_timing& timing, const brenik::h264_vui_parameters& vui,
          const pic_timing_lengths& lengths)
{
    const pic_timing_lengths standard = standard_lengths(vui);
    if (vui.nal_hrd_parameters_present_flag || vui.vcl_hrd_parameters_present_flag) {
        p.u(lengths.cpb_removal_delay, "cpb_removal_delay", timing.cpb_removal_delay,
            length_note(lengths.cpb_removal_delay, standard.cpb_removal_delay));
        p.u(lengths.dpb_output_delay, "dpb_output_delay", timing.dpb_output_delay,
            length_note(lengths.dpb_output_delay, standard.dpb_output_delay));
    }
    if (!vui.pic_struct_present_flag)
        return;
    p.u(4, "pic_struct", timing.pic_struct, timing.pic_struct_to_str());
    for (std::size_t i = 0; i < timing.timestamps.size(); ++i) {
        p.flag({"clock_timestamp_flag", i}, timing.timestamps[i].clock_timestamp_flag);
        if (timing.timestamps[i].clock_timestamp_flag)
            show_timestamp(p, i, timing.timestamps[i], lengths.time_offset);
    }
}

void show(field_sink& sink, const walked_pic_timing& timing, const walked_message& message)
{
    if (message.sps == nullptr)
        return;
    const brenik::h264_vui_parameters& vui = message.sps->vui;
    field_printer as_read(sink, last_known_bit(message.outcome));
    show(as_read, timing.read, vui, library_lengths(vui));
    if (!timing.standard)
        return;
    sink.open("as_h264_reads_it", "= as H.264 reads it");
    field_printer by_standard(sink, last_known_bit(timing.standard->outcome));
    show(by_standard, timing.standard->read, vui, standard_lengths(vui));
    sink.close();
}

// H.264 D.1.4, pan_scan_rect()
void show(field_printer& p, const brenik::h264_nal_sei_pan_scan_rect& pan_scan, const walked_message&)
{
    p.ue("pan_scan_rect_id", pan_scan.pan_scan_rect_id);
    p.flag("pan_scan_rect_cancel_flag", pan_scan.pan_scan_rect_cancel_flag);
    if (pan_scan.pan_scan_rect_cancel_flag)
        return;
    p.ue("pan_scan_cnt_minus1", pan_scan.pan_scan_cnt_minus1);
    for (std::size_t i = 0; i < pan_scan.rects.size(); ++i) {
        p.se({"pan_scan_rect_left_offset", i}, pan_scan.rects[i].pan_scan_rect_left_offset);
        p.se({"pan_scan_rect_right_offset", i}, pan_scan.rects[i].pan_scan_rect_right_offset);
        p.se({"pan_scan_rect_top_offset", i}, pan_scan.rects[i].pan_scan_rect_top_offset);
        p.se({"pan_scan_rect_bottom_offset", i}, pan_scan.rects[i].pan_scan_rect_bottom_offset);
    }
    p.ue("pan_scan_rect_repetition_period", pan_scan.pan_scan_rect_repetition_period);
}

// A payload whose syntax is not read
void show(field_printer& p, std::monostate, const walked_message& message)
{
    if (!message.payload.empty())
        p.bytes("payload", message.payload);
}

// H.264 D.1.7, user_data_unregistered()
void show(field_printer& p, const brenik::h264_nal_sei_user_data_unreg& user_data, const walked_message& message)
{
    if (user_data.uuid == nullptr)
        return show(p, std::monostate(), message);
    const std::string_view name = brenik::h264_uuid_to_str(*user_data.uuid);
    p.words("uuid_iso_iec_11578", uuid_text(*user_data.uuid), name);
    const rbsp_bytes data(user_data.payload, user_data.payload_fence);
    if (!data.empty())
        p.bytes("user_data", data, text_of(data));
}

// H.264 D.1.8, recovery_point()
void show(field_printer& p, const brenik::h264_nal_sei_recovery_point& recovery, const walked_message&)
{
    p.ue("recovery_frame_cnt", recovery.recovery_frame_cnt);
    p.flag("exact_match_flag", recovery.exact_match_flag);
    p.flag("broken_link_flag", recovery.broken_link_flag);
    p.u(2, "changing_slice_group_idc", recovery.changing_slice_group_idc);
}

template <typename Payload>
void show(field_sink& sink, const Payload& payload, const walked_message& message)
{
    field_printer printer(sink, last_known_bit(message.outcome));
    show(printer, payload, message);
}

std::string heading_of(const walked_message& message, std::string_view name)
{
    return fmt::format("sei_message payloadType {}{}, payloadSize {}{}", static_cast<std::uint32_t>(message.type),
                       name.empty() ? "" : fmt::format(" ({})", name), message.stated_size,
                       message.truncated ? fmt::format(", truncated to {}", message.payload.size()) : "");
}

void tell_heading(field_sink& sink, const walked_message& message, std::string_view name)
{
    sink.told({"payloadType", std::uint64_t{message.type}});
    sink.told({"name", name.empty() ? field_value(nullptr) : field_value(name)});
    sink.told({"payloadSize", std::uint64_t{message.stated_size}});
    sink.told({"truncated_to", message.truncated ? field_value(std::uint64_t{message.payload.size()}) : nullptr});
    sink.told({"valid", problem_of(message).empty()});
}

} // namespace

// H.264 7.3.2.3.1, sei_message()
void show_messages(field_sink& sink, const walked_sei& sei)
{
    for (std::size_t i = 0; i < sei.messages.size(); ++i) {
        const walked_message& message = sei.messages[i];
        const std::string_view name = brenik::h264_nal_sei_payload_type_to_str(message.type);
        sink.open({"sei_message", i}, heading_of(message, name));
        tell_heading(sink, message, name);
        std::visit([&](const auto& payload) { show(sink, payload, message); }, message.syntax);
        sink.close();
    }
}

} // namespace orv_h264
