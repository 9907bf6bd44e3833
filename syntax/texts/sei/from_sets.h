// What the texts of SEI payloads take from a sequence parameter set.
#pragma once

#include "coders/coder.h"
#include "texts/sei_context.h"

#include <orv-utils-v4/h264_syntax/picture_size.h>

#include <algorithm>

namespace orv_utils_v4::h264 {

/// MaxFrameNum - 1; without an SPS, what ue(v) can tell.
inline std::int64_t highest_frame_num(const seq_parameter_set_data* sps) noexcept
{
    return sps != nullptr ? static_cast<std::int64_t>(MaxFrameNum(*sps)) - 1 : highest_ue;
}

/// The HRD parameters of NAL units (Type II), or null.
inline const hrd_parameters* nal_hrd(const seq_parameter_set_data& sps) noexcept
{
    const vui_parameters& vui = sps.vui_parameters;
    return sps.vui_parameters_present_flag && vui.nal_hrd_parameters_present_flag ? &vui.nal_hrd_parameters : nullptr;
}

/// The HRD parameters of VCL NAL units (Type I), or null.
inline const hrd_parameters* vcl_hrd(const seq_parameter_set_data& sps) noexcept
{
    const vui_parameters& vui = sps.vui_parameters;
    return sps.vui_parameters_present_flag && vui.vcl_hrd_parameters_present_flag ? &vui.vcl_hrd_parameters : nullptr;
}

/// cpb_cnt_minus1 + 1, of HRD parameters that somebody filled by hand too.
inline std::uint32_t specifications(const hrd_parameters& hrd) noexcept
{
    return std::min(hrd.cpb_cnt_minus1, hrd_parameters::most_specifications - 1) + 1;
}

/// The highest initial_cpb_removal_delay: 90000 * ( CpbSize ÷ BitRate ), D.2.2 with E.2.2.
inline std::int64_t highest_initial_delay(const hrd_parameters& hrd, std::uint32_t SchedSelIdx) noexcept
{
    std::uint64_t size = std::uint64_t{90000} * (std::uint64_t{hrd.cpb_size_value_minus1[SchedSelIdx]} + 1);
    std::uint64_t rate = std::uint64_t{hrd.bit_rate_value_minus1[SchedSelIdx]} + 1;
    size <<= std::min<unsigned>(hrd.cpb_size_scale, 15); // below 2^49 times 2^15
    const unsigned scale = std::min<unsigned>(hrd.bit_rate_scale, 15) + 2;
    rate <<= scale;
    return std::max<std::int64_t>(static_cast<std::int64_t>(size / rate), 1);
}

} // namespace orv_utils_v4::h264
