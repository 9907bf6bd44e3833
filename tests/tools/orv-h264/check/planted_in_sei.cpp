#include "support/hrd_stream.h"
#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;
using bytes = std::vector<unsigned char>;

/// pic_struct_present_flag alone.
seq_parameter_set_data pic_struct_sps()
{
    seq_parameter_set_data sps = hrd_sps();
    vui_parameters& vui = sps.vui_parameters;
    vui.nal_hrd_parameters_present_flag = false;
    vui.pic_struct_present_flag = true;
    return sps;
}

seq_parameter_set_data without_tick()
{
    seq_parameter_set_data sps = hrd_sps();
    sps.vui_parameters.timing_info_present_flag = false;
    sps.vui_parameters.fixed_frame_rate_flag = false;
    return sps;
}

/// One IDR picture with this pic_struct, of a frame.
bytes with_pic_struct(unsigned pic_struct, bool fixed_frame_rate_flag = true)
{
    seq_parameter_set_data sps = pic_struct_sps();
    sps.vui_parameters.fixed_frame_rate_flag = fixed_frame_rate_flag;
    sps.vui_parameters.low_delay_hrd_flag = !fixed_frame_rate_flag;
    hrd_stream stream(sps);
    return stream.picture(idr(), {.pic_struct = static_cast<std::uint8_t>(pic_struct), .bytes = 0}).bytes;
}

/// A frame whose bottom field comes one count before its top field.
bytes with_bottom_first(unsigned pic_struct)
{
    seq_parameter_set_data sps = pic_struct_sps();
    sps.pic_order_cnt_type = 0;
    hrd_stream stream(sps);
    stream.pps().bottom_field_pic_order_in_frame_present_flag = true;
    made_slice slice = idr();
    slice.header.delta_pic_order_cnt_bottom = -1;
    return stream.picture(slice, {.pic_struct = static_cast<std::uint8_t>(pic_struct), .bytes = 0}).bytes;
}

bytes with_clock(unsigned n_frames)
{
    pic_timing timing;
    timing.timestamps[0].clock_timestamp_flag = true;
    timing.timestamps[0].n_frames = static_cast<std::uint8_t>(n_frames);
    hrd_stream stream(pic_struct_sps());
    return stream.message(1, timing).picture(idr(), {.bytes = 0, .timing = false}).bytes;
}

/// One IDR picture with this message, in a stream without times.
template <class Payload>
bytes with_message(std::uint32_t payload_type, const Payload& payload)
{
    hrd_stream stream(sps_data());
    return stream.message(payload_type, payload).picture(idr(), {.bytes = 0, .timing = false}).bytes;
}

bytes with_light_levels(std::uint16_t first, std::uint16_t second, const made_slice& second_picture)
{
    hrd_stream stream(sps_data());
    stream.message(144, content_light_level_info{first, 0}).picture(idr(), {.bytes = 0, .timing = false});
    stream.message(144, content_light_level_info{second, 0}).picture(second_picture, {.bytes = 0, .timing = false});
    return stream.bytes;
}

bytes with_mastering(std::uint32_t max_display_mastering_luminance)
{
    mastering_display_colour_volume volume;
    volume.max_display_mastering_luminance = max_display_mastering_luminance;
    volume.min_display_mastering_luminance = 50;
    return with_message(137, volume);
}

/// A recovery point at the second picture, with a buffering period or without.
bytes with_recovery_point(bool period)
{
    hrd_stream stream;
    stream.period().picture(idr());
    if (period)
        stream.period();
    return stream.message(6, recovery_point()).picture(reference(1)).bytes;
}

bytes with_rate(std::uint32_t time_scale, std::uint32_t num_units_in_tick)
{
    seq_parameter_set_data sps = hrd_sps();
    sps.vui_parameters.nal_hrd_parameters_present_flag = false;
    sps.vui_parameters.time_scale = time_scale;
    sps.vui_parameters.num_units_in_tick = num_units_in_tick;
    return made_stream(sps).add_sets().add(idr()).bytes;
}

