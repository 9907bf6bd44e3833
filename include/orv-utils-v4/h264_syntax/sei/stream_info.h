/// @file
/// What scalability_info(), view_scalability_info() and mvcd_view_scalability_info() have in common: the parameter sets
/// that a layer or an operation point needs, and its restrictions (H.264 clauses G.13.1.1, H.13.1.3 and I.13.1).
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// The ids of parameter sets. The first of each list is an id, the others are differences.
struct required_parameter_sets {
    std::uint32_t num_seq_parameter_set_minus1 = 0; ///< 0 to 31
    std::vector<std::uint32_t> seq_parameter_set_id_delta;
    std::uint32_t num_subset_seq_parameter_set_minus1 = 0; ///< 0 to 31
    std::vector<std::uint32_t> subset_seq_parameter_set_id_delta;
    std::uint32_t num_pic_parameter_set_minus1 = 0; ///< 0 to 255
    std::vector<std::uint32_t> pic_parameter_set_id_delta;

    friend ORV_UTILS_V4_EXPORT bool operator==(const required_parameter_sets&, const required_parameter_sets&);
};

/// The restrictions that vui_parameters() has too, clause E.2.1.
struct bitstream_restriction_info {
    bool motion_vectors_over_pic_boundaries_flag = true;
    std::uint32_t max_bytes_per_pic_denom = 2;        ///< 0 to 16
    std::uint32_t max_bits_per_mb_denom = 1;          ///< 0 to 16
    std::uint32_t log2_max_mv_length_horizontal = 15; ///< 0 to 15; 16 in older editions
    std::uint32_t log2_max_mv_length_vertical = 15;   ///< 0 to 15; 16 in older editions
    std::uint32_t max_num_reorder_frames = 0;         ///< num_reorder_frames in older editions
    std::uint32_t max_dec_frame_buffering = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const bitstream_restriction_info&, const bitstream_restriction_info&);
};

} // namespace orv_utils_v4::h264
