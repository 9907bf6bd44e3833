// The text that svc_vui_parameters_extension(), mvc_vui_parameters_extension() and mvcd_vui_parameters_extension() have
// in common, H.264 clauses G.14.1, H.14.1 and I.14.1: times and buffers of an entry. The names alone differ.
#pragma once

#include "coders/coder.h"
#include "texts/parameter_sets.h"

#include <orv-utils-v4/h264_syntax/subset_seq_parameter_set.h>

namespace orv_utils_v4::h264 {

/// The names of the elements in one of the extensions.
struct vui_extension_names {
    const char* timing_info_present_flag;
    const char* num_units_in_tick;
    const char* time_scale;
    const char* fixed_frame_rate_flag;
    const char* nal_hrd_parameters_present_flag;
    const char* vcl_hrd_parameters_present_flag;
    const char* low_delay_hrd_flag;
    const char* pic_struct_present_flag;
};

// H.264 G.14.1, H.14.1 and I.14.1, entry i
template <class Coder>
void code_vui_extension_timing(Coder& c, const vui_extension_names& names, in<Coder, vui_extension_timing>& x,
                               std::uint32_t i)
{
    c.flag({names.timing_info_present_flag, i}, x.timing_info_present_flag);
    if (x.timing_info_present_flag) {
        c.u(32, {names.num_units_in_tick, i}, x.num_units_in_tick, 1, 0xFFFFFFFF);
        c.u(32, {names.time_scale, i}, x.time_scale, 1, 0xFFFFFFFF);
        c.flag({names.fixed_frame_rate_flag, i}, x.fixed_frame_rate_flag);
    }
    c.flag({names.nal_hrd_parameters_present_flag, i}, x.nal_hrd_parameters_present_flag);
    if (x.nal_hrd_parameters_present_flag)
        code(c, x.nal_hrd_parameters);
    c.flag({names.vcl_hrd_parameters_present_flag, i}, x.vcl_hrd_parameters_present_flag);
    if (x.vcl_hrd_parameters_present_flag)
        code(c, x.vcl_hrd_parameters);
    if (x.nal_hrd_parameters_present_flag || x.vcl_hrd_parameters_present_flag)
        c.flag({names.low_delay_hrd_flag, i}, x.low_delay_hrd_flag);
    else
        c.infer(x.low_delay_hrd_flag, !x.fixed_frame_rate_flag);
    c.flag({names.pic_struct_present_flag, i}, x.pic_struct_present_flag);
}

} // namespace orv_utils_v4::h264