constexpr planted_violation planted[] = {
    {"a recovery point before the buffering period", "sei-period-first@2",
     [] {
         hrd_stream stream;
         return stream.message(6, recovery_point()).period().picture(idr()).bytes;
     }},
    {"a buffering period without HRD parameters", "sei-period-has-hrd@2",
     [] {
         hrd_stream stream(sps_data());
         return stream.period().picture(idr(), {.bytes = 0, .timing = false}).bytes;
     }},
    {"a buffering period of another SPS", "sei-period-names-active-set@3 seq_parameter_set_id",
     [] {
         hrd_stream stream;
         seq_parameter_set_rbsp other_sps{hrd_sps()};
         other_sps.seq_parameter_set_data.seq_parameter_set_id = 1;
         stream.sets.sets.sps[1] = &other_sps;
         stream.add_sets().add(unit_of(7, other_sps));
         buffering_period named;
         named.seq_parameter_set_id = 1;
         named.nal.resize(1);
         named.nal[0] = {hrd_first_delay, 0};
         return stream.message(0, named).picture(idr()).bytes;
     }},
    {"an IDR picture without a buffering period", "sei-period-with-idr@0",
     [] {
         hrd_stream stream;
         return stream.picture(idr()).bytes;
     }},
    {"a recovery point without a buffering period", "sei-period-with-recovery-point@5",
     [] { return with_recovery_point(false); }},
    {"a recovery point with a buffering period", "", [] { return with_recovery_point(true); }},
    {"a picture without a picture timing", "sei-timing-with-each-picture@5",
     [] {
         hrd_stream stream;
         return stream.period().picture(idr()).picture(reference(1), {.timing = false}).bytes;
     }},
    {"a picture without a pic_struct", "sei-timing-with-each-picture@0",
     [] {
         hrd_stream stream(pic_struct_sps());
         return stream.picture(idr(), {.bytes = 0, .timing = false}).bytes;
     }},
    {"a picture timing twice", "sei-timing-once@2",
     [] {
         hrd_stream stream;
         return stream.period().message(1, pic_timing()).picture(idr()).bytes;
     }},
    {"a picture timing for nothing", "sei-timing-has-use@2", [] { return with_message(1, pic_timing()); }},
    {"changing_slice_group_idc 1", "sei-recovery-has-slice-groups@2 changing_slice_group_idc",
     [] {
         recovery_point point;
         point.changing_slice_group_idc = 1;
         return with_message(6, point);
     }},
    {"a mastering display that is never bright", "sei-mastering-luminances@2 min_display_mastering_luminance",
     [] { return with_mastering(50); }},
    {"a mastering display", "", [] { return with_mastering(51); }},
    {"a light level that changes", "sei-same-in-sequence@4", [] { return with_light_levels(100, 101, reference(1)); }},
    {"a light level that stays", "", [] { return with_light_levels(100, 100, reference(1)); }},
    {"a light level that changes with the sequence", "", [] { return with_light_levels(100, 101, idr(1)); }},
    {"the pic_struct of a field", "sei-pic-struct-fits-picture@2 pic_struct", [] { return with_pic_struct(2); }},
    {"the pic_struct of a frame", "", [] { return with_pic_struct(0); }},
    {"the top field first by pic_struct alone", "sei-pic-struct-field-order@2 pic_struct",
     [] { return with_bottom_first(3); }},
    {"the bottom field first", "", [] { return with_bottom_first(4); }},
    {"a frame doubled at any rate", "sei-pic-struct-at-fixed-rate@2 pic_struct",
     [] { return with_pic_struct(7, false); }},
    {"a frame doubled at a fixed rate", "", [] { return with_pic_struct(7); }},
    {"frame 50 of a second of 50 ticks", "sei-clock-counts-frames@2 n_frames", [] { return with_clock(50); }},
    {"frame 49 of it", "", [] { return with_clock(49); }},
    {"HRD parameters without a tick", "vui-hrd-has-tick@0 timing_info_present_flag",
     [] {
         seq_parameter_set_data sps = without_tick();
         hrd_stream stream(sps);
         return stream.period().picture(idr()).bytes;
     }},
    {"29.97 frames a second", "vui-rate-exact@0 time_scale", [] { return with_rate(5994, 100); }},
    {"30000/1001 frames a second", "", [] { return with_rate(60000, 1001); }},
};

const support::planted_table here("sei", planted);

} // namespace
