// What the decoding of slice data stands on: two slices whose data are the same bits decode to the same picture, from
// the same references, where all of these are equal. Picture order counts and the unwrapping of frame_num belong to
// picture_numbers.h.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A slice and what it stands on.
struct slice_setting {
    const h264::nal_unit_header& header;
    const h264::slice_header& slice;
    const h264::pic_parameter_set_rbsp& pps;
    const h264::seq_parameter_set_data& sps;
};

/// Something that must not change.
struct decoding_fact {
    const char* name;   ///< the element, or what several come to
    const char* clause; ///< of H.264, where decoding uses it
    bool parsing;       ///< slice data cannot be read otherwise; else they are decoded otherwise
    bool (*same)(const slice_setting& before, const slice_setting& after);
};

/// The first fact that differs; null when all are the same.
const decoding_fact* first_difference(const slice_setting& before, const slice_setting& after);

/// The same of parameter sets alone: for slices whose headers are not slice_header().
const decoding_fact* first_difference(const h264::pic_parameter_set_rbsp& pps, const h264::seq_parameter_set_data& sps,
                                      const h264::pic_parameter_set_rbsp& new_pps,
                                      const h264::seq_parameter_set_data& new_sps);

/// What an element that is not sent is inferred as (7.4.2 and 7.4.3): one that comes into a unit because of another
/// unit has this value, one that goes has to have had it.
struct inferred_value {
    const char* name;
    std::int64_t value;
};

/// Null of an element that nothing is inferred for.
const inferred_value* inferred_value_of(const char* element_name);

} // namespace orv_h264
