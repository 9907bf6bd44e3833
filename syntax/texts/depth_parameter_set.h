// The texts of the depth parameter set and of the structures that it shares with the SPS of 3D-AVC, H.264 clause
// J.7.3.2.13. `numViews` and `predDirection` are the tables' own parameters.
#pragma once

#include "coders/coder.h"
#include "texts/parameter_sets.h"

#include <orv-utils-v4/h264_syntax/depth_parameter_set.h>

namespace orv_utils_v4::h264 {

// H.264 J.7.3.2.13.2, a value of its loop, which is said with a predDirection of 2 or as the difference to another set
template <class Coder, class Value>
void code_three_dv_value(Coder& c, Value& x, std::uint32_t i, std::uint32_t predDirection, unsigned expLen,
                         unsigned manLen)
{
    if (predDirection == 2) {
        c.flag({"sign0", i}, x.sign0);
        c.u_v(expLen, {"exponent0", i}, x.exponent0);
        c.u_v(manLen, {"mantissa0", i}, x.mantissa0);
        return;
    }
    c.flag({"skip_flag", i}, x.skip_flag);
    if (!x.skip_flag) {
        c.flag({"sign1", i}, x.sign1);
        c.flag({"exponent_skip_flag", i}, x.exponent_skip_flag);
        if (!x.exponent_skip_flag)
            c.u_v(expLen, {"exponent1", i}, x.exponent1);
        c.se({"mantissa_diff", i}, x.mantissa_diff);
    }
}

// H.264 J.7.3.2.13.2
template <class Coder>
void code(Coder& c, in<Coder, three_dv_acquisition_element>& x, std::uint32_t numViews, std::uint32_t predDirection,
          unsigned expLen)
{
    const auto here = c.structure("3dv_acquisition_element");
    if (numViews > 1)
        c.flag("element_equal_flag", x.element_equal_flag);
    const std::uint32_t numValues = numViews > 1 && x.element_equal_flag ? 1 : numViews;
    if (predDirection == 2)
        c.u(5, "mantissa_len_minus1", x.mantissa_len_minus1); // in the loop of the table, for its first value
    c.count(predDirection == 2 ? "sign0" : "skip_flag", x.values, numValues);
    for (std::uint32_t i = 0; i < numValues && c.going(); ++i)
        code_three_dv_value(c, x.values[i], i, predDirection, expLen, x.mantissa_len_minus1 + 1U);
}

// H.264 J.7.3.2.13.1
template <class Coder>
void code(Coder& c, in<Coder, depth_ranges>& x, std::uint32_t numViews, std::uint32_t predDirection)
{
    constexpr unsigned expLen = 7;
    const auto here = c.structure("depth_ranges");
    c.flag("z_near_flag", x.z_near_flag);
    c.flag("z_far_flag", x.z_far_flag);
    if (x.z_near_flag)
        code(c, x.z_near, numViews, predDirection, expLen);
    if (x.z_far_flag)
        code(c, x.z_far, numViews, predDirection, expLen);
}

// H.264 J.7.3.2.13.3
template <class Coder>
void code(Coder& c, in<Coder, vsp_param>& x, std::uint32_t numViews)
{
    const auto here = c.structure("vsp_param");
    c.count("disparity_diff_wji", x.pairs, std::uint64_t{numViews} * (numViews - 1) / 2);
    std::size_t pair = 0;
    for (std::uint32_t i = 0; i < numViews && c.going(); ++i) {
        for (std::uint32_t j = 0; j < i && c.going(); ++j) {
            auto& disparity = x.pairs[pair++];
            c.se({"disparity_diff_wji", j, i}, disparity.disparity_diff_wji);
            c.se({"disparity_diff_oji", j, i}, disparity.disparity_diff_oji);
            c.se({"disparity_diff_wij", i, j}, disparity.disparity_diff_wij);
            c.se({"disparity_diff_oij", i, j}, disparity.disparity_diff_oij);
        }
    }
}

// H.264 J.7.3.2.13
template <class Coder>
void code(Coder& c, in<Coder, depth_parameter_set_rbsp>& x)
{
    const auto here = c.structure("depth_parameter_set_rbsp");
    c.ue("depth_parameter_set_id", x.depth_parameter_set_id, 1, 63);
    c.ue("pred_direction", x.pred_direction, 0, 2);
    if (x.pred_direction == 0 || x.pred_direction == 1)
        c.ue("ref_dps_id0", x.ref_dps_id0, 0, 63);
    if (x.pred_direction == 0) {
        c.ue("ref_dps_id1", x.ref_dps_id1, 0, 63);
        c.u(6, "pred_weight0", x.pred_weight0);
    }
    c.ue_bound("num_depth_views_minus1", x.num_depth_views_minus1, 0, depth_parameter_set_rbsp::most_views - 1);
    if (!c.going())
        return;
    const std::uint32_t numViews = x.num_depth_views_minus1 + 1;
    code(c, x.depth_ranges, numViews, x.pred_direction);
    c.flag("vsp_param_flag", x.vsp_param_flag);
    if (x.vsp_param_flag)
        code(c, x.vsp_param, numViews);
    c.flag("depth_param_additional_extension_flag", x.depth_param_additional_extension_flag);
    c.ue("nonlinear_depth_representation_num", x.nonlinear_depth_representation_num);
    c.count("nonlinear_depth_representation_model", x.nonlinear_depth_representation_model,
            x.nonlinear_depth_representation_num);
    for (std::uint32_t i = 1; i <= x.nonlinear_depth_representation_num && c.going(); ++i)
        c.ue({"nonlinear_depth_representation_model", i}, x.nonlinear_depth_representation_model[i - 1]);
    if (x.depth_param_additional_extension_flag)
        c.flags_left("depth_param_additional_extension_data_flag", x.depth_param_additional_extension_data_flag);
    rbsp_trailing_bits(c);
}

} // namespace orv_utils_v4::h264
