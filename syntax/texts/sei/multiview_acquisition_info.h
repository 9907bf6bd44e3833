// The text of the SEI payload multiview_acquisition_info(), H.264 clause H.13.1.5.
#pragma once

#include "coders/coder.h"
#include "texts/sei_context.h"

#include <orv-utils-v4/h264_syntax/sei/multiview_acquisition_info.h>

namespace orv_utils_v4::h264 {

/// The sign, the exponent and the mantissa of a parameter of a camera; the names are those of the three elements.
template <class Coder>
void code_parameter(Coder& c, label sign, label exponent, label mantissa, in<Coder, acquisition_parameter>& x,
                    std::uint32_t prec)
{
    c.flag(sign, x.sign);
    c.u(6, exponent, x.exponent, 0, 62);
    c.u_v_long(mantissa_bits(x.exponent, prec), mantissa, x.mantissa);
}

// H.264 H.13.1.5, with intrinsic_param_flag: the loop over i
template <class Coder>
void code(Coder& c, in<Coder, intrinsic_camera_parameters>& x, const multiview_acquisition_info& info, std::uint32_t i)
{
    code_parameter(c, {"sign_focal_length_x", i}, {"exponent_focal_length_x", i}, {"mantissa_focal_length_x", i},
                   x.focal_length_x, info.prec_focal_length);
    code_parameter(c, {"sign_focal_length_y", i}, {"exponent_focal_length_y", i}, {"mantissa_focal_length_y", i},
                   x.focal_length_y, info.prec_focal_length);
    code_parameter(c, {"sign_principal_point_x", i}, {"exponent_principal_point_x", i},
                   {"mantissa_principal_point_x", i}, x.principal_point_x, info.prec_principal_point);
    code_parameter(c, {"sign_principal_point_y", i}, {"exponent_principal_point_y", i},
                   {"mantissa_principal_point_y", i}, x.principal_point_y, info.prec_principal_point);
    code_parameter(c, {"sign_skew_factor", i}, {"exponent_skew_factor", i}, {"mantissa_skew_factor", i}, x.skew_factor,
                   info.prec_skew_factor);
}

// H.264 H.13.1.5, with extrinsic_param_flag: the loop over i
template <class Coder>
void code(Coder& c, in<Coder, extrinsic_camera_parameters>& x, const multiview_acquisition_info& info, std::uint32_t i)
{
    for (std::uint32_t j = 1; j <= 3; ++j) {
        for (std::uint32_t k = 1; k <= 3; ++k)
            code_parameter(c, {"sign_r", i, j, k}, {"exponent_r", i, j, k}, {"mantissa_r", i, j, k}, x.r[j - 1][k - 1],
                           info.prec_rotation_param);
        code_parameter(c, {"sign_t", i, j}, {"exponent_t", i, j}, {"mantissa_t", i, j}, x.t[j - 1],
                       info.prec_translation_param);
    }
}

// H.264 H.13.1.5
template <class Coder>
void code(Coder& c, in<Coder, multiview_acquisition_info>& x, const sei_context&)
{
    const auto here = c.structure("multiview_acquisition_info");
    c.ue_bound("num_views_minus1", x.num_views_minus1, 0, multiview_acquisition_info::most_views - 1);
    c.flag("intrinsic_param_flag", x.intrinsic_param_flag);
    c.flag("extrinsic_param_flag", x.extrinsic_param_flag);
    if (x.intrinsic_param_flag) {
        c.flag("intrinsic_params_equal_flag", x.intrinsic_params_equal_flag);
        c.ue("prec_focal_length", x.prec_focal_length, 0, 31);
        c.ue("prec_principal_point", x.prec_principal_point, 0, 31);
        c.ue("prec_skew_factor", x.prec_skew_factor, 0, 31);
        const std::uint32_t last = x.intrinsic_params_equal_flag ? 0 : x.num_views_minus1;
        c.count("sign_focal_length_x", x.intrinsic, std::uint64_t{last} + 1);
        for (std::uint32_t i = 0; i <= last && c.going(); ++i)
            code(c, x.intrinsic[i], x, i);
    }
    if (x.extrinsic_param_flag) {
        c.ue("prec_rotation_param", x.prec_rotation_param, 0, 31);
        c.ue("prec_translation_param", x.prec_translation_param, 0, 31);
        c.count("sign_r", x.extrinsic, std::uint64_t{x.num_views_minus1} + 1);
        for (std::uint32_t i = 0; i <= x.num_views_minus1 && c.going(); ++i)
            code(c, x.extrinsic[i], x, i);
    }
}

} // namespace orv_utils_v4::h264
