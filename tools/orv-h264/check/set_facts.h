// What rules over the activation of parameter sets look at.
#pragma once

#include "check/rule.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <span>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// An SPS with the id of the active one, or a PPS with that of the picture at hand.
struct set_content_facts {
    bool sps;
    std::uint32_t id;
    bool differs;    ///< from the one that is active
    bool may_change; ///< it stands where a picture or a sequence ends
};

/// The SPS of a picture, and the one that was active before it.
struct activation_facts {
    bool idr;
    std::uint32_t id;
    std::uint32_t active_id;
};

/// A primary coded picture, and what the SPS extension of its sequence says of auxiliary ones.
struct auxiliary_facts {
    std::uint32_t aux_format_idc; ///< 0 without an SPS extension
    bool sent;                    ///< it has an auxiliary picture
};

/// A unit that names parameter sets.
struct naming_facts {
    const h264::unit_reading& reading;
};

std::span<const rule_over<set_content_facts>> set_content_rules();
std::span<const rule_over<activation_facts>> activation_rules();
std::span<const rule_over<auxiliary_facts>> auxiliary_rules();
std::span<const rule_over<naming_facts>> naming_rules();

} // namespace orv_h264
