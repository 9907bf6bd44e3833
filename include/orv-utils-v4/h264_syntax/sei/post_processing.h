/// @file
/// SEI payloads of H.264 Annex D on what to do to decoded samples: film grain, filters, tone mapping and colour
/// remapping (19, 22, 23, 142).
#pragma once

#include <orv-utils-v4/export.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// An interval of intensities in film_grain_characteristics() and the model's values for it.
struct film_grain_interval {
    static constexpr std::size_t most_values = 8; ///< that num_model_values_minus1 can tell; the standard allows 6

    std::uint8_t intensity_interval_lower_bound = 0;
    std::uint8_t intensity_interval_upper_bound = 0;
    std::int32_t comp_model_value[most_values] = {}; ///< num_model_values_minus1 + 1 of them; others are 0

    friend ORV_UTILS_V4_EXPORT bool operator==(const film_grain_interval&, const film_grain_interval&);
};

/// The film grain of one colour component.
struct film_grain_component {
    bool comp_model_present_flag = false;
    std::uint8_t num_intensity_intervals_minus1 = 0;
    std::uint8_t num_model_values_minus1 = 0; ///< 0 to 5
    std::vector<film_grain_interval> intervals;

    friend ORV_UTILS_V4_EXPORT bool operator==(const film_grain_component&, const film_grain_component&);
};

/// film_grain_characteristics(), clauses D.1.21 and D.2.21: payload 19. What separate_colour_description_present_flag
/// brings is else inferred from the SPS, where one is known.
struct film_grain_characteristics {
    bool film_grain_characteristics_cancel_flag = false;
    std::uint8_t film_grain_model_id = 0; ///< 0 to 1
    bool separate_colour_description_present_flag = false;
    std::uint8_t film_grain_bit_depth_luma_minus8 = 0;   ///< 0 to 7
    std::uint8_t film_grain_bit_depth_chroma_minus8 = 0; ///< 0 to 7
    bool film_grain_full_range_flag = false;
    std::uint8_t film_grain_colour_primaries = 2;         ///< Table E-3
    std::uint8_t film_grain_transfer_characteristics = 2; ///< Table E-4
    std::uint8_t film_grain_matrix_coefficients = 2;      ///< Table E-5
    std::uint8_t blending_mode_id = 0;                    ///< 0 to 1
    std::uint8_t log2_scale_factor = 0;
    film_grain_component components[3];
    std::uint32_t film_grain_characteristics_repetition_period = 0; ///< 0 to 16384

    friend ORV_UTILS_V4_EXPORT bool operator==(const film_grain_characteristics&, const film_grain_characteristics&);
};

/// post_filter_hint(), clauses D.1.24 and D.2.24: payload 22.
struct post_filter_hint {
    std::uint32_t filter_hint_size_y = 0; ///< 1 to 15
    std::uint32_t filter_hint_size_x = 0; ///< 1 to 15
    std::uint8_t filter_hint_type = 0;    ///< 0 to 2
    /// Of each colour component: filter_hint_size_y rows of filter_hint_size_x values, one after the other.
    std::vector<std::int32_t> filter_hint[3];
    bool additional_extension_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const post_filter_hint&, const post_filter_hint&);
};

/// A pivot of a tone mapping that is linear in between.
struct tone_map_pivot {
    std::uint32_t coded_pivot_value = 0;
    std::uint32_t target_pivot_value = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const tone_map_pivot&, const tone_map_pivot&);
};

/// tone_mapping_info(), clauses D.1.25 and D.2.25: payload 23.
struct tone_mapping_info {
    static constexpr std::uint8_t Extended_ISO = 255;

    std::uint32_t tone_map_id = 0;
    bool tone_map_cancel_flag = false;
    std::uint32_t tone_map_repetition_period = 0; ///< 0 to 16384
    std::uint8_t coded_data_bit_depth = 0;        ///< 8 to 14
    std::uint8_t target_bit_depth = 0;            ///< 1 to 16
    std::uint32_t tone_map_model_id = 0;          ///< 0 to 4
    std::uint32_t min_value = 0;                  ///< with model 0, as the next one
    std::uint32_t max_value = 0;
    std::uint32_t sigmoid_midpoint = 0; ///< with model 1, as the next one
    std::uint32_t sigmoid_width = 0;
    std::vector<std::uint32_t> start_of_coded_interval; ///< with model 2: 1 << target_bit_depth
    std::uint16_t num_pivots = 0;                       ///< with model 3, as the next one
    std::vector<tone_map_pivot> pivots;
    std::uint8_t camera_iso_speed_idc = 0; ///< with model 4, as all below
    std::uint32_t camera_iso_speed_value = 0;
    std::uint8_t exposure_index_idc = 0;
    std::uint32_t exposure_index_value = 0;
    bool exposure_compensation_value_sign_flag = false;
    std::uint16_t exposure_compensation_value_numerator = 0;
    std::uint16_t exposure_compensation_value_denom_idc = 0;
    std::uint32_t ref_screen_luminance_white = 0; ///< units of 0.1 candela a square metre
    std::uint32_t extended_range_white_level = 0; ///< per cent
    std::uint16_t nominal_black_level_luma_code_value = 0;
    std::uint16_t nominal_white_level_luma_code_value = 0;
    std::uint16_t extended_white_level_luma_code_value = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const tone_mapping_info&, const tone_mapping_info&);
};

/// A point of a curve of colour_remapping_info(); linear in between.
struct colour_remap_point {
    std::uint32_t coded_value = 0;  ///< pre_lut_coded_value or post_lut_coded_value
    std::uint32_t target_value = 0; ///< pre_lut_target_value or post_lut_target_value

    friend ORV_UTILS_V4_EXPORT bool operator==(const colour_remap_point&, const colour_remap_point&);
};

/// colour_remapping_info(): payload 142. What colour_remap_video_signal_info_present_flag brings is
/// else inferred from the SPS, where one is known.
struct colour_remapping_info {
    std::uint32_t colour_remap_id = 0;
    bool colour_remap_cancel_flag = false;
    std::uint32_t colour_remap_repetition_period = 0; ///< 0 to 16384
    bool colour_remap_video_signal_info_present_flag = false;
    bool colour_remap_full_range_flag = false;
    std::uint8_t colour_remap_primaries = 2;           ///< Table E-3
    std::uint8_t colour_remap_transfer_function = 2;   ///< Table E-4
    std::uint8_t colour_remap_matrix_coefficients = 2; ///< Table E-5
    std::uint8_t colour_remap_input_bit_depth = 0;     ///< 8 to 16
    std::uint8_t colour_remap_output_bit_depth = 0;    ///< 8 to 16
    std::uint8_t pre_lut_num_val_minus1[3] = {};       ///< 0 to 32; 0 is a straight line, without points
    std::vector<colour_remap_point> pre_lut[3];
    bool colour_remap_matrix_present_flag = false;
    std::uint8_t log2_matrix_denom = 0;
    std::int32_t colour_remap_coeffs[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}; ///< -2^15 to 2^15 - 1
    std::uint8_t post_lut_num_val_minus1[3] = {}; ///< 0 to 32; 0 is a straight line, without points
    std::vector<colour_remap_point> post_lut[3];

    friend ORV_UTILS_V4_EXPORT bool operator==(const colour_remapping_info&, const colour_remapping_info&);
};

} // namespace orv_utils_v4::h264
