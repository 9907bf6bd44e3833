// Units for the tasks of the syntax library.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <vector>

namespace bench {

/// High profile at 1920x1080, every group of VUI parameters, one set of HRD parameters.
orv_utils_v4::h264::seq_parameter_set_rbsp sample_sps();
orv_utils_v4::h264::pic_parameter_set_rbsp sample_pps();

/// As bytes without emulation prevention, the header byte first. The slice is a P slice of no reference picture.
const std::vector<unsigned char>& sps_sample();
const std::vector<unsigned char>& pps_sample();
const std::vector<unsigned char>& slice_sample();

} // namespace bench
