// Streams of slices behind their parameter sets, whose first unit is 2.
#pragma once

#include "support/made_stream.h"

#include <initializer_list>
#include <vector>

namespace support {

using namespace orv_utils_v4::h264;

inline std::vector<unsigned char> slices_of(const seq_parameter_set_data& of_sps,
                                            std::initializer_list<made_slice> slices)
{
    made_stream stream(of_sps);
    stream.add_sets();
    for (const made_slice& slice : slices)
        stream.add(slice);
    return stream.bytes;
}

inline seq_parameter_set_data sps_of_references(std::uint32_t max_num_ref_frames)
{
    seq_parameter_set_data made = sps_data();
    made.max_num_ref_frames = max_num_ref_frames;
    return made;
}

/// Likewise, with fields.
inline seq_parameter_set_data sps_of_fields(std::uint32_t max_num_ref_frames)
{
    seq_parameter_set_data made = sps_of_references(max_num_ref_frames);
    made.frame_mbs_only_flag = false;
    return made;
}

/// Likewise of frames, of which some may be missing.
inline seq_parameter_set_data sps_of_gaps(std::uint32_t max_num_ref_frames)
{
    seq_parameter_set_data made = sps_of_references(max_num_ref_frames);
    made.gaps_in_frame_num_value_allowed_flag = true;
    return made;
}

} // namespace support
