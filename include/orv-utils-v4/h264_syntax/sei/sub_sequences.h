/// @file
/// SEI payloads of H.264 Annex D on sub-sequences, the parts of a stream that others do not need (10 to 12).
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// sub_seq_info(), clauses D.1.12 and D.2.12: payload 10.
struct sub_seq_info {
    std::uint32_t sub_seq_layer_num = 0; ///< 0 to 255
    std::uint32_t sub_seq_id = 0;        ///< 0 to 65535
    bool first_ref_pic_flag = false;
    bool leading_non_ref_pic_flag = false;
    bool last_pic_flag = false;
    bool sub_seq_frame_num_flag = false;
    std::uint32_t sub_seq_frame_num = 0; ///< 0 to MaxFrameNum - 1

    friend ORV_UTILS_V4_EXPORT bool operator==(const sub_seq_info&, const sub_seq_info&);
};

/// A layer of sub_seq_layer_characteristics().
struct sub_seq_layer {
    bool accurate_statistics_flag = false;
    std::uint16_t average_bit_rate = 0;   ///< units of 1000 bit/s; 0 is unknown
    std::uint16_t average_frame_rate = 0; ///< frames in 256 seconds; 0 is unknown

    friend ORV_UTILS_V4_EXPORT bool operator==(const sub_seq_layer&, const sub_seq_layer&);
};

/// sub_seq_layer_characteristics(), clauses D.1.13 and D.2.13: payload 11.
struct sub_seq_layer_characteristics {
    std::uint32_t num_sub_seq_layers_minus1 = 0; ///< 0 to 255
    std::vector<sub_seq_layer> layers;           ///< num_sub_seq_layers_minus1 + 1

    friend ORV_UTILS_V4_EXPORT bool operator==(const sub_seq_layer_characteristics&,
                                               const sub_seq_layer_characteristics&);
};

/// A sub-sequence that another one refers to.
struct referenced_sub_seq {
    std::uint32_t ref_sub_seq_layer_num = 0; ///< 0 to 255
    std::uint32_t ref_sub_seq_id = 0;        ///< 0 to 65535
    bool ref_sub_seq_direction = false;      ///< whether it comes later in decoding order

    friend ORV_UTILS_V4_EXPORT bool operator==(const referenced_sub_seq&, const referenced_sub_seq&);
};

/// sub_seq_characteristics(), clauses D.1.14 and D.2.14: payload 12.
struct sub_seq_characteristics {
    std::uint32_t sub_seq_layer_num = 0; ///< 0 to 255
    std::uint32_t sub_seq_id = 0;        ///< 0 to 65535
    bool duration_flag = false;
    std::uint32_t sub_seq_duration = 0; ///< ticks of a 90 kHz clock
    bool average_rate_flag = false;
    bool accurate_statistics_flag = false;
    std::uint16_t average_bit_rate = 0;       ///< units of 1000 bit/s; 0 is unknown
    std::uint16_t average_frame_rate = 0;     ///< frames in 256 seconds; 0 is unknown
    std::uint32_t num_referenced_subseqs = 0; ///< 0 to 255
    std::vector<referenced_sub_seq> referenced_subseqs;

    friend ORV_UTILS_V4_EXPORT bool operator==(const sub_seq_characteristics&, const sub_seq_characteristics&);
};

} // namespace orv_utils_v4::h264
