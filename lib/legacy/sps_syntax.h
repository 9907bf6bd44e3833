// The syntax of the SPS for the legacy interface, written once for readers with and without a known end.
#pragma once

#include "legacy_bits.h"

#include <orv-utils-v4/h264_legacy/sps.h>

namespace orv_utils_v4::legacy {

/// seq_parameter_set_data() and vui_parameters() up to pic_struct_present_flag. A count loop ends with the data.
void read_seq_parameter_set_data(h264_sps& sps, const legacy_bits& bits);

/// The present flag and, behind it, scaling_list().
void skip_scaling_list(const legacy_bits& bits, unsigned int size);

/// hrd_parameters()
void read_hrd_lengths(h264_sps& sps, const legacy_bits& bits);

} // namespace orv_utils_v4::legacy
