#include "support/hrd_stream.h"
#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;
using bytes = std::vector<unsigned char>;

seq_parameter_set_data without_fixed_rate()
{
    seq_parameter_set_data sps = hrd_sps();
    sps.vui_parameters.fixed_frame_rate_flag = false;
    return sps;
}

seq_parameter_set_data with_buffer_of(std::uint32_t frames)
{
    seq_parameter_set_data sps = hrd_sps();
    sps.max_num_ref_frames = frames;
    sps.vui_parameters.bitstream_restriction_flag = true;
    sps.level_idc = 11; // the lowest one for the bit rate
    sps.vui_parameters.max_num_reorder_frames = 0;
    sps.vui_parameters.max_dec_frame_buffering = frames;
    sps.vui_parameters.log2_max_mv_length_vertical = 8;
    return sps;
}

/// VCL alone: filler data count, SEI does not.
seq_parameter_set_data vcl_sps()
{
    seq_parameter_set_data sps = variable_rate_sps();
    vui_parameters& vui = sps.vui_parameters;
    vui.vcl_hrd_parameters_present_flag = true;
    vui.vcl_hrd_parameters = vui.nal_hrd_parameters;
    vui.nal_hrd_parameters_present_flag = false;
    return sps;
}

seq_parameter_set_data low_delay_sps()
{
    seq_parameter_set_data sps = variable_rate_sps();
    sps.vui_parameters.fixed_frame_rate_flag = false;
    sps.vui_parameters.low_delay_hrd_flag = true;
    return sps;
}

seq_parameter_set_data field_sps()
{
    seq_parameter_set_data sps = without_fixed_rate();
    sps.frame_mbs_only_flag = false;
    sps.pic_height_in_map_units_minus1 = 1;
    return sps;
}

/// Five pictures, of which the fourth, which units 11 on are, has this size.
bytes five_pictures(const seq_parameter_set_data& sps, std::size_t size)
{
    hrd_stream stream(sps);
    stream.period().picture(idr()).pictures(1, 3);
    stream.picture(reference(3), {.bytes = size}).picture(reference(4), {.bytes = 0});
    return stream.bytes;
}

/// Three pictures, the last of this size, and a second period.
bytes with_second_period(const seq_parameter_set_data& sps, std::size_t size)
{
    hrd_stream stream(sps);
    stream.period().picture(idr()).picture(reference(1)).picture(reference(2), {.bytes = size});
    return stream.period().picture(reference(3)).bytes;
}

/// The same units behind lengths.
bytes in_lengths(const made_stream& stream)
{
    bytes framed;
    for (const bytes& unit : stream.units) {
        framed.insert(framed.end(), {0, 0});
        framed.push_back(static_cast<unsigned char>(unit.size() >> 8));
        framed.push_back(static_cast<unsigned char>(unit.size()));
        framed.insert(framed.end(), unit.begin(), unit.end());
    }
    return framed;
}

/// Three pictures, the last of this size, and a second period, behind lengths.
bytes with_second_period_in_lengths(std::size_t size)
{
    hrd_stream stream;
    stream.period().picture(idr()).picture(reference(1)).picture(reference(2), {.bytes = size});
    return in_lengths(stream.period().picture(reference(3)));
}

/// Twelve pictures, the first of this size, with a buffer that is full when it is removed.
bytes with_full_buffer(std::size_t size)
{
    hrd_stream stream;
    return stream.period(36000).picture(idr(), {.bytes = size}).pictures(1, 12).bytes;
}

/// Two fields that nothing refers to behind an IDR picture, the second one of this dpb_output_delay.
bytes with_second_field(std::uint32_t dpb_output_delay)
{
    hrd_stream stream(field_sps());
    stream.period().picture(idr()).picture(top(other(1)), {.output = 2});
    return stream.picture(bottom(other(1)), {.removal = 3, .output = dpb_output_delay}).bytes;
}

