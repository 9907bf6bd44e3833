// The texts of the SEI payloads on what to do to decoded samples, H.264 clauses D.1.21, D.1.24 and D.1.25,
// and payload 142 of D.1.
#pragma once

#include "texts/sei/from_sets.h"

#include <orv-utils-v4/h264_syntax/sei/post_processing.h>

namespace orv_utils_v4::h264 {

/// The width of a sample value of a bit depth in payloads 23 and 142: whole bytes.
constexpr unsigned bits_of_sample(unsigned bit_depth) noexcept
{
    return ((bit_depth + 7) >> 3) << 3;
}

// H.264 D.2.21, what the colour description is without one of its own
template <class Coder>
void infer_colour_description(Coder& c, in<Coder, film_grain_characteristics>& x, const seq_parameter_set_data& sps)
{
    const vui_parameters& vui = sps.vui_parameters;
    c.infer(x.film_grain_bit_depth_luma_minus8, sps.bit_depth_luma_minus8);
    c.infer(x.film_grain_bit_depth_chroma_minus8, sps.bit_depth_chroma_minus8);
    c.infer(x.film_grain_full_range_flag, vui.video_full_range_flag);
    c.infer(x.film_grain_colour_primaries, vui.colour_primaries);
    c.infer(x.film_grain_transfer_characteristics, vui.transfer_characteristics);
    c.infer(x.film_grain_matrix_coefficients, vui.matrix_coefficients);
}

/// The range of comp_model_value, D.2.21.
struct model_value_range {
    std::int64_t lowest = -highest_se;
    std::int64_t highest = highest_se;
};

/// Of component `comp`; all numbers where the bit depth is not known.
inline model_value_range range_of_model_values(const film_grain_characteristics& x, unsigned comp,
                                               const seq_parameter_set_data* sps) noexcept
{
    if (x.film_grain_model_id > 1 || (!x.separate_colour_description_present_flag && sps == nullptr))
        return {};
    const unsigned minus8 = comp == 0 ? x.film_grain_bit_depth_luma_minus8 : x.film_grain_bit_depth_chroma_minus8;
    const std::int64_t values = std::int64_t{1} << (std::min(minus8, 7U) + 8);
    if (x.film_grain_model_id == 0)
        return {0, values - 1};
    return {-values / 2, values / 2 - 1};
}

// H.264 D.1.21, the intervals of component comp
template <class Coder>
void code(Coder& c, in<Coder, film_grain_component>& x, std::uint32_t comp, const model_value_range& range)
{
    c.u(8, {"num_intensity_intervals_minus1", comp}, x.num_intensity_intervals_minus1);
    c.u(3, {"num_model_values_minus1", comp}, x.num_model_values_minus1, 0, 5);
    c.count({"intensity_interval_lower_bound", comp}, x.intervals, x.num_intensity_intervals_minus1 + std::uint64_t{1});
    for (std::uint32_t i = 0; i < x.intervals.size() && c.going(); ++i) {
        auto& interval = x.intervals[i];
        c.u(8, {"intensity_interval_lower_bound", comp, i}, interval.intensity_interval_lower_bound);
        c.u(8, {"intensity_interval_upper_bound", comp, i}, interval.intensity_interval_upper_bound);
        const std::uint32_t last =
            std::min<std::uint32_t>(x.num_model_values_minus1, film_grain_interval::most_values - 1);
        for (std::uint32_t j = 0; j <= last && c.going(); ++j)
            c.se({"comp_model_value", comp, i, j}, interval.comp_model_value[j], range.lowest, range.highest);
    }
}

// H.264 D.1.21
template <class Coder>
void code(Coder& c, in<Coder, film_grain_characteristics>& x, const sei_context& context)
{
    const auto here = c.structure("film_grain_characteristics");
    c.flag("film_grain_characteristics_cancel_flag", x.film_grain_characteristics_cancel_flag);
    if (x.film_grain_characteristics_cancel_flag)
        return;
    c.u(2, "film_grain_model_id", x.film_grain_model_id, 0, 1);
    c.flag("separate_colour_description_present_flag", x.separate_colour_description_present_flag);
    if (x.separate_colour_description_present_flag) {
        c.u(3, "film_grain_bit_depth_luma_minus8", x.film_grain_bit_depth_luma_minus8);
        c.u(3, "film_grain_bit_depth_chroma_minus8", x.film_grain_bit_depth_chroma_minus8);
        c.flag("film_grain_full_range_flag", x.film_grain_full_range_flag);
        c.u(8, "film_grain_colour_primaries", x.film_grain_colour_primaries);
        c.u(8, "film_grain_transfer_characteristics", x.film_grain_transfer_characteristics);
        c.u(8, "film_grain_matrix_coefficients", x.film_grain_matrix_coefficients);
    } else if (context.sps != nullptr)
        infer_colour_description(c, x, *context.sps);
    c.u(2, "blending_mode_id", x.blending_mode_id, 0, 1);
    c.u(4, "log2_scale_factor", x.log2_scale_factor);
    for (std::uint32_t comp = 0; comp < 3; ++comp)
        c.flag({"comp_model_present_flag", comp}, x.components[comp].comp_model_present_flag);
    for (std::uint32_t comp = 0; comp < 3; ++comp) {
        if (x.components[comp].comp_model_present_flag)
            code(c, x.components[comp], comp, range_of_model_values(x, comp, context.sps));
    }
    c.ue("film_grain_characteristics_repetition_period", x.film_grain_characteristics_repetition_period, 0, 16384);
}

// H.264 D.1.24
template <class Coder>
void code(Coder& c, in<Coder, post_filter_hint>& x)
{
    const auto here = c.structure("post_filter_hint");
    c.ue_bound("filter_hint_size_y", x.filter_hint_size_y, 1, 15);
    c.ue_bound("filter_hint_size_x", x.filter_hint_size_x, 1, 15);
    c.u(2, "filter_hint_type", x.filter_hint_type, 0, 2);
    const std::uint32_t size_x = x.filter_hint_size_x;
    const std::uint64_t size = std::uint64_t{x.filter_hint_size_y} * size_x;
    for (std::uint32_t colour_component = 0; colour_component < 3 && c.going(); ++colour_component) {
        auto& hint = x.filter_hint[colour_component];
        c.count({"filter_hint", colour_component}, hint, size);
        for (std::uint32_t i = 0; i < hint.size() && c.going(); ++i)
            c.se({"filter_hint", colour_component, i / size_x, i % size_x}, hint[i]);
    }
    c.flag("additional_extension_flag", x.additional_extension_flag, 0, 0);
}

// H.264 D.1.25, with tone_map_model_id 2 and 3
template <class Coder>
void code_tone_curve(Coder& c, in<Coder, tone_mapping_info>& x)
{
    const unsigned coded = bits_of_sample(x.coded_data_bit_depth);
    const unsigned target = bits_of_sample(x.target_bit_depth);
    if (x.tone_map_model_id == 2) {
        const std::uint64_t values =
            x.target_bit_depth < 64 ? std::uint64_t{1} << x.target_bit_depth : ~std::uint64_t{0};
        c.count("start_of_coded_interval", x.start_of_coded_interval, values);
        for (std::uint32_t i = 0; i < x.start_of_coded_interval.size() && c.going(); ++i)
            c.u_v(coded, {"start_of_coded_interval", i}, x.start_of_coded_interval[i]);
    }
    if (x.tone_map_model_id == 3) {
        c.u(16, "num_pivots", x.num_pivots);
        c.count("coded_pivot_value", x.pivots, x.num_pivots);
        for (std::uint32_t i = 0; i < x.pivots.size() && c.going(); ++i) {
            c.u_v(coded, {"coded_pivot_value", i}, x.pivots[i].coded_pivot_value);
            c.u_v(target, {"target_pivot_value", i}, x.pivots[i].target_pivot_value);
        }
    }
}

// H.264 D.1.25, with tone_map_model_id 4
template <class Coder>
void code_camera(Coder& c, in<Coder, tone_mapping_info>& x)
{
    constexpr std::uint8_t Extended_ISO = tone_mapping_info::Extended_ISO;
    c.u(8, "camera_iso_speed_idc", x.camera_iso_speed_idc);
    if (x.camera_iso_speed_idc == Extended_ISO)
        c.u(32, "camera_iso_speed_value", x.camera_iso_speed_value);
    c.u(8, "exposure_index_idc", x.exposure_index_idc);
    if (x.exposure_index_idc == Extended_ISO)
        c.u(32, "exposure_index_value", x.exposure_index_value);
    c.flag("exposure_compensation_value_sign_flag", x.exposure_compensation_value_sign_flag);
    c.u(16, "exposure_compensation_value_numerator", x.exposure_compensation_value_numerator);
    c.u(16, "exposure_compensation_value_denom_idc", x.exposure_compensation_value_denom_idc);
    c.u(32, "ref_screen_luminance_white", x.ref_screen_luminance_white);
    c.u(32, "extended_range_white_level", x.extended_range_white_level);
    c.u(16, "nominal_black_level_luma_code_value", x.nominal_black_level_luma_code_value);
    c.u(16, "nominal_white_level_luma_code_value", x.nominal_white_level_luma_code_value);
    c.u(16, "extended_white_level_luma_code_value", x.extended_white_level_luma_code_value);
}

// H.264 D.1.25
template <class Coder>
void code(Coder& c, in<Coder, tone_mapping_info>& x)
{
    const auto here = c.structure("tone_mapping_info");
    c.ue("tone_map_id", x.tone_map_id);
    c.flag("tone_map_cancel_flag", x.tone_map_cancel_flag);
    if (x.tone_map_cancel_flag)
        return;
    c.ue("tone_map_repetition_period", x.tone_map_repetition_period, 0, 16384);
    c.u(8, "coded_data_bit_depth", x.coded_data_bit_depth, 8, 14);
    c.u(8, "target_bit_depth", x.target_bit_depth, 1, 16);
    c.ue("tone_map_model_id", x.tone_map_model_id, 0, 4);
    if (!c.going())
        return;
    if (x.tone_map_model_id == 0) {
        c.u(32, "min_value", x.min_value);
        c.u(32, "max_value", x.max_value);
    }
    if (x.tone_map_model_id == 1) {
        c.u(32, "sigmoid_midpoint", x.sigmoid_midpoint);
        c.u(32, "sigmoid_width", x.sigmoid_width);
    }
    code_tone_curve(c, x);
    if (x.tone_map_model_id == 4)
        code_camera(c, x);
}

/// The names of a curve's elements.
struct lut_names {
    const char* num_val_minus1;
    const char* coded_value;
    const char* target_value;
};

// H.264 D.1, payload 142: the three curves before the matrix or behind it
template <class Coder, class Number, class List>
void code_luts(Coder& c, const lut_names& names, Number (&num_val_minus1)[3], List (&lut)[3], unsigned coded,
               unsigned target)
{
    for (std::uint32_t comp = 0; comp < 3 && c.going(); ++comp) {
        c.u(8, {names.num_val_minus1, comp}, num_val_minus1[comp], 0, 32);
        const std::uint64_t points = num_val_minus1[comp] > 0 ? num_val_minus1[comp] + std::uint64_t{1} : 0;
        c.count({names.coded_value, comp}, lut[comp], points);
        for (std::uint32_t i = 0; i < lut[comp].size() && c.going(); ++i) {
            c.u_v(coded, {names.coded_value, comp, i}, lut[comp][i].coded_value);
            c.u_v(target, {names.target_value, comp, i}, lut[comp][i].target_value);
        }
    }
}

// H.264 D.1, payload 142
template <class Coder>
void code(Coder& c, in<Coder, colour_remapping_info>& x, const sei_context& context)
{
    constexpr lut_names pre = {"pre_lut_num_val_minus1", "pre_lut_coded_value", "pre_lut_target_value"};
    constexpr lut_names post = {"post_lut_num_val_minus1", "post_lut_coded_value", "post_lut_target_value"};
    const auto here = c.structure("colour_remapping_info");
    c.ue("colour_remap_id", x.colour_remap_id);
    c.flag("colour_remap_cancel_flag", x.colour_remap_cancel_flag);
    if (x.colour_remap_cancel_flag)
        return;
    c.ue("colour_remap_repetition_period", x.colour_remap_repetition_period, 0, 16384);
    c.flag("colour_remap_video_signal_info_present_flag", x.colour_remap_video_signal_info_present_flag);
    if (x.colour_remap_video_signal_info_present_flag) {
        c.flag("colour_remap_full_range_flag", x.colour_remap_full_range_flag);
        c.u(8, "colour_remap_primaries", x.colour_remap_primaries);
        c.u(8, "colour_remap_transfer_function", x.colour_remap_transfer_function);
        c.u(8, "colour_remap_matrix_coefficients", x.colour_remap_matrix_coefficients);
    } else if (context.sps != nullptr) {
        const vui_parameters& vui = context.sps->vui_parameters;
        c.infer(x.colour_remap_full_range_flag, vui.video_full_range_flag);
        c.infer(x.colour_remap_primaries, vui.colour_primaries);
        c.infer(x.colour_remap_transfer_function, vui.transfer_characteristics);
        c.infer(x.colour_remap_matrix_coefficients, vui.matrix_coefficients);
    }
    c.u(8, "colour_remap_input_bit_depth", x.colour_remap_input_bit_depth, 8, 16);
    c.u(8, "colour_remap_output_bit_depth", x.colour_remap_output_bit_depth, 8, 16);
    const unsigned input = bits_of_sample(x.colour_remap_input_bit_depth);
    const unsigned output = bits_of_sample(x.colour_remap_output_bit_depth);
    code_luts(c, pre, x.pre_lut_num_val_minus1, x.pre_lut, input, output);
    c.flag("colour_remap_matrix_present_flag", x.colour_remap_matrix_present_flag);
    if (x.colour_remap_matrix_present_flag) {
        c.u(4, "log2_matrix_denom", x.log2_matrix_denom);
        for (std::uint32_t comp = 0; comp < 3; ++comp)
            for (std::uint32_t i = 0; i < 3; ++i)
                c.se({"colour_remap_coeffs", comp, i}, x.colour_remap_coeffs[comp][i], -32768, 32767);
    }
    code_luts(c, post, x.post_lut_num_val_minus1, x.post_lut, output, output);
}

} // namespace orv_utils_v4::h264
