// What the tables of SEI payloads take from elsewhere.
#pragma once

#include <orv-utils-v4/h264_syntax/parameter_sets.h>

#include <cstddef>

namespace orv_utils_v4::h264 {

struct sei_context {
    const parameter_sets& sets;
    const seq_parameter_set_data* sps = nullptr;             ///< the active SPS; null when none is known
    const pic_parameter_set_rbsp* pps = nullptr;             ///< the active PPS; null when none is known
    const subset_seq_parameter_set_rbsp* mvcd_sps = nullptr; ///< the latest subset SPS with an MVCD extension, or null
    unsigned nesting = 0;                                    ///< how many nesting messages the payload lies in
    std::size_t* messages = nullptr;                         ///< those of the unit so far, nested ones too
};

} // namespace orv_utils_v4::h264