constexpr planted_violation planted[] = {
    {"a constant rate", "", [] { return with_second_period(hrd_sps(), hrd_picture_bytes); }},
    // It is removed at 0.32 s; by then come 80000 bit/s for all but the 0.12 s that the pictures before it take.
    {"2000 bytes in the time for as many", "", [] { return five_pictures(variable_rate_sps(), 2000); }},
    {"a byte more", "hrd-underflow@11", [] { return five_pictures(variable_rate_sps(), 2001); }},
    {"a byte more with low_delay_hrd_flag", "", [] { return five_pictures(low_delay_sps(), 2001); }},
    {"a picture that is small at a variable rate", "", [] { return with_second_period(variable_rate_sps(), 0); }},
    {"a byte that delays the period behind it", "hrd-period-delay-allowed@11 initial_cpb_removal_delay[0]",
     [] { return with_second_period(hrd_sps(), 401); }},
    {"a picture that is a byte small at a constant rate", "hrd-constant-rate-kept@11 initial_cpb_removal_delay[0]",
     [] { return with_second_period(hrd_sps(), 399); }},
    {"a picture that is small, of which not all bits may be there", "",
     [] { return with_second_period_in_lengths(300); }, framing::length_4},
    {"a picture that is large by any count", "hrd-period-delay-allowed@11 initial_cpb_removal_delay[0]",
     [] { return with_second_period_in_lengths(420); }, framing::length_4},
    {"a full buffer", "", [] { return with_full_buffer(hrd_picture_bytes); }},
    // At 0.44 s 4400 bytes have come, of which the first 399 are removed.
    {"4001 bytes in a buffer of 4000", "hrd-overflow@35", [] { return with_full_buffer(399); }},
    {"2000 bytes, of which the VCL HRD counts fewer", "", [] { return five_pictures(vcl_sps(), 2010); }},
    {"as many that it counts", "hrd-underflow@11", [] { return five_pictures(vcl_sps(), 2200); }},
    {"a removal time twice", "hrd-removal-times-rise@8 cpb_removal_delay",
     [] {
         hrd_stream stream(without_fixed_rate());
         stream.period().picture(idr()).picture(reference(1));
         return stream.picture(reference(2), {.removal = 2, .output = 1}).bytes;
     }},
    {"a stream twice", "hrd-removal-times-rise@8 cpb_removal_delay",
     [] {
         hrd_stream stream;
         stream.period().picture(idr()).picture(reference(1));
         return stream.period().picture(idr(1), {.removal = 0}).picture(reference(1)).bytes;
     }},
    {"a counter of removal delays that begins again", "",
     [] {
         seq_parameter_set_data sps = hrd_sps();
         sps.vui_parameters.nal_hrd_parameters.cpb_removal_delay_length_minus1 = 3;
         hrd_stream stream(sps);
         stream.period().picture(idr());
         for (std::uint32_t n = 1; n < 12; ++n)
             stream.picture(reference(n), {.removal = 2 * n % 16});
         return stream.period().picture(reference(12), {.removal = 2 * 12 % 16}).bytes;
     }},
    {"an IDR picture without a buffering period", "sei-period-with-idr@0, hrd-begins-with-period@8",
     [] {
         hrd_stream stream;
         stream.picture(idr()).picture(reference(1)).period().picture(reference(2));
         return stream.bytes;
     }},
    {"another sum of delays", "hrd-delay-sum-constant@5 initial_cpb_removal_delay_offset[0]",
     [] {
         hrd_stream stream(variable_rate_sps());
         return stream.period(18000, 9000).picture(idr()).period(18000, 9001).picture(reference(1)).bytes;
     }},
    {"another sum in another sequence", "",
     [] {
         hrd_stream stream(variable_rate_sps());
         return stream.period(18000, 9000).picture(idr()).period(18000, 9001).picture(idr(1)).bytes;
     }},
    {"an output before that of the picture before", "hrd-output-times-rise@8 dpb_output_delay",
     [] {
         hrd_stream stream(without_fixed_rate());
         stream.period().picture(idr()).picture(reference(1), {.output = 3});
         return stream.picture(reference(2), {.output = 1}).bytes;
     }},
    {"an output a tick late", "vui-fixed-rate-kept@8 dpb_output_delay",
     [] {
         hrd_stream stream;
         stream.period().picture(idr()).picture(reference(1));
         return stream.picture(reference(2), {.output = 1}).bytes;
     }},
    {"a second field with the output time of the first", "hrd-second-field-later@5 dpb_output_delay",
     [] { return with_second_field(1); }},
    {"a second field a tick later", "", [] { return with_second_field(2); }},
    {"a picture that waits without a buffer", "hrd-no-output-delay-without-buffer@2 dpb_output_delay",
     [] {
         hrd_stream stream(with_buffer_of(0));
         return stream.period().picture(idr(), {.output = 2}).bytes;
     }},
    {"two pictures where there is room for one", "hrd-picture-buffer-fits@5 dpb_output_delay",
     [] {
         hrd_stream stream(with_buffer_of(1));
         return stream.period().picture(idr(), {.output = 4}).picture(reference(1), {.output = 4}).bytes;
     }},
    {"a picture that is output when the next one comes", "",
     [] {
         hrd_stream stream(with_buffer_of(1));
         return stream.period().picture(idr(), {.output = 2}).picture(reference(1), {.output = 2}).bytes;
     }},
};

const support::planted_table here("hrd", planted);

} // namespace
