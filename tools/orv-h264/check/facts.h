// What rules look at, and the tables of rules.
#pragma once

#include "check/rule.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <span>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A unit that was read, of any type.
struct unit_facts {
    const h264::unit_reading& reading;

    unsigned type() const { return reading.unit.header.nal_unit_type; }
    bool is_slice() const { return (type() >= 1 && type() <= 5) || (type() >= 19 && type() <= 21); }
};

/// An SPS, or what a subset SPS has of one.
struct sps_facts {
    const h264::seq_parameter_set_data& sps;
    bool is_subset = false;

    const h264::vui_parameters& vui() const { return sps.vui_parameters; }
};

/// A PPS with the SPS that it names.
struct pps_facts {
    const h264::pic_parameter_set_rbsp& pps;
    const h264::seq_parameter_set_data& sps;
};

/// A slice of the base layer or view.
struct slice_facts {
    const h264::nal_unit_header& header;
    const h264::slice_header& slice;
    const h264::seq_parameter_set_data& sps;
    const h264::pic_parameter_set_rbsp& pps;

    bool idr() const { return header.nal_unit_type == 5; }
    const h264::dec_ref_pic_marking& marking() const { return slice.dec_ref_pic_marking; }
};

std::span<const rule_over<unit_facts>> unit_rules();
std::span<const rule_over<sps_facts>> sps_rules();
std::span<const rule_over<pps_facts>> pps_rules();
std::span<const rule_over<slice_facts>> slice_rules();

} // namespace orv_h264
