#include "support/planted_slices.h"
#include "support/planted_violation.h"

namespace {

using namespace support;

/// Of 12 macroblocks at level 3, that tells all of its load: 10 Mbit in a second, and a rate of `time_scale` / 2 Hz.
seq_parameter_set_data sps_of_load(std::uint32_t time_scale)
{
    seq_parameter_set_data made = timed_sps_data(0, 24);
    vui_parameters& vui = made.vui_parameters;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 1;
    vui.time_scale = time_scale;
    vui.bitstream_restriction_flag = true;
    vui.log2_max_mv_length_horizontal = 8;
    vui.log2_max_mv_length_vertical = 8;
    vui.max_num_reorder_frames = 0;
    vui.max_dec_frame_buffering = 1;
    vui.nal_hrd_parameters.bit_rate_value_minus1[0] = 10'000'000 / 64 - 1;
    vui.nal_hrd_parameters.cpb_size_value_minus1[0] = 10'000'000 / 16 - 1;
    return made;
}

sei_message timing_of(std::uint32_t cpb_removal_delay, std::uint32_t dpb_output_delay)
{
    pic_timing timing;
    timing.cpb_removal_delay = cpb_removal_delay;
    timing.dpb_output_delay = dpb_output_delay;
    return message_of(1, timing);
}

/// An IDR picture that is removed at once and output after 78 ticks of a millisecond, then another picture with this
/// timing and so many bytes of data.
std::vector<unsigned char> in_milliseconds(std::uint32_t removal_delay, std::uint32_t output_delay, std::size_t data)
{
    buffering_period period;
    period.nal.resize(1);
    period.nal[0].initial_cpb_removal_delay = 90000;
    seq_parameter_set_data made = sps_of_load(1000);
    made.vui_parameters.max_dec_frame_buffering = 4;
    made_stream stream(made);
    stream.add_sets()
        .add(unit_of(6, orv_utils_v4::h264::sei_rbsp{{message_of(0, period), timing_of(0, 78)}}))
        .add(idr());
    stream.add(unit_of(6, orv_utils_v4::h264::sei_rbsp{{timing_of(removal_delay, output_delay)}}))
        .add_large(reference(1), data);
    return stream.bytes;
}

/// An IDR picture of 12 macroblocks at this level, with so many bytes of data.
std::vector<unsigned char> of_bytes(std::uint8_t level_idc, std::size_t data)
{
    seq_parameter_set_data made = sps_data();
    made.level_idc = level_idc;
    made_stream stream(made);
    stream.add_sets().add_large(idr(), data);
    return stream.bytes;
}

/// An IDR picture of 12 macroblocks at level 3, in so many slices.
std::vector<unsigned char> of_slices(std::uint8_t profile_idc, std::uint32_t count)
{
    seq_parameter_set_data made = sps_data();
    made.profile_idc = profile_idc;
    made_stream stream(made);
    stream.add_sets();
    for (std::uint32_t i = 0; i < count; ++i)
        stream.add(from_macroblock(idr(), i));
    return stream.bytes;
}

/// The sets alone, with a load for level 1 at 25 Hz, which `change` makes what it shall be.
template <class Change>
std::vector<unsigned char> with_load(Change change)
{
    seq_parameter_set_data made = sps_of_load(50);
    made.vui_parameters.nal_hrd_parameters.bit_rate_value_minus1[0] = 999;
    made.vui_parameters.nal_hrd_parameters.cpb_size_value_minus1[0] = 99;
    change(made);
    made_stream stream(made);
    stream.add_sets();
    return stream.bytes;
}

constexpr planted_violation planted[] = {
    {"a picture is removed a millisecond behind another one", "level-decoding-rate@5",
     [] { return in_milliseconds(1, 87, 10); }},
    {"a picture is output a millisecond behind another one", "level-output-rate@5",
     [] { return in_milliseconds(40, 39, 10); }},
    {"a picture is removed and output 6 milliseconds behind another one", "",
     [] { return in_milliseconds(6, 78, 10); }},
    {"50000 bytes in 6 milliseconds", "level-picture-compressed@5", [] { return in_milliseconds(6, 78, 50000); }},
    {"40000 bytes in 6 milliseconds", "", [] { return in_milliseconds(6, 78, 40000); }},
    {"3000 bytes for 12 macroblocks at level 1", "level-picture-compressed@2", [] { return of_bytes(10, 3000); }},
    {"2200 bytes for 12 macroblocks at level 1", "", [] { return of_bytes(10, 2200); }},
    {"3000 bytes for 12 macroblocks at level 3", "", [] { return of_bytes(30, 3000); }},
    {"11 slices at level 3", "level-slices-of-picture@2", [] { return of_slices(77, 11); }},
    {"10 slices at level 3", "", [] { return of_slices(77, 10); }},
    {"11 slices at level 3 of Baseline", "", [] { return of_slices(66, 11); }},
    {"level 1.1 for 12 macroblocks at 25 Hz", "level-lower-suffices@0 level_idc",
     [] { return with_load([](seq_parameter_set_data& sps) { sps.level_idc = 11; }); }},
    {"level 1 for 12 macroblocks at 25 Hz", "",
     [] { return with_load([](seq_parameter_set_data& sps) { sps.level_idc = 10; }); }},
    {"level 1.1 for 12 macroblocks at 150 Hz", "",
     [] {
         return with_load([](seq_parameter_set_data& sps) {
             sps.level_idc = 11;
             sps.vui_parameters.time_scale = 300;
         });
     }},
    {"level 1.1 for a bit rate that level 1 does not have", "",
     [] {
         return with_load([](seq_parameter_set_data& sps) {
             sps.level_idc = 11;
             sps.vui_parameters.nal_hrd_parameters.bit_rate_value_minus1[0] = 1999;
         });
     }},
    {"level 1.1 for a buffer that level 1 does not have", "",
     [] {
         return with_load([](seq_parameter_set_data& sps) {
             sps.level_idc = 11;
             sps.pic_width_in_mbs_minus1 = 10;
             sps.pic_height_in_map_units_minus1 = 8;
             sps.vui_parameters.time_scale = 20;
             sps.vui_parameters.max_dec_frame_buffering = 5;
         });
     }},
    {"level 1.1 where no HRD tells the bit rate", "",
     [] {
         return with_load([](seq_parameter_set_data& sps) {
             sps.level_idc = 11;
             sps.vui_parameters.nal_hrd_parameters_present_flag = false;
         });
     }},
    {"direct_8x8_inference_flag 0 at level 3", "level-direct-inference@0 direct_8x8_inference_flag",
     [] {
         seq_parameter_set_data made = sps_data();
         made.direct_8x8_inference_flag = false;
         return slices_of(made, {idr()});
     }},
    {"direct_8x8_inference_flag 0 at level 2.2", "",
     [] {
         seq_parameter_set_data made = sps_data();
         made.level_idc = 22;
         made.direct_8x8_inference_flag = false;
         return slices_of(made, {idr()});
     }},
    {"direct_8x8_inference_flag 0 at level 3 of Baseline", "",
     [] {
         seq_parameter_set_data made = sps_data();
         made.profile_idc = 66;
         made.direct_8x8_inference_flag = false;
         return slices_of(made, {idr()});
     }},
};

const support::planted_table here("levels", planted);

} // namespace
