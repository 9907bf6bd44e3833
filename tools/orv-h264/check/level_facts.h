// What rules over the limits of levels look at that no SPS tells by itself (H.264 A.3).
#pragma once

#include "check/facts.h"

#include <optional>

namespace orv_h264 {

/// A primary coded picture, of a level of Table A-1.
struct picture_load_facts {
    const h264::access_unit& unit;
    const h264::level_limits& level;
    std::uint64_t slices = 0;
    std::uint64_t bytes = 0; ///< of its slices, unit headers included
    std::optional<double>
        seconds; ///< between the removal of the access unit before it and its own; else it is the first
};

/// Two pictures of a level of Table A-1, one after the other as their timing messages say.
struct picture_interval_facts {
    const h264::level_limits& level;
    std::uint64_t macroblocks = 0; ///< of the first one
    double shortest = 0;           ///< fR: the least time that a picture takes, whatever its size
    double seconds = 0;            ///< above 0
};

/// fR of a level, in seconds: what a picture takes at least.
double shortest_interval(const h264::seq_parameter_set_data& sps, bool field);

std::span<const rule_over<picture_load_facts>> picture_load_rules();
std::span<const rule_over<picture_interval_facts>> decoding_interval_rules();
std::span<const rule_over<picture_interval_facts>> output_interval_rules();
/// Of each different SPS once.
std::span<const rule_over<sps_facts>> level_sps_rules();

} // namespace orv_h264
