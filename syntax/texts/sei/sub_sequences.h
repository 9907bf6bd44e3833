// The texts of the SEI payloads on sub-sequences, H.264 clauses D.1.12 to D.1.14.
#pragma once

#include "texts/sei/from_sets.h"

#include <orv-utils-v4/h264_syntax/sei/sub_sequences.h>

namespace orv_utils_v4::h264 {

// H.264 D.1.12
template <class Coder>
void code(Coder& c, in<Coder, sub_seq_info>& x, const sei_context& context)
{
    const auto here = c.structure("sub_seq_info");
    c.ue("sub_seq_layer_num", x.sub_seq_layer_num, 0, 255);
    c.ue("sub_seq_id", x.sub_seq_id, 0, 65535);
    c.flag("first_ref_pic_flag", x.first_ref_pic_flag);
    c.flag("leading_non_ref_pic_flag", x.leading_non_ref_pic_flag);
    c.flag("last_pic_flag", x.last_pic_flag);
    c.flag("sub_seq_frame_num_flag", x.sub_seq_frame_num_flag);
    if (x.sub_seq_frame_num_flag)
        c.ue("sub_seq_frame_num", x.sub_seq_frame_num, 0, highest_frame_num(context.sps));
}

// H.264 D.1.13
template <class Coder>
void code(Coder& c, in<Coder, sub_seq_layer_characteristics>& x)
{
    const auto here = c.structure("sub_seq_layer_characteristics");
    c.ue_bound("num_sub_seq_layers_minus1", x.num_sub_seq_layers_minus1, 0, 255);
    c.count("accurate_statistics_flag", x.layers, std::uint64_t{x.num_sub_seq_layers_minus1} + 1);
    for (std::size_t layer = 0; layer < x.layers.size() && c.going(); ++layer) {
        c.flag("accurate_statistics_flag", x.layers[layer].accurate_statistics_flag);
        c.u(16, "average_bit_rate", x.layers[layer].average_bit_rate);
        c.u(16, "average_frame_rate", x.layers[layer].average_frame_rate);
    }
}

// H.264 D.1.14
template <class Coder>
void code(Coder& c, in<Coder, sub_seq_characteristics>& x)
{
    const auto here = c.structure("sub_seq_characteristics");
    c.ue("sub_seq_layer_num", x.sub_seq_layer_num, 0, 255);
    c.ue("sub_seq_id", x.sub_seq_id, 0, 65535);
    c.flag("duration_flag", x.duration_flag);
    if (x.duration_flag)
        c.u(32, "sub_seq_duration", x.sub_seq_duration);
    c.flag("average_rate_flag", x.average_rate_flag);
    if (x.average_rate_flag) {
        c.flag("accurate_statistics_flag", x.accurate_statistics_flag);
        c.u(16, "average_bit_rate", x.average_bit_rate);
        c.u(16, "average_frame_rate", x.average_frame_rate);
    }
    c.ue_bound("num_referenced_subseqs", x.num_referenced_subseqs, 0, 255);
    c.count("ref_sub_seq_layer_num", x.referenced_subseqs, x.num_referenced_subseqs);
    for (std::size_t n = 0; n < x.referenced_subseqs.size() && c.going(); ++n) {
        c.ue("ref_sub_seq_layer_num", x.referenced_subseqs[n].ref_sub_seq_layer_num, 0, 255);
        c.ue("ref_sub_seq_id", x.referenced_subseqs[n].ref_sub_seq_id, 0, 65535);
        c.flag("ref_sub_seq_direction", x.referenced_subseqs[n].ref_sub_seq_direction);
    }
}

} // namespace orv_utils_v4::h264
