// What the texts of scalability_info(), view_scalability_info() and mvcd_view_scalability_info() have in common: tables
// of H.264 G.13.1.1, H.13.1.3 and I.13.1 from num_seq_parameter_set_minus1 and from
// motion_vectors_over_pic_boundaries_flag.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/sei/stream_info.h>

namespace orv_utils_v4::h264 {

/// A list of ue(v) with the indices i and j.
template <class Coder, class List>
void code_ue_list(Coder& c, const char* name, std::uint32_t i, List& list, std::uint64_t entries, std::int64_t highest)
{
    c.count({name, i}, list, entries);
    for (std::uint32_t j = 0; j < entries && c.going(); ++j)
        c.ue({name, i, j}, list[j], 0, highest);
}

// H.264 G.13.1.1, H.13.1.3 and I.13.1, with parameter_sets_info_present_flag[ i ]
template <class Coder>
void code(Coder& c, in<Coder, required_parameter_sets>& x, std::uint32_t i)
{
    c.ue({"num_seq_parameter_set_minus1", i}, x.num_seq_parameter_set_minus1, 0, 31);
    code_ue_list(c, "seq_parameter_set_id_delta", i, x.seq_parameter_set_id_delta,
                 std::uint64_t{x.num_seq_parameter_set_minus1} + 1, 31);
    c.ue({"num_subset_seq_parameter_set_minus1", i}, x.num_subset_seq_parameter_set_minus1, 0, 31);
    code_ue_list(c, "subset_seq_parameter_set_id_delta", i, x.subset_seq_parameter_set_id_delta,
                 std::uint64_t{x.num_subset_seq_parameter_set_minus1} + 1, 31);
    c.ue({"num_pic_parameter_set_minus1", i}, x.num_pic_parameter_set_minus1, 0, 255);
    code_ue_list(c, "pic_parameter_set_id_delta", i, x.pic_parameter_set_id_delta,
                 std::uint64_t{x.num_pic_parameter_set_minus1} + 1, 255);
}

// H.264 G.13.1.1, H.13.1.3 and I.13.1, with bitstream_restriction_info_present_flag[ i ]
template <class Coder>
void code(Coder& c, in<Coder, bitstream_restriction_info>& x, std::uint32_t i)
{
    c.flag({"motion_vectors_over_pic_boundaries_flag", i}, x.motion_vectors_over_pic_boundaries_flag);
    c.ue({"max_bytes_per_pic_denom", i}, x.max_bytes_per_pic_denom, 0, 16);
    c.ue({"max_bits_per_mb_denom", i}, x.max_bits_per_mb_denom, 0, 16);
    c.ue({"log2_max_mv_length_horizontal", i}, x.log2_max_mv_length_horizontal, 0, 15);
    c.ue({"log2_max_mv_length_vertical", i}, x.log2_max_mv_length_vertical, 0, 15);
    c.ue({"max_num_reorder_frames", i}, x.max_num_reorder_frames, 0, 16);
    c.ue({"max_dec_frame_buffering", i}, x.max_dec_frame_buffering, 0, 16);
}

} // namespace orv_utils_v4::h264
