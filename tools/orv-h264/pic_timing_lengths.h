// The lengths of the fields of a picture timing SEI message, H.264 D.1.3: those that the library reads with, one for
// both delays, and those of the standard.
#pragma once

#include <orv-utils-v4/h264.h>

#include <cstdint>

namespace orv_h264 {

/// In bits.
struct pic_timing_lengths {
    std::uint8_t cpb_removal_delay = 0;
    std::uint8_t dpb_output_delay = 0;
    std::uint8_t time_offset = 0;
};

pic_timing_lengths library_lengths(const brenik::h264_vui_parameters& vui);

/// H.264 D.1.3; without HRD parameters, as E.2.2 infers them.
pic_timing_lengths standard_lengths(const brenik::h264_vui_parameters& vui);

/// Reads the message with the standard's lengths.
bool parse_by_standard(brenik::h264_nal_sei_pic_timing& timing, brenik::h2645_common_bitreader& br,
                       const brenik::h264_vui_parameters& vui);

} // namespace orv_h264
