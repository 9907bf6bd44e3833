// What rules over the order of output look at (H.264 C.4, E.2.1).
#pragma once

#include "check/rule.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <optional>
#include <span>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A picture among those of its coded video sequence that are decoded before it.
struct decoded_order_facts {
    const h264::seq_parameter_set_data& sps;
    std::uint32_t later = 0; ///< so many of them are output behind it; at most most_later
    std::uint32_t told = 0;  ///< that many have been told of

    static constexpr std::size_t most_later = 32;
};

/// A picture as it is output by a decoder that waits for as long as its buffer lets it.
struct output_facts {
    const h264::seq_parameter_set_data& sps;
    const h264::picture& picture;
    std::optional<std::int64_t> before; ///< PicOrderCnt of the picture before it, of the same sequence
    bool first_dropped = false;         ///< no_output_of_prior_pics_flag drops it, and none of its sequence before it
};

/// An IDR picture with pictures before it.
struct new_sequence_facts {
    const h264::seq_parameter_set_data& before; ///< of the sequence that ends
    const h264::seq_parameter_set_data& sps;
    const h264::slice_header& header;
};

/// The coded video sequences of an SPS.
struct sps_order_facts {
    const h264::seq_parameter_set_data& sps;
    std::uint64_t pictures = 0;
    bool reordered = false; ///< a picture is output before one that is decoded before it
};

std::span<const rule_over<decoded_order_facts>> decoded_order_rules();
std::span<const rule_over<output_facts>> output_rules();
std::span<const rule_over<new_sequence_facts>> new_sequence_rules();
std::span<const rule_over<sps_order_facts>> sps_order_rules();

} // namespace orv_h264
