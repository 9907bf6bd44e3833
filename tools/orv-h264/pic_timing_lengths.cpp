#include "pic_timing_lengths.h"

#include <algorithm>

namespace orv_h264 {

namespace {

// H.264 E.2.1
bool CpbDpbDelaysPresentFlag(const brenik::h264_vui_parameters& vui)
{
    return vui.nal_hrd_parameters_present_flag || vui.vcl_hrd_parameters_present_flag;
}

std::uint8_t length_of(std::uint8_t length_minus1)
{
    return static_cast<std::uint8_t>(length_minus1 + 1);
}

} // namespace

pic_timing_lengths library_lengths(const brenik::h264_vui_parameters& vui)
{
    const std::uint8_t delay = length_of(std::max(vui.nal_hrd.initial_cpb_removal_delay_length_minus1,
                                                  vui.vcl_hrd.initial_cpb_removal_delay_length_minus1));
    return {delay, delay, std::max(vui.nal_hrd.time_offset_length, vui.vcl_hrd.time_offset_length)};
}

pic_timing_lengths standard_lengths(const brenik::h264_vui_parameters& vui)
{
    constexpr std::uint8_t inferred = 24;
    if (!CpbDpbDelaysPresentFlag(vui))
        return {inferred, inferred, inferred};
    const brenik::h264_hrd_parameters& hrd = vui.nal_hrd_parameters_present_flag ? vui.nal_hrd : vui.vcl_hrd;
    return {length_of(hrd.cpb_removal_delay_length_minus1), length_of(hrd.dpb_output_delay_length_minus1),
            hrd.time_offset_length};
}

bool parse_by_standard(brenik::h264_nal_sei_pic_timing& timing, brenik::h2645_common_bitreader& br,
                       const brenik::h264_vui_parameters& vui)
{
    const pic_timing_lengths lengths = standard_lengths(vui);
    if (CpbDpbDelaysPresentFlag(vui)) {
        timing.cpb_removal_delay = br.get_wide(lengths.cpb_removal_delay);
        timing.dpb_output_delay = br.get_wide(lengths.dpb_output_delay);
    }
    // For the rest, an SPS that has no delays.
    brenik::h264_nal_sps sps;
    sps.vui.pic_struct_present_flag = vui.pic_struct_present_flag;
    sps.vui.nal_hrd.time_offset_length = lengths.time_offset;
    return timing.parse(br, sps);
}

} // namespace orv_h264
